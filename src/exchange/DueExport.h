#pragma once

#include <QDate>
#include <QList>
#include <QString>
#include <QStringList>
#include <optional>

namespace vinora {

class AppContext;
class Db;

// The loan ledger as a page, grouped by borrower.

// The check-list of the debtor page (positions from 1): "Телефон", "Категория диска", ...
QStringList dueFieldItems();

struct DueExportOptions
{
    bool openOnly = false; // only loans not yet returned
    QList<int> fields;     // checked positions of the check-list
};

// Writes the page to `path` and gives the number of borrowers on it. AppError on failure;
// nothing is left behind then.
int ExportDue(const AppContext& ctx, const DueExportOptions& options, const QString& path);

// The days from `from` to `to` when there are more than none, else "нет" (also when a day
// is missing).
QString dueDelayText(const std::optional<QDate>& from, const std::optional<QDate>& to);

QString dueDialogTitle();
QString dueNothingCheckedText(); // "Необходимо выбрать хотя бы один элемент!"
QString dueDoneText(const QString& path);

} // namespace vinora
