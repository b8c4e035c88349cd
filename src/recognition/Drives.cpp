#include "recognition/Drives.h"

#include "frame/IniFile.h"
#include "recognition/CdioMedium.h"

#include <QFile>
#include <cdio/cdio.h>

namespace vinora {
namespace {

const QString kVirtual = QStringLiteral("VirtualDrives");
constexpr int kPathBuffer = 4096;
constexpr int kMostImages = 99;

QString imageKey(int n)
{
    return QStringLiteral("Image") + QString::number(n);
}

// One change of the file: a failure part-way keeps the images registered before.
void writeImages(const IniFile& ini, const QStringList& images)
{
    ini.update([&](IniDocument& document) {
        document.removeSection(kVirtual);
        for (int i = 0; i < images.size(); ++i) {
            document.write(kVirtual, imageKey(i + 1), images[i]);
        }
    });
}

} // namespace

QStringList physicalDrives()
{
    silenceCdioLog();
    QStringList drives;
    char** devices = cdio_get_devices(DRIVER_DEVICE);
    for (char** device = devices; device != nullptr && *device != nullptr; ++device) {
        drives.append(QFile::decodeName(*device));
    }
    cdio_free_device_list(devices);
    return drives;
}

QStringList virtualDrives(const IniFile& ini)
{
    QStringList images;
    for (int n = 1; n <= kMostImages; ++n) {
        const QString path = ini.read(kVirtual, imageKey(n), kPathBuffer);
        if (path.isEmpty()) {
            break;
        }
        images.append(path);
    }
    return images;
}

QStringList GetCDDrives(const IniFile& ini)
{
    QStringList drives = physicalDrives();
    for (const QString& image : virtualDrives(ini)) {
        if (!drives.contains(image)) {
            drives.append(image);
        }
    }
    return drives;
}

bool addVirtualDrive(const IniFile& ini, const QString& imagePath)
{
    QStringList images = virtualDrives(ini);
    if (images.contains(imagePath) || images.size() >= kMostImages) {
        return false;
    }
    images.append(imagePath);
    writeImages(ini, images);
    return true;
}

bool removeVirtualDrive(const IniFile& ini, const QString& imagePath)
{
    QStringList images = virtualDrives(ini);
    if (!images.removeOne(imagePath)) {
        return false;
    }
    writeImages(ini, images);
    return true;
}

QString chosenDrive(const IniFile& ini, const QStringList& drives)
{
    const QString stored = ini.read(QStringLiteral("Option"), QStringLiteral("Drive"), kPathBuffer).trimmed();
    if (!stored.isEmpty() && drives.contains(stored)) {
        return stored;
    }
    return drives.value(0);
}

void setChosenDrive(const IniFile& ini, const QString& drive)
{
    ini.write(QStringLiteral("Option"), QStringLiteral("Drive"), drive);
}

} // namespace vinora
