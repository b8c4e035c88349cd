#include "contents/CdPlayerIni.h"

#include "frame/AppContext.h"

#include <QDir>
#include <algorithm>

namespace vinora {

IniFile cdPlayerIni(const AppContext& ctx)
{
    return IniFile(QDir(ctx.appFolder()).filePath(QStringLiteral("cdplayer.ini")));
}

void writeCdPlayerDisc(const IniFile& ini, const QString& id, const CdPlayerDisc& disc)
{
    ini.update([&](IniDocument& document) {
        document.write(id, QStringLiteral("EntryType"), QStringLiteral("1"));
        document.write(id, QStringLiteral("artist"), disc.artist);
        document.write(id, QStringLiteral("title"), disc.title);
        document.write(id, QStringLiteral("numtracks"), QString::number(disc.tracks.size()));
        for (qsizetype i = 0; i < disc.tracks.size(); ++i) {
            document.write(id, QString::number(i), disc.tracks[i]);
        }
    });
}

std::optional<int> cdPlayerTrackCount(const IniDocument& ini, const QString& id)
{
    if (ini.read(id, QStringLiteral("numtracks"), 255).isEmpty()) {
        return std::nullopt;
    }
    const double count = ini.number(id, QStringLiteral("numtracks"), 255);
    return static_cast<int>(std::clamp(count, 0.0, double(kMaxAudioTracks)));
}

} // namespace vinora
