#pragma once

#include "store/Category.h"

#include <QDate>
#include <QList>
#include <QString>
#include <optional>

namespace vinora {

class Db;

// One loan of a borrower's record.
struct RatingLine
{
    qint64 loan = 0;
    Category category = Category::Audio;
    QString number; // the disc's number, or "-" for a disc deleted since
    QString delay;  // days late, "нет" when on time, "?" while the disc is out
};

// Which loans the record takes: one category or all, only the discs still out or all.
struct RatingFilter
{
    std::optional<Category> only;
    bool outOnly = false;
};

// A borrower's record of the statistics window.
struct BorrowerRecord
{
    QList<RatingLine> lines; // in ledger order
    int totalDays = 0;       // the days late of the returned loans listed
    int out = 0;             // the loans listed that are still open
    // The average lateness over every line listed (open loans count as 0), rounded half to
    // even and capped at the bar's 80; nothing when no line is listed or only open loans
    // were asked for.
    std::optional<int> rating;
};

inline constexpr int kRatingCap = 80;

BorrowerRecord borrowerRecord(const Db& db, qint64 borrower, const RatingFilter& filter, const QDate& today);

// "Хороший", "Нормальный", "Плохой", "Ужасный!!!", "Хуже некуда..." for a rating.
QString ratingWord(int rating);

// The warning shown while a disc is lent to `name`: the rating word from "Плохой" up, or
// empty for a good borrower or a name not yet known. Every loan counts, an open one as 0
// days, an early return as 0.
QString lendingWarning(const Db& db, const QString& name, const QDate& today);

// Rounds to the nearest integer, a half to the even neighbour (2.5 -> 2, 3.5 -> 4).
int roundHalfEven(double value);

} // namespace vinora
