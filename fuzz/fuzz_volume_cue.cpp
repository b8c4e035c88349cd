// CUE sheets from outside, beside a small BIN of a data track. Every sheet goes through our
// own checks; one in eight, and every sheet they pass, also through the whole guarded path
// (the probe in a child process, then libcdio, identity and walk).
#include "fuzz_volume_common.h"
#include "recognition/ImageChecks.h"
#include "recognition/Medium.h"

#include <QFileInfo>

using namespace vinora;

namespace {

// A BIN of raw sectors that the sheets name "data.bin": a small ISO volume in mode 1.
QString binFolder()
{
    static QTemporaryDir folder;
    static const bool made = [] {
        QFile bin(QDir(folder.path()).filePath(QStringLiteral("data.bin")));
        if (!bin.open(QIODevice::WriteOnly)) {
            std::abort();
        }
        for (int lsn = 0; lsn < 40; ++lsn) {
            QByteArray raw("\x00\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\x00", 12);
            raw += QByteArray("\x00\x02\x00\x01", 4);
            QByteArray user(2048, '\0');
            if (lsn == 16) {
                user.replace(0, 6,
                             QByteArray("\x01"
                                        "CD001",
                                        6));
                user[6] = 1;
            } else if (lsn == 17) {
                user.replace(0, 6,
                             QByteArray("\xFF"
                                        "CD001",
                                        6));
                user[6] = 1;
            }
            raw += user;
            raw += QByteArray(2352 - raw.size(), '\0');
            bin.write(raw);
        }
        return true;
    }();
    (void)made;
    return folder.path();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    fuzzing::capProbes();
    static quint64 inputs = 0;
    const QString folder = binFolder();
    const QByteArray sheet = QByteArray(reinterpret_cast<const char*>(data), qsizetype(size));
    const bool sound = cueLooksSound(sheet, folder);
    if (!sound && ++inputs % 8 != 0) {
        return 0;
    }
    static quint64 count = 0;
    const QString path = QDir(folder).filePath(QStringLiteral("sheet%1.cue").arg(++count));
    {
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly)) {
            std::abort();
        }
        file.write(sheet);
    }
    const VolumeInfo info = readVolumeInfo(path);
    if (!sound && (info.ok || openMedium(path))) {
        std::abort(); // a sheet the checks refuse is no disc
    }
    fuzzing::checkIdentity(info);
    if (const auto volume = openVolumeReader(path)) {
        fuzzing::checkWalk(*volume);
    }
    QFile::remove(path);
    return 0;
}
