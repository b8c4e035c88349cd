#include "recognition/frmSelectCategory.h"

#include "frame/AppContext.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QRadioButton>
#include <QVBoxLayout>

namespace vinora {

frmSelectCategory::frmSelectCategory(QWidget* parent) : QDialog(parent)
{
    setObjectName(QStringLiteral("frmSelectCategory"));
    setWindowTitle(QStringLiteral("Категория диска"));
    auto* layout = new QVBoxLayout(this);
    auto* trouble = m_lblTrabl = new QLabel(
        QStringLiteral("Обнаружен диск, точное определение категории которого не представляется возможным!"),
        this);
    trouble->setObjectName(QStringLiteral("lblTrabl"));
    trouble->setWordWrap(true);
    auto* info = m_lblInfo = new QLabel(QStringLiteral("Укажите верную категорию:"), this);
    info->setObjectName(QStringLiteral("lblInfo"));
    m_optAD = new QRadioButton(QStringLiteral("Аудио диск"), this);
    m_optAD->setObjectName(QStringLiteral("optAD"));
    m_optPC = new QRadioButton(QStringLiteral("Компьютерный диск"), this);
    m_optPC->setObjectName(QStringLiteral("optPC"));
    m_optDVD = new QRadioButton(QStringLiteral("DVD диск"), this);
    m_optDVD->setObjectName(QStringLiteral("optDVD"));
    m_optAD->setChecked(true); // one of the three is always chosen
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    for (QWidget* widget :
         {static_cast<QWidget*>(trouble), static_cast<QWidget*>(info), static_cast<QWidget*>(m_optAD),
          static_cast<QWidget*>(m_optPC), static_cast<QWidget*>(m_optDVD), static_cast<QWidget*>(buttons)}) {
        layout->addWidget(widget);
    }
}

QString frmSelectCategory::category() const
{
    return m_optDVD->isChecked()  ? QStringLiteral("DVD")
           : m_optPC->isChecked() ? QStringLiteral("PC")
                                  : QStringLiteral("AD");
}

void frmSelectCategory::choose(const QString& category)
{
    (category == u"DVD" ? m_optDVD : category == u"PC" ? m_optPC : m_optAD)->setChecked(true);
}

void frmSelectCategory::ask(const QString& question)
{
    m_lblTrabl->setText(question);
    m_lblInfo->hide();
}

CategoryChooser frmSelectCategory::chooser(AppContext& ctx, QWidget* parent)
{
    return [&ctx, parent]() -> std::optional<QString> {
        frmSelectCategory dialog(parent);
        if (ctx.prompter().showModal(dialog) != QDialog::Accepted) {
            return std::nullopt;
        }
        return dialog.category();
    };
}

} // namespace vinora
