#include "FakeCddbServer.h"
#include "cddb/CdBase.h"
#include "support/ScriptedPrompter.h"
#include "support/TestMain.h"

#include <QSignalSpy>
#include <QTcpSocket>
#include <QTimer>
#include <algorithm>

using namespace vinora;
using vinora::test::FakeCddbServer;

namespace {

const QString kRecords = QStringLiteral(VINORA_TEST_DATA "/cddb");
const QByteArray kHello = "cddb hello tester@example.org workstation vinora 1.0\r\n";
const QByteArray kQuit = "quit\r\n";
const QString kConnectTimedOut = "Время ожидания соединения с сервером истекло!";

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

    test::TestApp app;
    FakeCddbServer server{kRecords};
    QTcpSocket socket;
    CdBase cddb{app.ctx, socket};
    bool started = false;
};

QByteArray queryLine(const QByteArray& arguments)
{
    return "cddb query " + arguments + "\r\n";
}

QByteArray readLine(const QByteArray& category, const QByteArray& id)
{
    return "cddb read " + category + ' ' + id + "\r\n";
}

const QByteArray kRockQuery = "2b055c04 4 150 25324 44858 76057 1374";

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
        QFETCH(int, kept);
        Session s;
        s.cddb.setConnectTimeout(given);
        QCOMPARE(s.cddb.ConnectTimeout(), kept);
    }

    void queryReplies_data()
    {
        QTest::addColumn<QByteArray>("queryReply"); // empty: what the server holds
        QTest::addColumn<QString>("result");
        QTest::addColumn<QStringList>("messages");
        QTest::addColumn<QList<QByteArray>>("lines");

        const QList<QByteArray> noRead{kHello, queryLine(kRockQuery), kQuit};
        QTest::newRow("200 exact match read")
            << QByteArray()
            << "Tuhonvarjo / Syvyyden Syli\r\n4\r\nSyvyyden Syli\r\nTyhjyys\r\nJoutsenen "
               "Siivillä\r\nSurumarssi"
            << QStringList()
            << QList<QByteArray>{kHello, queryLine(kRockQuery), readLine("rock", "2b055c04"), kQuit};
        QTest::newRow("211 first close match read without asking")
            << QByteArray(
                   "211 Found inexact matches, list follows (until terminating `.')\r\n"
                   "classical 0a0f5811 Maria Venuti / Maria Venuti Sings Schubert, Schoenberg, Schumann\r\n"
                   "rock 2b055c04 Tuhonvarjo / Syvyyden Syli\r\n.\r\n")
            << "Maria Venuti / Maria Venuti Sings Schubert, Schoenberg, Schumann\r\n17" << QStringList()
            << QList<QByteArray>{kHello, queryLine(kRockQuery), readLine("classical", "0a0f5811"), kQuit};
        QTest::newRow("210 several exact matches")
            << QByteArray("210 Found exact matches, list follows (until terminating `.')\r\n"
                          "misc 2b055c04 Tuhonvarjo / Syvyyden Syli\r\nrock 2b055c04 Tuhonvarjo / Syvyyden "
                          "Syli\r\n.\r\n")
            << QString() << QStringList() << noRead;
        QTest::newRow("202 no match")
            << QByteArray("202 No match for disc ID 2b055c04.\r\n") << QString()
            << QStringList{"На сервере отсутствует информация о этом диске!"} << noRead;
        QTest::newRow("403 damaged") << QByteArray("403 Database entry is corrupt.\r\n") << QString()
                                     << QStringList{"Данные повреждены!"} << noRead;
        QTest::newRow("409 no handshake") << QByteArray("409 No handshake.\r\n") << QString()
                                          << QStringList{"Сервер не отвечает!"} << noRead;
        QTest::newRow("401 other code")
            << QByteArray("401 Permission denied.\r\n") << QString() << QStringList() << noRead;
        QTest::newRow("211 without matches")
            << QByteArray("211 Found inexact matches, list follows (until terminating `.')\r\n") << QString()
            << QStringList{"Данные повреждены!"} << noRead;
    }

    void queryReplies()
    {
        QFETCH(QByteArray, queryReply);
        QFETCH(QString, result);
        QFETCH(QStringList, messages);
        QFETCH(QList<QByteArray>, lines);
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
        QCOMPARE(s.received(), lines);
    }

    void closeMatchesBeyondTheLimitAreADamagedReply()
    {
        Session s;
        QByteArray reply = "211 Found inexact matches, list follows (until terminating `.')\r\n";
        for (int i = 0; i <= kCddbMaxEntries; ++i) {
            reply += "rock " + QByteArray::number(0x2b055c04 + i, 16) + " Artist / Album\r\n";
        }
        s.server.reply("cddb query", reply + ".\r\n");
        QString query = QString::fromLatin1(kRockQuery);
        QCOMPARE(s.cddb.GetCddbUseQueryString(query), QString());
        QCOMPARE(s.messages(), QStringList{"Данные повреждены!"});
        QCOMPARE(s.received(), (QList<QByteArray>{kHello, queryLine(kRockQuery), kQuit}));
    }

    void linesOnTheWireAndStatuses()
    {
        Session s;
        QSignalSpy statuses(&s.cddb, &CdBase::sessionStatus);
        CddbDisc disc;
        disc.id = "2b055c04";
        disc.tracks = 4;
        disc.offsets = {150, 25324, 44858, 76057};
        disc.discLength = 1372;
        const QString result = s.cddb.GetCddb(disc);
        QVERIFY2(result.startsWith("Tuhonvarjo / Syvyyden Syli\r\n4\r\n"), qPrintable(result));
        QCOMPARE(s.cddb.Cdid(), QString("2b055c04"));
        QCOMPARE(s.received(), (QList<QByteArray>{"cddb hello tester@example.org workstation vinora 1.0\r\n",
                                                  "cddb query 2b055c04 4 150 25324 44858 76057 1372\r\n",
                                                  "cddb read rock 2b055c04\r\n", "quit\r\n"}));
        QStringList texts;
        for (const QList<QVariant>& raised : statuses) {
            texts.append(raised.at(0).toString());
        }
        QCOMPARE(texts,
                 (QStringList{"Соединение с сервером: 127.0.0.1\r\n", "Идентификация...",
                              "Отправка запроса...", "Загрузка данных...", "Завершение сеанса связи..."}));
        QCOMPARE(s.messages(), QStringList());
    }

    void discWithoutDescription()
    {
        Session s;
        CddbDisc disc;
        disc.id = "0badbeef";
        disc.tracks = 1;
        disc.offsets = {150};
        disc.discLength = 100;
        QCOMPARE(s.cddb.GetCddb(disc), QString());
        QCOMPARE(s.messages(), QStringList{"На сервере отсутствует описание для этого диска!"});
        QCOMPARE(s.received(), (QList<QByteArray>{kHello, queryLine("0badbeef 1 150 100"), kQuit}));
    }

    // A disc read from the drive takes the first close match of the last list decoded.
    void closeMatchForADiscUsesTheListDecodedBefore()
    {
        Session s;
        const QByteArray closeMatches = "211 Found inexact matches, list follows (until terminating `.')\r\n"
                                        "jazz 1c11c714 Various / Jazz Manouche CD 1\r\n.\r\n";
        s.server.reply("cddb query", closeMatches);
        CddbDisc disc;
        disc.id = "1c11c715";
        disc.tracks = 1;
        disc.offsets = {150};
        disc.discLength = 4553;
        QCOMPARE(s.cddb.GetCddb(disc), QString());
        QCOMPARE(s.messages(), QStringList{"Данные повреждены!"});

        // A new session starts once the server has closed the last one.
        QTRY_COMPARE(s.socket.state(), QAbstractSocket::UnconnectedState);
        QString query = QString::fromLatin1(kRockQuery);
        s.server.reply("cddb query", "211 Found inexact matches, list follows (until terminating `.')\r\n"
                                     "rock 2b055c04 Tuhonvarjo / Syvyyden Syli\r\n.\r\n");
        QVERIFY(s.cddb.GetCddbUseQueryString(query).startsWith("Tuhonvarjo / Syvyyden Syli"));
        s.server.reply("cddb query", closeMatches);
        QTRY_COMPARE(s.socket.state(), QAbstractSocket::UnconnectedState);
        QVERIFY(s.cddb.GetCddb(disc).startsWith("Tuhonvarjo / Syvyyden Syli"));
        QCOMPARE(s.received().mid(7), (QList<QByteArray>{kHello, queryLine("1c11c715 1 150 4553"),
                                                         readLine("rock", "2b055c04"), kQuit}));
        QCOMPARE(s.messages(), QStringList{"Данные повреждены!"});
    }

    void servedRecordsDecode_data()
    {
        QTest::addColumn<QByteArray>("query");
        QTest::addColumn<QString>("category");
        QTest::addColumn<QString>("artist");
        QTest::addColumn<QString>("album");
        QTest::addColumn<int>("songs");
        QTest::addColumn<int>("song");
        QTest::addColumn<QString>("name");
        QTest::newRow("Latin-1") << QByteArray(kRockQuery) << "rock"
                                 << "Tuhonvarjo"
                                 << "Syvyyden Syli" << 4 << 3 << "Joutsenen Siivillä";
        QTest::newRow("UTF-8") << QByteArray("1c11c714 20 150 4553") << "jazz"
                               << "Various"
                               << "Jazz Manouche CD 1" << 20 << 15
                               << "Christian Escoudé, Dorado Schmitt, Babik Reinhardt: Où Es Tu Mon Amour";
        QTest::newRow("57 tracks") << QByteArray("2f0d8939 57 150 3467") << "misc"
                                   << "Dan Levenson"
                                   << "Old Time Festival Tunes For Clawhammer Banjo (Disc 2)" << 57 << 57
                                   << "Yellow Rose of Texas";
        QTest::newRow("GB18030") << QByteArray("a70c310c 12 150 2000") << "misc"
                                 << "周杰伦"
                                 << "十一月的萧邦" << 12 << 0 << "";
    }

    void servedRecordsDecode()
    {
        QFETCH(QByteArray, query);
        QFETCH(QString, category);
        QFETCH(QString, artist);
        QFETCH(QString, album);
        QFETCH(int, songs);
        QFETCH(int, song);
        QFETCH(QString, name);
        Session s;
        QString text = QString::fromLatin1(query);
        const QString result = s.cddb.GetCddbUseQueryString(text);
        QVERIFY2(result.startsWith(artist), qPrintable(result));
        QCOMPARE(s.cddb.Category(), category);
        QCOMPARE(s.cddb.Artist(), artist);
        QCOMPARE(s.cddb.CdTitle(), album);
        QCOMPARE(s.cddb.record().tracks(), songs);
        QCOMPARE(s.cddb.record().SongName(song), name);
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
        const QByteArray whole = head + "TTITLE0=Byte\r\nTTITLE1=By byte\r\n.\r\n";
        for (const char c : whole) {
            bytes.append(QByteArray(1, c));
        }
        QTest::newRow("one byte at a time") << bytes << QStringList{"Byte", "By byte"};
    }

    void multiLineReplyGathered()
    {
        QFETCH(QList<QByteArray>, chunks);
        QFETCH(QStringList, songs);
        Session s;
        s.server.replyInChunks("cddb read", chunks);
        QString query = QString::fromLatin1(kRockQuery);
        s.cddb.GetCddbUseQueryString(query);
        QCOMPARE(s.cddb.record().songNames, songs);
        QCOMPARE(s.messages(), QStringList());
        QCOMPARE(s.received().last(), kQuit);
    }

    void recordInManySmallChunks()
    {
        Session s;
        s.server.splitReply("cddb read", 50);
        QString query = "2f0d8939 57 150 3467";
        s.cddb.GetCddbUseQueryString(query);
        QCOMPARE(s.cddb.record().tracks(), 57);
        QCOMPARE(s.cddb.record().SongName(57), QString("Yellow Rose of Texas"));
        QCOMPARE(s.messages(), QStringList());
    }

    void refusals_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<bool>("fromDisc");
        QTest::addColumn<QString>("result");
        QTest::addColumn<QStringList>("messages");
        QTest::addColumn<QList<QByteArray>>("lines");
        const QString refusedGreeting =
            "Сервер отказал в соединении: 432 No connections allowed: permission denied";
        const QString refusedHello = "Сервер отказал в соединении: 500 Unknown developer email";
        QTest::newRow("greeting refused, query")
            << "greeting" << QByteArray("432 No connections allowed: permission denied\r\n") << false
            << "Error" << QStringList{refusedGreeting} << QList<QByteArray>();
        QTest::newRow("greeting refused, disc")
            << "greeting" << QByteArray("432 No connections allowed: permission denied\r\n") << true
            << "000 Failure to Connect" << QStringList{refusedGreeting} << QList<QByteArray>();
        QTest::newRow("hello refused, query")
            << "cddb hello" << QByteArray("500 Unknown developer email\r\n") << false << "Error"
            << QStringList{refusedHello} << QList<QByteArray>{kHello, kQuit};
        QTest::newRow("hello refused, disc") << "cddb hello" << QByteArray("500 Unknown developer email\r\n")
                                             << true << "431 Handshake not successful, closing connection"
                                             << QStringList{refusedHello} << QList<QByteArray>{kHello, kQuit};
    }

    void refusals()
    {
        QFETCH(QString, command);
        QFETCH(QByteArray, reply);
        QFETCH(bool, fromDisc);
        QFETCH(QString, result);
        QFETCH(QStringList, messages);
        QFETCH(QList<QByteArray>, lines);
        Session s;
        s.server.reply(command, reply);
        CddbDisc disc;
        disc.id = "2b055c04";
        disc.tracks = 4;
        disc.offsets = {150, 25324, 44858, 76057};
        disc.discLength = 1374;
        QString query = QString::fromLatin1(kRockQuery);
        QCOMPARE(fromDisc ? s.cddb.GetCddb(disc) : s.cddb.GetCddbUseQueryString(query), result);
        QCOMPARE(s.messages(), messages);
        QCOMPARE(s.received(), lines);
        // The session is over: the next one starts afresh, on a new connection.
        QTRY_COMPARE(s.socket.state(), QAbstractSocket::UnconnectedState);
        s.server.reply(command,
                       command == "greeting"
                           ? QByteArray("201 vm CDDBP server v1.5.2PL0 ready at Sun Nov 22 04:51:08 2026\r\n")
                           : QByteArray("200 Hello and welcome tester@example.org running vinora 1.0.\r\n"));
        query = QString::fromLatin1(kRockQuery);
        QVERIFY(s.cddb.GetCddbUseQueryString(query).startsWith("Tuhonvarjo / Syvyyden Syli"));
        QCOMPARE(s.server.connections, 2);
    }

    void missingEmailAndHostName()
    {
        Session s;
        s.cddb.setEmail(QString());
        s.cddb.setHostName(QString());
        QString query = QString::fromLatin1(kRockQuery);
        QCOMPARE(s.cddb.GetCddbUseQueryString(query), QString("Error"));
        QCOMPARE(s.messages(), QStringList{"Необходимо указать E-mail адрес!"});
        // The handshake step sends nothing; the session's own goodbye follows.
        QCOMPARE(s.received(), QList<QByteArray>{kQuit});

        Session t;
        t.cddb.setHostName(QString());
        query = QString::fromLatin1(kRockQuery);
        QVERIFY(t.cddb.GetCddbUseQueryString(query).startsWith("Tuhonvarjo"));
        QCOMPARE(t.messages(), QStringList{"Необходимо указать имя главного компьютера!"});
        QCOMPARE(t.received().first(), QByteArray("cddb hello tester@example.org  vinora 1.0\r\n"));
    }

    // Each costs one watchdog period.
    void timeouts_data()
    {
        QTest::addColumn<QString>("operation");
        QTest::addColumn<QString>("command");
        QTest::addColumn<QString>("misbehaviour");
        QTest::addColumn<QString>("result");
        QTest::addColumn<QString>("message");
        QTest::addColumn<QList<QByteArray>>("lines");
        QTest::newRow("no greeting") << "query"
                                     << "greeting"
                                     << "silence"
                                     << "Error" << kConnectTimedOut << QList<QByteArray>();
        QTest::newRow("no answer to the query")
            << "query"
            << "cddb query"
            << "silence"
            << ""
            << "Время ожидания ответа на запрос истекло!" << QList<QByteArray>{kHello, queryLine(kRockQuery)};
        QTest::newRow("read without its end mark")
            << "query"
            << "cddb read"
            << "no end mark"
            << "600 Timeout" << kConnectTimedOut
            << QList<QByteArray>{kHello, queryLine(kRockQuery), readLine("rock", "2b055c04")};
        QTest::newRow("peer closes instead of the record")
            << "query"
            << "cddb read"
            << "hang up"
            << "600 Timeout" << kConnectTimedOut
            << QList<QByteArray>{kHello, queryLine(kRockQuery), readLine("rock", "2b055c04")};
        QTest::newRow("category list stops midway")
            << "lscat"
            << "cddb lscat"
            << "stop midway"
            << "0" << kConnectTimedOut << QList<QByteArray>{kHello, "cddb lscat\r\n"};
    }

    void timeouts()
    {
        QFETCH(QString, operation);
        QFETCH(QString, command);
        QFETCH(QString, misbehaviour);
        QFETCH(QString, result);
        QFETCH(QString, message);
        QFETCH(QList<QByteArray>, lines);
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

        QString got;
        if (operation == "lscat") {
            got = QString::number(s.cddb.Getlscat());
        } else {
            QString query = QString::fromLatin1(kRockQuery);
            got = s.cddb.GetCddbUseQueryString(query);
        }
        clock.stop();
        QCOMPARE(got, result);
        QCOMPARE(s.messages(), QStringList{message});
        QVERIFY(!statuses.isEmpty());
        QVERIFY(std::any_of(statuses.begin(), statuses.end(), [](const QList<QVariant>& raised) {
            return raised.at(0).toString() == QString("Ошибка соединения!");
        }));
        QVERIFY2(ticks >= 20, qPrintable(QString::number(ticks)));
        // The watchdog closed the socket, so no goodbye follows.
        QCOMPARE(s.socket.state(), QAbstractSocket::UnconnectedState);
        QCOMPARE(s.received(), lines);
    }

    void categories_data()
    {
        QTest::addColumn<QByteArray>("reply"); // empty: the server's own list
        QTest::addColumn<int>("count");
        QTest::addColumn<QString>("first");
        QTest::addColumn<QString>("last");
        QTest::addColumn<QStringList>("messages");
        QTest::newRow("served") << QByteArray() << 8 << "classical"
                                << "rock" << QStringList();
        QTest::newRow("empty list") << QByteArray(
                                           "210 OK, category list follows (until terminating `.')\r\n.\r\n")
                                    << 0 << ""
                                    << "" << QStringList();
        QTest::newRow("refused") << QByteArray("500 Unrecognized command.\r\n.\r\n") << 0 << ""
                                 << "" << QStringList();
        QByteArray many = "210 OK, category list follows (until terminating `.')\r\n";
        for (int i = 0; i <= CdBase::kMaxCategories; ++i) {
            many += "genre" + QByteArray::number(i) + "\r\n";
        }
        QTest::newRow("more than 50") << many + ".\r\n"
                                      << 0 << "genre0"
                                      << "genre49" << QStringList{"Данные повреждены!"};
    }

    void categories()
    {
        QFETCH(QByteArray, reply);
        QFETCH(int, count);
        QFETCH(QString, first);
        QFETCH(QString, last);
        QFETCH(QStringList, messages);
        Session s;
        if (!reply.isEmpty()) {
            s.server.reply("cddb lscat", reply);
        }
        QCOMPARE(s.cddb.Getlscat(), count);
        QCOMPARE(s.cddb.GetCategory(1), first);
        QCOMPARE(s.cddb.GetCategory(s.cddb.Categories()), last);
        QCOMPARE(s.cddb.GetCategory(0), QString());
        QCOMPARE(s.cddb.GetCategory(s.cddb.Categories() + 1), QString());
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
        QCOMPARE(s.cddb.SiteAddress(1), QString("gnudb.gnudb.org"));
        QCOMPARE(s.cddb.SitePort(1), quint16(8880));
        QCOMPARE(s.cddb.SiteLocation(1), QString("0 N000.00 W000.00 Random gnudb server"));
        QCOMPARE(s.cddb.SiteAddress(2), QString("cddb.example.org"));
        QCOMPARE(s.cddb.SitePort(2), quint16(888));
        QCOMPARE(s.cddb.SiteLocation(2), QString(" N059.56 E030.18 St. Petersburg, Russia"));
        QCOMPARE(s.cddb.SiteAddress(3), QString());
        QCOMPARE(s.cddb.SitePort(0), quint16(0));
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
        s.server.replyInChunks(
            "motd", {"210 Last modified: 11/22/2026 04:50:15 MOTD follows (until terminating `.')\r\n",
                     "Local test server\r\nfor client tests.\r\n.\r\n"});
        const QString motd = s.cddb.GetMotd();
        QCOMPARE(motd,
                 QString("210 Last modified: 11/22/2026 04:50:15 MOTD follows (until terminating `.')\r\n"
                         "Local test server\r\nfor client tests.\r\n.\r\n"));
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
        QTRY_COMPARE(s.socket.state(), QAbstractSocket::UnconnectedState);
        QCOMPARE(s.messages(), QStringList());
    }

    void newLineFix() { QCOMPARE(CdBase::NewLineFix("one\\ntwo\\n"), QString("one\r\ntwo\r\n")); }
};

VINORA_TEST_MAIN(tst_cddbsession)
#include "tst_cddbsession.moc"
