#pragma once

#include "store/Category.h"

#include <QDate>
#include <QString>
#include <optional>

namespace vinora {

class Db;

// A disc of a catalogue as the loan commands see it.
struct LoanDisc
{
    Category category = Category::Audio;
    qint64 key = 0; // the record key that loans refer to
    int number = 0;
    QString title; // Название
    QString album; // Альбом of an audio disc; empty for the others
    bool lent = false; // Должник
};

// "Аудио диск", "Компьютерный диск", "DVD диск".
QString loanCategoryText(Category category);
// The category of one of those texts, or nothing.
std::optional<Category> loanCategoryOfText(const QString& text);

// Название, and " - " Альбом for an audio disc with an album.
QString loanDiscTitle(const LoanDisc& disc);

// The first disc of the catalogue with that number, or nothing.
std::optional<LoanDisc> findLoanDisc(const Db& db, Category category, int number);
// The disc of that record key, or nothing when it has been deleted.
std::optional<LoanDisc> loanDiscByKey(const Db& db, Category category, qint64 key);

// The key of the borrower of that name (letter case aside); a new name is added with the
// phone "нет".
qint64 borrowerFor(const Db& db, const QString& name);
// The key of the borrower of that name (letter case aside), or nothing.
std::optional<qint64> findBorrower(const Db& db, const QString& name);

// The ledger's commands. Each is one transaction and keeps the rule that a disc is marked
// lent exactly while an open loan of it stands (the one exception is told at
// closeNewestLoan). `due` empty is a loan without term.

// Lends the disc to the borrower of that name (added when new): the disc is marked lent
// and an open loan is written, issued today.
void lendDisc(const Db& db, const LoanDisc& disc, const QString& name, std::optional<QDate> due,
              const QDate& today);
// Takes the disc back: the mark is cleared and the newest loan of the disc closed today
// (the newest whether or not it is open: an older, closed loan stays as it was).
void returnDisc(const Db& db, Category category, qint64 key, const QDate& today);
// Takes back the disc of open loan `loan` (the debtor list's return): the mark is cleared
// and that loan closed today.
void returnLoan(const Db& db, Category category, qint64 key, qint64 loan, const QDate& today);
// Closes the newest loan of the disc today and gives its borrower's name, leaving the
// disc's mark alone: the quick return asks its question after this and clears the mark
// only when it is confirmed (cancelled, the disc stays marked with no open loan).
QString closeNewestLoan(const Db& db, Category category, qint64 key, const QDate& today);
// Clears the lent mark of a disc.
void clearLentMark(const Db& db, Category category, qint64 key);
// Changes the promised day of the open loan of the disc.
void changeLoanTerm(const Db& db, Category category, qint64 key, std::optional<QDate> due);

// "1 день", "2 дня", "5 дней", "11 дней", "111 день": the word after a number of days.
QString daysText(int days);

} // namespace vinora
