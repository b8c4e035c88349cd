#include "frame/TextRules.h"

#include <QLocale>
#include <algorithm>
#include <array>

namespace vinora {
namespace {
constexpr int kBackspace = 8;

constexpr char16_t kFirstPrintable = 0x20;
constexpr char16_t kLastPrintable = 0x7E;

bool printable(char16_t code)
{
    return code >= kFirstPrintable && code <= kLastPrintable;
}

char16_t codeOf(QChar c)
{
    return c.unicode();
}

char16_t codeOf(char c)
{
    return static_cast<unsigned char>(c);
}

// The place of each printable ASCII character in the collator's order, the upper and lower
// case of a letter sharing theirs, taken from the collator itself. These characters weigh
// one place each and never combine, and case is ignored, so two texts made of them alone
// are ordered place by place, the shorter first when one begins the other.
const std::array<quint8, 128>& asciiPlaces()
{
    static const std::array<quint8, 128> places = [] {
        const QCollator collator = textCollator();
        std::array<char16_t, kLastPrintable - kFirstPrintable + 1> codes{};
        for (std::size_t i = 0; i < codes.size(); ++i) {
            codes[i] = static_cast<char16_t>(kFirstPrintable + i);
        }
        const auto order = [&collator](char16_t a, char16_t b) {
            return collator.compare(QStringView(&a, 1), QStringView(&b, 1));
        };
        std::stable_sort(codes.begin(), codes.end(), [&](char16_t a, char16_t b) { return order(a, b) < 0; });
        std::array<quint8, 128> result{};
        quint8 place = 0;
        for (std::size_t i = 0; i < codes.size(); ++i) {
            if (i == 0 || order(codes[i - 1], codes[i]) != 0) {
                ++place;
            }
            result[codes[i]] = place;
        }
        return result;
    }();
    return places;
}

template <typename Text> bool allPrintable(Text text)
{
    return std::all_of(text.begin(), text.end(), [](auto c) { return printable(codeOf(c)); });
}

// True when the collator cannot take the text for the empty one: it holds a character
// that weighs something (printable ASCII, or a letter of the basic Cyrillic range
// U+0400..U+045F; the block's combining marks are left to the collator).
bool weighs(QStringView text)
{
    return std::any_of(text.begin(), text.end(), [](QChar c) {
        return printable(c.unicode()) || (c.unicode() >= 0x400 && c.unicode() <= 0x45F);
    });
}

bool weighs(QByteArrayView text)
{
    for (qsizetype i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (printable(byte)) {
            return true;
        }
        // U+0400..U+043F are D0 80..BF, U+0440..U+045F are D1 80..9F.
        const auto next = i + 1 < text.size() ? static_cast<unsigned char>(text[i + 1]) : 0;
        if ((byte == 0xD0 && next >= 0x80 && next <= 0xBF) ||
            (byte == 0xD1 && next >= 0x80 && next <= 0x9F)) {
            return true;
        }
    }
    return false;
}

template <typename Text> std::optional<int> quickOrder(Text a, Text b)
{
    if (a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin())) {
        return 0;
    }
    if (a.isEmpty() || b.isEmpty()) {
        if (weighs(a.isEmpty() ? b : a)) {
            return a.isEmpty() ? -1 : 1;
        }
        return std::nullopt;
    }
    if (!allPrintable(a) || !allPrintable(b)) {
        return std::nullopt;
    }
    const std::array<quint8, 128>& places = asciiPlaces();
    const qsizetype common = std::min(a.size(), b.size());
    for (qsizetype i = 0; i < common; ++i) {
        const quint8 placeA = places[codeOf(a[i])];
        const quint8 placeB = places[codeOf(b[i])];
        if (placeA != placeB) {
            return placeA < placeB ? -1 : 1;
        }
    }
    return a.size() == b.size() ? 0 : a.size() < b.size() ? -1 : 1;
}

} // namespace

QString CleanText(const QString& text)
{
    QString cleaned = text;
    cleaned.replace(u'"', u'\'');
    cleaned.replace(u'[', u'(');
    cleaned.replace(u']', u')');
    return cleaned;
}

int DigitKeys(int keyAscii)
{
    return (keyAscii >= '0' && keyAscii <= '9') || keyAscii == kBackspace ? keyAscii : 0;
}

int DiscCountKeys(int keyAscii)
{
    return (keyAscii >= '1' && keyAscii <= '6') || keyAscii == kBackspace ? keyAscii : 0;
}

QCollator textCollator()
{
    // The common order of scripts (Latin before Cyrillic, as the catalogue has always
    // sorted), with the Russian alphabet in its own order.
    QCollator collator(QLocale(QLocale::English, QLocale::UnitedStates));
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    collator.setNumericMode(false);
    collator.setIgnorePunctuation(false);
    return collator;
}

int compareText(QStringView a, QStringView b)
{
    if (const std::optional<int> quick = quickCompareText(a, b)) {
        return *quick;
    }
    thread_local const QCollator collator = textCollator();
    return collator.compare(a, b);
}

std::optional<int> quickCompareText(QStringView a, QStringView b)
{
    return quickOrder(a, b);
}

std::optional<int> quickCompareText(QByteArrayView a, QByteArrayView b)
{
    return quickOrder(a, b);
}

} // namespace vinora
