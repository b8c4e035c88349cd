// Settings files from outside (vinora.ini, query.ini, skipcd.ini as a user or another
// program left them): reading any key and writing one must neither crash nor lose the rest.
#include "frame/IniFile.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <cstdint>
#include <cstdlib>

using namespace vinora;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static QTemporaryDir folder;
    const QString path = QDir(folder.path()).filePath(QStringLiteral("fuzz.ini"));
    {
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
            return 0;
        }
        file.write(reinterpret_cast<const char*>(data), qint64(size));
    }
    const IniFile ini(path);
    for (const char* section : {"Option", "VirtualDrives", "Window", "1"}) {
        for (const char* key : {"Drive", "Image1", "Count", "Height", "Name"}) {
            (void)ini.read(QString::fromLatin1(section), QString::fromLatin1(key), 255);
            (void)ini.number(QString::fromLatin1(section), QString::fromLatin1(key), 15);
        }
    }
    const QString value = QStringLiteral("значение \"в кавычках\"");
    ini.write(QStringLiteral("Fuzz"), QStringLiteral("Key"), value);
    if (ini.read(QStringLiteral("Fuzz"), QStringLiteral("Key"), 255) != value) {
        std::abort(); // a written value must read back as it was written
    }
    ini.removeSection(QStringLiteral("Fuzz"));
    return 0;
}
