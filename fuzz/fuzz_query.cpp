// query.ini from outside, through the shortcut list, the shortcut's filter, the editor's
// reading of its conditions and the deletion with renumbering. The list is bounded by the
// sections the file holds; a deletion takes exactly the deleted name out of the list; a
// filter that is accepted renders only fields of the catalogue, known operators and bound
// values; a condition the editor reads back is written again as the same condition.
#include "catalogue/CatalogueQuery.h"
#include "frame/AppError.h"
#include "frame/IniFile.h"
#include "search/QueryFragments.h"
#include "search/QueryShortcuts.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

using namespace vinora;

namespace {

[[noreturn]] void fail(const char* what)
{
    std::fprintf(stderr, "invariant broken: %s\n", what);
    std::abort();
}

void checkFilter(const QString& text)
{
    for (const Category category : {Category::Audio, Category::Computer, Category::Dvd}) {
        const CatalogueKind& kind = catalogueKind(category);
        const std::optional<CatalogueFilter> filter = parseFilter(kind, text);
        if (!filter) {
            continue;
        }
        QSet<QString> names{kind.dictionaryTable, kind.dictionaryKey, kind.info().table, kind.info().keyField,
                            QStringLiteral("Номер")};
        for (const QString& own : kind.fields()) {
            names.insert(own);
        }
        const BuiltQuery query = buildCatalogueQuery(kind, *filter, 0, false);
        if (query.values.size() != filter->conditions.size() ||
            query.sql.count(u'?') != query.values.size() || query.sql.contains(u'\'')) {
            fail("a value of a filter is not bound");
        }
        // Every quoted name in the statement is one of the catalogue's own.
        static const QRegularExpression quotedName(QStringLiteral("\"((?:[^\"]|\"\")*)\""));
        for (auto match = quotedName.globalMatch(query.sql); match.hasNext();) {
            if (!names.contains(match.next().captured(1))) {
                fail("a name outside the catalogue reached the statement");
            }
        }
        static const QRegularExpression condition(
            QStringLiteral("^(?:(?:AND|OR) )?[td]\\.\"[^\"]+\" (?:<=|>=|<>|=|<|>|LIKE) \\?$"));
        const qsizetype where = query.sql.indexOf(QStringLiteral(" WHERE ("));
        const qsizetype order = query.sql.indexOf(QStringLiteral(") ORDER BY "));
        if (filter->conditions.isEmpty() != (where < 0)) {
            fail("conditions and WHERE disagree");
        }
        if (where >= 0) {
            const QString body = query.sql.mid(where + 8, order - where - 8);
            static const QRegularExpression split(QStringLiteral(" \\?(?= )"));
            QStringList parts = body.split(split);
            for (qsizetype i = 0; i + 1 < parts.size(); ++i) {
                parts[i] += QStringLiteral(" ?");
            }
            for (QString part : parts) {
                if (!condition.match(part.trimmed()).hasMatch()) {
                    fail("a condition outside the known fields and operators");
                }
            }
        }
    }
}

void checkReadBack(const QString& fragment)
{
    const std::optional<QueryCondition> condition = readFragment(fragment);
    if (condition && readFragment(conditionFragment(*condition)) != condition) {
        fail("a condition read back is not written as the same condition");
    }
}

bool isNumberName(const QString& name)
{
    bool ok = false;
    const int n = name.toInt(&ok);
    return ok && QString::number(n) == name;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static QTemporaryDir folder;
    const QString path = QDir(folder.path()).filePath(QStringLiteral("query.ini"));
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    {
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
            return 0;
        }
        file.write(bytes);
    }
    const IniFile ini(path);
    const IniDocument doc = ini.load();
    const QStringList names = shortcutNames(ini);
    if (names.size() > doc.sectionNames().size()) {
        fail("more shortcuts listed than sections in the file");
    }
    for (const QString& name : names.mid(0, 4)) {
        if (const auto query = shortcutQuery(ini, name)) {
            checkFilter(query->condition);
        }
        if (const auto stored = storedShortcut(ini, name)) {
            for (const QueryCondition& condition : stored->shortcut.conditions) {
                if (!condition.field.isEmpty()) {
                    checkReadBack(conditionFragment(condition));
                }
            }
        }
    }
    if (bytes.size() < 2048) {
        checkFilter(QString::fromUtf8(bytes));
        checkReadBack(QString::fromUtf8(bytes));
    }
    if (names.isEmpty()) {
        return 0;
    }

    // The deletion of one of the listed names, picked by the input.
    const QString victim = names[size % names.size()];
    QSet<QString> numbered;
    // The list reads Count with a longer buffer than the deletion: only where both agree is
    // the list after the deletion foretold exactly.
    bool plain = !isNumberName(victim) && QSet<QString>(names.begin(), names.end()).size() == names.size() &&
                 doc.read(QStringLiteral("Query"), QStringLiteral("Count"), 5) ==
                     doc.read(QStringLiteral("Query"), QStringLiteral("Count"), 55);
    for (const QString& section : doc.sectionNames()) {
        if (isNumberName(section) && !numbered.contains(section)) {
            numbered.insert(section);
        } else if (isNumberName(section)) {
            plain = false; // a second section of one number: the old one shows once the first goes
        }
    }
    try {
        if (!deleteShortcut(ini, victim)) {
            fail("a listed shortcut without a Count");
        }
    } catch (const AppError&) {
        return 0; // the temporary folder is full: nothing to check
    }
    const QStringList after = shortcutNames(ini);
    if (plain) {
        QStringList expected = names;
        expected.removeOne(victim);
        if (after != expected) {
            fail("deletion did not take exactly the shortcut out of the list");
        }
    }
    if (ini.load().sectionNames().size() > doc.sectionNames().size() + names.size() + 1) {
        fail("deletion grew the file");
    }
    return 0;
}
