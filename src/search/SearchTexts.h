#pragma once

#include "search/ContentsSearch.h"

#include <QString>
#include <QStringList>
#include <QStringView>
#include <optional>

namespace vinora {

// The texts of the search window for its results.

// The "№" cell: the disc's number, with its place in the set after it when that is not the
// first: "12", "12 (3)".
QString numberCell(int number, int disc);

struct DiscPlace
{
    int number = 0;
    int disc = 1;

    bool operator==(const DiscPlace&) const = default;
};

// The number and place read back from a "№" cell; nothing for a text no cell holds.
std::optional<DiscPlace> parseNumberCell(QStringView cell);

// The order of "№" cells: by number, then by the place in the set ("5" < "12" < "12 (2)").
// A text no cell holds comes after every cell.
int compareNumberCells(QStringView a, QStringView b);

// The "Путь" cell: the path, or "..." for the root "\".
QString pathCell(const QString& path);

// The headers of the result columns: name, "№" and, for files and folders, "Путь".
QStringList resultColumns(const SearchRequest& request);

// The word of the search method's captions: "файлах" or "треках".
QString searchPlaceWord(const SearchRequest& request);

// The line above the results: with the count once something was found, else the bare
// "Результат поиска:" (also after clearing).
QString resultLine(const SearchRequest& request, int found);

// The message of a search that found nothing.
QString nothingFoundMessage(const SearchRequest& request);

} // namespace vinora
