// vinora-cli: the catalogue's disc access from the command line, for scripts.
//   vinora-cli drives             the drives, one per line (devices, then registered images)
//   vinora-cli add-image IMAGE    register a disc image as a drive
//   vinora-cli remove-image IMAGE forget a registered image (the file stays)
//   vinora-cli identify DRIVE     kind, id, label, file system, maximum length, serial
//   vinora-cli toc DRIVE          the table of contents, the CDDB disc id and query
//   vinora-cli scan DRIVE --number N [--disc K] [options]
//                                 stores the file list of the data disc in DRIVE for disc K
//                                 (1 unless given) of computer disc N; the options are those of
//                                 the scan dialog: --files-in-root --folders --folders-only
//                                 --lower-case --hidden --mp3 --filter-exclude --filter-include
//                                 --bind; --new-id answers Yes to a clash of ids
// DRIVE is a device node or a disc image. The application folder is VINORA_HOME or the
// user's data folder, as for the program.
#include "app/Startup.h"
#include "cddb/DiscId.h"
#include "cli/CliPrompter.h"
#include "contents/DiscScan.h"
#include "frame/AppContext.h"
#include "recognition/DiscIdentity.h"
#include "recognition/Drives.h"
#include "recognition/Medium.h"
#include "store/Db.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QLocale>
#include <QStringList>
#include <cstdio>

using namespace vinora;

namespace {

void print(const QString& line)
{
    std::printf("%s\n", line.toUtf8().constData());
}

int fail(const QString& message)
{
    std::fprintf(stderr, "vinora-cli: %s\n", message.toLocal8Bit().constData());
    return 1;
}

int usage()
{
    return fail(QStringLiteral(
        "usage: vinora-cli drives | add-image IMAGE | remove-image IMAGE | identify DRIVE | toc DRIVE | "
        "scan DRIVE --number N [--disc K] [options]"));
}

int noMedium(const QString& drive)
{
    return fail(QStringLiteral("no usable medium in ") + drive);
}

int identify(const AppContext& ctx, const QString& drive)
{
    const VolumeInfo volume = readVolumeInfo(drive);
    if (!volume.ok) {
        return noMedium(drive);
    }
    const std::optional<QString> kind = decideKind(ctx, volume);
    print(QStringLiteral("kind: ") + (kind ? *kind : QStringLiteral("?")));
    print(QStringLiteral("id: ") + SerialToID(volume.serial));
    print(QStringLiteral("label: ") + volume.label);
    print(QStringLiteral("fs: ") + volume.fsName);
    print(QStringLiteral("maxlen: ") + QString::number(volume.maxComponentLength));
    print(QStringLiteral("serial: ") +
          QStringLiteral("%1").arg(volume.serial, 8, 16, QLatin1Char('0')).toUpper());
    return 0;
}

int scan(AppContext& ctx, const QStringList& args)
{
    ScanRequest request;
    request.drive = args.value(1);
    request.options = ScanOptions{false, false, false, false, false, false, std::nullopt};
    bool newId = false;
    for (qsizetype i = 2; i < args.size(); ++i) {
        const QString& option = args[i];
        if ((option == u"--number" || option == u"--disc") && i + 1 < args.size()) {
            bool ok = false;
            const int value = args[++i].toInt(&ok);
            if (!ok || value <= 0) {
                return usage();
            }
            (option == u"--number" ? request.number : request.slot) = value;
        } else if (option == u"--files-in-root") {
            request.options.filesInCore = true;
        } else if (option == u"--folders") {
            request.options.scanDir = true;
        } else if (option == u"--folders-only") {
            request.options.scanDirOnly = true;
        } else if (option == u"--lower-case") {
            request.options.lowerCase = true;
        } else if (option == u"--hidden") {
            request.options.hidden = true;
        } else if (option == u"--mp3") {
            request.options.mp3 = true;
        } else if (option == u"--filter-exclude") {
            request.options.filter = FilterTable::Exclude;
        } else if (option == u"--filter-include") {
            request.options.filter = FilterTable::Include;
        } else if (option == u"--bind") {
            request.share = true;
        } else if (option == u"--new-id") {
            newId = true;
        } else {
            return usage();
        }
    }
    if (request.number <= 0 || request.slot > 6) {
        return usage();
    }
    {
        const Db db(ctx.MainDBPath, Db::Access::ReadOnly);
        if (db.scalar(QStringLiteral("SELECT COUNT(*) FROM Компьютер WHERE Номер = ?"), {request.number})
                .toInt() == 0) {
            return fail(QStringLiteral("no computer disc number ") + QString::number(request.number));
        }
    }
    const VolumeInfo volume = readVolumeInfo(request.drive);
    if (volume.ok) {
        request.kind = decideKind(ctx, volume).value_or(QString());
        request.id = SerialToID(volume.serial);
    }
    const ScanOutcome outcome = startScan(
        ctx, request, [newId](const QString&) { return newId; }, {},
        [] {
            std::fprintf(stderr, "vinora-cli: Ошибка чтения диска! Некоторые файлы не "
                                 "будут добавлены в список.\n");
        });
    if (!outcome.done) {
        return fail(
            !outcome.refusal.isEmpty() ? outcome.refusal
            : request.kind == u"DVD"
                ? QStringLiteral("a DVD has no file list")
                : QStringLiteral(
                      "a computer disc owns the list of this disc already; --new-id stores another one"));
    }
    print(QStringLiteral("id: ") + outcome.id);
    print(QStringLiteral("rows: ") + QString::number(outcome.rows));
    return 0;
}

int toc(const QString& drive)
{
    const std::unique_ptr<Medium> medium = openMedium(drive);
    if (!medium) {
        return noMedium(drive);
    }
    const Toc& toc = medium->toc();
    for (int i = 0; i < toc.tracks.size(); ++i) {
        const qint32 start = toc.trackPosition(i);
        const qint32 length = toc.trackLength(i);
        print(QStringLiteral("%1 %2 %3 (%4 %5) %6")
                  .arg(toc.tracks[i].number)
                  .arg(start)
                  .arg(length)
                  .arg(framesToMsfText(start), framesToMsfText(length),
                       toc.tracks[i].audio ? QStringLiteral("audio") : QStringLiteral("data")));
    }
    print(QStringLiteral("leadout %1 (%2)")
              .arg(toc.leadoutPosition())
              .arg(framesToMsfText(toc.leadoutPosition())));
    if (const auto disc = cddbDiscFromToc(toc)) {
        print(QStringLiteral("discid ") + disc->id);
        print(QStringLiteral("query ") + GetQueryString(*disc));
    }
    return 0;
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication app(argc, argv);
    // Numbers and dates as the program writes them.
    QLocale::setDefault(QLocale(QLocale::Russian, QLocale::Russia));
    const QStringList args = QCoreApplication::arguments().mid(1);
    if (args.isEmpty()) {
        return usage();
    }
    CliPrompter prompter;
    SystemClock clock;
    AppContext ctx(applicationFolder(), prompter, clock);
    const QString& command = args[0];
    if (command == u"drives" && args.size() == 1) {
        for (const QString& drive : GetCDDrives(ctx.ini())) {
            print(drive);
        }
        return 0;
    }
    if (command == u"add-image" && args.size() == 2) {
        const QFileInfo image(args[1]);
        if (!image.isFile()) {
            return fail(QStringLiteral("not an image file: ") + args[1]);
        }
        return addVirtualDrive(ctx.ini(), image.absoluteFilePath())
                   ? 0
                   : fail(QStringLiteral("already registered"));
    }
    if (command == u"remove-image" && args.size() == 2) {
        const QString path = QFileInfo(args[1]).absoluteFilePath();
        return removeVirtualDrive(ctx.ini(), path) ? 0 : fail(QStringLiteral("not registered: ") + path);
    }
    if (command == u"identify" && args.size() == 2) {
        return identify(ctx, args[1]);
    }
    if (command == u"toc" && args.size() == 2) {
        return toc(args[1]);
    }
    if (command == u"scan" && args.size() >= 3) {
        ctx.resolveDatabasePaths();
        return scan(ctx, args);
    }
    return usage();
}
