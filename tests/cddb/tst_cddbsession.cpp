#include "FakeCddbServer.h"
#include "cddb/CdBase.h"
#include "support/ScriptedPrompter.h"
#include "support/TestMain.h"

#include <QSignalSpy>
#include <QTcpSocket>
#include <QTimer>

using namespace vinora;
using vinora::test::FakeCddbServer;

namespace {

const QString kRecords = QStringLiteral(VINORA_TEST_DATA "/cddb");
const QByteArray kHello = "cddb hello tester@example.org workstation vinora 1.0\r\n";
const QByteArray kQuit = "quit\r\n";
const QString kConnectTimedOut = "Время ожидания соединения с сервером истекло!";
const QString kDamaged = "Данные повреждены!";
const QByteArray kRockQuery = "2b055c04 4 150 25324 44858 76057 1374";
const QByteArray kCloseMatches = "211 Found inexact matches, list follows (until terminating `.')\r\n";

QByteArray queryLine(const QByteArray& arguments)
{
    return "cddb query " + arguments + "\r\n";
}

QByteArray readLine(const QByteArray& category, const QByteArray& id)
{
    return "cddb read " + category + ' ' + id + "\r\n";
}

QStringList textsOf(const QSignalSpy& spy)
{
    QStringList texts;
    for (const QList<QVariant>& raised : spy) {
        texts.append(raised.at(0).toString());
    }
    return texts;
}

// A session against a fresh fake server, with the scripted prompter of a test application.
struct Session
{
    Session()
    {
        started = server.start();
        cddb.setServer("127.0.0.1");
        cddb.setPort(server.port());
        cddb.setEmail("tester@example.org");
        cddb.setHostName("workstation");
        cddb.setConnectTimeout(5000);
    }
    QStringList messages() const { return app.prompter.texts(); }
    // What the server got, once what was sent has had time to arrive.
    QList<QByteArray> received()
    {
        QTest::qWait(150);
        return server.received;
    }
    // The record asked for by its query line (which the session rewrites in place).
    QString useQuery(const QByteArray& query = kRockQuery)
    {
        QString text = QString::fromLatin1(query);
        return cddb.GetCddbUseQueryString(text);
    }
    // The last session is over once the server has closed it.
    bool closed()
    {
        return QTest::qWaitFor([&] { return socket.state() == QAbstractSocket::UnconnectedState; });
    }

    test::TestApp app;
    FakeCddbServer server{kRecords};
    QTcpSocket socket;
    CdBase cddb{app.ctx, socket};
    bool started = false;
};

} // namespace

class tst_cddbsession : public QObject
{
    Q_OBJECT

private slots:
    void connectTimeoutIsClamped_data()
    {
        QTest::addColumn<int>("given");
        QTest::addColumn<int>("kept");
        QTest::newRow("too short") << 1000 << 5000;
        QTest::newRow("shortest") << 5000 << 5000;
        QTest::newRow("in range") << 20000 << 20000;
        QTest::newRow("longest") << 65535 << 65535;
        QTest::newRow("too long") << 70000 << 65535;
    }

    void connectTimeoutIsClamped()
    {
        QFETCH(int, given);
        Session s;
        s.cddb.setConnectTimeout(given);
        QTEST(s.cddb.ConnectTimeout(), "kept");
    }

    void queryReplies_data()
    {
        QTest::addColumn<QByteArray>("queryReply"); // empty: what the server holds
        QTest::addColumn<QString>("result");        // how the record read starts
        QTest::addColumn<QStringList>("messages");
        QTest::addColumn<QList<QByteArray>>("lines");
        const QList<QByteArray> noRead{kHello, queryLine(kRockQuery), kQuit};
        const auto row = [&](const char* tag, const QByteArray& reply, const QString& message = {}) {
            QTest::newRow(tag) << reply << QString()
                               << (message.isEmpty() ? QStringList() : QStringList{message}) << noRead;
        };
        QTest::newRow("200 exact match read")
            << QByteArray()
            << "Tuhonvarjo / Syvyyden Syli\r\n4\r\nSyvyyden Syli\r\nTyhjyys\r\nJoutsenen "
               "Siivillä\r\nSurumarssi"
            << QStringList()
            << QList<QByteArray>{kHello, queryLine(kRockQuery), readLine("rock", "2b055c04"), kQuit};
        QTest::newRow("211 first close match read without asking")
            << kCloseMatches + "classical 0a0f5811 Maria Venuti / Maria Venuti Sings Schubert, Schoenberg, "
                               "Schumann\r\nrock 2b055c04 Tuhonvarjo / Syvyyden Syli\r\n.\r\n"
            << "Maria Venuti / Maria Venuti Sings Schubert, Schoenberg, Schumann\r\n17" << QStringList()
            << QList<QByteArray>{kHello, queryLine(kRockQuery), readLine("classical", "0a0f5811"), kQuit};
        row("210 several exact matches", "210 Found exact matches, list follows (until terminating `.')\r\n"
                                         "misc 2b055c04 Tuhonvarjo / Syvyyden Syli\r\n"
                                         "rock 2b055c04 Tuhonvarjo / Syvyyden Syli\r\n.\r\n");
        row("202 no match", "202 No match for disc ID 2b055c04.\r\n",
            "На сервере отсутствует информация о этом диске!");
        row("403 damaged", "403 Database entry is corrupt.\r\n", kDamaged);
        row("409 no handshake", "409 No handshake.\r\n", "Сервер не отвечает!");
        row("401 other code", "401 Permission denied.\r\n");
        row("211 without matches", kCloseMatches, kDamaged);
        QByteArray tooMany = kCloseMatches;
        for (int i = 0; i <= kCddbMaxEntries; ++i) {
            tooMany += "rock " + QByteArray::number(0x2b055c04 + i, 16) + " Artist / Album\r\n";
        }
        row("211 with more matches than kept", tooMany + ".\r\n", kDamaged);
    }

    void queryReplies()
    {
        QFETCH(QByteArray, queryReply);
        QFETCH(QString, result);
        QFETCH(QStringList, messages);
        Session s;
        QVERIFY(s.started);
        if (!queryReply.isEmpty()) {
            s.server.reply("cddb query", queryReply);
        }
        QString query = QString::fromLatin1(kRockQuery);
        const QString got = s.cddb.GetCddbUseQueryString(query);
        QVERIFY2(result.isEmpty() ? got.isEmpty() : got.startsWith(result), qPrintable(got));
        QCOMPARE(query, QString::fromLatin1(queryLine(kRockQuery)));
        QCOMPARE(s.messages(), messages);
        QTEST(s.received(), "lines");
    }

    void linesOnTheWireAndStatuses()
    {
        Session s;
        QSignalSpy statuses(&s.cddb, &CdBase::sessionStatus);
        const QString result = s.cddb.GetCddb({"2b055c04", 4, {150, 25324, 44858, 76057}, 1372});
        QVERIFY2(result.startsWith("Tuhonvarjo / Syvyyden Syli\r\n4\r\n"), qPrintable(result));
        QCOMPARE(s.cddb.Cdid(), QString("2b055c04"));
        QCOMPARE(s.received(), (QList<QByteArray>{kHello, queryLine("2b055c04 4 150 25324 44858 76057 1372"),
                                                  readLine("rock", "2b055c04"), kQuit}));
        QCOMPARE(textsOf(statuses),
                 (QStringList{"Соединение с сервером: 127.0.0.1\r\n", "Идентификация...",
                              "Отправка запроса...", "Загрузка данных...", "Завершение сеанса связи..."}));
        QCOMPARE(s.messages(), QStringList());
    }

    void discWithoutDescription()
    {
        Session s;
        QCOMPARE(s.cddb.GetCddb({"0badbeef", 1, {150}, 100}), QString());
        QCOMPARE(s.messages(), QStringList{"На сервере отсутствует описание для этого диска!"});
        QCOMPARE(s.received(), (QList<QByteArray>{kHello, queryLine("0badbeef 1 150 100"), kQuit}));
    }

    // A disc read from the drive takes the first close match of the last list decoded.
    void closeMatchForADiscUsesTheListDecodedBefore()
    {
        Session s;
        const QByteArray closeMatches = kCloseMatches + "jazz 1c11c714 Various / Jazz Manouche CD 1\r\n.\r\n";
        const CddbDisc disc{"1c11c715", 1, {150}, 4553};
        s.server.reply("cddb query", closeMatches);
        QCOMPARE(s.cddb.GetCddb(disc), QString());
        QCOMPARE(s.messages(), QStringList{kDamaged});

        QVERIFY(s.closed());
        s.server.reply("cddb query", kCloseMatches + "rock 2b055c04 Tuhonvarjo / Syvyyden Syli\r\n.\r\n");
        QVERIFY(s.useQuery().startsWith("Tuhonvarjo / Syvyyden Syli"));
        s.server.reply("cddb query", closeMatches);
        QVERIFY(s.closed());
        QVERIFY(s.cddb.GetCddb(disc).startsWith("Tuhonvarjo / Syvyyden Syli"));
        QCOMPARE(s.received().mid(7), (QList<QByteArray>{kHello, queryLine("1c11c715 1 150 4553"),
                                                         readLine("rock", "2b055c04"), kQuit}));
        QCOMPARE(s.messages(), QStringList{kDamaged});
    }

    void servedRecordsDecode_data()
    {
        QTest::addColumn<QByteArray>("query");
        QTest::addColumn<int>("pieces");       // the record sent in pieces of this many bytes; 0: whole
        QTest::addColumn<QStringList>("disc"); // category, artist, album
        QTest::addColumn<int>("songs");
        QTest::addColumn<int>("song");
        QTest::addColumn<QString>("name");
        QTest::newRow("Latin-1") << kRockQuery << 0 << QStringList{"rock", "Tuhonvarjo", "Syvyyden Syli"} << 4
                                 << 3 << "Joutsenen Siivillä";
        QTest::newRow("UTF-8") << QByteArray("1c11c714 20 150 4553") << 0
                               << QStringList{"jazz", "Various", "Jazz Manouche CD 1"} << 20 << 15
                               << "Christian Escoudé, Dorado Schmitt, Babik Reinhardt: Où Es Tu Mon Amour";
        const QStringList banjo{"misc", "Dan Levenson",
                                "Old Time Festival Tunes For Clawhammer Banjo (Disc 2)"};
        QTest::newRow("57 tracks") << QByteArray("2f0d8939 57 150 3467") << 0 << banjo << 57 << 57
                                   << "Yellow Rose of Texas";
        QTest::newRow("57 tracks in small pieces")
            << QByteArray("2f0d8939 57 150 3467") << 50 << banjo << 57 << 57 << "Yellow Rose of Texas";
        QTest::newRow("GB18030") << QByteArray("a70c310c 12 150 2000") << 0
                                 << QStringList{"misc", "周杰伦", "十一月的萧邦"} << 12 << 0 << "";
    }

    void servedRecordsDecode()
    {
        QFETCH(QByteArray, query);
        QFETCH(int, pieces);
        QFETCH(QStringList, disc);
        QFETCH(int, song);
        Session s;
        if (pieces > 0) {
            s.server.splitReply("cddb read", pieces);
        }
        const QString result = s.useQuery(query);
        QVERIFY2(result.startsWith(disc[1]), qPrintable(result));
        QCOMPARE((QStringList{s.cddb.Category(), s.cddb.Artist(), s.cddb.CdTitle()}), disc);
        QTEST(s.cddb.record().tracks(), "songs");
        QTEST(s.cddb.record().SongName(song), "name");
        QCOMPARE(s.messages(), QStringList());
    }

    // A multi-line reply ends only where the end mark is the last thing received.
    void multiLineReplyGathered_data()
    {
        QTest::addColumn<QList<QByteArray>>("chunks");
        QTest::addColumn<QStringList>("songs");
        const QByteArray head = "210 rock 2b055c04 CD database entry follows (until terminating `.')\r\n"
                                "DISCID=2b055c04\r\nDTITLE=Artist / Album\r\n";
        QTest::newRow("end mark in the middle of a chunk")
            << QList<QByteArray>{head + ".\r\nTTITLE0=First", " song\r\nTTITLE1=Second\r\n.\r\n"}
            << QStringList{"First song", "Second"};
        QTest::newRow("end mark cut between chunks")
            << QList<QByteArray>{head + "TTITLE0=Only\r\n.", "\r\n"} << QStringList{"Only"};
        QTest::newRow("end mark cut before its dot")
            << QList<QByteArray>{head + "TTITLE0=One\r\n", ".\r\n"} << QStringList{"One"};
        QList<QByteArray> bytes;
        for (const char c : QByteArray(head + "TTITLE0=Byte\r\nTTITLE1=By byte\r\n.\r\n")) {
            bytes.append(QByteArray(1, c));
        }
        QTest::newRow("one byte at a time") << bytes << QStringList{"Byte", "By byte"};
    }

    void multiLineReplyGathered()
    {
        QFETCH(QList<QByteArray>, chunks);
        Session s;
        s.server.replyInChunks("cddb read", chunks);
        s.useQuery();
        QTEST(s.cddb.record().songNames, "songs");
        QCOMPARE(s.messages(), QStringList());
        QCOMPARE(s.received().last(), kQuit);
    }

    // A refused greeting or handshake ends the session; the next one starts afresh.
    void refusals_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<QByteArray>("refusal");
        QTest::addColumn<bool>("fromDisc");
        QTest::addColumn<QString>("result");
        QTest::addColumn<QList<QByteArray>>("lines");
        const QByteArray noGreeting = "432 No connections allowed: permission denied";
        const QByteArray noHello = "500 Unknown developer email";
        const QList<QByteArray> hello{kHello, kQuit};
        QTest::newRow("greeting, query")
            << "greeting" << noGreeting << false << "Error" << QList<QByteArray>();
        QTest::newRow("greeting, disc")
            << "greeting" << noGreeting << true << "000 Failure to Connect" << QList<QByteArray>();
        QTest::newRow("hello, query") << "cddb hello" << noHello << false << "Error" << hello;
        QTest::newRow("hello, disc") << "cddb hello" << noHello << true
                                     << "431 Handshake not successful, closing connection" << hello;
    }

    void refusals()
    {
        QFETCH(QString, command);
        QFETCH(QByteArray, refusal);
        QFETCH(bool, fromDisc);
        QFETCH(QString, result);
        Session s;
        s.server.reply(command, refusal + "\r\n");
        QCOMPARE(fromDisc ? s.cddb.GetCddb({"2b055c04", 4, {150, 25324, 44858, 76057}, 1374}) : s.useQuery(),
                 result);
        QCOMPARE(s.messages(), QStringList{"Сервер отказал в соединении: " + QString::fromLatin1(refusal)});
        QTEST(s.received(), "lines");
        QVERIFY(s.closed());
        s.server.reply(command,
                       command == "greeting"
                           ? QByteArray("201 vm CDDBP server v1.5.2PL0 ready at Sun Nov 22 04:51:08 2026\r\n")
                           : QByteArray("200 Hello and welcome tester@example.org running vinora 1.0.\r\n"));
        QVERIFY(s.useQuery().startsWith("Tuhonvarjo / Syvyyden Syli"));
        QCOMPARE(s.server.connections, 2);
    }

    void missingEmailAndHostName()
    {
        Session s;
        s.cddb.setEmail(QString());
        s.cddb.setHostName(QString());
        QCOMPARE(s.useQuery(), QString("Error"));
        QCOMPARE(s.messages(), QStringList{"Необходимо указать E-mail адрес!"});
        // The handshake step sends nothing; the session's own goodbye follows.
        QCOMPARE(s.received(), QList<QByteArray>{kQuit});

        Session t;
        t.cddb.setHostName(QString());
        QVERIFY(t.useQuery().startsWith("Tuhonvarjo"));
        QCOMPARE(t.messages(), QStringList{"Необходимо указать имя главного компьютера!"});
        QCOMPARE(t.received().first(), QByteArray("cddb hello tester@example.org  vinora 1.0\r\n"));
    }

    // Each costs one watchdog period.
    void timeouts_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<QString>("misbehaviour");
        QTest::addColumn<QString>("result");
        QTest::addColumn<QString>("message");
        QTest::addColumn<QList<QByteArray>>("lines");
        const auto row = [](const char* tag, const QString& command, const QString& misbehaviour,
                            const QString& result, const QString& message, const QList<QByteArray>& lines) {
            QTest::newRow(tag) << command << misbehaviour << result << message << lines;
        };
        const QList<QByteArray> read{kHello, queryLine(kRockQuery), readLine("rock", "2b055c04")};
        row("no greeting", "greeting", "silence", "Error", kConnectTimedOut, {});
        row("no answer to the query", "cddb query", "silence", "", "Время ожидания ответа на запрос истекло!",
            {kHello, queryLine(kRockQuery)});
        row("read without its end mark", "cddb read", "no end mark", "600 Timeout", kConnectTimedOut, read);
        row("peer closes instead of the record", "cddb read", "hang up", "600 Timeout", kConnectTimedOut,
            read);
        row("category list stops midway", "cddb lscat", "stop midway", "0", kConnectTimedOut,
            {kHello, "cddb lscat\r\n"});
    }

    void timeouts()
    {
        QFETCH(QString, command);
        QFETCH(QString, misbehaviour);
        QFETCH(QString, message);
        Session s;
        if (misbehaviour == "silence") {
            s.server.silence(command);
        } else if (misbehaviour == "hang up") {
            s.server.hangUp(command);
        } else if (misbehaviour == "stop midway") {
            s.server.stopMidReply(command);
        } else {
            QByteArray record = s.server.recordReply("rock", "2b055c04");
            record.chop(3);
            s.server.reply(command, record);
        }
        QSignalSpy statuses(&s.cddb, &CdBase::sessionStatus);
        // The window's timers keep running while the session waits.
        int ticks = 0;
        QTimer clock;
        connect(&clock, &QTimer::timeout, this, [&ticks] { ++ticks; });
        clock.start(100);
        const QString got = command == "cddb lscat" ? QString::number(s.cddb.Getlscat()) : s.useQuery();
        clock.stop();
        QTEST(got, "result");
        QCOMPARE(s.messages(), QStringList{message});
        QVERIFY(textsOf(statuses).contains("Ошибка соединения!"));
        QVERIFY2(ticks >= 20, qPrintable(QString::number(ticks)));
        // The watchdog closed the socket, so no goodbye follows.
        QCOMPARE(s.socket.state(), QAbstractSocket::UnconnectedState);
        QTEST(s.received(), "lines");
    }

    void categories_data()
    {
        QTest::addColumn<QByteArray>("reply"); // empty: the server's own list
        QTest::addColumn<int>("count");
        QTest::addColumn<QStringList>("ends"); // the first and the last kept
        QTest::addColumn<QStringList>("messages");
        const QStringList none{"", ""};
        const QByteArray head = "210 OK, category list follows (until terminating `.')\r\n";
        QTest::newRow("served") << QByteArray() << 8 << QStringList{"classical", "rock"} << QStringList();
        QTest::newRow("empty list") << head + ".\r\n" << 0 << none << QStringList();
        QTest::newRow("refused") << QByteArray("500 Unrecognized command.\r\n.\r\n") << 0 << none
                                 << QStringList();
        QByteArray many = head;
        for (int i = 0; i <= CdBase::kMaxCategories; ++i) {
            many += "genre" + QByteArray::number(i) + "\r\n";
        }
        QTest::newRow("more than 50") << many + ".\r\n"
                                      << 0 << QStringList{"genre0", "genre49"} << QStringList{kDamaged};
    }

    void categories()
    {
        QFETCH(QByteArray, reply);
        QFETCH(QStringList, messages);
        Session s;
        if (!reply.isEmpty()) {
            s.server.reply("cddb lscat", reply);
        }
        QTEST(s.cddb.Getlscat(), "count");
        const int kept = s.cddb.Categories();
        QTEST((QStringList{s.cddb.GetCategory(1), s.cddb.GetCategory(kept)}), "ends");
        QCOMPARE((QStringList{s.cddb.GetCategory(0), s.cddb.GetCategory(kept + 1)}), (QStringList{"", ""}));
        QCOMPARE(s.messages(), messages);
        QCOMPARE(s.received(), (QList<QByteArray>{kHello, "cddb lscat\r\n", kQuit}));
    }

    void sites()
    {
        Session s;
        s.server.reply("sites", "210 OK, site information follows (until terminating `.')\r\n"
                                "gnudb.gnudb.org 8880 N000.00 W000.00 Random gnudb server\r\n"
                                "cddb.example.org 888 N059.56 E030.18 St. Petersburg, Russia\r\n.\r\n");
        QCOMPARE(s.cddb.GetSites(), 2);
        QCOMPARE((QStringList{s.cddb.SiteAddress(1), s.cddb.SiteLocation(1), s.cddb.SiteAddress(2),
                              s.cddb.SiteLocation(2), s.cddb.SiteAddress(3)}),
                 (QStringList{"gnudb.gnudb.org", "0 N000.00 W000.00 Random gnudb server", "cddb.example.org",
                              " N059.56 E030.18 St. Petersburg, Russia", ""}));
        QCOMPARE((QList<quint16>{s.cddb.SitePort(1), s.cddb.SitePort(2), s.cddb.SitePort(0)}),
                 (QList<quint16>{8880, 888, 0}));
        QCOMPARE(s.received(), (QList<QByteArray>{kHello, "sites\r\n", kQuit}));

        Session none;
        none.server.reply("sites", "401 No site information available.\r\n.\r\n");
        QCOMPARE(none.cddb.GetSites(), 0);
        QCOMPARE(none.messages(), QStringList());
        QCOMPARE(none.received(), (QList<QByteArray>{kHello, "sites\r\n", kQuit}));
    }

    void messageOfTheDay()
    {
        Session s;
        const QByteArray head =
            "210 Last modified: 11/22/2026 04:50:15 MOTD follows (until terminating `.')\r\n";
        const QByteArray text = "Local test server\r\nfor client tests.\r\n.\r\n";
        s.server.replyInChunks("motd", {head, text});
        QCOMPARE(s.cddb.GetMotd(), QString::fromLatin1(head + text));
        QCOMPARE(s.received(), (QList<QByteArray>{kHello, "motd\r\n", "motd\r\n", kQuit}));
    }

    void sendAndQuit()
    {
        Session s;
        s.cddb.cddbQuit(); // not connected: nothing to say
        s.cddb.cddbSend("ver\r\n");
        QCOMPARE(s.socket.state(), QAbstractSocket::ConnectedState);
        s.cddb.cddbQuit();
        QCOMPARE(s.received(), (QList<QByteArray>{"ver\r\n", kQuit}));
        QVERIFY(s.closed());
        QCOMPARE(s.messages(), QStringList());
    }

    void newLineFix() { QCOMPARE(CdBase::NewLineFix("one\\ntwo\\n"), QString("one\r\ntwo\r\n")); }
};

VINORA_TEST_MAIN(tst_cddbsession)
#include "tst_cddbsession.moc"
