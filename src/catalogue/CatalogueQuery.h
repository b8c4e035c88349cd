#pragma once

#include "catalogue/CatalogueKind.h"

#include <QList>
#include <QString>
#include <QVariant>
#include <optional>

namespace vinora {

// A condition of a catalogue's filter: a field of the catalogue (or its dictionary), an
// operator and a value that travels to the database as a bound value.
struct Condition
{
    QString connector; // "AND" or "OR" (before it; the first is always "AND")
    QString field;
    QString op; // "=", "<>", "<", ">", "<=", ">=", "LIKE"
    QVariant value;
};

struct CatalogueFilter
{
    QList<Condition> conditions;
    bool isEmpty() const { return conditions.isEmpty(); }
};

// The filters of the browser: a dictionary name, a name or an album containing a text.
CatalogueFilter dictionaryFilter(const CatalogueKind& kind, const QString& name);
CatalogueFilter likeFilter(const QString& field, const QString& text); // "*text*"

// A filter written as the catalogue's stored queries write it ("AND Стиль = \"Rock\"",
// "And Название LIKE '*abc*'"), read over the fields of the catalogue and the operators
// above; nothing when the text does not read as such (it is never put into SQL as text).
std::optional<CatalogueFilter> parseFilter(const CatalogueKind& kind, const QString& text);

// The filter written back in the stored form, each value quoted with its quotes doubled.
QString filterText(const CatalogueFilter& filter);

struct BuiltQuery
{
    QString sql;
    QVariantList values;
};

// The rows of a catalogue joined with its dictionary, filtered, ordered by the sort item
// with ties broken by number in the same direction. A sort index out of range orders by
// number.
BuiltQuery buildCatalogueQuery(const CatalogueKind& kind, const CatalogueFilter& filter, int sortIndex,
                               bool descending);

} // namespace vinora
