#pragma once

#include <QList>
#include <QString>
#include <QStringList>

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
    QString icon; // a name of the desktop's icon theme
};

struct MainMenu
{
    QString id;
    QString text;
    QString parentId;   // empty for the menu bar or a pop-up
    bool popup = false; // shown at the mouse, not in the menu bar
};

const QList<MainMenu>& mainMenus();
const QList<MainCommand>& mainCommands();

// Commands whose work is done today; the others stay disabled until their windows exist.
bool isLiveCommand(const QString& toolId);

// The commands that external mode disables and the local database enables again.
const QStringList& localOnlyCommands();

// The add command that ID_AddCD repeats by LastAction of section Toolbars: "1" audio, "2"
// computer, "3" DVD; missing means audio; any other value means none (empty).
QString lastAddCommand(const QString& lastAction, bool present);
// The three tool bars in their designed order, with the commands that toggle them.
struct MainToolbar
{
    QString title;
    QString objectName;
    QString toggleCommand;
};
const QList<MainToolbar>& mainToolbars();

} // namespace vinora
