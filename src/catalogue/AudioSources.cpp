#include "catalogue/AudioSources.h"

#include "catalogue/DiscRecord.h"
#include "catalogue/Numbering.h"
#include "contents/CdPlayerIni.h"
#include "frame/AppContext.h"
#include "frame/Clock.h"
#include "store/Db.h"
#include "store/InfoStamp.h"

namespace vinora {

NumberShift audioNumberShift(AppContext& ctx)
{
    NumberShift shift;
    shift.numbers = [](const Db& db, int start) {
        return shiftNumbers(db, catalogueKind(Category::Audio), start);
    };
    shift.covers = [&ctx](int start, int rowCount) { shiftCovers(ctx, start, rowCount); };
    return shift;
}

bool AddNewDisk(AppContext& ctx, bool bind, const QString& timeText)
{
    const IniDocument ini = cdPlayerIni(ctx).load();
    const QString& id = ctx.CurrentDiscID;
    const QString artist = ini.read(id, QStringLiteral("artist"), 255);
    if (artist.isEmpty()) {
        return false;
    }
    NumberShift shift = audioNumberShift(ctx);
    const Db db(ctx.MainDBPath);
    Transaction transaction(db);
    shift.inTransaction(ctx, db);
    const QVariant noStyle =
        db.scalar(QStringLiteral("SELECT КодСтиля FROM Стиль WHERE Стиль = '' ORDER BY 1 LIMIT 1"));
    db.exec(
        QStringLiteral("INSERT INTO Аудио (Номер, ДискID1_d, Название, Альбом, Год, Записей1, Записей2, "
                       "Записей3, Записей4, Записей5, Записей6, Дисков, Время1, Время2, Время3, Время4, "
                       "Время5, Время6, КодСтиля, ДатаИзменения, ДискID1) "
                       "VALUES (?, ?, ?, ?, ?, ?, 0, 0, 0, 0, 0, 1, ?, '00:00', '00:00', '00:00', '00:00', "
                       "'00:00', ?, ?, ?)"),
        {ctx.LastSavedNumber, bind ? QVariant(id) : QVariant(), artist.left(kTitleLength),
         ini.read(id, QStringLiteral("title"), 255).left(kTitleLength),
         ctx.clock().today().toString(QStringLiteral("yyyy")), cdPlayerTrackCount(ini, id).value_or(0),
         timeText, noStyle, dateValue(ctx.clock().today()), id});
    StampCatalogueUpdate(db, Category::Audio, ctx.clock().today());
    transaction.commit();
    shift.afterCommit();
    return true;
}

} // namespace vinora
