#include "mainwindow/frmMain.h"

#include "frame/AppContext.h"
#include "frame/FaultLog.h"
#include "frame/Version.h"
#include "frame/WindowPlacement.h"
#include "mainwindow/MainCommands.h"
#include "mainwindow/frmCompactDB.h"
#include "store/Compaction.h"
#include "store/LocalDatabase.h"
#include "ui/WaitCursor.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QLabel>
#include <QLocale>
#include <QMenuBar>
#include <QSaveFile>
#include <QStatusBar>
#include <QToolBar>

namespace vinora {
namespace {

const QString kOption = QStringLiteral("Option");

// Commands whose work this window does itself; the others wait for their screens.
bool isLive(const QString& toolId)
{
    return toolId == u"ID_Quit" || (toolId.startsWith(u"ID_View_Toolbars_") && toolId != u"ID_View_Toolbars_Option");
}

} // namespace

frmMain::frmMain(AppContext& ctx, QWidget* parent) : QMainWindow(parent), m_ctx(ctx)
{
    setObjectName(QStringLiteral("frmMain"));
    setWindowIcon(QIcon(QStringLiteral(":/icons/vinora.svg")));
    setCentralWidget(new QWidget(this));
    resize(760, 520); // the designed size
    buildMenusAndToolbars();
    buildStatusBar();
}

QString frmMain::captionText()
{
    return QStringLiteral("vinora ") + QString::number(kVersionMajor) + u'.' + QString::number(kVersionMinor);
}

QString frmMain::datePanelText(const QDate& date)
{
    return QLocale().toString(date, QStringLiteral("d MMMM (dddd)"));
}

void frmMain::buildMenusAndToolbars()
{
    QHash<QString, QMenu*> menus;
    for (const MainMenu& entry : mainMenus()) {
        QMenu* menu = entry.parentId.isEmpty() ? menuBar()->addMenu(entry.text)
                                               : menus.value(entry.parentId)->addMenu(entry.text);
        menu->setObjectName(entry.id);
        menus.insert(entry.id, menu);
    }
    QHash<QString, QToolBar*> toolbars;
    for (const MainToolbar& entry : mainToolbars()) {
        QToolBar* bar = addToolBar(entry.title);
        bar->setObjectName(entry.objectName);
        toolbars.insert(entry.title, bar);
    }
    for (const MainCommand& command : mainCommands()) {
        QAction* act = menus.value(command.menuId)->addAction(command.text);
        act->setObjectName(command.id);
        act->setCheckable(command.checkable);
        act->setEnabled(isLive(command.id));
        if (!command.toolbar.isEmpty()) {
            toolbars.value(command.toolbar)->addAction(act);
        }
        connect(act, &QAction::triggered, this, [this, id = command.id] { runCommand(id); });
        m_actions.insert(command.id, act);
        if (command.id == u"ID_Catalog_ChangeCategory") {
            menus.value(command.menuId)->addSeparator();
        }
    }
    // The ticks of the tool bar toggles follow the bars, however they were hidden.
    for (const MainToolbar& entry : mainToolbars()) {
        connect(toolbars.value(entry.title), &QToolBar::visibilityChanged, this, &frmMain::syncToolbarTicks);
    }
    syncToolbarTicks();
}

void frmMain::syncToolbarTicks()
{
    for (const MainToolbar& entry : mainToolbars()) {
        m_actions.value(entry.toggleCommand)->setChecked(!toolbar(entry.objectName)->isHidden());
    }
}

void frmMain::buildStatusBar()
{
    for (int panel = 1; panel <= 4; ++panel) {
        auto* label = new QLabel(this);
        label->setObjectName(QStringLiteral("StatusBarPanel%1").arg(panel));
        if (panel == 1) {
            statusBar()->addWidget(label, 1);
        } else {
            statusBar()->addPermanentWidget(label);
        }
        m_statusPanels.append(label);
    }
    m_statusPanels[0]->setText(QStringLiteral("База данных - локальная"));
}

QToolBar* frmMain::toolbar(const QString& objectName) const
{
    return findChild<QToolBar*>(objectName);
}

QString frmMain::statusPanelText(int panel) const
{
    return m_statusPanels.value(panel - 1) ? m_statusPanels[panel - 1]->text() : QString();
}

QString frmMain::toolbarLayoutPath() const
{
    return m_ctx.appFile(QStringLiteral("vinora.atb"));
}

void frmMain::runCommand(const QString& toolId)
{
    if (toolId == u"ID_Quit") {
        close();
        return;
    }
    for (const MainToolbar& entry : mainToolbars()) {
        if (entry.toggleCommand == toolId) {
            QToolBar* bar = toolbar(entry.objectName);
            bar->setVisible(bar->isHidden());
            syncToolbarTicks();
        }
    }
}

void frmMain::Form_Load()
{
    underFaultHandler(m_ctx, QStringLiteral("frmMain, Form_Load()"), [this] {
        LoadWinPos();
        QFile layout(toolbarLayoutPath());
        if (layout.exists() && layout.open(QIODevice::ReadOnly)) {
            restoreState(layout.readAll());
            syncToolbarTicks();
        }
        m_statusPanels[3]->setText(datePanelText(m_ctx.clock().today()));
        setWindowTitle(captionText());
        openMainDatabaseForRefresh(m_ctx);
    });
}

void frmMain::LoadWinPos()
{
    const WindowPlacement placement = vinora::LoadWinPos(m_ctx.ini());
    QRect place = geometry();
    const auto pixels = [](double twips) { return static_cast<int>(twips / kTwipsPerPixel); };
    if (placement.left) {
        place.moveLeft(pixels(*placement.left));
    }
    if (placement.top) {
        place.moveTop(pixels(*placement.top));
    }
    if (placement.height) {
        place.setHeight(pixels(*placement.height));
    }
    if (placement.width) {
        place.setWidth(pixels(*placement.width));
    }
    move(place.topLeft());
    resize(place.size());
    if (placement.state) {
        setWindowState(*placement.state == 2   ? Qt::WindowMaximized
                       : *placement.state == 1 ? Qt::WindowMinimized
                                               : Qt::WindowNoState);
    }
}

void frmMain::closeEvent(QCloseEvent* event)
{
    if (!Form_Unload()) {
        event->ignore();
        return;
    }
    event->accept();
    QCoreApplication::exit(0);
}

bool frmMain::Form_Unload()
{
    return underFaultHandler(m_ctx, QStringLiteral("frmMain, Form_Unload()"), [this] {
        const QString confirm = m_ctx.ini().read(kOption, QStringLiteral("ConfirmExit"), 5).trimmed();
        if (confirm.isEmpty() || confirm.startsWith(u'1')) {
            const Answer answer = m_ctx.prompter().message(
                QStringLiteral("Вы действительно хотите выйти из программы?"), MessageStyle::YesNoQuestion);
            if (answer != Answer::Yes) {
                return false;
            }
        }
        if (m_ctx.ExternalDBOpen) {
            OpenLocalDB();
        }
        QSaveFile layout(toolbarLayoutPath());
        if (layout.open(QIODevice::WriteOnly)) {
            layout.write(saveState());
            layout.commit();
        }
        const int state = isMinimized() ? 1 : isMaximized() ? 2 : 0;
        const QRect place = geometry();
        SaveWinPos(m_ctx.ini(), state, x() * kTwipsPerPixel, y() * kTwipsPerPixel,
                   place.height() * kTwipsPerPixel, place.width() * kTwipsPerPixel);
        CompactDB();
        return true;
    });
}

void frmMain::CompactDB()
{
    const QString setting = m_ctx.ini().read(kOption, QStringLiteral("AutoCompactDatabase"), 2);
    if (setting.isEmpty() || m_ctx.ini().number(kOption, QStringLiteral("AutoCompactDatabase"), 2) != 1) {
        return;
    }
    frmCompactDB wait(this);
    wait.showAndPaint();
    if (m_ctx.ExternalDBOpen) {
        OpenLocalDB();
    }
    underFaultHandler(m_ctx, QStringLiteral("frmMain, CompactDB()"), [this] {
        WaitCursor hourglass;
        compactDatabases(m_ctx);
    });
}

void frmMain::OpenLocalDB()
{
    m_ctx.resolveDatabasePaths();
    for (const QString& path : {m_ctx.MainDBPath, m_ctx.FilesDBPath, m_ctx.TracksDBPath}) {
        if (!QFileInfo::exists(path)) {
            m_ctx.prompter().message(
                QStringLiteral("ОШИБКА.\n\nФайл базы данных не найден. Запуск программы невозможен."),
                MessageStyle::Stop);
            m_ctx.endProcess(0);
        }
    }
    m_statusPanels[0]->setText(QStringLiteral("База данных - локальная"));
    m_ctx.ExternalDBOpen = false;
    m_statusPanels[1]->clear();
}

} // namespace vinora
