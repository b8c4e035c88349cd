#include "FakeCddbServer.h"

#include <QDir>
#include <QFile>
#include <QTcpSocket>
#include <QTimer>

namespace vinora::test {
namespace {

const QByteArray kGreeting = "201 vm CDDBP server v1.5.2PL0 ready at Sun Nov 22 04:51:08 2026\r\n";
constexpr int kChunkPause = 10; // ms between the pieces of a reply sent apart

QByteArray crlf(QByteArray text)
{
    text.replace("\r\n", "\n");
    text.replace("\n", "\r\n");
    if (!text.isEmpty() && !text.endsWith("\r\n")) {
        text += "\r\n";
    }
    return text;
}

QByteArray valueOf(const QByteArray& record, const QByteArray& key)
{
    for (const QByteArray& line : record.split('\n')) {
        if (line.startsWith(key)) {
            return line.mid(key.size()).trimmed();
        }
    }
    return {};
}

} // namespace

FakeCddbServer::FakeCddbServer(QString recordFolder, QObject* parent)
    : QObject(parent), m_folder(std::move(recordFolder))
{
    connect(&m_server, &QTcpServer::newConnection, this, &FakeCddbServer::onConnection);
}

bool FakeCddbServer::start()
{
    return m_server.listen(QHostAddress::LocalHost, 0);
}

void FakeCddbServer::reply(const QString& command, const QByteArray& bytes)
{
    m_plans[command] = Plan{Mode::Bytes, {bytes}, 0};
}

void FakeCddbServer::replyInChunks(const QString& command, const QList<QByteArray>& chunks)
{
    m_plans[command] = Plan{Mode::Chunks, chunks, 0};
}

void FakeCddbServer::splitReply(const QString& command, int size)
{
    m_plans[command] = Plan{Mode::Split, {}, size};
}

void FakeCddbServer::silence(const QString& command)
{
    m_plans[command] = Plan{Mode::Silent, {}, 0};
}

void FakeCddbServer::stopMidReply(const QString& command)
{
    m_plans[command] = Plan{Mode::StopMidReply, {}, 0};
}

void FakeCddbServer::hangUp(const QString& command)
{
    m_plans[command] = Plan{Mode::HangUp, {}, 0};
}

QByteArray FakeCddbServer::record(const QString& category, const QString& discId) const
{
    QFile file(QDir(m_folder).filePath(category + u'_' + discId + QStringLiteral(".xmcd")));
    if (category.contains(u'/') || discId.contains(u'/') || !file.open(QIODevice::ReadOnly)) {
        return {};
    }
    return crlf(file.readAll());
}

QStringList FakeCddbServer::categories() const
{
    QStringList names;
    const QStringList files = QDir(m_folder).entryList({QStringLiteral("*.xmcd")}, QDir::Files, QDir::Name);
    for (const QString& file : files) {
        const QString category = file.section(u'_', 0, 0);
        if (!names.contains(category)) {
            names.append(category);
        }
    }
    return names;
}

QByteArray FakeCddbServer::recordReply(const QString& category, const QString& discId) const
{
    const QByteArray data = record(category, discId);
    if (data.isEmpty()) {
        return "401 " + category.toLatin1() + ' ' + discId.toLatin1() + " No such CD entry in database.\r\n";
    }
    return "210 " + category.toLatin1() + ' ' + discId.toLatin1() +
           " CD database entry follows (until terminating `.')\r\n" + data + ".\r\n";
}

QByteArray FakeCddbServer::usualReply(const QByteArray& line)
{
    const QList<QByteArray> words = line.trimmed().split(' ');
    const QByteArray verb = words.value(0) == "cddb" ? "cddb " + words.value(1) : words.value(0);
    if (verb == "cddb hello") {
        return "200 Hello and welcome " + words.value(2) + '@' + words.value(3) + " running " +
               words.value(4) + ' ' + words.value(5) + ".\r\n";
    }
    if (verb == "cddb query") {
        const QString id = QString::fromLatin1(words.value(2));
        QList<QByteArray> found;
        for (const QString& category : categories()) {
            const QByteArray data = record(category, id);
            if (!data.isEmpty()) {
                found.append(category.toLatin1() + ' ' + id.toLatin1() + ' ' + valueOf(data, "DTITLE="));
            }
        }
        if (found.isEmpty()) {
            return "202 No match for disc ID " + id.toLatin1() + ".\r\n";
        }
        if (found.size() == 1) {
            return "200 " + found.first() + "\r\n";
        }
        return "210 Found exact matches, list follows (until terminating `.')\r\n" + found.join("\r\n") +
               "\r\n.\r\n";
    }
    if (verb == "cddb read") {
        return recordReply(QString::fromLatin1(words.value(2)), QString::fromLatin1(words.value(3)));
    }
    if (verb == "cddb lscat") {
        return "210 OK, category list follows (until terminating `.')\r\n" +
               categories().join(u"\r\n").toLatin1() + "\r\n.\r\n";
    }
    if (verb == "sites") {
        return "401 No site information available.\r\n";
    }
    if (verb == "motd") {
        return "210 Last modified: 11/22/2026 04:50:15 MOTD follows (until terminating `.')\r\n"
               "Local test server for client tests.\r\n.\r\n";
    }
    if (verb == "quit") {
        return "230 vm Closing connection.  Goodbye.\r\n";
    }
    return "500 Unrecognized command.\r\n";
}

void FakeCddbServer::onConnection()
{
    while (QTcpSocket* socket = m_server.nextPendingConnection()) {
        ++connections;
        socket->setParent(this);
        socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] { onData(socket); });
        connect(socket, &QTcpSocket::disconnected, this, [this, socket] {
            m_pending.remove(socket);
            m_greeted.remove(socket);
            socket->deleteLater();
        });
        answer(socket, QStringLiteral("greeting"), kGreeting);
    }
}

void FakeCddbServer::onData(QTcpSocket* socket)
{
    QByteArray pending = m_pending.take(socket) + socket->readAll();
    for (qsizetype end = pending.indexOf("\r\n"); end >= 0; end = pending.indexOf("\r\n")) {
        const QByteArray line = pending.left(end + 2);
        pending.remove(0, end + 2);
        received.append(line);
        const QList<QByteArray> words = line.trimmed().split(' ');
        const QByteArray verb = words.value(0) == "cddb" ? "cddb " + words.value(1) : words.value(0);
        QByteArray usual = usualReply(line);
        if (verb == "cddb hello") {
            m_greeted.insert(socket);
        } else if (verb == "cddb query" && !m_greeted.contains(socket)) {
            usual = "409 No handshake.\r\n";
        }
        const QString command = QString::fromLatin1(verb);
        answer(socket, command, usual);
        if (verb == "quit") {
            socket->disconnectFromHost();
            return;
        }
        if (m_plans.value(command).mode == Mode::HangUp) {
            return;
        }
    }
    m_pending.insert(socket, pending);
}

void FakeCddbServer::answer(QTcpSocket* socket, const QString& command, const QByteArray& usual)
{
    const Plan plan = m_plans.value(command);
    switch (plan.mode) {
    case Mode::Usual:
        socket->write(usual);
        break;
    case Mode::Bytes:
        socket->write(plan.chunks.value(0));
        break;
    case Mode::Chunks:
        sendApart(socket, plan.chunks);
        break;
    case Mode::Split: {
        QList<QByteArray> pieces;
        for (qsizetype at = 0; at < usual.size(); at += plan.size) {
            pieces.append(usual.mid(at, plan.size));
        }
        sendApart(socket, pieces);
        break;
    }
    case Mode::Silent:
        break;
    case Mode::StopMidReply:
        socket->write(usual.left(usual.size() / 2));
        break;
    case Mode::HangUp:
        socket->disconnectFromHost();
        break;
    }
    socket->flush();
}

void FakeCddbServer::sendApart(QTcpSocket* socket, const QList<QByteArray>& chunks)
{
    const QPointer<QTcpSocket> guarded(socket);
    for (qsizetype i = 0; i < chunks.size(); ++i) {
        QTimer::singleShot(kChunkPause * static_cast<int>(i), this, [guarded, chunk = chunks[i]] {
            if (guarded && guarded->state() == QAbstractSocket::ConnectedState) {
                guarded->write(chunk);
                guarded->flush();
            }
        });
    }
}

} // namespace vinora::test
