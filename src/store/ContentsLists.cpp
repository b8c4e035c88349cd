#include "store/ContentsLists.h"

#include "frame/AppError.h"
#include "store/Db.h"
#include "store/Schema.h"
#include "store/SearchIndex.h"

namespace vinora {
namespace {

const QString kRegistry = QStringLiteral("\"Списки\"");

FieldDef textField(const char* name, int size)
{
    return {QString::fromUtf8(name), FieldType::Text, size};
}

QList<FieldDef> listFields(ContentsKind kind)
{
    if (kind == ContentsKind::Files) {
        return {textField("Имя", 255), textField("Путь", 255), textField("Размер", 11),
                textField("Комментарий", 50)};
    }
    return {{QStringLiteral("Номер"), FieldType::Integer},
            textField("Название", 255),
            textField("Комментарий", 50)};
}

} // namespace

const ContentsDescriptor& contentsDescriptor(ContentsKind kind)
{
    static const ContentsDescriptor files{ContentsKind::Files,
                                          QStringLiteral("Файлы"),
                                          {QStringLiteral("Имя"), QStringLiteral("Путь"),
                                           QStringLiteral("Размер"), QStringLiteral("Комментарий")},
                                          {QStringLiteral("Имя"), QStringLiteral("Комментарий")}};
    static const ContentsDescriptor tracks{
        ContentsKind::Tracks,
        QStringLiteral("Треки"),
        {QStringLiteral("Номер"), QStringLiteral("Название"), QStringLiteral("Комментарий")},
        {QStringLiteral("Название")}};
    return kind == ContentsKind::Files ? files : tracks;
}

ContentsLists::ContentsLists(const Db& db, ContentsKind kind)
    : m_db(db), m_descriptor(contentsDescriptor(kind))
{
}

void ContentsLists::createStorage(const Db& db, ContentsKind kind)
{
    const ContentsDescriptor& descriptor = contentsDescriptor(kind);
    db.exec(QStringLiteral("CREATE TABLE ") + kRegistry +
            QStringLiteral(" (\"ДискID\" TEXT COLLATE NOCASE PRIMARY KEY NOT NULL"
                           " CHECK (length(\"ДискID\") BETWEEN 1 AND 64))"));
    TableDef rows{descriptor.rowsTable, {{QStringLiteral("ДискID"), FieldType::Text, 64}}};
    rows.fields += listFields(kind);
    rows.relations = {{QStringLiteral("Список"), QStringLiteral("ДискID"), QStringLiteral("Списки"),
                       QStringLiteral("ДискID"), true, true}};
    db.exec(createTableSql(rows));
    db.exec(QStringLiteral("CREATE INDEX ") + quoted(descriptor.rowsTable + QStringLiteral("ПоДиску")) +
            QStringLiteral(" ON ") + quoted(descriptor.rowsTable) + QStringLiteral(" (\"ДискID\")"));
    createSearchIndex(db, kind);
}

bool ContentsLists::exists(const QString& id) const
{
    return m_db.scalar(QStringLiteral("SELECT count(*) FROM ") + kRegistry +
                           QStringLiteral(" WHERE \"ДискID\" = ?"),
                       {id})
               .toInt() > 0;
}

void ContentsLists::create(const QString& id) const
{
    if (exists(id)) {
        throw AppError(err::TableExists,
                       QStringLiteral("Table '") + id + QStringLiteral("' already exists."));
    }
    m_db.exec(QStringLiteral("INSERT INTO ") + kRegistry + QStringLiteral(" (\"ДискID\") VALUES (?)"), {id});
}

void ContentsLists::drop(const QString& id) const
{
    if (!exists(id)) {
        throw AppError(err::ItemNotFound, QStringLiteral("Item not found in this collection: ") + id);
    }
    // The rows go with their registry entry (the relation cascades).
    m_db.exec(QStringLiteral("DELETE FROM ") + kRegistry + QStringLiteral(" WHERE \"ДискID\" = ?"), {id});
}

QStringList ContentsLists::ids() const
{
    return m_db.texts(QStringLiteral("SELECT \"ДискID\" FROM ") + kRegistry + QStringLiteral(" ORDER BY 1"));
}

int ContentsLists::rowCount(const QString& id) const
{
    return m_db
        .scalar(QStringLiteral("SELECT count(*) FROM ") + quoted(m_descriptor.rowsTable) +
                    QStringLiteral(" WHERE \"ДискID\" = ?"),
                {id})
        .toInt();
}

} // namespace vinora
