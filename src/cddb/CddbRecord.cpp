#include "cddb/CddbRecord.h"

#include "frame/AppError.h"

#include <cmath>

namespace vinora {
namespace {

const QString kLineEnd = QStringLiteral("\r\n");

// The first line of `text` without its line end; the whole text when it has none (the last
// line of a record read from a file may lack it).
qsizetype lineEnd(const QString& text)
{
    const qsizetype end = text.indexOf(kLineEnd);
    return end < 0 ? text.size() : end;
}

QString cutAfter(QString& text, qsizetype at)
{
    const QString head = text.left(at);
    text.remove(0, qMin(text.size(), at + 1));
    return head;
}

[[noreturn]] void tooMany(const char* what)
{
    throw AppError(err::Overflow, QStringLiteral("A CDDB reply with more than %1 %2")
                                      .arg(kCddbMaxEntries)
                                      .arg(QString::fromLatin1(what)));
}

// The values of key0=, key1=, ... in turn, while the next one stands in `data`.
QStringList pullNumbered(QString& data, const QString& key)
{
    QStringList values;
    while (data.contains(key + QString::number(values.size()) + u'=')) {
        if (values.size() == kCddbMaxEntries) {
            tooMany("songs");
        }
        values.append(PullData(data, key + QString::number(values.size()) + u'='));
    }
    return values;
}

} // namespace

QString PullData(QString& data, const QString& key)
{
    QString value;
    for (qsizetype at = data.indexOf(key); at >= 0 && !key.isEmpty(); at = data.indexOf(key)) {
        data.remove(0, at + 1);
        const qsizetype end = lineEnd(data);
        value += data.mid(key.size() - 1, end - (key.size() - 1));
        data.remove(0, qMin(data.size(), end + kLineEnd.size()));
    }
    return value;
}

QString RemoveTopLine(const QString& text)
{
    const qsizetype end = text.indexOf(kLineEnd);
    return end < 0 ? QString() : text.mid(end + kLineEnd.size());
}

QString TrimPreChar(const QString& text, QChar ch)
{
    qsizetype from = 0;
    while (from < text.size() && text[from] == ch) {
        ++from;
    }
    return text.mid(from);
}

QString TrimSufChar(const QString& text, QChar ch)
{
    qsizetype to = text.size();
    while (to > 0 && text[to - 1] == ch) {
        --to;
    }
    return text.left(to);
}

CddbMatch QueryMatchDecode(const QString& reply)
{
    QString rest = reply;
    CddbMatch match;
    cutAfter(rest, rest.indexOf(u' ') < 0 ? rest.size() : rest.indexOf(u' ')); // the status code
    match.category = cutAfter(rest, rest.indexOf(u' ') < 0 ? rest.size() : rest.indexOf(u' '));
    match.discId = cutAfter(rest, rest.indexOf(u' ') < 0 ? rest.size() : rest.indexOf(u' '));
    match.title = rest;
    return match;
}

QList<CddbMatch> CloseMatchDecode(const QString& reply)
{
    QList<CddbMatch> matches;
    // The closing "." line is shorter than any match.
    for (QString rest = RemoveTopLine(reply); rest.size() >= 4; rest = RemoveTopLine(rest)) {
        if (matches.size() == kCddbMaxEntries) {
            tooMany("close matches");
        }
        QString line = rest.left(lineEnd(rest) + kLineEnd.size());
        CddbMatch match;
        match.category = cutAfter(line, line.indexOf(u' ') < 0 ? line.size() : line.indexOf(u' '));
        match.discId = cutAfter(line, line.indexOf(u' ') < 0 ? line.size() : line.indexOf(u' '));
        match.title = line;
        matches.append(match);
        if (!rest.contains(kLineEnd)) {
            break;
        }
    }
    return matches;
}

QString cddbDecodeEntry(const QString& reply, CddbRecord& record)
{
    if (reply.startsWith(QStringLiteral("600"))) {
        return QStringLiteral("600 Timeout");
    }
    QString data = reply;
    const qsizetype blank = data.indexOf(u' ', 4);
    record.category = data.mid(4, (blank < 0 ? lineEnd(data) : blank) - 4);
    record.dataRev = PullData(data, QStringLiteral("# Revision:")).trimmed().toInt();
    record.title = PullData(data, QStringLiteral("DTITLE="));
    const qsizetype slash = record.title.indexOf(u'/');
    if (slash >= 0) {
        record.cdTitle = TrimPreChar(record.title.mid(slash + 1), u' ');
        record.artist = TrimSufChar(record.title.left(slash), u' ');
    } else {
        record.cdTitle = record.title;
        record.artist = record.title;
    }
    record.songNames = pullNumbered(data, QStringLiteral("TTITLE"));
    record.extData = PullData(data, QStringLiteral("EXTD="));
    record.extTrackData = pullNumbered(data, QStringLiteral("EXTT"));
    record.playOrder = PullData(data, QStringLiteral("PLAYORDER="));

    QString result = record.title + kLineEnd + QString::number(record.tracks());
    // As many names as there are EXTT keys: a record holds one of each per song.
    for (int i = 1; i <= record.extTrackData.size(); ++i) {
        result += kLineEnd + record.SongName(i);
    }
    return result;
}

QString SubmitVerify(const CddbRecord& record, const QString& appName, const QString& revision,
                     int deviceTracks)
{
    if (record.dataRev < 1) {
        return QStringLiteral("Invalid DataRev number: ") + QString::number(record.dataRev);
    }
    if (appName.isEmpty()) {
        return QStringLiteral("Missing AppName");
    }
    if (revision.isEmpty()) {
        return QStringLiteral("Missing Revision");
    }
    if ((record.artist.isEmpty() || record.cdTitle.isEmpty()) && record.title.isEmpty()) {
        return QStringLiteral("Missing Title");
    }
    for (int n = 1; n <= deviceTracks; ++n) {
        if (record.SongName(n).isEmpty()) {
            return QStringLiteral("Missing song name on song: ") + QString::number(n);
        }
    }
    return QStringLiteral("OK");
}

QString SubmitString(const CddbRecord& record, const QString& appName, const QString& revision,
                     const CddbDisc& disc)
{
    const QString verdict = SubmitVerify(record, appName, revision, disc.tracks);
    if (verdict != u"OK") {
        return QStringLiteral("Error: ") + verdict;
    }
    QStringList lines{QStringLiteral("# xmcd"), QStringLiteral("#"),
                      QStringLiteral("# Track frame offsets:")};
    for (const qint32 offset : disc.offsets) {
        lines.append(QStringLiteral("# ") + QString::number(offset));
    }
    lines << QStringLiteral("#")
          << QStringLiteral("# Disc length: ") + QString::number(std::lround(disc.leadoutFrames / 75.0)) +
                 QStringLiteral(" Seconds")
          << QStringLiteral("#") << QStringLiteral("# Revision: ") + QString::number(record.dataRev)
          << QStringLiteral("# Submitted via: ") + appName + u' ' + revision << QStringLiteral("#")
          << QStringLiteral("DISCID=") + disc.id
          << QStringLiteral("DTITLE=") + (!record.artist.isEmpty() && !record.cdTitle.isEmpty()
                                              ? record.artist + QStringLiteral(" / ") + record.cdTitle
                                              : record.title);
    for (int i = 0; i < record.tracks(); ++i) {
        lines.append(QStringLiteral("TTITLE%1=").arg(i) + record.SongName(i + 1));
    }
    lines.append(QStringLiteral("EXTD=") + record.extData);
    for (int i = 0; i < record.tracks(); ++i) {
        lines.append(QStringLiteral("EXTT%1=").arg(i) + record.extTrackData.value(i));
    }
    lines.append(QStringLiteral("PLAYORDER=") + record.playOrder);
    return lines.join(kLineEnd) + kLineEnd;
}

} // namespace vinora
