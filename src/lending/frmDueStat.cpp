#include "lending/frmDueStat.h"

#include "frame/AppContext.h"
#include "frame/Clock.h"
#include "frame/FaultLog.h"
#include "frame/TextRules.h"
#include "lending/LoanLedger.h"
#include "store/Db.h"
#include "ui/RecordGrid.h"
#include "ui/TextColumnSort.h"
#include "ui/WaitCursor.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QStackedLayout>
#include <QStyle>
#include <QTableWidget>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace vinora {
namespace {

constexpr int kCategoryRole = Qt::UserRole;

QLabel* namedLabel(const char* name, const QString& text, QWidget* parent)
{
    auto* label = new QLabel(text, parent);
    label->setObjectName(QString::fromLatin1(name));
    return label;
}

QLabel* picture(const char* name, QStyle::StandardPixmap icon, QWidget* parent)
{
    QLabel* label = namedLabel(name, QString(), parent);
    label->setPixmap(parent->style()->standardIcon(icon).pixmap(24, 24));
    return label;
}

} // namespace

frmDueStat::frmDueStat(AppContext& ctx, const QString& borrower, QWidget* parent)
    : QDialog(parent), m_ctx(ctx)
{
    setObjectName(QStringLiteral("frmDueStat"));
    setWindowTitle(QStringLiteral("Статистика должников"));
    auto* layout = new QHBoxLayout(this);

    m_grid = recordGrid({QStringLiteral("Имя"), QStringLiteral("Телефон")}, this);
    layout->addWidget(m_grid, 1);
    connect(m_grid, &QTableWidget::currentCellChanged, this, [this](int row, int, int previousRow, int) {
        if (row != previousRow) {
            reposition();
        }
    });

    auto* record = new QVBoxLayout;
    auto* filters = new QHBoxLayout;
    m_chDue = new QCheckBox(QStringLiteral("Долги"), this);
    m_chDue->setObjectName(QStringLiteral("chDue"));
    filters->addWidget(m_chDue);
    filters->addSpacing(12);
    const QString categories[] = {QStringLiteral("Все"), QStringLiteral("Аудио"),
                                  QStringLiteral("Компьютерные"), QStringLiteral("DVD")};
    for (int i = 0; i < 4; ++i) {
        m_optSorted[i] = new QRadioButton(categories[i], this);
        m_optSorted[i]->setObjectName(QStringLiteral("optSorted%1").arg(i));
        filters->addWidget(m_optSorted[i]);
        m_myGroup.append(m_optSorted[i]);
    }
    m_optSorted[0]->setChecked(true);
    for (QRadioButton* option : m_optSorted) {
        connect(option, &QRadioButton::toggled, this, [this](bool on) {
            if (on) {
                CheckDue();
            }
        });
    }
    filters->addStretch(1);
    record->addLayout(filters);
    connect(m_chDue, &QCheckBox::toggled, this, &frmDueStat::CheckDue);
    m_myGroup.append(m_chDue);

    m_ratingStack = new QStackedLayout;
    m_lvRating = new QTreeWidget(this);
    m_lvRating->setObjectName(QStringLiteral("lvRating"));
    m_lvRating->setHeaderLabels(
        {QStringLiteral("Категория диска"), QStringLiteral("№"), QStringLiteral("Задержка (дн.)")});
    m_lvRating->setRootIsDecorated(false);
    m_lvRating->header()->setSectionsClickable(true);
    m_lvRating->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    m_sort = std::make_unique<TextColumnSort>(m_lvRating);
    connect(m_lvRating, &QTreeWidget::itemDoubleClicked, this, &frmDueStat::lvRating_DblClick);
    m_txtNoDue = namedLabel("txtNoDue", QStringLiteral("Нет сведений о дисках"), this);
    m_txtNoDue->setAlignment(Qt::AlignCenter);
    m_txtNoDue->setFrameShape(QFrame::StyledPanel);
    m_ratingStack->addWidget(m_lvRating);
    m_ratingStack->addWidget(m_txtNoDue);
    record->addLayout(m_ratingStack, 1);
    m_myGroup.append(m_lvRating);

    auto* figures = new QGridLayout;
    auto addFigure = [&](int row, QLabel* caption, QLabel* value) {
        figures->addWidget(caption, row, 0);
        figures->addWidget(value, row, 1);
        m_myGroup.append(caption);
        m_myGroup.append(value);
    };
    m_lblTotalDays = namedLabel("lblTotalDays1", QStringLiteral("-"), this);
    addFigure(0, namedLabel("lblTotalDays0", QStringLiteral("Общее количество дней задержки:"), this),
              m_lblTotalDays);
    m_lblDueCount = namedLabel("lblDueCount", QStringLiteral("-"), this);
    addFigure(1, namedLabel("lblDueCount0", QStringLiteral("Долгов:"), this), m_lblDueCount);
    m_lblRating = namedLabel("lblRating1", QStringLiteral("-"), this);
    addFigure(2, namedLabel("lblRating0", QStringLiteral("Рейтинг должника:"), this), m_lblRating);
    figures->setColumnStretch(1, 1);
    record->addLayout(figures);

    auto* bar = new QHBoxLayout;
    m_prbRating = new QProgressBar(this);
    m_prbRating->setObjectName(QStringLiteral("prbRating"));
    m_prbRating->setRange(0, kRatingCap);
    m_prbRating->setValue(0);
    m_prbRating->setTextVisible(false);
    bar->addWidget(picture("imgGood", QStyle::SP_DialogApplyButton, this));
    bar->addWidget(m_prbRating, 1);
    bar->addWidget(picture("imgBad", QStyle::SP_MessageBoxCritical, this));
    record->addLayout(bar);
    m_myGroup.append(m_prbRating);

    auto* close = new QPushButton(QStringLiteral("Закрыть"), this);
    close->setObjectName(QStringLiteral("imgButton0"));
    close->setAutoDefault(false);
    connect(close, &QPushButton::clicked, this, &QDialog::accept);
    record->addWidget(close, 0, Qt::AlignRight);
    layout->addLayout(record, 2);
    resize(720, 420);

    load();
    if (!borrower.isEmpty()) {
        standOn(borrower);
    }
}

void frmDueStat::load()
{
    m_borrowers = underFaultHandler(m_ctx, QStringLiteral("frmDueStat, Form_Load()"), [this] {
        const Db db(m_ctx.MainDBPath, Db::Access::ReadOnly);
        return borrowers(db);
    });
    {
        const QSignalBlocker quiet(m_grid);
        m_grid->setRowCount(static_cast<int>(m_borrowers.size()));
        for (int i = 0; i < m_borrowers.size(); ++i) {
            m_grid->setItem(i, 0, new QTableWidgetItem(m_borrowers[i].name));
            m_grid->setItem(i, 1, new QTableWidgetItem(m_borrowers[i].phone));
        }
        m_grid->setCurrentCell(m_borrowers.isEmpty() ? -1 : 0, 0);
    }
    reposition();
}

bool frmDueStat::standOn(const QString& name)
{
    for (int i = 0; i < m_borrowers.size(); ++i) {
        if (m_borrowers[i].name.compare(name, Qt::CaseInsensitive) == 0) {
            m_grid->setCurrentCell(i, 0);
            return true;
        }
    }
    return false;
}

std::optional<Borrower> frmDueStat::current() const
{
    const int row = m_grid->currentRow();
    return row >= 0 && row < m_borrowers.size() ? std::optional<Borrower>(m_borrowers[row]) : std::nullopt;
}

void frmDueStat::reposition()
{
    setWindowTitle(QStringLiteral("Статистика должников (всего: ") + QString::number(m_borrowers.size()) +
                   u')');
    const bool any = !m_borrowers.isEmpty();
    for (QWidget* control : std::as_const(m_myGroup)) {
        control->setEnabled(any);
    }
    if (any) {
        CheckDue();
    } else {
        m_lvRating->clear();
        showNoDue();
    }
}

RatingFilter frmDueStat::filter() const
{
    RatingFilter filter;
    filter.outOnly = m_chDue->isChecked();
    for (int i = 1; i < 4; ++i) {
        if (m_optSorted[i]->isChecked()) {
            filter.only = allCategories()[static_cast<std::size_t>(i - 1)];
        }
    }
    return filter;
}

void frmDueStat::showNoDue()
{
    m_ratingStack->setCurrentWidget(m_txtNoDue);
    m_lblTotalDays->setText(QStringLiteral("-"));
    m_lblRating->setText(QStringLiteral("-"));
    m_lblDueCount->setText(QStringLiteral("-"));
    m_prbRating->setValue(0);
}

void frmDueStat::CheckDue()
{
    const std::optional<Borrower> borrower = current();
    if (!borrower) {
        return;
    }
    const WaitCursor hourglass;
    m_lvRating->clear();
    const BorrowerRecord record = underFaultHandler(m_ctx, QStringLiteral("frmDueStat, CheckDue()"), [&] {
        const Db db(m_ctx.MainDBPath, Db::Access::ReadOnly);
        return borrowerRecord(db, borrower->key, filter(), m_ctx.clock().today());
    });
    if (record.lines.isEmpty()) {
        showNoDue();
        return;
    }
    m_ratingStack->setCurrentWidget(m_lvRating);
    for (const RatingLine& line : record.lines) {
        auto* item =
            new QTreeWidgetItem(m_lvRating, {loanCategoryText(line.category), line.number, line.delay});
        item->setData(0, kCategoryRole, static_cast<int>(line.category));
    }
    m_sort->apply();
    if (record.rating) {
        m_prbRating->setValue(*record.rating);
        m_lblRating->setText(ratingWord(*record.rating));
        m_lblTotalDays->setText(QString::number(record.totalDays));
    } else {
        // Only the discs still out: nothing came back late among them.
        m_prbRating->setValue(0);
        m_lblRating->setText(QStringLiteral("-"));
        m_lblTotalDays->setText(QStringLiteral("-"));
    }
    m_lblDueCount->setText(record.out == 0 ? QStringLiteral("нет") : QString::number(record.out));
}

void frmDueStat::lvRating_DblClick()
{
    const QTreeWidgetItem* item = m_lvRating->currentItem();
    if (item == nullptr || !item->isSelected()) {
        return;
    }
    const QString number = item->text(1);
    const auto category = static_cast<Category>(item->data(0, kCategoryRole).toInt());
    const std::optional<LoanDisc> disc =
        number == u"-" ? std::nullopt
                       : underFaultHandler(m_ctx, QStringLiteral("frmDueStat, lvRating_DblClick()"), [&] {
                             const Db db(m_ctx.MainDBPath, Db::Access::ReadOnly);
                             return findLoanDisc(db, category, number.toInt());
                         });
    if (!disc) {
        m_ctx.prompter().message(QStringLiteral("Этот диск был удален из каталога."), MessageStyle::Plain);
        return;
    }
    m_ctx.prompter().message(loanCategoryText(category) + QStringLiteral(" № ") + number +
                                 QStringLiteral(":\n'") + loanDiscTitle(*disc) + u'\'',
                             MessageStyle::Plain);
}

} // namespace vinora
