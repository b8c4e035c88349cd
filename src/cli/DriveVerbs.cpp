// The drives and the discs in them: the drive list, disc images registered as drives, the
// identity of a disc and its table of contents. None of these opens a database.
#include "cddb/DiscId.h"
#include "cli/Cli.h"
#include "frame/AppContext.h"
#include "recognition/DiscIdentity.h"
#include "recognition/Drives.h"
#include "recognition/Medium.h"
#include "recognition/VolumeIdentity.h"

#include <QCommandLineParser>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonObject>

namespace vinora::cli {
namespace {

const QCommandLineOption kJson(QStringLiteral("json"), QStringLiteral("Print one JSON object."));

Failure noMedium(const QString& drive)
{
    return {Refused, QStringLiteral("no usable medium in ") + drive};
}

int drives(AppContext& ctx, const QCommandLineParser&)
{
    for (const QString& drive : GetCDDrives(ctx.ini())) {
        print(drive);
    }
    return Done;
}

// The image as the settings keep it, once it is known to be a file that can be read.
QString readableImage(const QString& given)
{
    const QFileInfo image(given);
    if (!image.exists()) {
        throw Failure{Refused, QStringLiteral("no such file: ") + given};
    }
    if (!image.isFile()) {
        throw Failure{Refused, QStringLiteral("not an image file: ") + given};
    }
    QFile file(image.absoluteFilePath());
    if (!file.open(QIODevice::ReadOnly)) {
        throw Failure{BadFile, QStringLiteral("the image '") + image.absoluteFilePath() +
                                   QStringLiteral("' cannot be read (") + file.errorString() + u')'};
    }
    return image.absoluteFilePath();
}

Failure unwritableSettings(const AppContext& ctx)
{
    return {BadFile,
            QStringLiteral("the settings file '") + ctx.IniFilePath + QStringLiteral("' cannot be written")};
}

int addImage(AppContext& ctx, const QCommandLineParser& parser)
{
    const QString image = readableImage(parser.positionalArguments().at(0));
    const IniFile ini = ctx.ini();
    if (virtualDrives(ini).contains(image)) {
        throw Failure{Refused, QStringLiteral("already registered: ") + image};
    }
    bool added = false;
    onSettings(ctx.IniFilePath, [&] { added = addVirtualDrive(ini, image); });
    if (!added) {
        throw Failure{Refused, QStringLiteral("no room for another image: ") + image};
    }
    // The settings file says nothing of a failed write; reading it back does.
    if (!virtualDrives(ini).contains(image)) {
        throw unwritableSettings(ctx);
    }
    return Done;
}

int removeImage(AppContext& ctx, const QCommandLineParser& parser)
{
    const QString image = QFileInfo(parser.positionalArguments().at(0)).absoluteFilePath();
    const IniFile ini = ctx.ini();
    bool removed = false;
    onSettings(ctx.IniFilePath, [&] { removed = removeVirtualDrive(ini, image); });
    if (!removed) {
        throw Failure{Refused, QStringLiteral("not registered: ") + image};
    }
    if (virtualDrives(ini).contains(image)) {
        throw unwritableSettings(ctx);
    }
    return Done;
}

QString serialText(quint32 serial)
{
    return QStringLiteral("%1").arg(serial, 8, 16, QLatin1Char('0')).toUpper();
}

int identify(AppContext& ctx, const QCommandLineParser& parser)
{
    const QString drive = parser.positionalArguments().at(0);
    const VolumeInfo volume = readVolumeInfo(drive);
    if (!volume.ok) {
        throw noMedium(drive);
    }
    const std::optional<QString> kind = decideKind(ctx, volume);
    if (parser.isSet(kJson)) {
        printJson(QJsonObject{{QStringLiteral("drive"), drive},
                              {QStringLiteral("kind"), kind ? QJsonValue(*kind) : QJsonValue()},
                              {QStringLiteral("id"), SerialToID(volume.serial)},
                              {QStringLiteral("label"), volume.label},
                              {QStringLiteral("fs"), volume.fsName},
                              {QStringLiteral("maxlen"), static_cast<qint64>(volume.maxComponentLength)},
                              {QStringLiteral("serial"), serialText(volume.serial)}});
        return Done;
    }
    print(QStringLiteral("kind: ") + (kind ? *kind : QStringLiteral("?")));
    print(QStringLiteral("id: ") + SerialToID(volume.serial));
    print(QStringLiteral("label: ") + volume.label);
    print(QStringLiteral("fs: ") + volume.fsName);
    print(QStringLiteral("maxlen: ") + QString::number(volume.maxComponentLength));
    print(QStringLiteral("serial: ") + serialText(volume.serial));
    return Done;
}

int toc(AppContext&, const QCommandLineParser& parser)
{
    const QString drive = parser.positionalArguments().at(0);
    const std::unique_ptr<Medium> medium = openMedium(drive);
    if (!medium) {
        throw noMedium(drive);
    }
    const Toc& toc = medium->toc();
    const std::optional<CddbDisc> disc = cddbDiscFromToc(toc);
    if (parser.isSet(kJson)) {
        QJsonArray tracks;
        for (int i = 0; i < toc.tracks.size(); ++i) {
            const qint32 start = toc.trackPosition(i);
            const qint32 length = toc.trackLength(i);
            tracks.append(
                QJsonObject{{QStringLiteral("number"), toc.tracks[i].number},
                            {QStringLiteral("position"), start},
                            {QStringLiteral("length"), length},
                            {QStringLiteral("positionMsf"), framesToMsfText(start)},
                            {QStringLiteral("lengthMsf"), framesToMsfText(length)},
                            {QStringLiteral("type"),
                             toc.tracks[i].audio ? QStringLiteral("audio") : QStringLiteral("data")}});
        }
        printJson(
            QJsonObject{{QStringLiteral("tracks"), tracks},
                        {QStringLiteral("leadout"), toc.leadoutPosition()},
                        {QStringLiteral("leadoutMsf"), framesToMsfText(toc.leadoutPosition())},
                        {QStringLiteral("discid"), disc ? QJsonValue(disc->id) : QJsonValue()},
                        {QStringLiteral("query"), disc ? QJsonValue(GetQueryString(*disc)) : QJsonValue()}});
        return Done;
    }
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
    if (disc) {
        print(QStringLiteral("discid ") + disc->id);
        print(QStringLiteral("query ") + GetQueryString(*disc));
    }
    return Done;
}

const Verb::Argument kImage{QStringLiteral("IMAGE"),
                            QStringLiteral("A disc image: ISO, CUE/BIN, NRG or cdrdao TOC.")};
const Verb::Argument kDrive{QStringLiteral("DRIVE"),
                            QStringLiteral("A device node such as /dev/sr0, or a disc image.")};

} // namespace

QList<Verb> driveVerbs()
{
    return {
        {QStringLiteral("drives"),
         QStringLiteral("List the drives, one per line: devices, then registered images"),
         {},
         {},
         {},
         drives},
        {QStringLiteral("add-image"),
         QStringLiteral("Register a disc image as a drive"),
         {kImage},
         {},
         QStringLiteral("The image is kept by its absolute path in section VirtualDrives of vinora.ini."),
         addImage},
        {QStringLiteral("remove-image"),
         QStringLiteral("Forget a registered image (the file stays)"),
         {kImage},
         {},
         {},
         removeImage},
        {QStringLiteral("identify"),
         QStringLiteral("Kind, id, label, file system, maximum name length and serial of a disc"),
         {kDrive},
         {kJson},
         QStringLiteral("Without --json, one \"field: value\" line each for kind, id, label, fs, maxlen and\n"
                        "serial. The kind is AudioCD, PcCD or DVD, empty for a disc stored as n/a, ? when\n"
                        "the program would ask."),
         identify},
        {QStringLiteral("toc"),
         QStringLiteral("The table of contents, the CDDB disc id and query"),
         {kDrive},
         {kJson},
         QStringLiteral(
             "Without --json, a line per track: number, position, length (in frames of 1/75 s\n"
             "from time zero), both again as mm:ss:ff, audio or data; then \"leadout\", \"discid\"\n"
             "and \"query\" lines."),
         toc},
    };
}

} // namespace vinora::cli
