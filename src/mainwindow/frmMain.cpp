#include "mainwindow/frmMain.h"

#include "frame/AppContext.h"
#include "frame/FaultLog.h"
#include "frame/ProgramInfo.h"
#include "frame/WindowPlacement.h"
#include "catalogue/frmAddCD.h"
#include "catalogue/Numbering.h"
#include "catalogue/frmCatalogue.h"
#include "catalogue/frmSelectCD.h"
#include "catalogue/frmChangeNumber.h"
#include "mainwindow/DashboardData.h"
#include "mainwindow/DashboardPictures.h"
#include "mainwindow/MainCommands.h"
#include "mainwindow/QueryShortcuts.h"
#include "mainwindow/frmCompactDB.h"
#include "mainwindow/frmHelp.h"
#include "recognition/DiscIdentity.h"
#include "recognition/DriveWatch.h"
#include "recognition/Drives.h"
#include "recognition/frmSelectCategory.h"
#include "store/Compaction.h"
#include "store/Db.h"
#include "store/InfoStamp.h"
#include "store/LocalDatabase.h"
#include "ui/ClickableLabel.h"
#include "ui/WaitCursor.h"

#include <QApplication>
#include <QCloseEvent>
#include <QComboBox>
#include <QCoreApplication>
#include <QFileInfo>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QListWidget>
#include <QLocale>
#include <QMenu>
#include <QMenuBar>
#include <QSaveFile>
#include <QStatusBar>
#include <QToolBar>
#include <QToolBox>
#include <QToolButton>
#include <QUrl>
#include <QVBoxLayout>
#include <QtConcurrent/QtConcurrentRun>

namespace vinora {
namespace {

const QString kOption = QStringLiteral("Option");

// The names the dashboard's controls carry per catalogue.
struct BlockNames
{
    const char* counts; // lblCDs<x>, lblCDs<x>Update, lblCDdue<x>, imgFindDue<x>, lblFindDue<x>
    const char* signs;  // imgNew<x>, lblNew<x>, lblShare<x>
    const char* logo;   // imgLogo<x>
    const char* quickMenu;
};
const BlockNames kBlockNames[] = {
    {"Audio", "AD", "AD", "ID_QuickAD"},
    {"PC", "PC", "PCCD", "ID_QuickPC"},
    {"DVD", "DVD", "DVD", "ID_QuickDVD"},
};

QString name(const char* prefix, const char* suffix, const char* tail = "")
{
    return QString::fromLatin1(prefix) + QString::fromLatin1(suffix) + QString::fromLatin1(tail);
}

// Minimum size of the window: 9100 by 6900 twips.
constexpr int kMinimumWidth = 9100 / kTwipsPerPixel;
constexpr int kMinimumHeight = 6900 / kTwipsPerPixel;

} // namespace

frmMain::frmMain(AppContext& ctx, QWidget* parent) : QMainWindow(parent), m_ctx(ctx)
{
    setObjectName(QStringLiteral("frmMain"));
    setWindowIcon(QIcon(QStringLiteral(":/icons/vinora.svg")));
    setMinimumSize(kMinimumWidth, kMinimumHeight);
    resize(900, 580); // the designed size
    // The timers as designed: the drive is watched once a second, the signs blink.
    m_tmrCheckCD.setInterval(1000);
    m_tmrNewCD.setInterval(500);
    m_tmrFindDue.setInterval(250);
    m_tmrTime.setInterval(5000);
    connect(&m_tmrCheckCD, &QTimer::timeout, this, &frmMain::tmrCheckCD_Timer);
    connect(&m_tmrNewCD, &QTimer::timeout, this, &frmMain::tmrNewCD_Timer);
    connect(&m_tmrFindDue, &QTimer::timeout, this, &frmMain::tmrFindDue_Timer);
    connect(&m_tmrTime, &QTimer::timeout, this, &frmMain::tmrTime_Timer);
    connect(&m_volumeQuery, &QFutureWatcher<VolumeInfo>::finished, this, &frmMain::volumeQueryFinished);
    buildMenusAndToolbars();
    buildStatusBar();
    buildCentralArea();
}

frmMain::~frmMain()
{
    m_volumeQuery.waitForFinished();
}

QString frmMain::captionText()
{
    return programCaption();
}

QString frmMain::datePanelText(const QDate& date)
{
    return QLocale().toString(date, QStringLiteral("d MMMM (dddd)"));
}

// ======================================================================================
// Building the window
// ======================================================================================

void frmMain::buildMenusAndToolbars()
{
    for (const MainMenu& entry : mainMenus()) {
        QMenu* menu = entry.popup            ? new QMenu(entry.text, this)
                      : entry.parentId.isEmpty() ? menuBar()->addMenu(entry.text)
                                                 : m_menus.value(entry.parentId)->addMenu(entry.text);
        menu->setObjectName(entry.id);
        m_menus.insert(entry.id, menu);
    }
    QHash<QString, QToolBar*> toolbars;
    for (const MainToolbar& entry : mainToolbars()) {
        QToolBar* bar = addToolBar(entry.title);
        bar->setObjectName(entry.objectName);
        bar->setToolButtonStyle(Qt::ToolButtonFollowStyle);
        toolbars.insert(entry.title, bar);
    }
    for (const MainCommand& command : mainCommands()) {
        auto* act = new QAction(QIcon::fromTheme(command.icon), command.text, this);
        act->setToolTip(command.text);
        act->setObjectName(command.id);
        act->setCheckable(command.checkable);
        act->setEnabled(isLiveCommand(command.id));
        if (QMenu* menu = m_menus.value(command.menuId)) {
            if (command.id == u"ID_Quit") {
                menu->addSeparator();
            }
            menu->addAction(act);
        }
        if (!command.toolbar.isEmpty()) {
            toolbars.value(command.toolbar)->addAction(act);
        }
        connect(act, &QAction::triggered, this, [this, id = command.id] { runCommand(id); });
        m_actions.insert(command.id, act);
    }
    // The add button opens the three add commands from its arrow.
    if (auto* addButton = qobject_cast<QToolButton*>(toolbars.value(QStringLiteral("Каталоги"))
                                                         ->widgetForAction(m_actions.value(QStringLiteral("ID_AddCD"))))) {
        addButton->setMenu(m_menus.value(QStringLiteral("ID_Catalog_AddCD")));
        addButton->setPopupMode(QToolButton::MenuButtonPopup);
    }
    m_actions.value(QStringLiteral("ID_Panel"))->setChecked(true);

    // The drive selector and the disc images beside it.
    QToolBar* catalogBar = toolbars.value(QStringLiteral("Каталоги"));
    catalogBar->addSeparator();
    m_driveSelector = new QComboBox(catalogBar);
    m_driveSelector->setObjectName(QStringLiteral("ID_DB_DefaultCDDVDROM"));
    m_driveSelector->setToolTip(QStringLiteral("CD/DVD-ROM по умолчанию"));
    m_driveSelector->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    m_driveSelector->setMinimumContentsLength(12);
    catalogBar->addWidget(m_driveSelector);
    connect(m_driveSelector, &QComboBox::currentIndexChanged, this, &frmMain::driveChosen);
    auto* imageButton = new QToolButton(catalogBar);
    imageButton->setObjectName(QStringLiteral("ID_DB_DiskImage"));
    imageButton->setText(QStringLiteral("Образ диска..."));
    imageButton->setMenu(m_menus.value(QStringLiteral("ID_DB_DiskImage")));
    imageButton->setPopupMode(QToolButton::InstantPopup);
    catalogBar->addWidget(imageButton);

    for (const MainToolbar& entry : mainToolbars()) {
        connect(toolbars.value(entry.title), &QToolBar::visibilityChanged, this, &frmMain::syncToolbarTicks);
    }
    syncToolbarTicks();
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

QListWidget* frmMain::addListBarGroup(const QString& key, const QString& caption, const QStringList& items)
{
    auto* group = new QListWidget(m_listBar);
    group->setObjectName(key);
    group->setFrameShape(QFrame::NoFrame);
    group->setContextMenuPolicy(Qt::CustomContextMenu);
    for (const QString& text : items) {
        group->addItem(text);
    }
    connect(group, &QListWidget::itemClicked, this,
            [this, key](QListWidgetItem* item) { listBarItemClicked(key, item->text()); });
    connect(group, &QListWidget::customContextMenuRequested, this,
            [this, group](const QPoint& at) { showShortcutMenu(group, at); });
    m_listBar->addItem(group, caption);
    return group;
}

void frmMain::buildCentralArea()
{
    auto* central = new QWidget(this);
    auto* row = new QHBoxLayout(central);
    m_listBar = new QToolBox(central);
    m_listBar->setObjectName(QStringLiteral("SSListBar"));
    m_listBar->setFixedWidth(190);
    addListBarGroup(QStringLiteral("1"), QStringLiteral("Каталоги"),
                    {QStringLiteral("Аудио диски"), QStringLiteral("Компьютерные диски"), QStringLiteral("DVD диски")});
    row->addWidget(m_listBar);

    auto* dashboard = new QWidget(central);
    auto* column = new QVBoxLayout(dashboard);
    auto* panelToggle = new ClickableLabel(dashboard);
    panelToggle->setObjectName(QStringLiteral("lblShowHideoListbar"));
    panelToggle->setText(QStringLiteral("◂ Панель vinora"));
    connect(panelToggle, &ClickableLabel::pressed, this, [this] { runCommand(QStringLiteral("ID_Panel")); });
    column->addWidget(panelToggle, 0, Qt::AlignLeft);
    for (const Category category : allCategories()) {
        column->addWidget(buildCategoryBlock(category));
    }
    column->addStretch(1);
    row->addWidget(dashboard, 1);
    setCentralWidget(central);
}

QWidget* frmMain::buildCategoryBlock(Category category)
{
    const BlockNames& names = kBlockNames[static_cast<int>(category)];
    CategoryBlock& b = block(category);
    auto* frame = new QFrame(this);
    frame->setFrameShape(QFrame::StyledPanel);
    auto* grid = new QGridLayout(frame);

    b.logo = new ClickableLabel(frame);
    b.logo->setObjectName(name("imgLogo", names.logo));
    b.logo->setPixmap(logoPicture(category, false));
    connect(b.logo, &ClickableLabel::pressed, this, [this, category](const QPoint& at) { showQuickMenu(category, at); });
    connect(b.logo, &ClickableLabel::hovered, this,
            [this, category](bool inside) { block(category).logo->setPixmap(logoPicture(category, inside)); });
    grid->addWidget(b.logo, 0, 0, 3, 1, Qt::AlignTop);

    // Fixed columns, so that the three blocks line up.
    const auto addValue = [&](int rowIndex, const QString& caption, const QString& objectName) {
        auto* captionLabel = new QLabel(caption, frame);
        captionLabel->setMinimumWidth(captionLabel->fontMetrics().horizontalAdvance(QStringLiteral("Последнее изменение: ")));
        grid->addWidget(captionLabel, rowIndex, 1);
        auto* value = new QLabel(QStringLiteral("-"), frame);
        value->setMinimumWidth(value->fontMetrics().horizontalAdvance(QStringLiteral("30 сентября 2026 г. ")) + 8);
        value->setObjectName(objectName);
        QFont bold = value->font();
        bold.setBold(true);
        value->setFont(bold);
        grid->addWidget(value, rowIndex, 2);
        return value;
    };
    b.discs = addValue(0, QStringLiteral("Дисков в каталоге:"), name("lblCDs", names.counts));
    b.updated = addValue(1, QStringLiteral("Последнее изменение:"), name("lblCDs", names.counts, "Update"));
    b.onLoan = addValue(2, QStringLiteral("Выдано дисков:"), name("lblCDdue", names.counts));

    b.dueFrame = new QWidget(frame);
    b.dueFrame->setObjectName(name("fraFindDue", names.counts));
    b.dueFrame->setProperty("Tag", QStringLiteral("MyGroup"));
    auto* dueRow = new QHBoxLayout(b.dueFrame);
    dueRow->setContentsMargins(0, 0, 0, 0);
    b.dueSign = new QLabel(b.dueFrame);
    b.dueSign->setObjectName(name("imgFindDue", names.counts));
    b.dueSign->setPixmap(overduePicture());
    b.dueCount = new QLabel(QStringLiteral("0"), b.dueFrame);
    b.dueCount->setObjectName(name("lblFindDue", names.counts));
    b.dueCount->setToolTip(QStringLiteral("Срок возврата наступил"));
    dueRow->addWidget(b.dueSign);
    dueRow->addWidget(b.dueCount);
    dueRow->addStretch(1);
    b.dueFrame->hide();
    b.dueFrame->setMinimumWidth(70);
    grid->addWidget(b.dueFrame, 2, 3);

    b.newSign = new QLabel(frame);
    b.newSign->setObjectName(name("imgNew", names.signs));
    b.newLabel = new QLabel(frame);
    b.newLabel->setObjectName(name("lblNew", names.signs));

    b.shareSign = new QLabel(frame);
    b.shareSign->setObjectName(name("imgShare", names.signs));
    b.shareSign->setPixmap(discPicture(DiscPicture::Present, 16));
    b.shareLink = new ClickableLabel(frame);
    b.shareLink->setObjectName(name("lblShare", names.signs));
    connect(b.shareLink, &ClickableLabel::pressed, this, [this, category] { shareLinkClicked(category); });
    auto* signRow = new QHBoxLayout;
    signRow->addWidget(b.newSign);
    signRow->addWidget(b.newLabel);
    auto* shareRow = new QHBoxLayout;
    shareRow->addWidget(b.shareSign);
    shareRow->addWidget(b.shareLink);
    shareRow->addStretch(1);
    signRow->addSpacing(16);
    signRow->addLayout(shareRow);
    grid->addLayout(signRow, 3, 1, 1, 4);
    // The columns keep their widths when the signs are hidden.
    grid->setColumnMinimumWidth(3, 70);
    grid->setColumnStretch(4, 1);
    return frame;
}

QToolBar* frmMain::toolbar(const QString& objectName) const
{
    return findChild<QToolBar*>(objectName);
}

QLabel* frmMain::label(const QString& objectName) const
{
    return findChild<QLabel*>(objectName);
}

QString frmMain::statusPanelText(int panel) const
{
    return m_statusPanels.value(panel - 1) ? m_statusPanels[panel - 1]->text() : QString();
}

QString frmMain::toolbarLayoutPath() const
{
    return m_ctx.appFile(QStringLiteral("vinora.atb"));
}

QTimer& frmMain::timer(const QString& timerName)
{
    return timerName == u"tmrCheckCD" ? m_tmrCheckCD
           : timerName == u"tmrNewCD" ? m_tmrNewCD
           : timerName == u"tmrFindDue" ? m_tmrFindDue
                                        : m_tmrTime;
}

QStringList frmMain::listBarGroups() const
{
    QStringList keys;
    for (int i = 0; i < m_listBar->count(); ++i) {
        keys.append(m_listBar->widget(i)->objectName());
    }
    return keys;
}

QStringList frmMain::listBarItems(const QString& groupKey) const
{
    QStringList items;
    if (const auto* group = m_listBar->findChild<QListWidget*>(groupKey)) {
        for (int i = 0; i < group->count(); ++i) {
            items.append(group->item(i)->text());
        }
    }
    return items;
}

void frmMain::syncToolbarTicks()
{
    for (const MainToolbar& entry : mainToolbars()) {
        m_actions.value(entry.toggleCommand)->setChecked(!toolbar(entry.objectName)->isHidden());
    }
}

void frmMain::setToolEnabled(const QString& toolId, bool enabled)
{
    if (toolId == u"ID_DB_DefaultCDDVDROM") {
        m_driveSelector->setEnabled(enabled && m_driveSelector->count() > 0);
        return;
    }
    if (QMenu* menu = m_menus.value(toolId)) {
        menu->setEnabled(enabled);
        return;
    }
    if (QAction* act = m_actions.value(toolId)) {
        act->setEnabled(enabled && isLiveCommand(toolId));
    }
}

void frmMain::setStatusPicture(int panel, const QPixmap& picture)
{
    m_statusPanels[panel - 1]->setPixmap(picture);
}

// ======================================================================================
// Start and end
// ======================================================================================

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
        m_timeShowsDate = true;
        m_tmrTime.start();
        setWindowTitle(captionText());
        AddListbars();
        LoadToolbars();
        setToolEnabled(QStringLiteral("ID_DB_OpenLocal"), false);
        LoadData();
        loadShortcuts();
        LoadDefaultCD();
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
        m_tmrCheckCD.stop();
        QSaveFile layout(toolbarLayoutPath());
        if (layout.open(QIODevice::WriteOnly)) {
            layout.write(saveState());
            layout.commit();
        }
        const int state = isMinimized() ? 1 : isMaximized() ? 2 : 0;
        const QRect place = geometry();
        SaveWinPos(m_ctx.ini(), state, x() * kTwipsPerPixel, y() * kTwipsPerPixel, place.height() * kTwipsPerPixel,
                   place.width() * kTwipsPerPixel);
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

// ======================================================================================
// Dashboard
// ======================================================================================

void frmMain::LoadData()
{
    DashboardData data;
    {
        WaitCursor hourglass;
        const std::unique_ptr<Db> db = openMainDatabaseForRefresh(m_ctx);
        data = underFaultHandler(m_ctx, QStringLiteral("frmMain, LoadData()"), [&] { return readDashboard(*db); });
    }
    for (const Category category : allCategories()) {
        const CatalogueSummary& summary = data[static_cast<std::size_t>(category)];
        CategoryBlock& b = block(category);
        b.discs->setText(QString::number(summary.discs));
        b.updated->setText(updateDateText(summary.updated));
        b.onLoan->setText(QString::number(summary.onLoan));
    }
    ConfigureTimers();
    CheckDue();
    CheckCD();
}

void frmMain::ConfigureTimers()
{
    const auto configure = [this](const char* key, QTimer& timer) {
        const QString value = m_ctx.ini().read(kOption, QString::fromLatin1(key), 5);
        if (value.isEmpty()) {
            return;
        }
        const double number = m_ctx.ini().number(kOption, QString::fromLatin1(key), 5);
        timer.setInterval(number == 1 ? 1 : std::max(1, static_cast<int>(number / 10)));
    };
    configure("tmrDue", m_tmrFindDue);
    configure("tmrCD", m_tmrNewCD);
}

void frmMain::CheckDue()
{
    m_tmrFindDue.stop();
    for (const Category category : allCategories()) {
        CategoryBlock& b = block(category);
        b.due = false;
        b.dueFrame->hide();
        b.dueCount->setText(QStringLiteral("0"));
    }
    const QString check = m_ctx.ini().read(kOption, QStringLiteral("CheckDueOnStartup"), 2);
    if (!check.isEmpty() && m_ctx.ini().number(kOption, QStringLiteral("CheckDueOnStartup"), 2) == 0) {
        return;
    }
    underFaultHandler(m_ctx, QStringLiteral("frmMain, CheckDue()"), [this] {
        Db db(m_ctx.MainDBPath);
        DashboardData data;
        countOverdue(db, m_ctx.clock().today(), data);
        for (const Category category : allCategories()) {
            const int overdue = data[static_cast<std::size_t>(category)].overdue;
            if (overdue > 0) {
                block(category).due = true;
                block(category).dueCount->setText(QString::number(overdue));
                m_tmrFindDue.start();
            }
        }
    });
}

void frmMain::CheckCD()
{
    m_lastDriveDiscID.clear();
    ResetDiscSigns();
    m_statusPanels[2]->clear();
    const QString setting = m_ctx.ini().read(kOption, QStringLiteral("CheckCD"), 2);
    if (setting.isEmpty()) {
        // Watching as designed: on, unless an external database is on view.
        if (!m_ctx.ExternalDBOpen) {
            m_tmrCheckCD.start();
        }
        return;
    }
    if (m_ctx.ini().number(kOption, QStringLiteral("CheckCD"), 2) == 1) {
        m_tmrCheckCD.start();
    } else {
        m_tmrCheckCD.stop();
        m_tmrNewCD.stop();
    }
}

void frmMain::tmrFindDue_Timer()
{
    for (const Category category : allCategories()) {
        CategoryBlock& b = block(category);
        if (!b.due) {
            continue;
        }
        b.dueFrame->setVisible(m_tmrFindDue.interval() == 1 || b.dueFrame->isHidden());
    }
}

void frmMain::tmrTime_Timer()
{
    m_timeShowsDate = !m_timeShowsDate;
    m_statusPanels[3]->setText(m_timeShowsDate ? datePanelText(m_ctx.clock().today())
                                               : m_ctx.clock().now().toString(QStringLiteral("hh:mm")));
}

// ======================================================================================
// Drive watch
// ======================================================================================

void frmMain::ResetDiscSigns()
{
    for (const Category category : allCategories()) {
        CategoryBlock& b = block(category);
        b.blink = false;
        b.newSign->hide();
        b.newLabel->hide();
        b.newSign->setPixmap(discPicture(DiscPicture::Unknown));
        b.newLabel->setText(unknownDiscText());
        b.shareLink->setText(QStringLiteral("Привязать"));
        b.shareLink->hide();
        b.shareSign->hide();
    }
}

void frmMain::tmrCheckCD_Timer()
{
    // One query at a time: a slow drive skips ticks rather than piling them up.
    if (m_volumeQuery.isRunning() || QApplication::activeModalWidget() != nullptr) {
        return;
    }
    const QString drive = m_ctx.ini().read(kOption, QStringLiteral("Drive"), 4096).trimmed();
    if (drive.isEmpty()) {
        return;
    }
    m_queriedDrive = drive;
    m_volumeQuery.setFuture(QtConcurrent::run([drive] { return readVolumeInfo(drive); }));
}

void frmMain::volumeQueryFinished()
{
    if (m_ctx.ExternalDBOpen || !m_tmrCheckCD.isActive()) {
        return; // the watch was stopped while the drive was asked
    }
    underFaultHandler(m_ctx, QStringLiteral("frmMain, tmrCheckCD_Timer()"), [this] {
        const VolumeInfo volume = m_volumeQuery.result();
        const QString kind = kindOfVolume(m_ctx, volume, frmSelectCategory::chooser(m_ctx, this));
        const std::optional<Category> category = categoryOfKind(kind);
        if (!category) {
            m_lastDriveDiscID.clear();
            ResetDiscSigns();
            setStatusPicture(3, discPicture(DiscPicture::NoDisc, 16));
            return;
        }
        if (*category != Category::Audio) {
            setStatusPicture(3, discPicture(DiscPicture::Present, 16));
        }
        m_driveDiscID = SerialToID(volume.serial);
        m_ctx.LastDiscKind = kind;
        if (m_driveDiscID == m_lastDriveDiscID) {
            return;
        }
        m_lastDriveDiscID = m_driveDiscID;
        if (m_driveDiscID.isEmpty()) {
            return;
        }
        showDiscInDrive(*category, m_driveDiscID);
    });
}

void frmMain::showDiscInDrive(Category category, const QString& id)
{
    if (category == Category::Audio) {
        setStatusPicture(3, discPicture(DiscPicture::Present, 16));
    }
    std::optional<BoundDisc> bound;
    {
        Db db(m_ctx.MainDBPath);
        bound = findBoundDisc(db, category, id);
    }
    CategoryBlock& b = block(category);
    b.blink = true;
    if (bound) {
        b.shareSign->show();
        b.shareLink->setText(QStringLiteral("Удалить привязку"));
        b.shareLink->setStyleSheet(QStringLiteral("color: #d32f2f; text-decoration: underline;"));
        b.shareLink->setEnabled(true);
        b.shareLink->show();
        m_tmrNewCD.start();
        for (const Category other : allCategories()) {
            if (other != category) {
                block(other).newSign->hide();
                block(other).newLabel->hide();
            }
        }
        b.newSign->setPixmap(discPicture(DiscPicture::Known));
        b.newSign->show();
        b.newLabel->show();
        b.newLabel->setText(boundDiscText(*bound));
        return;
    }
    b.newSign->setPixmap(discPicture(DiscPicture::Unknown));
    if (b.discs->text() != u"0") {
        b.shareSign->show();
        b.shareLink->setText(QStringLiteral("Привязать"));
        b.shareLink->setStyleSheet(QStringLiteral("color: #3d7ad6; text-decoration: underline;"));
        b.shareLink->setEnabled(true);
        b.shareLink->show();
    }
    m_tmrNewCD.start();
}

void frmMain::tmrNewCD_Timer()
{
    for (const Category category : allCategories()) {
        CategoryBlock& b = block(category);
        if (!b.blink) {
            continue;
        }
        if (m_tmrNewCD.interval() == 1) {
            b.newSign->show();
            b.newLabel->show();
            return;
        }
        const bool show = b.newSign->isHidden();
        b.newSign->setVisible(show);
        b.newLabel->setVisible(show);
    }
}

void frmMain::bindDiscInDrive(Category category, const QString& drive)
{
    m_ctx.CatalogueQueryFilter = QStringLiteral("full") + categoryInfo(category).code;
    {
        frmSelectCD picker(m_ctx, this);
        m_ctx.prompter().showModal(picker);
    }
    m_ctx.CatalogueQueryFilter.clear();
    if (m_ctx.PickedDisc.isEmpty()) {
        return;
    }
    const int number = m_ctx.PickedDisc.chopped(2).toInt();
    const int slot = m_ctx.PickedDisc.right(1).toInt();
    static const char* const places[] = {"frmMain, lblShareAD_Click()", "frmMain, lblSharePC_Click()",
                                         "frmMain, lblShareDVD_Click()"};
    underFaultHandler(m_ctx, QString::fromLatin1(places[static_cast<int>(category)]), [&] {
        const QString id = GetDiskID(m_ctx, drive, frmSelectCategory::chooser(m_ctx, this));
        const Db db(m_ctx.MainDBPath);
        const QString numberText = QString::number(number);
        if (!bindingAt(db, category, number, slot).isEmpty()) {
            m_ctx.prompter().message(QStringLiteral("Диск № ") + numberText +
                                         QStringLiteral(" уже привязан к другому номеру диска!"),
                                     MessageStyle::Exclamation);
        }
        if (const std::optional<int> holder = CheckDiskShare(db, category, id)) {
            m_ctx.prompter().message(QStringLiteral("Этот диск уже привязан к №") + QString::number(*holder) + u'!',
                                     MessageStyle::Exclamation);
            return;
        }
        const QString where = numberText + QStringLiteral(" (CD") + QString::number(slot) + u')';
        if (m_ctx.prompter().message(QStringLiteral("Установить привязку на диск №") + where + QStringLiteral(":\n") +
                                         discTitle(db, catalogueKind(category), number).value_or(QString()) + u'?',
                                     MessageStyle::YesNo) == Answer::Yes) {
            bindDisc(db, category, number, slot, id);
            m_ctx.prompter().message(QStringLiteral("Привязка успешно установлена на диск №") + where,
                                     MessageStyle::Information);
        }
    });
    m_ctx.PickedDisc.clear();
    LoadData();
}

void frmMain::shareLinkClicked(Category category)
{
    const QString drive = m_ctx.ini().read(kOption, QStringLiteral("Drive"), 4096).trimmed();
    if (drive.isEmpty()) {
        return;
    }
    if (block(category).shareLink->text() == u"Привязать") {
        bindDiscInDrive(category, drive);
        return;
    }
    if (block(category).shareLink->text() != u"Удалить привязку") {
        return;
    }
    const Answer answer = m_ctx.prompter().message(QStringLiteral("Вы уверены, что хотите удалить привязку с этого диска?"),
                                                   MessageStyle::YesNo);
    if (answer != Answer::Yes) {
        return;
    }
    static const char* const places[] = {"frmMain, lblShareAD_Click()", "frmMain, lblSharePC_Click()",
                                         "frmMain, lblShareDVD_Click()"};
    underFaultHandler(m_ctx, QString::fromLatin1(places[static_cast<int>(category)]), [&] {
        const QString id = GetDiskID(m_ctx, drive, frmSelectCategory::chooser(m_ctx, this));
        Db db(m_ctx.MainDBPath);
        unbindDisc(db, category, id);
    });
    LoadData();
}

void frmMain::LoadDefaultCD()
{
    m_loadingDrives = true;
    m_driveSelector->clear();
    const QStringList drives = GetCDDrives(m_ctx.ini());
    for (const QString& drive : drives) {
        // Images are shown by their file name; the path goes with the item.
        m_driveSelector->addItem(QFileInfo(drive).isFile() ? QFileInfo(drive).fileName() : drive, drive);
        m_driveSelector->setItemData(m_driveSelector->count() - 1, drive, Qt::ToolTipRole);
    }
    m_driveSelector->setEnabled(!drives.isEmpty() && !m_ctx.ExternalDBOpen);
    const QString chosen = chosenDrive(m_ctx.ini(), drives);
    m_driveSelector->setCurrentIndex(static_cast<int>(drives.indexOf(chosen)));
    m_loadingDrives = false;
}

void frmMain::driveChosen(int index)
{
    if (m_loadingDrives || index < 0) {
        return;
    }
    ResetDiscSigns();
    setChosenDrive(m_ctx.ini(), m_driveSelector->itemData(index).toString());
    CheckCD();
}

void frmMain::addDiskImage()
{
    const QString image = m_ctx.prompter().openFile(
        QStringLiteral("Образ диска"),
        QStringLiteral("Образы дисков (*.iso;*.cue;*.nrg;*.toc;*.img)|*.iso;*.cue;*.nrg;*.toc;*.img|Все файлы (*.*)|*.*"),
        QString());
    if (image.isEmpty()) {
        return;
    }
    addVirtualDrive(m_ctx.ini(), image);
    setChosenDrive(m_ctx.ini(), image);
    LoadDefaultCD();
    CheckCD();
}

void frmMain::removeDiskImage()
{
    const QString drive = m_driveSelector->currentData().toString();
    if (!virtualDrives(m_ctx.ini()).contains(drive)) {
        m_ctx.prompter().message(QStringLiteral("Выбранное устройство не является образом диска."),
                                 MessageStyle::Exclamation);
        return;
    }
    removeVirtualDrive(m_ctx.ini(), drive);
    LoadDefaultCD();
    setChosenDrive(m_ctx.ini(), m_driveSelector->currentData().toString());
    CheckCD();
}

void frmMain::changeCategory()
{
    m_tmrCheckCD.stop();
    const bool restart = underFaultHandler(m_ctx, QStringLiteral("frmMain, mnuChangeCategory()"), [this] {
        return ChangeDiscCategory(m_ctx, m_driveSelector->currentData().toString(),
                                  frmSelectCategory::chooser(m_ctx, this));
    });
    if (restart) {
        m_tmrCheckCD.start();
        CheckCD();
    }
}

// ======================================================================================
// Database set
// ======================================================================================

void frmMain::OpenExternalDB()
{
    const QString path = m_ctx.prompter().openFile(
        QStringLiteral("Открытие базы данных vinora"),
        QStringLiteral("База данных vinora (*.db)|*.db|Все файлы (*.*)|*.*"), QString());
    if (path.isEmpty()) {
        return;
    }
    const QString fileName = QFileInfo(path).fileName();
    if (path.toLower() == m_ctx.MainDBPath.toLower()) {
        m_ctx.prompter().message(QStringLiteral("База данных '") + fileName + QStringLiteral("' уже открыта."),
                                 MessageStyle::Information);
        return;
    }
    if (path.toLower() == m_ctx.appFile(QStringLiteral("vinora.db")).toLower()) {
        if (m_ctx.prompter().message(QStringLiteral("Открыть локальную базу данных?"), MessageStyle::YesNoQuestion) ==
            Answer::Yes) {
            OpenLocalDB();
        }
        return;
    }
    try {
        WaitCursor hourglass;
        m_ctx.MainDBPath = path;
        Db db(path);
        const int audio = db.scalar(QStringLiteral("SELECT COUNT(*) FROM Аудио")).toInt();
        const int computer = db.scalar(QStringLiteral("SELECT COUNT(*) FROM Компьютер")).toInt();
        block(Category::Audio).discs->setText(QString::number(audio));
        block(Category::Computer).discs->setText(QString::number(computer));
        block(Category::Audio).updated->setText(updateDateText(readStamp(db, QStringLiteral("ПослОбновлАудио"))));
        block(Category::Computer).updated->setText(updateDateText(readStamp(db, QStringLiteral("ПослОбновлКомпьютер"))));
    } catch (const AppError&) {
        m_ctx.prompter().message(QStringLiteral("ОШИБКА!\n\nБаза данных имеет атрибут 'только чтение', повреждена или "
                                                "имеет не верный формат."),
                                 MessageStyle::Stop);
        OpenLocalDB();
        return;
    }
    m_statusPanels[0]->setText(QStringLiteral("База данных - внешняя (файл: '") + fileName + QStringLiteral("')"));
    m_ctx.ExternalDBOpen = true;
    block(Category::Audio).onLoan->setText(QStringLiteral("-"));
    block(Category::Computer).onLoan->setText(QStringLiteral("-"));
    setStatusPicture(2, externalModePicture());
    for (const char* id : {"ID_Catalog_AudioCD", "ID_Catalog_PCCD", "ID_DB_OpenLocal"}) {
        setToolEnabled(QString::fromLatin1(id), true);
    }
    for (const QString& id : localOnlyCommands()) {
        setToolEnabled(id, false);
    }
    for (const char* key : {"g4", "g3", "g2"}) {
        if (auto* group = m_listBar->findChild<QListWidget*>(QString::fromLatin1(key))) {
            m_listBar->removeItem(m_listBar->indexOf(group));
            group->deleteLater();
            group->setObjectName(QString());
        }
    }
    m_tmrFindDue.stop();
    m_tmrCheckCD.stop();
    m_tmrNewCD.stop();
    m_lastDriveDiscID.clear();
    for (const Category category : allCategories()) {
        block(category).dueFrame->hide();
        block(category).due = false;
    }
    ResetDiscSigns();
}

void frmMain::OpenLocalDB()
{
    m_ctx.resolveDatabasePaths();
    for (const QString& path : {m_ctx.MainDBPath, m_ctx.FilesDBPath, m_ctx.TracksDBPath}) {
        if (!QFileInfo::exists(path)) {
            m_ctx.prompter().message(QStringLiteral("ОШИБКА.\n\nФайл базы данных не найден. Запуск программы невозможен."),
                                     MessageStyle::Stop);
            m_ctx.endProcess(0);
        }
    }
    m_ctx.ExternalDBOpen = false;
    LoadData();
    m_statusPanels[0]->setText(QStringLiteral("База данных - локальная"));
    m_statusPanels[1]->clear();
    for (const QString& id : localOnlyCommands()) {
        setToolEnabled(id, true);
    }
    setToolEnabled(QStringLiteral("ID_DB_OpenLocal"), false);
    m_driveSelector->setEnabled(m_driveSelector->count() > 0);
    AddListbars();
    loadShortcuts();
}

// ======================================================================================
// Commands
// ======================================================================================

void frmMain::runCommand(const QString& toolId)
{
    if (toolId == u"ID_Catalog_AudioCD" || toolId == u"ID_QuickADCatalog") {
        openCatalogue(Category::Audio);
    } else if (toolId == u"ID_Catalog_PCCD" || toolId == u"ID_QuickPCCatalog") {
        openCatalogue(Category::Computer);
    } else if (toolId == u"ID_Catalog_DVD" || toolId == u"ID_QuickDVDCatalog") {
        openCatalogue(Category::Dvd);
    } else if (toolId == u"ID_Catalog_AddAudioCD" || toolId == u"ID_QuickADNewCD") {
        addDisc(Category::Audio);
    } else if (toolId == u"ID_Catalog_AddPCCD" || toolId == u"ID_QuickPCNewCD") {
        addDisc(Category::Computer);
    } else if (toolId == u"ID_Catalog_AddDVD" || toolId == u"ID_QuickDVDNewCD") {
        addDisc(Category::Dvd);
    } else if (toolId == u"ID_Catalog_ChangeNumber") {
        frmChangeNumber dialog(m_ctx, this);
        m_ctx.prompter().showModal(dialog);
        LoadData();
    } else if (toolId == u"ID_Quit") {
        close();
    } else if (toolId == u"ID_Panel") {
        setListBarVisible(m_listBar->isHidden());
    } else if (toolId == u"ID_DB_Open") {
        OpenExternalDB();
    } else if (toolId == u"ID_DB_OpenLocal") {
        OpenLocalDB();
    } else if (toolId == u"ID_Help_Info") {
        openHelpFile(shippedFile(QStringLiteral("readme.txt")), QStringLiteral("Файл 'readme.txt' не найден!"));
    } else if (toolId == u"ID_Help_Index") {
        openHelpFile(shippedFile(QStringLiteral("help/О программе.htm")), QStringLiteral("Файл справки не найден!"));
    } else if (toolId == u"ID_Help_About") {
        frmHelp about(m_ctx, this);
        m_ctx.prompter().showModal(about);
    } else if (toolId == u"ID_Catalog_ChangeCategory") {
        changeCategory();
    } else if (toolId == u"ID_AddCD") {
        const bool present = m_ctx.ini().has(QStringLiteral("Toolbars"), QStringLiteral("LastAction"), 5);
        const QString add = lastAddCommand(m_ctx.ini().read(QStringLiteral("Toolbars"), QStringLiteral("LastAction"), 5),
                                           present);
        if (!present) {
            addDisc(Category::Audio, false);
        } else if (!add.isEmpty() && m_actions.value(add)->isEnabled()) {
            runCommand(add);
        }
    } else if (toolId == u"ID_ToolbarEditDel") {
        deleteShortcut(m_shortcutUnderMouse);
    } else if (toolId == u"ID_DB_DiskImageAdd") {
        addDiskImage();
    } else if (toolId == u"ID_DB_DiskImageRemove") {
        removeDiskImage();
    } else {
        for (const MainToolbar& entry : mainToolbars()) {
            if (entry.toggleCommand == toolId) {
                QToolBar* bar = toolbar(entry.objectName);
                bar->setVisible(bar->isHidden());
                syncToolbarTicks();
            }
        }
    }
}

void frmMain::openHelpFile(const QString& file, const QString& missingMessage)
{
    if (!QFileInfo::exists(file) || !m_ctx.prompter().openUrl(QUrl::fromLocalFile(file))) {
        m_ctx.prompter().message(missingMessage, MessageStyle::Exclamation);
    }
}

void frmMain::setListBarVisible(bool visible)
{
    m_listBar->setVisible(visible);
    m_actions.value(QStringLiteral("ID_Panel"))->setChecked(visible);
    if (auto* toggle = findChild<QLabel*>(QStringLiteral("lblShowHideoListbar"))) {
        toggle->setText(visible ? QStringLiteral("◂ Панель vinora") : QStringLiteral("▸ Панель vinora"));
    }
}

void frmMain::LoadToolbars()
{
    if (!m_actions.value(QStringLiteral("ID_Panel"))->isChecked()) {
        setListBarVisible(false);
    }
}

void frmMain::AddListbars()
{
    if (m_listBar->count() >= 2) {
        return;
    }
    addListBarGroup(QStringLiteral("g2"), QStringLiteral("Должники"),
                    {QStringLiteral("Список должников"), QStringLiteral("История дисков"), QStringLiteral("Статистика"),
                     QStringLiteral("Управление должниками")});
    addListBarGroup(QStringLiteral("g3"), QStringLiteral("База данных"),
                    {QStringLiteral("Мастер обслуживания"), QStringLiteral("Поиск")});
    addListBarGroup(QStringLiteral("g4"), QStringLiteral("Запрос"), {});
    // The items whose windows are still to come are shown, but cannot be chosen.
    for (const char* key : {"g2", "g3"}) {
        auto* group = m_listBar->findChild<QListWidget*>(QString::fromLatin1(key));
        for (int i = 0; i < group->count(); ++i) {
            group->item(i)->setFlags(group->item(i)->flags() & ~Qt::ItemIsEnabled);
        }
    }
}

void frmMain::loadShortcuts()
{
    auto* group = m_listBar->findChild<QListWidget*>(QStringLiteral("g4"));
    if (group == nullptr) {
        return;
    }
    group->clear();
    for (const QString& shortcut : shortcutNames(m_ctx.queryIni())) {
        group->addItem(shortcut);
    }
}

void frmMain::showShortcutMenu(QListWidget* group, const QPoint& at)
{
    if (group->objectName() != u"g4") {
        return;
    }
    const QListWidgetItem* item = group->itemAt(at);
    m_shortcutUnderMouse = item ? item->text() : QString();
    setToolEnabled(QStringLiteral("ID_ToolbarEditDel"), item != nullptr);
    setToolEnabled(QStringLiteral("ID_ToolbarEditChange"), item != nullptr);
    m_menus.value(QStringLiteral("ID_ToolbarEdit"))->popup(group->viewport()->mapToGlobal(at));
}

void frmMain::deleteShortcut(const QString& shortcut)
{
    if (shortcut.isEmpty()) {
        return;
    }
    const Answer answer = m_ctx.prompter().message(
        QStringLiteral("Вы дейсвительно хотите удалить ярлык '") + shortcut + QStringLiteral("'?"),
        MessageStyle::YesNoQuestion);
    if (answer != Answer::Yes) {
        return;
    }
    if (!vinora::deleteShortcut(m_ctx.queryIni(), shortcut)) {
        m_ctx.prompter().message(QStringLiteral("Ошибка удаления ярлыка!"), MessageStyle::Exclamation);
        return;
    }
    loadShortcuts();
}

void frmMain::listBarItemClicked(const QString& groupKey, const QString& text)
{
    if (groupKey == u"g4") {
        const std::optional<ShortcutQuery> query = shortcutQuery(m_ctx.queryIni(), text);
        if (!query) {
            m_ctx.prompter().message(QStringLiteral("Запрос с именем '") + text + QStringLiteral("' ее найден!"),
                                     MessageStyle::Exclamation);
            return;
        }
        m_ctx.CatalogueQueryMode = true;
        m_ctx.CatalogueQueryFilter = query->condition;
        if (const CategoryInfo* category = categoryByCode(query->category)) {
            openCatalogue(category->category);
        }
        m_ctx.CatalogueQueryFilter.clear();
        return;
    }
    static const QHash<QString, QString> catalogueItems = {
        {QStringLiteral("Аудио диски"), QStringLiteral("ID_Catalog_AudioCD")},
        {QStringLiteral("Компьютерные диски"), QStringLiteral("ID_Catalog_PCCD")},
        {QStringLiteral("DVD диски"), QStringLiteral("ID_Catalog_DVD")}};
    if (catalogueItems.contains(text)) {
        runCommand(catalogueItems.value(text));
    } else if (text == u"Список должников" && m_ctx.ExternalDBOpen) {
        m_ctx.prompter().message(QStringLiteral("qwe"), MessageStyle::Plain);
    }
}

void frmMain::addDisc(Category category, bool rememberAction)
{
    if (runAddDisc(m_ctx, category, this)) {
        openCatalogue(category, m_ctx.LastSavedNumber);
    }
    if (rememberAction) {
        m_ctx.ini().write(QStringLiteral("Toolbars"), QStringLiteral("LastAction"),
                          QString::number(static_cast<int>(category) + 1));
    }
}

void frmMain::openCatalogue(Category category, int number)
{
    m_lastDriveDiscID.clear();
    ResetDiscSigns();
    {
        frmCatalogue catalogue(m_ctx, category, this);
        if (number > 0) {
            catalogue.goToNumber(number);
        }
        m_ctx.prompter().showModal(catalogue);
    }
    if (!m_ctx.ExternalDBOpen) {
        LoadData();
    }
}

void frmMain::showQuickMenu(Category category, const QPoint& at)
{
    m_menus.value(QString::fromLatin1(kBlockNames[static_cast<int>(category)].quickMenu))->popup(at);
}

} // namespace vinora
