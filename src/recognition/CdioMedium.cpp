#include "recognition/CdioMedium.h"

#include <QFile>
#include <cdio/cdio.h>
#include <cdio/logging.h>
#include <cdio/read.h>
#include <mutex>

namespace vinora {
namespace {

void quietLog(cdio_log_level_t, const char*) {}

} // namespace

void silenceCdioLog()
{
    static const bool once = [] {
        cdio_log_set_handler(quietLog);
        return true;
    }();
    (void)once;
}

std::unique_ptr<Medium> CdioMedium::open(const QString& path, Source source)
{
    silenceCdioLog();
    const QByteArray name = QFile::encodeName(path);
    driver_id_t driver = DRIVER_DEVICE;
    switch (source) {
    case Source::Device:
        break;
    case Source::CueSheet:
        driver = DRIVER_BINCUE;
        break;
    case Source::Nero:
        driver = DRIVER_NRG;
        break;
    case Source::CdrdaoToc:
        driver = DRIVER_CDRDAO;
        break;
    }
    CdIo_t* cdio = nullptr;
    {
        // libcdio's image parsers are not safe to run in two threads at once, so two
        // threads opening images together (the drive watch and a command) could spoil each
        // other's reading of a sheet: opens go one at a time.
        static std::mutex opening;
        const std::lock_guard<std::mutex> lock(opening);
        cdio = cdio_open(name.constData(), driver);
    }
    if (cdio == nullptr) {
        return nullptr;
    }
    std::unique_ptr<CdioMedium> medium(new CdioMedium(cdio, path));
    if (!medium->readToc()) {
        return nullptr;
    }
    return medium;
}

CdioMedium::~CdioMedium()
{
    cdio_destroy(m_cdio);
}

bool CdioMedium::readToc()
{
    const track_t first = cdio_get_first_track_num(m_cdio);
    const track_t count = cdio_get_num_tracks(m_cdio);
    if (first == CDIO_INVALID_TRACK || count == CDIO_INVALID_TRACK || count == 0 || count > 99) {
        return false;
    }
    for (track_t t = first; t < first + count; ++t) {
        const lsn_t start = cdio_get_track_lsn(m_cdio, t);
        if (start == CDIO_INVALID_LSN) {
            return false;
        }
        m_toc.tracks.append({int(t), start, cdio_get_track_format(m_cdio, t) == TRACK_FORMAT_AUDIO});
    }
    const lsn_t leadout = cdio_get_track_lsn(m_cdio, CDIO_CDROM_LEADOUT_TRACK);
    if (leadout == CDIO_INVALID_LSN || leadout <= m_toc.tracks.last().startLsn) {
        return false;
    }
    m_toc.leadoutLsn = leadout;
    lsn_t lastSession = 0;
    if (cdio_get_last_session(m_cdio, &lastSession) == DRIVER_OP_SUCCESS && lastSession > 0) {
        m_toc.lastSessionLsn = lastSession;
    }
    return true;
}

bool CdioMedium::readSector(qint32 lsn, Sector& out)
{
    if (lsn < 0 || lsn >= m_toc.leadoutLsn) {
        return false;
    }
    return cdio_read_data_sectors(m_cdio, out.data(), lsn, kSectorSize, 1) == DRIVER_OP_SUCCESS;
}

} // namespace vinora
