#include "contents/TrackListStore.h"

#include "contents/CdPlayerIni.h"
#include "contents/ContentsLinks.h"
#include "frame/AppContext.h"
#include "frame/Prompter.h"
#include "store/ContentsLists.h"
#include "store/Db.h"

namespace vinora {
namespace {

QString twoDigits(int value)
{
    return QStringLiteral("%1").arg(value, 2, 10, QLatin1Char('0'));
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
        insert.run(
            {id, static_cast<int>(i + 1), name.isValid() ? QVariant(name.toString().left(255)) : QVariant()});
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
        const QString name = ini.read(id, QString::number(i), 255);
        names.append(name.isEmpty() ? QStringLiteral("- нет -") : name);
    }
    writeTrackNames(ctx, id, names);
    return count;
}

} // namespace vinora
