#include "mainwindow/QueryShortcuts.h"

#include "frame/IniFile.h"
#include "frame/NumericPrefix.h"

#include <QList>
#include <algorithm>
#include <climits>

namespace vinora {
namespace {

const QString kQuery = QStringLiteral("Query");
const QString kCount = QStringLiteral("Count");
const QString kName = QStringLiteral("Name");
const QString kNum = QStringLiteral("Num");
constexpr int kBuffer = 55;

// The numbered sections the file holds, 1..count, ascending. Count is only what the file
// claims; the loops below go over these, so a Count of 9999 over three shortcuts costs three.
QList<int> numberedSections(const IniDocument& doc, int count)
{
    QList<int> numbers;
    for (const QString& name : doc.sectionNames()) {
        bool isNumber = false;
        const int n = name.toInt(&isNumber);
        // Only the decimal form the list writes: "01" or "+1" is not section 1.
        if (isNumber && n >= 1 && n <= count && QString::number(n) == name) {
            numbers.append(n);
        }
    }
    std::sort(numbers.begin(), numbers.end());
    numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
    return numbers;
}

int countOf(const IniDocument& doc, int bufferLength)
{
    return boundedInt(doc.number(kQuery, kCount, bufferLength), 0, INT_MAX - 1);
}

} // namespace

QStringList shortcutNames(const IniFile& queryIni)
{
    const IniDocument doc = queryIni.load();
    QStringList names;
    if (doc.read(kQuery, kCount, kBuffer).isEmpty()) {
        return names;
    }
    for (const int n : numberedSections(doc, countOf(doc, kBuffer))) {
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
        if (doc.read(kQuery, kCount, 5).isEmpty()) {
            counted = false;
            return;
        }
        const int count = countOf(doc, 5);
        const QList<int> present = numberedSections(doc, count);
        const auto holdsName = [&](int n) {
            return doc.read(QString::number(n), kName, kBuffer).trimmed() == name;
        };
        // Its place in the list: Num when that section names it, else where the list has it.
        int num = boundedInt(doc.number(name, kNum, kBuffer), 0, INT_MAX);
        if (!present.contains(num) || !holdsName(num)) {
            const auto found = std::find_if(present.begin(), present.end(), holdsName);
            num = found == present.end() ? 0 : *found;
        }
        doc.removeSection(name);
        if (num == 0) {
            return; // not in the list: nothing to renumber
        }
        doc.write(kQuery, kCount, QString::number(std::max(count - 1, 0)));
        doc.removeSection(QString::number(num));
        for (const int n : present) {
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
