#include "recognition/ImageFileMedium.h"

namespace vinora {

std::unique_ptr<Medium> ImageFileMedium::open(const QString& path)
{
    std::unique_ptr<ImageFileMedium> medium(new ImageFileMedium(path));
    if (!medium->m_file.open(QIODevice::ReadOnly)) {
        return nullptr;
    }
    const qint64 sectors = medium->m_file.size() / kSectorSize;
    if (sectors <= 0 || sectors > std::numeric_limits<qint32>::max()) {
        return nullptr;
    }
    medium->m_toc.tracks = {TocTrack{1, 0, false}};
    medium->m_toc.leadoutLsn = static_cast<qint32>(sectors);
    return medium;
}

bool ImageFileMedium::readSector(qint32 lsn, Sector& out)
{
    if (lsn < 0 || lsn >= m_toc.leadoutLsn || !m_file.seek(qint64(lsn) * kSectorSize)) {
        return false;
    }
    return m_file.read(reinterpret_cast<char*>(out.data()), kSectorSize) == kSectorSize;
}

} // namespace vinora
