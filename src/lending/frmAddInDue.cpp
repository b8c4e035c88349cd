#include "lending/frmAddInDue.h"

#include "frame/AppContext.h"
#include "frame/Clock.h"
#include "frame/FaultLog.h"
#include "lending/BorrowerRating.h"
#include "store/Db.h"
#include "ui/WaitCursor.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QDialogButtonBox>
#include <QEvent>
#include <QFormLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QVBoxLayout>

namespace vinora {
namespace {

constexpr int kNameLength = 50; // ИменаДолжников.Имя

QLineEdit* readOnlyBox(const char* name, const QString& text, QWidget* parent)
{
    auto* box = new QLineEdit(text, parent);
    box->setObjectName(QString::fromLatin1(name));
    box->setReadOnly(true);
    return box;
}

// The keys that take text away from the name box: they are remembered, so completion
// leaves the shortened text alone, and Backspace over a completed tail takes the tail and
// the last character typed.
class ErasingKeys : public QObject
{
public:
    ErasingKeys(QLineEdit* edit, bool& erasing) : QObject(edit), m_edit(edit), m_erasing(erasing) {}

protected:
    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() != QEvent::KeyPress) {
            return false;
        }
        const int key = static_cast<QKeyEvent*>(event)->key();
        m_erasing = key == Qt::Key_Backspace || key == Qt::Key_Delete;
        const int start = m_edit->selectionStart();
        const bool completedTail = m_edit->hasSelectedText() && start > 0 &&
                                   start + m_edit->selectedText().size() == m_edit->text().size();
        if (key == Qt::Key_Backspace && completedTail) {
            m_edit->setText(m_edit->text().left(start - 1));
            return true;
        }
        return false;
    }

private:
    QLineEdit* m_edit;
    bool& m_erasing;
};

} // namespace

frmAddInDue::frmAddInDue(AppContext& ctx, const LoanDisc& disc, QWidget* parent)
    : QDialog(parent), m_ctx(ctx), m_disc(disc)
{
    build();
}

frmAddInDue::frmAddInDue(AppContext& ctx, const LoanDisc& disc, const QString& borrower,
                         std::optional<QDate> due, QWidget* parent)
    : QDialog(parent), m_ctx(ctx), m_disc(disc), m_changeOfTerm(true)
{
    build();
    m_txtFIO->setEditText(borrower);
    m_txtFIO->setEnabled(false);
    m_lblDoNewBackDate->setText(QStringLiteral("Ранее установленная дата возврата:\n") +
                                (due ? QLocale().toString(*due, QStringLiteral("d MMMM yyyy г."))
                                     : QStringLiteral("бессрочный долг")));
    m_lblDoNewBackDate->show();
    if (!due) {
        m_chDueNonStop->setChecked(true);
        m_dtpBackDate->hide();
    }
}

void frmAddInDue::build()
{
    setObjectName(QStringLiteral("frmAddInDue"));
    setWindowTitle(QStringLiteral("Добавление должника"));
    auto* layout = new QVBoxLayout(this);
    auto* header = new QLabel(QStringLiteral("Добавление в список нового должника"), this);
    QFont bold = header->font();
    bold.setBold(true);
    header->setFont(bold);
    layout->addWidget(header);

    auto* form = new QFormLayout;
    m_lblNumber = new QLabel(QString::number(m_disc.number), this);
    m_lblNumber->setObjectName(QStringLiteral("lblNumber"));
    form->addRow(QStringLiteral("Диск №:"), m_lblNumber);
    m_txtCategory = readOnlyBox("txtCategory", loanCategoryText(m_disc.category), this);
    form->addRow(QStringLiteral("Категория:"), m_txtCategory);
    m_lblDescription = new QLabel(m_disc.category == Category::Audio ? QStringLiteral("Группа/Исполнитель")
                                                                       : QStringLiteral("Название"),
                                  this);
    m_lblDescription->setObjectName(QStringLiteral("lblDescription"));
    m_txtName = readOnlyBox("txtName", m_disc.title, this);
    form->addRow(m_lblDescription, m_txtName);

    m_txtFIO = new QComboBox(this);
    m_txtFIO->setObjectName(QStringLiteral("txtFIO"));
    m_txtFIO->setEditable(true);
    m_txtFIO->setInsertPolicy(QComboBox::NoInsert);
    m_txtFIO->setCompleter(nullptr); // completion is our own: first name in the table's order
    m_txtFIO->lineEdit()->setMaxLength(kNameLength);
    m_txtFIO->lineEdit()->installEventFilter(new ErasingKeys(m_txtFIO->lineEdit(), m_erasing));
    form->addRow(QStringLiteral("Ф.И.О.:"), m_txtFIO);

    m_lblDoNewBackDate = new QLabel(this);
    m_lblDoNewBackDate->setObjectName(QStringLiteral("lblDoNewBackDate"));
    m_lblDoNewBackDate->hide();
    form->addRow(m_lblDoNewBackDate);
    m_dtpBackDate = new QDateEdit(this);
    m_dtpBackDate->setObjectName(QStringLiteral("dtpBackDate"));
    m_dtpBackDate->setCalendarPopup(true);
    m_dtpBackDate->setDisplayFormat(QStringLiteral("dd.MM.yyyy"));
    // A day before today is never offered.
    m_dtpBackDate->setMinimumDate(m_ctx.clock().today());
    m_dtpBackDate->setDate(m_ctx.clock().today());
    m_lblDueDay = new QLabel(QStringLiteral("Сроком до"), this);
    m_lblDueDay->setObjectName(QStringLiteral("lblDueDay"));
    form->addRow(m_lblDueDay, m_dtpBackDate);
    m_chDueNonStop = new QCheckBox(QStringLiteral("бессрочный  долг"), this);
    m_chDueNonStop->setObjectName(QStringLiteral("chDueNonStop"));
    form->addRow(m_chDueNonStop);
    connect(m_chDueNonStop, &QCheckBox::toggled, this, [this](bool open) {
        m_lblDueDay->setEnabled(!open);
        m_dtpBackDate->setEnabled(!open);
    });
    layout->addLayout(form);

    auto* warning = new QHBoxLayout;
    const QString texts[] = {QStringLiteral("Внимание!"), QStringLiteral("Рейтинг должника:"), QString()};
    for (int i = 0; i < 3; ++i) {
        m_lblRating[i] = new QLabel(texts[i], this);
        m_lblRating[i]->setObjectName(QStringLiteral("lblRating%1").arg(i + 1));
        m_lblRating[i]->setStyleSheet(QStringLiteral("color: #d32f2f;"));
        QSizePolicy policy = m_lblRating[i]->sizePolicy();
        policy.setRetainSizeWhenHidden(true);
        m_lblRating[i]->setSizePolicy(policy);
        m_lblRating[i]->hide();
        warning->addWidget(m_lblRating[i]);
    }
    warning->addStretch(1);
    layout->addLayout(warning);

    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setObjectName(QStringLiteral("imgButton0"));
    buttons->button(QDialogButtonBox::Cancel)->setObjectName(QStringLiteral("imgButton1"));
    buttons->button(QDialogButtonBox::Ok)->setDefault(true);
    connect(buttons, &QDialogButtonBox::accepted, this, &frmAddInDue::cmdAdd);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);

    underFaultHandler(m_ctx, QStringLiteral("frmAddInDue, Form_Load()"), [this] {
        const Db db(m_ctx.MainDBPath, Db::Access::ReadOnly);
        m_names = db.texts(QStringLiteral("SELECT Имя FROM ИменаДолжников ORDER BY КодИмени"));
    });
    m_txtFIO->addItems(m_names);
    m_txtFIO->setCurrentIndex(-1);
    m_txtFIO->setEditText(QString());
    connect(m_txtFIO, &QComboBox::editTextChanged, this, &frmAddInDue::completeName);
}

void frmAddInDue::completeName(const QString& typed)
{
    if (!m_erasing && !typed.isEmpty()) {
        // The first known name, in the table's order, that begins with the text typed: shown
        // whole, with the part not typed selected, so the next key types over it.
        const auto found = std::find_if(m_names.cbegin(), m_names.cend(), [&](const QString& name) {
            return name.startsWith(typed, Qt::CaseInsensitive);
        });
        if (found != m_names.cend() && found->size() > typed.size()) {
            const QSignalBlocker quiet(m_txtFIO);
            m_txtFIO->lineEdit()->setText(*found);
            m_txtFIO->lineEdit()->setSelection(static_cast<int>(typed.size()),
                                               static_cast<int>(found->size() - typed.size()));
        }
    }
    m_erasing = false;
    CheckDue();
}

void frmAddInDue::CheckDue()
{
    for (QLabel* label : m_lblRating) {
        label->hide();
    }
    const QString name = m_txtFIO->currentText();
    if (name.isEmpty()) {
        return;
    }
    const QString warning = underFaultHandler(m_ctx, QStringLiteral("frmAddInDue, CheckDue()"), [&] {
        const WaitCursor hourglass;
        const Db db(m_ctx.MainDBPath, Db::Access::ReadOnly);
        return lendingWarning(db, name, m_ctx.clock().today());
    });
    if (!warning.isEmpty()) {
        m_lblRating[2]->setText(warning);
        for (QLabel* label : m_lblRating) {
            label->show();
        }
    }
}

void frmAddInDue::cmdAdd()
{
    const QString name = m_txtFIO->currentText();
    if (name.isEmpty()) {
        m_ctx.prompter().message(QStringLiteral("Введите или выберите из списка имя должника.\n"
                                                "Данное поле является обязательным для заполнения."),
                                 MessageStyle::Exclamation);
        m_txtFIO->setFocus();
        return;
    }
    const std::optional<QDate> due =
        m_chDueNonStop->isChecked() ? std::nullopt : std::optional<QDate>(m_dtpBackDate->date());
    underFaultHandler(m_ctx, QStringLiteral("frmAddInDue, cmdAdd()"), [&] {
        const Db db(m_ctx.MainDBPath);
        if (m_changeOfTerm) {
            changeLoanTerm(db, m_disc.category, m_disc.key, due);
        } else {
            lendDisc(db, m_disc, name, due, m_ctx.clock().today());
        }
    });
    m_ctx.DialogDone = true;
    accept();
}

} // namespace vinora
