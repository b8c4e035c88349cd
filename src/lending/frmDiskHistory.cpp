#include "lending/frmDiskHistory.h"

#include "frame/AppContext.h"
#include "frame/FaultLog.h"
#include "frame/TextRules.h"
#include "lending/BorrowerNames.h"
#include "lending/LoanLedger.h"
#include "store/Db.h"
#include "ui/KeyFilter.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QStackedLayout>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace vinora {

frmDiskHistory::frmDiskHistory(AppContext& ctx, DiscPicker picker, QWidget* parent)
    : QDialog(parent), m_ctx(ctx), m_picker(std::move(picker))
{
    setObjectName(QStringLiteral("frmDiskHistory"));
    setWindowTitle(QStringLiteral("История дисков"));
    auto* layout = new QVBoxLayout(this);
    auto* categories = new QHBoxLayout;
    for (const Category c : allCategories()) {
        const int i = static_cast<int>(c);
        m_optCategory[i] = new QRadioButton(loanCategoryText(c), this);
        m_optCategory[i]->setObjectName(QStringLiteral("optCategory%1").arg(i));
        categories->addWidget(m_optCategory[i]);
    }
    m_optCategory[0]->setChecked(true);
    layout->addLayout(categories);

    auto* numberRow = new QHBoxLayout;
    numberRow->addWidget(new QLabel(QStringLiteral("Номер диска:"), this));
    m_txtNumber = new QLineEdit(this);
    m_txtNumber->setObjectName(QStringLiteral("txtNumber"));
    KeyFilter::install(m_txtNumber, DigitKeys);
    numberRow->addWidget(m_txtNumber);
    auto* pick = new QPushButton(QStringLiteral("Выбрать..."), this);
    pick->setObjectName(QStringLiteral("imgButton1"));
    pick->setAutoDefault(false);
    auto* show = new QPushButton(QStringLiteral("Показать"), this);
    show->setObjectName(QStringLiteral("imgButton2"));
    show->setAutoDefault(false);
    numberRow->addWidget(pick);
    numberRow->addWidget(show);
    layout->addLayout(numberRow);
    connect(pick, &QPushButton::clicked, this, &frmDiskHistory::cmdPickDisc);
    connect(show, &QPushButton::clicked, this, &frmDiskHistory::cmdShow);
    // Enter in the number shows the history, and only that.
    connect(m_txtNumber, &QLineEdit::returnPressed, this, &frmDiskHistory::cmdShow);

    m_lblHistory = new QLabel(this);
    m_lblHistory->setObjectName(QStringLiteral("lblHistory"));
    layout->addWidget(m_lblHistory);
    m_historyStack = new QStackedLayout;
    m_lvHistory = new QTreeWidget(this);
    m_lvHistory->setObjectName(QStringLiteral("lvHistory"));
    m_lvHistory->setHeaderLabels({QStringLiteral("Имя должника"), QStringLiteral("Брал"), QStringLiteral("Вернул")});
    m_lvHistory->setRootIsDecorated(false);
    m_sort = std::make_unique<TextColumnSort>(m_lvHistory); // dates sort as text
    m_lvHistory->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    m_txtNoHistory = new QLabel(this);
    m_txtNoHistory->setObjectName(QStringLiteral("txtNoHistory"));
    m_txtNoHistory->setAlignment(Qt::AlignCenter);
    m_historyStack->addWidget(m_lvHistory);
    m_historyStack->addWidget(m_txtNoHistory);
    layout->addLayout(m_historyStack, 1);

    auto* close = new QPushButton(QStringLiteral("Закрыть"), this);
    close->setObjectName(QStringLiteral("imgButton0"));
    close->setAutoDefault(false);
    connect(close, &QPushButton::clicked, this, &QDialog::accept);
    layout->addWidget(close, 0, Qt::AlignRight);
    resize(520, 420);
}

Category frmDiskHistory::category() const
{
    return m_optCategory[1]->isChecked() ? Category::Computer
           : m_optCategory[2]->isChecked() ? Category::Dvd
                                           : Category::Audio;
}

void frmDiskHistory::refuse(const QString& message)
{
    m_ctx.prompter().message(message, MessageStyle::Exclamation);
    m_txtNumber->setFocus();
    m_txtNumber->selectAll();
}

void frmDiskHistory::cmdPickDisc()
{
    const int number = m_picker ? m_picker(category(), PickMode::All) : 0;
    if (number > 0) {
        m_txtNumber->setText(QString::number(number));
        cmdShow();
    }
}

void frmDiskHistory::cmdShow()
{
    if (m_txtNumber->text().isEmpty()) {
        refuse(QStringLiteral("Введите номер диска!"));
        return;
    }
    const int number = static_cast<int>(qBound(0LL, m_txtNumber->text().toLongLong(), 32767LL));
    if (number == 0) {
        refuse(QStringLiteral("Указан не верный номер диска. Повторите ввод."));
        return;
    }
    const QString numberText = QString::number(number);
    std::optional<LoanDisc> disc;
    QList<HistoryLine> lines;
    underFaultHandler(m_ctx, QStringLiteral("frmDiskHistory, GetDiskHistory()"), [&] {
        const Db db(m_ctx.MainDBPath, Db::Access::ReadOnly);
        disc = findLoanDisc(db, category(), number);
        if (disc) {
            lines = discHistory(db, category(), disc->key);
        }
    });
    if (!disc) {
        refuse(QStringLiteral("Диск № ") + numberText + QStringLiteral(" отсутствует в каталоге."));
        return;
    }
    m_lvHistory->clear();
    m_lblHistory->setText(QStringLiteral("История диска № ") + numberText + u':');
    for (const HistoryLine& line : std::as_const(lines)) {
        new QTreeWidgetItem(m_lvHistory, {line.name, line.issued, line.returned});
    }
    m_sort->apply();
    m_txtNoHistory->setText(QStringLiteral("Диск № ") + numberText + QStringLiteral(" не одалживался!"));
    m_historyStack->setCurrentWidget(lines.isEmpty() ? static_cast<QWidget*>(m_txtNoHistory) : m_lvHistory);
}

} // namespace vinora
