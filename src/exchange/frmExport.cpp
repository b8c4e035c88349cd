#include "exchange/frmExport.h"

#include "exchange/CatalogueExport.h"
#include "exchange/DueExport.h"
#include "exchange/ListExport.h"
#include "frame/AppContext.h"
#include "frame/FaultLog.h"
#include "store/Db.h"
#include "ui/WaitCursor.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace vinora {
namespace {

const QString kFilter = QStringLiteral("HTML-файл (*.htm)|*.htm");

const char* const kQueryLabels[] = {"Стиль:", "Описание:", "Жанр:"};

// The items checked at first on the catalogue tab: all but the dates and the cover.
bool checkedAtFirst(const QString& item)
{
    return item != u"Внесен" && item != u"Изменен" && item != u"Обложка";
}

void fillCheckList(QListWidget* list, const QStringList& items,
                   const std::function<bool(const QString&)>& checked)
{
    list->clear();
    for (const QString& text : items) {
        auto* item = new QListWidgetItem(text, list);
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsUserCheckable | Qt::ItemIsSelectable);
        item->setCheckState(checked(text) ? Qt::Checked : Qt::Unchecked);
    }
}

// Checked positions, from 1.
QList<int> checkedPositions(const QListWidget* list)
{
    QList<int> positions;
    for (int i = 0; i < list->count(); ++i) {
        if (list->item(i)->checkState() == Qt::Checked) {
            positions.append(i + 1);
        }
    }
    return positions;
}

QPushButton* selectButton(QWidget* parent, int index, const char* caption)
{
    auto* button = new QPushButton(QString::fromUtf8(caption), parent);
    button->setObjectName(QStringLiteral("cmdSelect") + QString::number(index));
    button->setAutoDefault(false);
    return button;
}

} // namespace

frmExport::frmExport(AppContext& ctx, QWidget* parent) : QDialog(parent), m_ctx(ctx)
{
    setObjectName(QStringLiteral("frmExport"));
    setWindowTitle(QStringLiteral("Экспорт в HTML"));
    auto* layout = new QVBoxLayout(this);
    m_tabs = new QTabWidget(this);
    m_tabs->setObjectName(QStringLiteral("SSActiveTabs1"));
    layout->addWidget(m_tabs);
    m_chSorted = new QCheckBox(QStringLiteral("Сортировать по названию"), this);
    m_chSorted->setObjectName(QStringLiteral("chSorted"));
    layout->addWidget(m_chSorted);
    m_tabs->addTab(buildCatalogueTab(), QStringLiteral("Каталог"));
    m_tabs->addTab(buildListTab(), QStringLiteral("Списки файлов и треков"));
    m_tabs->addTab(buildDueTab(), QStringLiteral("Должники"));

    auto* buttons = new QDialogButtonBox(this);
    auto* ok = buttons->addButton(QStringLiteral("OK"), QDialogButtonBox::AcceptRole);
    ok->setObjectName(QStringLiteral("cmdOK"));
    ok->setDefault(true);
    auto* cancel = buttons->addButton(QStringLiteral("Отмена"), QDialogButtonBox::RejectRole);
    cancel->setObjectName(QStringLiteral("cmdCancel"));
    layout->addWidget(buttons);
    connect(ok, &QPushButton::clicked, this, &frmExport::cmdOK_Click);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);

    // The list of discs and the ledger live in the local databases only.
    m_tabs->setTabEnabled(1, !m_ctx.ExternalDBOpen);
    m_tabs->setTabEnabled(2, !m_ctx.ExternalDBOpen);
    optCategory_Click();
    if (!m_ctx.ExternalDBOpen) {
        optList_Click();
    }
}

QWidget* frmExport::buildCatalogueTab()
{
    auto* tab = new QWidget(m_tabs);
    auto* grid = new QGridLayout(tab);
    auto* categories = new QGroupBox(QStringLiteral("Категория"), tab);
    auto* categoryLayout = new QVBoxLayout(categories);
    const char* const captions[] = {"Аудио диски", "Компьютерные диски", "DVD диски"};
    for (int i = 0; i < 3; ++i) {
        m_optCategory[i] = new QRadioButton(QString::fromUtf8(captions[i]), categories);
        m_optCategory[i]->setObjectName(QStringLiteral("optCategory") + QString::number(i));
        categoryLayout->addWidget(m_optCategory[i]);
        connect(m_optCategory[i], &QRadioButton::clicked, this, &frmExport::optCategory_Click);
    }
    m_optCategory[0]->setChecked(true);
    categoryLayout->addStretch(1);
    m_lblQuery = new QLabel(tab);
    m_lblQuery->setObjectName(QStringLiteral("lblQuery"));
    m_cmbQuery = new QComboBox(tab);
    m_cmbQuery->setObjectName(QStringLiteral("cmbQuery"));
    m_lblQuery->setBuddy(m_cmbQuery);
    categoryLayout->addWidget(m_lblQuery);
    categoryLayout->addWidget(m_cmbQuery);
    grid->addWidget(categories, 0, 0, 3, 1);

    auto* fieldsLabel = new QLabel(QStringLiteral("Отметьте необходимые поля"), tab);
    m_lvFields = new QListWidget(tab);
    m_lvFields->setObjectName(QStringLiteral("lvFields"));
    fieldsLabel->setBuddy(m_lvFields);
    grid->addWidget(fieldsLabel, 0, 1, 1, 2);
    grid->addWidget(m_lvFields, 1, 1, 1, 2);
    m_cmdSelect[4] = selectButton(tab, 4, "Отметить все");
    m_cmdSelect[5] = selectButton(tab, 5, "Снять все");
    grid->addWidget(m_cmdSelect[4], 2, 1);
    grid->addWidget(m_cmdSelect[5], 2, 2);
    const auto checkAll = [](QListWidget* list, Qt::CheckState state) {
        for (int i = 0; i < list->count(); ++i) {
            list->item(i)->setCheckState(state);
        }
    };
    connect(m_cmdSelect[4], &QPushButton::clicked, this, [=, this] { checkAll(m_lvFields, Qt::Checked); });
    connect(m_cmdSelect[5], &QPushButton::clicked, this, [=, this] { checkAll(m_lvFields, Qt::Unchecked); });
    return tab;
}

QWidget* frmExport::buildListTab()
{
    auto* tab = new QWidget(m_tabs);
    auto* grid = new QGridLayout(tab);
    auto* kinds = new QGroupBox(QStringLiteral("Списки"), tab);
    auto* kindsLayout = new QVBoxLayout(kinds);
    const char* const captions[] = {"Списки файлов компьютерных дисков", "Списки треков аудио дисков"};
    for (int i = 0; i < 2; ++i) {
        m_optList[i] = new QRadioButton(QString::fromUtf8(captions[i]), kinds);
        m_optList[i]->setObjectName(QStringLiteral("optList") + QString::number(i));
        kindsLayout->addWidget(m_optList[i]);
        connect(m_optList[i], &QRadioButton::clicked, this, &frmExport::optList_Click);
    }
    m_optList[0]->setChecked(true);
    m_chExportFile = new QCheckBox(QStringLiteral("Каждый диск в отдельный файл"), kinds);
    m_chExportFile->setObjectName(QStringLiteral("chExportFile"));
    kindsLayout->addWidget(m_chExportFile);
    kindsLayout->addStretch(1);
    grid->addWidget(kinds, 0, 0, 2, 1);

    m_lvFieldsListNumber = new QTreeWidget(tab);
    m_lvFieldsListNumber->setObjectName(QStringLiteral("lvFieldsListNumber"));
    m_lvFieldsListNumber->setHeaderLabels({QStringLiteral("Номера")});
    m_lvFieldsListNumber->setRootIsDecorated(false);
    grid->addWidget(m_lvFieldsListNumber, 0, 1, 1, 2);
    m_cmdSelect[0] = selectButton(tab, 0, "Отметить все");
    m_cmdSelect[1] = selectButton(tab, 1, "Снять все");
    grid->addWidget(m_cmdSelect[0], 1, 1);
    grid->addWidget(m_cmdSelect[1], 1, 2);
    const auto checkNumbers = [this](Qt::CheckState state) {
        for (int i = 0; i < m_lvFieldsListNumber->topLevelItemCount(); ++i) {
            m_lvFieldsListNumber->topLevelItem(i)->setCheckState(0, state);
        }
    };
    connect(m_cmdSelect[0], &QPushButton::clicked, this, [=] { checkNumbers(Qt::Checked); });
    connect(m_cmdSelect[1], &QPushButton::clicked, this, [=] { checkNumbers(Qt::Unchecked); });

    m_lvFieldsList = new QListWidget(tab);
    m_lvFieldsList->setObjectName(QStringLiteral("lvFieldsList"));
    grid->addWidget(m_lvFieldsList, 0, 3, 1, 2);
    m_cmdSelect[2] = selectButton(tab, 2, "Отметить все");
    m_cmdSelect[3] = selectButton(tab, 3, "Снять все");
    grid->addWidget(m_cmdSelect[2], 1, 3);
    grid->addWidget(m_cmdSelect[3], 1, 4);
    const auto checkColumns = [this](Qt::CheckState state) {
        for (int i = 0; i < m_lvFieldsList->count(); ++i) {
            m_lvFieldsList->item(i)->setCheckState(state);
        }
    };
    connect(m_cmdSelect[2], &QPushButton::clicked, this, [=] { checkColumns(Qt::Checked); });
    connect(m_cmdSelect[3], &QPushButton::clicked, this, [=] { checkColumns(Qt::Unchecked); });
    return tab;
}

QWidget* frmExport::buildDueTab()
{
    auto* tab = new QWidget(m_tabs);
    auto* grid = new QGridLayout(tab);
    auto* loans = new QGroupBox(QStringLiteral("Долги"), tab);
    auto* loansLayout = new QVBoxLayout(loans);
    const char* const captions[] = {"Все долги", "Только невозвращенные диски"};
    for (int i = 0; i < 2; ++i) {
        m_optDue[i] = new QRadioButton(QString::fromUtf8(captions[i]), loans);
        m_optDue[i]->setObjectName(QStringLiteral("optDue") + QString::number(i));
        loansLayout->addWidget(m_optDue[i]);
    }
    m_optDue[0]->setChecked(true);
    loansLayout->addStretch(1);
    grid->addWidget(loans, 0, 0, 2, 1);
    m_lvFieldsDue = new QListWidget(tab);
    m_lvFieldsDue->setObjectName(QStringLiteral("lvFieldsDue"));
    fillCheckList(m_lvFieldsDue, dueFieldItems(), [](const QString&) { return true; });
    grid->addWidget(m_lvFieldsDue, 0, 1, 1, 2);
    m_cmdSelect[6] = selectButton(tab, 6, "Отметить все");
    m_cmdSelect[7] = selectButton(tab, 7, "Снять все");
    grid->addWidget(m_cmdSelect[6], 1, 1);
    grid->addWidget(m_cmdSelect[7], 1, 2);
    const auto checkAll = [this](Qt::CheckState state) {
        for (int i = 0; i < m_lvFieldsDue->count(); ++i) {
            m_lvFieldsDue->item(i)->setCheckState(state);
        }
    };
    connect(m_cmdSelect[6], &QPushButton::clicked, this, [=] { checkAll(Qt::Checked); });
    connect(m_cmdSelect[7], &QPushButton::clicked, this, [=] { checkAll(Qt::Unchecked); });
    return tab;
}

Category frmExport::category() const
{
    return m_optCategory[1]->isChecked()   ? Category::Computer
           : m_optCategory[2]->isChecked() ? Category::Dvd
                                           : Category::Audio;
}

ContentsKind frmExport::listKind() const
{
    return m_optList[1]->isChecked() ? ContentsKind::Tracks : ContentsKind::Files;
}

void frmExport::optCategory_Click()
{
    const Category chosen = category();
    fillCheckList(m_lvFields, catalogueFieldItems(chosen), checkedAtFirst);
    m_lblQuery->setText(QString::fromUtf8(kQueryLabels[static_cast<int>(chosen)]));
    m_cmbQuery->clear();
    m_cmbQuery->addItem(kAllValues);
    underErrorReport(m_ctx, QStringLiteral("frmExport, FullQueryCombo()"), [&] {
        const Db db(m_ctx.MainDBPath, Db::Access::ReadOnly);
        m_cmbQuery->clear();
        m_cmbQuery->addItems(FullQueryCombo(db, chosen));
    });
}

void frmExport::optList_Click()
{
    const ContentsKind kind = listKind();
    m_lvFieldsListNumber->clear();
    fillCheckList(m_lvFieldsList, listFieldItems(kind), [](const QString&) { return true; });
    underErrorReport(m_ctx,
                     kind == ContentsKind::Files ? QStringLiteral("frmExport, ViewNumberFiles()")
                                                 : QStringLiteral("frmExport, ViewNumberTracks()"),
                     [&] {
                         const Db db(m_ctx.MainDBPath, Db::Access::ReadOnly);
                         for (const int number :
                              kind == ContentsKind::Files ? ViewNumberFiles(db) : ViewNumberTracks(db)) {
                             auto* item =
                                 new QTreeWidgetItem(m_lvFieldsListNumber, {QString::number(number)});
                             item->setCheckState(0, Qt::Unchecked);
                         }
                     });
}

bool frmExport::runExport(const QString& routine, const std::function<void()>& work)
{
    const QString place = QStringLiteral("frmExport, ") + routine + QStringLiteral("()");
    bool done = false;
    underFaultHandler(m_ctx, place, [&] {
        try {
            WaitCursor hourglass;
            work();
            done = true;
        } catch (const AppError& error) {
            if (const std::optional<QString> text = fileRefusalText(error.number())) {
                m_ctx.prompter().message(*text, MessageStyle::Exclamation);
            } else {
                ReportErrorAndGoOn(m_ctx, place, error);
            }
        }
    });
    return done;
}

void frmExport::cmdOK_Click()
{
    switch (m_tabs->currentIndex()) {
    case 0:
        exportCatalogue();
        break;
    case 1:
        exportLists();
        break;
    case 2:
        exportDebtors();
        break;
    default:
        break;
    }
}

void frmExport::exportCatalogue()
{
    const QString path =
        m_ctx.prompter().saveFile(QStringLiteral("Экспортирование каталога в HTML-файл"), kFilter, QString());
    if (path.isEmpty()) {
        return;
    }
    const CatalogueExportOptions options{category(), checkedPositions(m_lvFields), m_chSorted->isChecked(),
                                         m_cmbQuery->currentText()};
    if (runExport(QStringLiteral("ExportCatalog"), [&] { ExportCatalog(m_ctx, options, path); })) {
        m_ctx.prompter().message(catalogueDoneText(path), MessageStyle::Information);
        accept();
    }
}

void frmExport::exportLists()
{
    if (m_lvFieldsListNumber->topLevelItemCount() == 0) {
        m_ctx.prompter().message(noListedDiscText(), MessageStyle::Exclamation);
        return;
    }
    ListExportOptions options;
    for (int i = 0; i < m_lvFieldsListNumber->topLevelItemCount(); ++i) {
        const QTreeWidgetItem* item = m_lvFieldsListNumber->topLevelItem(i);
        if (item->checkState(0) == Qt::Checked) {
            options.numbers.append(item->text(0).toInt());
        }
    }
    if (options.numbers.isEmpty()) {
        m_ctx.prompter().message(QStringLiteral("Необходимо выбрать хотя бы один диск!"),
                                 MessageStyle::Exclamation);
        return;
    }
    options.fields = checkedPositions(m_lvFieldsList);
    options.sorted = m_chSorted->isChecked();
    const ContentsKind kind = listKind();
    const ListExportTexts& texts = listExportTexts(kind);
    QStringList written;
    if (!m_chExportFile->isChecked()) {
        const QString path = m_ctx.prompter().saveFile(texts.dialogTitle, kFilter, QString());
        if (path.isEmpty() ||
            !runExport(texts.pageRoutine, [&] { exportListPage(m_ctx, kind, options, path); })) {
            return;
        }
        written.append(path);
    } else {
        const QString folder = m_ctx.prompter().chooseFolder(texts.folderPrompt, QString());
        if (folder.isEmpty() || !runExport(texts.otherRoutine, [&] {
                written = exportListPages(m_ctx, kind, options, folder);
            })) {
            return;
        }
    }
    m_ctx.prompter().message(texts.doneText + u'\n' + written.join(u'\n'), MessageStyle::Information);
    accept();
}

void frmExport::exportDebtors()
{
    const QList<int> fields = checkedPositions(m_lvFieldsDue);
    if (fields.isEmpty()) {
        m_ctx.prompter().message(dueNothingCheckedText(), MessageStyle::Exclamation);
        return;
    }
    const QString path = m_ctx.prompter().saveFile(dueDialogTitle(), kFilter, QString());
    if (path.isEmpty()) {
        return;
    }
    const DueExportOptions options{m_optDue[1]->isChecked(), fields};
    if (runExport(QStringLiteral("ExportDue"), [&] { ExportDue(m_ctx, options, path); })) {
        m_ctx.prompter().message(dueDoneText(path), MessageStyle::Information);
        accept();
    }
}

} // namespace vinora
