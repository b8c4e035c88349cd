#include "lending/frmDue.h"

#include "frame/AppContext.h"
#include "frame/Clock.h"
#include "frame/FaultLog.h"
#include "frame/NumericPrefix.h"
#include "frame/TextRules.h"
#include "lending/BorrowerNames.h"
#include "lending/LoanLedger.h"
#include "lending/PhoneBox.h"
#include "lending/frmAddInDue.h"
#include "lending/frmAddInDueFromMain.h"
#include "lending/frmDueStat.h"
#include "recognition/frmSelectCategory.h"
#include "store/Db.h"
#include "ui/RecordGrid.h"
#include "ui/EnterKey.h"
#include "ui/KeyFilter.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QStyle>
#include <QTableWidget>
#include <QVBoxLayout>

namespace vinora {
namespace {

const QString kOption = QStringLiteral("Option");
const QString kSorted = QStringLiteral("Sorted");

QString dayText(const std::optional<QDate>& day)
{
    return day ? day->toString(QStringLiteral("dd.MM.yyyy")) : QStringLiteral("бессрочный долг");
}

QLineEdit* readOnlyBox(const char* name, QWidget* parent)
{
    auto* box = new QLineEdit(parent);
    box->setObjectName(QString::fromLatin1(name));
    box->setReadOnly(true);
    return box;
}

} // namespace

frmDue::frmDue(AppContext& ctx, DiscPicker picker, QWidget* parent)
    : QDialog(parent), m_ctx(ctx), m_picker(std::move(picker))
{
    setObjectName(QStringLiteral("frmDue"));
    setWindowTitle(QStringLiteral("Список должников"));
    auto* layout = new QVBoxLayout(this);

    auto* top = new QHBoxLayout;
    m_lblCDsCount0 = new QLabel(QStringLiteral("Должников в списке:"), this);
    m_lblCDsCount0->setObjectName(QStringLiteral("lblCDsCount0"));
    m_lblCDsCount1 = new QLabel(QStringLiteral("0"), this);
    m_lblCDsCount1->setObjectName(QStringLiteral("lblCDsCount1"));
    top->addWidget(m_lblCDsCount0);
    top->addWidget(m_lblCDsCount1);
    top->addStretch(1);
    m_lblSorted = new QLabel(QStringLiteral("Сортировка:"), this);
    m_lblSorted->setObjectName(QStringLiteral("lblSorted"));
    m_cmbSorted = new QComboBox(this);
    m_cmbSorted->setObjectName(QStringLiteral("cmbSorted"));
    m_cmbSorted->addItems({QStringLiteral("по имени"), QStringLiteral("по дате добавления"),
                           QStringLiteral("по дате возврата")});
    m_chSortedDESC = new QCheckBox(QStringLiteral("в обратном порядке"), this);
    m_chSortedDESC->setObjectName(QStringLiteral("chSortedDESC"));
    top->addWidget(m_lblSorted);
    top->addWidget(m_cmbSorted);
    top->addWidget(m_chSortedDESC);
    layout->addLayout(top);
    connect(m_cmbSorted, &QComboBox::activated, this, &frmDue::cmbSorted_Click);
    connect(m_chSortedDESC, &QCheckBox::clicked, this, &frmDue::cmbSorted_Click);

    m_grid = recordGrid({QStringLiteral("Должник"), QStringLiteral("Категория"),
                                       QStringLiteral("Дата выдачи"), QStringLiteral("Дата возврата")}, this);
    layout->addWidget(m_grid, 1);
    connect(m_grid, &QTableWidget::currentCellChanged, this, [this] { dcDatabase_Reposition(); });
    connect(m_grid, &QTableWidget::cellDoubleClicked, this, &frmDue::DBGrid_DblClick);

    m_details = new QWidget(this);
    m_details->setProperty("Tag", QStringLiteral("MyGroup"));
    auto* form = new QFormLayout(m_details);
    form->setContentsMargins(0, 0, 0, 0);
    m_txtNumber = new QLineEdit(m_details);
    m_txtNumber->setObjectName(QStringLiteral("txtNumber"));
    m_txtNumber->setToolTip(QStringLiteral("Номер диска: Enter находит его в списке"));
    KeyFilter::install(m_txtNumber, DigitKeys);
    onEnter(m_txtNumber, [this] { txtNumber_Enter(); });
    form->addRow(QStringLiteral("Диск №:"), m_txtNumber);
    m_lblDescriptionCD = new QLabel(m_details);
    m_lblDescriptionCD->setObjectName(QStringLiteral("lblDescriptionCD"));
    m_txtName = readOnlyBox("txtName", m_details);
    form->addRow(m_lblDescriptionCD, m_txtName);
    m_cmbCategory = new QComboBox(m_details);
    m_cmbCategory->setObjectName(QStringLiteral("cmbCategory"));
    m_cmbCategory->addItem(QString());
    for (const Category category : allCategories()) {
        m_cmbCategory->addItem(loanCategoryText(category));
    }
    form->addRow(QStringLiteral("Категория:"), m_cmbCategory);
    connect(m_cmbCategory, &QComboBox::activated, this, &frmDue::cmbCategory_Click);
    m_txtDaysDue = readOnlyBox("txtDaysDue", m_details);
    auto* daysRow = new QHBoxLayout;
    daysRow->addWidget(m_txtDaysDue, 1);
    m_imgDue = new QLabel(m_details);
    m_imgDue->setObjectName(QStringLiteral("imgDue"));
    m_imgDue->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxWarning).pixmap(16, 16));
    m_lblDue = new QLabel(QStringLiteral("Забрать"), m_details);
    m_lblDue->setObjectName(QStringLiteral("lblDue"));
    m_lblDue->setStyleSheet(QStringLiteral("color: #d32f2f; font-weight: bold;"));
    for (QLabel* mark : {m_imgDue, m_lblDue}) {
        QSizePolicy policy = mark->sizePolicy();
        policy.setRetainSizeWhenHidden(true); // the blink moves nothing
        mark->setSizePolicy(policy);
        mark->hide();
        daysRow->addWidget(mark);
    }
    form->addRow(QStringLiteral("Просрочено:"), daysRow);
    m_txtDueName = new QComboBox(m_details);
    m_txtDueName->setObjectName(QStringLiteral("txtDueName"));
    form->addRow(QStringLiteral("Должник:"), m_txtDueName);
    connect(m_txtDueName, &QComboBox::textActivated, this, &frmDue::txtDueName_Click);
    auto* phoneRow = new QHBoxLayout;
    m_txtTelephone = new PhoneBox(m_details);
    phoneRow->addWidget(m_txtTelephone, 1);
    auto* makeChange = new QPushButton(QStringLiteral("Изменить"), m_details);
    makeChange->setObjectName(QStringLiteral("cmdMakeChange"));
    makeChange->setAutoDefault(false);
    phoneRow->addWidget(makeChange);
    form->addRow(QStringLiteral("Телефон:"), phoneRow);
    connect(makeChange, &QPushButton::clicked, this, &frmDue::cmdMakeChange_Click);
    onEnter(m_txtTelephone, [this] { cmdMakeChange_Click(); });
    layout->addWidget(m_details);

    auto* buttons = new QHBoxLayout;
    const char* const captions[] = {"Закрыть", "Выдать диск...", "Вернуть", "Изменить срок...", "Статистика...",
                                    "Весь список"};
    for (int i = 0; i < 6; ++i) {
        m_buttons[i] = new QPushButton(QString::fromUtf8(captions[i]), this);
        m_buttons[i]->setObjectName(QStringLiteral("imgButton%1").arg(i));
        m_buttons[i]->setAutoDefault(false);
    }
    for (const int i : {1, 2, 3, 4, 5}) {
        buttons->addWidget(m_buttons[i]);
    }
    buttons->addStretch(1);
    buttons->addWidget(m_buttons[0]);
    layout->addLayout(buttons);
    connect(m_buttons[0], &QPushButton::clicked, this, &QDialog::accept);
    connect(m_buttons[1], &QPushButton::clicked, this, &frmDue::cmdLend);
    connect(m_buttons[2], &QPushButton::clicked, this, &frmDue::cmdDelete);
    connect(m_buttons[3], &QPushButton::clicked, this, &frmDue::cmdChange);
    connect(m_buttons[4], &QPushButton::clicked, this, &frmDue::ShowBorrowerStat);
    connect(m_buttons[5], &QPushButton::clicked, this, &frmDue::ClearDueQuery);

    m_timerDue.setInterval(500);
    connect(&m_timerDue, &QTimer::timeout, this, &frmDue::timerDue_Timer);
    resize(640, 560);
    Form_Load();
}

void frmDue::Form_Load()
{
    underFaultHandler(m_ctx, QStringLiteral("frmDue, Form_Load()"), [this] {
        if (m_ctx.ini().has(kOption, QStringLiteral("tmrDueCatalogue"), 5)) {
            m_timerDue.configure(m_ctx.ini().number(kOption, QStringLiteral("tmrDueCatalogue"), 5));
        }
        {
            const Db db(m_ctx.MainDBPath, Db::Access::ReadOnly);
            for (const Borrower& borrower : borrowers(db)) {
                m_txtDueName->addItem(borrower.name);
            }
        }
        m_txtDueName->setCurrentIndex(-1);
        if (m_ctx.ini().has(kSorted, QStringLiteral("DUEsorted"), 5)) {
            m_cmbSorted->setCurrentIndex(boundedInt(m_ctx.ini().number(kSorted, QStringLiteral("DUEsorted"), 5), 0, 2));
            m_chSortedDESC->setChecked(m_ctx.ini().number(kSorted, QStringLiteral("DUEsortedDESC"), 5) == 1);
        }
    });
    ClearDueQuery();
}

void frmDue::done(int result)
{
    underFaultHandler(m_ctx, QStringLiteral("frmDue, Form_Unload()"), [this] {
        m_ctx.CatalogueQueryFilter.clear();
        if (m_ctx.ini().number(kOption, QStringLiteral("SaveSortedDueList"), 5) != 0) {
            m_ctx.ini().update([this](IniDocument& ini) {
                ini.write(kSorted, QStringLiteral("DUEsorted"), QString::number(m_cmbSorted->currentIndex()));
                ini.write(kSorted, QStringLiteral("DUEsortedDESC"),
                          m_chSortedDESC->isChecked() ? QStringLiteral("1") : QStringLiteral("0"));
            });
        }
    });
    m_timerDue.stop();
    QDialog::done(result);
}

void frmDue::cmbSorted_Click()
{
    runQuery(current() ? current()->loan : 0);
}

void frmDue::runQuery(qint64 standOnLoan)
{
    m_loans = underFaultHandler(m_ctx, QStringLiteral("frmDue, cmbSorted_Click()"), [this] {
        const Db db(m_ctx.MainDBPath, Db::Access::ReadOnly);
        return openLoans(db, static_cast<DueSort>(m_cmbSorted->currentIndex()), m_chSortedDESC->isChecked(),
                         m_filter);
    });
    const QSignalBlocker quiet(m_grid);
    m_grid->setRowCount(static_cast<int>(m_loans.size()));
    int row = 0;
    for (int i = 0; i < m_loans.size(); ++i) {
        const OpenLoan& loan = m_loans[i];
        const QStringList cells = {loan.name, loanCategoryText(loan.category), dayText(loan.issued), dayText(loan.due)};
        for (int column = 0; column < cells.size(); ++column) {
            m_grid->setItem(i, column, new QTableWidgetItem(cells[column]));
        }
        if (loan.loan == standOnLoan) {
            row = i;
        }
    }
    m_grid->setCurrentCell(m_loans.isEmpty() ? -1 : row, 0);
    dcDatabase_Reposition();
}

std::optional<OpenLoan> frmDue::current() const
{
    const int row = m_grid->currentRow();
    return row >= 0 && row < m_loans.size() ? std::optional<OpenLoan>(m_loans[row]) : std::nullopt;
}

void frmDue::showMark(bool mark, const QString& days)
{
    m_txtDaysDue->setText(days);
    m_imgDue->setVisible(mark);
    m_lblDue->setVisible(mark);
    if (mark) {
        m_timerDue.startBlinking();
    } else {
        m_timerDue.stop();
    }
}

void frmDue::dcDatabase_Reposition()
{
    const bool filtered = !m_filter.isEmpty();
    m_lblCDsCount0->setText(filtered ? QStringLiteral("Должников удовлетворяющих запросу:")
                                     : QStringLiteral("Должников в списке:"));
    m_lblCDsCount1->setText(QString::number(m_loans.size()));
    const std::optional<OpenLoan> loan = current();
    button(2)->setEnabled(loan.has_value());
    button(3)->setEnabled(loan.has_value());
    if (!loan) {
        // With a filter on, the list's own controls stay, so the filter can be changed.
        if (!filtered) {
            m_details->setEnabled(false);
            for (QWidget* listControl : std::initializer_list<QWidget*>{m_lblSorted, m_cmbSorted, m_chSortedDESC}) {
                listControl->hide();
            }
        }
        showMark(false, QString());
        m_txtNumber->clear();
        m_txtName->clear();
        const QSignalBlocker quiet(m_cmbCategory);
        m_cmbCategory->setCurrentIndex(filtered ? m_cmbCategory->currentIndex() : 0);
        m_txtTelephone->clear();
        m_lblDescriptionCD->setText(QStringLiteral("Группа/Исполнитель - Альбом/Название"));
        return;
    }
    m_details->setEnabled(true);
    for (QWidget* listControl : std::initializer_list<QWidget*>{m_lblSorted, m_cmbSorted, m_chSortedDESC}) {
        listControl->show();
    }
    underFaultHandler(m_ctx, QStringLiteral("frmDue, dcDatabase_Reposition()"), [&] {
        const Db db(m_ctx.MainDBPath, Db::Access::ReadOnly);
        const std::optional<LoanDisc> disc = loanDiscByKey(db, loan->category, loan->discKey);
        const bool audio = loan->category == Category::Audio;
        m_lblDescriptionCD->setText(audio ? QStringLiteral("Группа/Исполнитель - Альбом") : QStringLiteral("Название"));
        m_txtNumber->setText(disc ? QString::number(disc->number) : QStringLiteral("-"));
        m_txtName->setText(disc ? loanDiscTitle(*disc) : QString());
    });
    {
        const QSignalBlocker quiet(m_cmbCategory);
        m_cmbCategory->setCurrentText(loanCategoryText(loan->category));
        const QSignalBlocker quietNames(m_txtDueName);
        m_txtDueName->setCurrentText(loan->name);
    }
    m_txtTelephone->setText(loan->phone);
    const OverdueState state = overdueState(loan->due, m_ctx.clock().today());
    showMark(state.mark, state.days);
}

void frmDue::setFilterTitle(bool filtered)
{
    setWindowTitle(filtered ? QStringLiteral("Список должников - Результат запроса") : QStringLiteral("Список должников"));
    button(5)->setEnabled(filtered);
}

void frmDue::cmbCategory_Click(int index)
{
    const std::optional<Category> category = loanCategoryOfText(m_cmbCategory->itemText(index));
    if (!category) {
        ClearDueQuery();
        return;
    }
    m_filter = DueFilter{category, QString()};
    setFilterTitle(true);
    runQuery(0);
}

void frmDue::txtDueName_Click(const QString& name)
{
    if (name.isEmpty()) {
        return;
    }
    {
        const QSignalBlocker quiet(m_cmbCategory);
        m_cmbCategory->setCurrentIndex(0);
    }
    m_filter = DueFilter{std::nullopt, name};
    setFilterTitle(true);
    runQuery(0);
}

void frmDue::ClearDueQuery()
{
    m_filter = DueFilter{};
    setFilterTitle(false);
    runQuery(0);
}

void frmDue::timerDue_Timer()
{
    m_timerDue.blink({m_imgDue, m_lblDue});
}

void frmDue::cmdMakeChange_Click()
{
    const std::optional<OpenLoan> loan = current();
    if (!loan) {
        return;
    }
    m_txtTelephone->save(m_ctx, loan->borrower, loan->name, QStringLiteral("frmDue, cmdMakeChange_Click()"));
    runQuery(loan->loan);
}

void frmDue::cmdDelete()
{
    const std::optional<OpenLoan> loan = current();
    if (!loan || m_ctx.prompter().message(QStringLiteral("Удалить из списка должника '") + loan->name +
                                              QStringLiteral("'?"),
                                          MessageStyle::YesNoQuestion) != Answer::Yes) {
        return;
    }
    underFaultHandler(m_ctx, QStringLiteral("frmDue, cmdDelete()"), [&] {
        const Db db(m_ctx.MainDBPath);
        returnLoan(db, loan->category, loan->discKey, loan->loan, m_ctx.clock().today());
    });
    m_changed = true;
    const int row = m_grid->currentRow();
    runQuery(row + 1 < m_loans.size() ? m_loans[row + 1].loan : 0);
}

void frmDue::cmdChange()
{
    const std::optional<OpenLoan> loan = current();
    if (!loan) {
        return;
    }
    const std::optional<LoanDisc> disc = underFaultHandler(m_ctx, QStringLiteral("frmDue, cmdChange()"), [&] {
        const Db db(m_ctx.MainDBPath, Db::Access::ReadOnly);
        return loanDiscByKey(db, loan->category, loan->discKey);
    });
    // A loan of a disc deleted since is still a loan: its term can change all the same.
    LoanDisc shown = disc.value_or(LoanDisc{loan->category, loan->discKey, 0, QString(), QString(), true});
    frmAddInDue dialog(m_ctx, shown, loan->name, loan->due, this);
    m_ctx.prompter().showModal(dialog);
    if (m_ctx.DialogDone) {
        m_ctx.DialogDone = false;
        m_changed = true;
        runQuery(loan->loan);
    }
}

void frmDue::cmdLend()
{
    frmAddInDueFromMain dialog(m_ctx, m_picker, QString(), this);
    m_ctx.prompter().showModal(dialog);
    if (dialog.changed()) {
        m_changed = true;
        runQuery(current() ? current()->loan : 0);
    }
}

void frmDue::ShowBorrowerStat()
{
    frmDueStat statistics(m_ctx, m_txtDueName->currentText(), this);
    m_ctx.prompter().showModal(statistics);
}

bool frmDue::goToLoan(Category category, qint64 discKey)
{
    for (int i = 0; i < m_loans.size(); ++i) {
        if (m_loans[i].category == category && m_loans[i].discKey == discKey) {
            m_grid->setCurrentCell(i, 0);
            return true;
        }
    }
    return false;
}

void frmDue::txtNumber_Enter()
{
    const int number = static_cast<int>(qBound(0LL, m_txtNumber->text().toLongLong(), 32767LL));
    if (number == 0) {
        m_ctx.prompter().message(QStringLiteral("Указан не верный номер диска. Повторите ввод."),
                                 MessageStyle::Exclamation);
        return;
    }
    QList<LoanDisc> out;
    underFaultHandler(m_ctx, QStringLiteral("frmDue, txtNumber_KeyPress()"), [&] {
        const Db db(m_ctx.MainDBPath, Db::Access::ReadOnly);
        for (const Category category : allCategories()) {
            if (const std::optional<LoanDisc> disc = findLoanDisc(db, category, number); disc && disc->lent) {
                out.append(*disc);
            }
        }
    });
    const QString numberText = QString::number(number);
    if (out.isEmpty()) {
        m_ctx.prompter().message(QStringLiteral("Диска № ") + numberText + QStringLiteral(" нет в списке должников!"),
                                 MessageStyle::Exclamation);
        m_txtNumber->selectAll();
        return;
    }
    LoanDisc chosen = out.first();
    if (out.size() > 1) {
        // The same number is out in several catalogues: the user says which.
        frmSelectCategory question(this);
        question.ask(QStringLiteral("Какая категория диска № ") + numberText + QStringLiteral(" Вас интересует?"));
        if (m_ctx.prompter().showModal(question) != QDialog::Accepted) {
            m_txtNumber->selectAll();
            return;
        }
        const CategoryInfo* info = categoryByCode(question.category());
        const auto match = std::find_if(out.cbegin(), out.cend(),
                                        [&](const LoanDisc& disc) { return disc.category == info->category; });
        if (match == out.cend()) {
            m_txtNumber->selectAll();
            return;
        }
        chosen = *match;
    }
    goToLoan(chosen.category, chosen.key);
}

void frmDue::DBGrid_DblClick()
{
    if (m_ctx.ini().number(kOption, QStringLiteral("DblClickDue"), 5) == 1) {
        ShowBorrowerStat();
    } else {
        cmdChange();
    }
}

} // namespace vinora
