#include "options/frmOption.h"

#include "cddb/CddbServers.h"
#include "frame/AppContext.h"
#include "frame/FaultLog.h"
#include "options/LocalDatabaseFolder.h"
#include "recognition/DriveChoice.h"
#include "recognition/Drives.h"
#include "ui/TitleWidth.h"
#include "ui/WaitCursor.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFileInfo>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMouseEvent>
#include <QPushButton>
#include <QRadioButton>
#include <QSlider>
#include <QSysInfo>
#include <QTabWidget>
#include <QToolButton>
#include <QVBoxLayout>

namespace vinora {
namespace {

const QString kPlace = QStringLiteral("frmOption, ");

QCheckBox* addBox(QLayout* layout, const char* name, const QString& caption)
{
    auto* box = new QCheckBox(caption);
    box->setObjectName(QString::fromLatin1(name));
    layout->addWidget(box);
    return box;
}

} // namespace

std::optional<ColorScheme> colorSchemeOf(SchemeChoice choice)
{
    switch (choice) {
    case SchemeChoice::Light:
        return ColorScheme::Light;
    case SchemeChoice::Dark:
        return ColorScheme::Dark;
    case SchemeChoice::System:
        break;
    }
    return std::nullopt;
}

frmOption::frmOption(AppContext& ctx, QWidget* parent) : QDialog(parent), m_ctx(ctx)
{
    setObjectName(QStringLiteral("frmOption"));
    setWindowTitle(QStringLiteral("Параметры"));
    auto* column = new QVBoxLayout(this);
    auto* tabs = new QTabWidget(this);
    tabs->setObjectName(QStringLiteral("TabStrip"));
    tabs->addTab(buildGeneralTab(), QStringLiteral("Общие"));
    tabs->addTab(buildMouseTab(), QStringLiteral("Мышь"));
    tabs->addTab(buildCddbTab(), QStringLiteral("CDDB"));
    tabs->addTab(buildIndicatorTab(), QStringLiteral("Индикаторы"));
    tabs->addTab(buildDatabaseTab(), QStringLiteral("База данных"));
    tabs->addTab(buildLookTab(), QStringLiteral("Оформление"));
    column->addWidget(tabs);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    auto* ok = new QPushButton(QStringLiteral("OK"), this);
    ok->setObjectName(QStringLiteral("imgButton0"));
    ok->setDefault(true);
    auto* cancel = new QPushButton(QStringLiteral("Отмена"), this);
    cancel->setObjectName(QStringLiteral("imgButton1"));
    buttons->addWidget(ok);
    buttons->addWidget(cancel);
    column->addLayout(buttons);
    connect(ok, &QPushButton::clicked, this, &frmOption::cmdOK);
    connect(cancel, &QPushButton::clicked, this, &frmOption::cmdCancel);
    keepTitleVisible(this);
    Form_Load();
}

QWidget* frmOption::buildGeneralTab()
{
    auto* page = new QWidget;
    auto* column = new QVBoxLayout(page);
    chConfirmExit =
        addBox(column, "chConfirmExit", QStringLiteral("Подтверждение перед выходом из программы"));
    chCheckCD = addBox(column, "chCheckCD", QStringLiteral("Проверять наличие диска в каталоге"));
    chAutoCompactDatabase = addBox(column, "chAutoCompactDatabase",
                                   QStringLiteral("Сжимать файлы базы данных при закрытии программы"));
    chCheckDueOnStartup =
        addBox(column, "chCheckDueOnStartup", QStringLiteral("Автоматически проверять должников"));
    chSaveFileListOption =
        addBox(column, "chSaveFileListOption", QStringLiteral("Сохранять параметры сканирования дисков"));

    auto* sorted = new QHBoxLayout;
    chSaveSortedCatalogue = new QCheckBox(QStringLiteral("Сохранять режим сортировки в:"));
    chSaveSortedCatalogue->setObjectName(QStringLiteral("chSaveSortedCatalogue"));
    chSaveSortedCatalogue->setAccessibleName(QStringLiteral("Сохранять режим сортировки в каталогах"));
    // The caption ends in "в:", so the word after the box says what it keeps; a click on the
    // word ticks the box as a click on the caption does.
    lblSaveSortedCatalogue = new QLabel(QStringLiteral("каталогах"));
    lblSaveSortedCatalogue->setObjectName(QStringLiteral("lblSaveSortedCatalogue"));
    lblSaveSortedCatalogue->installEventFilter(this);
    chSaveSortedDueList = new QCheckBox(QStringLiteral("списке должников"));
    chSaveSortedDueList->setObjectName(QStringLiteral("chSaveSortedDueList"));
    sorted->addWidget(chSaveSortedCatalogue);
    sorted->addWidget(lblSaveSortedCatalogue);
    sorted->addSpacing(16);
    sorted->addWidget(chSaveSortedDueList);
    sorted->addStretch(1);
    column->addLayout(sorted);

    column->addWidget(new QLabel(QStringLiteral("Устройство чтения компакт-дисков по умолчанию:")));
    cmbDrive = new QComboBox;
    cmbDrive->setObjectName(QStringLiteral("cmbDrive"));
    column->addWidget(cmbDrive);
    column->addStretch(1);
    return page;
}

QButtonGroup* frmOption::addPair(QWidget* page, const QString& caption, const QString& first,
                                 const QString& second, int firstIndex)
{
    auto* box = new QGroupBox(caption, page);
    auto* column = new QVBoxLayout(box);
    auto* group = new QButtonGroup(box);
    const QString texts[] = {first, second};
    const int indexes[] = {firstIndex, firstIndex + 1};
    for (int i = 0; i < 2; ++i) {
        auto* option = new QRadioButton(texts[i], box);
        option->setObjectName(QStringLiteral("optDblClick%1").arg(indexes[i]));
        group->addButton(option, i);
        column->addWidget(option);
        optDblClick[static_cast<std::size_t>(indexes[i])] = option;
    }
    page->layout()->addWidget(box);
    return group;
}

QWidget* frmOption::buildMouseTab()
{
    auto* page = new QWidget;
    auto* column = new QVBoxLayout(page);
    m_dblClick = addPair(page, QStringLiteral("При двойном щелчке мышки по названию диска открывать окно:"),
                         QStringLiteral("изменения диска"), QStringLiteral("списка файлов/треков"), 0);
    m_filesAction =
        addPair(page, QStringLiteral("Действие при двойном щелчке мышки по имени файла:"),
                QStringLiteral("запустить файл"), QStringLiteral("открыть каталог, где расположен файл"), 4);
    m_dblClickDue = addPair(
        page, QStringLiteral("При двойном щелчке мышки по имени должника в Списке должников открывать окно:"),
        QStringLiteral("статистики должника"), QStringLiteral("изменения даты возврата долга"), 2);
    chAutoResp = new QCheckBox(QStringLiteral("Автоматически определять номер диска, если он\n"
                                              "находится в устройстве для чтения компакт-дисков"));
    chAutoResp->setObjectName(QStringLiteral("chAutoResp"));
    column->addWidget(chAutoResp);
    column->addStretch(1);
    return page;
}

QWidget* frmOption::buildCddbTab()
{
    auto* page = new QWidget;
    auto* form = new QFormLayout(page);
    cmbServer = new QComboBox;
    cmbServer->setObjectName(QStringLiteral("cmbServer"));
    form->addRow(QStringLiteral("Сервер по умолчанию:"), cmbServer);

    auto* timeout = new QHBoxLayout;
    txtTimeout = new QLineEdit;
    txtTimeout->setObjectName(QStringLiteral("txtTimeout"));
    txtTimeout->setMaximumWidth(48);
    txtTimeout->installEventFilter(this);
    auto* arrows = new QVBoxLayout;
    arrows->setSpacing(0);
    const std::pair<const char*, Qt::ArrowType> steps[] = {{"udTimeoutUp", Qt::UpArrow},
                                                           {"udTimeoutDown", Qt::DownArrow}};
    for (const auto& [name, arrow] : steps) {
        auto* button = new QToolButton;
        button->setObjectName(QString::fromLatin1(name));
        button->setArrowType(arrow);
        button->setAutoRepeat(true);
        button->setFixedHeight(14);
        const int delta = arrow == Qt::UpArrow ? 1 : -1;
        connect(button, &QToolButton::clicked, this, [this, delta] { stepTimeout(delta); });
        arrows->addWidget(button);
    }
    timeout->addWidget(txtTimeout);
    timeout->addLayout(arrows);
    timeout->addStretch(1);
    form->addRow(QStringLiteral("Время ожидания (сек.):"), timeout);

    txtEmail = new QLineEdit;
    txtEmail->setObjectName(QStringLiteral("txtEmail"));
    txtEmail->setPlaceholderText(defaultCddbEmail(QSysInfo::machineHostName()));
    form->addRow(QStringLiteral("Адрес e-mail для приветствия сервера:"), txtEmail);
    auto* note =
        new QLabel(QStringLiteral("Серверы 2-7 (имя или имя:порт; пустое поле - адрес по умолчанию):"));
    note->setWordWrap(true);
    form->addRow(note);
    for (std::size_t i = 0; i < txtServer.size(); ++i) {
        txtServer[i] = new QLineEdit;
        txtServer[i]->setObjectName(QStringLiteral("txtServer%1").arg(i + 2));
        connect(txtServer[i], &QLineEdit::textChanged, this, &frmOption::showServerEdits);
        form->addRow(QStringLiteral("Сервер %1:").arg(i + 2), txtServer[i]);
    }
    return page;
}

QWidget* frmOption::buildIndicatorTab()
{
    auto* page = new QWidget;
    auto* column = new QVBoxLayout(page);
    column->addWidget(new QLabel(QStringLiteral("Частота мерцания индикаторов:")));
    auto* grid = new QGridLayout;
    const char* const names[] = {"InformerDue", "InformerCD", "InformerDueCat"};
    const QString captions[] = {QStringLiteral("Главное окно - Должники"),
                                QStringLiteral("Главное окно - Проверка диска"),
                                QStringLiteral("Каталог/Список - Должники")};
    for (int i = 0; i < kIndicatorCount; ++i) {
        IndicatorRow& row = m_indicators[static_cast<std::size_t>(i)];
        const QString name = QString::fromLatin1(names[i]);
        row.still = new QCheckBox(captions[i]);
        row.still->setObjectName(QStringLiteral("ch") + name);
        row.slider = new QSlider(Qt::Horizontal);
        row.slider->setObjectName(QStringLiteral("sld") + name);
        row.slider->setRange(0, kIndicatorSliderMax);
        row.slider->setPageStep(5);
        row.slider->setTickPosition(QSlider::TicksBelow);
        row.slider->setTickInterval(5);
        row.slider->setMinimumWidth(200);
        row.label = new QLabel;
        row.label->setObjectName(QStringLiteral("lbl") + name);
        row.label->setMinimumWidth(64);
        grid->addWidget(row.still, i, 0);
        grid->addWidget(row.slider, i, 1);
        grid->addWidget(row.label, i, 2);
        connect(row.still, &QCheckBox::clicked, this, [this, i] { indicatorTicked(i); });
        connect(row.slider, &QSlider::valueChanged, this,
                [&row](int value) { row.label->setText(IndicatorSetting{value}.label()); });
    }
    column->addLayout(grid);
    auto* note = new QLabel(QStringLiteral("Отмеченный флажок - статичный индикатор, без мерцания."));
    note->setWordWrap(true);
    column->addWidget(note);
    column->addStretch(1);
    return page;
}

QWidget* frmOption::buildDatabaseTab()
{
    auto* page = new QWidget;
    auto* column = new QVBoxLayout(page);
    column->addWidget(new QLabel(QStringLiteral("Путь к локальной базе данных:")));
    auto* path = new QHBoxLayout;
    txtPathLocalDB = new QLineEdit;
    txtPathLocalDB->setObjectName(QStringLiteral("txtPathLocalDB"));
    txtPathLocalDB->setReadOnly(true);
    auto* choose = new QPushButton(QStringLiteral("..."));
    choose->setObjectName(QStringLiteral("cmdPathLocalDB"));
    connect(choose, &QPushButton::clicked, this, &frmOption::cmdPathLocalDB);
    // With another database on view the paths are not the local ones to change.
    choose->setEnabled(!m_ctx.ExternalDBOpen);
    if (m_ctx.ExternalDBOpen) {
        choose->setToolTip(QStringLiteral("Путь можно изменить, когда открыта локальная база данных."));
    }
    path->addWidget(txtPathLocalDB, 1);
    path->addWidget(choose);
    column->addLayout(path);

    auto* images = new QGroupBox(QStringLiteral("Образы дисков в списке устройств"));
    auto* imageRow = new QHBoxLayout(images);
    lstImages = new QListWidget;
    lstImages->setObjectName(QStringLiteral("lstImages"));
    imageRow->addWidget(lstImages, 1);
    auto* imageButtons = new QVBoxLayout;
    auto* add = new QPushButton(QStringLiteral("Добавить..."));
    add->setObjectName(QStringLiteral("cmdImageAdd"));
    auto* remove = new QPushButton(QStringLiteral("Убрать"));
    remove->setObjectName(QStringLiteral("cmdImageRemove"));
    connect(add, &QPushButton::clicked, this, &frmOption::cmdImageAdd);
    connect(remove, &QPushButton::clicked, this, &frmOption::cmdImageRemove);
    imageButtons->addWidget(add);
    imageButtons->addWidget(remove);
    imageButtons->addStretch(1);
    imageRow->addLayout(imageButtons);
    column->addWidget(images, 1);
    return page;
}

QWidget* frmOption::buildLookTab()
{
    auto* page = new QWidget;
    auto* column = new QVBoxLayout(page);
    auto* box = new QGroupBox(QStringLiteral("Цветовая схема:"));
    auto* options = new QVBoxLayout(box);
    const QString texts[] = {QStringLiteral("как в системе"), QStringLiteral("светлая"),
                             QStringLiteral("тёмная")};
    for (std::size_t i = 0; i < optScheme.size(); ++i) {
        optScheme[i] = new QRadioButton(texts[i]);
        optScheme[i]->setObjectName(QStringLiteral("optScheme%1").arg(i));
        options->addWidget(optScheme[i]);
        // Shown at once; Cancel goes back to the scheme the dialog opened with.
        connect(optScheme[i], &QRadioButton::toggled, this, [this](bool on) {
            if (on) {
                applyColorScheme(colorSchemeOf(chosenScheme()));
            }
        });
    }
    column->addWidget(box);
    column->addStretch(1);
    return page;
}

void frmOption::Form_Load()
{
    underErrorReport(m_ctx, kPlace + QStringLiteral("Form_Load()"), [this] {
        const OptionSettings s = loadOptionSettings(m_ctx.ini(), m_ctx.appFolder());
        cmbServer->clear();
        cmbServer->addItems(cddbServerItems(m_ctx.ini()));
        cmbServer->setCurrentIndex(s.ServerCDDB);
        txtTimeout->setText(s.ServerTimeout);

        chConfirmExit->setChecked(s.ConfirmExit);
        chCheckCD->setChecked(s.CheckCD);
        chSaveSortedCatalogue->setChecked(s.SaveSortedCatalogue);
        chSaveSortedDueList->setChecked(s.SaveSortedDueList);
        chAutoCompactDatabase->setChecked(s.AutoCompactDatabase);
        chAutoResp->setChecked(s.AutoResp);
        chSaveFileListOption->setChecked(s.SaveFileListOption);
        chCheckDueOnStartup->setChecked(s.CheckDueOnStartup);
        m_dblClick->button(s.DblClick)->setChecked(true);
        m_filesAction->button(s.FilesAction)->setChecked(true);
        m_dblClickDue->button(s.DblClickDue)->setChecked(true);

        for (int i = 0; i < kIndicatorCount; ++i) {
            const IndicatorSetting& setting = s.indicator(static_cast<Indicator>(i));
            IndicatorRow& row = m_indicators[static_cast<std::size_t>(i)];
            row.slider->setValue(setting.slider);
            row.slider->setEnabled(setting.sliderEnabled);
            row.still->setChecked(setting.still);
            row.label->setText(setting.label());
        }
        txtPathLocalDB->setText(s.PathLocalDB);
        txtEmail->setText(s.Email);
        for (std::size_t i = 0; i < txtServer.size(); ++i) {
            txtServer[i]->setText(s.servers.value(static_cast<qsizetype>(i)));
        }
        m_schemeOnOpen = s.scheme;
        optScheme[static_cast<std::size_t>(s.scheme)]->blockSignals(true);
        optScheme[static_cast<std::size_t>(s.scheme)]->setChecked(true);
        optScheme[static_cast<std::size_t>(s.scheme)]->blockSignals(false);
        fillDrives(s.Drive);
        fillImages();
    });
}

void frmOption::fillDrives(const QString& chosen)
{
    cmbDrive->clear();
    const QStringList drives = GetCDDrives(m_ctx.ini());
    if (drives.isEmpty()) {
        cmbDrive->addItem(QStringLiteral("---"));
        cmbDrive->setEnabled(false);
        return;
    }
    cmbDrive->setEnabled(true);
    for (const QString& drive : drives) {
        // Images by their file name, as on the main window's tool bar; the path goes with the item.
        cmbDrive->addItem(QFileInfo(drive).isFile() ? QFileInfo(drive).fileName() : drive, drive);
        cmbDrive->setItemData(cmbDrive->count() - 1, drive, Qt::ToolTipRole);
    }
    const qsizetype at = drives.indexOf(chosen);
    cmbDrive->setCurrentIndex(at >= 0 ? static_cast<int>(at)
                                      : static_cast<int>(drives.indexOf(chosenDrive(m_ctx.ini(), drives))));
}

void frmOption::fillImages()
{
    lstImages->clear();
    for (const QString& image : virtualDrives(m_ctx.ini())) {
        lstImages->addItem(image);
    }
}

void frmOption::indicatorTicked(int index)
{
    IndicatorRow& row = m_indicators[static_cast<std::size_t>(index)];
    const bool still = row.still->isChecked();
    row.slider->setEnabled(!still);
    row.label->setText(IndicatorSetting{row.slider->value(), still}.label());
}

void frmOption::showServerEdits()
{
    // The list offers the servers as they are typed, not only as they were when it opened;
    // the chosen position stays.
    QStringList own;
    for (const QLineEdit* server : txtServer) {
        own.append(server->text().trimmed());
    }
    const QStringList items = cddbServerItems(own);
    for (int i = 0; i < cmbServer->count() && i < items.size(); ++i) {
        cmbServer->setItemText(i, items[i]);
    }
}

void frmOption::stepTimeout(int delta)
{
    txtTimeout->setText(vinora::stepTimeout(txtTimeout->text(), delta));
}

bool frmOption::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == lblSaveSortedCatalogue &&
        (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonRelease) &&
        static_cast<QMouseEvent*>(event)->button() == Qt::LeftButton) {
        if (event->type() == QEvent::MouseButtonRelease) {
            chSaveSortedCatalogue->click();
        }
        return true;
    }
    if (watched == txtTimeout && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent*>(event)->key();
        if (key == Qt::Key_Up || key == Qt::Key_Down) {
            stepTimeout(key == Qt::Key_Up ? 1 : -1);
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

SchemeChoice frmOption::chosenScheme() const
{
    for (std::size_t i = 0; i < optScheme.size(); ++i) {
        if (optScheme[i]->isChecked()) {
            return static_cast<SchemeChoice>(i);
        }
    }
    return SchemeChoice::System;
}

OptionSettings frmOption::fromControls() const
{
    OptionSettings s;
    s.ConfirmExit = chConfirmExit->isChecked();
    s.CheckCD = chCheckCD->isChecked();
    s.SaveSortedCatalogue = chSaveSortedCatalogue->isChecked();
    s.SaveSortedDueList = chSaveSortedDueList->isChecked();
    s.AutoCompactDatabase = chAutoCompactDatabase->isChecked();
    s.AutoResp = chAutoResp->isChecked();
    s.SaveFileListOption = chSaveFileListOption->isChecked();
    s.CheckDueOnStartup = chCheckDueOnStartup->isChecked();
    s.DblClick = optDblClick[0]->isChecked() ? 0 : 1;
    s.FilesAction = optDblClick[4]->isChecked() ? 0 : 1;
    s.DblClickDue = optDblClick[2]->isChecked() ? 0 : 1;
    s.Drive = cmbDrive->isEnabled() ? cmbDrive->currentData().toString() : QString();
    s.ServerCDDB = std::max(0, cmbServer->currentIndex());
    s.ServerTimeout = txtTimeout->text();
    for (int i = 0; i < kIndicatorCount; ++i) {
        const IndicatorRow& row = m_indicators[static_cast<std::size_t>(i)];
        s.indicators[static_cast<std::size_t>(i)] =
            IndicatorSetting{row.slider->value(), row.still->isChecked()};
    }
    s.PathLocalDB = txtPathLocalDB->text();
    s.Email = txtEmail->text();
    s.servers.clear();
    for (const QLineEdit* server : txtServer) {
        s.servers.append(server->text());
    }
    s.scheme = chosenScheme();
    return s;
}

void frmOption::cmdOK()
{
    const OptionSettings s = fromControls();
    const QString problem = optionSettingsProblem(s);
    if (!problem.isEmpty()) {
        m_ctx.prompter().message(problem, MessageStyle::Exclamation);
        return;
    }
    const bool saved = underErrorReport(m_ctx, kPlace + QStringLiteral("imgButton_Click()"), [&] {
        WaitCursor hourglass;
        saveOptionSettings(m_ctx.ini(), s);
    });
    if (saved) {
        accept();
    }
}

void frmOption::cmdCancel()
{
    if (chosenScheme() != m_schemeOnOpen) {
        applyColorScheme(colorSchemeOf(m_schemeOnOpen));
    }
    reject();
}

void frmOption::cmdPathLocalDB()
{
    underFaultHandler(m_ctx, kPlace + QStringLiteral("cmdPathLocalDB_Click()"), [this] {
        if (const std::optional<QString> folder = changeLocalDatabaseFolder(m_ctx, txtPathLocalDB->text())) {
            txtPathLocalDB->setText(*folder);
        }
    });
}

void frmOption::cmdImageAdd()
{
    underErrorReport(m_ctx, kPlace + QStringLiteral("cmdImageAdd_Click()"), [this] {
        const QString image = askForDiskImage(m_ctx.prompter());
        if (image.isEmpty()) {
            return;
        }
        addVirtualDrive(m_ctx.ini(), image);
        fillImages();
        fillDrives(image);
    });
}

void frmOption::cmdImageRemove()
{
    underErrorReport(m_ctx, kPlace + QStringLiteral("cmdImageRemove_Click()"), [this] {
        const QListWidgetItem* item = lstImages->currentItem();
        if (item == nullptr) {
            m_ctx.prompter().message(QStringLiteral("Выберите образ диска в списке."),
                                     MessageStyle::Exclamation);
            return;
        }
        const QString chosen = cmbDrive->currentData().toString();
        removeVirtualDrive(m_ctx.ini(), item->text());
        fillImages();
        fillDrives(chosen);
    });
}

} // namespace vinora
