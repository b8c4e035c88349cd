#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

namespace vinora::test {

// A small Nero image of one data track written here: the 2048-byte sectors of `iso` as
// mode 2 form 1 sectors, then the chunks "ETN2" (the track), "SINF" (one session), "END!"
// and the "NER5" footer with the offset of the first chunk.
struct NrgImage
{
    QByteArray bytes;
    qint64 chunks = 0; // offset of the first chunk
    // Offset of the chunk with this id (its id, then its big-endian size), -1 when absent.
    qint64 chunk(const QByteArray& id) const;
    void insertBeforeEnd(const char* id, const QByteArray& body);
};
// A chunk: its id, its big-endian size, its body.
QByteArray chunk(const char* id, const QByteArray& body);
QByteArray cueEntry(quint8 type, quint8 track, quint8 index, qint32 lsn);
NrgImage nrgOf(const QByteArray& iso);

void putBe32(QByteArray& bytes, qint64 at, quint32 value);
void putBe64(QByteArray& bytes, qint64 at, quint64 value);
void putLe32(QByteArray& bytes, qint64 at, quint32 value);
void putLe16(QByteArray& bytes, qint64 at, quint16 value);
quint32 le32At(const QByteArray& bytes, qint64 at);

// UDF descriptors of an image found by their tags: offsets of every descriptor with tag
// `tag` (a valid tag checksum), sector-aligned or, for file identifiers, 4-byte aligned.
QList<qint64> udfDescriptors(const QByteArray& image, quint16 tag);
// Sets the tag checksum of the descriptor at `at` again after a change.
void fixUdfTag(QByteArray& image, qint64 at);

// An ISO 9660 directory record of `name` (as stored, without ";1") in the directory at
// `extent`: its offset in the image, -1 when absent.
qint64 isoRecord(const QByteArray& image, quint32 extent, const QByteArray& name);
// The extent of the root directory of the primary volume.
quint32 isoRootExtent(const QByteArray& image);
// Points the directory record at `at` to `extent` (both byte orders).
void pointIsoRecord(QByteArray& image, qint64 at, quint32 extent);

} // namespace vinora::test
