#pragma once

#include <QByteArray>
#include <QString>

namespace vinora {

// The text of a CDDB server's reply. Servers pass a record's bytes on as they were
// submitted: UTF-8 is taken when the bytes are valid UTF-8; otherwise the charset is
// detected over the whole reply (never line by line), so a Russian record typed in code
// page 1251 and a Western one in Latin-1 both read right. Line ends become CR, LF.
QString decodeReplyText(const QByteArray& bytes);

} // namespace vinora
