#include "cddb/CdBase.h"
#include "cddb/CddbResult.h"
#include "cddb/CddbServers.h"
#include "contents/CdPlayerIni.h"
#include "contents/TrackListStore.h"
#include "frame/Cp1251.h"
#include "store/ContentsLists.h"
#include "store/Db.h"
#include "store/InfoStamp.h"
#include "store/Reanimator.h"
#include "support/ScriptedPrompter.h"
#include "support/TestFolders.h"
#include "support/TestMain.h"

#include <QTcpSocket>

using namespace vinora;

namespace {

// A test application with fresh databases and the hand-over of a CDDB query for disc
// "4F2A1C00", number 7.
struct Writing
{
    Writing()
    {
        Reanimator(app.ctx, 0);
        app.ctx.CurrentDiscID = "4F2A1C00";
        app.ctx.LastSavedNumber = 7;
        app.ctx.CDDBDiscInSet = 1;
        Db tracks(app.ctx.TracksDBPath);
        ContentsLists(tracks, ContentsKind::Tracks).create(app.ctx.CurrentDiscID);
    }
    QVariant value(const QString& sql, const QVariantList& values = {}) const
    {
        return Db(app.ctx.MainDBPath).scalar(sql, values);
    }
    QStringList tracks() const
    {
        return Db(app.ctx.TracksDBPath)
            .texts("SELECT Номер || ' ' || coalesce(Название, '') FROM Треки WHERE ДискID = ? ORDER BY Номер",
                   {app.ctx.CurrentDiscID});
    }
    CddbWrite write(const CddbRecord& record, int seconds = 2405)
    {
        return writeCddbRecord(app.ctx, record, seconds, shift);
    }

    test::TestApp app;
    NumberShift shift;
};

CddbRecord record(const QString& category, const QString& artist, const QString& album,
                  const QStringList& songs)
{
    CddbRecord r;
    r.category = category;
    r.artist = artist;
    r.cdTitle = album;
    r.title = artist + " / " + album;
    r.songNames = songs;
    return r;
}

} // namespace

class tst_cddbwrite : public QObject
{
    Q_OBJECT

private slots:
    void timeTextTakesSecondsModulo61_data()
    {
        QTest::addColumn<int>("seconds");
        QTest::addColumn<QString>("text");
        QTest::newRow("none") << 0 << "00:00";
        QTest::newRow("two minutes") << 120 << "02:59";
        QTest::newRow("just over") << 122 << "02:00";
        QTest::newRow("a minute and one") << 61 << "01:00";
        QTest::newRow("125") << 125 << "02:03";
        QTest::newRow("last second of an hour") << 3599 << "59:00";
        QTest::newRow("an hour of minutes beyond 99") << 6000 << "99:59";
    }
    void timeTextTakesSecondsModulo61()
    {
        QFETCH(int, seconds);
        QFETCH(QString, text);
        QCOMPARE(trackTimeText(seconds), text);
    }

    void newDiscRowFromRecord()
    {
        Writing w;
        w.app.ctx.AutoDetectTag = "ad:4F2A1C00";
        const QString longName = QString(55, QChar(u'Ж'));
        QCOMPARE(w.write(record("newage", longName, "Album", {"One", "", QString(70, 'x')})),
                 CddbWrite::Written);

        QCOMPARE(w.value("SELECT count(*) FROM Аудио").toInt(), 1);
        QCOMPARE(w.value("SELECT Название FROM Аудио WHERE Номер = 7").toString(), longName.left(50));
        QCOMPARE(w.value("SELECT Альбом || '|' || Год || '|' || Дисков || '|' || ДискID1 || '|' || "
                         "ДискID1_d || '|' || Записей1 || '|' || Время1 FROM Аудио")
                     .toString(),
                 "Album|2026|1|4F2A1C00|4F2A1C00|3|40:26");
        QCOMPARE(w.value("SELECT s.Стиль FROM Аудио a JOIN Стиль s ON s.КодСтиля = a.КодСтиля").toString(),
                 "newage");
        QCOMPARE(w.tracks(), QStringList({"1 One", "2 Запись 2", "3 " + QString(50, 'x')}));
        Db db(w.app.ctx.MainDBPath);
        QCOMPARE(readStamp(db, "ПослОбновлАудио"), QDate(2026, 11, 22));
        QVERIFY(!QFile::exists(cdPlayerIni(w.app.ctx).path()));
    }

    void unknownCategoryAddsOneStyleRow()
    {
        Writing w;
        const int styles = w.value("SELECT count(*) FROM Стиль").toInt();
        w.write(record("bluegrass", "First", "A", {"x"}));
        w.app.ctx.LastSavedNumber = 8;
        w.app.ctx.CurrentDiscID = "77";
        QVERIFY(CreateTrackTable(w.app.ctx, "77", false));
        w.write(record("bluegrass", "Second", "B", {"y"}));
        QCOMPARE(w.value("SELECT count(*) FROM Стиль").toInt(), styles + 1);
        QCOMPARE(w.value("SELECT count(DISTINCT КодСтиля) FROM Аудио").toInt(), 1);
    }

    void recordWithoutArtistWritesNothing()
    {
        Writing w;
        w.app.ctx.CDDBSaveToIni = true;
        QCOMPARE(w.write(record("rock", "", "Album", {"One"})), CddbWrite::NoTitle);
        QCOMPARE(w.value("SELECT count(*) FROM Аудио").toInt(), 0);
        QVERIFY(w.tracks().isEmpty());
        QVERIFY(!QFile::exists(cdPlayerIni(w.app.ctx).path()));
    }

    void existingDiscGetsItsPlaceInTheSet()
    {
        Writing w;
        Db(w.app.ctx.MainDBPath)
            .exec("INSERT INTO Аудио (Номер, Название, Дисков, КодСтиля) VALUES (7, 'Set', 3, 1)");
        w.app.ctx.CDDBUpdateRow = true;
        w.app.ctx.CDDBDiscInSet = 3;
        QCOMPARE(w.write(record("rock", "", "", {"a", "b"}), 120), CddbWrite::Written);
        QCOMPARE(w.value("SELECT Название || '|' || ДискID3 || '|' || Записей3 || '|' || Время3 || '|' || "
                         "coalesce(ДискID1, 'null') FROM Аудио")
                     .toString(),
                 "Set|4F2A1C00|2|02:59|null");
        QCOMPARE(w.app.ctx.DiscIDSlots[2], QString("4F2A1C00"));
        QCOMPARE(w.tracks(), QStringList({"1 a", "2 b"}));
    }

    void pendingShiftRunsWithTheNewRow()
    {
        Writing w;
        Db(w.app.ctx.MainDBPath)
            .exec("INSERT INTO Аудио (Номер, Название, Дисков, КодСтиля) VALUES (7, 'Old', 1, 1)");
        int coversFrom = 0;
        w.shift.numbers = [](const Db& db, int start) {
            db.exec("UPDATE Аудио SET Номер = Номер + 1 WHERE Номер >= ?", {start});
            return 1;
        };
        w.shift.covers = [&](int start, int) { coversFrom = start; };
        w.app.ctx.ShiftStart = 7;
        w.write(record("rock", "New", "", {"a"}));
        QCOMPARE(
            w.value("SELECT group_concat(Номер || Название, ',') FROM (SELECT * FROM Аудио ORDER BY Номер)")
                .toString(),
            "7New,8Old");
        QCOMPARE(coversFrom, 7);
        QCOMPARE(w.app.ctx.ShiftStart, qint16(0));
    }

    void cdPlayerIniKeepsWholeNamesInCp1251()
    {
        Writing w;
        w.app.ctx.CDDBSaveToIni = true;
        const QString longSong = "Ёлка во дворе " + QString(60, 'z');
        w.write(record("folk", "Артист", "Альбом", {longSong, ""}));
        const QByteArray bytes = test::readFile(cdPlayerIni(w.app.ctx).path());
        QVERIFY(bytes.contains(cp1251::encode(u"[4F2A1C00]")));
        QVERIFY(bytes.contains(cp1251::encode(u"artist=Артист")));
        QVERIFY(bytes.contains(cp1251::encode(u"title=Альбом")));
        QVERIFY(bytes.contains("numtracks=2"));
        QVERIFY(bytes.contains(cp1251::encode(QString("0=" + longSong))));
        QVERIFY(bytes.contains(cp1251::encode(u"1=Запись 2")));
        QCOMPARE(w.tracks().first(), "1 " + longSong.left(50));
    }

    void importFromCdPlayerIni_data()
    {
        QTest::addColumn<QByteArray>("section");
        QTest::addColumn<QStringList>("rows");
        QTest::newRow("names") << QByteArray("numtracks=2\r\n0=One\r\n1=Two\r\n")
                               << QStringList{"1 One", "2 Two"};
        QTest::newRow("missing and empty keys")
            << QByteArray("numtracks=3\r\n0=One\r\n1=\r\n") << QStringList{"1 One", "2 - нет -", "3 - нет -"};
        QTest::newRow("count not a number") << QByteArray("numtracks=many\r\n0=One\r\n") << QStringList{};
        QTest::newRow("count beyond a CD") << QByteArray("numtracks=100000000\r\n") << QStringList{};
    }
    void importFromCdPlayerIni()
    {
        QFETCH(QByteArray, section);
        QFETCH(QStringList, rows);
        Writing w;
        test::writeFile(cdPlayerIni(w.app.ctx).path(), "[4F2A1C00]\r\n" + section);
        const std::optional<int> count = importTrackNames(w.app.ctx, w.app.ctx.CurrentDiscID);
        QVERIFY(count.has_value());
        if (QTest::currentDataTag() == QByteArray("count beyond a CD")) {
            QCOMPARE(*count, kMaxAudioTracks);
            QCOMPARE(w.tracks().size(), kMaxAudioTracks);
            QCOMPARE(w.tracks().last(), "99 - нет -");
            return;
        }
        QCOMPARE(w.tracks(), rows);
    }

    void importOfUnknownDiscWritesNothing()
    {
        Writing w;
        test::writeFile(cdPlayerIni(w.app.ctx).path(), "[OTHER]\r\nnumtracks=2\r\n");
        QVERIFY(!importTrackNames(w.app.ctx, w.app.ctx.CurrentDiscID));
        QVERIFY(w.tracks().isEmpty());
    }

    void ownedListIsNotReplaced()
    {
        Writing w;
        QVERIFY(!CreateTrackTable(w.app.ctx, w.app.ctx.CurrentDiscID, false));
        // An orphan makes room without a question.
        QVERIFY(CreateTrackTable(w.app.ctx, w.app.ctx.CurrentDiscID, true));
        Db(w.app.ctx.MainDBPath)
            .exec("INSERT INTO Аудио (Номер, Дисков, КодСтиля, ДискID2) VALUES (1, 2, 1, ?)",
                  {w.app.ctx.CurrentDiscID});
        QVERIFY(!CreateTrackTable(w.app.ctx, w.app.ctx.CurrentDiscID, true));
        QCOMPARE(w.app.prompter.texts(),
                 QStringList{"Серийный номер этого диска совпадает с уже существующим серийным номером!"});
    }

    void serverList_data()
    {
        QTest::addColumn<QByteArray>("settings");
        QTest::addColumn<QStringList>("items");
        const QStringList defaults{"1: gnudb.gnudb.org", "2: gnudb.org",  "3: localhost", "4: localhost:888",
                                   "5: (не задан)",      "6: (не задан)", "7: (не задан)"};
        QTest::newRow("defaults") << QByteArray() << defaults;
        QStringList own = defaults;
        own[1] = "2: cddb.example.org:8000";
        own[6] = "7: mirror.example.net";
        QTest::newRow("own servers; the first stays")
            << QByteArray("[CDDBServers]\nServer1=elsewhere.org\nServer2=cddb.example.org:8000\n"
                          "Server7=mirror.example.net:8880\n")
            << own;
        own = defaults;
        own[2] = "3: (не задан)";
        own[3] = "4: (не задан)";
        QTest::newRow("spoilt entries")
            << QByteArray("[CDDBServers]\nServer3=host:99999\nServer4=two words\n") << own;
    }
    void serverList()
    {
        QFETCH(QByteArray, settings);
        QFETCH(QStringList, items);
        test::TestApp app;
        test::writeFile(app.ctx.IniFilePath, settings);
        QCOMPARE(cddbServerItems(app.ctx.ini()), items);
    }

    void sessionTakesTheChosenServerAndTimeout_data()
    {
        QTest::addColumn<QByteArray>("settings");
        QTest::addColumn<QString>("choice");
        QTest::addColumn<QString>("server");
        QTest::addColumn<int>("port");
        QTest::addColumn<int>("timeout");
        QTest::addColumn<QString>("email");
        QTest::newRow("first entry, no time-out set")
            << QByteArray() << QString("1: gnudb.gnudb.org") << "gnudb.gnudb.org" << 8880 << 30000 << "";
        QTest::newRow("own entry, 2 seconds clamped")
            << QByteArray("[Option]\nServerTimeout=2\n[CDDBServers]\nServer2=cddb.example.org:8000\n")
            << QString("2: cddb.example.org:8000") << "cddb.example.org" << 8000 << 5000 << "";
        QTest::newRow("empty entry: the session's default")
            << QByteArray("[Option]\nServerTimeout=40\n") << QString("6: (не задан)") << "" << 0 << 40000
            << "";
        QTest::newRow("not a number") << QByteArray("[CDDBServers]\nEmail=me@example.org\n") << QString("x")
                                      << "" << 0 << 30000 << "me@example.org";
    }
    void sessionTakesTheChosenServerAndTimeout()
    {
        QFETCH(QByteArray, settings);
        QFETCH(QString, choice);
        QFETCH(QString, email);
        test::TestApp app;
        test::writeFile(app.ctx.IniFilePath, settings);
        QTcpSocket socket;
        CdBase session(app.ctx, socket);
        prepareCddbSession(session, app.ctx.ini(), choice);
        QTEST(session.Server(), "server");
        QTEST(int(session.Port()), "port");
        QTEST(session.ConnectTimeout(), "timeout");
        QCOMPARE(session.AppName(), QString("vinora"));
        QCOMPARE(session.Email(), email.isEmpty() ? defaultCddbEmail(session.HostName()) : email);
    }
};

VINORA_TEST_MAIN(tst_cddbwrite)
#include "tst_cddbwrite.moc"
