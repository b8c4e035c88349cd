#include "catalogue/frmEditDictionary.h"

#include "frame/AppContext.h"
#include "frame/FaultLog.h"
#include "store/Db.h"
#include "store/Schema.h"
#include "ui/TitleWidth.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace vinora {

frmEditDictionary::frmEditDictionary(AppContext& ctx, Dictionary dictionary, QWidget* parent)
    : QDialog(parent), m_ctx(ctx), m_kind(dictionaryKind(dictionary))
{
    setObjectName(m_kind.formName);
    setWindowTitle(m_kind.title);
    resize(360, 440);
    auto* layout = new QVBoxLayout(this);
    m_grid = new QListWidget(this);
    m_grid->setObjectName(QStringLiteral("DBGrid"));
    m_grid->installEventFilter(this);
    layout->addWidget(m_grid, 1);
    m_count = new QLabel(this);
    m_count->setObjectName(QStringLiteral("lblCount"));
    layout->addWidget(m_count);
    auto* buttons = new QHBoxLayout;
    auto* add = new QPushButton(QStringLiteral("Добавить"), this);
    add->setObjectName(QStringLiteral("imgButton1"));
    m_delete = new QPushButton(QStringLiteral("Удалить"), this);
    m_delete->setObjectName(QStringLiteral("imgButton2"));
    m_change = new QPushButton(QStringLiteral("Изменить"), this);
    m_change->setObjectName(QStringLiteral("imgButton3"));
    auto* close = new QPushButton(QStringLiteral("Закрыть"), this);
    close->setObjectName(QStringLiteral("imgButton0"));
    for (QPushButton* button : {add, m_delete, m_change, close}) {
        button->setAutoDefault(false);
        buttons->addWidget(button);
    }
    layout->addLayout(buttons);
    connect(add, &QPushButton::clicked, this, &frmEditDictionary::cmdAdd);
    connect(m_delete, &QPushButton::clicked, this, &frmEditDictionary::cmdDelete);
    connect(m_change, &QPushButton::clicked, this, &frmEditDictionary::cmdChange);
    connect(close, &QPushButton::clicked, this, &QDialog::reject);
    connect(m_grid, &QListWidget::itemDoubleClicked, this, &frmEditDictionary::cmdChange);
    keepTitleVisible(this);
    load();
}

void frmEditDictionary::load(const QString& selected)
{
    const int previous = m_grid->currentRow();
    m_grid->clear();
    underFaultHandler(m_ctx, m_kind.formName + QStringLiteral(", Form_Load()"), [this] {
        const Db db(m_ctx.MainDBPath, Db::Access::ReadOnly);
        for (const DictionaryTable::Entry& entry : table(db).entries()) {
            auto* item = new QListWidgetItem(entry.name, m_grid);
            item->setData(Qt::UserRole, entry.key);
        }
    });
    m_count->setText(QStringLiteral("Записей: ") + QString::number(m_grid->count()));
    m_delete->setEnabled(m_grid->count() > 0);
    m_change->setEnabled(m_grid->count() > 0);
    if (!selected.isNull()) {
        selectName(selected);
    } else {
        m_grid->setCurrentRow(std::clamp(previous, 0, m_grid->count() - 1));
    }
}

DictionaryTable frmEditDictionary::table(const Db& db) const
{
    return DictionaryTable(db, m_kind.table, m_kind.key);
}

QStringList frmEditDictionary::names() const
{
    QStringList list;
    for (int i = 0; i < m_grid->count(); ++i) {
        list.append(m_grid->item(i)->text());
    }
    return list;
}

void frmEditDictionary::selectName(const QString& name)
{
    for (int i = 0; i < m_grid->count(); ++i) {
        if (m_grid->item(i)->text() == name) {
            m_grid->setCurrentRow(i);
            return;
        }
    }
}

QString frmEditDictionary::currentName() const
{
    return m_grid->currentItem() ? m_grid->currentItem()->text() : QString();
}

bool frmEditDictionary::exists(const QString& name) const
{
    const Db db(m_ctx.MainDBPath, Db::Access::ReadOnly);
    return table(db).contains(name);
}

std::optional<QString> frmEditDictionary::askNewName(const QString& title, const QString& prompt,
                                                     const QString& initial)
{
    for (;;) {
        const std::optional<QString> name = m_ctx.prompter().input(prompt, title, initial);
        if (!name || name->isEmpty()) {
            return std::nullopt;
        }
        if (name->size() > 50) {
            m_ctx.prompter().message(m_kind.lengthMessage, MessageStyle::Exclamation);
            return std::nullopt;
        }
        // A quotation mark has always been refused in these names.
        if (name->contains(u'"')) {
            m_ctx.prompter().message(m_kind.quoteMessage, MessageStyle::Exclamation);
            return std::nullopt;
        }
        if (!exists(*name)) {
            return name;
        }
        if (m_ctx.prompter().message(m_kind.duplicateStart + *name + m_kind.duplicateEnd,
                                     MessageStyle::YesNo) != Answer::Yes) {
            return std::nullopt;
        }
    }
}

void frmEditDictionary::cmdAdd()
{
    const std::optional<QString> name = askNewName(m_kind.addTitle, m_kind.addPrompt, QString());
    if (!name) {
        return;
    }
    underFaultHandler(m_ctx, m_kind.formName + QStringLiteral(", cmdAdd()"), [&] {
        const Db db(m_ctx.MainDBPath);
        table(db).add(*name);
    });
    load(*name);
}

void frmEditDictionary::cmdDelete()
{
    if (!m_grid->currentItem()) {
        return;
    }
    const QString name = currentName();
    if (name.isEmpty()) {
        m_ctx.prompter().message(m_kind.protectedOnDelete, MessageStyle::Exclamation);
        return;
    }
    if (m_ctx.prompter().message(m_kind.deletePrompt + name + QStringLiteral("'?"), MessageStyle::YesNo) !=
        Answer::Yes) {
        return;
    }
    try {
        const Db db(m_ctx.MainDBPath);
        table(db).remove(m_grid->currentItem()->data(Qt::UserRole));
    } catch (const AppError& error) {
        if (error.number() != err::RelatedRecordsExist) {
            ReportFault(m_ctx, m_kind.formName + QStringLiteral(", cmdDelete()"), error);
        }
        m_ctx.prompter().message(m_kind.inUseStart + name + m_kind.inUseEnd, MessageStyle::Exclamation);
        return;
    }
    load();
}

void frmEditDictionary::cmdChange()
{
    if (!m_grid->currentItem()) {
        return;
    }
    const QString oldName = currentName();
    if (oldName.isEmpty()) {
        m_ctx.prompter().message(m_kind.protectedOnChange, MessageStyle::Exclamation);
        return;
    }
    const QVariant key = m_grid->currentItem()->data(Qt::UserRole);
    const std::optional<QString> name = askNewName(m_kind.changeTitle, m_kind.changePrompt, oldName);
    if (!name) {
        return;
    }
    underFaultHandler(m_ctx, m_kind.formName + QStringLiteral(", cmdChange()"), [&] {
        const Db db(m_ctx.MainDBPath);
        table(db).rename(key, *name);
    });
    load(*name);
}

bool frmEditDictionary::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_grid && event->type() == QEvent::KeyPress) {
        switch (static_cast<QKeyEvent*>(event)->key()) {
        case Qt::Key_Home:
            m_grid->setCurrentRow(0);
            return true;
        case Qt::Key_End:
            m_grid->setCurrentRow(m_grid->count() - 1);
            return true;
        case Qt::Key_Insert:
            cmdAdd();
            return true;
        case Qt::Key_Delete:
            cmdDelete();
            return true;
        default:
            break;
        }
    }
    return QDialog::eventFilter(watched, event);
}

} // namespace vinora
