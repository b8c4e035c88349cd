#include "recognition/MountPoints.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringList>

namespace vinora {
namespace {

// Mount tables write blanks, tabs, newlines and backslashes as octal escapes.
QString unescapeMountField(const QString& field)
{
    QByteArray out;
    const QByteArray bytes = field.toUtf8();
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        if (bytes[i] == '\\' && i + 3 < bytes.size()) {
            bool ok = false;
            const int code = bytes.mid(i + 1, 3).toInt(&ok, 8);
            if (ok) {
                out.append(static_cast<char>(code));
                i += 3;
                continue;
            }
        }
        out.append(bytes[i]);
    }
    return QString::fromUtf8(out);
}

QString canonical(const QString& path)
{
    const QString resolved = QFileInfo(path).canonicalFilePath();
    return resolved.isEmpty() ? path : resolved;
}

// The loop devices whose backing file is `image`.
QStringList loopDevicesOf(const QString& image)
{
    QStringList devices;
    const QDir block(QStringLiteral("/sys/block"));
    for (const QString& name :
         block.entryList({QStringLiteral("loop*")}, QDir::Dirs | QDir::NoDotAndDotDot)) {
        QFile backing(block.filePath(name + QStringLiteral("/loop/backing_file")));
        if (backing.open(QIODevice::ReadOnly) &&
            canonical(QString::fromUtf8(backing.readAll()).trimmed()) == image) {
            devices.append(QStringLiteral("/dev/") + name);
        }
    }
    return devices;
}

} // namespace

QString mountPointOf(const QString& drive, const QString& mountsTable)
{
    const QString target = canonical(drive);
    QStringList devices{target};
    if (QFileInfo(target).isFile()) {
        devices += loopDevicesOf(target);
    }
    for (const QString& line : mountsTable.split(u'\n', Qt::SkipEmptyParts)) {
        const QStringList fields = line.split(u' ');
        if (fields.size() < 2) {
            continue;
        }
        if (devices.contains(canonical(unescapeMountField(fields[0])))) {
            return unescapeMountField(fields[1]);
        }
    }
    return {};
}

QString mountPointOf(const QString& drive)
{
    QFile mounts(QStringLiteral("/proc/self/mounts"));
    if (!mounts.open(QIODevice::ReadOnly)) {
        return {};
    }
    return mountPointOf(drive, QString::fromUtf8(mounts.readAll()));
}

} // namespace vinora
