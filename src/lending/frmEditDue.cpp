#include "lending/frmEditDue.h"

#include "frame/AppContext.h"
#include "frame/FaultLog.h"
#include "lending/DueList.h"
#include "lending/LoanLedger.h"
#include "lending/PhoneBox.h"
#include "store/Db.h"
#include "ui/RecordGrid.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

namespace vinora {

frmEditDue::frmEditDue(AppContext& ctx, QWidget* parent) : QDialog(parent), m_ctx(ctx)
{
    setObjectName(QStringLiteral("frmEditDue"));
    setWindowTitle(QStringLiteral("Редактирование имен должников"));
    auto* layout = new QVBoxLayout(this);
    m_grid = recordGrid({QStringLiteral("Имя"), QStringLiteral("Телефон")}, this);
    layout->addWidget(m_grid);
    connect(m_grid, &QTableWidget::currentCellChanged, this, &frmEditDue::reposition);

    auto* phoneRow = new QHBoxLayout;
    phoneRow->addWidget(new QLabel(QStringLiteral("Телефон:"), this));
    m_txtTelephone = new PhoneBox(this);
    phoneRow->addWidget(m_txtTelephone, 1);
    m_cmdMakeChange = new QPushButton(QStringLiteral("Изменить"), this);
    m_cmdMakeChange->setObjectName(QStringLiteral("cmdMakeChange"));
    m_cmdMakeChange->setAutoDefault(false);
    phoneRow->addWidget(m_cmdMakeChange);
    layout->addLayout(phoneRow);
    connect(m_cmdMakeChange, &QPushButton::clicked, this, &frmEditDue::cmdMakeChange);
    connect(m_txtTelephone, &QLineEdit::returnPressed, this, &frmEditDue::cmdMakeChange);

    auto* buttonRow = new QHBoxLayout;
    const char* const captions[] = {"Закрыть", "Добавить...", "Удалить", "Изменить имя..."};
    for (int i = 0; i < 4; ++i) {
        m_buttons[i] = new QPushButton(QString::fromUtf8(captions[i]), this);
        m_buttons[i]->setObjectName(QStringLiteral("imgButton%1").arg(i));
        m_buttons[i]->setAutoDefault(false);
    }
    for (const int i : {1, 3, 2}) {
        buttonRow->addWidget(m_buttons[i]);
    }
    buttonRow->addStretch(1);
    buttonRow->addWidget(m_buttons[0]);
    layout->addLayout(buttonRow);
    connect(m_buttons[0], &QPushButton::clicked, this, &QDialog::accept);
    connect(m_buttons[1], &QPushButton::clicked, this, &frmEditDue::cmdAddName);
    connect(m_buttons[2], &QPushButton::clicked, this, &frmEditDue::cmdDelete);
    connect(m_buttons[3], &QPushButton::clicked, this, &frmEditDue::cmdChangeName);
    resize(460, 420);
    load(0);
}

void frmEditDue::load(qint64 standOn)
{
    m_borrowers = underFaultHandler(m_ctx, QStringLiteral("frmEditDue, Form_Load()"), [this] {
        const Db db(m_ctx.MainDBPath, Db::Access::ReadOnly);
        return borrowers(db);
    });
    const QSignalBlocker quiet(m_grid);
    m_grid->setRowCount(static_cast<int>(m_borrowers.size()));
    int row = 0;
    for (int i = 0; i < m_borrowers.size(); ++i) {
        m_grid->setItem(i, 0, new QTableWidgetItem(m_borrowers[i].name));
        m_grid->setItem(i, 1, new QTableWidgetItem(m_borrowers[i].phone));
        if (m_borrowers[i].key == standOn) {
            row = i;
        }
    }
    m_grid->setCurrentCell(m_borrowers.isEmpty() ? -1 : row, 0);
    reposition();
}

std::optional<Borrower> frmEditDue::current() const
{
    const int row = m_grid->currentRow();
    return row >= 0 && row < m_borrowers.size() ? std::optional<Borrower>(m_borrowers[row]) : std::nullopt;
}

void frmEditDue::reposition()
{
    const std::optional<Borrower> borrower = current();
    m_grid->setVisible(!m_borrowers.isEmpty());
    for (QWidget* needsRow : std::initializer_list<QWidget*>{m_buttons[2], m_buttons[3], m_cmdMakeChange,
                                                             m_txtTelephone}) {
        needsRow->setEnabled(borrower.has_value());
    }
    m_txtTelephone->setText(borrower ? borrower->phone : QString());
}

std::optional<QString> frmEditDue::askName(const QString& title, const QString& prompt, const QString& initial)
{
    for (;;) {
        const std::optional<QString> typed = m_ctx.prompter().input(prompt, title, initial);
        if (!typed || typed->isEmpty()) {
            return std::nullopt;
        }
        if (typed->size() > kBorrowerNameLength) {
            m_ctx.prompter().message(QStringLiteral("Имя должника не должно быть длинее 50 символов!"),
                                     MessageStyle::Exclamation);
            continue;
        }
        const bool taken = underFaultHandler(m_ctx, QStringLiteral("frmEditDue, cmdAddName()"), [&] {
            const Db db(m_ctx.MainDBPath, Db::Access::ReadOnly);
            return findBorrower(db, *typed).has_value();
        });
        if (!taken) {
            return typed;
        }
        if (m_ctx.prompter().message(QStringLiteral("Должник с именем '") + *typed +
                                         QStringLiteral("' уже существует. Ввести другое?"),
                                     MessageStyle::YesNo) != Answer::Yes) {
            return std::nullopt;
        }
    }
}

void frmEditDue::cmdAddName()
{
    const std::optional<QString> name =
        askName(QStringLiteral("Добавление нового имени"), QStringLiteral("Введите имя должника:"), QString());
    if (!name) {
        return;
    }
    const qint64 added = underFaultHandler(m_ctx, QStringLiteral("frmEditDue, cmdAddName()"), [&] {
        const Db db(m_ctx.MainDBPath);
        return addBorrower(db, *name);
    });
    load(added);
}

void frmEditDue::cmdChangeName()
{
    const std::optional<Borrower> borrower = current();
    if (!borrower) {
        return;
    }
    const std::optional<QString> name = askName(QStringLiteral("Изменение имени должника"),
                                                QStringLiteral("Измените имя должника:"), borrower->name);
    if (!name) {
        return;
    }
    underFaultHandler(m_ctx, QStringLiteral("frmEditDue, cmdChangeName()"), [&] {
        const Db db(m_ctx.MainDBPath);
        renameBorrower(db, borrower->key, *name);
    });
    load(borrower->key);
}

void frmEditDue::cmdMakeChange()
{
    const std::optional<Borrower> borrower = current();
    if (!borrower) {
        return;
    }
    m_txtTelephone->save(m_ctx, borrower->key, borrower->name, QStringLiteral("frmEditDue, cmdMakeChange_Click()"));
    load(borrower->key);
}

void frmEditDue::cmdDelete()
{
    const std::optional<Borrower> borrower = current();
    if (!borrower) {
        return;
    }
    if (m_ctx.prompter().message(QStringLiteral("Вы действительно хотите удалить должника '") + borrower->name +
                                     QStringLiteral("'?\nСтатистическая информация будет также удалена."),
                                 MessageStyle::YesNoQuestion) != Answer::Yes) {
        return;
    }
    const int row = m_grid->currentRow();
    const bool deleted = underFaultHandler(m_ctx, QStringLiteral("frmEditDue, cmdDelete()"), [&] {
        const Db db(m_ctx.MainDBPath);
        if (hasOpenLoan(db, borrower->key)) {
            return false;
        }
        deleteBorrower(db, borrower->key);
        return true;
    });
    if (!deleted) {
        m_ctx.prompter().message(QStringLiteral("Должник '") + borrower->name +
                                     QStringLiteral("' не может быть удален, т.к. за ним числится один или более "
                                                    "долгов."),
                                 MessageStyle::Exclamation);
        return;
    }
    // The cursor goes to the next row, or to the new last one.
    const qint64 next = row + 1 < m_borrowers.size() ? m_borrowers[row + 1].key
                        : row > 0                    ? m_borrowers[row - 1].key
                                                     : 0;
    load(next);
}

} // namespace vinora
