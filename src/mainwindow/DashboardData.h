#pragma once

#include "store/Category.h"

#include <QDate>
#include <QString>
#include <array>

namespace vinora {

class Db;

// What the dashboard shows of one catalogue.
struct CatalogueSummary
{
    int discs = 0;
    QDate updated;   // invalid: no date ("-")
    int onLoan = 0;  // loans still out
    int overdue = 0; // loans out whose due date is today or past
};

using DashboardData = std::array<CatalogueSummary, 3>; // audio, computer, DVD

// The counts and dates of the three catalogues.
DashboardData readDashboard(const Db& db);
// Adds the overdue loans of each category (a loan due today counts; one without a date
// does not).
void countOverdue(const Db& db, const QDate& today, DashboardData& data);

// "22 ноября 2026 г.", or "-" for no date.
QString updateDateText(const QDate& date);

} // namespace vinora
