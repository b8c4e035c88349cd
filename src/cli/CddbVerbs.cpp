// The CDDB record of the audio disc in a drive, asked of a server, for scripts.
#include "cddb/CdBase.h"
#include "cddb/DiscId.h"
#include "cli/Cli.h"
#include "frame/AppContext.h"
#include "recognition/Medium.h"

#include <QCommandLineParser>
#include <QHostInfo>
#include <QTcpSocket>

namespace vinora::cli {
namespace {

const QCommandLineOption kServer(QStringLiteral("server"),
                                 QStringLiteral("The CDDB server (default gnudb.gnudb.org:8880)."),
                                 QStringLiteral("HOST:PORT"));
const QCommandLineOption kTimeout(QStringLiteral("timeout"),
                                  QStringLiteral("Seconds to wait for each reply, 5 to 65 (default 30)."),
                                  QStringLiteral("S"));
const QCommandLineOption kEmail(QStringLiteral("email"),
                                QStringLiteral("The address the handshake gives (default user@host)."),
                                QStringLiteral("ADDRESS"));

int cddb(AppContext& ctx, const QCommandLineParser& parser)
{
    const QString drive = parser.positionalArguments().at(0);
    QTcpSocket socket;
    CdBase session(ctx, socket);
    if (parser.isSet(kServer)) {
        const QString server = parser.value(kServer);
        const qsizetype colon = server.lastIndexOf(u':');
        if (colon <= 0) {
            throw Failure{BadUsage, QStringLiteral("--server takes HOST:PORT, not '") + server + u'\''};
        }
        session.setServer(server.left(colon));
        session.setPort(static_cast<quint16>(wholeNumber(server.mid(colon + 1), QStringLiteral("the port"), 1, 65535)));
    }
    session.setConnectTimeout(
        1000 * (parser.isSet(kTimeout) ? wholeNumber(parser.value(kTimeout), QStringLiteral("--timeout"), 5, 65) : 30));
    const QString host = QHostInfo::localHostName();
    session.setHostName(host);
    session.setEmail(parser.isSet(kEmail) ? parser.value(kEmail) : qEnvironmentVariable("USER", QStringLiteral("user")) + u'@' + host);

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

} // namespace

QList<Verb> cddbVerbs()
{
    return {
        {QStringLiteral("cddb"),
         QStringLiteral("Ask a CDDB server for the record of the audio disc in a drive"),
         {{QStringLiteral("DRIVE"), QStringLiteral("A device node (/dev/sr0) or a disc image.")}},
         {kServer, kTimeout, kEmail},
         QStringLiteral("Prints discid, category, artist and album lines, then a line per song: number, tab, "
                        "name.\nNothing is written to the catalogue."),
         cddb},
    };
}

} // namespace vinora::cli
