#pragma once

#include <QString>

namespace vinora {

// A section-and-key settings file in code page 1251, read and written the way the old
// profile calls did it: section and key names without regard to case, values trimmed and
// stripped of one pair of enclosing quotes, and every call going to the file itself, so
// a value written by one screen is what the next reader sees. A file that cannot be read
// behaves as an empty one; a failed write changes nothing and says nothing.
class IniFile
{
public:
    explicit IniFile(QString path) : m_path(std::move(path)) {}

    const QString& path() const { return m_path; }

    // The value as a reader with a buffer of `bufferLength` characters receives it: at most
    // bufferLength - 1 characters. A missing key and an empty value both give the empty
    // text, as the old call returned 0 for both.
    QString read(const QString& section, const QString& key, int bufferLength) const;

    // True when the reader receives any character at all (the call returned non-zero).
    bool has(const QString& section, const QString& key, int bufferLength) const
    {
        return !read(section, key, bufferLength).isEmpty();
    }

    // The numeric prefix of the value (0 when missing or not a number).
    double number(const QString& section, const QString& key, int bufferLength) const;

    void write(const QString& section, const QString& key, const QString& value) const;
    void removeKey(const QString& section, const QString& key) const;
    void removeSection(const QString& section) const;

private:
    QString m_path;
};

} // namespace vinora
