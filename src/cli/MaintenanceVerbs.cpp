// The databases' maintenance for scripts: import from another copy, and (with the wizard's
// routines) backup, restore, compaction, the check and repair, and the database export.
#include "cli/Cli.h"
#include "exchange/Import.h"
#include "frame/AppContext.h"
#include "store/DatabaseLock.h"

#include <QCommandLineParser>

namespace vinora::cli {
namespace {

const QCommandLineOption kAudio(QStringLiteral("ad"), QStringLiteral("Import the audio discs."));
const QCommandLineOption kComputer(QStringLiteral("pc"), QStringLiteral("Import the computer discs."));
const QCommandLineOption kDvd(QStringLiteral("dvd"), QStringLiteral("Import the DVDs."));
const QCommandLineOption kTracks(QStringLiteral("tracks"),
                                 QStringLiteral("With --ad: bring the track lists of the audio discs along."));
const QCommandLineOption kFiles(QStringLiteral("files"),
                                QStringLiteral("With --pc: bring the file lists of the computer discs along."));
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
    requireDatabase(ctx.MainDBPath, {QStringLiteral("Аудио"), QStringLiteral("Компьютер"), QStringLiteral("DVD")});
    requireDatabase(ctx.FilesDBPath, {QStringLiteral("Списки"), QStringLiteral("Файлы")});
    requireDatabase(ctx.TracksDBPath, {QStringLiteral("Списки"), QStringLiteral("Треки")});
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
        throw Failure{BadUsage, QStringLiteral("Ни одна из категорий какталога не была выбрана! (--ad, --pc, --dvd)")};
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
    };
}

} // namespace vinora::cli
