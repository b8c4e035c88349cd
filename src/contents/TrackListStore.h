#pragma once

#include <QList>
#include <QString>
#include <QVariant>
#include <optional>

namespace vinora {

class AppContext;

// The names the catalogue cuts server and file texts to before storing them.
inline constexpr int kCutLength = 50;

// The columns of a track list: Название and Комментарий.
inline constexpr int kTrackNameLength = 255;
inline constexpr int kTrackCommentLength = 50;

// A disc's playing time as the catalogue writes it: whole minutes in two digits, ":", and the
// seconds taken modulo 61 (so 120 seconds read "02:59"). A time beyond 99 minutes, which no
// audio CD holds, reads "99:59" so that it fits the five characters of Время.
QString trackTimeText(int seconds);

// Makes the track list `id` in the tracks database and gives true. On a clash: without
// `ask`, false; a list no audio disc owns is replaced; one that a disc owns is reported
// ("Серийный номер этого диска совпадает...") and gives false.
bool CreateTrackTable(AppContext& ctx, const QString& id, bool ask);

// True when a row of Аудио has `id` among ДискID1..ДискID6.
bool CheckTrackTableOwner(const AppContext& ctx, const QString& id);

// Ties list `id` to disc `slot` of audio disc `number`: ДискID<slot>, Записей<slot> :=
// `tracks`, Время<slot> := the time text of `seconds`; slot `slot` of ctx.DiscIDSlots follows.
void linkTrackList(AppContext& ctx, int number, int slot, const QString& id, int tracks, int seconds);

// Drops list `id` and unties it from disc `slot` of audio disc `number` (ДискID<slot> Null).
// Записей, Время and the binding stay.
void DeleteTrackList(AppContext& ctx, int number, int slot, const QString& id);

// Drops list `id` when it is there (a list made for a source that then gave nothing).
void dropTrackList(const AppContext& ctx, const QString& id);

// Appends the tracks to list `id`, numbered from 1 in the order given, in one transaction;
// an invalid name is stored as Null.
void writeTrackNames(const AppContext& ctx, const QString& id, const QList<QVariant>& names);

// Fills list `id` from the section of that disc in cdplayer.ini: numtracks rows, each named
// by its key ("0" for the first), "- нет -" when the key is empty or missing. The count, or
// nothing (and no rows) when the file does not know the disc.
std::optional<int> importTrackNames(const AppContext& ctx, const QString& id);

// One row of a track list as it is stored; Null name or comment is an invalid QVariant.
struct StoredTrack
{
    qint64 row = 0; // the row's own key, for changing it
    int number = 0;
    QVariant name;
    QVariant comment;
};

// The rows of list `id` by Номер.
QList<StoredTrack> readTrackList(const AppContext& ctx, const QString& id);

// Название or Комментарий of row `row` of list `id`: an empty text is stored as Null, a long
// one cut to the column.
void setTrackName(const AppContext& ctx, const QString& id, qint64 row, const QString& name);
void setTrackComment(const AppContext& ctx, const QString& id, qint64 row, const QString& comment);

// Writes list `id` to the section of that disc in cdplayer.ini: the record's artist and
// title, numtracks and one key per row in stored order (a Null name as ""). Comments stay
// in the catalogue.
void saveTrackListToCdPlayer(const AppContext& ctx, const QString& id, const QString& artist,
                             const QString& title);

} // namespace vinora
