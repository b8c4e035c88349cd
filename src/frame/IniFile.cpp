#include "frame/IniFile.h"

#include "frame/Cp1251.h"
#include "frame/NumericPrefix.h"

#include <QFile>
#include <QSaveFile>
#include <QStringList>
#include <optional>

namespace vinora {
namespace {

QStringList readLines(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return {};
    }
    QString text = cp1251::decode(file.readAll());
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    text.replace(u'\r', u'\n');
    QStringList lines = text.split(u'\n');
    if (!lines.isEmpty() && lines.last().isEmpty()) {
        lines.removeLast();
    }
    return lines;
}

void writeLines(const QString& path, const QStringList& lines)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) {
        return;
    }
    QString text = lines.join(u'\n');
    if (!lines.isEmpty()) {
        text.append(u'\n');
    }
    file.write(cp1251::encode(text));
    file.commit();
}

// The section name of a "[name]" line, or nothing for any other line.
std::optional<QString> sectionOf(const QString& line)
{
    const QString trimmed = line.trimmed();
    if (!trimmed.startsWith(u'[')) {
        return std::nullopt;
    }
    const qsizetype close = trimmed.indexOf(u']');
    return (close < 0 ? trimmed.mid(1) : trimmed.mid(1, close - 1)).trimmed();
}

bool sameName(const QString& a, const QString& b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
}

struct KeyLine
{
    QString key;
    QString value;
};

std::optional<KeyLine> keyOf(const QString& line)
{
    const qsizetype eq = line.indexOf(u'=');
    if (eq < 0) {
        return std::nullopt;
    }
    return KeyLine{line.left(eq).trimmed(), line.mid(eq + 1).trimmed()};
}

// Line ranges of a section: the header line and one past its last line.
struct SectionRange
{
    qsizetype header = -1;
    qsizetype end = -1;
};

SectionRange findSection(const QStringList& lines, const QString& section)
{
    SectionRange range;
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const auto name = sectionOf(lines[i]);
        if (!name) {
            continue;
        }
        if (range.header >= 0) {
            range.end = i;
            return range;
        }
        if (sameName(*name, section)) {
            range.header = i;
        }
    }
    if (range.header >= 0) {
        range.end = lines.size();
    }
    return range;
}

qsizetype findKey(const QStringList& lines, const SectionRange& range, const QString& key)
{
    for (qsizetype i = range.header + 1; i < range.end; ++i) {
        const auto entry = keyOf(lines[i]);
        if (entry && sameName(entry->key, key)) {
            return i;
        }
    }
    return -1;
}

QString unquoted(const QString& value)
{
    if (value.size() >= 2) {
        const QChar first = value.front();
        if ((first == u'"' || first == u'\'') && value.back() == first) {
            return value.mid(1, value.size() - 2);
        }
    }
    return value;
}

} // namespace

QString IniFile::read(const QString& section, const QString& key, int bufferLength) const
{
    if (bufferLength <= 1) {
        return {};
    }
    const QStringList lines = readLines(m_path);
    const SectionRange range = findSection(lines, section);
    if (range.header < 0) {
        return {};
    }
    const qsizetype at = findKey(lines, range, key);
    if (at < 0) {
        return {};
    }
    return unquoted(keyOf(lines[at])->value).left(bufferLength - 1);
}

double IniFile::number(const QString& section, const QString& key, int bufferLength) const
{
    return numericPrefix(read(section, key, bufferLength));
}

void IniFile::write(const QString& section, const QString& key, const QString& value) const
{
    QStringList lines = readLines(m_path);
    const QString entry = key + u'=' + value;
    const SectionRange range = findSection(lines, section);
    if (range.header < 0) {
        lines.append(u'[' + section + u']');
        lines.append(entry);
    } else if (const qsizetype at = findKey(lines, range, key); at >= 0) {
        lines[at] = entry;
    } else {
        // After the last non-blank line of the section, so blank separators stay below it.
        qsizetype insertAt = range.end;
        while (insertAt > range.header + 1 && lines[insertAt - 1].trimmed().isEmpty()) {
            --insertAt;
        }
        lines.insert(insertAt, entry);
    }
    writeLines(m_path, lines);
}

void IniFile::removeKey(const QString& section, const QString& key) const
{
    QStringList lines = readLines(m_path);
    const SectionRange range = findSection(lines, section);
    if (range.header < 0) {
        return;
    }
    if (const qsizetype at = findKey(lines, range, key); at >= 0) {
        lines.removeAt(at);
        writeLines(m_path, lines);
    }
}

void IniFile::removeSection(const QString& section) const
{
    QStringList lines = readLines(m_path);
    const SectionRange range = findSection(lines, section);
    if (range.header < 0) {
        return;
    }
    lines.remove(range.header, range.end - range.header);
    writeLines(m_path, lines);
}

} // namespace vinora
