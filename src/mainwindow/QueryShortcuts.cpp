#include "mainwindow/QueryShortcuts.h"

#include "frame/IniFile.h"

namespace vinora {
namespace {

const QString kQuery = QStringLiteral("Query");
const QString kCount = QStringLiteral("Count");
const QString kName = QStringLiteral("Name");
const QString kNum = QStringLiteral("Num");
constexpr int kBuffer = 55;

} // namespace

QStringList shortcutNames(const IniFile& queryIni)
{
    QStringList names;
    const QString count = queryIni.read(kQuery, kCount, kBuffer);
    if (count.isEmpty()) {
        return names;
    }
    const int total = std::clamp(static_cast<int>(queryIni.number(kQuery, kCount, kBuffer)), 0, 999);
    for (int n = 1; n <= total; ++n) {
        const QString name = queryIni.read(QString::number(n), kName, kBuffer).trimmed();
        if (!name.isEmpty()) {
            names.append(name);
        }
    }
    return names;
}

std::optional<ShortcutQuery> shortcutQuery(const IniFile& queryIni, const QString& name)
{
    ShortcutQuery query;
    query.category = queryIni.read(name, QStringLiteral("Category"), kBuffer);
    if (query.category.isEmpty()) {
        return std::nullopt;
    }
    for (const char* key : {"Query1", "Query2", "Query3"}) {
        const QString condition = queryIni.read(name, QString::fromLatin1(key), kBuffer).trimmed();
        if (condition.size() > 1) {
            query.condition += query.condition.isEmpty() ? condition : u' ' + condition;
        }
    }
    return query;
}

bool deleteShortcut(const IniFile& queryIni, const QString& name)
{
    if (queryIni.read(kQuery, kCount, 5).isEmpty()) {
        return false;
    }
    const int count = static_cast<int>(queryIni.number(kQuery, kCount, 5));
    queryIni.write(kQuery, kCount, QString::number(count - 1));
    const int num = static_cast<int>(queryIni.number(name, kNum, kBuffer));
    queryIni.removeSection(QString::number(num));
    queryIni.removeSection(name);
    for (int n = num + 1; n <= count; ++n) {
        const QString moved = queryIni.read(QString::number(n), kName, kBuffer).trimmed();
        queryIni.write(QString::number(n - 1), kName, moved);
        queryIni.removeSection(QString::number(n));
        queryIni.write(moved, kNum, QString::number(n - 1));
    }
    return true;
}

} // namespace vinora
