// The ID3v1 tag at the end of MP3 files from a disc: the input is the file's last bytes
// and its length. Artist and title come out cleaned (no zero byte, no double quote, no
// square bracket, no blanks at the ends), at most 30 characters, and the comment of the
// file list at most 50.
#include "contents/MP3TagEditor.h"

#include <QByteArray>
#include <cstdint>
#include <cstdlib>

using namespace vinora;

namespace {

void checkField(const QString& text)
{
    if (text.size() > 30 || text.contains(QChar(0)) || text.contains(u'"') || text.contains(u'[') ||
        text.contains(u']') || text != text.trimmed()) {
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 2) {
        return 0;
    }
    // The first two bytes choose the file's length against the bytes read from its end.
    const qint64 length = qint64(data[0]) << 8 | data[1];
    const QByteArray tail(reinterpret_cast<const char*>(data + 2), qsizetype(size - 2));
    MP3TagEditor tag;
    const bool read = tag.read(length, tail);
    if (length <= 128 && (!read || tag.hasTag())) {
        std::abort(); // a file of 128 bytes or less is not read
    }
    if (read && length > 128 && tail.size() >= 128 && tag.hasTag() != tail.right(128).startsWith("TAG")) {
        std::abort();
    }
    if (!tag.hasTag() && (!tag.artist().isEmpty() || !tag.title().isEmpty())) {
        std::abort();
    }
    checkField(tag.artist());
    checkField(tag.title());
    if (mp3Comment(tag).size() > 50) {
        std::abort();
    }
    return 0;
}
