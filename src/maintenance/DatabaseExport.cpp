#include "maintenance/DatabaseExport.h"

#include "frame/AppContext.h"
#include "store/DatabaseCopy.h"
#include "store/DatabaseLock.h"
#include "store/Db.h"
#include "store/FileErrors.h"
#include "store/FileReplace.h"
#include "store/Schema.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace vinora {
namespace {

const QStringList kSetNames = {QStringLiteral("vinora.db"), QStringLiteral("vinora_files.db"),
                               QStringLiteral("vinora_tracks.db")};

bool leftOut(const QString& field)
{
    return field == u"Должник" || field == u"РезервнаяКопия" || field.startsWith(QStringLiteral("ДискID"));
}

QList<TableDef> buildExportTables()
{
    static const QStringList kept = {QStringLiteral("_Информация"), QStringLiteral("Аудио"),
                                     QStringLiteral("Стиль"),       QStringLiteral("Компьютер"),
                                     QStringLiteral("Описание"),    QStringLiteral("DVD"),
                                     QStringLiteral("Жанр"),        QStringLiteral("ФорматЗвука")};
    QList<TableDef> tables;
    for (const TableDef& table : mainTables()) {
        if (!kept.contains(table.name)) {
            continue;
        }
        TableDef copy = table;
        copy.fields.clear();
        for (const FieldDef& field : table.fields) {
            if (leftOut(field.name)) {
                continue;
            }
            FieldDef kept = field;
            // The DVD's date of change takes no default in an export.
            if (table.name == u"DVD" && field.name == u"ДатаИзменения") {
                kept.defaultSql.clear();
            }
            copy.fields.append(kept);
        }
        copy.initialRows.clear(); // the rows come from the database
        tables.append(copy);
    }
    return tables;
}

QString fieldList(const TableDef& table)
{
    QStringList fields;
    for (const FieldDef& field : table.fields) {
        fields.append(quoted(field.name));
    }
    return fields.join(QStringLiteral(", "));
}

// Removes the partial files of a failed copy.
struct PartialFiles
{
    QStringList paths;
    ~PartialFiles()
    {
        for (const QString& path : paths) {
            QFile::remove(path);
        }
    }
};

} // namespace

const QList<TableDef>& exportTables()
{
    static const QList<TableDef> tables = buildExportTables();
    return tables;
}

void SaveDB(const QString& mainPath, const QString& path)
{
    const QString folder = QFileInfo(path).path();
    checkWritableFolder(folder);
    PartialFiles partial{{partialPathFor(path)}};
    removeFile(partial.paths.first());
    {
        const Db db(partial.paths.first(), Db::Access::Create);
        for (const TableDef& table : exportTables()) {
            db.exec(createTableSql(table));
        }
        db.attach(mainPath, QStringLiteral("src"), Db::Access::ReadOnly);
        Transaction transaction(db);
        // The dictionaries before the discs that refer to them; the keys as they are.
        QList<const TableDef*> order;
        for (const TableDef& table : exportTables()) {
            (table.relations.isEmpty() ? order.prepend(&table) : order.append(&table));
        }
        for (const TableDef* table : order) {
            const QString fields = fieldList(*table);
            const bool info = table->name == u"_Информация";
            db.exec(QStringLiteral("INSERT INTO main.") + quoted(table->name) + u'(' + fields +
                    QStringLiteral(") SELECT ") + fields + QStringLiteral(" FROM src.") +
                    quoted(table->name) +
                    (info ? QStringLiteral(" ORDER BY rowid LIMIT 1") : QStringLiteral(" ORDER BY 1")));
        }
        transaction.commit();
    }
    replaceTogether({{partial.paths.first(), path}});
    partial.paths.clear();
}

QStringList databaseSetIn(const QString& folder)
{
    QStringList present;
    for (const QString& name : kSetNames) {
        if (QFileInfo::exists(QDir(folder).filePath(name))) {
            present.append(name);
        }
    }
    return present;
}

bool samePlace(const QString& a, const QString& b)
{
    const QString first = QFileInfo(a).canonicalFilePath();
    return !first.isEmpty() ? first == QFileInfo(b).canonicalFilePath()
                            : QDir::cleanPath(QFileInfo(a).absoluteFilePath()) ==
                                  QDir::cleanPath(QFileInfo(b).absoluteFilePath());
}

void saveDatabaseSet(const AppContext& ctx, const QString& folder)
{
    checkWritableFolder(folder);
    auto alone = DatabaseLock::tryAcquire(ctx.MainDBPath, DatabaseLock::Mode::Exclusive);
    if (!alone) {
        throw databasesBusyError();
    }
    const QStringList databases = {ctx.MainDBPath, ctx.FilesDBPath, ctx.TracksDBPath};
    PartialFiles partial;
    for (const QString& name : kSetNames) {
        partial.paths.append(partialPathFor(QDir(folder).filePath(name)));
    }
    for (qsizetype i = 0; i < databases.size(); ++i) {
        removeFile(partial.paths[i]);
        copyDatabase(databases[i], partial.paths[i]);
    }
    QList<std::pair<QString, QString>> moves;
    for (qsizetype i = 0; i < databases.size(); ++i) {
        moves.append({partial.paths[i], QDir(folder).filePath(kSetNames[i])});
    }
    replaceTogether(moves);
    partial.paths.clear();
}

} // namespace vinora
