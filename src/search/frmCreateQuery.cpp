#include "search/frmCreateQuery.h"

#include "catalogue/CatalogueKind.h"
#include "catalogue/DictionaryTable.h"
#include "frame/AppContext.h"
#include "frame/FaultLog.h"
#include "store/Db.h"

#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>
#include <algorithm>

namespace vinora {
namespace {

// The fields a condition may test in a catalogue, after the empty choice.
QStringList fieldsOf(Category category)
{
    const CatalogueKind& kind = catalogueKind(category);
    QStringList fields{QString(), kNumberField, QStringLiteral("Название")};
    if (kind.hasAlbum) {
        fields.append(QStringLiteral("Альбом"));
    }
    fields.append(kind.dictionaryTable);
    return fields;
}

QString indexed(const char* name, int index)
{
    return QString::fromLatin1(name) + QString::number(index);
}

} // namespace

frmCreateQuery::frmCreateQuery(AppContext& ctx, QWidget* parent) : QDialog(parent), m_ctx(ctx)
{
    setObjectName(QStringLiteral("frmCreateQuery"));
    setWindowTitle(QStringLiteral("Новый запрос"));
    auto* layout = new QVBoxLayout(this);

    auto* nameRow = new QHBoxLayout;
    auto* nameCaption = new QLabel(QStringLiteral("Название ярлыка:"), this);
    m_txtName = new QLineEdit(this);
    m_txtName->setObjectName(QStringLiteral("txtName"));
    nameCaption->setBuddy(m_txtName);
    nameRow->addWidget(nameCaption);
    nameRow->addWidget(m_txtName, 1);
    layout->addLayout(nameRow);

    auto* categories = new QGroupBox(QStringLiteral("Каталог"), this);
    auto* categoryRow = new QHBoxLayout(categories);
    const char* categoryTexts[] = {"Аудио диски", "Компьютерные диски", "DVD диски"};
    for (int i = 0; i < 3; ++i) {
        m_optCategory[i] = new QRadioButton(QString::fromUtf8(categoryTexts[i]), categories);
        m_optCategory[i]->setObjectName(indexed("optCategory", i));
        categoryRow->addWidget(m_optCategory[i]);
        connect(m_optCategory[i], &QRadioButton::toggled, this, [this](bool on) {
            if (on) {
                optCategory_Click();
            }
        });
    }
    layout->addWidget(categories);

    auto* conditions = new QGroupBox(QStringLiteral("Условия запроса"), this);
    auto* grid = new QGridLayout(conditions);
    grid->addWidget(new QLabel(QStringLiteral("Поле"), conditions), 0, 1);
    grid->addWidget(new QLabel(QStringLiteral("Условие"), conditions), 0, 2);
    grid->addWidget(new QLabel(QStringLiteral("Значение"), conditions), 0, 3);
    for (int i = 0; i < kQueryConditions; ++i) {
        Row& row = m_rows[i];
        row.lblQuery = new QLabel(conditions);
        row.lblQuery->setObjectName(indexed("lblQuery", i));
        row.lblQuery->setMinimumWidth(
            row.lblQuery->fontMetrics().horizontalAdvance(QStringLiteral("3. - Верно")));
        row.cmbQ1 = new QComboBox(conditions);
        row.cmbQ1->setObjectName(indexed("cmbQ1_", i));
        row.cmbQ1->setMinimumContentsLength(10);
        row.cmbQ2 = new QComboBox(conditions);
        row.cmbQ2->setObjectName(indexed("cmbQ2_", i));
        row.cmbQ2->setMinimumContentsLength(5);
        row.txtQuery = new QLineEdit(conditions);
        row.txtQuery->setObjectName(indexed("txtQuery", i));
        row.cmbQuery = new QComboBox(conditions);
        row.cmbQuery->setObjectName(indexed("cmbQuery", i));
        // Picked from the dictionary, or typed: a part of a name for LIKE.
        row.cmbQuery->setEditable(true);
        row.cmbQuery->setInsertPolicy(QComboBox::NoInsert);
        row.cmbQuery->hide();
        grid->addWidget(row.lblQuery, i + 1, 0);
        grid->addWidget(row.cmbQ1, i + 1, 1);
        grid->addWidget(row.cmbQ2, i + 1, 2);
        grid->addWidget(row.txtQuery, i + 1, 3);
        grid->addWidget(row.cmbQuery, i + 1, 3);
        connect(row.cmbQ1, &QComboBox::currentIndexChanged, this, [this, i] { cmbQ1_Click(i); });
        connect(row.txtQuery, &QLineEdit::textChanged, this, [this, i] { showMark(i); });
        connect(row.cmbQuery, &QComboBox::currentTextChanged, this, [this, i] { showMark(i); });
    }
    grid->setColumnStretch(3, 1);
    layout->addWidget(conditions);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    m_cmdSave = new QPushButton(QStringLiteral("Сохранить"), this);
    m_cmdSave->setObjectName(QStringLiteral("imgButton0"));
    m_cmdSave->setDefault(true);
    auto* cancel = new QPushButton(QStringLiteral("Отмена"), this);
    cancel->setObjectName(QStringLiteral("imgButton1"));
    cancel->setAutoDefault(false);
    buttons->addWidget(m_cmdSave);
    buttons->addWidget(cancel);
    layout->addLayout(buttons);
    connect(m_cmdSave, &QPushButton::clicked, this, &frmCreateQuery::cmdSave_Click);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);

    m_txtName->setText(nextShortcutName(m_ctx.queryIni()));
    m_txtName->selectAll();
    m_optCategory[0]->setChecked(true);
}

Category frmCreateQuery::category() const
{
    for (int i = 0; i < 3; ++i) {
        if (m_optCategory[i]->isChecked()) {
            return allCategories()[i];
        }
    }
    return Category::Audio;
}

void frmCreateQuery::setCategory(Category category)
{
    const auto at = std::find(allCategories().begin(), allCategories().end(), category);
    QRadioButton* option = m_optCategory[at - allCategories().begin()];
    if (option->isChecked()) {
        optCategory_Click();
    } else {
        option->setChecked(true); // toggled runs optCategory_Click
    }
}

bool frmCreateQuery::isDictionaryField(const QString& field) const
{
    return field == catalogueKind(category()).dictionaryTable;
}

void frmCreateQuery::optCategory_Click()
{
    const Category chosen = category();
    m_dictionary.clear();
    underErrorReport(m_ctx, QStringLiteral("frmCreateQuery, optCategory_Click()"), [&] {
        const CatalogueKind& kind = catalogueKind(chosen);
        const Db db(m_ctx.MainDBPath, Db::Access::ReadOnly);
        m_dictionary = DictionaryTable(db, kind.dictionaryTable, kind.dictionaryKey).names();
    });
    const QStringList fields = fieldsOf(chosen);
    for (int i = 0; i < kQueryConditions; ++i) {
        // A field the other catalogue has too keeps its condition; any other row is cleared.
        QueryCondition kept = condition(i);
        if (!fields.contains(kept.field)) {
            kept = {};
        }
        m_filling = true;
        m_rows[i].cmbQ1->clear();
        m_rows[i].cmbQ1->addItems(fields);
        m_filling = false;
        setRow(i, kept);
    }
}

void frmCreateQuery::cmbQ1_Click(int row)
{
    if (m_filling) {
        return;
    }
    // Another field: its operators, and no value yet.
    setRow(row, {m_rows[row].cmbQ1->currentText(), {}, {}});
}

void frmCreateQuery::setRow(int row, const QueryCondition& condition)
{
    Row& r = m_rows[row];
    m_filling = true;
    r.cmbQ1->setCurrentIndex(std::max(r.cmbQ1->findText(condition.field), 0));
    const bool chosen = !condition.field.isEmpty();
    r.cmbQ2->clear();
    if (chosen) {
        r.cmbQ2->addItems(queryOperators(condition.field));
    }
    r.cmbQ2->setCurrentIndex(r.cmbQ2->findText(condition.op));
    const bool dictionary = chosen && isDictionaryField(condition.field);
    r.cmbQuery->clear();
    if (dictionary) {
        r.cmbQuery->addItems(m_dictionary);
    }
    r.cmbQuery->setCurrentIndex(dictionary ? r.cmbQuery->findText(condition.value) : -1);
    r.cmbQuery->setEditText(dictionary ? condition.value : QString());
    r.txtQuery->setText(dictionary ? QString() : condition.value);
    r.txtQuery->setVisible(!dictionary);
    r.cmbQuery->setVisible(dictionary);
    r.cmbQ2->setEnabled(chosen);
    r.txtQuery->setEnabled(chosen);
    r.cmbQuery->setEnabled(chosen);
    m_filling = false;
    showMark(row);
}

void frmCreateQuery::showMark(int row)
{
    m_rows[row].lblQuery->setText(conditionMark(row + 1, condition(row)));
}

QueryCondition frmCreateQuery::condition(int row) const
{
    const Row& r = m_rows[row];
    QueryCondition condition;
    condition.field = r.cmbQ1->currentText();
    if (condition.field.isEmpty()) {
        return {};
    }
    condition.op = r.cmbQ2->currentText();
    condition.value = r.cmbQuery->isVisibleTo(this) ? r.cmbQuery->currentText() : r.txtQuery->text();
    return condition;
}

QueryShortcut frmCreateQuery::shortcut() const
{
    QueryShortcut shortcut;
    shortcut.name = m_txtName->text();
    shortcut.category = category();
    for (int i = 0; i < kQueryConditions; ++i) {
        shortcut.conditions[i] = condition(i);
    }
    return shortcut;
}

bool frmCreateQuery::editShortcut(const QString& name)
{
    const std::optional<StoredShortcut> stored = storedShortcut(m_ctx.queryIni(), name);
    if (!stored) {
        return false;
    }
    m_editedName = name;
    setWindowTitle(QStringLiteral("Изменение запроса"));
    m_txtName->setText(name);
    setCategory(stored->shortcut.category);
    QStringList unreadable = stored->unreadable;
    const QStringList fields = fieldsOf(category());
    for (int i = 0; i < kQueryConditions; ++i) {
        const QueryCondition& condition = stored->shortcut.conditions[i];
        if (!condition.field.isEmpty() && !fields.contains(condition.field)) {
            unreadable.append(conditionFragment(condition));
            setRow(i, {});
            continue;
        }
        setRow(i, condition);
    }
    if (!unreadable.isEmpty()) {
        m_ctx.prompter().message(
            QStringLiteral("Условие запроса не распознано и при сохранении не будет записано:\n") +
                unreadable.join(u'\n'),
            MessageStyle::Exclamation);
    }
    return true;
}

void frmCreateQuery::cmdSave_Click()
{
    const QString place = QStringLiteral("frmCreateQuery, cmdSave_Click()");
    underFaultHandler(m_ctx, place, [&] {
        const QueryShortcut query = shortcut();
        QString refusal = shortcutRefusal(query);
        if (refusal.isEmpty()) {
            try {
                refusal = saveShortcut(m_ctx.queryIni(), query, m_editedName);
            } catch (const AppError& error) {
                ReportErrorAndGoOn(m_ctx, place, error);
                return;
            }
        }
        if (!refusal.isEmpty()) {
            m_ctx.prompter().message(refusal, MessageStyle::Exclamation);
            return;
        }
        m_savedName = query.name.trimmed();
        accept();
    });
}

} // namespace vinora
