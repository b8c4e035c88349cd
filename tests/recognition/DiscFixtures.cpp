#include "DiscFixtures.h"

#include "support/TestFolders.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTest>

namespace vinora::test {

QByteArray runTool(const QString& program, const QStringList& arguments, int* exitCode)
{
    QProcess process;
    process.start(program, arguments);
    if (!process.waitForStarted(10000) || !process.waitForFinished(120000)) {
        qFatal("cannot run %s", qPrintable(program));
    }
    if (exitCode) {
        *exitCode = process.exitCode();
    } else if (process.exitCode() != 0) {
        qFatal("%s failed: %s", qPrintable(program), process.readAllStandardError().constData());
    }
    return process.readAllStandardOutput();
}

quint32 laneChecksum(const QByteArray& sector, bool reversed)
{
    quint8 sums[4] = {0, 0, 0, 0};
    for (int i = 0; i < sector.size(); ++i) {
        sums[i % 4] += static_cast<quint8>(sector[i]);
    }
    return reversed ? (quint32(sums[3]) << 24 | quint32(sums[2]) << 16 | quint32(sums[1]) << 8 | sums[0])
                    : (quint32(sums[0]) << 24 | quint32(sums[1]) << 16 | quint32(sums[2]) << 8 | sums[3]);
}

QByteArray sectorOf(const QString& image, qint64 lsn)
{
    QFile file(image);
    if (!file.open(QIODevice::ReadOnly) || !file.seek(lsn * 2048)) {
        return {};
    }
    return file.read(2048);
}

DiscFixtures::DiscFixtures(QString folder) : m_folder(std::move(folder)) {}

QString DiscFixtures::path(const QString& name) const
{
    return QDir(m_folder).filePath(name);
}

QString DiscFixtures::sourceTree()
{
    const QString root = path("tree");
    if (!QDir(root).exists()) {
        writeFile(root + "/readme.txt", "root file\n");
        writeFile(root + "/Музыка/Альбом/трек 01.mp3", QByteArray(3000, 'm'));
        writeFile(root + "/DOCS/guide.doc", QByteArray(1024000, 'd'));
        writeFile(root + "/DOCS/small.txt", QByteArray(100, 's'));
    }
    return root;
}

QString DiscFixtures::iso(const QString& name, const QStringList& options)
{
    const QString image = path(name);
    runTool("genisoimage", QStringList{"-quiet", "-input-charset", "utf-8", "-o", image} + options +
                               QStringList{sourceTree()});
    return image;
}

QString DiscFixtures::rockRidgeIso(const QString& name, const QList<std::pair<QString, QByteArray>>& files)
{
    const QString image = path(name);
    QFile::remove(image);
    // The names are given to xorriso as paths inside the image: no file of the local file
    // system has to bear them.
    QStringList arguments{"-outdev", image, "-volid", "LONGNAMES", "-joliet", "off", "-rockridge", "on"};
    for (int i = 0; i < files.size(); ++i) {
        const QString source = path(name + QString(".content/%1").arg(i));
        writeFile(source, files[i].second);
        arguments += QStringList{"-map", source, "/" + files[i].first};
    }
    runTool("xorriso", arguments);
    return image;
}

QString DiscFixtures::twoSessionIso(const QString& name)
{
    const QString image = path(name);
    QFile::remove(image);
    runTool("xorriso", {"-dev", image, "-volid", "FIRST", "-map", sourceTree(), "/", "-commit"});
    writeFile(path("second/added.txt"), "added in the second session\n");
    runTool("xorriso", {"-dev", image, "-volid", "SECOND", "-map", path("second"), "/second", "-commit"});
    return image;
}

QString DiscFixtures::udf(const QString& name, const QString& label, const QString& revision)
{
    const QString image = path(name);
    QFile file(image);
    file.open(QIODevice::WriteOnly);
    file.resize(8 * 1024 * 1024);
    file.close();
    runTool("mkudffs",
            {"--label=" + label, "--blocksize=2048", "--media-type=hd", "--udfrev=" + revision, image});
    return image;
}

QString DiscFixtures::audioCue(const QString& name, const QList<int>& trackSectors, const QString& dataImage)
{
    constexpr int kRawSector = 2352;
    const QString bin = path(name + ".bin");
    QFile file(bin);
    file.open(QIODevice::WriteOnly);
    QString cue = "FILE \"" + name + ".bin\" BINARY\n";
    qint64 position = 0;
    const auto index = [](qint64 sectors) {
        return QString::asprintf("%02lld:%02lld:%02lld", sectors / 4500, sectors / 75 % 60, sectors % 75);
    };
    for (int i = 0; i < trackSectors.size(); ++i) {
        cue += QString::asprintf("  TRACK %02d AUDIO\n", i + 1) + "    INDEX 01 " + index(position) + "\n";
        position += trackSectors[i];
    }
    file.resize(position * kRawSector); // silence, kept sparse
    if (!dataImage.isEmpty()) {
        cue += QString::asprintf("  TRACK %02d MODE1/2352\n", int(trackSectors.size()) + 1) +
               "    INDEX 01 " + index(position) + "\n";
        file.seek(position * kRawSector);
        QFile data(dataImage);
        data.open(QIODevice::ReadOnly);
        const QByteArray sync("\x00\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\x00", 12);
        while (!data.atEnd()) {
            QByteArray raw = sync + QByteArray("\x00\x00\x00\x01", 4) + data.read(2048);
            raw.append(QByteArray(kRawSector - raw.size(), '\0'));
            file.write(raw);
        }
    }
    file.close();
    const QString cuePath = path(name + ".cue");
    writeFile(cuePath, cue.toUtf8());
    return cuePath;
}

} // namespace vinora::test
