#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QObject>
#include <QPointer>
#include <QSet>
#include <QString>
#include <QTcpServer>

class QTcpSocket;

namespace vinora::test {

// A CDDB server on 127.0.0.1 that answers as a real one does, serving the xmcd records of a
// folder (files named "category_discid.xmcd"), and misbehaves on command. Each command is
// named by its verb: "greeting", "cddb hello", "cddb query", "cddb read", "cddb lscat",
// "sites", "motd", "quit".
class FakeCddbServer : public QObject
{
    Q_OBJECT

public:
    explicit FakeCddbServer(QString recordFolder, QObject* parent = nullptr);

    bool start();
    quint16 port() const { return m_server.serverPort(); }

    // `bytes` in place of the usual reply.
    void reply(const QString& command, const QByteArray& bytes);
    // These pieces in place of the usual reply, each sent on its own after a pause.
    void replyInChunks(const QString& command, const QList<QByteArray>& chunks);
    // The usual reply, cut in pieces of `size` bytes sent apart.
    void splitReply(const QString& command, int size);
    // No answer at all.
    void silence(const QString& command);
    // The first half of the usual reply, then nothing.
    void stopMidReply(const QString& command);
    // The connection closed in place of the reply.
    void hangUp(const QString& command);

    // Every line received, with its line end, in order.
    QList<QByteArray> received;
    int connections = 0;

    // The reply a well-behaved server gives to `line`.
    QByteArray usualReply(const QByteArray& line);
    QByteArray recordReply(const QString& category, const QString& discId) const;

private:
    enum class Mode { Usual, Bytes, Chunks, Split, Silent, StopMidReply, HangUp };
    struct Plan
    {
        Mode mode = Mode::Usual;
        QList<QByteArray> chunks;
        int size = 0;
    };

    void onConnection();
    void onData(QTcpSocket* socket);
    void answer(QTcpSocket* socket, const QString& command, const QByteArray& usual);
    void sendApart(QTcpSocket* socket, const QList<QByteArray>& chunks);
    QByteArray record(const QString& category, const QString& discId) const;
    QStringList categories() const;

    QString m_folder;
    QTcpServer m_server;
    QHash<QString, Plan> m_plans;
    QHash<QTcpSocket*, QByteArray> m_pending;
    QSet<QTcpSocket*> m_greeted;
};

} // namespace vinora::test
