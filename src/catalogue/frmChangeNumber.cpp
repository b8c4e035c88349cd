#include "catalogue/frmChangeNumber.h"

#include "catalogue/Numbering.h"
#include "frame/AppContext.h"
#include "frame/FaultLog.h"
#include "frame/TextRules.h"
#include "store/Db.h"
#include "ui/EnterKey.h"
#include "ui/KeyFilter.h"
#include "ui/TitleWidth.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace vinora {
namespace {

void refuse(AppContext& ctx, QLineEdit* box, const QString& message)
{
    ctx.prompter().message(message, MessageStyle::Exclamation);
    box->setFocus();
    box->selectAll();
}

} // namespace

frmChangeNumber::frmChangeNumber(AppContext& ctx, QWidget* parent) : QDialog(parent), m_ctx(ctx)
{
    setObjectName(QStringLiteral("frmChangeNumber"));
    setWindowTitle(QStringLiteral("Изменение номера диска"));
    auto* layout = new QVBoxLayout(this);
    const char* const captions[] = {"Аудио диск", "Компьютерный диск", "DVD диск"};
    for (int i = 0; i < 3; ++i) {
        m_optCategory[i] = new QRadioButton(QString::fromUtf8(captions[i]), this);
        m_optCategory[i]->setObjectName(QStringLiteral("optCategory%1").arg(i));
        layout->addWidget(m_optCategory[i]);
    }
    m_optCategory[0]->setChecked(true);
    auto* form = new QFormLayout;
    m_txtNumberOld = new QLineEdit(this);
    m_txtNumberOld->setObjectName(QStringLiteral("txtNumberOld"));
    m_txtNumberNew = new QLineEdit(this);
    m_txtNumberNew->setObjectName(QStringLiteral("txtNumberNew"));
    KeyFilter::install(m_txtNumberOld, DigitKeys);
    KeyFilter::install(m_txtNumberNew, DigitKeys);
    form->addRow(QStringLiteral("Номер диска:"), m_txtNumberOld);
    form->addRow(QStringLiteral("Новый номер:"), m_txtNumberNew);
    layout->addLayout(form);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setAutoDefault(false);
    buttons->button(QDialogButtonBox::Ok)->setObjectName(QStringLiteral("imgButton0"));
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &frmChangeNumber::cmdOK);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    onEnter(m_txtNumberOld, [this] { m_txtNumberNew->setFocus(Qt::TabFocusReason); });
    onEnter(m_txtNumberNew, [this] { cmdOK(); });
    keepTitleVisible(this);
}

void frmChangeNumber::cmdOK()
{
    const int oldNumber = static_cast<int>(m_txtNumberOld->text().toLongLong());
    const int newNumber = static_cast<int>(m_txtNumberNew->text().toLongLong());
    if (oldNumber <= 0 || oldNumber > 32767) {
        refuse(m_ctx, m_txtNumberOld,
               QStringLiteral("Указан не верный номер диска для изменения. Повторите ввод."));
        return;
    }
    if (newNumber <= 0 || newNumber > 32767) {
        refuse(m_ctx, m_txtNumberNew, QStringLiteral("Указан не верный новый номер диска. Повторите ввод."));
        return;
    }
    m_txtNumberOld->setText(QString::number(oldNumber));
    m_txtNumberNew->setText(QString::number(newNumber));
    const Category category = m_optCategory[1]->isChecked()   ? Category::Computer
                              : m_optCategory[2]->isChecked() ? Category::Dvd
                                                              : Category::Audio;
    const CatalogueKind& kind = catalogueKind(category);
    underFaultHandler(m_ctx, QStringLiteral("frmChangeNumber, cmdOK()"), [&] {
        std::optional<QString> oldTitle;
        std::optional<QString> newTitle;
        {
            const Db db(m_ctx.MainDBPath);
            oldTitle = discTitle(db, kind, oldNumber);
            newTitle = discTitle(db, kind, newNumber);
        }
        const QString oldText = QString::number(oldNumber);
        const QString newText = QString::number(newNumber);
        if (!oldTitle) {
            refuse(m_ctx, m_txtNumberOld,
                   QStringLiteral("Диск № ") + oldText + QStringLiteral(" отсутствует в каталоге."));
            return;
        }
        if (!newTitle) {
            if (m_ctx.prompter().message(QStringLiteral("Подтвердите изменение диска № ") + oldText +
                                             QStringLiteral(":\n'") + *oldTitle + QStringLiteral("' на № ") +
                                             newText + u'.',
                                         MessageStyle::OkCancelInformation) != Answer::Ok) {
                return;
            }
            moveNumber(m_ctx, kind, oldNumber, newNumber);
        } else {
            if (m_ctx.prompter().message(QStringLiteral("Поменять местами диск № ") + oldText +
                                             QStringLiteral(":\n'") + *oldTitle + QStringLiteral("' и № ") +
                                             newText + QStringLiteral(":\n'") + *newTitle +
                                             QStringLiteral("'?"),
                                         MessageStyle::YesNo) != Answer::Yes) {
                return;
            }
            swapNumbers(m_ctx, kind, oldNumber, newNumber);
        }
        m_ctx.prompter().message(QStringLiteral("Диск № ") + oldText +
                                     QStringLiteral(" был успешно изменен на № ") + newText + u'.',
                                 MessageStyle::Information);
        m_txtNumberOld->clear();
        m_txtNumberNew->clear();
        m_txtNumberOld->setFocus();
    });
}

} // namespace vinora
