#pragma once

#include "store/Category.h"

#include <QDate>
#include <QList>
#include <QString>
#include <optional>

namespace vinora {

class Db;

// The orders of the debtor list, by their places in its sort box.
enum class DueSort { ByName = 0, ByIssue = 1, ByDue = 2 };

// The debtor list's filter: one category, or the borrowers whose name holds a text.
struct DueFilter
{
    std::optional<Category> category;
    QString nameContains; // taken as plain text, letter case aside
    bool isEmpty() const { return !category && nameContains.isEmpty(); }
};

// An open loan with its borrower.
struct OpenLoan
{
    qint64 loan = 0;
    qint64 borrower = 0;
    QString name;
    QString phone;
    Category category = Category::Audio;
    qint64 discKey = 0;
    QDate issued;
    std::optional<QDate> due; // nothing for a loan without term
};

QList<OpenLoan> openLoans(const Db& db, DueSort sort, bool descending, const DueFilter& filter);

// What the debtor list shows beside the selected loan.
struct OverdueState
{
    bool mark = false; // "Забрать" shown (blinking)
    QString days;      // "нет", or "3 дня" late
};
// A loan due today is marked but not yet late; one without term is never marked.
OverdueState overdueState(const std::optional<QDate>& due, const QDate& today);

// Stores a borrower's phone; an empty text is stored (and shown) as "нет". Gives the text
// stored.
QString setBorrowerPhone(const Db& db, qint64 borrower, const QString& phone);

} // namespace vinora
