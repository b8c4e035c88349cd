// The databases' maintenance for scripts: import from another copy, and (with the wizard's
// routines) backup, restore, compaction, the check and repair, and the database export.
#include "cli/Cli.h"
#include "exchange/Import.h"
#include "frame/AppContext.h"
#include "maintenance/Backup.h"
#include "maintenance/DatabaseCheck.h"
#include "maintenance/DatabaseExport.h"
#include "maintenance/MaintenanceTexts.h"
#include "maintenance/Reanimation.h"
#include "store/BackupSet.h"
#include "store/Compaction.h"
#include "store/DatabaseLock.h"
#include "store/FileErrors.h"

#include <QCommandLineParser>
#include <QFileInfo>

namespace vinora::cli {
namespace {

const QCommandLineOption kAudio(QStringLiteral("ad"), QStringLiteral("Import the audio discs."));
const QCommandLineOption kComputer(QStringLiteral("pc"), QStringLiteral("Import the computer discs."));
const QCommandLineOption kDvd(QStringLiteral("dvd"), QStringLiteral("Import the DVDs."));
const QCommandLineOption
    kTracks(QStringLiteral("tracks"),
            QStringLiteral("With --ad: bring the track lists of the audio discs along."));
const QCommandLineOption
    kFiles(QStringLiteral("files"),
           QStringLiteral("With --pc: bring the file lists of the computer discs along."));
const QCommandLineOption
    kFix(QStringLiteral("fix"),
         QStringLiteral("Mend what can be mended: the broken links of the catalogue rows and "
                        "a search index out of step."));
const QCommandLineOption kSkipDoubles(QStringLiteral("skip-doubles"),
                                      QStringLiteral("Leave out the discs the catalogue has already (same "
                                                     "title, and album for audio discs)."));

// Held while the verb writes: the window's maintenance waits for us, and we wait for it.
DatabaseLock writerLock(const AppContext& ctx)
{
    return DatabaseLock::acquire(ctx.MainDBPath, DatabaseLock::Mode::Shared, [] {
        tell(QStringLiteral("waiting for the program to finish maintenance of the databases..."));
    });
}

void requireLocalDatabases(AppContext& ctx)
{
    ctx.resolveDatabasePaths();
    requireDatabase(ctx.MainDBPath,
                    {QStringLiteral("Аудио"), QStringLiteral("Компьютер"), QStringLiteral("DVD")});
    requireDatabase(ctx.FilesDBPath, {QStringLiteral("Списки"), QStringLiteral("Файлы")});
    requireDatabase(ctx.TracksDBPath, {QStringLiteral("Списки"), QStringLiteral("Треки")});
}

// The routines of the wizard end here with the statuses of the tool: another process at work
// is a refusal, the file system's troubles and damaged databases are bad files.
void onMaintenance(const QString& path, const std::function<void()>& work)
{
    try {
        work();
    } catch (const AppError& error) {
        if (error.number() == err::DatabasesBusy) {
            throw Failure{Refused, error.description()};
        }
        if (const QString text = fileTroubleText(error); !text.isEmpty()) {
            throw Failure{BadFile, text + QStringLiteral(" (") + error.description() + u')'};
        }
        throw databaseFailure(path, error);
    }
}

QString lineOf(const QString& text)
{
    return QString(text).replace(u'\n', u' ');
}

int backup(AppContext& ctx, const QCommandLineParser&)
{
    requireLocalDatabases(ctx);
    onMaintenance(ctx.MainDBPath, [&] { createBackup(ctx); });
    print(QStringLiteral("Создание/обновление резервной копии данных успешно завершено."));
    return Done;
}

int restore(AppContext& ctx, const QCommandLineParser&)
{
    ctx.resolveDatabasePaths();
    if (!backupSetComplete(ctx)) {
        throw Failure{Refused, QStringLiteral("ОШИБКА. Файл резервной копии данных не найден!")};
    }
    onMaintenance(ctx.MainDBPath, [&] { recoverBackup(ctx); });
    print(QStringLiteral("Резервная копия данных успешно восстановлена."));
    return Done;
}

int compact(AppContext& ctx, const QCommandLineParser&)
{
    requireLocalDatabases(ctx);
    const qint64 before = databasesSize(ctx);
    bool compacted = false;
    onMaintenance(ctx.MainDBPath, [&] { compacted = compactDatabases(ctx); });
    if (!compacted) {
        throw Failure{Refused, databasesBusyError().description()};
    }
    print(compactionMessage(before, databasesSize(ctx)));
    return Done;
}

int check(AppContext& ctx, const QCommandLineParser& parser)
{
    ctx.resolveDatabasePaths();
    const bool fix = parser.isSet(kFix);
    int status = Done;
    for (const DatabaseCheck& database : checkDatabases(ctx)) {
        const QString name = QFileInfo(database.path).fileName();
        if (database.problems.isEmpty()) {
            print(name + QStringLiteral(": ok"));
            continue;
        }
        if (database.searchIndexOutOfStep && fix) {
            onMaintenance(database.path, [&] { rebuildSearchIndexOf(ctx, database.path); });
            print(name + QStringLiteral(": the search index was out of step with the rows; rebuilt"));
            continue;
        }
        for (const QString& problem : database.problems) {
            print(name + QStringLiteral(": ") + problem);
        }
        status = std::max(status, database.searchIndexOutOfStep ? int(Refused) : int(BadFile));
    }
    if (status == BadFile) {
        tell(QStringLiteral("a database is damaged; the backup set can take its place (vinora-cli restore)"));
        return status;
    }
    const std::pair<int, const char*> kinds[] = {{1, "Компьютерные диски"}, {2, "Аудио диски"}};
    for (const auto& [kind, title] : kinds) {
        RepairReport report;
        onMaintenance(ctx.MainDBPath, [&] { report = Reanimation(ctx, kind, fix); });
        for (const QString& found : report.found) {
            print(found);
        }
        const QString heading = QString::fromUtf8(title) + QStringLiteral(": ");
        if (fix || report.errors == 0) {
            print(heading + lineOf(reanimationMessage(report)));
        } else {
            print(heading + QStringLiteral("найдено ошибок: ") + QString::number(report.errors));
            status = Refused;
        }
    }
    return status;
}

int exportDb(AppContext& ctx, const QCommandLineParser& parser)
{
    requireLocalDatabases(ctx);
    const QString path = QFileInfo(parser.positionalArguments().at(0)).absoluteFilePath();
    for (const QString& local : {ctx.MainDBPath, ctx.FilesDBPath, ctx.TracksDBPath}) {
        if (samePlace(path, local)) {
            throw Failure{Refused,
                          QStringLiteral("Вы попытались экспортировать базу данных по верх локальной.")};
        }
    }
    onMaintenance(ctx.MainDBPath, [&] { SaveDB(ctx.MainDBPath, path); });
    print(QStringLiteral("База данных успешно cохранена в файл:\n") + path);
    return Done;
}

int import(AppContext& ctx, const QCommandLineParser& parser)
{
    ImportChoice choice;
    choice.audio = parser.isSet(kAudio);
    choice.computer = parser.isSet(kComputer);
    choice.dvd = parser.isSet(kDvd);
    choice.tracks = choice.audio && parser.isSet(kTracks);
    choice.files = choice.computer && parser.isSet(kFiles);
    choice.skipDoubles = parser.isSet(kSkipDoubles);
    if (!choice.any()) {
        throw Failure{BadUsage,
                      QStringLiteral("Ни одна из категорий какталога не была выбрана! (--ad, --pc, --dvd)")};
    }
    requireLocalDatabases(ctx);
    const ImportSources sources = importSources(parser.positionalArguments().at(0), choice);
    if (const QString refusal = sourceCheckText(ctx, sources, choice); !refusal.isEmpty()) {
        throw Failure{Refused, refusal};
    }
    const DatabaseLock lock = writerLock(ctx);
    try {
        const ImportCounts counts = importCatalogues(ctx, sources, choice, {});
        print(importSummary(choice, counts));
    } catch (const ImportFailure& failure) {
        throw Failure{BadFile, importFailureText(choice, failure) + QStringLiteral("\n(") +
                                   failure.error.description() + u')'};
    }
    return Done;
}

} // namespace

QList<Verb> maintenanceVerbs()
{
    return {
        {QStringLiteral("import"),
         QStringLiteral("Merge the catalogues of another copy of the databases behind the last numbers"),
         {{QStringLiteral("FOLDER"),
           QStringLiteral("The folder of the other copy's vinora.db (or of a database export).")}},
         {kAudio, kComputer, kDvd, kTracks, kFiles, kSkipDoubles},
         QStringLiteral("The discs come in numbered after the last number of each catalogue; styles,\n"
                        "descriptions and genres are matched by their text. The other copy is only read.\n"
                        "Prints what came in."),
         import},
        {QStringLiteral("backup"),
         QStringLiteral("Make or update the backup set of the three databases"),
         {},
         {},
         QStringLiteral(
             "The set is backup_of_vinora.db, backup_of_vinora_files.db and backup_of_vinora_tracks.db\n"
             "in the application folder; it replaces the earlier set only once it is complete."),
         backup},
        {QStringLiteral("restore"),
         QStringLiteral("Put the backup set in place of the three databases"),
         {},
         {},
         QStringLiteral(
             "The three databases are restored together or not at all; the date of the last backup\n"
             "stays as the databases had it."),
         restore},
        {QStringLiteral("compact"),
         QStringLiteral("Give the free space of the three databases back to the disc"),
         {},
         {},
         QString(),
         compact},
        {QStringLiteral("check"),
         QStringLiteral("Check the three databases and the links of the catalogue rows to their lists"),
         {},
         {kFix},
         QStringLiteral(
             "Prints the engine's verdict on each database, then each disc whose Дисков is 0 or whose\n"
             "ДискID names a list that is not there. The status is 0 when nothing is wrong (or\n"
             "everything was mended with --fix), 1 when --fix would mend what was found, 3 when a\n"
             "database is damaged."),
         check},
        {QStringLiteral("export-db"),
         QStringLiteral("Write the catalogues alone into one database file for other users"),
         {{QStringLiteral("FILE"),
           QStringLiteral("The database file to write; one that stands there is replaced.")}},
         {},
         QStringLiteral(
             "The file holds the three catalogues with their styles, descriptions, genres and sound\n"
             "formats: no loans, no borrowers, no disc identities. vinora opens it as an external\n"
             "database; so does any SQLite tool."),
         exportDb},
    };
}

} // namespace vinora::cli
