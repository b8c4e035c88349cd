#pragma once

#include "lending/DiscPicker.h"
#include "recognition/VolumeIdentity.h"
#include "store/Category.h"
#include "ui/BlinkTimer.h"

#include <QFutureWatcher>
#include <QHash>
#include <QMainWindow>
#include <QTimer>
#include <array>

class QComboBox;
class QLabel;
class QListWidget;
class QMenu;
class QToolBar;
class QToolBox;

namespace vinora {

class AppContext;
class ClickableLabel;
class HelpViewer;

// The main window: the summary of the three catalogues, the signs of overdue loans and of
// the disc in the drive, the menus, tool bars and the vinora panel, the local or external
// database on view, and the way out of the program.
class frmMain : public QMainWindow
{
    Q_OBJECT
public:
    explicit frmMain(AppContext& ctx, QWidget* parent = nullptr);
    ~frmMain() override;

    // --- start and end ----------------------------------------------------------------
    void Form_Load();
    bool Form_Unload(); // false when the user chose to stay
    void LoadWinPos();
    void CompactDB();

    // --- dashboard --------------------------------------------------------------------
    void LoadData();
    void ConfigureTimers();
    void CheckDue();
    void CheckCD();

    // --- drive watch ------------------------------------------------------------------
    void tmrCheckCD_Timer();
    void tmrNewCD_Timer();
    void tmrFindDue_Timer();
    void tmrTime_Timer();
    void ResetDiscSigns();
    void LoadDefaultCD();

    // --- database set -----------------------------------------------------------------
    void OpenExternalDB();
    void OpenLocalDB();

    // --- commands ---------------------------------------------------------------------
    void runCommand(const QString& toolId);
    // The loan commands; false for a command of another kind.
    bool runLoanCommand(const QString& toolId);
    // The search commands; false for a command of another kind.
    bool runSearchCommand(const QString& toolId);
    // Import, the maintenance wizard, save as and the database export; false for others.
    bool runMaintenanceCommand(const QString& toolId);
    // Save as: the three databases into a folder; the database export into one file.
    void mnuDBESave_Click();
    void mnuDBExportDB_Click();
    // The catalogues' disc picker, for the loan windows.
    DiscPicker discPicker();
    void listBarItemClicked(const QString& groupKey, const QString& text);
    // The command a fixed item of the vinora panel runs; empty for a query shortcut.
    static QString panelCommand(const QString& item);
    void openCatalogue(Category category, int number = 0);
    // Binds the disc in `drive` to a disc the user picks (the link "Привязать").
    void bindDiscInDrive(Category category, const QString& drive);
    void addDisc(Category category, bool rememberAction = true);
    // The options dialog, and what changes with it once it is closed.
    void showOptions();
    // The dialog that shows and hides the tool bars.
    void showToolbarOptions();
    // The tool bars shown, in their designed order and place.
    void resetToolbars();
    void AddListbars();
    void LoadToolbars();
    void loadShortcuts();
    // The commands of the shortcuts' pop-up menu on the shortcut `name`.
    void addShortcut();
    void changeShortcut(const QString& name);
    void deleteShortcut(const QString& name);

    // --- for tests and the screenshot script ------------------------------------------
    QAction* action(const QString& toolId) const { return m_actions.value(toolId); }
    QToolBar* toolbar(const QString& objectName) const;
    QString statusPanelText(int panel) const;
    QString toolbarLayoutPath() const;
    QStringList listBarGroups() const;
    QStringList listBarItems(const QString& groupKey) const;
    QComboBox* driveSelector() const { return m_driveSelector; }
    QTimer& timer(const QString& name);
    bool volumeQueryRunning() const { return m_volumeQuery.isRunning(); }
    QLabel* label(const QString& objectName) const;
    HelpViewer* helpViewer() const { return m_helpViewer; }

    static QString captionText();
    static QString datePanelText(const QDate& date);

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    struct CategoryBlock
    {
        ClickableLabel* logo = nullptr;
        QLabel* discs = nullptr;
        QLabel* updated = nullptr;
        QLabel* onLoan = nullptr;
        QWidget* dueFrame = nullptr; // the panel around the overdue sign
        QLabel* dueSign = nullptr;
        QLabel* dueCount = nullptr;
        QLabel* newSign = nullptr;
        QLabel* newLabel = nullptr;
        QLabel* shareSign = nullptr;
        ClickableLabel* shareLink = nullptr;
        bool due = false;   // DueAudio, DuePC, DueDVD
        bool blink = false; // BlinkAD, BlinkPC, BlinkDVD
    };

    void buildMenusAndToolbars();
    void buildStatusBar();
    void buildCentralArea();
    QWidget* buildCategoryBlock(Category category);
    QListWidget* addListBarGroup(const QString& key, const QString& caption, const QStringList& items);
    void syncToolbarTicks();
    void saveLayout();
    void restoreLayout();
    void setToolEnabled(const QString& toolId, bool enabled);
    void setListBarVisible(bool visible);
    void showQuickMenu(Category category, const QPoint& at);
    void showShortcutMenu(QListWidget* group, const QPoint& at);
    void volumeQueryFinished();
    void showDiscInDrive(Category category, const QString& id);
    void shareLinkClicked(Category category);
    void changeCategory();
    void addDiskImage();
    void removeDiskImage();
    void driveChosen(int index);
    void openHelpFile(const QString& file, const QString& missingMessage);
    void setStatusPicture(int panel, const QPixmap& picture);
    CategoryBlock& block(Category category) { return m_blocks[static_cast<std::size_t>(category)]; }

    AppContext& m_ctx;
    QHash<QString, QAction*> m_actions;
    QHash<QString, QMenu*> m_menus;
    QList<QLabel*> m_statusPanels;
    QToolBox* m_listBar = nullptr;
    QComboBox* m_driveSelector = nullptr;
    std::array<CategoryBlock, 3> m_blocks;
    QTimer m_tmrCheckCD;
    BlinkTimer m_tmrNewCD;
    BlinkTimer m_tmrFindDue;
    QTimer m_tmrTime;
    bool m_timeShowsDate = true;
    QString m_driveDiscID;
    QString m_lastDriveDiscID;
    QFutureWatcher<VolumeInfo> m_volumeQuery;
    bool m_loadingDrives = false;
    QString m_shortcutUnderMouse;
    HelpViewer* m_helpViewer = nullptr;
};

} // namespace vinora
