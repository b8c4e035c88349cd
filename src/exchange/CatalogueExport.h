#pragma once

#include "store/Category.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace vinora {

class AppContext;
class Db;

// The first item of the style, description or genre box: no restriction.
inline const QString kAllValues = QStringLiteral("- все -");

// The optional columns of a catalogue page, as its check-list shows them (positions from 1).
QStringList catalogueFieldItems(Category category);
// The position of "Обложка" in that list.
int coverFieldPosition(Category category);

// "- все -", then the non-empty names of the catalogue's dictionary in stored order.
QStringList FullQueryCombo(const Db& db, Category category);

// What a catalogue page holds.
struct CatalogueExportOptions
{
    Category category = Category::Audio;
    QList<int> fields;         // checked positions of the check-list
    bool sorted = false;       // by title, else by number
    QString only = kAllValues; // one style, description or genre
};

// Writes the catalogue page to `path` (cover pictures into its ".files" folder when
// "Обложка" is checked) and gives the number of discs on it. AppError on failure; nothing is
// left behind then.
int ExportCatalog(const AppContext& ctx, const CatalogueExportOptions& options, const QString& path);

// The picture folder of a page: the page's name without its last four characters and ".files".
QString pictureFolderFor(const QString& page);

// "База данных успешно экспортирована в файл:" and the file.
QString catalogueDoneText(const QString& path);

} // namespace vinora
