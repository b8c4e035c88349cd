#include "DamagedImages.h"

#include <QtEndian>

namespace vinora::test {
namespace {

constexpr int kSector = 2048;
constexpr int kRawSector = 2336; // mode 2: subheader, user data, error codes

} // namespace

QByteArray chunk(const char* id, const QByteArray& body)
{
    QByteArray bytes(id, 4);
    bytes.append(QByteArray(4, '\0'));
    putBe32(bytes, 4, quint32(body.size()));
    return bytes + body;
}

QByteArray cueEntry(quint8 type, quint8 track, quint8 index, qint32 lsn)
{
    QByteArray entry(8, '\0');
    entry[0] = char(type);
    entry[1] = char(track);
    entry[2] = char(index);
    putBe32(entry, 4, quint32(lsn));
    return entry;
}

void putBe32(QByteArray& bytes, qint64 at, quint32 value)
{
    qToBigEndian(value, bytes.data() + at);
}

void putBe64(QByteArray& bytes, qint64 at, quint64 value)
{
    qToBigEndian(value, bytes.data() + at);
}

void putLe32(QByteArray& bytes, qint64 at, quint32 value)
{
    qToLittleEndian(value, bytes.data() + at);
}

void putLe16(QByteArray& bytes, qint64 at, quint16 value)
{
    qToLittleEndian(value, bytes.data() + at);
}

quint32 le32At(const QByteArray& bytes, qint64 at)
{
    return qFromLittleEndian<quint32>(bytes.constData() + at);
}

qint64 NrgImage::chunk(const QByteArray& id) const
{
    qint64 at = chunks;
    while (at + 8 <= bytes.size() - 12) {
        if (bytes.mid(at, 4) == id) {
            return at;
        }
        at += 8 + qFromBigEndian<quint32>(bytes.constData() + at + 4);
    }
    return -1;
}

NrgImage nrgOf(const QByteArray& iso)
{
    const qint32 sectors = qint32(iso.size() / kSector);
    NrgImage image;
    for (qint32 i = 0; i < sectors; ++i) {
        QByteArray raw(8, '\0'); // subheader: form 1 data
        raw[2] = char(0x08);
        raw[6] = char(0x08);
        raw += iso.mid(qint64(i) * kSector, kSector);
        raw += QByteArray(kRawSector - raw.size(), '\0');
        image.bytes += raw;
    }
    image.chunks = image.bytes.size();
    QByteArray track(32, '\0');
    putBe64(track, 0, 0);                             // where its sectors start
    putBe64(track, 8, quint64(sectors) * kRawSector); // their length
    putBe32(track, 16, 3);                            // mode 2, 2336-byte sectors
    putBe32(track, 20, 0);                            // its first sector
    QByteArray sessions(4, '\0');
    putBe32(sessions, 0, 1);
    image.bytes += chunk("ETN2", track) + chunk("SINF", sessions) + chunk("END!", {});
    QByteArray footer("NER5", 4);
    footer.append(QByteArray(8, '\0'));
    putBe64(footer, 4, quint64(image.chunks));
    image.bytes += footer;
    return image;
}

void NrgImage::insertBeforeEnd(const char* id, const QByteArray& body)
{
    bytes.insert(chunk("END!"), test::chunk(id, body));
}

QList<qint64> udfDescriptors(const QByteArray& image, quint16 tag)
{
    QList<qint64> found;
    const int step = tag == 257 ? 4 : kSector;
    for (qint64 at = 0; at + 16 <= image.size(); at += step) {
        const auto* d = reinterpret_cast<const quint8*>(image.constData() + at);
        if (qFromLittleEndian<quint16>(d) != tag || d[5] != 0) {
            continue;
        }
        quint8 sum = 0;
        for (int i = 0; i < 16; ++i) {
            if (i != 4) {
                sum = quint8(sum + d[i]);
            }
        }
        if (sum == d[4]) {
            found.append(at);
        }
    }
    return found;
}

void fixUdfTag(QByteArray& image, qint64 at)
{
    quint8 sum = 0;
    for (int i = 0; i < 16; ++i) {
        if (i != 4) {
            sum = quint8(sum + quint8(image[at + i]));
        }
    }
    image[at + 4] = char(sum);
}

quint32 isoRootExtent(const QByteArray& image)
{
    return le32At(image, 16 * kSector + 156 + 2);
}

qint64 isoRecord(const QByteArray& image, quint32 extent, const QByteArray& name)
{
    const qint64 start = qint64(extent) * kSector;
    for (qint64 at = start; at < start + kSector && at < image.size();) {
        const int length = quint8(image[at]);
        if (length == 0) {
            break;
        }
        const int nameLength = quint8(image[at + 32]);
        QByteArray stored = image.mid(at + 33, nameLength);
        if (const qsizetype version = stored.indexOf(';'); version >= 0) {
            stored.truncate(version);
        }
        if (stored == name) {
            return at;
        }
        at += length;
    }
    return -1;
}

void pointIsoRecord(QByteArray& image, qint64 at, quint32 extent)
{
    putLe32(image, at + 2, extent);
    qToBigEndian(extent, image.data() + at + 6);
}

} // namespace vinora::test
