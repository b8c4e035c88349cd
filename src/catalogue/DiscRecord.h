#pragma once

#include "catalogue/CatalogueKind.h"

#include <QString>
#include <array>
#include <functional>

namespace vinora {

class AppContext;
class Db;
struct Toc;

// One disc as the editor holds it while it is being entered or changed.
struct DiscRecord
{
    int number = 0;
    QString name;
    QString album; // audio
    QString year;
    int discs = 1;
    std::array<QString, 6> tracks{QStringLiteral("00"), QStringLiteral("00"), QStringLiteral("00"),
                                  QStringLiteral("00"), QStringLiteral("00"), QStringLiteral("00")};
    std::array<QString, 6> times{QStringLiteral("00:00"), QStringLiteral("00:00"), QStringLiteral("00:00"),
                                 QStringLiteral("00:00"), QStringLiteral("00:00"), QStringLiteral("00:00")};
    QString dictionaryName; // style, description or genre
    QString description;    // РасОписание (computer) or Описание (DVD)
    QString dvdTime;        // Время of a DVD, minutes
    QString zone;           // Зона of a DVD
    QString soundFormats;   // codes of ФорматЗвука, each with a comma behind
};

// The sizes of the fields as the catalogue's tables hold them.
inline constexpr int kTitleLength = 60;          // Название, Альбом
inline constexpr int kYearLength = 5;            // Год
inline constexpr int kDescriptionLength = 255;   // РасОписание, Описание
inline constexpr int kDictionaryNameLength = 50; // Стиль, Описание, Жанр
inline constexpr int kDvdTimeMaximum = 32767;    // Время of a DVD, a 16-bit number of minutes

// The spinners of the editor, on the texts of their fields.
QString spinYear(const QString& text, bool up);    // "0000" .. "9999"
QString spinTracks(const QString& text, bool up);  // "00" .. "99"
QString spinDiscs(const QString& text, bool up);   // 1 .. 6
QString spinTime(const QString& text, bool up);    // "mm:ss", seconds counted to 99
QString spinMinutes(const QString& text, bool up); // a DVD's minutes, 0 .. kDvdTimeMaximum
// The disc count as the field keeps it: 1 to 6, anything else "1".
int discCount(const QString& text);

// The playing time of an audio disc from its table of contents, "mm:ss" with the seconds
// taken modulo 61, as the catalogue has always shown it; empty when the minutes exceed 99.
QString playingTimeText(const Toc& toc);

// The disc of `number` read into a record (the first row of that number), for a change.
DiscRecord readDisc(const Db& db, const CatalogueKind& kind, int number);

// Asked before lists of discs that a smaller count removes are deleted; true goes on.
using ReductionQuestion = std::function<bool(const QString& text)>;

// Saves the record: the dictionary name is found or added, a pending shift of numbers
// runs (ShiftStart), the row is added (with the binding of AutoDetectTag) or changed
// (`oldDiscCount` discs before), the catalogue's change is stamped. The shift and the row
// are one transaction: when the row cannot be written, no number has moved. False when
// the user declined the reduction; nothing but a new dictionary name was saved then, and
// a pending shift is still pending.
bool saveDisc(AppContext& ctx, const CatalogueKind& kind, DiscRecord& disc, bool adding, int oldDiscCount,
              const ReductionQuestion& askReduction);

} // namespace vinora
