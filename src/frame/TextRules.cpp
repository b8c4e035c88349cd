#include "frame/TextRules.h"

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

} // namespace vinora
