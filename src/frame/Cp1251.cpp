#include "frame/Cp1251.h"

#include <algorithm>
#include <array>
#include <optional>

namespace vinora::cp1251 {
namespace {

// Unicode code points of the bytes 0x80..0xFF. The one byte the code page leaves unused
// (0x98) stands for U+0098, so every byte survives a decode and an encode.
constexpr std::array<char16_t, 128> kHighHalf = {
    0x0402, 0x0403, 0x201A, 0x0453, 0x201E, 0x2026, 0x2020, 0x2021, 0x20AC, 0x2030, 0x0409, 0x2039, 0x040A,
    0x040C, 0x040B, 0x040F, 0x0452, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014, 0x0098, 0x2122,
    0x0459, 0x203A, 0x045A, 0x045C, 0x045B, 0x045F, 0x00A0, 0x040E, 0x045E, 0x0408, 0x00A4, 0x0490, 0x00A6,
    0x00A7, 0x0401, 0x00A9, 0x0404, 0x00AB, 0x00AC, 0x00AD, 0x00AE, 0x0407, 0x00B0, 0x00B1, 0x0406, 0x0456,
    0x0491, 0x00B5, 0x00B6, 0x00B7, 0x0451, 0x2116, 0x0454, 0x00BB, 0x0458, 0x0405, 0x0455, 0x0457, 0x0410,
    0x0411, 0x0412, 0x0413, 0x0414, 0x0415, 0x0416, 0x0417, 0x0418, 0x0419, 0x041A, 0x041B, 0x041C, 0x041D,
    0x041E, 0x041F, 0x0420, 0x0421, 0x0422, 0x0423, 0x0424, 0x0425, 0x0426, 0x0427, 0x0428, 0x0429, 0x042A,
    0x042B, 0x042C, 0x042D, 0x042E, 0x042F, 0x0430, 0x0431, 0x0432, 0x0433, 0x0434, 0x0435, 0x0436, 0x0437,
    0x0438, 0x0439, 0x043A, 0x043B, 0x043C, 0x043D, 0x043E, 0x043F, 0x0440, 0x0441, 0x0442, 0x0443, 0x0444,
    0x0445, 0x0446, 0x0447, 0x0448, 0x0449, 0x044A, 0x044B, 0x044C, 0x044D, 0x044E, 0x044F,
};

std::optional<char> encodeOne(char16_t code)
{
    if (code < 0x80) {
        return static_cast<char>(code);
    }
    if (code >= 0x0410 && code <= 0x044F) { // А..я, the common case
        return static_cast<char>(0xC0 + (code - 0x0410));
    }
    for (std::size_t i = 0; i < kHighHalf.size(); ++i) {
        if (kHighHalf[i] == code) {
            return static_cast<char>(0x80 + i);
        }
    }
    return std::nullopt;
}

} // namespace

QString decode(const QByteArray& bytes)
{
    QString text;
    text.reserve(bytes.size());
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        text.append(QChar(byte < 0x80 ? char16_t(byte) : kHighHalf[byte - 0x80]));
    }
    return text;
}

QByteArray encode(QStringView text)
{
    QByteArray bytes;
    bytes.reserve(text.size());
    for (const QChar ch : text) {
        bytes.append(encodeOne(ch.unicode()).value_or('?'));
    }
    return bytes;
}

QByteArray encodeForHtml(QStringView text)
{
    // One byte a character but for the references: written in place, grown when needed.
    QByteArray bytes(text.size(), Qt::Uninitialized);
    qsizetype used = 0;
    const auto room = [&](qsizetype more) {
        if (used + more > bytes.size()) {
            bytes.resize(std::max(bytes.size() * 2, used + more));
        }
    };
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t code = text[i].unicode();
        if (const std::optional<char> byte = encodeOne(code)) {
            room(1);
            bytes.data()[used++] = *byte;
            continue;
        }
        char32_t point = code;
        if (QChar::isHighSurrogate(code) && i + 1 < text.size() && text[i + 1].isLowSurrogate()) {
            point = QChar::surrogateToUcs4(code, text[i + 1].unicode());
            ++i;
        }
        const QByteArray reference = "&#" + QByteArray::number(static_cast<uint>(point)) + ';';
        room(reference.size());
        std::copy(reference.cbegin(), reference.cend(), bytes.data() + used);
        used += reference.size();
    }
    bytes.resize(used);
    return bytes;
}

bool canEncode(QStringView text)
{
    for (const QChar ch : text) {
        if (!encodeOne(ch.unicode())) {
            return false;
        }
    }
    return true;
}

} // namespace vinora::cp1251
