#include "lending/frmAddInDueFromMain.h"

#include "frame/AppContext.h"
#include "frame/FaultLog.h"
#include "frame/NumericPrefix.h"
#include "frame/TextRules.h"
#include "lending/frmAddInDue.h"
#include "store/Db.h"
#include "ui/EnterKey.h"
#include "ui/KeyFilter.h"

#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>
#include <cmath>
#include <limits>

namespace vinora {
namespace {

QString okPlace()
{
    return QStringLiteral("frmAddInDueFromMain, cmdOK_Click()");
}

QGroupBox* optionGroup(const QString& title, QRadioButton* const* options, int count, QWidget* parent)
{
    auto* group = new QGroupBox(title, parent);
    auto* layout = new QHBoxLayout(group);
    for (int i = 0; i < count; ++i) {
        options[i]->setParent(group);
        layout->addWidget(options[i]);
    }
    layout->addStretch(1);
    return group;
}

} // namespace

frmAddInDueFromMain::frmAddInDueFromMain(AppContext& ctx, DiscPicker picker, const QString& category,
                                         QWidget* parent)
    : QDialog(parent), m_ctx(ctx), m_picker(std::move(picker))
{
    setObjectName(QStringLiteral("frmAddInDueFromMain"));
    setWindowTitle(QStringLiteral("Управление должниками"));
    auto* layout = new QVBoxLayout(this);

    const QString methods[] = {QStringLiteral("Добавить"), QStringLiteral("Удалить")};
    for (int i = 0; i < 2; ++i) {
        m_optMethod[i] = new QRadioButton(methods[i], this);
        m_optMethod[i]->setObjectName(QStringLiteral("optMethod%1").arg(i));
    }
    layout->addWidget(optionGroup(QStringLiteral("Выберите действие над Должником:"), m_optMethod, 2, this));
    for (const Category c : allCategories()) {
        const int i = static_cast<int>(c);
        m_optCategory[i] = new QRadioButton(loanCategoryText(c), this);
        m_optCategory[i]->setObjectName(QStringLiteral("optCategory%1").arg(i));
    }
    layout->addWidget(optionGroup(QStringLiteral("Выберите категорию диска:"), m_optCategory, 3, this));
    m_optMethod[0]->setChecked(true);
    const CategoryInfo* chosen = categoryByCode(category);
    m_optCategory[static_cast<int>(chosen != nullptr ? chosen->category : Category::Audio)]->setChecked(true);

    auto* numberRow = new QHBoxLayout;
    numberRow->addWidget(new QLabel(QStringLiteral("Введите номер диска:"), this));
    m_txtNumber = new QLineEdit(this);
    m_txtNumber->setObjectName(QStringLiteral("txtNumber"));
    KeyFilter::install(m_txtNumber, DigitKeys);
    // Enter runs OK here, and only that: the key goes no further, to the default button.
    onEnter(m_txtNumber, [this] { cmdOK_Click(); });
    numberRow->addWidget(m_txtNumber, 1);
    layout->addLayout(numberRow);

    const QString captions[] = {QStringLiteral("OK"), QStringLiteral("Закрыть"),
                                QStringLiteral("Выбрать...")};
    for (int i = 0; i < 3; ++i) {
        m_buttons[i] = new QPushButton(captions[i], this);
        m_buttons[i]->setObjectName(QStringLiteral("imgButton%1").arg(i));
        m_buttons[i]->setAutoDefault(false);
    }
    numberRow->addWidget(m_buttons[2]);
    m_buttons[0]->setDefault(true);
    auto* buttonRow = new QHBoxLayout;
    buttonRow->addStretch(1);
    buttonRow->addWidget(m_buttons[0]);
    buttonRow->addWidget(m_buttons[1]);
    layout->addLayout(buttonRow);
    connect(m_buttons[0], &QPushButton::clicked, this, &frmAddInDueFromMain::cmdOK_Click);
    connect(m_buttons[1], &QPushButton::clicked, this, &QDialog::accept);
    connect(m_buttons[2], &QPushButton::clicked, this, &frmAddInDueFromMain::cmdPickDisc);

    // Whatever option is chosen, the number is typed next.
    for (QRadioButton* option :
         {m_optMethod[0], m_optMethod[1], m_optCategory[0], m_optCategory[1], m_optCategory[2]}) {
        connect(option, &QRadioButton::clicked, m_txtNumber, [this] { m_txtNumber->setFocus(); });
    }
    m_txtNumber->setFocus();
}

Category frmAddInDueFromMain::category() const
{
    return m_optCategory[1]->isChecked()   ? Category::Computer
           : m_optCategory[2]->isChecked() ? Category::Dvd
                                           : Category::Audio;
}

bool frmAddInDueFromMain::adding() const
{
    return !m_optMethod[1]->isChecked();
}

void frmAddInDueFromMain::refuse(const QString& message)
{
    m_ctx.prompter().message(message, MessageStyle::Exclamation);
    m_txtNumber->setFocus();
    m_txtNumber->selectAll();
}

void frmAddInDueFromMain::cmdPickDisc()
{
    const int number = m_picker ? m_picker(category(), adding() ? PickMode::OnShelf : PickMode::Lent) : 0;
    if (number > 0) {
        m_txtNumber->setText(QString::number(number));
    }
}

void frmAddInDueFromMain::cmdOK_Click()
{
    // The number as the box reads it: leading digits, anything after them ignored.
    const double value = std::trunc(numericPrefix(m_txtNumber->text()));
    if (value < 1) {
        refuse(QStringLiteral("Указан не верный номер диска. Повторите ввод."));
        return;
    }
    const QString number = QString::number(value, 'f', 0);
    const bool inRange = value <= std::numeric_limits<int>::max();
    const std::optional<LoanDisc> disc =
        underFaultHandler(m_ctx, okPlace(), [&]() -> std::optional<LoanDisc> {
            if (!inRange) {
                return std::nullopt;
            }
            const Db db(m_ctx.MainDBPath, Db::Access::ReadOnly);
            return findLoanDisc(db, category(), static_cast<int>(value));
        });
    if (!disc) {
        refuse(QStringLiteral("Диск № ") + number + QStringLiteral(" отсутствует в каталоге."));
        return;
    }
    if (adding()) {
        lend(*disc, number);
    } else {
        takeBack(*disc, number);
    }
}

void frmAddInDueFromMain::lend(const LoanDisc& disc, const QString& number)
{
    if (disc.lent) {
        refuse(QStringLiteral("Диск № ") + number + QStringLiteral(" уже находится у должника."));
        return;
    }
    if (m_ctx.prompter().message(QStringLiteral("Подтвердите добавление должника на диск № ") + number +
                                     QStringLiteral(":\n'") + loanDiscTitle(disc) + u'\'',
                                 MessageStyle::OkCancelInformation) != Answer::Ok) {
        return;
    }
    frmAddInDue dialog(m_ctx, disc, this);
    m_txtNumber->clear();
    m_ctx.prompter().showModal(dialog);
    if (m_ctx.DialogDone) {
        m_ctx.DialogDone = false;
        m_changed = true;
    }
}

QString frmAddInDueFromMain::getDueName(const LoanDisc& disc)
{
    return underFaultHandler(m_ctx, QStringLiteral("frmAddInDueFromMain, getDueName()"), [&] {
        const Db db(m_ctx.MainDBPath);
        return closeNewestLoan(db, disc.category, disc.key, m_ctx.clock().today());
    });
}

void frmAddInDueFromMain::takeBack(const LoanDisc& disc, const QString& number)
{
    if (!disc.lent) {
        refuse(QStringLiteral("Диск № ") + number + QStringLiteral(" не одалживался!"));
        return;
    }
    // The loan is closed before the question; a cancelled question leaves it closed and the
    // disc still marked, as the quick return has always done.
    const QString name = getDueName(disc);
    m_changed = true;
    const QString what =
        disc.category == Category::Audio ? QStringLiteral("Аудио диск") : QStringLiteral("Компьютерный диск");
    if (m_ctx.prompter().message(QStringLiteral("Подтвердите удаление должника на ") + what +
                                     QStringLiteral(" № ") + number + QStringLiteral(":\n'") +
                                     loanDiscTitle(disc) + QStringLiteral("'\nДолжник: ") + name,
                                 MessageStyle::OkCancelQuestion) != Answer::Ok) {
        return;
    }
    underFaultHandler(m_ctx, okPlace(), [&] {
        const Db db(m_ctx.MainDBPath);
        clearLentMark(db, disc.category, disc.key);
    });
    m_ctx.prompter().message(QStringLiteral("Операция успешно завершена!"), MessageStyle::Information);
    m_txtNumber->clear();
}

} // namespace vinora
