#include "contents/frmEditFilter.h"

#include "frame/AppContext.h"
#include "frame/FaultLog.h"
#include "store/Db.h"
#include "store/Schema.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
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
    m_lvFilter = new QListWidget(this);
    m_lvFilter->setObjectName(QStringLiteral("lvFilter"));
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
    connect(m_lvFilter, &QListWidget::itemDoubleClicked, this, &frmEditFilter::cmdChangeFile);
    connect(m_lvFilter, &QListWidget::itemChanged, this, &frmEditFilter::itemChanged);
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
            auto* item = new QListWidgetItem(rows.value(0).toString(), m_lvFilter);
            item->setFlags(item->flags() | Qt::ItemIsUserCheckable);
            item->setCheckState(rows.value(1).toInt() != 0 ? Qt::Checked : Qt::Unchecked);
        }
    }
    for (QPushButton* command : m_itemCommands) {
        command->setEnabled(m_lvFilter->count() > 0);
    }
    m_lvFilter->setCurrentRow(0);
    m_loading = false;
}

void frmEditFilter::itemChanged(QListWidgetItem* item)
{
    if (m_loading) {
        return;
    }
    const Db db(m_ctx.FilesDBPath);
    db.exec(QStringLiteral("UPDATE ") + quoted(table()) + QStringLiteral(" SET Use = ? WHERE Файл = ?"),
            {item->checkState() == Qt::Checked ? kTrue : kFalse, item->text()});
}

void frmEditFilter::setAllTicks(bool ticked)
{
    for (int i = 0; i < m_lvFilter->count(); ++i) {
        m_lvFilter->item(i)->setCheckState(ticked ? Qt::Checked : Qt::Unchecked);
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
    if (m_lvFilter->count() >= 50) {
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
    const QList<QListWidgetItem*> found = m_lvFilter->findItems(*entry, Qt::MatchExactly);
    if (!found.isEmpty()) {
        m_lvFilter->setCurrentItem(found.first());
    }
}

void frmEditFilter::cmdDelete()
{
    QListWidgetItem* item = m_lvFilter->currentItem();
    if (!item || m_ctx.prompter().message(QStringLiteral("Вы действительно хотите удалить файл '") +
                                              item->text() + QStringLiteral("'?"),
                                          MessageStyle::YesNoQuestion) != Answer::Yes) {
        return;
    }
    underFaultHandler(m_ctx, QStringLiteral("frmEditFilter, cmdDelete()"), [&] {
        const Db db(m_ctx.FilesDBPath);
        db.exec(QStringLiteral("DELETE FROM ") + quoted(table()) + QStringLiteral(" WHERE Файл = ?"),
                {item->text()});
    });
    optFilter_Click();
}

void frmEditFilter::cmdChangeFile()
{
    QListWidgetItem* item = m_lvFilter->currentItem();
    if (!item) {
        return;
    }
    const QString old = item->text();
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
}

QStringList frmEditFilter::entries() const
{
    QStringList list;
    for (int i = 0; i < m_lvFilter->count(); ++i) {
        const QListWidgetItem* item = m_lvFilter->item(i);
        list.append((item->checkState() == Qt::Checked ? QStringLiteral("[x] ") : QString()) + item->text());
    }
    return list;
}

} // namespace vinora
