#include "contents/frmEditFilter.h"

#include "frame/AppContext.h"
#include "frame/FaultLog.h"
#include "store/Db.h"
#include "store/Schema.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace vinora {

frmEditFilter::frmEditFilter(AppContext& ctx, QWidget* parent) : QDialog(parent), m_ctx(ctx)
{
    setObjectName(QStringLiteral("frmEditFilter"));
    setWindowTitle(QStringLiteral("Фильтр файлов"));
    resize(380, 420);
    auto* layout = new QVBoxLayout(this);
    auto* options = new QHBoxLayout;
    m_optFilter[0] = new QRadioButton(QStringLiteral("ненужные файлы"), this);
    m_optFilter[1] = new QRadioButton(QStringLiteral("нужные файлы"), this);
    m_optFilter[0]->setObjectName(QStringLiteral("optFilter0"));
    m_optFilter[1]->setObjectName(QStringLiteral("optFilter1"));
    options->addWidget(m_optFilter[0]);
    options->addWidget(m_optFilter[1]);
    layout->addLayout(options);
    m_lblInfo = new QLabel(this);
    m_lblInfo->setObjectName(QStringLiteral("lblInfo"));
    m_lblInfo->setWordWrap(true);
    layout->addWidget(m_lblInfo);
    m_lvFilter = new QTreeWidget(this);
    m_lvFilter->setObjectName(QStringLiteral("lvFilter"));
    m_lvFilter->setColumnCount(1);
    m_lvFilter->setRootIsDecorated(false);
    layout->addWidget(m_lvFilter, 1);
    auto* buttons = new QHBoxLayout;
    const auto button = [&](const char* name, const char* text) {
        auto* b = new QPushButton(QString::fromUtf8(text), this);
        b->setObjectName(QString::fromLatin1(name));
        b->setAutoDefault(false);
        buttons->addWidget(b);
        return b;
    };
    QPushButton* select = button("cmdSelect", "Все");
    QPushButton* deselect = button("cmdDeselect", "Ни одного");
    QPushButton* add = button("imgButton1", "Добавить");
    QPushButton* remove = button("imgButton2", "Удалить");
    QPushButton* change = button("imgButton3", "Изменить");
    QPushButton* close = button("imgButton0", "Закрыть");
    m_itemCommands = {select, deselect, remove, change};
    layout->addLayout(buttons);
    connect(select, &QPushButton::clicked, this, [this] { setAllTicks(true); });
    connect(deselect, &QPushButton::clicked, this, [this] { setAllTicks(false); });
    connect(add, &QPushButton::clicked, this, &frmEditFilter::cmdAddFile);
    connect(remove, &QPushButton::clicked, this, &frmEditFilter::cmdDelete);
    connect(change, &QPushButton::clicked, this, &frmEditFilter::cmdChangeFile);
    connect(close, &QPushButton::clicked, this, &QDialog::reject);
    connect(m_lvFilter, &QTreeWidget::itemDoubleClicked, this, &frmEditFilter::cmdChangeFile);
    connect(m_lvFilter, &QTreeWidget::itemChanged, this,
            [this](QTreeWidgetItem* item) { itemChanged(item); });
    for (QRadioButton* option : m_optFilter) {
        connect(option, &QRadioButton::clicked, this, &frmEditFilter::optFilter_Click);
    }
    m_optFilter[0]->setChecked(true);
    optFilter_Click();
}

QString frmEditFilter::table() const
{
    return filterTableName(m_optFilter[1]->isChecked() ? FilterTable::Include : FilterTable::Exclude);
}

void frmEditFilter::chooseTable(FilterTable which)
{
    m_optFilter[which == FilterTable::Include ? 1 : 0]->setChecked(true);
    optFilter_Click();
}

void frmEditFilter::optFilter_Click()
{
    m_loading = true;
    m_lvFilter->clear();
    m_lblInfo->setText(
        m_optFilter[0]->isChecked()
            ? QStringLiteral("Отмеченные файлы не будут включены в создаваемую структуру диска")
            : QStringLiteral("Только отмеченные файлы будут включены в создаваемую структуру диска"));
    {
        const Db db(m_ctx.FilesDBPath, Db::Access::ReadOnly);
        QSqlQuery rows = db.query(QStringLiteral("SELECT Файл, Use FROM ") + quoted(table()) +
                                  QStringLiteral(" ORDER BY Файл"));
        while (rows.next()) {
            auto* item = new QTreeWidgetItem(m_lvFilter, {rows.value(0).toString()});
            item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
            item->setCheckState(0, rows.value(1).toInt() != 0 ? Qt::Checked : Qt::Unchecked);
        }
    }
    m_lvFilter->setHeaderLabels(
        {QStringLiteral("Файлы (") + QString::number(m_lvFilter->topLevelItemCount()) + u')'});
    for (QPushButton* command : m_itemCommands) {
        command->setEnabled(m_lvFilter->topLevelItemCount() > 0);
    }
    m_lvFilter->setCurrentItem(m_lvFilter->topLevelItem(0));
    m_loading = false;
}

void frmEditFilter::selectEntry(const QString& text)
{
    for (int i = 0; i < m_lvFilter->topLevelItemCount(); ++i) {
        if (m_lvFilter->topLevelItem(i)->text(0) == text) {
            m_lvFilter->setCurrentItem(m_lvFilter->topLevelItem(i));
            return;
        }
    }
}

void frmEditFilter::itemChanged(QTreeWidgetItem* item)
{
    if (m_loading) {
        return;
    }
    const Db db(m_ctx.FilesDBPath);
    db.exec(QStringLiteral("UPDATE ") + quoted(table()) + QStringLiteral(" SET Use = ? WHERE Файл = ?"),
            {item->checkState(0) == Qt::Checked ? kTrue : kFalse, item->text(0)});
}

void frmEditFilter::setAllTicks(bool ticked)
{
    for (int i = 0; i < m_lvFilter->topLevelItemCount(); ++i) {
        m_lvFilter->topLevelItem(i)->setCheckState(0, ticked ? Qt::Checked : Qt::Unchecked);
    }
}

bool frmEditFilter::exists(const QString& entry) const
{
    const Db db(m_ctx.FilesDBPath, Db::Access::ReadOnly);
    return db.scalar(QStringLiteral("SELECT COUNT(*) FROM ") + quoted(table()) +
                         QStringLiteral(" WHERE Файл = ?"),
                     {entry})
               .toInt() > 0;
}

std::optional<QString> frmEditFilter::askEntry(const QString& title, const QString& prompt,
                                               const QString& initial)
{
    for (;;) {
        const std::optional<QString> entry = m_ctx.prompter().input(prompt, title, initial);
        if (!entry || entry->isEmpty()) {
            return std::nullopt;
        }
        if (!exists(*entry)) {
            return entry;
        }
        if (m_ctx.prompter().message(QStringLiteral("Файл '") + *entry +
                                         QStringLiteral("' уже существует. Ввести другое?"),
                                     MessageStyle::YesNoQuestion) != Answer::Yes) {
            return std::nullopt;
        }
    }
}

void frmEditFilter::cmdAddFile()
{
    if (m_lvFilter->topLevelItemCount() >= 50) {
        m_ctx.prompter().message(QStringLiteral("Количество файлов не должно превышать 50!"),
                                 MessageStyle::Exclamation);
        return;
    }
    const std::optional<QString> entry =
        askEntry(QStringLiteral("Добавление нового файла"), QStringLiteral("Введите имя файла:"), QString());
    if (!entry) {
        return;
    }
    {
        const Db db(m_ctx.FilesDBPath);
        db.exec(QStringLiteral("INSERT INTO ") + quoted(table()) +
                    QStringLiteral(" (Файл, Use) VALUES (?, -1)"),
                {entry->left(255)});
    }
    optFilter_Click();
    selectEntry(entry->left(255));
}

void frmEditFilter::cmdDelete()
{
    const QString entry = selectedEntry();
    if (!m_lvFilter->currentItem() ||
        m_ctx.prompter().message(QStringLiteral("Вы действительно хотите удалить файл '") + entry +
                                     QStringLiteral("'?"),
                                 MessageStyle::YesNoQuestion) != Answer::Yes) {
        return;
    }
    underFaultHandler(m_ctx, QStringLiteral("frmEditFilter, cmdDelete()"), [&] {
        const Db db(m_ctx.FilesDBPath);
        db.exec(QStringLiteral("DELETE FROM ") + quoted(table()) + QStringLiteral(" WHERE Файл = ?"),
                {entry});
    });
    optFilter_Click();
}

void frmEditFilter::cmdChangeFile()
{
    if (!m_lvFilter->currentItem()) {
        return;
    }
    const QString old = selectedEntry();
    const std::optional<QString> entry =
        askEntry(QStringLiteral("Изменение имени файла"), QStringLiteral("Измените имени файла:"), old);
    if (!entry) {
        return;
    }
    {
        const Db db(m_ctx.FilesDBPath);
        db.exec(QStringLiteral("UPDATE ") + quoted(table()) + QStringLiteral(" SET Файл = ? WHERE Файл = ?"),
                {entry->left(255), old});
    }
    optFilter_Click();
    selectEntry(entry->left(255));
}

QStringList frmEditFilter::entries() const
{
    QStringList list;
    for (int i = 0; i < m_lvFilter->topLevelItemCount(); ++i) {
        const QTreeWidgetItem* item = m_lvFilter->topLevelItem(i);
        list.append((item->checkState(0) == Qt::Checked ? QStringLiteral("[x] ") : QString()) +
                    item->text(0));
    }
    return list;
}

QString frmEditFilter::selectedEntry() const
{
    const QTreeWidgetItem* item = m_lvFilter->currentItem();
    return item ? item->text(0) : QString();
}

} // namespace vinora
