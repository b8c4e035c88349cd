#include "cddb/CdDevice.h"

#include "cddb/DiscId.h"
#include "recognition/CdioMedium.h"
#include "recognition/Medium.h"

#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <cdio/cdio.h>
#include <cdio/mmc.h> // the audio calls, after the driver types they need

namespace vinora {
namespace {

quint32 packed(qint32 frames)
{
    return FramesToMsf(frames);
}

// A device node is what is neither a plain file nor a folder.
bool isDeviceNode(const QString& drive)
{
    const QFileInfo info(drive);
    return info.exists() && !info.isFile() && !info.isDir();
}

} // namespace

CdDevice::~CdDevice()
{
    releaseDrive();
}

QString CdDevice::modeText(int mode)
{
    switch (mode) {
    case kNotOpen:
        return QStringLiteral("Device is not open");
    case kStopped:
        return QStringLiteral("Device is stopped");
    case kPlaying:
        return QStringLiteral("Device is playing");
    case kRecording:
        return QStringLiteral("Device is recording");
    case kSeeking:
        return QStringLiteral("Device is seeking");
    case kPaused:
        return QStringLiteral("Device is paused");
    case kTrayOut:
        return QStringLiteral("Tray is out");
    default:
        return {};
    }
}

void CdDevice::setFileName(const QString& drive)
{
    if (drive == m_fileName) {
        return;
    }
    close();
    m_fileName = drive;
}

quint32 CdDevice::TrackPosition() const
{
    if (m_track < 1 || m_track > Tracks()) {
        return 0;
    }
    return packed(m_toc.trackPosition(m_track - 1));
}

quint32 CdDevice::TrackLength() const
{
    if (m_track < 1 || m_track > Tracks()) {
        return 0;
    }
    return packed(m_toc.trackLength(m_track - 1));
}

quint32 CdDevice::Position()
{
    if (playsSound() && (m_mode == kPlaying || m_mode == kPaused)) {
        int mode = kNotOpen;
        qint32 frames = 0;
        if (readSubchannel(mode, frames)) {
            return packed(frames);
        }
    }
    return packed(m_position);
}

void CdDevice::Refresh()
{
    if (m_fileName.isEmpty()) {
        return;
    }
    if (m_mode == kTrayOut) {
        // The tray may have come back with a disc: the player reports it as stopped then.
        open();
        if (m_mode == kNotOpen) {
            m_mode = kTrayOut;
        }
        return;
    }
    if (!isOpen()) {
        return;
    }
    if (!playsSound()) {
        if (!QFileInfo::exists(m_fileName)) {
            close();
        }
        return;
    }
    if (cdio_get_media_changed(m_cdio) == 1) {
        // Another disc: its own table of contents, or nothing when the drive is empty now.
        close();
        open();
        return;
    }
    int mode = kStopped;
    qint32 frames = 0;
    if (!readSubchannel(mode, frames)) {
        mode = kStopped;
    }
    if (mode == kStopped && (m_mode == kPlaying || m_mode == kPaused)) {
        // The play has ended on its own: the player is back at the start of the disc.
        m_position = m_toc.trackPosition(0);
    }
    m_mode = mode;
}

void CdDevice::Command(const QString& command)
{
    const QString word = command.trimmed().toLower();
    if (word == u"open") {
        open();
    } else if (word == u"close") {
        close();
    } else if (word == u"eject") {
        eject();
    } else if (!isOpen()) {
        return; // the rest need a disc
    } else if (word == u"play") {
        play();
    } else if (word == u"pause") {
        pause();
    } else if (word == u"stop") {
        stop();
    } else if (word == u"seek") {
        if (m_track >= 1 && m_track <= Tracks()) {
            seekTo(m_track - 1);
        }
    } else if (word == u"prev" || word == u"next") {
        int mode = m_mode;
        qint32 frames = m_position;
        if (playsSound() && (m_mode == kPlaying || m_mode == kPaused)) {
            readSubchannel(mode, frames);
        }
        const int index = std::max(trackIndexAt(frames), 0);
        if (word == u"prev") {
            skipTo(std::max(index - 1, 0));
        } else if (index + 1 < Tracks()) {
            skipTo(index + 1);
        }
    }
}

void CdDevice::open()
{
    if (isOpen() || m_fileName.isEmpty()) {
        return;
    }
    releaseDrive();
    m_toc = Toc();
    m_mode = kNotOpen;
    CdIo_t* cdio = nullptr;
    if (isDeviceNode(m_fileName)) {
        silenceCdioLog();
        cdio = cdio_open(QFile::encodeName(m_fileName).constData(), DRIVER_DEVICE);
        if (cdio == nullptr) {
            return;
        }
    }
    const std::unique_ptr<Medium> medium = openMedium(m_fileName);
    if (!medium || medium->toc().isEmpty()) {
        if (cdio != nullptr) {
            cdio_destroy(cdio);
        }
        return;
    }
    m_toc = medium->toc();
    m_cdio = cdio;
    m_track = 1;
    m_position = m_toc.trackPosition(0);
    m_mode = kStopped;
    if (m_cdio != nullptr) {
        // A change the drive noted before this open is not one the next Refresh should see.
        (void)cdio_get_media_changed(m_cdio);
        int mode = kStopped;
        qint32 frames = 0;
        if (readSubchannel(mode, frames) && (mode == kPlaying || mode == kPaused)) {
            // Someone else set the drive playing: the player takes over where it is.
            m_mode = mode;
            m_position = frames;
        }
    }
}

void CdDevice::close()
{
    releaseDrive();
    m_toc = Toc();
    m_position = 0;
    m_mode = kNotOpen;
}

void CdDevice::releaseDrive()
{
    if (m_cdio != nullptr) {
        cdio_destroy(m_cdio);
        m_cdio = nullptr;
    }
}

void CdDevice::play()
{
    if (!playsSound()) {
        return; // an image has nothing to play
    }
    if (m_mode == kPaused) {
        if (cdio_audio_resume(m_cdio) == DRIVER_OP_SUCCESS) {
            m_mode = kPlaying;
        }
        return;
    }
    // From the position to the end of its run of audio tracks: a data track after them
    // (an enhanced CD) is not sound.
    int index = std::max(trackIndexAt(m_position), 0);
    while (index < Tracks() && !m_toc.tracks[index].audio) {
        ++index;
    }
    if (index >= Tracks()) {
        return;
    }
    const qint32 start = std::max(m_position, m_toc.trackPosition(index));
    qint32 end = m_toc.leadoutPosition();
    for (int next = index + 1; next < Tracks(); ++next) {
        if (!m_toc.tracks[next].audio) {
            end = m_toc.trackPosition(next);
            break;
        }
    }
    msf_t from{};
    msf_t to{};
    cdio_lba_to_msf(start, &from);
    cdio_lba_to_msf(end, &to);
    if (cdio_audio_play_msf(m_cdio, &from, &to) == DRIVER_OP_SUCCESS) {
        m_position = start;
        m_mode = kPlaying;
    }
}

void CdDevice::pause()
{
    if (!playsSound() || m_mode != kPlaying) {
        return;
    }
    int mode = kPlaying;
    qint32 frames = m_position;
    readSubchannel(mode, frames);
    if (cdio_audio_pause(m_cdio) == DRIVER_OP_SUCCESS) {
        m_position = frames;
        m_mode = kPaused;
    }
}

void CdDevice::stop()
{
    if (playsSound() && (m_mode == kPlaying || m_mode == kPaused)) {
        (void)cdio_audio_stop(m_cdio);
    }
    // A stopped player is back at the start of the disc.
    m_position = m_toc.trackPosition(0);
    m_mode = kStopped;
}

void CdDevice::seekTo(int index)
{
    stop();
    m_position = m_toc.trackPosition(index);
}

void CdDevice::skipTo(int index)
{
    const bool wasPlaying = m_mode == kPlaying || m_mode == kPaused;
    if (playsSound() && wasPlaying) {
        (void)cdio_audio_stop(m_cdio);
        m_mode = kStopped;
    }
    m_position = m_toc.trackPosition(index);
    play();
}

void CdDevice::eject()
{
    if (m_fileName.isEmpty()) {
        return;
    }
    if (!playsSound()) {
        if (m_mode == kNotOpen && isDeviceNode(m_fileName)) {
            // A closed player may still send the tray out.
            if (cdio_eject_media_drive(QFile::encodeName(m_fileName).constData()) == DRIVER_OP_SUCCESS) {
                m_mode = kTrayOut;
            }
        }
        return; // an image has no tray
    }
    if (m_mode == kPlaying || m_mode == kPaused) {
        (void)cdio_audio_stop(m_cdio);
    }
    // libcdio lets go of the handle once the tray is out.
    const driver_return_code_t result = cdio_eject_media(&m_cdio);
    if (m_cdio == nullptr) {
        m_toc = Toc();
        m_position = 0;
        m_mode = result == DRIVER_OP_SUCCESS ? kTrayOut : kNotOpen;
        return;
    }
    m_mode = kStopped;
    m_position = m_toc.trackPosition(0);
}

int CdDevice::trackIndexAt(qint32 frames) const
{
    int found = -1;
    for (int i = 0; i < Tracks(); ++i) {
        const qint32 start = m_toc.trackPosition(i);
        if (start <= frames && frames <= start + m_toc.trackLength(i)) {
            found = i;
        }
    }
    return found;
}

bool CdDevice::readSubchannel(int& mode, qint32& frames) const
{
    if (m_cdio == nullptr) {
        return false;
    }
    cdio_subchannel_t subchannel{};
    if (cdio_audio_read_subchannel(m_cdio, &subchannel) != DRIVER_OP_SUCCESS) {
        return false;
    }
    switch (subchannel.audio_status) {
    case CDIO_MMC_READ_SUB_ST_PLAY:
        mode = kPlaying;
        break;
    case CDIO_MMC_READ_SUB_ST_PAUSED:
        mode = kPaused;
        break;
    default:
        mode = kStopped; // completed, stopped by an error, or never played
        break;
    }
    const lba_t absolute = cdio_msf_to_lba(&subchannel.abs_addr);
    frames = absolute == CDIO_INVALID_LBA ? m_position : std::max<qint32>(absolute, 0);
    return true;
}

} // namespace vinora
