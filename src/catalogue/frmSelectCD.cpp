#include "catalogue/frmSelectCD.h"

#include "catalogue/CatalogueGrid.h"
#include "catalogue/CatalogueRows.h"
#include "frame/AppContext.h"
#include "frame/FaultLog.h"
#include "frame/TextRules.h"
#include "store/Db.h"
#include "ui/KeyFilter.h"
#include "ui/TitleWidth.h"

#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QVBoxLayout>

namespace vinora {
namespace {

const char* const kTitles[] = {"Выбор Аудио диска", "Выбор Компьютерного диска", "Выбор DVD диска"};

} // namespace

frmSelectCD::frmSelectCD(AppContext& ctx, QWidget* parent) : QDialog(parent), m_ctx(ctx)
{
    setObjectName(QStringLiteral("frmSelectCD"));
    const QString mode = m_ctx.CatalogueQueryFilter;
    for (const Category category : allCategories()) {
        const QString code = categoryInfo(category).code;
        if (mode.endsWith(code)) {
            m_kind = &catalogueKind(category);
            m_prefix = mode.left(mode.size() - code.size());
        }
    }
    if (!m_kind || (m_prefix != u"full" && m_prefix != u"add" && m_prefix != u"del")) {
        m_kind = &catalogueKind(Category::Audio);
        m_prefix = QStringLiteral("full");
    }
    m_rows = new CatalogueRows(*m_kind, this);
    resize(560, 480);
    auto* layout = new QVBoxLayout(this);
    m_grid = new CatalogueGrid(m_rows, this);
    layout->addWidget(m_grid, 1);
    auto* form = new QFormLayout;
    m_txtName = new QLineEdit(this);
    m_txtName->setObjectName(QStringLiteral("txtName"));
    form->addRow(m_kind->nameCaption + QStringLiteral(" [запрос]"), m_txtName);
    m_txtNumber = new QLineEdit(this);
    m_txtNumber->setObjectName(QStringLiteral("txtNumber"));
    KeyFilter::install(m_txtNumber, DigitKeys);
    form->addRow(QStringLiteral("Номер:"), m_txtNumber);
    m_cmbCountCD = new QComboBox(this);
    m_cmbCountCD->setObjectName(QStringLiteral("cmbCountCD"));
    form->addRow(QStringLiteral("Диск:"), m_cmbCountCD);
    layout->addLayout(form);
    auto* bottom = new QHBoxLayout;
    bottom->addWidget(new QLabel(QStringLiteral("Дисков:"), this));
    m_lblCDsCount1 = new QLabel(this);
    m_lblCDsCount1->setObjectName(QStringLiteral("lblCDsCount1"));
    bottom->addWidget(m_lblCDsCount1);
    bottom->addStretch(1);
    m_list = new QPushButton(QStringLiteral("Весь список"), this);
    m_list->setObjectName(QStringLiteral("imgButton2"));
    m_ok = new QPushButton(QStringLiteral("OK"), this);
    m_ok->setObjectName(QStringLiteral("imgButton0"));
    auto* cancel = new QPushButton(QStringLiteral("Отмена"), this);
    cancel->setObjectName(QStringLiteral("imgButton1"));
    for (QPushButton* button : {m_list, m_ok, cancel}) {
        button->setAutoDefault(false);
        bottom->addWidget(button);
    }
    layout->addLayout(bottom);
    connect(m_ok, &QPushButton::clicked, this, &frmSelectCD::cmdOK);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    connect(m_list, &QPushButton::clicked, this, &frmSelectCD::cmdList);
    connect(m_grid, &QTableView::doubleClicked, this, &frmSelectCD::cmdOK);
    connect(m_txtName, &QLineEdit::textEdited, this, [this] {
        if (m_txtName->text().isEmpty()) {
            cmdList();
            return;
        }
        setWindowTitle(QString::fromUtf8(kTitles[static_cast<int>(m_kind->category)]) +
                       QStringLiteral(" - Результат запроса"));
        m_list->setEnabled(true);
        load();
    });
    connect(m_txtNumber, &QLineEdit::returnPressed, this, [this] {
        const int number = static_cast<int>(m_txtNumber->text().toLongLong());
        if (number == 0) {
            m_ctx.prompter().message(QStringLiteral("Указан не верный номер диска. Повторите ввод."),
                                     MessageStyle::Exclamation);
            return;
        }
        const int row = m_rows->rowOfNumber(number);
        if (row < 0) {
            m_ctx.prompter().message(QStringLiteral("Диск № ") + QString::number(number) +
                                         QStringLiteral(" не найден."),
                                     MessageStyle::Exclamation);
            m_txtNumber->setText(m_row >= 0 ? QString::number(m_rows->number(m_row)) : QString());
            return;
        }
        m_grid->selectRow(row);
    });
    connect(m_grid, &CatalogueGrid::rowChanged, this, [this](int row) {
        m_row = row;
        reposition();
    });
    keepTitleVisible(this);
    cmdList();
}

int frmSelectCD::rowCount() const
{
    return m_rows->size();
}

void frmSelectCD::cmdList()
{
    m_txtName->clear();
    setWindowTitle(QString::fromUtf8(kTitles[static_cast<int>(m_kind->category)]));
    m_list->setEnabled(false);
    load();
}

void frmSelectCD::load()
{
    CatalogueFilter filter;
    if (m_prefix != u"full") {
        filter.conditions.append({QStringLiteral("AND"), QStringLiteral("Должник"), QStringLiteral("="),
                                  m_prefix == u"add" ? kFalse : kTrue});
    }
    if (!m_txtName->text().isEmpty()) {
        filter.conditions += likeFilter(QStringLiteral("Название"), CleanText(m_txtName->text())).conditions;
    }
    underFaultHandler(m_ctx, QStringLiteral("frmSelectCD, Form_Load()"), [&] {
        const Db db(m_ctx.MainDBPath, Db::Access::ReadOnly);
        m_rows->load(db, buildCatalogueQuery(*m_kind, filter, 0, false));
    });
    m_grid->selectRow(0);
}

void frmSelectCD::reposition()
{
    m_lblCDsCount1->setText(QString::number(m_rows->size()));
    m_cmbCountCD->clear();
    if (m_row < 0) {
        m_txtNumber->clear();
        m_ok->setEnabled(false);
        m_cmbCountCD->addItem(QStringLiteral("1"));
        m_cmbCountCD->setEnabled(false);
        return;
    }
    m_txtNumber->setText(QString::number(m_rows->number(m_row)));
    m_ok->setEnabled(true);
    const int discs = std::clamp(m_rows->value(m_row, QStringLiteral("Дисков")).toInt(), 1, 6);
    for (int k = 1; k <= discs; ++k) {
        m_cmbCountCD->addItem(QString::number(k));
    }
    m_cmbCountCD->setEnabled(discs > 1);
}

void frmSelectCD::cmdOK()
{
    if (m_row < 0) {
        return;
    }
    m_ctx.PickedDisc = m_txtNumber->text() + u':' + m_cmbCountCD->currentText();
    accept();
}

void frmSelectCD::done(int result)
{
    if (result != QDialog::Accepted) {
        m_ctx.PickedDisc.clear();
    }
    m_ctx.CatalogueQueryFilter.clear();
    QDialog::done(result);
}

} // namespace vinora
