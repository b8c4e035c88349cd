// A CDDB server's reply, whatever its bytes: the text is decoded whole, and the query, close
// match and record decoders read it. They may refuse a reply (AppError) but never crash or
// hang, and a record never holds more songs than a record may.
#include "cddb/CddbRecord.h"
#include "cddb/ReplyText.h"
#include "frame/AppError.h"

#include <QByteArray>
#include <cstdint>
#include <cstdlib>

using namespace vinora;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QString reply =
        decodeReplyText(QByteArray(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)));
    try {
        QueryMatchDecode(reply);
        CloseMatchDecode(reply);
        CddbRecord record;
        cddbDecodeEntry(reply, record);
        if (record.tracks() > kCddbMaxEntries || record.extTrackData.size() > kCddbMaxEntries) {
            std::abort();
        }
    } catch (const AppError&) {
        // a damaged reply: refused
    }
    return 0;
}
