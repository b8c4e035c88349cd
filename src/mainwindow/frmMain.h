#pragma once

#include <QHash>
#include <QMainWindow>

class QLabel;
class QToolBar;

namespace vinora {

class AppContext;

// The main window: its menu and tool bars, the status bar, the stored window place and
// tool bar layout, and the way out of the program.
class frmMain : public QMainWindow
{
    Q_OBJECT
public:
    explicit frmMain(AppContext& ctx, QWidget* parent = nullptr);

    // Loads the window as at start: place, tool bar layout, status bar, caption, and the
    // first opening of the main database.
    void Form_Load();
    // The close: asks, stores the window and the tool bars, compacts when set to.
    // Returns false when the user chose to stay.
    bool Form_Unload();

    void LoadWinPos();
    void CompactDB();
    void OpenLocalDB();

    QAction* action(const QString& toolId) const { return m_actions.value(toolId); }
    QToolBar* toolbar(const QString& objectName) const;
    QString statusPanelText(int panel) const;
    QString toolbarLayoutPath() const;

    static QString captionText();
    static QString datePanelText(const QDate& date);

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void buildMenusAndToolbars();
    void buildStatusBar();
    void runCommand(const QString& toolId);
    void syncToolbarTicks();

    AppContext& m_ctx;
    QHash<QString, QAction*> m_actions;
    QList<QLabel*> m_statusPanels;
};

} // namespace vinora
