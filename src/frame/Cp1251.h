#pragma once

#include <QByteArray>
#include <QString>
#include <QStringView>

// Windows code page 1251: the encoding of the settings files, the fault log and the
// exported pages, so that files move between this program and older copies unchanged.
namespace vinora::cp1251 {

QString decode(const QByteArray& bytes);
// Characters without a place in the code page become '?'.
QByteArray encode(QStringView text);
// For HTML pages: characters without a place in the code page become numeric character
// references ("&#9835;"), so that nothing is lost.
QByteArray encodeForHtml(QStringView text);
// True when every character has a place in the code page.
bool canEncode(QStringView text);

} // namespace vinora::cp1251
