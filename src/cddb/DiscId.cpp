#include "cddb/DiscId.h"

namespace vinora {
namespace {

struct Msf
{
    qint32 minutes = 0;
    qint32 seconds = 0;
    qint32 frames = 0;

    static Msf of(qint32 totalFrames)
    {
        const quint32 packed = FramesToMsf(totalFrames);
        return {qint32(packed & 0xFF), qint32((packed >> 8) & 0xFF), qint32((packed >> 16) & 0xFF)};
    }
    qint32 wholeSeconds() const { return minutes * 60 + seconds; }
    qint32 totalFrames() const { return minutes * 4500 + seconds * 75 + frames; }
};

} // namespace

qint32 MsfToFrames(quint32 packed)
{
    return qint32(packed & 0xFF) * 60 * 75 + qint32((packed >> 8) & 0xFF) * 75 +
           qint32((packed >> 16) & 0xFF);
}

quint32 FramesToMsf(qint32& frames)
{
    const qint32 minutes = frames / 4500;
    frames -= minutes * 4500;
    const qint32 seconds = frames / 75;
    frames -= seconds * 75;
    return quint32(frames % 75) * 65536 + quint32(seconds) * 256 + quint32(minutes);
}

qint16 SumN(qint32& n)
{
    qint16 sum = 0;
    while (n > 0) {
        sum = static_cast<qint16>(sum + n % 10);
        n /= 10;
    }
    n = 0;
    return sum;
}

QString FrontPad(const QString& text, int width)
{
    if (text.size() >= width) {
        return text.right(width);
    }
    return QString(width - text.size(), u'0') + text;
}

std::optional<CddbDisc> cddbDiscFromToc(const Toc& toc)
{
    const int count = static_cast<int>(toc.tracks.size());
    if (count == 0 || count > 99) {
        return std::nullopt;
    }
    CddbDisc disc;
    disc.tracks = count;
    QList<Msf> entries;
    for (int i = 0; i < count; ++i) {
        entries.append(Msf::of(toc.trackPosition(i)));
        disc.trackSeconds.append(Msf::of(toc.trackLength(i)).wholeSeconds());
        disc.offsets.append(entries.last().totalFrames());
    }
    // The lead-out: the last track's start plus its length and the one frame players leave out.
    Msf leadout = Msf::of(toc.trackLength(count - 1));
    leadout.frames += 1;
    leadout = Msf::of(entries.last().totalFrames() + leadout.totalFrames());
    disc.leadoutFrames = leadout.totalFrames();
    disc.discLength = leadout.wholeSeconds() - entries.first().wholeSeconds();

    qint32 sum = 0;
    for (const Msf& entry : entries) {
        qint32 seconds = entry.wholeSeconds();
        sum += SumN(seconds);
    }
    disc.id =
        (FrontPad(QString::number(sum % 255, 16), 2) + FrontPad(QString::number(disc.discLength, 16), 4) +
         FrontPad(QString::number(disc.tracks, 16), 2))
            .toLower();
    return disc;
}

QString GetQueryString(const CddbDisc& disc)
{
    QStringList parts{disc.id, QString::number(disc.tracks)};
    for (const qint32 offset : disc.offsets) {
        parts.append(QString::number(offset));
    }
    parts.append(QString::number(disc.discLength));
    return parts.join(u' ');
}

} // namespace vinora
