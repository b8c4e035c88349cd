#include "frame/NumericPrefix.h"

#include <QString>
#include <cmath>

namespace vinora {
namespace {

bool isBlank(QChar ch)
{
    return ch == u' ' || ch == u'\t' || ch == u'\n' || ch == u'\r';
}

// Digits and the characters that may continue a number, blanks dropped.
QString compact(QStringView text)
{
    QString out;
    for (const QChar ch : text) {
        if (ch == QChar(0)) {
            break; // the end of a filled buffer
        }
        if (!isBlank(ch)) {
            out.append(ch);
        }
    }
    return out;
}

int digitValue(QChar ch, int base)
{
    const int value = QStringLiteral("0123456789abcdef").indexOf(ch.toLower());
    return value < base ? value : -1;
}

double hexOrOctal(const QString& text)
{
    const int base = text.at(1).toUpper() == u'H' ? 16 : 8;
    qint64 value = 0;
    for (qsizetype i = 2; i < text.size() && value <= 0xFFFFFFFFLL; ++i) {
        const int digit = digitValue(text.at(i), base);
        if (digit < 0) {
            break;
        }
        value = value * base + digit;
    }
    // &H values are 16- or 32-bit two's complement numbers.
    if (value > 0x7FFFFFFF) {
        value -= 0x100000000LL;
    } else if (value > 0x7FFF && value <= 0xFFFF) {
        value -= 0x10000;
    }
    return static_cast<double>(value);
}

} // namespace

double numericPrefix(QStringView raw)
{
    const QString text = compact(raw);
    if (text.startsWith(u"&H", Qt::CaseInsensitive) || text.startsWith(u"&O", Qt::CaseInsensitive)) {
        return hexOrOctal(text);
    }
    qsizetype end = 0;
    if (end < text.size() && (text.at(end) == u'+' || text.at(end) == u'-')) {
        ++end;
    }
    qsizetype digits = 0;
    while (end < text.size() && text.at(end).isDigit() && text.at(end).unicode() < 128) {
        ++end;
        ++digits;
    }
    if (end < text.size() && text.at(end) == u'.') {
        ++end;
        while (end < text.size() && text.at(end).isDigit() && text.at(end).unicode() < 128) {
            ++end;
            ++digits;
        }
    }
    if (digits == 0) {
        return 0.0;
    }
    // An exponent counts only when digits follow it.
    if (end < text.size() &&
        (text.at(end) == u'e' || text.at(end) == u'E' || text.at(end) == u'd' || text.at(end) == u'D')) {
        qsizetype exp = end + 1;
        if (exp < text.size() && (text.at(exp) == u'+' || text.at(exp) == u'-')) {
            ++exp;
        }
        const qsizetype expDigitsStart = exp;
        while (exp < text.size() && text.at(exp).isDigit() && text.at(exp).unicode() < 128) {
            ++exp;
        }
        if (exp > expDigitsStart) {
            QString number = text.left(exp);
            number[end] = u'e';
            return number.toDouble();
        }
    }
    return text.left(end).toDouble();
}

int boundedInt(double value, int low, int high)
{
    if (std::isnan(value)) {
        value = 0;
    }
    const double whole = std::trunc(value);
    if (whole <= low) {
        return low;
    }
    if (whole >= high) {
        return high;
    }
    return static_cast<int>(whole);
}

} // namespace vinora
