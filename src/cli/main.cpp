// vinora-cli: the catalogue's disc access from the command line, for scripts.
//   vinora-cli drives             the drives, one per line (devices, then registered images)
//   vinora-cli add-image IMAGE    register a disc image as a drive
//   vinora-cli remove-image IMAGE forget a registered image (the file stays)
//   vinora-cli identify DRIVE     kind, id, label, file system, maximum length, serial
//   vinora-cli toc DRIVE          the table of contents, the CDDB disc id and query
// DRIVE is a device node or a disc image. The application folder is VINORA_HOME or the
// user's data folder, as for the program.
#include "app/Startup.h"
#include "cddb/DiscId.h"
#include "cli/CliPrompter.h"
#include "frame/AppContext.h"
#include "recognition/DiscIdentity.h"
#include "recognition/Drives.h"
#include "recognition/Medium.h"

#include <QCoreApplication>
#include <QFileInfo>
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
        "usage: vinora-cli drives | add-image IMAGE | remove-image IMAGE | identify DRIVE | toc DRIVE"));
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
    print(QStringLiteral("serial: ") + QStringLiteral("%1").arg(volume.serial, 8, 16, QLatin1Char('0')).toUpper());
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
    print(QStringLiteral("leadout %1 (%2)").arg(toc.leadoutPosition()).arg(framesToMsfText(toc.leadoutPosition())));
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
        return addVirtualDrive(ctx.ini(), image.absoluteFilePath()) ? 0 : fail(QStringLiteral("already registered"));
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
    return usage();
}
