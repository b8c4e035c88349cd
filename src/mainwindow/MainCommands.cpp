#include "mainwindow/MainCommands.h"

namespace vinora {
namespace {

MainCommand cmd(const char* id, const char* text, const char* menu, const char* toolbar = "", bool checkable = false)
{
    return {QString::fromUtf8(id), QString::fromUtf8(text), QString::fromUtf8(menu), QString::fromUtf8(toolbar),
            checkable};
}

} // namespace

const QList<MainMenu>& mainMenus()
{
    static const QList<MainMenu> menus = {
        {QStringLiteral("ID_Catalog"), QStringLiteral("&Каталог"), {}},
        {QStringLiteral("ID_Catalog_AddCD"), QStringLiteral("Добавить"), QStringLiteral("ID_Catalog")},
        {QStringLiteral("ID_Due"), QStringLiteral("&Должники"), {}},
        {QStringLiteral("ID_DB"), QStringLiteral("&База данных"), {}},
        {QStringLiteral("ID_DB_Export"), QStringLiteral("Экспорт"), QStringLiteral("ID_DB")},
        {QStringLiteral("ID_View"), QStringLiteral("&Вид"), {}},
        {QStringLiteral("ID_View_Toolbars"), QStringLiteral("Панели инструментов"), QStringLiteral("ID_View")},
        {QStringLiteral("ID_Help"), QStringLiteral("&Помощь"), {}},
    };
    return menus;
}

const QList<MainCommand>& mainCommands()
{
    static const QList<MainCommand> commands = {
        cmd("ID_Catalog_AudioCD", "Аудио диски", "ID_Catalog", "Каталоги"),
        cmd("ID_Catalog_PCCD", "Компьютерные диски", "ID_Catalog", "Каталоги"),
        cmd("ID_Catalog_DVD", "DVD диски", "ID_Catalog", "Каталоги"),
        cmd("ID_Catalog_AddAudioCD", "Аудио диск", "ID_Catalog_AddCD"),
        cmd("ID_Catalog_AddPCCD", "Компьютерный диск", "ID_Catalog_AddCD"),
        cmd("ID_Catalog_AddDVD", "DVD диск", "ID_Catalog_AddCD"),
        cmd("ID_Catalog_ChangeNumber", "Изменить номер диска", "ID_Catalog"),
        cmd("ID_Catalog_ChangeCategory", "Изменить категорию диска", "ID_Catalog"),
        cmd("ID_Quit", "Выход", "ID_Catalog"),
        cmd("ID_Due_List", "Список Должников", "ID_Due", "Должники"),
        cmd("ID_Due_DiskHistory", "История дисков", "ID_Due", "Должники"),
        cmd("ID_Due_Stat", "Статистика", "ID_Due", "Должники"),
        cmd("ID_Due_EditNames", "Редактирование имен должников", "ID_Due"),
        cmd("ID_Due_Admin", "Управление должниками", "ID_Due", "Должники"),
        cmd("ID_DB_Open", "Открыть...", "ID_DB", "База данных"),
        cmd("ID_DB_OpenLocal", "Открыть локальную", "ID_DB", "База данных"),
        cmd("ID_DB_Save", "Сохранить как...", "ID_DB"),
        cmd("ID_DB_ExportHTML", "HTML-файл...", "ID_DB_Export"),
        cmd("ID_DB_ExportDB", "DB-файл...", "ID_DB_Export"),
        cmd("ID_DB_Import", "Импорт...", "ID_DB"),
        cmd("ID_DB_Wizard", "Мастер обслуживания", "ID_DB", "База данных"),
        cmd("ID_DB_Option", "Параметры", "ID_DB", "База данных"),
        cmd("ID_DB_Search", "Поиск", "ID_DB", "База данных"),
        cmd("ID_View_Toolbars_Catalog", "Каталоги", "ID_View_Toolbars", "", true),
        cmd("ID_View_Toolbars_Due", "Должники", "ID_View_Toolbars", "", true),
        cmd("ID_View_Toolbars_DB", "База данных", "ID_View_Toolbars", "", true),
        cmd("ID_View_Toolbars_Option", "Настройка...", "ID_View_Toolbars"),
        cmd("ID_Panel", "Панель vinora", "ID_View", "", true),
        cmd("ID_Help_Index", "Справка", "ID_Help"),
        cmd("ID_Help_Info", "Информация", "ID_Help"),
        cmd("ID_Help_About", "О программе", "ID_Help"),
    };
    return commands;
}

const QList<MainToolbar>& mainToolbars()
{
    static const QList<MainToolbar> toolbars = {
        {QStringLiteral("Каталоги"), QStringLiteral("tbCatalog"), QStringLiteral("ID_View_Toolbars_Catalog")},
        {QStringLiteral("Должники"), QStringLiteral("tbDue"), QStringLiteral("ID_View_Toolbars_Due")},
        {QStringLiteral("База данных"), QStringLiteral("tbDB"), QStringLiteral("ID_View_Toolbars_DB")},
    };
    return toolbars;
}

} // namespace vinora
