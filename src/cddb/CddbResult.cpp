#include "cddb/CddbResult.h"

#include "contents/CdPlayerIni.h"
#include "contents/TrackListStore.h"
#include "frame/AppContext.h"
#include "frame/Clock.h"
#include "frame/FaultLog.h"
#include "store/Db.h"
#include "store/InfoStamp.h"

namespace vinora {
namespace {

// КодСтиля of the style named `name`, added when the style table has none of that name.
qint64 styleKey(const Db& db, const QString& name)
{
    const QVariant found =
        db.scalar(QStringLiteral("SELECT КодСтиля FROM Стиль WHERE Стиль = ? ORDER BY 1 LIMIT 1"), {name});
    if (found.isValid()) {
        return found.toLongLong();
    }
    db.exec(QStringLiteral("INSERT INTO Стиль (Стиль) VALUES (?)"), {name.left(kCutLength)});
    return db.scalar(QStringLiteral("SELECT last_insert_rowid()")).toLongLong();
}

void addDiscRow(AppContext& ctx, const CddbRecord& record, int discLength, NumberShift shift)
{
    const Db db(ctx.MainDBPath);
    Transaction transaction(db);
    const qint64 style = styleKey(db, record.category);
    shift.inTransaction(ctx, db);
    const int slot = ctx.CDDBDiscInSet;
    const bool inSet = slot >= 1 && slot <= 5;
    const QString fields = inSet ? QStringLiteral(", ДискID%1, Записей%1, Время%1").arg(slot) : QString();
    QVariantList values{ctx.LastSavedNumber,
                        ctx.AutoDetectTag.isEmpty() ? QVariant() : QVariant(ctx.AutoDetectTag.mid(3)),
                        record.artist.left(kCutLength),
                        record.cdTitle.left(kCutLength),
                        ctx.clock().now().toString(QStringLiteral("yyyy")),
                        1,
                        style,
                        dateValue(ctx.clock().today())};
    if (inSet) {
        values += {ctx.CurrentDiscID, record.tracks(), trackTimeText(discLength)};
    }
    db.exec(QStringLiteral("INSERT INTO Аудио (Номер, ДискID1_d, Название, Альбом, Год, Дисков, КодСтиля, "
                           "ДатаИзменения") +
                fields + QStringLiteral(") VALUES (?, ?, ?, ?, ?, ?, ?, ?") +
                (inSet ? QStringLiteral(", ?, ?, ?") : QString()) + u')',
            values);
    transaction.commit();
    shift.afterCommit();
    if (inSet) {
        ctx.DiscIDSlots[static_cast<std::size_t>(slot - 1)] = ctx.CurrentDiscID;
    }
}

} // namespace

void NumberShift::inTransaction(AppContext& ctx, const Db& db)
{
    m_start = ctx.ShiftStart;
    if (m_start <= 0 || !numbers) {
        return;
    }
    underFaultHandler(ctx, QStringLiteral("vinoraModule, MoveNumbers()"), [&] {
        ctx.ShiftStart = 0;
        m_rowCount = numbers(db, m_start);
    });
}

void NumberShift::afterCommit() const
{
    if (m_start > 0 && covers) {
        covers(m_start, m_rowCount);
    }
}

CddbWrite writeCddbRecord(AppContext& ctx, const CddbRecord& record, int discLength, const NumberShift& shift)
{
    if (ctx.CDDBUpdateRow) {
        linkTrackList(ctx, ctx.LastSavedNumber, ctx.CDDBDiscInSet, ctx.CurrentDiscID, record.tracks(),
                      discLength);
    } else {
        if (record.artist.isEmpty()) {
            return CddbWrite::NoTitle;
        }
        addDiscRow(ctx, record, discLength, shift);
    }

    QList<QVariant> names;
    QStringList iniNames;
    for (int i = 1; i <= record.tracks(); ++i) {
        const QString song = record.SongName(i);
        const QString name = song.isEmpty() ? QStringLiteral("Запись ") + QString::number(i) : song;
        names.append(song.isEmpty() ? name : song.left(kCutLength));
        iniNames.append(name);
    }
    if (ctx.CDDBSaveToIni) {
        writeCdPlayerDisc(cdPlayerIni(ctx), ctx.CurrentDiscID, {record.artist, record.cdTitle, iniNames});
    }
    writeTrackNames(ctx, ctx.CurrentDiscID, names);
    const Db db(ctx.MainDBPath);
    StampCatalogueUpdate(db, Category::Audio, ctx.clock().today());
    return CddbWrite::Written;
}

} // namespace vinora
