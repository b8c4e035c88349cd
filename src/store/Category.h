#pragma once

#include <QString>
#include <array>

namespace vinora {

// The three catalogues, by the codes that the loans, skipcd.ini and query.ini use.
enum class Category { Audio, Computer, Dvd };

struct CategoryInfo
{
    Category category;
    QString code;        // "AD", "PC", "DVD"
    QString table;       // "Аудио", "Компьютер", "DVD"
    QString keyField;    // the record key that loans refer to
    QString stampField;  // its field in _Информация
    QString coverPrefix; // cover files box/<prefix><number>.box
};

const CategoryInfo& categoryInfo(Category category);
const std::array<Category, 3>& allCategories();
// The category of a code ("AD", "PC", "DVD"), or nothing for any other text.
const CategoryInfo* categoryByCode(const QString& code);

} // namespace vinora
