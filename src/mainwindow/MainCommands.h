#pragma once

#include <QList>
#include <QString>

namespace vinora {

// The commands of the main window by their tool identifiers, with the menu they stand in
// and the tool bar that carries them (empty when none).
struct MainCommand
{
    QString id;
    QString text;
    QString menuId;  // ID_Catalog, ID_Due, ID_DB, ID_View, ID_Help, or a submenu identifier
    QString toolbar; // "Каталоги", "Должники", "База данных" or empty
    bool checkable = false;
};

struct MainMenu
{
    QString id;
    QString text;
    QString parentId; // empty for the menu bar
};

const QList<MainMenu>& mainMenus();
const QList<MainCommand>& mainCommands();
// The three tool bars in their designed order, with the commands that toggle them.
struct MainToolbar
{
    QString title;
    QString objectName;
    QString toggleCommand;
};
const QList<MainToolbar>& mainToolbars();

} // namespace vinora
