#pragma once

#include <QStringList>

namespace vinora {

class Db;

// The name filters of the scanner: Фильтр1 leaves out the files that match a used entry,
// Фильтр2 takes only those. Entries are plain parts of names, matched without regard to case.
enum class FilterTable { Exclude, Include }; // Фильтр1, Фильтр2

QString filterTableName(FilterTable table);

// The used entries of a filter table (at most 50; AppError 9 for a 51st).
QStringList FullArrayFileFiltr(const Db& filesDb, FilterTable table);

// True when the scan skips a file of this name.
bool skipsFile(const QStringList& entries, FilterTable table, const QString& name);

} // namespace vinora
