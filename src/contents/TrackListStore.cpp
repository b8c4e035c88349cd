#include "contents/TrackListStore.h"

#include "contents/CdPlayerIni.h"
#include "contents/ContentsLinks.h"
#include "frame/AppContext.h"
#include "frame/Prompter.h"
#include "store/ContentsLists.h"
#include "store/Db.h"
#include "store/Schema.h"

namespace vinora {
namespace {

QString twoDigits(int value)
{
    return QStringLiteral("%1").arg(value, 2, 10, QLatin1Char('0'));
}

void setTrackField(const AppContext& ctx, const QString& id, qint64 row, const QString& field,
                   const QString& text, int length)
{
    const Db tracks(ctx.TracksDBPath);
    tracks.exec(QStringLiteral("UPDATE Треки SET ") + quoted(field) +
                    QStringLiteral(" = ? WHERE rowid = ? AND ДискID = ?"),
                {text.isEmpty() ? QVariant() : QVariant(text.left(length)), row, id});
}

} // namespace

QString trackTimeText(int seconds)
{
    seconds = std::max(seconds, 0);
    if (seconds / 60 > 99) {
        return QStringLiteral("99:59");
    }
    return twoDigits(seconds / 60) + u':' + twoDigits(seconds % 61);
}

bool CheckTrackTableOwner(const AppContext& ctx, const QString& id)
{
    return listHasOwner(ctx, ContentsKind::Tracks, id);
}

bool CreateTrackTable(AppContext& ctx, const QString& id, bool ask)
{
    const ListCreation creation = createList(ctx, ContentsKind::Tracks, id, ask);
    if (creation != ListCreation::Owned) {
        return creation == ListCreation::Created;
    }
    ctx.prompter().message(
        QStringLiteral("Серийный номер этого диска совпадает с уже существующим серийным номером!"),
        MessageStyle::Exclamation);
    return false;
}

void linkTrackList(AppContext& ctx, int number, int slot, const QString& id, int tracks, int seconds)
{
    writeDiscSlot(ctx, ContentsKind::Tracks, number, slot,
                  {{QStringLiteral("ДискID%1").arg(slot), id},
                   {QStringLiteral("Записей%1").arg(slot), tracks},
                   {QStringLiteral("Время%1").arg(slot), trackTimeText(seconds)}});
}

void DeleteTrackList(AppContext& ctx, int number, int slot, const QString& id)
{
    dropTrackList(ctx, id);
    writeDiscSlot(ctx, ContentsKind::Tracks, number, slot,
                  {{QStringLiteral("ДискID%1").arg(slot), QVariant()}});
}

void dropTrackList(const AppContext& ctx, const QString& id)
{
    dropListIfAny(ctx, ContentsKind::Tracks, id);
}

void writeTrackNames(const AppContext& ctx, const QString& id, const QList<QVariant>& names)
{
    const Db tracks(ctx.TracksDBPath);
    Transaction transaction(tracks);
    Statement insert(tracks, QStringLiteral("INSERT INTO Треки (ДискID, Номер, Название) VALUES (?, ?, ?)"));
    for (qsizetype i = 0; i < names.size(); ++i) {
        const QVariant& name = names[i];
        insert.run({id, static_cast<int>(i + 1),
                    name.isValid() ? QVariant(name.toString().left(kTrackNameLength)) : QVariant()});
    }
    transaction.commit();
}

std::optional<int> importTrackNames(const AppContext& ctx, const QString& id)
{
    const IniDocument ini = cdPlayerIni(ctx).load();
    const std::optional<int> count = cdPlayerTrackCount(ini, id);
    if (!count) {
        return std::nullopt;
    }
    QList<QVariant> names;
    for (int i = 0; i < *count; ++i) {
        const QString name = ini.read(id, QString::number(i), kTrackNameLength);
        names.append(name.isEmpty() ? QStringLiteral("- нет -") : name);
    }
    writeTrackNames(ctx, id, names);
    return count;
}

QList<StoredTrack> readTrackList(const AppContext& ctx, const QString& id)
{
    const Db tracks(ctx.TracksDBPath, Db::Access::ReadOnly);
    QSqlQuery rows = tracks.query(QStringLiteral("SELECT rowid, Номер, Название, Комментарий FROM Треки "
                                                 "WHERE ДискID = ? ORDER BY Номер, rowid"),
                                  {id});
    QList<StoredTrack> list;
    while (rows.next()) {
        const auto field = [&rows](int column) {
            return rows.value(column).isNull() ? QVariant() : QVariant(rows.value(column).toString());
        };
        list.append({rows.value(0).toLongLong(), rows.value(1).toInt(), field(2), field(3)});
    }
    return list;
}

void setTrackName(const AppContext& ctx, const QString& id, qint64 row, const QString& name)
{
    setTrackField(ctx, id, row, QStringLiteral("Название"), name, kTrackNameLength);
}

void setTrackComment(const AppContext& ctx, const QString& id, qint64 row, const QString& comment)
{
    setTrackField(ctx, id, row, QStringLiteral("Комментарий"), comment, kTrackCommentLength);
}

void saveTrackListToCdPlayer(const AppContext& ctx, const QString& id, const QString& artist,
                             const QString& title)
{
    CdPlayerDisc disc{artist, title, {}};
    for (const StoredTrack& track : readTrackList(ctx, id)) {
        disc.tracks.append(track.name.toString());
    }
    writeCdPlayerDisc(cdPlayerIni(ctx), id, disc);
}

} // namespace vinora
