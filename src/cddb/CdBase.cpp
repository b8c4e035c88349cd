#include "cddb/CdBase.h"

#include "cddb/ReplyText.h"
#include "frame/AppContext.h"
#include "frame/AppError.h"
#include "frame/FaultLog.h"
#include "frame/Prompter.h"

#include <QEventLoop>
#include <QHostInfo>
#include <QTcpSocket>
#include <algorithm>

namespace vinora {
namespace {

const QString kLineEnd = QStringLiteral("\r\n");
// Where servers are asked when the owner names none.
const QString kDefaultServer = QStringLiteral("gnudb.gnudb.org");

const QString kConnectTimedOut = QStringLiteral("Время ожидания соединения с сервером истекло!");
const QString kQueryTimedOut = QStringLiteral("Время ожидания ответа на запрос истекло!");
const QString kDamaged = QStringLiteral("Данные повреждены!");
const QString kTimeoutReply = QStringLiteral("600 Timeout");
const QString kNoDeviceAccess = QStringLiteral("Не возможно получить доступ к устройству!");
const QString kNoDescription = QStringLiteral("На сервере отсутствует описание для этого диска!");

// The first line of `text` without its line end.
QString firstLine(const QString& text)
{
    const qsizetype end = text.indexOf(kLineEnd);
    return end < 0 ? text : text.left(end);
}

// A reply that says no: the server will not serve this client.
bool isRefusal(int code)
{
    return code >= 400 && code <= 599;
}

// The value of the digits at the head of `text`, as far as they go.
int leadingNumber(const QString& text)
{
    qsizetype digits = 0;
    while (digits < text.size() && text[digits].isDigit() && text[digits].unicode() < 128) {
        ++digits;
    }
    return digits == 0 ? 0 : text.left(std::min<qsizetype>(digits, 9)).toInt();
}

// The end of a multi-line reply: its last line is a lone ".". A server that ends its lines
// in LF alone says the same.
bool endsWithEndMark(const QByteArray& bytes)
{
    return bytes.endsWith("\r\n.\r\n") || bytes.endsWith("\n.\n") || bytes.endsWith("\n.\r\n");
}

} // namespace

CdBase::CdBase(AppContext& ctx, QTcpSocket& socket, QObject* parent)
    : QObject(parent), m_ctx(ctx), m_socket(socket)
{
    m_watchdog.setSingleShot(true);
    m_watchdog.setInterval(m_connectTimeout);
    connect(&m_watchdog, &QTimer::timeout, this, &CdBase::onWatchdog);
    connect(&m_socket, &QTcpSocket::readyRead, this, &CdBase::onReadyRead);
    connect(&m_socket, &QTcpSocket::disconnected, this, &CdBase::onDisconnected);
}

CdBase::~CdBase()
{
    if (m_loop != nullptr) {
        m_loop->quit();
    }
}

void CdBase::setConnectTimeout(int milliseconds)
{
    m_connectTimeout = std::clamp(milliseconds, 5000, 65535);
    m_watchdog.setInterval(m_connectTimeout);
}

QString CdBase::GetCategory(int n) const
{
    return n >= 1 && n <= Categories() ? m_categories[n - 1] : QString();
}

QString CdBase::SiteAddress(int n) const
{
    return n >= 1 && n <= Sites() ? m_sites[n - 1].address : QString();
}

quint16 CdBase::SitePort(int n) const
{
    return n >= 1 && n <= Sites() ? m_sites[n - 1].port : quint16(0);
}

QString CdBase::SiteLocation(int n) const
{
    return n >= 1 && n <= Sites() ? m_sites[n - 1].location : QString();
}

QString CdBase::GetMyHostName() const
{
    return QHostInfo::localHostName();
}

QString CdBase::NewLineFix(const QString& text)
{
    QString fixed = text;
    return fixed.replace(QStringLiteral("\\n"), kLineEnd);
}

// --- the wait -------------------------------------------------------------------------

bool CdBase::connected() const
{
    return m_socket.state() == QAbstractSocket::ConnectedState;
}

void CdBase::send(const QString& line)
{
    m_socket.write(line.toUtf8());
}

bool CdBase::request(const QString& line, Gather gather)
{
    if (m_cancelled) {
        return false;
    }
    if (!line.isEmpty()) {
        send(line);
    }
    m_replyBytes.clear();
    m_replyBuffer.clear();
    m_waiting = true;
    m_timedOut = false;
    m_gather = gather;
    m_watchdog.start(m_connectTimeout);

    // Waits without blocking: socket data, the watchdog and the window's own timers are
    // all delivered here.
    QEventLoop loop;
    m_loop = &loop;
    while (m_waiting && !m_timedOut) {
        loop.exec();
    }
    m_loop = nullptr;
    m_watchdog.stop();
    m_waiting = false;
    if (m_timedOut) {
        m_replyBytes.clear();
        return false;
    }
    m_replyBuffer = decodeReplyText(m_replyBytes);
    return true;
}

void CdBase::onReadyRead()
{
    const QByteArray chunk = m_socket.readAll();
    if (!m_waiting) {
        return; // nobody asked: the goodbye, or the tail of a reply taken as one chunk
    }
    if (m_gather == Gather::FirstChunk) {
        m_replyBytes = chunk;
        m_waiting = false;
    } else {
        m_replyBytes += chunk;
        // Only the end of what has come counts: a mark inside the data is not the end.
        if (endsWithEndMark(m_replyBytes)) {
            m_waiting = false;
            m_gather = Gather::FirstChunk;
        }
    }
    if (!m_waiting && m_loop != nullptr) {
        m_loop->quit();
    }
}

void CdBase::onDisconnected()
{
    if (m_socket.bytesAvailable() > 0) {
        onReadyRead();
    }
    // A wait in progress runs on to its time-out.
    m_socket.close();
}

void CdBase::onWatchdog()
{
    m_socket.abort();
    emit sessionStatus(QStringLiteral("Ошибка соединения!"));
    m_timedOut = true;
    if (m_loop != nullptr) {
        m_loop->quit();
    }
}

void CdBase::cancel()
{
    m_cancelled = true;
    m_socket.abort();
    m_timedOut = true;
    if (m_loop != nullptr) {
        m_loop->quit();
    }
}

void CdBase::tell(const QString& text)
{
    if (m_cancelled) {
        return; // the owner has stopped the session and wants no messages
    }
    emit aboutToPrompt();
    m_ctx.prompter().message(text, MessageStyle::Exclamation);
}

void CdBase::refused(const QString& reply)
{
    tell(QStringLiteral("Сервер отказал в соединении: ") + firstLine(reply).trimmed());
}

void CdBase::damagedReply()
{
    tell(kDamaged);
    cddbQuit();
}

int CdBase::cddbStatusCode(const QString& reply)
{
    return leadingNumber(reply.left(3));
}

// --- the steps ------------------------------------------------------------------------

bool CdBase::cddbConnect()
{
    if (m_socket.state() != QAbstractSocket::UnconnectedState) {
        return false;
    }
    if (m_server.isEmpty()) {
        m_server = kDefaultServer;
    }
    if (m_port == 0) {
        m_port = kDefaultPort;
    }
    m_socket.connectToHost(m_server, m_port);
    emit sessionStatus(QStringLiteral("Соединение с сервером: ") + m_server + kLineEnd);
    if (!request(QString(), Gather::FirstChunk)) {
        tell(kConnectTimedOut);
        return false;
    }
    if (isRefusal(cddbStatusCode(m_replyBuffer))) {
        // The server will close on us anyway; close first, so the next session can start.
        refused(m_replyBuffer);
        m_socket.abort();
        return false;
    }
    return true;
}

bool CdBase::cddbHello()
{
    if (m_email.isEmpty()) {
        tell(QStringLiteral("Необходимо указать E-mail адрес!"));
        return false;
    }
    if (m_hostName.isEmpty()) {
        tell(QStringLiteral("Необходимо указать имя главного компьютера!"));
    }
    if (!connected()) {
        return false;
    }
    emit sessionStatus(QStringLiteral("Идентификация..."));
    const QString line = QStringLiteral("cddb hello ") + m_email + u' ' + m_hostName + u' ' + m_appName +
                         u' ' + m_revision + kLineEnd;
    if (!request(line, Gather::FirstChunk)) {
        tell(kConnectTimedOut);
        return false;
    }
    if (isRefusal(cddbStatusCode(m_replyBuffer))) {
        refused(m_replyBuffer);
        return false;
    }
    return true;
}

QString CdBase::cddbQuery(const QString& query)
{
    QString line = query;
    if (line.isEmpty()) {
        QStringList offsets;
        for (const qint32 offset : std::as_const(m_offsets)) {
            offsets.append(QString::number(offset));
        }
        line = QStringLiteral("cddb query ") + m_cdid + u' ' + QString::number(m_tracks) + u' ' +
               offsets.join(u' ') + u' ' + QString::number(m_discLength) + kLineEnd;
    }
    emit sessionStatus(QStringLiteral("Отправка запроса..."));
    if (!request(line, Gather::FirstChunk)) {
        tell(kQueryTimedOut);
        m_replyBuffer = kTimeoutReply;
    }
    return m_replyBuffer;
}

QString CdBase::cddbRead(const QString& category, const QString& discId)
{
    if (category.isEmpty() && discId.isEmpty()) {
        return {};
    }
    emit sessionStatus(QStringLiteral("Загрузка данных..."));
    if (!request(QStringLiteral("cddb read ") + category + u' ' + discId + kLineEnd, Gather::ToEndMark)) {
        tell(kConnectTimedOut);
        m_replyBuffer = kTimeoutReply;
    }
    return m_replyBuffer;
}

QString CdBase::cddblscat()
{
    if (!request(QStringLiteral("cddb lscat") + kLineEnd, Gather::ToEndMark)) {
        tell(kConnectTimedOut);
        return kTimeoutReply;
    }
    if (!m_replyBuffer.startsWith(QStringLiteral("210"))) {
        return QStringLiteral("401");
    }
    m_categories.clear();
    for (QString rest = RemoveTopLine(m_replyBuffer); !rest.isEmpty() && !rest.startsWith(u'.');
         rest = RemoveTopLine(rest)) {
        if (m_categories.size() == kMaxCategories) {
            throw AppError(err::Overflow,
                           QStringLiteral("A category list of more than %1").arg(kMaxCategories));
        }
        m_categories.append(firstLine(rest));
    }
    return QStringLiteral("210 Okay category list follows");
}

QString CdBase::cddbSites()
{
    if (!request(QStringLiteral("sites") + kLineEnd, Gather::ToEndMark)) {
        tell(kConnectTimedOut);
        return kTimeoutReply;
    }
    if (m_replyBuffer.startsWith(QStringLiteral("401"))) {
        return QStringLiteral("401 No site information available.");
    }
    if (!m_replyBuffer.startsWith(QStringLiteral("210"))) {
        return m_replyBuffer;
    }
    m_sites.clear();
    for (QString rest = RemoveTopLine(m_replyBuffer); !rest.isEmpty() && !rest.startsWith(u'.');
         rest = RemoveTopLine(rest)) {
        if (m_sites.size() == kMaxSites) {
            throw AppError(err::Overflow, QStringLiteral("A site list of more than %1").arg(kMaxSites));
        }
        // "address port latitude longitude description", cut at fixed places: the port is
        // taken to its blank, then three characters are dropped whatever its length.
        QString line = firstLine(rest);
        const qsizetype blank = line.indexOf(u' ');
        if (blank < 0) {
            throw AppError(err::UnrecognizedFormat, QStringLiteral("A site line without a port: ") + line);
        }
        Site site;
        site.address = line.left(blank);
        line.remove(0, blank + 1);
        const qsizetype portEnd = line.indexOf(u' ', 1);
        site.port = static_cast<quint16>(leadingNumber(portEnd < 0 ? line : line.left(portEnd)));
        site.location = line.mid(3);
        m_sites.append(site);
    }
    return QStringLiteral("210 Ok, site information follows.");
}

QString CdBase::cddbMotd()
{
    if (!request(QStringLiteral("motd") + kLineEnd, Gather::ToEndMark)) {
        tell(kConnectTimedOut);
        return {};
    }
    return m_replyBuffer;
}

void CdBase::cddbQuit()
{
    if (!connected()) {
        return;
    }
    emit sessionStatus(QStringLiteral("Завершение сеанса связи..."));
    send(QStringLiteral("quit") + kLineEnd);
    m_replyBuffer.clear();
}

// --- the operations -------------------------------------------------------------------

QString CdBase::readMatch(const QString& category, const QString& discId)
{
    const QString reply = cddbRead(category, discId);
    CddbRecord record;
    const QString text = cddbDecodeEntry(reply, record);
    if (!reply.startsWith(kTimeoutReply)) {
        m_record = record;
    }
    return text;
}

// The query and what follows from its reply. `givenQuery` is the caller's own query line;
// without it the disc's figures make the line.
QString CdBase::queryAndRead(const QString& query, bool givenQuery)
{
    const QString reply = cddbQuery(query);
    QString result;
    switch (cddbStatusCode(reply)) {
    case 200: {
        const CddbMatch match = QueryMatchDecode(reply);
        result = readMatch(match.category, match.discId);
        break;
    }
    case 211: {
        // The first close match is read without asking.
        if (givenQuery) {
            m_matches = CloseMatchDecode(reply);
        }
        if (m_matches.isEmpty()) {
            tell(kDamaged);
            break;
        }
        result = readMatch(m_matches.first().category, m_matches.first().discId);
        break;
    }
    case 202:
        tell(givenQuery ? QStringLiteral("На сервере отсутствует информация о этом диске!") : kNoDescription);
        break;
    case 403:
        tell(kDamaged);
        break;
    case 409:
        tell(QStringLiteral("Сервер не отвечает!"));
        break;
    case 600:
        return {}; // the watchdog has closed the connection
    default:
        break;
    }
    cddbQuit();
    return result;
}

QString CdBase::GetCddbUseQueryString(QString& query)
{
    query = QStringLiteral("cddb query ") + query + kLineEnd;
    if (!cddbConnect()) {
        return QStringLiteral("Error");
    }
    try {
        if (!cddbHello()) {
            cddbQuit();
            return QStringLiteral("Error");
        }
        return queryAndRead(query, true);
    } catch (const AppError&) {
        damagedReply();
        return {};
    }
}

QString CdBase::GetCddb(const CddbDisc& disc)
{
    m_cdid = disc.id;
    m_tracks = disc.tracks;
    m_offsets = disc.offsets;
    m_discLength = disc.discLength;
    m_trackSeconds = disc.trackSeconds;
    if (!cddbConnect()) {
        return QStringLiteral("000 Failure to Connect");
    }
    try {
        if (!cddbHello()) {
            cddbQuit();
            return QStringLiteral("431 Handshake not successful, closing connection");
        }
        return queryAndRead(QString(), false);
    } catch (const AppError&) {
        damagedReply();
        return {};
    }
}

int CdBase::listAfterHello(QString (CdBase::*step)(), int (CdBase::*count)() const)
{
    if (!cddbConnect()) {
        return 0;
    }
    int result = 0;
    try {
        if (!cddbHello()) {
            cddbQuit();
            return 0;
        }
        if ((this->*step)().startsWith(QStringLiteral("210"))) {
            result = (this->*count)();
        }
    } catch (const AppError&) {
        damagedReply();
        return result;
    }
    cddbQuit();
    return result;
}

int CdBase::Getlscat()
{
    return listAfterHello(&CdBase::cddblscat, &CdBase::Categories);
}

int CdBase::GetSites()
{
    return listAfterHello(&CdBase::cddbSites, &CdBase::Sites);
}

QString CdBase::GetMotd()
{
    if (!cddbConnect()) {
        return QStringLiteral("Error");
    }
    if (!cddbHello()) {
        cddbQuit();
        return QStringLiteral("Error");
    }
    QString reply = cddbMotd();
    if (reply.startsWith(QStringLiteral("210"))) {
        reply = cddbMotd();
    }
    cddbQuit();
    return reply;
}

void CdBase::cddbSend(const QString& text)
{
    if (!connected()) {
        cddbConnect();
    }
    if (connected() && !text.isEmpty()) {
        send(text);
        m_replyBuffer.clear();
    }
}

// --- the drive -------------------------------------------------------------------------

void CdBase::noteMode()
{
    const int mode = m_device.Mode();
    if (mode != m_lastMode) {
        m_lastMode = mode;
        emit deviceStatus(CdDevice::modeText(mode));
    }
}

void CdBase::deviceCommand(const QString& command)
{
    m_device.Command(command);
    noteMode();
}

void CdBase::setFileName(const QString& drive)
{
    m_device.setFileName(drive);
    noteMode();
}

void CdBase::Refresh()
{
    m_device.Refresh();
    noteMode();
}

QString CdBase::cddbGetCdid()
{
    Refresh();
    const bool wasOpen = m_device.Mode() != CdDevice::kNotOpen;
    if (!wasOpen) {
        deviceCommand(QStringLiteral("Open"));
    }
    if (m_device.Mode() == CdDevice::kNotOpen) {
        tell(kNoDeviceAccess);
        return {};
    }
    const auto closeAgain = [this, wasOpen] {
        if (!wasOpen) {
            deviceCommand(QStringLiteral("Close"));
        }
    };
    m_tracks = m_device.Tracks();
    if (m_tracks == 0) {
        tell(kNoDescription);
        closeAgain();
        return {};
    }
    const std::optional<CddbDisc> disc = cddbDiscFromToc(m_device.toc());
    if (!disc) {
        // Only a damaged table of contents lists more tracks than a disc can hold.
        emit aboutToPrompt();
        ReportErrorAndGoOn(m_ctx, QStringLiteral("CdBase, cddbGetCdid()"),
                           AppError(err::Overflow, QStringLiteral("A disc of %1 tracks").arg(m_tracks)));
        m_cdid.clear();
        closeAgain();
        return {};
    }
    m_cdid = disc->id;
    m_tracks = disc->tracks;
    m_offsets = disc->offsets;
    m_discLength = disc->discLength;
    m_trackSeconds = disc->trackSeconds;
    closeAgain();
    return m_cdid;
}

QString CdBase::GetQueryString()
{
    if (m_waiting) {
        return {};
    }
    m_cdid = cddbGetCdid();
    if (m_cdid.isEmpty()) {
        return {};
    }
    CddbDisc disc;
    disc.id = m_cdid;
    disc.tracks = m_tracks;
    disc.offsets = m_offsets;
    disc.discLength = m_discLength;
    return vinora::GetQueryString(disc);
}

int CdBase::SongLength(int track, bool fromDevice)
{
    if (!fromDevice) {
        return track >= 1 && track <= m_tracks && track <= m_trackSeconds.size() ? m_trackSeconds[track - 1]
                                                                                 : 0;
    }
    m_device.setTrack(track);
    if (track < 1 || track > m_device.Tracks()) {
        return 0;
    }
    const quint32 length = m_device.TrackLength();
    return int(length & 0xFF) * 60 + int((length >> 8) & 0xFF);
}

void CdBase::Command(const QString& command)
{
    static const QStringList known{QStringLiteral("OPEN"),  QStringLiteral("CLOSE"), QStringLiteral("PLAY"),
                                   QStringLiteral("PAUSE"), QStringLiteral("STOP"),  QStringLiteral("PREV"),
                                   QStringLiteral("NEXT"),  QStringLiteral("EJECT")};
    const QString word = command.trimmed().toUpper();
    if (!known.contains(word)) {
        return;
    }
    deviceCommand(word);
    if (word == u"OPEN" && m_device.Mode() == CdDevice::kNotOpen) {
        throw AppError(err::PathFileAccess, kNoDeviceAccess);
    }
}

QString CdBase::Position(int kind)
{
    m_device.setTrack(1);
    // Before track 1 (its pregap) counts as its start.
    qint32 frames = std::max(MsfToFrames(m_device.Position()) - MsfToFrames(m_device.TrackPosition()), 0);
    const qint32 totalFrames = frames;
    const quint32 packed = FramesToMsf(frames);
    const int minutes = int(packed & 0xFF);
    const int seconds = int((packed >> 8) & 0xFF);
    switch (kind) {
    case 1:
        return QString::number(packed);
    case 2:
        return QString::number(totalFrames);
    case 3:
        return QString::number(minutes * 60 + seconds);
    case 4:
        return QString::number(minutes) + u':' + FrontPad(QString::number(seconds), 2);
    default:
        return {};
    }
}

int CdBase::CurrentTrack()
{
    Refresh();
    if (m_device.Mode() == CdDevice::kNotOpen) {
        return 0;
    }
    const qint32 position = MsfToFrames(m_device.Position());
    const int selected = m_device.Track();
    int current = 0;
    for (int track = 1; track <= m_device.Tracks(); ++track) {
        m_device.setTrack(track);
        const qint32 start = MsfToFrames(m_device.TrackPosition());
        if (start <= position && position <= start + MsfToFrames(m_device.TrackLength())) {
            current = track;
        }
    }
    m_device.setTrack(selected);
    return current;
}

void CdBase::setCurrentTrack(int track)
{
    if (track < 1 || track > m_device.Tracks()) {
        return;
    }
    deviceCommand(QStringLiteral("Stop"));
    m_device.setTrack(track);
    deviceCommand(QStringLiteral("Seek"));
}

} // namespace vinora
