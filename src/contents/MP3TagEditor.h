#pragma once

#include <QByteArray>
#include <QString>

namespace vinora {

// Reads the title and the artist of an ID3v1 tag: the last 128 bytes of an MP3 file,
// starting with "TAG". Nothing is ever written back.
class MP3TagEditor
{
public:
    // `fileLength` is the file's size, `tail` its last 128 bytes. A file of 128 bytes or
    // less is not read. False when the bytes could not be had.
    bool read(qint64 fileLength, const QByteArray& tail);

    bool hasTag() const { return m_hasTag; }
    // The fields up to their first zero byte, cleaned like free text, blanks trimmed.
    QString title() const;
    QString artist() const;

    void reset();

private:
    bool m_hasTag = false;
    QByteArray m_title;
    QByteArray m_artist;
};

// The comment a scanned MP3 file gets: artist, " - ", title, cut to 50 characters.
QString mp3Comment(const MP3TagEditor& tag);

} // namespace vinora
