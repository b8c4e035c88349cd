#pragma once

#include "cddb/DiscId.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace vinora {

// One disc a server offers: from the status line of a query (200) or a line of the close
// matches (211).
struct CddbMatch
{
    QString category;
    QString discId;
    QString title; // with its line end, as the server sent it
};

// An xmcd record as it is decoded from a server's reply or built for submission.
struct CddbRecord
{
    QString category;
    int dataRev = 0;
    QString title;            // DTITLE
    QString artist;           // before the first "/" of DTITLE
    QString cdTitle;          // after it
    QStringList songNames;    // TTITLE0.. as songs 1..
    QString extData;          // EXTD
    QStringList extTrackData; // EXTT0.. as songs 1..
    QString playOrder;

    int tracks() const { return static_cast<int>(songNames.size()); }
    // The name of song n (1-based); empty outside 1..tracks().
    QString SongName(int n) const { return n >= 1 && n <= tracks() ? songNames[n - 1] : QString(); }
};

// The most songs and close matches a record or a reply may hold.
inline constexpr int kCddbMaxEntries = 100;

// The value of `key`: every line that holds it, joined in order with nothing between them
// (continuation lines), the rest of each line after the key. `data` is used up to the last
// line read, so keys are pulled in the order in which they stand in a record.
QString PullData(QString& data, const QString& key);
// The text after the first line (CR, LF).
QString RemoveTopLine(const QString& text);
// `text` without the repeats of `ch` at its head, or at its tail.
QString TrimPreChar(const QString& text, QChar ch);
QString TrimSufChar(const QString& text, QChar ch);

// "200 category discid title": the disc a query found.
CddbMatch QueryMatchDecode(const QString& reply);
// A 211 reply: the close matches, in the server's order. More than 100 is a damaged reply
// (AppError).
QList<CddbMatch> CloseMatchDecode(const QString& reply);
// A 210 reply into `record`; gives the text of the result: the title, the number of songs
// and the song names, each on a line; "600 Timeout" for a reply that is one. More than 100
// songs is a damaged reply (AppError).
QString cddbDecodeEntry(const QString& reply, CddbRecord& record);

// "OK", or what keeps the record from being submitted for a disc of `deviceTracks` tracks.
QString SubmitVerify(const CddbRecord& record, const QString& appName, const QString& revision,
                     int deviceTracks);
// The record as a submission ("# xmcd" to "PLAYORDER="), or "Error: " and the reason.
QString SubmitString(const CddbRecord& record, const QString& appName, const QString& revision,
                     const CddbDisc& disc);

} // namespace vinora
