#include "catalogue/frmCatalogue.h"

#include "catalogue/CatalogueGrid.h"
#include "catalogue/CatalogueOps.h"
#include "catalogue/CatalogueRows.h"
#include "catalogue/DictionaryTable.h"
#include "catalogue/SoundFormats.h"
#include "catalogue/frmAddCD.h"
#include "catalogue/frmAddInCatalogue.h"
#include "contents/frmFileList.h"
#include "contents/frmTrackList.h"
#include "frame/AppContext.h"
#include "frame/FaultLog.h"
#include "frame/NumericPrefix.h"
#include "frame/TextRules.h"
#include "lending/LoanFlows.h"
#include "recognition/DiscIdentity.h"
#include "recognition/frmSelectCategory.h"
#include "store/Db.h"
#include "ui/KeyFilter.h"
#include "ui/TitleWidth.h"
#include "ui/WaitCursor.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QTabWidget>
#include <QTableView>
#include <QVBoxLayout>

namespace vinora {
namespace {

const QString kOption = QStringLiteral("Option");
const QString kSorted = QStringLiteral("Sorted");

// The buttons of the browser by their old numbers: 0 close, 1 add, 2 delete, 3 change,
// 4 loan, 5 whole catalogue, 6 list of tracks or files, 8 change cover, 9 delete cover.
struct ButtonDef
{
    int index;
    const char* text;
};
constexpr ButtonDef kButtons[] = {{1, "Добавить"},        {2, "Удалить"},         {3, "Изменить"},
                                  {4, "Должник"},         {5, "Весь каталог"},    {6, "Список"},
                                  {8, "Сменить обложку"}, {9, "Удалить обложку"}, {0, "Закрыть"}};

} // namespace

frmCatalogue::frmCatalogue(AppContext& ctx, Category category, QWidget* parent)
    : QDialog(parent), m_ctx(ctx), m_kind(catalogueKind(category)), m_rows(new CatalogueRows(m_kind, this))
{
    setObjectName(m_kind.formName);
    setWindowTitle(m_kind.title);
    resize(900, 600);
    auto* layout = new QVBoxLayout(this);

    // Sorting and the dictionary filter.
    auto* top = new QHBoxLayout;
    m_lblSorted = new QLabel(QStringLiteral("Сортировка:"), this);
    m_lblSorted->setObjectName(QStringLiteral("lblSorted"));
    m_cmbSorted = new QComboBox(this);
    m_cmbSorted->setObjectName(QStringLiteral("cmbSorted"));
    m_chSortedDESC = new QCheckBox(QStringLiteral("в обратном порядке"), this);
    m_chSortedDESC->setObjectName(QStringLiteral("chSortedDESC"));
    m_cmbDictionary = new QComboBox(this);
    m_cmbDictionary->setObjectName(m_kind.dictionaryControl);
    m_cmbDictionary->setMinimumContentsLength(16);
    top->addWidget(m_lblSorted);
    top->addWidget(m_cmbSorted);
    top->addWidget(m_chSortedDESC);
    top->addStretch(1);
    top->addWidget(new QLabel(m_kind.dictionaryTable + u':', this));
    top->addWidget(m_cmbDictionary);
    layout->addLayout(top);

    auto* middle = new QHBoxLayout;
    m_grid = new CatalogueGrid(m_rows, this);
    m_grid->installEventFilter(this);
    // The row counter under the grid, wide enough for its longer caption from the start, so
    // that a filter does not change the window's size.
    auto* list = new QVBoxLayout;
    list->addWidget(m_grid, 1);
    auto* counter = new QHBoxLayout;
    m_lblCDsCount0 = new QLabel(this);
    m_lblCDsCount0->setObjectName(QStringLiteral("lblCDsCount0"));
    m_lblCDsCount0->setMinimumWidth(
        m_lblCDsCount0->fontMetrics().horizontalAdvance(QStringLiteral("Дисков удовлетворяющих запросу:")));
    m_lblCDsCount1 = new QLabel(this);
    m_lblCDsCount1->setObjectName(QStringLiteral("lblCDsCount1"));
    counter->addWidget(m_lblCDsCount0);
    counter->addWidget(m_lblCDsCount1, 1);
    list->addLayout(counter);
    middle->addLayout(list, 3);

    m_tabs = new QTabWidget(this);
    m_tabs->setObjectName(QStringLiteral("TabStrip"));
    auto* details = new QWidget(m_tabs);
    auto* form = new QFormLayout(details);
    m_txtNumber = addField(QStringLiteral("txtNumber"), QStringLiteral("Номер:"), form);
    m_txtNumber->setReadOnly(false);
    KeyFilter::install(m_txtNumber, DigitKeys);
    m_txtName = addField(QStringLiteral("txtName"), m_kind.nameCaption + QStringLiteral(" [запрос]"), form);
    m_txtName->setReadOnly(false);
    m_myGroup.append(m_txtName);
    if (m_kind.hasAlbum) {
        m_txtAlbum = addField(QStringLiteral("txtAlbum"), QStringLiteral("Альбом [запрос]"), form);
        m_txtAlbum->setReadOnly(false);
        m_myGroup.append(m_txtAlbum);
    }
    if (m_kind.category == Category::Computer) {
        addField(QStringLiteral("txtDescription2"), QStringLiteral("Описание:"), form);
    }
    if (m_kind.category == Category::Dvd) {
        addField(QStringLiteral("txtDescription"), QStringLiteral("Описание:"), form);
        addField(QStringLiteral("txtZone"), QStringLiteral("Зона:"), form);
        addField(QStringLiteral("txtTimeDVD"), QStringLiteral("Время:"), form);
    }
    addField(QStringLiteral("txtYear"), QStringLiteral("Год:"), form);
    addField(QStringLiteral("txtCDs"), QStringLiteral("Дисков:"), form);
    if (m_kind.category == Category::Audio) {
        m_cmbCountCD = new QComboBox(details);
        m_cmbCountCD->setObjectName(QStringLiteral("cmbCountCD"));
        form->addRow(QStringLiteral("Диск:"), m_cmbCountCD);
        m_txtTrecks = addField(QStringLiteral("txtTrecks"), QStringLiteral("Записей:"), form);
        m_txtTime = addField(QStringLiteral("txtTime"), QStringLiteral("Время:"), form);
        connect(m_cmbCountCD, &QComboBox::currentTextChanged, this, &frmCatalogue::cmbCountCD_Click);
    }
    if (m_kind.category == Category::Dvd) {
        // Its text tells how many formats the list holds, as a text of the box.
        m_cmbSoundFormat = new QComboBox(details);
        m_cmbSoundFormat->setObjectName(QStringLiteral("cmbSoundFormat"));
        m_cmbSoundFormat->setEditable(true);
        m_cmbSoundFormat->setInsertPolicy(QComboBox::NoInsert);
        m_cmbSoundFormat->lineEdit()->setReadOnly(true);
        form->addRow(QStringLiteral("Звук:"), m_cmbSoundFormat);
    }
    addField(QStringLiteral("txtDateAdd"), QStringLiteral("Добавлен:"), form);
    addField(QStringLiteral("txtDateUpdate"), QStringLiteral("Изменён:"), form);
    m_imgDue = new QLabel(QStringLiteral("●"), details);
    m_imgDue->setObjectName(QStringLiteral("imgDue"));
    m_imgDue->setStyleSheet(QStringLiteral("color: #d32f2f; font-size: 18px;"));
    m_lblDue = new QLabel(details);
    m_lblDue->setObjectName(QStringLiteral("lblDue"));
    // A long name wraps and never widens the window.
    m_lblDue->setWordWrap(true);
    m_lblDue->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    auto* due = new QHBoxLayout;
    due->addWidget(m_imgDue);
    due->addWidget(m_lblDue, 1);
    form->addRow(due);
    m_imgDue->hide();
    m_lblDue->hide();
    m_tabs->addTab(details, QStringLiteral("Диск"));
    m_imgBox = new QLabel(m_tabs);
    m_imgBox->setObjectName(QStringLiteral("imgBox"));
    m_imgBox->setAlignment(Qt::AlignCenter);
    // A cover is fitted into the tab; its own size never makes the window grow.
    m_imgBox->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
    m_imgBox->installEventFilter(this);
    m_tabs->addTab(m_imgBox, QStringLiteral("Обложка"));
    middle->addWidget(m_tabs, 2);
    layout->addLayout(middle, 1);

    auto* bottom = new QHBoxLayout;
    bottom->addStretch(1);
    m_buttons.resize(10, nullptr);
    for (const ButtonDef& def : kButtons) {
        if ((def.index == 6 && !m_kind.contents) || def.index == 7) {
            continue;
        }
        auto* btn = new QPushButton(QString::fromUtf8(def.text), this);
        btn->setObjectName(QStringLiteral("imgButton%1").arg(def.index));
        btn->setAutoDefault(false);
        m_buttons[def.index] = btn;
        bottom->addWidget(btn);
    }
    layout->addLayout(bottom);

    connect(button(0), &QPushButton::clicked, this, &QDialog::reject);
    connect(button(1), &QPushButton::clicked, this, &frmCatalogue::cmdAdd);
    connect(button(2), &QPushButton::clicked, this, &frmCatalogue::cmdDelete);
    connect(button(3), &QPushButton::clicked, this, &frmCatalogue::cmdChange);
    connect(button(4), &QPushButton::clicked, this, &frmCatalogue::cmdDue);
    connect(m_grid, &QTableView::doubleClicked, this, [this] {
        if (m_ctx.ExternalDBOpen) {
            return;
        }
        if (m_kind.doubleClickSetting && m_ctx.ini().number(kOption, QStringLiteral("DblClick"), 5) == 1) {
            cmdList();
            return;
        }
        cmdChange();
    });
    if (m_kind.contents) {
        connect(button(6), &QPushButton::clicked, this, &frmCatalogue::cmdList);
    }
    connect(button(5), &QPushButton::clicked, this, &frmCatalogue::ShowWholeCatalogue);
    connect(button(8), &QPushButton::clicked, this, &frmCatalogue::cmdChangeBox);
    connect(button(9), &QPushButton::clicked, this, &frmCatalogue::cmdDeleteBox);
    connect(m_cmbSorted, &QComboBox::activated, this, &frmCatalogue::cmbSorted_Click);
    connect(m_chSortedDESC, &QCheckBox::clicked, this, &frmCatalogue::cmbSorted_Click);
    connect(m_cmbDictionary, &QComboBox::activated, this, [this] {
        const QString name = m_cmbDictionary->currentText();
        name.isEmpty() ? ShowWholeCatalogue() : setFilter(dictionaryFilter(m_kind, name));
    });
    connect(m_txtName, &QLineEdit::textEdited, this, &frmCatalogue::txtName_KeyUp);
    if (m_txtAlbum) {
        connect(m_txtAlbum, &QLineEdit::returnPressed, this, &frmCatalogue::txtAlbum_Enter);
    }
    connect(m_txtNumber, &QLineEdit::returnPressed, this, &frmCatalogue::txtNumber_Enter);
    connect(m_grid, &CatalogueGrid::rowChanged, this, [this](int row) {
        m_row = row;
        dcDatabase_Reposition();
    });
    connect(&m_timerDue, &QTimer::timeout, this, &frmCatalogue::timerDue_Timer);
    m_timerDue.setInterval(500);
    keepTitleVisible(this);

    Form_Load();
}

frmCatalogue::~frmCatalogue() = default;

QLineEdit* frmCatalogue::addField(const QString& objectName, const QString& caption, QFormLayout* form)
{
    auto* field = new QLineEdit(form->parentWidget());
    field->setObjectName(objectName);
    field->setReadOnly(true);
    form->addRow(caption, field);
    return field;
}

QPushButton* frmCatalogue::button(int index) const
{
    return m_buttons.value(index);
}

int frmCatalogue::rowCount() const
{
    return m_rows->size();
}

QString frmCatalogue::rowText(int row) const
{
    return QString::number(m_rows->number(row)) + u' ' +
           m_rows->value(row, QStringLiteral("Название")).toString();
}

QString frmCatalogue::currentNumberText() const
{
    return m_txtNumber->text();
}

void frmCatalogue::Form_Load()
{
    underFaultHandler(m_ctx, m_kind.formName + QStringLiteral(", Form_Load()"), [this] {
        const QString interval = m_ctx.ini().read(kOption, QStringLiteral("tmrDueCatalogue"), 5);
        if (!interval.isEmpty()) {
            const double value = m_ctx.ini().number(kOption, QStringLiteral("tmrDueCatalogue"), 5);
            m_timerDue.configure(value);
        }
        // The changing commands stay off while another database is on view.
        button(4)->setEnabled(!m_ctx.ExternalDBOpen);
        button(1)->setEnabled(!m_ctx.ExternalDBOpen);
        button(2)->setEnabled(!m_ctx.ExternalDBOpen);
        button(3)->setEnabled(!m_ctx.ExternalDBOpen);
        button(5)->setEnabled(false);
        FullDictionary();
        for (const SortItem& item : m_kind.sortItems) {
            m_cmbSorted->addItem(item.text);
        }
        if (m_ctx.ini().has(kSorted, m_kind.sortKey, 5)) {
            m_cmbSorted->setCurrentIndex(boundedInt(m_ctx.ini().number(kSorted, m_kind.sortKey, 5), 0,
                                                    static_cast<int>(m_kind.sortItems.size()) - 1));
            m_chSortedDESC->setChecked(m_ctx.ini().number(kSorted, m_kind.sortDescKey(), 5) == 1);
        }
        if (!m_ctx.ExternalDBOpen && m_ctx.CatalogueQueryMode) {
            setWindowTitle(m_kind.queryTitle());
            button(5)->setEnabled(true);
        }
        if (!parseFilter(m_kind, m_ctx.CatalogueQueryFilter)) {
            m_ctx.prompter().message(
                QStringLiteral("Условие запроса не распознано, показан весь каталог:\n") +
                    m_ctx.CatalogueQueryFilter,
                MessageStyle::Exclamation);
            m_ctx.CatalogueQueryFilter.clear();
        }
        cmbSorted_Click();
    });
}

void frmCatalogue::FullDictionary()
{
    m_cmbDictionary->clear();
    const Db db(m_ctx.MainDBPath, Db::Access::ReadOnly);
    m_cmbDictionary->addItems(DictionaryTable(db, m_kind.dictionaryTable, m_kind.dictionaryKey).names());
}

void frmCatalogue::cmbSorted_Click()
{
    underFaultHandler(m_ctx, m_kind.formName + QStringLiteral(", cmbSored_Click()"), [this] {
        const CatalogueFilter filter =
            parseFilter(m_kind, m_ctx.CatalogueQueryFilter).value_or(CatalogueFilter{});
        m_recordSource =
            buildCatalogueQuery(m_kind, filter, m_cmbSorted->currentIndex(), m_chSortedDESC->isChecked());
        Refresh();
    });
}

void frmCatalogue::Refresh()
{
    {
        WaitCursor hourglass;
        const Db db(m_ctx.MainDBPath, Db::Access::ReadOnly);
        m_rows->load(db, m_recordSource);
    }
    m_grid->selectRow(0);
}

void frmCatalogue::setFilter(const CatalogueFilter& filter)
{
    m_ctx.CatalogueQueryFilter = filterText(filter);
    setWindowTitle(m_kind.queryTitle());
    button(5)->setEnabled(true);
    cmbSorted_Click();
}

void frmCatalogue::ShowWholeCatalogue()
{
    m_ctx.CatalogueQueryFilter.clear();
    m_txtName->clear();
    setWindowTitle(m_kind.title);
    button(5)->setEnabled(false);
    cmbSorted_Click();
}

void frmCatalogue::txtName_KeyUp()
{
    const QString cleaned = CleanText(m_txtName->text());
    if (cleaned != m_txtName->text()) {
        m_txtName->setText(cleaned);
    }
    if (cleaned.isEmpty()) {
        ShowWholeCatalogue();
        return;
    }
    setFilter(likeFilter(QStringLiteral("Название"), cleaned));
    m_txtName->setText(cleaned); // the row's name must not replace what is being typed
}

void frmCatalogue::txtAlbum_Enter()
{
    const QString cleaned = CleanText(m_txtAlbum->text());
    m_txtAlbum->setText(cleaned);
    setFilter(likeFilter(QStringLiteral("Альбом"), cleaned));
}

void frmCatalogue::setRowButtonsEnabled(bool enabled)
{
    button(2)->setEnabled(enabled && !m_ctx.ExternalDBOpen);
    button(3)->setEnabled(enabled && !m_ctx.ExternalDBOpen);
    if (m_kind.contents) {
        button(6)->setEnabled(enabled && !m_ctx.ExternalDBOpen);
    }
    if (!enabled || m_ctx.ExternalDBOpen) {
        button(8)->setEnabled(false);
        button(9)->setEnabled(false);
    }
}

void frmCatalogue::cmdAdd()
{
    underFaultHandler(m_ctx, m_kind.formName + QStringLiteral(", cmdAdd()"), [this] {
        if (!runAddDisc(m_ctx, m_kind.category, this)) {
            return;
        }
        // The list on view is read again as it was made, a filtered one included.
        Refresh();
        goToNumber(m_ctx.LastSavedNumber);
    });
}

void frmCatalogue::cmdChange()
{
    if (m_row < 0 || !button(3)->isEnabled()) {
        return;
    }
    underFaultHandler(m_ctx, m_kind.formName + QStringLiteral(", cmdChange()"), [this] {
        const int number = m_rows->number(m_row);
        m_ctx.DialogDone = false;
        {
            frmAddInCatalogue editor(m_ctx, m_kind.category, frmAddInCatalogue::Mode::Change, number, this);
            m_ctx.prompter().showModal(editor);
        }
        // The filter is let go, while the list on view stays the one it made: the counter
        // then reads as for the whole catalogue, and the next sort shows the whole catalogue.
        m_ctx.CatalogueQueryFilter.clear();
        if (m_ctx.DialogDone) {
            m_ctx.DialogDone = false;
            Refresh();
            goToNumber(number);
        }
    });
}

void frmCatalogue::cmdDue()
{
    if (m_row < 0 || m_ctx.ExternalDBOpen) {
        return;
    }
    const int number = m_rows->number(m_row);
    const QString place = m_kind.formName + QStringLiteral(", cmdDue()");
    if (lendOrTakeBack(m_ctx, m_kind.category, m_rows->key(m_row), place, this)) {
        underFaultHandler(m_ctx, place, [this] { Refresh(); });
        goToNumber(number);
    }
}

void frmCatalogue::cmdList()
{
    if (m_kind.category == Category::Computer) {
        cmdFiles();
    } else if (m_kind.category == Category::Audio) {
        cmdTracks();
    }
}

void frmCatalogue::cmdFiles()
{
    showDiscContents(QStringLiteral("cmdFiles()"), [this](int number) {
        frmFileList list(m_ctx, number, m_rows->value(m_row, QStringLiteral("Название")).toString(),
                         m_rows->value(m_row, QStringLiteral("Дисков")).toInt(), this);
        m_ctx.prompter().showModal(list);
    });
}

void frmCatalogue::cmdTracks()
{
    showDiscContents(QStringLiteral("cmdTracks()"), [this](int number) {
        frmTrackList list(m_ctx, number, m_rows->value(m_row, QStringLiteral("Название")).toString(),
                          m_rows->value(m_row, QStringLiteral("Альбом")).toString(),
                          m_rows->value(m_row, QStringLiteral("Дисков")).toInt(), this);
        m_ctx.prompter().showModal(list);
    });
}

void frmCatalogue::showDiscContents(const QString& routine, const std::function<void(int number)>& showList)
{
    if (m_row < 0 || !m_kind.contents) {
        return;
    }
    for (int k = 1; k <= 6; ++k) {
        // An empty ДискID is a disc without a list.
        m_ctx.DiscIDSlots[static_cast<std::size_t>(k - 1)] =
            m_rows->value(m_row, QStringLiteral("ДискID%1").arg(k)).toString();
    }
    m_ctx.CurrentDiscID = m_ctx.DiscIDSlots[0];
    const int number = m_rows->number(m_row);
    try {
        showList(number);
    } catch (const AppError& error) {
        // A damaged contents database: told, and the catalogue stays open.
        ReportErrorAndGoOn(m_ctx, QStringLiteral("frmCatalogue, ") + routine, error);
    }
    underFaultHandler(m_ctx, m_kind.formName + QStringLiteral(", ") + routine, [this] { Refresh(); });
    goToNumber(number);
}

void frmCatalogue::cmdChangeBox()
{
    if (m_row < 0) {
        return;
    }
    const int number = m_rows->number(m_row);
    const QString picture = m_ctx.prompter().openFile(
        QStringLiteral("Добавление обложки для диска № ") + QString::number(number),
        QStringLiteral("Файлы изображений (*.jpg;*.gif)|*.jpg;*.gif|Все файлы (*.*)|*.*"), QString());
    if (picture.isEmpty()) {
        return;
    }
    if (!isReadablePicture(picture)) {
        m_ctx.prompter().message(QStringLiteral("Этот формат изображения не поддерживается программой!"),
                                 MessageStyle::Exclamation);
        return;
    }
    if (QFileInfo::exists(coverPath(m_ctx, m_kind, number)) &&
        m_ctx.prompter().message(QStringLiteral("Заменить обложку диска № ") + QString::number(number) + u'?',
                                 MessageStyle::YesNo) != Answer::Yes) {
        return;
    }
    underFaultHandler(m_ctx, m_kind.formName + QStringLiteral(", cmdChangeBox()"), [&] {
        WaitCursor hourglass;
        setCover(m_ctx, m_kind, number, picture);
    });
    dcDatabase_Reposition();
}

void frmCatalogue::cmdDeleteBox()
{
    if (m_row < 0) {
        return;
    }
    const int number = m_rows->number(m_row);
    if (m_ctx.prompter().message(QStringLiteral("Вы действительно хотите удалить обложку диска № ") +
                                     QString::number(number) + u'?',
                                 MessageStyle::YesNo) != Answer::Yes) {
        return;
    }
    QFile::remove(coverPath(m_ctx, m_kind, number));
    button(9)->setEnabled(false);
    m_cover = QPixmap();
    m_imgBox->clear();
}

void frmCatalogue::showCover()
{
    // Fitted into the tab once the tab has a size; until then as it is, cut by the tab.
    const QSize room = m_imgBox->size();
    m_imgBox->setPixmap(m_cover.isNull() || room.width() < 16 || room.height() < 16
                            ? m_cover
                            : m_cover.scaled(room, Qt::KeepAspectRatio, Qt::SmoothTransformation));
}

void frmCatalogue::dcDatabase_Reposition()
{
    underFaultHandler(m_ctx, m_kind.formName + QStringLiteral(", dcDatabase_Reposition()"),
                      [this] { showRow(); });
}

void frmCatalogue::showRow()
{
    const bool filtered = !m_ctx.CatalogueQueryFilter.isEmpty();
    m_lblCDsCount0->setText(filtered ? QStringLiteral("Дисков удовлетворяющих запросу:")
                                     : QStringLiteral("Дисков в каталоге:"));
    m_lblCDsCount1->setText(QString::number(m_rows->size()));
    const bool typing = m_txtName->hasFocus();
    if (m_rows->size() == 0 || m_row < 0) {
        setRowButtonsEnabled(false);
        if (m_cmbCountCD) {
            m_cmbCountCD->setEnabled(false);
        }
        for (QWidget* widget : m_myGroup) {
            widget->setEnabled(filtered);
        }
        m_tabs->setCurrentIndex(0);
        m_tabs->setTabText(1, QString());
        m_tabs->setTabEnabled(1, false);
        m_cmbDictionary->setCurrentIndex(-1);
        m_lblSorted->setEnabled(false);
        m_cmbSorted->setEnabled(false);
        m_chSortedDESC->setEnabled(false);
        m_imgDue->hide();
        m_lblDue->hide();
        m_timerDue.stop();
        m_txtNumber->setReadOnly(true);
        for (QLineEdit* field : findChildren<QLineEdit*>()) {
            if (field != m_txtName) {
                field->clear();
            }
        }
        return;
    }
    const auto show = [this](const char* control, const QString& field) {
        if (auto* edit = findChild<QLineEdit*>(QString::fromLatin1(control))) {
            edit->setText(m_rows->value(m_row, field).toString());
        }
    };
    m_txtNumber->setText(QString::number(m_rows->number(m_row)));
    if (!typing) {
        show("txtName", QStringLiteral("Название"));
    }
    show("txtAlbum", QStringLiteral("Альбом"));
    show("txtYear", QStringLiteral("Год"));
    show("txtCDs", QStringLiteral("Дисков"));
    show("txtDescription2", QStringLiteral("РасОписание"));
    show("txtDescription", QStringLiteral("Описание"));
    show("txtZone", QStringLiteral("Зона"));
    show("txtTimeDVD", QStringLiteral("Время"));
    const auto date = [this](const char* control, const QString& field) {
        const QDate value = dateFrom(m_rows->value(m_row, field));
        findChild<QLineEdit*>(QString::fromLatin1(control))
            ->setText(value.isValid() ? QLocale().toString(value, QStringLiteral("dd-MMM-yyyy")) : QString());
    };
    date("txtDateAdd", QStringLiteral("ДатаЗаписи"));
    date("txtDateUpdate", QStringLiteral("ДатаИзменения"));

    // The cover: never on view while another database is.
    if (m_ctx.ExternalDBOpen) {
        m_tabs->setTabText(1, QString());
        m_tabs->setTabEnabled(1, false);
        m_cover = QPixmap();
        m_imgBox->clear();
    } else {
        const QString cover = coverPath(m_ctx, m_kind, m_rows->number(m_row));
        m_cover = QPixmap();
        if (QFileInfo::exists(cover)) {
            WaitCursor hourglass;
            m_cover.load(cover);
        }
        showCover();
        button(9)->setEnabled(!m_cover.isNull() || QFileInfo::exists(cover));
        button(8)->setEnabled(true);
        m_tabs->setTabText(1, QStringLiteral("Обложка"));
        m_tabs->setTabEnabled(1, true);
    }
    if (m_cmbCountCD) {
        const QSignalBlocker quiet(m_cmbCountCD);
        m_cmbCountCD->clear();
        const int discs = std::clamp(m_rows->value(m_row, QStringLiteral("Дисков")).toInt(), 1, 6);
        for (int k = 1; k <= discs; ++k) {
            m_cmbCountCD->addItem(QString::number(k));
        }
        m_cmbCountCD->setEnabled(discs > 1);
        m_cmbCountCD->setCurrentIndex(0);
        cmbCountCD_Click();
    }
    if (m_cmbSoundFormat) {
        m_cmbSoundFormat->clear();
        const QString stored = m_rows->value(m_row, QStringLiteral("ФорматЗвука")).toString();
        const Db db(m_ctx.MainDBPath, Db::Access::ReadOnly);
        m_cmbSoundFormat->addItems(soundFormatNames(db, stored));
        m_cmbSoundFormat->setEditText(QStringLiteral("Звук (%1):").arg(stored.size() / 2));
    }
    for (QWidget* widget : m_myGroup) {
        widget->setEnabled(true);
    }
    m_lblSorted->setEnabled(true);
    m_cmbSorted->setEnabled(true);
    m_chSortedDESC->setEnabled(true);
    m_txtNumber->setReadOnly(false);
    setRowButtonsEnabled(true);
    if (!m_ctx.ExternalDBOpen) {
        CheckDue();
    }
}

void frmCatalogue::cmbCountCD_Click()
{
    const QString k = m_cmbCountCD->currentText();
    if (k.isEmpty() || m_row < 0) {
        return;
    }
    m_txtTrecks->setText(m_rows->value(m_row, QStringLiteral("Записей") + k).toString());
    m_txtTime->setText(m_rows->value(m_row, QStringLiteral("Время") + k).toString());
}

void frmCatalogue::CheckDue()
{
    const bool lent = m_rows->value(m_row, QStringLiteral("Должник")).toInt() != 0;
    button(4)->setText(lent ? QStringLiteral("Вернуть") : QStringLiteral("Должник"));
    if (!lent) {
        setRowButtonsEnabled(true);
        m_imgDue->hide();
        m_lblDue->hide();
        m_timerDue.stop();
        return;
    }
    // A disc on loan can be neither deleted nor changed.
    button(2)->setEnabled(false);
    button(3)->setEnabled(false);
    const Db db(m_ctx.MainDBPath, Db::Access::ReadOnly);
    m_lblDue->setText(QStringLiteral("Должник\n") + loanHolderName(db, m_kind, m_rows->key(m_row)));
    m_imgDue->show();
    m_lblDue->show();
    m_timerDue.startBlinking();
}

void frmCatalogue::timerDue_Timer()
{
    if (m_ctx.ExternalDBOpen) {
        return;
    }
    m_timerDue.blink({m_imgDue, m_lblDue});
}

bool frmCatalogue::goToNumber(int number)
{
    const int row = m_rows->rowOfNumber(number);
    if (row < 0) {
        return false;
    }
    m_grid->selectRow(row);
    return true;
}

void frmCatalogue::txtNumber_Enter()
{
    const int number = static_cast<int>(m_txtNumber->text().toLongLong());
    if (number == 0) {
        m_ctx.prompter().message(QStringLiteral("Указан не верный номер диска. Повторите ввод."),
                                 MessageStyle::Exclamation);
        m_txtNumber->selectAll();
        return;
    }
    m_txtNumber->setText(QString::number(number));
    if (!goToNumber(number)) {
        m_ctx.prompter().message(QStringLiteral("Диск № ") + QString::number(number) +
                                     QStringLiteral(" не найден."),
                                 MessageStyle::Exclamation);
        m_txtNumber->setText(m_row >= 0 ? QString::number(m_rows->number(m_row)) : QString());
        m_txtNumber->selectAll();
    }
}

bool frmCatalogue::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_imgBox && event->type() == QEvent::Resize) {
        showCover();
    }
    if (watched == m_grid && event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        switch (key->key()) {
        case Qt::Key_Delete:
            if (!m_ctx.ExternalDBOpen && button(2)->isEnabled()) {
                cmdDelete();
            }
            return true;
        case Qt::Key_Insert:
            if (!m_ctx.ExternalDBOpen) {
                cmdAdd();
            }
            return true;
        default:
            break;
        }
    }
    return QDialog::eventFilter(watched, event);
}

void frmCatalogue::cmdDelete()
{
    if (m_row < 0) {
        return;
    }
    const int number = m_rows->number(m_row);
    const Answer answer = m_ctx.prompter().message(QStringLiteral("Вы действительно хотите удалить диск № ") +
                                                       QString::number(number) + QStringLiteral("?\n") +
                                                       m_kind.deleteSecondLine,
                                                   MessageStyle::YesNoQuestion);
    if (answer != Answer::Yes) {
        return;
    }
    const int position = m_row;
    underFaultHandler(m_ctx, m_kind.formName + QStringLiteral(", cmdDelete()"), [&] {
        QStringList lists;
        if (m_kind.contents) {
            for (int k = 1; k <= 6; ++k) {
                lists.append(m_rows->value(m_row, QStringLiteral("ДискID%1").arg(k)).toString());
            }
        }
        deleteDisc(m_ctx, m_kind, m_rows->key(m_row), number, lists);
        Refresh();
    });
    m_grid->selectRow(std::min(position, m_rows->size() - 1));
}

void frmCatalogue::AutoResp()
{
    if (m_ctx.ini().number(kOption, QStringLiteral("AutoResp"), 5) == 0) {
        return;
    }
    const QString drive = m_ctx.ini().read(kOption, QStringLiteral("Drive"), 4096).trimmed();
    if (drive.isEmpty()) {
        return;
    }
    underFaultHandler(m_ctx, m_kind.formName + QStringLiteral(", AutoResp()"), [&] {
        m_ctx.CurrentDiscID = GetDiskID(m_ctx, drive, frmSelectCategory::chooser(m_ctx, this));
        const Db db(m_ctx.MainDBPath, Db::Access::ReadOnly);
        if (const auto place = findDiscPlace(db, m_kind, m_ctx.CurrentDiscID);
            place && goToNumber(place->number)) {
            if (m_cmbCountCD && place->slot <= m_cmbCountCD->count()) {
                m_cmbCountCD->setCurrentIndex(place->slot - 1);
            }
        }
    });
}

void frmCatalogue::showEvent(QShowEvent* event)
{
    QDialog::showEvent(event);
    if (!m_autoRespDone && !m_ctx.ExternalDBOpen) {
        m_autoRespDone = true;
        AutoResp();
    }
}

void frmCatalogue::done(int result)
{
    m_ctx.CatalogueQueryFilter.clear();
    const QString save = m_ctx.ini().read(kOption, QStringLiteral("SaveSortedCatalogue"), 5).trimmed();
    if (!save.isEmpty() && save[0].isDigit() && save[0] != u'0') {
        m_ctx.ini().write(kSorted, m_kind.sortKey, QString::number(m_cmbSorted->currentIndex()));
        m_ctx.ini().write(kSorted, m_kind.sortDescKey(),
                          m_chSortedDESC->isChecked() ? QStringLiteral("1") : QStringLiteral("0"));
    }
    m_timerDue.stop();
    QDialog::done(result);
}

} // namespace vinora
