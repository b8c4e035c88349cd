#include "frame/IniFile.h"

#include "frame/AppError.h"
#include "frame/Cp1251.h"
#include "frame/NumericPrefix.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStringDecoder>
#include <atomic>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vinora {
namespace {

// ---- names and values in the file ----------------------------------------------------

enum class Part { Section, Key, Value };

bool sameName(const QString& a, const QString& b)
{
    return a.compare(b, Qt::CaseInsensitive) == 0;
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

// What a reader gets back from `text` written as it stands.
QString readsBackAs(const QString& text, Part part)
{
    const QString trimmed = text.trimmed();
    switch (part) {
    case Part::Section:
        return trimmed.contains(u']') ? QString() : trimmed;
    case Part::Key:
        return trimmed.contains(u'=') || trimmed.startsWith(u'[') ? QString() : trimmed;
    case Part::Value:
        return unquoted(trimmed);
    }
    return {};
}

bool needsEncoding(const QString& text, Part part)
{
    return !cp1251::canEncode(text) || text.startsWith(IniDocument::kEncodedMarker) || text.contains(u'\n') ||
           text.contains(u'\r') || readsBackAs(text, part) != text || (part != Part::Value && text.isEmpty());
}

QString encoded(const QString& text, Part part)
{
    if (!needsEncoding(text, part)) {
        return text;
    }
    return IniDocument::kEncodedMarker + QString::fromLatin1(text.toUtf8().toPercentEncoding("/:,+@"));
}

int hexDigit(QChar ch)
{
    const char16_t c = ch.unicode();
    if (c >= u'0' && c <= u'9') {
        return c - u'0';
    }
    if (c >= u'A' && c <= u'F') {
        return c - u'A' + 10;
    }
    if (c >= u'a' && c <= u'f') {
        return c - u'a' + 10;
    }
    return -1;
}

// The text behind the marker, or nothing when it is not exactly the form we write.
std::optional<QString> decoded(QStringView text)
{
    if (!text.startsWith(IniDocument::kEncodedMarker)) {
        return std::nullopt;
    }
    QByteArray bytes;
    for (qsizetype i = IniDocument::kEncodedMarker.size(); i < text.size(); ++i) {
        const QChar ch = text[i];
        if (ch.unicode() >= 0x80 || ch.isSpace()) {
            return std::nullopt;
        }
        if (ch != u'%') {
            bytes.append(static_cast<char>(ch.unicode()));
            continue;
        }
        const int high = i + 2 < text.size() ? hexDigit(text[i + 1]) : -1;
        const int low = i + 2 < text.size() ? hexDigit(text[i + 2]) : -1;
        if (high < 0 || low < 0) {
            return std::nullopt;
        }
        bytes.append(static_cast<char>(high * 16 + low));
        i += 2;
    }
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString result = utf8.decode(bytes);
    if (utf8.hasError()) {
        return std::nullopt;
    }
    return result;
}

// The section name of a "[name]" line, or nothing for any other line.
std::optional<QString> sectionOf(const QString& line)
{
    const QString trimmed = line.trimmed();
    if (!trimmed.startsWith(u'[')) {
        return std::nullopt;
    }
    const qsizetype close = trimmed.indexOf(u']');
    const QString name = (close < 0 ? trimmed.mid(1) : trimmed.mid(1, close - 1)).trimmed();
    return decoded(name).value_or(name);
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
    const QString key = line.left(eq).trimmed();
    const QString value = line.mid(eq + 1).trimmed();
    return KeyLine{decoded(key).value_or(key), decoded(value).value_or(unquoted(value))};
}

QString folded(const QString& name)
{
    return name.toCaseFolded();
}

// At most `length` characters, without half of a surrogate pair at the end.
QString cut(const QString& text, qsizetype length)
{
    if (text.size() <= length) {
        return text;
    }
    if (length > 0 && text[length - 1].isHighSurrogate()) {
        --length;
    }
    return text.left(length);
}

// ---- the file on the disk ---------------------------------------------------------------

std::atomic<int> g_failAt{0};
std::atomic<int> g_failError{0};

QString reasonText(int error)
{
    switch (error) {
    case ENOSPC:
        return QStringLiteral("на диске нет свободного места");
    case EDQUOT:
        return QStringLiteral("превышена дисковая квота");
    case EACCES:
    case EPERM:
        return QStringLiteral("нет прав на запись");
    case EROFS:
        return QStringLiteral("диск доступен только для чтения");
    case ENOENT:
    case ENOTDIR:
        return QStringLiteral("папка не найдена");
    case EISDIR:
        return QStringLiteral("на месте файла стоит папка");
    case EIO:
        return QStringLiteral("ошибка ввода-вывода");
    default:
        return QStringLiteral("ошибка системы: ") + QString::fromLocal8Bit(std::strerror(error));
    }
}

[[noreturn]] void failWrite(const QString& path, int error)
{
    throw AppError(err::PathFileAccess, QStringLiteral("Не удалось сохранить файл настроек \"") +
                                            QDir::toNativeSeparators(path) + QStringLiteral("\": ") +
                                            reasonText(error) + QStringLiteral(". Файл остался прежним."));
}

[[noreturn]] void failRead(const QString& path, int error)
{
    throw AppError(err::PathFileAccess, QStringLiteral("Не удалось прочитать файл настроек \"") +
                                            QDir::toNativeSeparators(path) + QStringLiteral("\": ") +
                                            reasonText(error) + QStringLiteral(". Файл остался прежним."));
}

// The file's bytes; nothing for a missing file, the error number for one that is there
// but cannot be read.
struct ReadResult
{
    QByteArray bytes;
    int error = 0;
};

ReadResult readBytes(const QString& path)
{
    ReadResult result;
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        result.error = errno == ENOENT ? 0 : errno;
        return result;
    }
    char buffer[65536];
    for (;;) {
        const ssize_t got = ::read(fd, buffer, sizeof buffer);
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got < 0) {
            result.error = errno;
            result.bytes.clear();
            break;
        }
        if (got == 0) {
            break;
        }
        result.bytes.append(buffer, got);
    }
    ::close(fd);
    return result;
}

// One write(2), or the fault a test asked for.
ssize_t writeSome(int fd, const char* data, size_t size)
{
    if (g_failAt.load() > 0 && g_failAt.fetch_sub(1) == 1) {
        errno = g_failError.load();
        return -1;
    }
    return ::write(fd, data, size);
}

// The file is written beside the old one, flushed to the disk and renamed over it, so the
// old file stays whole until the new one is.
void replaceFile(const QString& path, const QByteArray& bytes)
{
    const QFileInfo info(path);
    const QString temporary =
        info.dir().filePath(QStringLiteral(".") + info.fileName() + QStringLiteral(".") +
                            QString::number(::getpid()) + QStringLiteral(".new"));
    const QByteArray temporaryName = QFile::encodeName(temporary);
    ::unlink(temporaryName.constData()); // a leftover of an earlier run of this process id
    const int fd = ::open(temporaryName.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (fd < 0) {
        failWrite(path, errno);
    }
    const auto fail = [&](int error) {
        ::close(fd);
        ::unlink(temporaryName.constData());
        failWrite(path, error);
    };
    struct stat old
    {
    };
    if (::stat(QFile::encodeName(path).constData(), &old) == 0) {
        ::fchmod(fd, old.st_mode & 07777); // keep the old file's permissions
    }
    constexpr qsizetype kChunk = 4096;
    for (qsizetype done = 0; done < bytes.size();) {
        const ssize_t put = writeSome(fd, bytes.constData() + done,
                                      static_cast<size_t>(std::min(kChunk, bytes.size() - done)));
        if (put < 0 && errno == EINTR) {
            continue;
        }
        if (put <= 0) {
            fail(put < 0 ? errno : ENOSPC);
        }
        done += put;
    }
    if (::fsync(fd) != 0) {
        fail(errno);
    }
    if (::close(fd) != 0) {
        const int error = errno;
        ::unlink(temporaryName.constData());
        failWrite(path, error);
    }
    if (::rename(temporaryName.constData(), QFile::encodeName(path).constData()) != 0) {
        const int error = errno;
        ::unlink(temporaryName.constData());
        failWrite(path, error);
    }
}

// The file a change goes to: the target of a link, so the link stays.
QString targetOf(const QString& path)
{
    const QFileInfo info(path);
    return info.isSymLink() ? info.symLinkTarget() : path;
}

// Serialises read-modify-write between processes. Without a lock file (a read-only folder)
// the change goes on unlocked: its write fails there anyway.
class FileLock
{
public:
    explicit FileLock(const QString& path)
    {
        const QFileInfo info(path);
        const QByteArray name = QFile::encodeName(
            info.dir().filePath(QStringLiteral(".") + info.fileName() + QStringLiteral(".lock")));
        m_fd = ::open(name.constData(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
        if (m_fd < 0) {
            return;
        }
        while (::flock(m_fd, LOCK_EX) != 0 && errno == EINTR) {
        }
    }
    ~FileLock()
    {
        if (m_fd >= 0) {
            ::close(m_fd); // releases the lock
        }
    }
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

private:
    int m_fd = -1;
};

} // namespace

// ---- IniDocument --------------------------------------------------------------------------

IniDocument IniDocument::fromBytes(const QByteArray& bytes)
{
    IniDocument doc;
    doc.m_sections.append(Section{});
    bool endKnown = false;
    qsizetype start = 0;
    while (start < bytes.size()) {
        qsizetype stop = start;
        while (stop < bytes.size() && bytes[stop] != '\n' && bytes[stop] != '\r') {
            ++stop;
        }
        Line line;
        line.bytes = bytes.mid(start, stop - start);
        if (stop < bytes.size()) {
            const bool crlf = bytes[stop] == '\r' && stop + 1 < bytes.size() && bytes[stop + 1] == '\n';
            line.end = bytes.mid(stop, crlf ? 2 : 1);
        }
        if (!endKnown && !line.end.isEmpty()) {
            doc.m_lineEnd = line.end;
            endKnown = true;
        }
        start = stop + line.end.size();
        line.text = cp1251::decode(line.bytes);
        if (const auto name = sectionOf(line.text)) {
            Section section;
            section.name = *name;
            section.header = std::move(line);
            doc.m_sections.append(std::move(section));
            doc.indexSection(doc.m_sections.size() - 1);
        } else {
            doc.m_sections.last().lines.append(std::move(line));
        }
    }
    return doc;
}

QByteArray IniDocument::toBytes() const
{
    QList<const Line*> lines;
    for (const Section& section : m_sections) {
        if (section.removed) {
            continue;
        }
        if (section.header) {
            lines.append(&*section.header);
        }
        for (const Line& line : section.lines) {
            lines.append(&line);
        }
    }
    QByteArray bytes;
    for (qsizetype i = 0; i < lines.size(); ++i) {
        bytes += lines[i]->bytes;
        // A last line without an end keeps it so; one that gets a successor needs an end.
        bytes += lines[i]->end.isEmpty() && i + 1 < lines.size() ? m_lineEnd : lines[i]->end;
    }
    return bytes;
}

void IniDocument::indexSection(qsizetype at)
{
    QList<qsizetype>& list = m_index[folded(m_sections[at].name)];
    list.insert(std::lower_bound(list.begin(), list.end(), at), at);
}

IniDocument::Section* IniDocument::findSection(const QString& name)
{
    const auto found = m_index.constFind(folded(name));
    return found == m_index.cend() || found->isEmpty() ? nullptr : &m_sections[found->first()];
}

const IniDocument::Section* IniDocument::findSection(const QString& name) const
{
    const auto found = m_index.constFind(folded(name));
    return found == m_index.cend() || found->isEmpty() ? nullptr : &m_sections[found->first()];
}

IniDocument::Line IniDocument::makeLine(const QString& text) const
{
    Line line;
    line.text = text;
    line.bytes = cp1251::encode(text);
    line.end = m_lineEnd;
    return line;
}

QString IniDocument::read(const QString& section, const QString& key, int bufferLength) const
{
    if (bufferLength <= 1) {
        return {};
    }
    const Section* found = findSection(section);
    if (found == nullptr) {
        return {};
    }
    for (const Line& line : found->lines) {
        const auto entry = keyOf(line.text);
        if (entry && sameName(entry->key, key)) {
            return cut(entry->value, bufferLength - 1);
        }
    }
    return {};
}

double IniDocument::number(const QString& section, const QString& key, int bufferLength) const
{
    return numericPrefix(read(section, key, bufferLength));
}

bool IniDocument::hasSection(const QString& section) const
{
    return findSection(section) != nullptr;
}

QStringList IniDocument::sectionNames() const
{
    QStringList names;
    for (const Section& section : m_sections) {
        if (!section.removed && section.header) {
            names.append(section.name);
        }
    }
    return names;
}

QStringList IniDocument::keyNames(const QString& section) const
{
    QStringList names;
    if (const Section* found = findSection(section)) {
        for (const Line& line : found->lines) {
            if (const auto entry = keyOf(line.text)) {
                names.append(entry->key);
            }
        }
    }
    return names;
}

void IniDocument::write(const QString& section, const QString& key, const QString& value)
{
    const QString entry = encoded(key, Part::Key) + u'=' + encoded(value, Part::Value);
    Section* found = findSection(section);
    if (found == nullptr) {
        Section added;
        added.name = section;
        added.header = makeLine(u'[' + encoded(section, Part::Section) + u']');
        added.lines.append(makeLine(entry));
        m_sections.append(std::move(added));
        indexSection(m_sections.size() - 1);
        m_changed = true;
        return;
    }
    for (Line& line : found->lines) {
        const auto old = keyOf(line.text);
        if (old && sameName(old->key, key)) {
            if (old->value == value && old->key == key) {
                return; // the same line again: its bytes stay
            }
            const QByteArray end = line.end;
            line = makeLine(entry);
            line.end = end;
            m_changed = true;
            return;
        }
    }
    // After the last non-blank line of the section, so blank separators stay below it.
    qsizetype insertAt = found->lines.size();
    while (insertAt > 0 && found->lines[insertAt - 1].text.trimmed().isEmpty()) {
        --insertAt;
    }
    found->lines.insert(insertAt, makeLine(entry));
    m_changed = true;
}

void IniDocument::removeKey(const QString& section, const QString& key)
{
    Section* found = findSection(section);
    if (found == nullptr) {
        return;
    }
    for (qsizetype i = 0; i < found->lines.size(); ++i) {
        const auto entry = keyOf(found->lines[i].text);
        if (entry && sameName(entry->key, key)) {
            found->lines.removeAt(i);
            m_changed = true;
            return;
        }
    }
}

void IniDocument::removeSection(const QString& section)
{
    const auto found = m_index.find(folded(section));
    if (found == m_index.end() || found->isEmpty()) {
        return;
    }
    m_sections[found->takeFirst()].removed = true;
    m_changed = true;
}

// ---- IniFile --------------------------------------------------------------------------------

QString IniFile::read(const QString& section, const QString& key, int bufferLength) const
{
    if (bufferLength <= 1) {
        return {};
    }
    return load().read(section, key, bufferLength);
}

double IniFile::number(const QString& section, const QString& key, int bufferLength) const
{
    return numericPrefix(read(section, key, bufferLength));
}

IniDocument IniFile::load() const
{
    return IniDocument::fromBytes(readBytes(m_path).bytes);
}

void IniFile::update(const std::function<void(IniDocument&)>& edit) const
{
    const QString target = targetOf(m_path);
    const FileLock lock(target);
    const ReadResult old = readBytes(target);
    if (old.error != 0) {
        failRead(m_path, old.error); // writing now would lose what could not be read
    }
    IniDocument doc = IniDocument::fromBytes(old.bytes);
    edit(doc);
    if (doc.changed()) {
        replaceFile(target, doc.toBytes());
    }
}

void IniFile::write(const QString& section, const QString& key, const QString& value) const
{
    update([&](IniDocument& doc) { doc.write(section, key, value); });
}

void IniFile::removeKey(const QString& section, const QString& key) const
{
    update([&](IniDocument& doc) { doc.removeKey(section, key); });
}

void IniFile::removeSection(const QString& section) const
{
    update([&](IniDocument& doc) { doc.removeSection(section); });
}

void IniFile::failWriteForTests(int nth, int error)
{
    g_failError.store(error);
    g_failAt.store(nth);
}

} // namespace vinora
