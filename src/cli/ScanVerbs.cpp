// The file list of a data disc, stored for a computer disc of the catalogue.
#include "cli/Cli.h"
#include "contents/DiscScan.h"
#include "frame/AppContext.h"
#include "recognition/DiscIdentity.h"
#include "recognition/VolumeIdentity.h"
#include "store/DatabaseLock.h"
#include "store/Db.h"

#include <QCommandLineParser>
#include <QFileInfo>
#include <QJsonObject>

namespace vinora::cli {
namespace {

const QCommandLineOption
    kNumber(QStringLiteral("number"),
            QStringLiteral("The computer disc of the catalogue that gets the list (required)."),
            QStringLiteral("N"));
const QCommandLineOption
    kDisc(QStringLiteral("disc"),
          QStringLiteral("The place of the disc in the set of disc N, 1 to 6 (default 1)."),
          QStringLiteral("K"));
const QCommandLineOption kFilesInRoot(QStringLiteral("files-in-root"),
                                      QStringLiteral("List the files of the root."));
const QCommandLineOption kFolders(QStringLiteral("folders"),
                                  QStringLiteral("List the folders and their files."));
const QCommandLineOption kFoldersOnly(QStringLiteral("folders-only"),
                                      QStringLiteral("List the folders without their files."));
const QCommandLineOption kLowerCase(QStringLiteral("lower-case"),
                                    QStringLiteral("Store names in lower case."));
const QCommandLineOption kHidden(QStringLiteral("hidden"), QStringLiteral("List hidden files too."));
const QCommandLineOption kMp3(QStringLiteral("mp3"),
                              QStringLiteral("Store the artist and title of MP3 files as their comment."));
const QCommandLineOption kFilterExclude(QStringLiteral("filter-exclude"),
                                        QStringLiteral("Leave out the names of the first name filter."));
const QCommandLineOption kFilterInclude(QStringLiteral("filter-include"),
                                        QStringLiteral("Keep only the names of the second name filter."));
const QCommandLineOption kBind(QStringLiteral("bind"),
                               QStringLiteral("Bind the disc to the record as well."));
const QCommandLineOption
    kNewId(QStringLiteral("new-id"),
           QStringLiteral("When another computer disc owns a list of this disc's id, store\n"
                          "this one under a new id instead of refusing."));
const QCommandLineOption kJson(QStringLiteral("json"), QStringLiteral("Print one JSON object."));

// A whole number from `low` to `high` given to `option`.
int numberOption(const QCommandLineParser& parser, const QCommandLineOption& option, int low, int high)
{
    return wholeNumber(parser.value(option), QStringLiteral("--") + option.names().constFirst(), low, high);
}

ScanRequest requestOf(const QCommandLineParser& parser)
{
    if (!parser.isSet(kNumber)) {
        throw Failure{BadUsage, QStringLiteral("scan needs --number N")};
    }
    if (parser.isSet(kFilterExclude) && parser.isSet(kFilterInclude)) {
        throw Failure{BadUsage, QStringLiteral("--filter-exclude and --filter-include exclude each other")};
    }
    ScanRequest request;
    request.drive = parser.positionalArguments().at(0);
    request.number = numberOption(parser, kNumber, 1, 32767);
    request.slot = parser.isSet(kDisc) ? numberOption(parser, kDisc, 1, 6) : 1;
    request.options = ScanOptions{parser.isSet(kFilesInRoot),
                                  parser.isSet(kFolders),
                                  parser.isSet(kFoldersOnly),
                                  parser.isSet(kLowerCase),
                                  parser.isSet(kHidden),
                                  parser.isSet(kMp3),
                                  parser.isSet(kFilterExclude)   ? std::optional(FilterTable::Exclude)
                                  : parser.isSet(kFilterInclude) ? std::optional(FilterTable::Include)
                                                                 : std::nullopt};
    request.share = parser.isSet(kBind);
    return request;
}

void printReadError()
{
    tell(QStringLiteral("Ошибка чтения диска! Некоторые файлы не будут добавлены в список."));
}

int scan(AppContext& ctx, const QCommandLineParser& parser)
{
    ScanRequest request = requestOf(parser);
    const bool newId = parser.isSet(kNewId);
    ctx.resolveDatabasePaths();
    requireDatabase(ctx.MainDBPath, {QStringLiteral("Компьютер")});
    requireDatabase(ctx.FilesDBPath, {QStringLiteral("Списки"), QStringLiteral("Файлы")});
    // Held to the end: the window's maintenance waits for us, and we wait for it.
    const DatabaseLock lock = DatabaseLock::acquire(ctx.MainDBPath, DatabaseLock::Mode::Shared, [] {
        tell(QStringLiteral("waiting for the program to finish maintenance of the databases..."));
    });
    onDatabase(ctx.MainDBPath, [&] {
        const Db db(ctx.MainDBPath, Db::Access::ReadOnly);
        if (db.scalar(QStringLiteral("SELECT COUNT(*) FROM Компьютер WHERE Номер = ?"), {request.number})
                .toInt() == 0) {
            throw Failure{Refused,
                          QStringLiteral("no computer disc number ") + QString::number(request.number)};
        }
    });
    const VolumeInfo volume = readVolumeInfo(request.drive);
    if (volume.ok) {
        request.kind = decideKind(ctx, volume).value_or(QString());
        request.id = SerialToID(volume.serial);
    }
    ScanOutcome outcome;
    onDatabase(ctx.FilesDBPath,
               [&] { outcome = prepareScan(ctx, request, [newId](const QString&) { return newId; }); });
    if (outcome.id.isEmpty()) {
        throw Failure{Refused,
                      !outcome.refusal.isEmpty() ? outcome.refusal
                      : request.kind == u"DVD"
                          ? QStringLiteral("a DVD has no file list")
                          : QStringLiteral("a computer disc owns the list of this disc already; --new-id "
                                           "stores another one")};
    }
    onDatabase(ctx.FilesDBPath,
               [&] { outcome.rows = runScan(ctx, request, outcome.id, {}, printReadError); });
    onDatabase(ctx.MainDBPath,
               [&] { CreateLinkDiskID(ctx, request.number, request.slot, outcome.id, request.share); });
    if (parser.isSet(kJson)) {
        printJson(QJsonObject{{QStringLiteral("id"), outcome.id},
                              {QStringLiteral("rows"), outcome.rows},
                              {QStringLiteral("number"), request.number},
                              {QStringLiteral("disc"), request.slot}});
        return Done;
    }
    print(QStringLiteral("id: ") + outcome.id);
    print(QStringLiteral("rows: ") + QString::number(outcome.rows));
    return Done;
}

} // namespace

QList<Verb> scanVerbs()
{
    return {
        {QStringLiteral("scan"),
         QStringLiteral("Store the file list of the data disc in a drive for a computer disc"),
         {{QStringLiteral("DRIVE"), QStringLiteral("A device node such as /dev/sr0, or a disc image.")}},
         {kNumber, kDisc, kFilesInRoot, kFolders, kFoldersOnly, kLowerCase, kHidden, kMp3, kFilterExclude,
          kFilterInclude, kBind, kNewId, kJson},
         QStringLiteral(
             "The options are those of the scan window; --files-in-root or --folders is needed.\n"
             "The list is tied to disc K of computer disc N. The databases must exist (the program\n"
             "makes them when it starts); a scan waits while the program compacts or restores them.\n"
             "Without --json, two lines: \"id: \" and the list's id, \"rows: \" and the rows stored."),
         scan},
    };
}

} // namespace vinora::cli
