#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <optional>

namespace vinora {

class Db;

// One dictionary of the main database (Стиль, Описание, Жанр): the names sit in a column
// named as the table, beside a numeric key. Names travel only as bound values.
class DictionaryTable
{
public:
    struct Entry
    {
        QVariant key;
        QString name;
    };

    DictionaryTable(const Db& db, QString table, QString key);

    QList<Entry> entries() const; // by name
    QStringList names() const;    // by key, the order of the catalogue's filter list
    std::optional<qint64> keyOf(const QString& name) const;
    bool contains(const QString& name) const { return keyOf(name).has_value(); }

    qint64 add(const QString& name) const; // the new key
    void rename(const QVariant& key, const QString& name) const;
    // Throws AppError err::RelatedRecordsExist while a disc uses the name.
    void remove(const QVariant& key) const;

private:
    const Db& m_db;
    QString m_table; // both quoted
    QString m_key;
};

} // namespace vinora
