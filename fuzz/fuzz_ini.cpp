// Settings files from outside (vinora.ini, query.ini, skipcd.ini as a user or another
// program left them). Input: three length bytes, then a section name, a key and a value
// (UTF-8), then the file. Writing the key must read back exactly, leave every other key as
// it read before and keep the bytes of the lines it did not touch; removing a section must
// leave the other sections as they were; the window's place from the file stays in bounds.
#include "frame/AppError.h"
#include "frame/IniFile.h"
#include "frame/WindowPlacement.h"

#include <QDir>
#include <QFile>
#include <QHash>
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

using Entry = std::pair<QString, QString>; // section and key, case-folded

// Each (section, key) the readers see, with what they read.
QHash<Entry, QString> everything(const IniDocument& doc)
{
    QHash<Entry, QString> values;
    for (const QString& section : doc.sectionNames()) {
        for (const QString& key : doc.keyNames(section)) {
            const Entry id{section.toCaseFolded(), key.toCaseFolded()};
            if (!values.contains(id)) {
                values.insert(id, doc.read(section, key, 1 << 20));
            }
        }
    }
    return values;
}

struct Line
{
    QByteArray text;
    QByteArray end;
    bool operator==(const Line&) const = default;
};

QList<Line> linesOf(const QByteArray& bytes)
{
    QList<Line> lines;
    qsizetype start = 0;
    while (start < bytes.size()) {
        qsizetype stop = start;
        while (stop < bytes.size() && bytes[stop] != '\n' && bytes[stop] != '\r') {
            ++stop;
        }
        const qsizetype endLength =
            stop >= bytes.size()
                ? 0
                : (bytes[stop] == '\r' && stop + 1 < bytes.size() && bytes[stop + 1] == '\n' ? 2 : 1);
        lines.append(Line{bytes.mid(start, stop - start), bytes.mid(stop, endLength)});
        start = stop + endLength;
    }
    return lines;
}

// A write changes one place: at most one old line goes, at most two new lines come, and
// all other lines keep their bytes, their ends and their order (only a last line without
// an end may gain one when something is added after it).
void checkOnePlaceChanged(const QByteArray& before, const QByteArray& after)
{
    QList<Line> old = linesOf(before);
    const QList<Line> now = linesOf(after);
    const auto same = [&](qsizetype i, const Line& line) {
        return old[i] == line || (i + 1 == old.size() && old[i].end.isEmpty() && old[i].text == line.text);
    };
    qsizetype prefix = 0;
    while (prefix < old.size() && prefix < now.size() && same(prefix, now[prefix])) {
        ++prefix;
    }
    qsizetype suffix = 0;
    while (suffix < old.size() - prefix && suffix < now.size() - prefix &&
           same(old.size() - 1 - suffix, now[now.size() - 1 - suffix])) {
        ++suffix;
    }
    if (old.size() - prefix - suffix > 1 || now.size() - prefix - suffix > 2) {
        fail("lines that were not written changed");
    }
}

QString field(const uint8_t*& data, size_t& size, size_t length)
{
    length = std::min(length, size);
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(length));
    data += length;
    size -= length;
    return text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static QTemporaryDir folder;
    const QString path = QDir(folder.path()).filePath(QStringLiteral("fuzz.ini"));
    if (size < 3) {
        return 0;
    }
    const size_t sectionLength = data[0] % 24, keyLength = data[1] % 24, valueLength = data[2] % 64;
    data += 3;
    size -= 3;
    const QString section = field(data, size, sectionLength);
    const QString key = field(data, size, keyLength);
    const QString value = field(data, size, valueLength);
    const QByteArray before(reinterpret_cast<const char*>(data), qsizetype(size));
    {
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
            return 0;
        }
        file.write(before);
    }
    const IniFile ini(path);
    for (const char* s : {"Option", "VirtualDrives", "Window", "1"}) {
        for (const char* k : {"Drive", "Image1", "Count", "Height", "Name"}) {
            (void)ini.read(QString::fromLatin1(s), QString::fromLatin1(k), 255);
            (void)ini.number(QString::fromLatin1(s), QString::fromLatin1(k), 15);
        }
    }
    const WindowPlacement placement = LoadWinPos(ini);
    const QRect screen(0, 0, 1920, 1080);
    if (!screen.contains(placedGeometry(placement, QRect(10, 10, 640, 480), screen))) {
        fail("window off the screen");
    }
    (void)placedGeometry(placement, QRect(10, 10, 640, 480), QRect());
    (void)placedState(placement);

    const QHash<Entry, QString> old = everything(ini.load());
    try {
        ini.write(section, key, value);
    } catch (const AppError&) {
        return 0; // the temporary folder is full: nothing to check
    }
    const QByteArray written = [&] {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }();
    const IniDocument doc = ini.load();
    if (doc.read(section, key, 1 << 20) != value) {
        fail("a written value does not read back as written");
    }
    const Entry writtenId{section.toCaseFolded(), key.toCaseFolded()};
    const QHash<Entry, QString> now = everything(doc);
    for (auto it = old.cbegin(); it != old.cend(); ++it) {
        if (it.key() != writtenId && now.value(it.key()) != it.value()) {
            fail("another key reads differently after a write");
        }
    }
    checkOnePlaceChanged(before, written);

    // Removing the section leaves every other section as it read.
    try {
        ini.removeSection(section);
    } catch (const AppError&) {
        return 0;
    }
    const IniDocument removed = ini.load();
    for (auto it = now.cbegin(); it != now.cend(); ++it) {
        if (it.key().first != writtenId.first &&
            removed.read(it.key().first, it.key().second, 1 << 20) != it.value()) {
            fail("a key of another section changed when a section was removed");
        }
    }
    return 0;
}
