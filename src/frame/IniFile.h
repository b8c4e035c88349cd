#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>
#include <functional>
#include <optional>

namespace vinora {

// The lines of a settings file in memory. Lines that are not changed keep their bytes and
// line ends exactly as they were read, whatever those bytes are; changed and new lines are
// written in code page 1251. A name or value that code page 1251 cannot hold, or that would
// not read back as written (line breaks, blanks or quotes at its ends, the marker itself at
// its start), is written as kEncodedMarker followed by its UTF-8 bytes percent-encoded, and
// read back from that form.
class IniDocument
{
public:
    static inline const QString kEncodedMarker = QStringLiteral("%UTF8%");

    static IniDocument fromBytes(const QByteArray& bytes);
    QByteArray toBytes() const;

    // As IniFile::read and IniFile::number below.
    QString read(const QString& section, const QString& key, int bufferLength) const;
    double number(const QString& section, const QString& key, int bufferLength) const;

    bool hasSection(const QString& section) const;
    // The section names in file order, duplicates included.
    QStringList sectionNames() const;
    // The key names of a section in file order (of the first section of that name).
    QStringList keyNames(const QString& section) const;

    void write(const QString& section, const QString& key, const QString& value);
    void removeKey(const QString& section, const QString& key);
    void removeSection(const QString& section);

    bool changed() const { return m_changed; }

private:
    struct Line
    {
        QByteArray bytes; // without its line end
        QByteArray end;   // "\n", "\r\n", "\r", or nothing for a last line without one
        QString text;     // the bytes decoded
    };
    struct Section
    {
        std::optional<Line> header; // none for the lines before the first section
        QString name;
        QList<Line> lines;
        bool removed = false;
    };

    Section* findSection(const QString& name);
    const Section* findSection(const QString& name) const;
    void indexSection(qsizetype at);
    Line makeLine(const QString& text) const;

    QList<Section> m_sections;
    // Case-folded name -> sections of that name in file order; the first one counts.
    QHash<QString, QList<qsizetype>> m_index;
    QByteArray m_lineEnd = "\n"; // for new lines: the file's own
    bool m_changed = false;
};

// A section-and-key settings file in code page 1251, read and written the way the old
// profile calls did it: section and key names without regard to case, values trimmed and
// stripped of one pair of enclosing quotes, and every call going to the file itself, so
// a value written by one screen is what the next reader sees. A file that cannot be read
// behaves as an empty one for a reader.
//
// A change is a read-modify-write under a lock beside the file (another process may change
// the same file), written to a new file that replaces the old one only when every byte of
// it is on the disk. A change that cannot be made throws AppError(err::PathFileAccess) with
// the file and the reason, and leaves the old file exactly as it was.
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

    // The whole file as it stands now (empty when it cannot be read).
    IniDocument load() const;

    void write(const QString& section, const QString& key, const QString& value) const;
    void removeKey(const QString& section, const QString& key) const;
    void removeSection(const QString& section) const;

    // Several changes as one: the file is read under the lock, changed by `edit` and
    // written once, or not at all when `edit` changed nothing or threw.
    void update(const std::function<void(IniDocument&)>& edit) const;

    // For tests: the `nth` write of settings-file data from now on (1 = the next) fails
    // with the system error `error`; 0 turns the fault off.
    static void failWriteForTests(int nth, int error);

private:
    QString m_path;
};

} // namespace vinora
