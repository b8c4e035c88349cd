#include "store/Category.h"

namespace vinora {
namespace {

const std::array<CategoryInfo, 3>& infos()
{
    static const std::array<CategoryInfo, 3> list = {{
        {Category::Audio, QStringLiteral("AD"), QStringLiteral("Аудио"), QStringLiteral("КодАудиоДиск"),
         QStringLiteral("ПослОбновлАудио"), QStringLiteral("ad_")},
        {Category::Computer, QStringLiteral("PC"), QStringLiteral("Компьютер"),
         QStringLiteral("КодКомпьютерныйДиск"), QStringLiteral("ПослОбновлКомпьютер"), QStringLiteral("pc_")},
        {Category::Dvd, QStringLiteral("DVD"), QStringLiteral("DVD"), QStringLiteral("КодDVDДиск"),
         QStringLiteral("ПослОбновлDVD"), QStringLiteral("dvd_")},
    }};
    return list;
}

} // namespace

const CategoryInfo& categoryInfo(Category category)
{
    return infos()[static_cast<std::size_t>(category)];
}

const std::array<Category, 3>& allCategories()
{
    static const std::array<Category, 3> list = {Category::Audio, Category::Computer, Category::Dvd};
    return list;
}

const CategoryInfo* categoryByCode(const QString& code)
{
    for (const CategoryInfo& info : infos()) {
        if (info.code == code) {
            return &info;
        }
    }
    return nullptr;
}

} // namespace vinora
