#include "mainwindow/MainCommands.h"

#include "frame/NumericPrefix.h"

namespace vinora {
namespace {

MainCommand cmd(const char* id, const char* text, const char* menu, const char* toolbar = "",
                bool checkable = false, const char* icon = "")
{
    return {QString::fromUtf8(id),
            QString::fromUtf8(text),
            QString::fromUtf8(menu),
            QString::fromUtf8(toolbar),
            checkable,
            QString::fromLatin1(icon)};
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
        {QStringLiteral("ID_View_Toolbars"), QStringLiteral("Панели инструментов"),
         QStringLiteral("ID_View")},
        {QStringLiteral("ID_Help"), QStringLiteral("&Помощь"), {}},
        {QStringLiteral("ID_QuickAD"), QStringLiteral("Аудио диски"), {}, true},
        {QStringLiteral("ID_QuickPC"), QStringLiteral("Компьютерные диски"), {}, true},
        {QStringLiteral("ID_QuickDVD"), QStringLiteral("DVD диски"), {}, true},
        {QStringLiteral("ID_ToolbarEdit"), QStringLiteral("Запрос"), {}, true},
        {QStringLiteral("ID_DB_DiskImage"), QStringLiteral("Образ диска"), {}, true},
    };
    return menus;
}

const QList<MainCommand>& mainCommands()
{
    static const QList<MainCommand> commands = {
        cmd("ID_Catalog_AudioCD", "Аудио диски", "ID_Catalog", "Каталоги", false, "media-optical-audio"),
        cmd("ID_Catalog_PCCD", "Компьютерные диски", "ID_Catalog", "Каталоги", false, "media-optical"),
        cmd("ID_Catalog_DVD", "DVD диски", "ID_Catalog", "Каталоги", false, "media-optical-dvd"),
        cmd("ID_Catalog_AddAudioCD", "Аудио диск", "ID_Catalog_AddCD"),
        cmd("ID_Catalog_AddPCCD", "Компьютерный диск", "ID_Catalog_AddCD"),
        cmd("ID_Catalog_AddDVD", "DVD диск", "ID_Catalog_AddCD"),
        cmd("ID_Catalog_ChangeNumber", "Изменить номер диска", "ID_Catalog"),
        cmd("ID_Catalog_ChangeCategory", "Изменить категорию диска", "ID_Catalog"),
        cmd("ID_Quit", "Выход", "ID_Catalog", "", false, "application-exit"),
        cmd("ID_Due_List", "Список Должников", "ID_Due", "Должники", false, "x-office-address-book"),
        cmd("ID_Due_DiskHistory", "История дисков", "ID_Due", "Должники", false, "document-open-recent"),
        cmd("ID_Due_Stat", "Статистика", "ID_Due", "Должники", false, "x-office-spreadsheet"),
        cmd("ID_Due_EditNames", "Редактирование имен должников", "ID_Due"),
        cmd("ID_Due_Admin", "Управление должниками", "ID_Due", "Должники", false, "contact-new"),
        cmd("ID_DB_Open", "Открыть...", "ID_DB", "База данных", false, "document-open"),
        cmd("ID_DB_OpenLocal", "Открыть локальную", "ID_DB", "База данных", false, "go-home"),
        cmd("ID_DB_Save", "Сохранить как...", "ID_DB"),
        cmd("ID_DB_ExportHTML", "HTML-файл...", "ID_DB_Export"),
        cmd("ID_DB_ExportDB", "DB-файл...", "ID_DB_Export"),
        cmd("ID_DB_Import", "Импорт...", "ID_DB"),
        cmd("ID_DB_Wizard", "Мастер обслуживания", "ID_DB", "База данных", false, "emblem-system"),
        cmd("ID_DB_Option", "Параметры", "ID_DB", "База данных", false, "preferences-system"),
        cmd("ID_DB_Search", "Поиск", "ID_DB", "База данных", false, "edit-find"),
        cmd("ID_View_Toolbars_Catalog", "Каталоги", "ID_View_Toolbars", "", true),
        cmd("ID_View_Toolbars_Due", "Должники", "ID_View_Toolbars", "", true),
        cmd("ID_View_Toolbars_DB", "База данных", "ID_View_Toolbars", "", true),
        cmd("ID_View_Toolbars_Option", "Настройка...", "ID_View_Toolbars"),
        cmd("ID_Panel", "Панель vinora", "ID_View", "", true),
        cmd("ID_Help_Index", "Справка", "ID_Help", "", false, "help-contents"),
        cmd("ID_Help_Info", "Информация", "ID_Help"),
        cmd("ID_Help_About", "О программе", "ID_Help", "", false, "help-about"),
        cmd("ID_AddCD", "Добавить", "", "Каталоги", false, "list-add"),
        cmd("ID_QuickADCatalog", "Каталог", "ID_QuickAD"),
        cmd("ID_QuickADNewCD", "Новый диск", "ID_QuickAD"),
        cmd("ID_QuickADFind", "Поиск треков...", "ID_QuickAD"),
        cmd("ID_QuickADNewDue", "Новый Должник", "ID_QuickAD"),
        cmd("ID_QuickPCCatalog", "Каталог", "ID_QuickPC"),
        cmd("ID_QuickPCNewCD", "Новый диск", "ID_QuickPC"),
        cmd("ID_QuickPCFind", "Поиск файлов...", "ID_QuickPC"),
        cmd("ID_QuickPCNewDue", "Новый должник", "ID_QuickPC"),
        cmd("ID_QuickDVDCatalog", "Каталог", "ID_QuickDVD"),
        cmd("ID_QuickDVDNewCD", "Новый диск", "ID_QuickDVD"),
        cmd("ID_QuickDVDNewDue", "Новый должник", "ID_QuickDVD"),
        cmd("ID_ToolbarEditAdd", "Добавить", "ID_ToolbarEdit"),
        cmd("ID_ToolbarEditDel", "Удалить", "ID_ToolbarEdit"),
        cmd("ID_ToolbarEditChange", "Изменить", "ID_ToolbarEdit"),
        cmd("ID_DB_DiskImageAdd", "Добавить образ диска...", "ID_DB_DiskImage"),
        cmd("ID_DB_DiskImageRemove", "Убрать образ из списка устройств", "ID_DB_DiskImage"),
    };
    return commands;
}

bool isLiveCommand(const QString& toolId)
{
    static const QStringList live = {
        QStringLiteral("ID_Quit"),
        QStringLiteral("ID_View_Toolbars_Catalog"),
        QStringLiteral("ID_View_Toolbars_Due"),
        QStringLiteral("ID_View_Toolbars_DB"),
        QStringLiteral("ID_Panel"),
        QStringLiteral("ID_DB_Open"),
        QStringLiteral("ID_DB_OpenLocal"),
        QStringLiteral("ID_DB_ExportHTML"),
        QStringLiteral("ID_Help_Info"),
        QStringLiteral("ID_Help_Index"),
        QStringLiteral("ID_Help_About"),
        QStringLiteral("ID_Catalog_ChangeCategory"),
        QStringLiteral("ID_ToolbarEditAdd"),
        QStringLiteral("ID_ToolbarEditChange"),
        QStringLiteral("ID_ToolbarEditDel"),
        QStringLiteral("ID_DB_DiskImageAdd"),
        QStringLiteral("ID_DB_DiskImageRemove"),
        QStringLiteral("ID_DB_DefaultCDDVDROM"),
        QStringLiteral("ID_DB_Option"),
        QStringLiteral("ID_View_Toolbars_Option"),
        QStringLiteral("ID_Catalog_AudioCD"),
        QStringLiteral("ID_Catalog_PCCD"),
        QStringLiteral("ID_Catalog_DVD"),
        QStringLiteral("ID_Catalog_ChangeNumber"),
        QStringLiteral("ID_QuickADCatalog"),
        QStringLiteral("ID_Catalog_AddAudioCD"),
        QStringLiteral("ID_Catalog_AddPCCD"),
        QStringLiteral("ID_Catalog_AddDVD"),
        QStringLiteral("ID_AddCD"),
        QStringLiteral("ID_QuickADNewCD"),
        QStringLiteral("ID_QuickPCNewCD"),
        QStringLiteral("ID_QuickDVDNewCD"),
        QStringLiteral("ID_QuickPCCatalog"),
        QStringLiteral("ID_QuickDVDCatalog"),
        QStringLiteral("ID_Due_List"),
        QStringLiteral("ID_Due_DiskHistory"),
        QStringLiteral("ID_Due_Stat"),
        QStringLiteral("ID_Due_EditNames"),
        QStringLiteral("ID_Due_Admin"),
        QStringLiteral("ID_QuickADNewDue"),
        QStringLiteral("ID_QuickPCNewDue"),
        QStringLiteral("ID_QuickDVDNewDue"),
        QStringLiteral("ID_DB_Search"),
        QStringLiteral("ID_QuickADFind"),
        QStringLiteral("ID_QuickPCFind"),
        QStringLiteral("ID_DB_Import"),
        QStringLiteral("ID_DB_Wizard"),
        QStringLiteral("ID_DB_Save"),
        QStringLiteral("ID_DB_ExportDB"),
    };
    return live.contains(toolId);
}

const QStringList& localOnlyCommands()
{
    static const QStringList commands = {
        QStringLiteral("ID_Catalog_AddCD"),
        QStringLiteral("ID_AddCD"),
        QStringLiteral("ID_Catalog_ChangeNumber"),
        QStringLiteral("ID_Catalog_ChangeCategory"),
        QStringLiteral("ID_DB_Save"),
        QStringLiteral("ID_DB_Wizard"),
        QStringLiteral("ID_DB_Search"),
        QStringLiteral("ID_DB_Import"),
        QStringLiteral("ID_DB_Wizard"),
        QStringLiteral("ID_DB_Save"),
        QStringLiteral("ID_DB_ExportDB"),
        QStringLiteral("ID_DB_ExportDB"),
        QStringLiteral("ID_DB_DefaultCDDVDROM"),
        QStringLiteral("ID_Due"),
        QStringLiteral("ID_Due_List"),
        QStringLiteral("ID_Due_Stat"),
        QStringLiteral("ID_Due_DiskHistory"),
        QStringLiteral("ID_Due_Admin"),
        QStringLiteral("ID_QuickADFind"),
        QStringLiteral("ID_QuickADNewCD"),
        QStringLiteral("ID_QuickADNewDue"),
        QStringLiteral("ID_QuickPCFind"),
        QStringLiteral("ID_QuickPCNewCD"),
        QStringLiteral("ID_QuickPCNewDue"),
        QStringLiteral("ID_QuickDVDNewCD"),
        QStringLiteral("ID_QuickDVDNewDue"),
    };
    return commands;
}

QString lastAddCommand(const QString& lastAction, bool present)
{
    if (!present) {
        return QStringLiteral("ID_Catalog_AddAudioCD");
    }
    switch (static_cast<int>(numericPrefix(lastAction))) {
    case 1:
        return QStringLiteral("ID_Catalog_AddAudioCD");
    case 2:
        return QStringLiteral("ID_Catalog_AddPCCD");
    case 3:
        return QStringLiteral("ID_Catalog_AddDVD");
    default:
        return {};
    }
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
