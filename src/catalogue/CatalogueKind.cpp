#include "catalogue/CatalogueKind.h"

#include "store/Schema.h"

namespace vinora {
namespace {

SortItem item(const char* text, const char* field)
{
    return {QString::fromUtf8(text), QString::fromUtf8(field)};
}

QStringList tableFields(const QString& table)
{
    for (const TableDef& def : mainTables()) {
        if (def.name == table) {
            QStringList names;
            for (const FieldDef& field : def.fields) {
                names.append(field.name);
            }
            return names;
        }
    }
    return {};
}

} // namespace

const QStringList& CatalogueKind::fields() const
{
    static const QStringList audio = tableFields(QStringLiteral("Аудио"));
    static const QStringList computer = tableFields(QStringLiteral("Компьютер"));
    static const QStringList dvd = tableFields(QStringLiteral("DVD"));
    return category == Category::Audio ? audio : category == Category::Computer ? computer : dvd;
}

const CatalogueKind& catalogueKind(Category category)
{
    static const CatalogueKind audio{
        Category::Audio,
        QStringLiteral("frmCatalogueAudioCD"),
        QStringLiteral("Каталог Аудио дисков"),
        QStringLiteral("Стиль"),
        QStringLiteral("КодСтиля"),
        QStringLiteral("cmbStyle"),
        QStringLiteral("Группа/Исполнитель"),
        {item("по номеру", "Номер"), item("по группе/исполнителю", "Название"), item("по альбому", "Альбом"),
         item("по году", "Год"), item("по дискам", "Дисков"), item("по стилю", "Стиль"),
         item("по дате добавления", "ДатаЗаписи"), item("по дате изменения", "ДатаИзменения")},
        QStringLiteral("ADCDsorted"),
        QStringLiteral("Список треков этого диска будет также удален."),
        ContentsKind::Tracks,
        6,
        true,
        true};
    static const CatalogueKind computer{
        Category::Computer,
        QStringLiteral("frmCataloguePCCD"),
        QStringLiteral("Каталог Компьютерных дисков"),
        QStringLiteral("Описание"),
        QStringLiteral("КодОписания"),
        QStringLiteral("cmbDescription"),
        QStringLiteral("Название"),
        {item("по номеру", "Номер"), item("по названию", "Название"), item("по описанию", "Описание"),
         item("по году", "Год"), item("по дискам", "Дисков"), item("по дате добавления", "ДатаЗаписи"),
         item("по дате изменению", "ДатаИзменения")},
        QStringLiteral("PCCDsorted"),
        QStringLiteral("Структура файлов этого диска будет также удалена."),
        ContentsKind::Files,
        4,
        false,
        true};
    static const CatalogueKind dvd{
        Category::Dvd,
        QStringLiteral("frmCatalogueDVD"),
        QStringLiteral("Каталог DVD дисков"),
        QStringLiteral("Жанр"),
        QStringLiteral("КодЖанр"),
        QStringLiteral("cmbGenre"),
        QStringLiteral("Название"),
        {item("по номеру", "Номер"), item("по названию", "Название"), item("по жанру", "Жанр"),
         item("по году", "Год"), item("по дискам", "Дисков"), item("по зоне", "Зона"),
         item("по дате добавления", "ДатаЗаписи"), item("по дате изменению", "ДатаИзменения")},
        QStringLiteral("DVDsorted"),
        QStringLiteral("Структура файлов и обложка этого диска будут также удалены."),
        std::nullopt,
        6,
        false,
        false};
    return category == Category::Audio ? audio : category == Category::Computer ? computer : dvd;
}

} // namespace vinora
