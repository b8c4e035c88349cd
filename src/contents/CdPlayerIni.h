#pragma once

#include "frame/IniFile.h"

#include <QString>
#include <QStringList>
#include <optional>

namespace vinora {

class AppContext;

// cdplayer.ini, the names of audio discs the way CD players have long kept them: one
// section per disc id with EntryType, artist, title, numtracks and one key per track
// ("0" for the first). It lies in the application folder.
IniFile cdPlayerIni(const AppContext& ctx);

struct CdPlayerDisc
{
    QString artist;
    QString title;
    QStringList tracks; // the names in track order; an empty name is written as ""
};

// Writes the section of disc `id` in one change of the file. Keys of earlier tracks
// beyond the new count stay: the section is never emptied.
void writeCdPlayerDisc(const IniFile& ini, const QString& id, const CdPlayerDisc& disc);

// The most tracks an audio disc can have; a larger numtracks is taken as this.
inline constexpr int kMaxAudioTracks = 99;

// numtracks of disc `id` as a number (0 when it is not one), or nothing when the file has
// no such value.
std::optional<int> cdPlayerTrackCount(const IniDocument& ini, const QString& id);

} // namespace vinora
