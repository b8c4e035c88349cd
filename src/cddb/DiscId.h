#pragma once

#include "recognition/Toc.h"

#include <QList>
#include <QString>
#include <optional>

namespace vinora {

// A position as the disc player packs it: minutes in the low byte, seconds in the next,
// frames in the third.
qint32 MsfToFrames(quint32 packed);
// The packed form of `frames`; `frames` is left holding the frames below one second.
quint32 FramesToMsf(qint32& frames);
// The sum of the decimal digits of n (0 for 0 or a negative n); n is used up.
qint16 SumN(qint32& n);
// `text` cut to its last `width` characters, or filled in front with zeros up to `width`.
QString FrontPad(const QString& text, int width);

// What a CDDB query needs of a disc: the disc id, the number of tracks, each track's
// offset in frames from absolute time zero, and the playing length in seconds from the
// start of track 1 to the lead-out.
struct CddbDisc
{
    QString id;
    int tracks = 0;
    QList<qint32> offsets;
    int discLength = 0;
    qint32 leadoutFrames = 0; // the last track's start and length in frames, and one more
    QList<int> trackSeconds;  // the length of each track in whole seconds
};

// The disc id and query figures of a table of contents, or nothing for a disc without
// tracks or with more than 99.
std::optional<CddbDisc> cddbDiscFromToc(const Toc& toc);

// "id tracks offset1 ... offsetN length": the arguments of "cddb query".
QString GetQueryString(const CddbDisc& disc);

} // namespace vinora
