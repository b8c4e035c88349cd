#pragma once

#include "cddb/CdDevice.h"
#include "cddb/CddbRecord.h"
#include "cddb/DiscId.h"

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QTimer>

class QEventLoop;
class QTcpSocket;

namespace vinora {

class AppContext;

// One CDDB server's session over plain TCP: the handshake, the query, the reading of a
// record, the category and site lists and the message of the day. Every request waits for
// its reply in a local event loop, so the window's own timers keep running, and a one-shot
// watchdog restarted for each request ends a wait that gets no answer.
//
// The session also holds the audio player of its drive (a device node or a disc image): the
// disc id and query figures are read from there, and the window plays the disc through it.
class CdBase : public QObject
{
    Q_OBJECT

public:
    static constexpr int kMaxCategories = 50;
    static constexpr int kMaxSites = 100;
    static constexpr quint16 kDefaultPort = 8880;

    // The socket stays the caller's; the session only drives it.
    CdBase(AppContext& ctx, QTcpSocket& socket, QObject* parent = nullptr);
    ~CdBase() override;

    QString Server() const { return m_server; }
    void setServer(const QString& server) { m_server = server; }
    quint16 Port() const { return m_port; }
    void setPort(quint16 port) { m_port = port; }
    QString Email() const { return m_email; }
    void setEmail(const QString& email) { m_email = email; }
    QString HostName() const { return m_hostName; }
    void setHostName(const QString& hostName) { m_hostName = hostName; }
    QString AppName() const { return m_appName; }
    void setAppName(const QString& appName) { m_appName = appName; }
    QString Revision() const { return m_revision; }
    void setRevision(const QString& revision) { m_revision = revision; }
    int ConnectTimeout() const { return m_connectTimeout; }
    // Clamped to 5000..65535 milliseconds.
    void setConnectTimeout(int milliseconds);

    QString Cdid() const { return m_cdid; }
    void setCdid(const QString& id) { m_cdid = id; }
    int DiscLength() const { return m_discLength; }
    void setDiscLength(int seconds) { m_discLength = seconds; }
    int Tracks() const { return m_tracks; }
    void setTracks(int tracks) { m_tracks = tracks; }

    // The record read last.
    const CddbRecord& record() const { return m_record; }
    QString Title() const { return m_record.title; }
    QString Category() const { return m_record.category; }
    QString CdTitle() const { return m_record.cdTitle; }
    QString Artist() const { return m_record.artist; }
    QString ExtData() const { return m_record.extData; }
    QString PlayOrder() const { return m_record.playOrder; }
    int DataRev() const { return m_record.dataRev; }

    int Categories() const { return static_cast<int>(m_categories.size()); }
    // Category n (1-based); empty outside 1..Categories().
    QString GetCategory(int n) const;
    int Sites() const { return static_cast<int>(m_sites.size()); }
    // Site n (1-based); empty text or 0 outside 1..Sites().
    QString SiteAddress(int n) const;
    quint16 SitePort(int n) const;
    QString SiteLocation(int n) const;

    // Asks the server about the disc of `query` ("id tracks offsets... length"), which
    // becomes the whole query line. The decoded record, empty text, or "Error".
    QString GetCddbUseQueryString(QString& query);
    // The same for a disc read from the drive, whose id becomes Cdid. The decoded record,
    // empty text, "000 Failure to Connect" or "431 Handshake not successful, closing connection".
    QString GetCddb(const CddbDisc& disc);
    // The number of categories the server lists (0 on failure).
    int Getlscat();
    // The number of mirror sites the server lists (0 on failure).
    int GetSites();
    // The message of the day, or "Error".
    QString GetMotd();
    // Sends `text` as it stands, connecting first when needed; no reply is awaited.
    void cddbSend(const QString& text);
    // Says goodbye when connected; the server closes the connection.
    void cddbQuit();

    // --- the drive ---------------------------------------------------------------------
    QString FileName() const { return m_device.FileName(); }
    void setFileName(const QString& drive);
    const CdDevice& device() const { return m_device; }
    // The mode last reported by deviceStatus (0 before the first report).
    int LastMode() const { return m_lastMode; }
    // Reads the player's mode again.
    void Refresh();

    // The disc id of the disc in the drive, which becomes Cdid with its track offsets,
    // Tracks and DiscLength; empty text, after a message, when the drive cannot be used (a
    // table of contents of more than 99 tracks goes to the fault log). A drive that was not
    // open before is closed again.
    QString cddbGetCdid();
    // "id tracks offset1 ... offsetN length" of the disc in the drive, its id read anew;
    // empty while a request waits for its reply, or when there is no id.
    QString GetQueryString();
    // The length of track n in whole seconds: read from the drive (selecting the track
    // there), or the length kept by the last cddbGetCdid; 0 outside 1..Tracks.
    int SongLength(int track, bool fromDevice);
    // "OPEN", "CLOSE", "PLAY", "PAUSE", "STOP", "PREV", "NEXT", "EJECT" in any case; other
    // texts are ignored. Throws AppError when "OPEN" leaves the drive not open.
    void Command(const QString& command);
    // The playing position from the start of track 1: 1 packed (as a decimal number), 2 in
    // frames, 3 in whole seconds, 4 as "m:ss"; empty text for another kind. Selects track 1.
    QString Position(int kind);
    // The track the player is at, 0 when the drive is not open.
    int CurrentTrack();
    // Stops the player and moves it to the start of track n; ignored outside 1..Tracks.
    void setCurrentTrack(int track);

    // Ends the request in progress and every later one at once, without a message: the
    // owner has been closed by hand. The request's caller sees a failure.
    void cancel();
    bool cancelled() const { return m_cancelled; }

    QString GetMyHostName() const;
    // Each "\n" typed as two characters becomes a line end.
    static QString NewLineFix(const QString& text);

signals:
    // The line for the status label.
    void sessionStatus(const QString& text);
    // Raised before any message box of the session, so the owner can step aside.
    void aboutToPrompt();
    // The player's mode in words ("Device is playing"), each time it changes.
    void deviceStatus(const QString& text);

private:
    enum class Gather { FirstChunk, ToEndMark };

    bool cddbConnect();
    bool cddbHello();
    QString cddbQuery(const QString& query);
    QString cddbRead(const QString& category, const QString& discId);
    QString cddblscat();
    QString cddbSites();
    // Connects, greets, runs `step` (a list command) and quits; the list's size from
    // `count` when the step's status is 210, else 0.
    int listAfterHello(QString (CdBase::*step)(), int (CdBase::*count)() const);
    QString cddbMotd();
    static int cddbStatusCode(const QString& reply);

    QString readMatch(const QString& category, const QString& discId);
    QString queryAndRead(const QString& query, bool givenQuery);
    // A reply that does not decode ends the session with a message.
    void damagedReply();
    void refused(const QString& reply);
    void tell(const QString& text);
    bool connected() const;
    void send(const QString& line);
    // Sends `line` (nothing for the greeting) and waits; false when the watchdog fired.
    bool request(const QString& line, Gather gather);

    // Reports the player's mode when it differs from the one reported last.
    void noteMode();
    // The device command, then the report of the mode it leaves.
    void deviceCommand(const QString& command);

    void onReadyRead();
    void onDisconnected();
    void onWatchdog();

    AppContext& m_ctx;
    QTcpSocket& m_socket;
    QTimer m_watchdog;
    QEventLoop* m_loop = nullptr;

    bool m_waiting = false;
    bool m_timedOut = false;
    bool m_cancelled = false;
    Gather m_gather = Gather::FirstChunk;
    QByteArray m_replyBytes;
    QString m_replyBuffer;

    QString m_server;
    quint16 m_port = 0;
    QString m_email;
    QString m_hostName;
    QString m_appName = QStringLiteral("vinora");
    QString m_revision = QStringLiteral("1.0");
    int m_connectTimeout = 30000;
    QString m_cdid;
    int m_discLength = 0;
    int m_tracks = 0;
    QList<qint32> m_offsets;
    QList<int> m_trackSeconds;

    CdDevice m_device;
    int m_lastMode = 0;

    CddbRecord m_record;
    QList<CddbMatch> m_matches; // the close matches of the last 211 reply
    QStringList m_categories;
    struct Site
    {
        QString address;
        quint16 port = 0;
        QString location;
    };
    QList<Site> m_sites;
};

} // namespace vinora
