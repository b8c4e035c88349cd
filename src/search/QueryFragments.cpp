#include "search/QueryFragments.h"

#include "frame/IniFile.h"
#include "search/QueryShortcuts.h"

#include <algorithm>

namespace vinora {
namespace {

const QString kLike = QStringLiteral("LIKE");
constexpr int kBuffer = 55;

QString queryKey(int index)
{
    return QStringLiteral("Query") + QString::number(index);
}

bool isFormed(const QueryCondition& condition)
{
    return !condition.field.isEmpty() && hasValue(condition);
}

bool isDecimal(const QString& text)
{
    return !text.isEmpty() &&
           std::all_of(text.begin(), text.end(), [](QChar c) { return c >= u'0' && c <= u'9'; });
}

// The names the file keeps for its own list: the section Query and the numbered sections.
bool isReservedName(const QString& name)
{
    return isDecimal(name) || name.compare(QStringLiteral("Query"), Qt::CaseInsensitive) == 0;
}

// The words of "And F O rest": F and O end at a blank, the rest is the remaining text.
std::optional<QStringList> splitFragment(const QString& fragment)
{
    QStringList parts;
    qsizetype at = 0;
    const QString text = fragment.trimmed();
    for (int word = 0; word < 3; ++word) {
        const qsizetype blank = text.indexOf(u' ', at);
        if (blank < 0) {
            return std::nullopt;
        }
        parts.append(text.mid(at, blank - at));
        at = blank + 1;
        while (at < text.size() && text[at] == u' ') {
            ++at;
        }
    }
    parts.append(text.mid(at));
    return parts;
}

} // namespace

QStringList queryOperators(const QString& field)
{
    QStringList operators{QStringLiteral("="), kLike};
    if (field == kNumberField) {
        operators << QStringLiteral("<") << QStringLiteral(">");
    }
    return operators;
}

bool hasValue(const QueryCondition& condition)
{
    return !condition.value.trimmed().isEmpty();
}

QString conditionMark(int index, const QueryCondition& condition)
{
    const QString mark = QString::number(index) + u'.';
    return hasValue(condition) ? mark + QStringLiteral(" - Верно") : mark;
}

QString conditionFragment(const QueryCondition& condition)
{
    const QString start = QStringLiteral("And ") + condition.field + u' ' + condition.op + u' ';
    if (condition.field == kNumberField) {
        return start + condition.value.trimmed();
    }
    const bool like = condition.op == kLike;
    QString value = condition.value;
    value.replace(u'\'', QStringLiteral("''"));
    return start + (like ? QStringLiteral("'*") : QStringLiteral("'")) + value +
           (like ? QStringLiteral("*'") : QStringLiteral("'"));
}

std::optional<QueryCondition> readFragment(const QString& fragment)
{
    const std::optional<QStringList> parts = splitFragment(fragment);
    if (!parts || (*parts)[0].compare(QStringLiteral("And"), Qt::CaseInsensitive) != 0) {
        return std::nullopt;
    }
    QueryCondition condition;
    condition.field = (*parts)[1];
    condition.op = (*parts)[2].toUpper();
    if (condition.field.isEmpty() || !queryOperators(condition.field).contains(condition.op)) {
        return std::nullopt;
    }
    QString value = (*parts)[3];
    if (!value.startsWith(u'\'')) {
        // Unquoted: a number, as "Номер" is written.
        if (!isDecimal(value)) {
            return std::nullopt;
        }
        condition.value = value;
        return condition;
    }
    if (condition.field == kNumberField || value.size() < 2 || !value.endsWith(u'\'')) {
        return std::nullopt;
    }
    value = value.mid(1, value.size() - 2);
    if (condition.op == kLike && value.size() >= 2 && value.startsWith(u'*') && value.endsWith(u'*')) {
        value = value.mid(1, value.size() - 2);
    }
    // Inside the quotes every apostrophe is doubled; a single one would end the value.
    QString plain;
    for (qsizetype i = 0; i < value.size(); ++i) {
        if (value[i] == u'\'') {
            if (i + 1 >= value.size() || value[i + 1] != u'\'') {
                return std::nullopt;
            }
            ++i;
        }
        plain.append(value[i]);
    }
    condition.value = plain;
    return condition;
}

QString shortcutRefusal(const QueryShortcut& shortcut)
{
    const QString name = shortcut.name.trimmed();
    if (name.isEmpty()) {
        return QStringLiteral("Введите название ярлыка!");
    }
    const auto& conditions = shortcut.conditions;
    for (int i = 0; i < kQueryConditions; ++i) {
        for (int j = i + 1; j < kQueryConditions; ++j) {
            if (!conditions[i].field.isEmpty() && conditions[i].field == conditions[j].field) {
                return QStringLiteral("В условии запроса дважды указано одно и то же поле!");
            }
        }
    }
    for (int i = 0; i < kQueryConditions; ++i) {
        const QueryCondition& condition = conditions[i];
        if (!condition.field.isEmpty() &&
            (!queryOperators(condition.field).contains(condition.op) || !hasValue(condition))) {
            return QStringLiteral("Укажите условие запроса (для ") + QString::number(i + 1) +
                   QStringLiteral(")!");
        }
    }
    if (std::none_of(conditions.begin(), conditions.end(), isFormed)) {
        return QStringLiteral("Хотя бы один запрос должен быть сформирован!");
    }
    // What the file can hold: a name and each condition must come back whole from its reader,
    // the name must not stand for the file's own sections, and a number goes unquoted.
    if (name.size() > kQueryIniTextLength) {
        return QStringLiteral("Название ярлыка должно быть не длиннее %1 символов!").arg(kQueryIniTextLength);
    }
    if (isReservedName(name)) {
        return QStringLiteral("Название ярлыка не может состоять из одних цифр или быть словом 'Query'. "
                              "Выберите другое название!");
    }
    for (int i = 0; i < kQueryConditions; ++i) {
        const QueryCondition& condition = conditions[i];
        if (!isFormed(condition)) {
            continue;
        }
        const QString place = QStringLiteral(" (для ") + QString::number(i + 1) + u')';
        if (condition.field == kNumberField && !isDecimal(condition.value.trimmed())) {
            return QStringLiteral("Номер диска в условии запроса") + place +
                   QStringLiteral(" должен быть целым числом!");
        }
        if (conditionFragment(condition).size() > kQueryIniTextLength) {
            return QStringLiteral("Условие запроса") + place +
                   QStringLiteral(" длиннее %1 символов. Сократите значение!").arg(kQueryIniTextLength);
        }
    }
    return {};
}

QString saveShortcut(const IniFile& queryIni, const QueryShortcut& shortcut, const QString& editedName)
{
    const QString name = shortcut.name.trimmed();
    QString refusal;
    queryIni.update([&](IniDocument& doc) {
        const ShortcutList list = shortcutList(doc, kBuffer);
        const int own = editedName.isEmpty() ? 0 : shortcutNumber(doc, list, editedName);
        for (const int n : list.numbers) {
            if (n != own && doc.read(QString::number(n), QStringLiteral("Name"), kBuffer)
                                    .trimmed()
                                    .compare(name, Qt::CaseInsensitive) == 0) {
                refusal = QStringLiteral("Запрос с таким именем уже существует. Выберите другое название!");
                return;
            }
        }
        int number = own;
        if (number == 0) {
            number = list.count + 1;
            doc.write(QStringLiteral("Query"), QStringLiteral("Count"), QString::number(number));
        }
        if (!editedName.isEmpty()) {
            doc.removeSection(editedName);
        }
        doc.removeSection(name); // what a name outside the list left behind
        doc.write(QString::number(number), QStringLiteral("Name"), name);
        doc.write(name, QStringLiteral("Num"), QString::number(number));
        doc.write(name, QStringLiteral("Category"), categoryInfo(shortcut.category).code);
        for (int i = 0; i < kQueryConditions; ++i) {
            const QueryCondition& condition = shortcut.conditions[i];
            doc.write(name, queryKey(i + 1), isFormed(condition) ? conditionFragment(condition) : QString());
        }
    });
    return refusal;
}

std::optional<StoredShortcut> storedShortcut(const IniFile& queryIni, const QString& name)
{
    const IniDocument doc = queryIni.load();
    const QString code = doc.read(name, QStringLiteral("Category"), kBuffer);
    if (code.isEmpty()) {
        return std::nullopt;
    }
    StoredShortcut stored;
    stored.shortcut.name = name;
    if (const CategoryInfo* category = categoryByCode(code.trimmed())) {
        stored.shortcut.category = category->category;
    }
    for (int i = 0; i < kQueryConditions; ++i) {
        const QString text = doc.read(name, queryKey(i + 1), kBuffer).trimmed();
        if (text.size() <= 1) {
            continue;
        }
        if (const std::optional<QueryCondition> condition = readFragment(text)) {
            stored.shortcut.conditions[i] = *condition;
        } else {
            stored.unreadable.append(text);
        }
    }
    return stored;
}

QString nextShortcutName(const IniFile& queryIni)
{
    const QStringList names = shortcutNames(queryIni);
    for (int n = 1;; ++n) {
        const QString name = QStringLiteral("Запрос") + QString::number(n);
        if (!names.contains(name, Qt::CaseInsensitive)) {
            return name;
        }
    }
}

} // namespace vinora
