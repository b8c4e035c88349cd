#include "frame/TextRules.h"

#include <QLocale>

namespace vinora {
namespace {
constexpr int kBackspace = 8;
}

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
    thread_local const QCollator collator = textCollator();
    return collator.compare(a, b);
}

} // namespace vinora
