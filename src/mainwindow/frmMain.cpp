#include "mainwindow/frmMain.h"

#include "catalogue/Numbering.h"
#include "catalogue/frmAddCD.h"
#include "catalogue/frmCatalogue.h"
#include "catalogue/frmChangeNumber.h"
#include "catalogue/frmSelectCD.h"
#include "exchange/frmExport.h"
#include "frame/AppContext.h"
#include "frame/FaultLog.h"
#include "frame/ProgramInfo.h"
#include "frame/WindowPlacement.h"
#include "mainwindow/DashboardData.h"
#include "mainwindow/DashboardPictures.h"
#include "mainwindow/HelpViewer.h"
#include "mainwindow/MainCommands.h"
#include "mainwindow/frmCompactDB.h"
#include "mainwindow/frmHelp.h"
#include "mainwindow/frmToolbars.h"
#include "options/frmOption.h"
#include "recognition/DiscIdentity.h"
#include "recognition/DriveWatch.h"
#include "recognition/Drives.h"
#include "recognition/frmSelectCategory.h"
#include "search/QueryShortcuts.h"
#include "search/frmCreateQuery.h"
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
#include <QDataStream>
#include <QFileInfo>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QListWidget>
#include <QLocale>
#include <QMenu>
#include <QMenuBar>
#include <QSaveFile>
#include <QScreen>
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
const QString kCompactionPostponedText =
    QStringLiteral("Базы данных не сжаты: с ними сейчас работает другая программа (vinora-cli).\n\n"
                   "Сжатие будет выполнено при следующем выходе из программы.");

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
    // A submenu takes its place in its parent where its first command comes in the list,
    // so "Добавить" follows the three catalogues and "Экспорт" follows "Сохранить как...".
    QHash<QString, QString> unplacedSubmenus; // submenu id -> parent id
    for (const MainMenu& entry : mainMenus()) {
        QMenu* menu = entry.parentId.isEmpty() && !entry.popup ? menuBar()->addMenu(entry.text)
                                                               : new QMenu(entry.text, this);
        menu->setObjectName(entry.id);
        m_menus.insert(entry.id, menu);
        if (!entry.parentId.isEmpty()) {
            unplacedSubmenus.insert(entry.id, entry.parentId);
        }
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
        if (const QString parent = unplacedSubmenus.take(command.menuId); !parent.isEmpty()) {
            m_menus.value(parent)->addMenu(m_menus.value(command.menuId));
        }
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
    if (auto* addButton =
            qobject_cast<QToolButton*>(toolbars.value(QStringLiteral("Каталоги"))
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
    addListBarGroup(
        QStringLiteral("1"), QStringLiteral("Каталоги"),
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
    connect(b.logo, &ClickableLabel::pressed, this,
            [this, category](const QPoint& at) { showQuickMenu(category, at); });
    connect(b.logo, &ClickableLabel::hovered, this, [this, category](bool inside) {
        block(category).logo->setPixmap(logoPicture(category, inside));
    });
    grid->addWidget(b.logo, 0, 0, 3, 1, Qt::AlignTop);

    // Fixed columns, so that the three blocks line up.
    const auto addValue = [&](int rowIndex, const QString& caption, const QString& objectName) {
        auto* captionLabel = new QLabel(caption, frame);
        captionLabel->setMinimumWidth(
            captionLabel->fontMetrics().horizontalAdvance(QStringLiteral("Последнее изменение: ")));
        grid->addWidget(captionLabel, rowIndex, 1);
        auto* value = new QLabel(QStringLiteral("-"), frame);
        value->setMinimumWidth(
            value->fontMetrics().horizontalAdvance(QStringLiteral("30 сентября 2026 г. ")) + 8);
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
    // The signs blink by hiding and showing inside space that stays reserved, so nothing
    // around them moves (and a click on the link lands where the link was drawn).
    for (QWidget* blinking :
         std::initializer_list<QWidget*>{b.dueFrame, b.newSign, b.newLabel, b.shareSign, b.shareLink}) {
        QSizePolicy policy = blinking->sizePolicy();
        policy.setRetainSizeWhenHidden(true);
        blinking->setSizePolicy(policy);
    }
    b.newSign->setMinimumSize(discPicture(DiscPicture::Unknown).size());
    b.newLabel->setMinimumHeight(2 * b.newLabel->fontMetrics().lineSpacing());
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
    return timerName == u"tmrCheckCD"   ? m_tmrCheckCD
           : timerName == u"tmrNewCD"   ? m_tmrNewCD
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

namespace {
// The layout file holds the tool bars' state and whether the vinora panel is shown.
constexpr quint32 kLayoutMagic = 0x76696e31; // "vin1"
} // namespace

void frmMain::saveLayout()
{
    QSaveFile file(toolbarLayoutPath());
    if (!file.open(QIODevice::WriteOnly)) {
        return;
    }
    QDataStream out(&file);
    out << kLayoutMagic << saveState() << m_actions.value(QStringLiteral("ID_Panel"))->isChecked();
    file.commit();
}

void frmMain::restoreLayout()
{
    QFile file(toolbarLayoutPath());
    if (!file.open(QIODevice::ReadOnly)) {
        return; // the designed layout
    }
    QDataStream in(&file);
    quint32 magic = 0;
    QByteArray state;
    bool panel = true;
    in >> magic >> state >> panel;
    if (magic != kLayoutMagic || in.status() != QDataStream::Ok || !restoreState(state)) {
        return; // not ours or damaged: the designed layout
    }
    m_actions.value(QStringLiteral("ID_Panel"))->setChecked(panel);
    syncToolbarTicks();
}

void frmMain::Form_Load()
{
    underFaultHandler(m_ctx, QStringLiteral("frmMain, Form_Load()"), [this] {
        LoadWinPos();
        restoreLayout();
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
    const QRect available = screen() != nullptr ? screen()->availableGeometry() : QRect();
    const QRect place = placedGeometry(placement, geometry(), available);
    move(place.topLeft());
    resize(place.size());
    if (placement.state) {
        const int state = placedState(placement);
        setWindowState(state == 2   ? Qt::WindowMaximized
                       : state == 1 ? Qt::WindowMinimized
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
        saveLayout();
        const int state = isMinimized() ? 1 : isMaximized() ? 2 : 0;
        const QRect place = geometry();
        try {
            SaveWinPos(m_ctx.ini(), state, x() * kTwipsPerPixel, y() * kTwipsPerPixel,
                       place.height() * kTwipsPerPixel, place.width() * kTwipsPerPixel);
        } catch (const AppError& error) {
            // Leaving must not depend on the settings file: say so and go on.
            m_ctx.prompter().message(error.description(), MessageStyle::Exclamation);
        }
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
    const bool compacted = underFaultHandler(m_ctx, QStringLiteral("frmMain, CompactDB()"), [this] {
        WaitCursor hourglass;
        return compactDatabases(m_ctx);
    });
    if (!compacted) {
        wait.hide();
        m_ctx.prompter().message(kCompactionPostponedText, MessageStyle::Information);
    }
}

// ======================================================================================
// Commands
// ======================================================================================

void frmMain::runCommand(const QString& toolId)
{
    if (runLoanCommand(toolId) || runSearchCommand(toolId) || runMaintenanceCommand(toolId)) {
        return;
    }
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
    } else if (toolId == u"ID_DB_ExportHTML") {
        frmExport dialog(m_ctx, this);
        m_ctx.prompter().showModal(dialog);
    } else if (toolId == u"ID_Help_Info") {
        openHelpFile(shippedFile(QStringLiteral("readme.txt")),
                     QStringLiteral("Файл 'readme.txt' не найден!"));
    } else if (toolId == u"ID_Help_Index") {
        openHelpFile(shippedFile(QStringLiteral("help/О программе.htm")),
                     QStringLiteral("Файл справки не найден!"));
    } else if (toolId == u"ID_Help_About") {
        frmHelp about(m_ctx, this);
        m_ctx.prompter().showModal(about);
    } else if (toolId == u"ID_Catalog_ChangeCategory") {
        changeCategory();
    } else if (toolId == u"ID_AddCD") {
        const bool present = m_ctx.ini().has(QStringLiteral("Toolbars"), QStringLiteral("LastAction"), 5);
        const QString add = lastAddCommand(
            m_ctx.ini().read(QStringLiteral("Toolbars"), QStringLiteral("LastAction"), 5), present);
        if (!present) {
            addDisc(Category::Audio, false);
        } else if (!add.isEmpty() && m_actions.value(add)->isEnabled()) {
            runCommand(add);
        }
    } else if (toolId == u"ID_ToolbarEditAdd") {
        addShortcut();
    } else if (toolId == u"ID_ToolbarEditChange") {
        changeShortcut(m_shortcutUnderMouse);
    } else if (toolId == u"ID_ToolbarEditDel") {
        deleteShortcut(m_shortcutUnderMouse);
    } else if (toolId == u"ID_DB_DiskImageAdd") {
        addDiskImage();
    } else if (toolId == u"ID_DB_DiskImageRemove") {
        removeDiskImage();
    } else if (toolId == u"ID_DB_Option") {
        showOptions();
    } else if (toolId == u"ID_View_Toolbars_Option") {
        showToolbarOptions();
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
    if (!QFileInfo(file).isFile()) {
        m_ctx.prompter().message(missingMessage, MessageStyle::Exclamation);
        return;
    }
    // One help window beside the main one, reused by every help command.
    if (m_helpViewer == nullptr) {
        m_helpViewer = new HelpViewer(m_ctx, this);
    }
    m_helpViewer->showFile(file);
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
                    {QStringLiteral("Список должников"), QStringLiteral("История дисков"),
                     QStringLiteral("Статистика"), QStringLiteral("Управление должниками")});
    addListBarGroup(
        QStringLiteral("g3"), QStringLiteral("База данных"),
        {QStringLiteral("Мастер обслуживания"), QStringLiteral("Параметры"), QStringLiteral("Поиск")});
    addListBarGroup(QStringLiteral("g4"), QStringLiteral("Запрос"), {});
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

void frmMain::addShortcut()
{
    underErrorReport(m_ctx, QStringLiteral("frmMain, ID_ToolbarEditAdd"), [this] {
        frmCreateQuery editor(m_ctx, this);
        m_ctx.prompter().showModal(editor);
    });
    loadShortcuts();
}

void frmMain::changeShortcut(const QString& shortcut)
{
    if (shortcut.isEmpty()) {
        return;
    }
    underErrorReport(m_ctx, QStringLiteral("frmMain, ID_ToolbarEditChange"), [&] {
        frmCreateQuery editor(m_ctx, this);
        if (!editor.editShortcut(shortcut)) {
            m_ctx.prompter().message(QStringLiteral("Запрос с именем '") + shortcut +
                                         QStringLiteral("' ее найден!"),
                                     MessageStyle::Exclamation);
            return;
        }
        m_ctx.prompter().showModal(editor);
    });
    loadShortcuts();
}

void frmMain::deleteShortcut(const QString& shortcut)
{
    if (shortcut.isEmpty()) {
        return;
    }
    const Answer answer = m_ctx.prompter().message(QStringLiteral("Вы дейсвительно хотите удалить ярлык '") +
                                                       shortcut + QStringLiteral("'?"),
                                                   MessageStyle::YesNoQuestion);
    if (answer != Answer::Yes) {
        return;
    }
    bool counted = true;
    if (!underErrorReport(m_ctx, QStringLiteral("frmMain, ID_ToolbarEditDel"),
                          [&] { counted = vinora::deleteShortcut(m_ctx.queryIni(), shortcut); })) {
        return;
    }
    if (!counted) {
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
            m_ctx.prompter().message(QStringLiteral("Запрос с именем '") + text +
                                         QStringLiteral("' ее найден!"),
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
    static const QStringList catalogueItems = {
        QStringLiteral("Аудио диски"), QStringLiteral("Компьютерные диски"), QStringLiteral("DVD диски")};
    const QString command = panelCommand(text);
    if (catalogueItems.contains(text)) {
        runCommand(command);
    } else if (text == u"Список должников" && m_ctx.ExternalDBOpen) {
        m_ctx.prompter().message(QStringLiteral("qwe"), MessageStyle::Plain);
    } else if (isLiveCommand(command) && !m_ctx.ExternalDBOpen) {
        runCommand(command);
    }
}

QString frmMain::panelCommand(const QString& item)
{
    static const QHash<QString, QString> commands = {
        {QStringLiteral("Аудио диски"), QStringLiteral("ID_Catalog_AudioCD")},
        {QStringLiteral("Компьютерные диски"), QStringLiteral("ID_Catalog_PCCD")},
        {QStringLiteral("DVD диски"), QStringLiteral("ID_Catalog_DVD")},
        {QStringLiteral("Список должников"), QStringLiteral("ID_Due_List")},
        {QStringLiteral("История дисков"), QStringLiteral("ID_Due_DiskHistory")},
        {QStringLiteral("Статистика"), QStringLiteral("ID_Due_Stat")},
        {QStringLiteral("Управление должниками"), QStringLiteral("ID_Due_Admin")},
        {QStringLiteral("Мастер обслуживания"), QStringLiteral("ID_DB_Wizard")},
        {QStringLiteral("Параметры"), QStringLiteral("ID_DB_Option")},
        {QStringLiteral("Поиск"), QStringLiteral("ID_DB_Search")}};
    return commands.value(item);
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

void frmMain::showOptions()
{
    m_lastDriveDiscID.clear();
    ResetDiscSigns();
    {
        frmOption options(m_ctx, this);
        m_ctx.prompter().showModal(options);
    }
    // Whatever button closed it: the folder of the databases and the images may have changed.
    m_lastDriveDiscID.clear();
    m_tmrNewCD.stop();
    ResetDiscSigns();
    if (!m_ctx.ExternalDBOpen) {
        LoadData();
    }
    LoadDefaultCD();
}

void frmMain::showToolbarOptions()
{
    QList<frmToolbars::Bar> bars;
    for (const MainToolbar& entry : mainToolbars()) {
        QToolBar* bar = toolbar(entry.objectName);
        bars.append({entry.title, [bar] { return !bar->isHidden(); },
                     [this, bar](bool shown) {
                         bar->setVisible(shown);
                         syncToolbarTicks();
                     }});
    }
    const auto reset = [this] { resetToolbars(); };
    frmToolbars dialog(bars, reset, this);
    m_ctx.prompter().showModal(dialog);
}

void frmMain::resetToolbars()
{
    for (const MainToolbar& entry : mainToolbars()) {
        QToolBar* bar = toolbar(entry.objectName);
        removeToolBarBreak(bar);
        removeToolBar(bar);
        addToolBar(Qt::TopToolBarArea, bar);
        bar->setMovable(true);
        bar->show();
    }
    syncToolbarTicks();
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
