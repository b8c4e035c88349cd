#include "cddb/ReplyText.h"

#include "frame/Cp1251.h"

#include <QStringDecoder>
#include <memory>
#include <optional>
#include <uchardet.h>

namespace vinora {
namespace {

std::optional<QString> asUtf8(const QByteArray& bytes)
{
    QStringDecoder utf8(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    QString text = utf8.decode(bytes);
    return utf8.hasError() ? std::nullopt : std::optional<QString>(std::move(text));
}

QByteArray detectedCharset(const QByteArray& bytes)
{
    const std::unique_ptr<std::remove_pointer_t<uchardet_t>, void (*)(uchardet_t)> detector(uchardet_new(),
                                                                                            uchardet_delete);
    if (!detector ||
        uchardet_handle_data(detector.get(), bytes.constData(), static_cast<size_t>(bytes.size())) != 0) {
        return {};
    }
    uchardet_data_end(detector.get());
    return QByteArray(uchardet_get_charset(detector.get())).toUpper();
}

QString decodeAs(const QByteArray& charset, const QByteArray& bytes)
{
    if (charset == "WINDOWS-1251") {
        return cp1251::decode(bytes);
    }
    if (!charset.isEmpty() && charset != "ASCII") {
        QStringDecoder decoder(charset.constData());
        if (decoder.isValid()) {
            QString text = decoder.decode(bytes);
            if (!decoder.hasError()) {
                return text;
            }
        }
    }
    // What a server at the first protocol level means by its bytes.
    return QString::fromLatin1(bytes);
}

} // namespace

QString decodeReplyText(const QByteArray& bytes)
{
    std::optional<QString> text = asUtf8(bytes);
    if (!text) {
        text = decodeAs(detectedCharset(bytes), bytes);
    }
    // Every line ends in CR, LF, whatever the server or the file used.
    text->replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    text->replace(u'\r', u'\n');
    text->replace(QStringLiteral("\n"), QStringLiteral("\r\n"));
    return *text;
}

} // namespace vinora
