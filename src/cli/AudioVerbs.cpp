// Audio discs for scripts: the CDDB record of the disc in a drive, asked of a server, and
// the track list stored for a disc of the catalogue.
#include "cddb/CdBase.h"
#include "cddb/CddbServers.h"
#include "cddb/DiscId.h"
#include "cli/Cli.h"
#include "frame/AppContext.h"
#include "recognition/Medium.h"
#include "store/Db.h"
#include "store/Schema.h"

#include <QCommandLineParser>
#include <QJsonArray>
#include <QJsonObject>
#include <QSqlQuery>
#include <QTcpSocket>

namespace vinora::cli {
namespace {

const QCommandLineOption kServer(QStringLiteral("server"),
                                 QStringLiteral("The CDDB server (default gnudb.gnudb.org:8880)."),
                                 QStringLiteral("HOST:PORT"));
const QCommandLineOption kTimeout(QStringLiteral("timeout"),
                                  QStringLiteral("Seconds to wait for each reply, 5 to 65 (default 30)."),
                                  QStringLiteral("S"));
const QCommandLineOption kDisc(QStringLiteral("disc"),
                               QStringLiteral("The place of the disc in its set, 1 to 6 (default 1)."),
                               QStringLiteral("K"));
const QCommandLineOption kJson(QStringLiteral("json"), QStringLiteral("Print one JSON array."));
const QCommandLineOption kEmail(QStringLiteral("email"),
                                QStringLiteral("The address the handshake gives (default user@host)."),
                                QStringLiteral("ADDRESS"));

int cddb(AppContext& ctx, const QCommandLineParser& parser)
{
    const QString drive = parser.positionalArguments().at(0);
    QTcpSocket socket;
    CdBase session(ctx, socket);
    // The handshake and the time-out as the windows take them from the settings; the
    // options given here come on top.
    prepareCddbSession(session, ctx.ini(), QStringLiteral("1"));
    if (parser.isSet(kServer)) {
        const QString server = parser.value(kServer);
        const std::optional<CddbServer> parsed = parseCddbServer(server);
        if (!parsed || !server.contains(u':')) {
            throw Failure{BadUsage, QStringLiteral("--server takes HOST:PORT, not '") + server + u'\''};
        }
        session.setServer(parsed->host);
        session.setPort(parsed->port);
    }
    if (parser.isSet(kTimeout)) {
        session.setConnectTimeout(1000 *
                                  wholeNumber(parser.value(kTimeout), QStringLiteral("--timeout"), 5, 65));
    }
    if (parser.isSet(kEmail)) {
        session.setEmail(parser.value(kEmail));
    }

    const std::unique_ptr<Medium> medium = openMedium(drive);
    const std::optional<CddbDisc> disc = medium ? cddbDiscFromToc(medium->toc()) : std::nullopt;
    if (!disc) {
        throw Failure{Refused, QStringLiteral("no audio disc in ") + drive};
    }
    const QString result = session.GetCddb(*disc);
    const CddbRecord& record = session.record();
    if (result.isEmpty() || record.tracks() == 0) {
        // The session has told why (no record, a refusal, a time-out) on standard error.
        throw Failure{Refused, QStringLiteral("no CDDB record for disc ") + disc->id};
    }
    print(QStringLiteral("discid: ") + disc->id);
    print(QStringLiteral("category: ") + record.category);
    print(QStringLiteral("artist: ") + record.artist);
    print(QStringLiteral("album: ") + record.cdTitle);
    for (int n = 1; n <= record.tracks(); ++n) {
        print(QString::number(n) + u'\t' + record.SongName(n));
    }
    return Done;
}

int tracks(AppContext& ctx, const QCommandLineParser& parser)
{
    const int number = wholeNumber(parser.positionalArguments().at(0), QStringLiteral("NUMBER"), 1, 32767);
    const int slot =
        parser.isSet(kDisc) ? wholeNumber(parser.value(kDisc), QStringLiteral("--disc"), 1, 6) : 1;
    ctx.resolveDatabasePaths();
    requireDatabase(ctx.MainDBPath, {QStringLiteral("Аудио")});
    requireDatabase(ctx.TracksDBPath, {QStringLiteral("Списки"), QStringLiteral("Треки")});
    QString listId;
    onDatabase(ctx.MainDBPath, [&] {
        const Db db(ctx.MainDBPath, Db::Access::ReadOnly);
        QSqlQuery disc =
            db.query(QStringLiteral("SELECT Дисков, ") + quoted(QStringLiteral("ДискID%1").arg(slot)) +
                         QStringLiteral(" FROM Аудио WHERE Номер = ? ORDER BY КодАудиоДиск LIMIT 1"),
                     {number});
        if (!disc.next()) {
            throw Failure{Refused, QStringLiteral("Диск № ") + QString::number(number) +
                                       QStringLiteral(" отсутствует в каталоге.")};
        }
        listId = slot <= disc.value(0).toInt() ? disc.value(1).toString() : QString();
    });
    QJsonArray records;
    bool found = false;
    onDatabase(ctx.TracksDBPath, [&] {
        const Db db(ctx.TracksDBPath, Db::Access::ReadOnly);
        found =
            !listId.isEmpty() &&
            db.scalar(QStringLiteral("SELECT COUNT(*) FROM Списки WHERE ДискID = ?"), {listId}).toInt() > 0;
        QSqlQuery rows = db.query(
            QStringLiteral("SELECT Номер, Название, Комментарий FROM Треки WHERE ДискID = ? ORDER BY Номер"),
            {listId});
        while (found && rows.next()) {
            if (parser.isSet(kJson)) {
                records.append(QJsonObject{{QStringLiteral("number"), rows.value(0).toInt()},
                                           {QStringLiteral("title"), rows.value(1).toString()},
                                           {QStringLiteral("comment"), rows.value(2).toString()}});
            } else {
                print(
                    QStringList{rows.value(0).toString(), rows.value(1).toString(), rows.value(2).toString()}
                        .join(u'\t'));
            }
        }
    });
    if (!found) {
        throw Failure{
            Refused,
            QStringLiteral("disc %1 of audio disc number %2 has no track list").arg(slot).arg(number)};
    }
    if (parser.isSet(kJson)) {
        printJson(records);
    }
    return Done;
}

} // namespace

QList<Verb> audioVerbs()
{
    return {
        {QStringLiteral("cddb"),
         QStringLiteral("Ask a CDDB server for the record of the audio disc in a drive"),
         {{QStringLiteral("DRIVE"), QStringLiteral("A device node (/dev/sr0) or a disc image.")}},
         {kServer, kTimeout, kEmail},
         QStringLiteral("Prints discid, category, artist and album lines, then a line per song: number, tab, "
                        "name.\nNothing is written to the catalogue."),
         cddb},
        {QStringLiteral("tracks"),
         QStringLiteral("Print the track list stored for an audio disc of the catalogue"),
         {{QStringLiteral("NUMBER"), QStringLiteral("The disc's number in the audio catalogue.")}},
         {kDisc, kJson},
         QStringLiteral("Prints a line per track: number, title, comment, separated by tabs."),
         tracks},
    };
}

} // namespace vinora::cli
