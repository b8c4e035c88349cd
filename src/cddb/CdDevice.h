#pragma once

#include "recognition/Toc.h"

#include <QString>

typedef struct _CdIo CdIo_t;

namespace vinora {

// The audio CD player of a drive, as a multimedia control presents it: a mode, a selected
// track with its position and length, the playing position, and a handful of commands. A
// device node plays through the drive's analog output; a disc image has a table of contents
// but no sound, so its audio commands only keep the mode sensible.
//
// Positions and lengths are packed as the player packs them: minutes in the low byte,
// seconds in the next, frames in the third; positions count from absolute time zero, the
// lead-in included. Nothing here throws.
class CdDevice
{
public:
    // The modes a player reports.
    static constexpr int kNotOpen = 524;
    static constexpr int kStopped = 525;
    static constexpr int kPlaying = 526;
    static constexpr int kRecording = 527;
    static constexpr int kSeeking = 528;
    static constexpr int kPaused = 529;
    static constexpr int kTrayOut = 530;

    CdDevice() = default;
    ~CdDevice();
    CdDevice(const CdDevice&) = delete;
    CdDevice& operator=(const CdDevice&) = delete;

    // "Device is stopped" and the like; empty text for a number that is no mode.
    static QString modeText(int mode);

    // The drive: a device node or a disc image. Naming another drive closes the open one.
    QString FileName() const { return m_fileName; }
    void setFileName(const QString& drive);

    // The mode as of the last Refresh or command.
    int Mode() const { return m_mode; }
    // The tracks of the table of contents, data tracks included; 0 when nothing is open.
    int Tracks() const { return static_cast<int>(m_toc.tracks.size()); }
    // The selected track, 1-based; any value is kept, and one outside 1..Tracks has
    // position and length 0.
    int Track() const { return m_track; }
    void setTrack(int track) { m_track = track; }
    quint32 TrackPosition() const;
    quint32 TrackLength() const;
    // Where the player is: read from the drive while it plays or pauses, else the position
    // the commands left (always the start of a track).
    quint32 Position();
    // The table of contents read by the last Open (empty when nothing is open).
    const Toc& toc() const { return m_toc; }

    // Reads the mode again from the drive. A drive whose disc has changed reads the new
    // disc's table of contents (or closes, when the drive is empty now); a tray that was sent
    // out reports a disc put back as stopped; an image that has gone is closed.
    void Refresh();
    // "Open", "Close", "Play", "Pause", "Stop", "Prev", "Next", "Eject", and "Seek" (to the
    // start of the selected track, stopping the player), in any case; other texts are
    // ignored.
    void Command(const QString& command);

private:
    bool isOpen() const { return m_mode != kNotOpen && m_mode != kTrayOut; }
    bool playsSound() const { return m_cdio != nullptr; }
    void open();
    void close();
    void play();
    void pause();
    void stop();
    void eject();
    // The player stops, and its position moves to the start of track index `index`.
    void seekTo(int index);
    // Plays from the start of track index `index` (a drive), or moves there (an image).
    void skipTo(int index);
    // The index of the track holding absolute frame `frames` (the last one that does).
    int trackIndexAt(qint32 frames) const;
    // The drive's audio status and absolute position; false when it cannot tell.
    bool readSubchannel(int& mode, qint32& frames) const;
    void releaseDrive();

    QString m_fileName;
    int m_mode = kNotOpen;
    int m_track = 1;
    Toc m_toc;
    // Where play starts and what a stopped player reports, in frames from absolute zero.
    qint32 m_position = 0;
    // The audio handle of a device node; images have none.
    CdIo_t* m_cdio = nullptr;
};

} // namespace vinora
