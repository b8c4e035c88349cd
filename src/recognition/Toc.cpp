#include "recognition/Toc.h"

#include <QString>

namespace vinora {

int Toc::audioTrackCount() const
{
    return static_cast<int>(
        std::count_if(tracks.begin(), tracks.end(), [](const TocTrack& t) { return t.audio; }));
}

qint32 Toc::trackLength(int index) const
{
    if (index + 1 < tracks.size()) {
        return tracks[index + 1].startLsn - tracks[index].startLsn;
    }
    return leadoutLsn - tracks[index].startLsn - 1;
}

QString framesToMsfText(qint32 frames)
{
    const qint32 minutes = frames / (60 * kFramesPerSecond);
    const qint32 seconds = frames / kFramesPerSecond % 60;
    const qint32 rest = frames % kFramesPerSecond;
    return QStringLiteral("%1:%2:%3")
        .arg(minutes, 2, 10, QLatin1Char('0'))
        .arg(seconds, 2, 10, QLatin1Char('0'))
        .arg(rest, 2, 10, QLatin1Char('0'));
}

} // namespace vinora
