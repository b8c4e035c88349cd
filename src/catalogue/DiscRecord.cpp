#include "catalogue/DiscRecord.h"

#include "catalogue/DictionaryTable.h"
#include "catalogue/Numbering.h"
#include "frame/AppContext.h"
#include "frame/FaultLog.h"
#include "frame/TextRules.h"
#include "recognition/Toc.h"
#include "store/ContentsLists.h"
#include "store/Db.h"
#include "store/InfoStamp.h"
#include "store/Schema.h"

#include <QSqlRecord>

namespace vinora {
namespace {

QString twoDigits(int value)
{
    return QStringLiteral("%1").arg(value, 2, 10, QLatin1Char('0'));
}

// The key of a dictionary name, added when it is new.
qint64 dictionaryKeyOf(const Db& db, const CatalogueKind& kind, const QString& name)
{
    const DictionaryTable dictionary(db, kind.dictionaryTable, kind.dictionaryKey);
    if (const std::optional<qint64> key = dictionary.keyOf(name)) {
        return *key;
    }
    return dictionary.add(name);
}

QString listField(const CatalogueKind& kind, int k)
{
    // The computer catalogue has always read the list of disc 5 from a field that does not
    // exist, so that such a reduction ends in the fault log.
    if (kind.category == Category::Computer && k == 5) {
        return QStringLiteral("ДискID45");
    }
    return QStringLiteral("ДискID%1").arg(k);
}

// Cuts texts to the sizes of their columns and keeps numbers within theirs; the editor's
// fields hold no more than that already.
void fitToColumns(DiscRecord& disc)
{
    disc.name = CleanText(disc.name).left(kTitleLength);
    disc.album = CleanText(disc.album).left(kTitleLength);
    disc.dictionaryName = CleanText(disc.dictionaryName).left(kDictionaryNameLength);
    disc.year = disc.year.left(kYearLength);
    disc.description = disc.description.left(kDescriptionLength);
    for (QString& tracks : disc.tracks) {
        tracks = tracks.left(2);
    }
    for (QString& time : disc.times) {
        time = time.left(5);
    }
    if (!disc.dvdTime.isEmpty()) {
        disc.dvdTime = QString::number(std::clamp(disc.dvdTime.toInt(), 0, kDvdTimeMaximum));
    }
}

} // namespace

QString spinYear(const QString& text, bool up)
{
    const int value = text.toInt();
    if (up) {
        return QStringLiteral("%1").arg(text < QStringLiteral("9999") ? value + 1 : value, 4, 10,
                                        QLatin1Char('0'));
    }
    return QStringLiteral("%1").arg(text == u"0000" ? value : std::max(0, value - 1), 4, 10,
                                    QLatin1Char('0'));
}

QString spinTracks(const QString& text, bool up)
{
    const int value = text.toInt();
    if (up) {
        return twoDigits(text < QStringLiteral("99") ? value + 1 : value);
    }
    return twoDigits(text == u"00" ? value : std::max(0, value - 1));
}

QString spinMinutes(const QString& text, bool up)
{
    const int value = std::clamp(text.toInt(), 0, kDvdTimeMaximum);
    return QString::number(up ? std::min(kDvdTimeMaximum, value + 1) : std::max(0, value - 1));
}

QString spinDiscs(const QString& text, bool up)
{
    const int value = discCount(text);
    return QString::number(up ? std::min(6, value + 1) : std::max(1, value - 1));
}

QString spinTime(const QString& text, bool up)
{
    int minutes = text.section(u':', 0, 0).toInt();
    int seconds = text.section(u':', 1, 1).toInt();
    if (up) {
        if (++seconds > 99) {
            seconds = minutes >= 99 ? 99 : 0;
            minutes = std::min(99, minutes + 1);
        }
    } else if (--seconds < 0) {
        seconds = minutes > 0 ? 99 : 0;
        minutes = std::max(0, minutes - 1);
    }
    return twoDigits(minutes) + u':' + twoDigits(seconds);
}

int discCount(const QString& text)
{
    const int value = text.trimmed().toInt();
    return value > 0 && value <= 6 ? value : 1;
}

QString playingTimeText(const Toc& toc)
{
    if (toc.isEmpty()) {
        return {};
    }
    const int last = static_cast<int>(toc.tracks.size()) - 1;
    // The lead-out as the player gives it: the last track's start plus its length and a frame.
    const qint32 total = toc.trackPosition(last) + toc.trackLength(last) + 1;
    const qint32 endSeconds = total / 4500 * 60 + (total - total / 4500 * 4500) / 75;
    const qint32 first = toc.trackPosition(0);
    const qint32 startSeconds = first / 4500 * 60 + (first - first / 4500 * 4500) / 75;
    const qint32 playing = endSeconds - startSeconds;
    if (playing / 60 > 99) {
        return {};
    }
    return twoDigits(playing / 60) + u':' + twoDigits(playing % 61);
}

DiscRecord readDisc(const Db& db, const CatalogueKind& kind, int number)
{
    DiscRecord disc;
    QSqlQuery row =
        db.query(QStringLiteral("SELECT t.*, d.") + quoted(kind.dictionaryTable) +
                     QStringLiteral(" AS Словарь FROM ") + quoted(kind.info().table) +
                     QStringLiteral(" t LEFT JOIN ") + quoted(kind.dictionaryTable) +
                     QStringLiteral(" d ON d.") + quoted(kind.dictionaryKey) + QStringLiteral(" = t.") +
                     quoted(kind.dictionaryKey) + QStringLiteral(" WHERE t.Номер = ? ORDER BY t.") +
                     quoted(kind.info().keyField) + QStringLiteral(" LIMIT 1"),
                 {number});
    if (!row.next()) {
        return disc;
    }
    const QSqlRecord fields = row.record();
    const auto text = [&](const QString& field) {
        const int index = fields.indexOf(field);
        return index < 0 || row.value(index).isNull() ? QString() : row.value(index).toString();
    };
    disc.number = number;
    disc.name = text(QStringLiteral("Название"));
    disc.album = text(QStringLiteral("Альбом"));
    disc.year = text(QStringLiteral("Год"));
    disc.discs = discCount(text(QStringLiteral("Дисков")));
    disc.dictionaryName = text(QStringLiteral("Словарь"));
    disc.description = text(kind.category == Category::Computer ? QStringLiteral("РасОписание")
                                                                : QStringLiteral("Описание"));
    disc.dvdTime = text(QStringLiteral("Время"));
    disc.zone = text(QStringLiteral("Зона"));
    disc.soundFormats = text(QStringLiteral("ФорматЗвука"));
    if (kind.hasAlbum) {
        for (int k = 1; k <= 6; ++k) {
            const QString tracks = text(QStringLiteral("Записей%1").arg(k));
            if (!tracks.isEmpty()) {
                disc.tracks[k - 1] = twoDigits(tracks.toInt());
            }
            const QString time = text(QStringLiteral("Время%1").arg(k));
            if (!time.isEmpty()) {
                disc.times[k - 1] = time;
            }
        }
    }
    return disc;
}

bool saveDisc(AppContext& ctx, const CatalogueKind& kind, DiscRecord& disc, bool adding, int oldDiscCount,
              const ReductionQuestion& askReduction)
{
    fitToColumns(disc);
    const QString table = quoted(kind.info().table);
    qint64 dictionaryKey = 0;
    {
        Db db(ctx.MainDBPath);
        dictionaryKey = dictionaryKeyOf(db, kind, disc.dictionaryName);
    }
    // A pending shift of numbers and the disc's row are written in one transaction, so that
    // numbers never move for a disc that was not saved.
    Db db(ctx.MainDBPath);
    Transaction transaction(db);
    const int shiftStart = ctx.ShiftStart;
    int rowCount = 0;
    if (shiftStart > 0) {
        underFaultHandler(ctx, QStringLiteral("vinoraModule, MoveNumbers()"), [&] {
            ctx.ShiftStart = 0;
            rowCount = shiftNumbers(db, kind, shiftStart);
        });
    }
    QVariant key;
    if (adding) {
        db.exec(QStringLiteral("INSERT INTO ") + table + QStringLiteral(" (Номер, ") +
                    quoted(kind.dictionaryKey) + QStringLiteral(") VALUES (?, ?)"),
                {disc.number, dictionaryKey});
        key = db.scalar(QStringLiteral("SELECT last_insert_rowid()"));
        if (!ctx.AutoDetectTag.isEmpty()) {
            db.exec(QStringLiteral("UPDATE ") + table + QStringLiteral(" SET ДискID1_d = ? WHERE ") +
                        quoted(kind.info().keyField) + QStringLiteral(" = ?"),
                    {ctx.AutoDetectTag.mid(3), key});
        }
    } else {
        key = db.scalar(QStringLiteral("SELECT ") + quoted(kind.info().keyField) + QStringLiteral(" FROM ") +
                            table + QStringLiteral(" WHERE Номер = ? ORDER BY 1 LIMIT 1"),
                        {disc.number});
        if (kind.contents && disc.discs < oldDiscCount) {
            QStringList removed;
            for (int k = disc.discs + 1; k <= std::min(oldDiscCount, 6); ++k) {
                removed.append(db.scalar(QStringLiteral("SELECT ДискID%1 FROM ").arg(k) + table +
                                             QStringLiteral(" WHERE ") + quoted(kind.info().keyField) +
                                             QStringLiteral(" = ?"),
                                         {key})
                                   .toString());
            }
            if (std::any_of(removed.begin(), removed.end(),
                            [](const QString& id) { return !id.isEmpty(); })) {
                const QString tail =
                    kind.category == Category::Audio
                        ? QStringLiteral("! Если для удаляемых дисков был создан списко треков, то он будет "
                                         "удален. Продолжить?")
                        : QStringLiteral("! Если для удаляемых дисков была создана структура файлов, то она "
                                         "будет удалена. Продолжить?");
                if (!askReduction(QStringLiteral("Вы изменили общее число дисков c ") +
                                  QString::number(oldDiscCount) + QStringLiteral(" на ") +
                                  QString::number(disc.discs) + tail)) {
                    ctx.ShiftStart = static_cast<qint16>(shiftStart); // nothing moved: still pending
                    return false;
                }
                Db contents(*kind.contents == ContentsKind::Tracks ? ctx.TracksDBPath : ctx.FilesDBPath);
                const ContentsLists lists(contents, *kind.contents);
                for (int k = disc.discs + 1; k <= std::min(oldDiscCount, 6); ++k) {
                    const QString id =
                        db.scalar(QStringLiteral("SELECT ") + quoted(listField(kind, k)) +
                                      QStringLiteral(" FROM ") + table + QStringLiteral(" WHERE ") +
                                      quoted(kind.info().keyField) + QStringLiteral(" = ?"),
                                  {key})
                            .toString();
                    if (id.isEmpty()) {
                        continue;
                    }
                    if (lists.exists(id)) {
                        lists.drop(id);
                    }
                    db.exec(QStringLiteral("UPDATE ") + table + QStringLiteral(" SET ") +
                                quoted(listField(kind, k)) + QStringLiteral(" = NULL WHERE ") +
                                quoted(kind.info().keyField) + QStringLiteral(" = ?"),
                            {key});
                }
            }
        }
    }
    QStringList assignments{QStringLiteral("Название = ?"), QStringLiteral("Год = ?"),
                            QStringLiteral("Дисков = ?"), quoted(kind.dictionaryKey) + QStringLiteral(" = ?"),
                            QStringLiteral("ДатаИзменения = ?")};
    const auto textOrNull = [](const QString& text) { return text.isEmpty() ? QVariant() : QVariant(text); };
    QVariantList values{textOrNull(disc.name), textOrNull(disc.year), disc.discs, dictionaryKey,
                        dateValue(ctx.clock().today())};
    if (kind.category == Category::Audio) {
        assignments.append(QStringLiteral("Альбом = ?"));
        values.append(disc.album);
        for (int k = 1; k <= 6; ++k) {
            if (k > disc.discs) {
                disc.tracks[k - 1] = QStringLiteral("00");
                disc.times[k - 1] = QStringLiteral("00:00");
            }
            assignments.append(QStringLiteral("Записей%1 = ?").arg(k));
            values.append(disc.tracks[k - 1].toInt());
            assignments.append(QStringLiteral("Время%1 = ?").arg(k));
            values.append(disc.times[k - 1]);
        }
    } else if (kind.category == Category::Computer) {
        assignments.append(QStringLiteral("РасОписание = ?"));
        values.append(disc.description);
    } else {
        assignments += {QStringLiteral("Описание = ?"), QStringLiteral("Время = ?"),
                        QStringLiteral("Зона = ?"), QStringLiteral("ФорматЗвука = ?")};
        values += {disc.description, disc.dvdTime.toInt(), disc.zone.toInt(), disc.soundFormats};
    }
    values.append(key);
    db.exec(QStringLiteral("UPDATE ") + table + QStringLiteral(" SET ") +
                assignments.join(QStringLiteral(", ")) + QStringLiteral(" WHERE ") +
                quoted(kind.info().keyField) + QStringLiteral(" = ?"),
            values);
    StampCatalogueUpdate(db, kind.category, ctx.clock().today());
    transaction.commit();
    if (shiftStart > 0) {
        shiftCovers(ctx, shiftStart, rowCount);
    }
    if (kind.category != Category::Audio) {
        ctx.AutoDetectTag.clear();
    }
    ctx.LastSavedNumber = static_cast<qint16>(disc.number);
    return true;
}

} // namespace vinora
