#include "catalogue/DictionaryTable.h"

#include "store/Db.h"
#include "store/Schema.h"

namespace vinora {

DictionaryTable::DictionaryTable(const Db& db, QString table, QString key)
    : m_db(db), m_table(quoted(table)), m_key(quoted(key))
{
}

QList<DictionaryTable::Entry> DictionaryTable::entries() const
{
    QSqlQuery rows = m_db.query(QStringLiteral("SELECT ") + m_key + QStringLiteral(", ") + m_table +
                                QStringLiteral(" FROM ") + m_table + QStringLiteral(" ORDER BY ") + m_table);
    QList<Entry> entries;
    while (rows.next()) {
        entries.append({rows.value(0), rows.value(1).toString()});
    }
    return entries;
}

QStringList DictionaryTable::names() const
{
    return m_db.texts(QStringLiteral("SELECT ") + m_table + QStringLiteral(" FROM ") + m_table +
                      QStringLiteral(" ORDER BY ") + m_key);
}

std::optional<qint64> DictionaryTable::keyOf(const QString& name) const
{
    const QVariant key =
        m_db.scalar(QStringLiteral("SELECT ") + m_key + QStringLiteral(" FROM ") + m_table +
                        QStringLiteral(" WHERE ") + m_table + QStringLiteral(" = ? ORDER BY 1 LIMIT 1"),
                    {name});
    return key.isValid() ? std::optional<qint64>(key.toLongLong()) : std::nullopt;
}

qint64 DictionaryTable::add(const QString& name) const
{
    m_db.exec(QStringLiteral("INSERT INTO ") + m_table + u'(' + m_table + QStringLiteral(") VALUES (?)"),
              {name});
    return m_db.scalar(QStringLiteral("SELECT last_insert_rowid()")).toLongLong();
}

void DictionaryTable::rename(const QVariant& key, const QString& name) const
{
    m_db.exec(QStringLiteral("UPDATE ") + m_table + QStringLiteral(" SET ") + m_table +
                  QStringLiteral(" = ? WHERE ") + m_key + QStringLiteral(" = ?"),
              {name, key});
}

void DictionaryTable::remove(const QVariant& key) const
{
    m_db.exec(QStringLiteral("DELETE FROM ") + m_table + QStringLiteral(" WHERE ") + m_key +
                  QStringLiteral(" = ?"),
              {key});
}

} // namespace vinora
