#pragma once

#include <QList>

namespace vinora {

// Sectors of a CD: 75 to the second; an LSN counts from the start of track 1's pregap end,
// so absolute time (the lead-in included) is LSN + 150.
inline constexpr int kFramesPerSecond = 75;
inline constexpr int kLeadInFrames = 150;

struct TocTrack
{
    int number = 0;
    qint32 startLsn = 0;
    bool audio = true;
};

// The table of contents of the medium in a drive.
struct Toc
{
    QList<TocTrack> tracks;
    qint32 leadoutLsn = 0;
    // Start of the last session, 0 for a single-session disc.
    qint32 lastSessionLsn = 0;

    bool isEmpty() const { return tracks.isEmpty(); }
    int audioTrackCount() const;

    // The player's view: a track's position in frames from absolute time zero, and its
    // length in frames up to the next track; the last track's length stops one frame
    // short of the lead-out, as disc players have always reported it.
    qint32 trackPosition(int index) const { return tracks[index].startLsn + kLeadInFrames; }
    qint32 trackLength(int index) const;
    qint32 leadoutPosition() const { return leadoutLsn + kLeadInFrames; }
};

// "mm:ss:ff" of a frame count.
QString framesToMsfText(qint32 frames);

} // namespace vinora
