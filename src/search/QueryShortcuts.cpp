#include "search/QueryShortcuts.h"

#include "frame/IniFile.h"
#include "frame/NumericPrefix.h"

#include <algorithm>
#include <climits>

namespace vinora {
namespace {

const QString kQuery = QStringLiteral("Query");
const QString kCount = QStringLiteral("Count");
const QString kName = QStringLiteral("Name");
const QString kNum = QStringLiteral("Num");
constexpr int kBuffer = 55;

} // namespace

ShortcutList shortcutList(const IniDocument& doc, int bufferLength)
{
    ShortcutList list;
    list.counted = !doc.read(kQuery, kCount, bufferLength).isEmpty();
    list.count = boundedInt(doc.number(kQuery, kCount, bufferLength), 0, INT_MAX - 1);
    for (const QString& name : doc.sectionNames()) {
        bool isNumber = false;
        const int n = name.toInt(&isNumber);
        // Only the decimal form the list writes: "01" or "+1" is not section 1.
        if (isNumber && n >= 1 && n <= list.count && QString::number(n) == name) {
            list.numbers.append(n);
        }
    }
    std::sort(list.numbers.begin(), list.numbers.end());
    list.numbers.erase(std::unique(list.numbers.begin(), list.numbers.end()), list.numbers.end());
    return list;
}

int shortcutNumber(const IniDocument& doc, const ShortcutList& list, const QString& name)
{
    const auto holdsName = [&](int n) {
        return doc.read(QString::number(n), kName, kBuffer).trimmed() == name;
    };
    const int num = boundedInt(doc.number(name, kNum, kBuffer), 0, INT_MAX);
    if (list.numbers.contains(num) && holdsName(num)) {
        return num;
    }
    const auto found = std::find_if(list.numbers.begin(), list.numbers.end(), holdsName);
    return found == list.numbers.end() ? 0 : *found;
}

QStringList shortcutNames(const IniFile& queryIni)
{
    const IniDocument doc = queryIni.load();
    const ShortcutList list = shortcutList(doc, kBuffer);
    QStringList names;
    if (!list.counted) {
        return names;
    }
    for (const int n : list.numbers) {
        const QString name = doc.read(QString::number(n), kName, kBuffer).trimmed();
        if (!name.isEmpty()) {
            names.append(name);
        }
    }
    return names;
}

std::optional<ShortcutQuery> shortcutQuery(const IniFile& queryIni, const QString& name)
{
    const IniDocument doc = queryIni.load();
    ShortcutQuery query;
    query.category = doc.read(name, QStringLiteral("Category"), kBuffer);
    if (query.category.isEmpty()) {
        return std::nullopt;
    }
    for (const char* key : {"Query1", "Query2", "Query3"}) {
        const QString condition = doc.read(name, QString::fromLatin1(key), kBuffer).trimmed();
        if (condition.size() > 1) {
            query.condition += query.condition.isEmpty() ? condition : u' ' + condition;
        }
    }
    return query;
}

bool deleteShortcut(const IniFile& queryIni, const QString& name)
{
    bool counted = true;
    queryIni.update([&](IniDocument& doc) {
        const ShortcutList list = shortcutList(doc, 5);
        if (!list.counted) {
            counted = false;
            return;
        }
        const int num = shortcutNumber(doc, list, name);
        doc.removeSection(name);
        if (num == 0) {
            return; // not in the list: nothing to renumber
        }
        doc.write(kQuery, kCount, QString::number(std::max(list.count - 1, 0)));
        doc.removeSection(QString::number(num));
        for (const int n : list.numbers) {
            if (n <= num) {
                continue;
            }
            const QString moved = doc.read(QString::number(n), kName, kBuffer).trimmed();
            doc.write(QString::number(n - 1), kName, moved);
            doc.removeSection(QString::number(n));
            if (!moved.isEmpty()) {
                doc.write(moved, kNum, QString::number(n - 1));
            }
        }
    });
    return counted;
}

} // namespace vinora
