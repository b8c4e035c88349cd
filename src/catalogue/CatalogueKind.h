#pragma once

#include "store/Category.h"
#include "store/ContentsLists.h"

#include <QList>
#include <QString>
#include <optional>

namespace vinora {

struct SortItem
{
    QString text;       // the item of the sort list
    QString orderField; // the field it orders by
};

// What makes the audio, computer and DVD catalogues differ: one browser, editor and
// dictionary serve all three through this description.
struct CatalogueKind
{
    Category category;
    QString formName;          // "frmCatalogueAudioCD" ...
    QString title;             // "Каталог Аудио дисков"
    QString dictionaryTable;   // "Стиль", "Описание", "Жанр"
    QString dictionaryKey;     // "КодСтиля", ...
    QString dictionaryControl; // "cmbStyle", "cmbDescription", "cmbGenre"
    QString nameCaption;       // the heading of the name column
    QList<SortItem> sortItems;
    QString sortKey; // "ADCDsorted" ... in section Sorted
    QString deleteSecondLine;
    std::optional<ContentsKind> contents; // the per-disc lists deleted with a disc
    int autoRespSlots;                    // bindings looked at to find the disc in the drive
    bool hasAlbum;                        // the album field and its filter
    bool doubleClickSetting;              // DblClick decides between the editor and the list

    const CategoryInfo& info() const { return categoryInfo(category); }
    QString queryTitle() const { return title + QStringLiteral(" - Результат запроса"); }
    QString sortDescKey() const { return sortKey + QStringLiteral("DESC"); }
    // The fields of the catalogue's own table.
    const QStringList& fields() const;
};

const CatalogueKind& catalogueKind(Category category);

} // namespace vinora
