#include "../recognition/DiscFixtures.h"
#include "FakeCddbServer.h"
#include "cddb/CdBase.h"
#include "cddb/CdDevice.h"
#include "frame/AppError.h"
#include "recognition/Medium.h"
#include "support/ScriptedPrompter.h"
#include "support/TestFolders.h"
#include "support/TestMain.h"

#include <QFile>
#include <QSignalSpy>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTimer>

using namespace vinora;

namespace {

const QString kNoAccess = "Не возможно получить доступ к устройству!";
const QList<int> kThreeTracks{11993, 19539, 13880};
const QString kThreeId = "12025d03";
const QString kThreeQuery = "12025d03 3 150 12143 31682 605";

// A session whose drive is `drive`, with the scripted prompter of a test application, and
// the device statuses it raises from then on.
struct Session
{
    explicit Session(const QString& drive)
    {
        cddb.setFileName(drive);
        spy.clear();
    }
    QStringList statuses()
    {
        QStringList texts;
        for (const QList<QVariant>& raised : std::as_const(spy)) {
            texts.append(raised.at(0).toString());
        }
        spy.clear();
        return texts;
    }

    test::TestApp app;
    QTcpSocket socket;
    CdBase cddb{app.ctx, socket};
    QSignalSpy spy{&cddb, &CdBase::deviceStatus};
};

// The table of contents of silent audio tracks of these lengths, written out plainly.
Toc tocOfSectors(const QList<int>& sectors)
{
    Toc toc;
    qint32 lsn = 0;
    for (int i = 0; i < sectors.size(); ++i) {
        toc.tracks.append({i + 1, lsn, true});
        lsn += sectors[i];
    }
    toc.leadoutLsn = lsn;
    return toc;
}

} // namespace

class tst_cddevice : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    test::DiscFixtures m_discs{m_dir.path()};
    QString m_three;

private slots:
    void initTestCase()
    {
        QVERIFY(m_dir.isValid());
        m_three = m_discs.audioCue("three", kThreeTracks);
        test::writeFile(m_discs.path("noise.cue"), "this is no cue sheet\n");
    }

    void modeTexts()
    {
        const QStringList texts{"Device is not open",  "Device is stopped", "Device is playing",
                                "Device is recording", "Device is seeking", "Device is paused",
                                "Tray is out"};
        for (int mode = 523; mode <= 531; ++mode) {
            QCOMPARE(CdDevice::modeText(mode), texts.value(mode - 524)); // none outside 524..530
        }
        QCOMPARE(CdDevice::modeText(0), QString());
    }

    // Each track of the three-track image: its start and length packed as the player packs them
    // (minutes, seconds, frames from the low byte up), in seconds, and the place chosen.
    void figuresOfEachTrack_data()
    {
        QTest::addColumn<int>("track");
        QTest::addColumn<quint32>("position");
        QTest::addColumn<quint32>("length");
        QTest::addColumn<int>("seconds");
        QTest::addColumn<int>("current");
        QTest::addColumn<QStringList>("places");
        const auto msf = [](quint32 m, quint32 s, quint32 f) { return f << 16 | s << 8 | m; };
        const QStringList atStart{"0", "0", "0", "0:00"};
        // Starts at frames 150, 12143 and 31682; the last track stops one frame short of the
        // lead-out at 45562. The places are 11993 and 31532 frames after track 1.
        QTest::newRow("first") << 1 << msf(0, 2, 0) << msf(2, 39, 68) << 159 << 1 << atStart;
        QTest::newRow("second") << 2 << msf(2, 41, 68) << msf(4, 20, 39) << 260 << 2
                                << QStringList{QString::number(msf(2, 39, 68)), "11993", "159", "2:39"};
        QTest::newRow("last") << 3 << msf(7, 2, 32) << msf(3, 5, 4) << 185 << 3
                              << QStringList{QString::number(msf(7, 0, 32)), "31532", "420", "7:00"};
        QTest::newRow("none before the first") << 0 << 0u << 0u << 0 << 1 << atStart;
        QTest::newRow("none after the last") << 4 << 0u << 0u << 0 << 1 << atStart;
        QTest::newRow("negative") << -1 << 0u << 0u << 0 << 1 << atStart;
    }

    void figuresOfEachTrack()
    {
        QFETCH(int, track);
        QFETCH(int, seconds);
        QFETCH(QStringList, places);
        CdDevice device;
        device.setFileName(m_three);
        device.Command("open");
        QCOMPARE(device.Tracks(), 3);
        device.setTrack(track);
        QCOMPARE(device.Track(), track);
        QTEST(device.TrackPosition(), "position");
        QTEST(device.TrackLength(), "length");
        QCOMPARE(device.Position(), 0x000200u); // a stopped player stands at track 1

        Session s(m_three);
        QCOMPARE(s.cddb.CurrentTrack(), 0);
        QCOMPARE(s.cddb.SongLength(track, false), 0); // nothing read yet
        QCOMPARE(s.cddb.SongLength(track, true), 0);  // the drive is not open
        QVERIFY(!s.cddb.cddbGetCdid().isEmpty());
        QCOMPARE(s.cddb.SongLength(track, false), seconds);
        s.cddb.Command("OPEN");
        QCOMPARE(s.cddb.CurrentTrack(), 1);
        QCOMPARE(s.cddb.SongLength(track, true), seconds);
        QCOMPARE(s.cddb.device().Track(), track);
        s.cddb.setCurrentTrack(track); // ignored outside the disc
        QTEST(s.cddb.CurrentTrack(), "current");
        const QStringList shown{s.cddb.Position(1), s.cddb.Position(2), s.cddb.Position(3),
                                s.cddb.Position(4), s.cddb.Position(0), s.cddb.Position(5)};
        QCOMPARE(shown, (places + QStringList{QString(), QString()}));
        QCOMPARE(s.cddb.device().Track(), 1); // Position selects track 1
        QCOMPARE(s.cddb.device().Mode(), CdDevice::kStopped);
    }

    void unusableDrivesStayClosedAndAreNoAccess_data()
    {
        QTest::addColumn<QString>("drive");
        QTest::newRow("missing image") << "missing.cue";
        QTest::newRow("folder") << ".";
        QTest::newRow("not an image") << "noise.cue";
        QTest::newRow("no drive named") << "";
    }

    void unusableDrivesStayClosedAndAreNoAccess()
    {
        QFETCH(QString, drive);
        const QString path = drive.isEmpty() ? drive : m_discs.path(drive);
        CdDevice device;
        device.setFileName(path);
        device.Command("Open");
        QCOMPARE(device.Mode(), CdDevice::kNotOpen);
        QCOMPARE(device.Tracks(), 0);
        QCOMPARE(device.Position(), 0u);
        device.Command("Play");
        device.Refresh();
        QCOMPARE(device.Mode(), CdDevice::kNotOpen);

        // The session says so: its Open command fails, the figures are asked for in vain.
        Session s(path);
        try {
            s.cddb.Command("Open");
            QFAIL("no error raised");
        } catch (const AppError& error) {
            QCOMPARE(error.description(), kNoAccess);
        }
        QCOMPARE(s.statuses(), QStringList()); // not open from the start: nothing changed
        s.cddb.setCdid("0badbeef");
        QSignalSpy prompts(&s.cddb, &CdBase::aboutToPrompt);
        QCOMPARE(s.cddb.cddbGetCdid(), QString());
        QCOMPARE(prompts.count(), 1);
        QCOMPARE(s.app.prompter.texts(), QStringList{kNoAccess});
        QCOMPARE(s.app.prompter.shown.first().style, MessageStyle::Exclamation);
        QCOMPARE(s.cddb.Cdid(), QString("0badbeef"));
        QCOMPARE(s.cddb.GetQueryString(), QString());
        QCOMPARE(s.cddb.Cdid(), QString());
        QCOMPARE(s.app.prompter.texts(), (QStringList{kNoAccess, kNoAccess}));
    }

    // The figures of images, against those of the same table of contents written out plainly
    // and those of the disc read the usual way.
    void discIdOfAnImage_data()
    {
        QTest::addColumn<QList<int>>("sectors");
        QTest::newRow("three tracks") << kThreeTracks;
        QTest::newRow("one track") << QList<int>{30000};
        QTest::newRow("five tracks") << QList<int>{4500, 4501, 1, 22499, 7000};
    }

    void discIdOfAnImage()
    {
        QFETCH(QList<int>, sectors);
        const QString cue = m_discs.audioCue(QStringLiteral("disc%1").arg(sectors.size()), sectors);
        const std::optional<CddbDisc> expected = cddbDiscFromToc(tocOfSectors(sectors));
        QVERIFY(expected);
        Session s(cue);
        QCOMPARE(s.cddb.cddbGetCdid(), expected->id);
        QCOMPARE(s.cddb.Cdid(), expected->id);
        QCOMPARE(s.cddb.Tracks(), expected->tracks);
        QCOMPARE(s.cddb.DiscLength(), expected->discLength);
        const std::unique_ptr<Medium> medium = openMedium(cue);
        QVERIFY(medium);
        QCOMPARE(cddbDiscFromToc(medium->toc())->id, expected->id);
        QCOMPARE(s.app.prompter.texts(), QStringList());
    }

    // Reading the figures opens the image and closes it again, unless it was open before.
    void imageClosesAgainUnlessItWasOpen_data()
    {
        QTest::addColumn<bool>("openBefore");
        QTest::addColumn<bool>("queryString"); // GetQueryString, else cddbGetCdid
        QTest::addColumn<QString>("result");
        QTest::addColumn<int>("modeAfter");
        QTest::addColumn<QStringList>("statuses");
        const QStringList openedAndClosed{"Device is stopped", "Device is not open"};
        QTest::newRow("id, closed before") << false << false << kThreeId << 524 << openedAndClosed;
        QTest::newRow("id, open before")
            << true << false << kThreeId << 525 << QStringList{"Device is stopped"};
        QTest::newRow("query string") << false << true << kThreeQuery << 524 << openedAndClosed;
    }

    void imageClosesAgainUnlessItWasOpen()
    {
        QFETCH(bool, openBefore);
        QFETCH(bool, queryString);
        QFETCH(int, modeAfter);
        QFETCH(QStringList, statuses);
        Session s(m_three);
        QCOMPARE(s.cddb.LastMode(), CdDevice::kNotOpen);
        if (openBefore) {
            s.cddb.Command("open");
        }
        QTEST(queryString ? s.cddb.GetQueryString() : s.cddb.cddbGetCdid(), "result");
        QCOMPARE(s.cddb.Cdid(), kThreeId);
        QCOMPARE(s.cddb.device().Mode(), modeAfter);
        QCOMPARE(s.cddb.LastMode(), modeAfter);
        QCOMPARE(s.statuses(), statuses);
    }

    // The window's timers run while a request waits for its reply; the drive is left alone then.
    void noQueryStringWhileARequestWaits()
    {
        Session s(m_three);
        test::FakeCddbServer server(QStringLiteral(VINORA_TEST_DATA "/cddb"));
        QVERIFY(server.start());
        s.cddb.setServer("127.0.0.1");
        s.cddb.setPort(server.port());
        s.cddb.setEmail("tester@example.org");
        s.cddb.setHostName("workstation");
        s.cddb.setConnectTimeout(5000);
        QString duringRequest = "not asked";
        QTimer::singleShot(0, &s.cddb, [&] { duringRequest = s.cddb.GetQueryString(); });
        QVERIFY(s.cddb.GetMotd().startsWith("210"));
        QCOMPARE(duringRequest, QString());
        QCOMPARE(s.cddb.Cdid(), QString());
        QCOMPARE(s.cddb.GetQueryString(), kThreeQuery);
    }

    // An image has no sound: the commands keep a stopped player, moving only its place.
    void commandsOnAnImage_data()
    {
        QTest::addColumn<QString>("commands"); // split at commas
        QTest::addColumn<int>("mode");
        QTest::addColumn<int>("current");
        QTest::addColumn<QStringList>("statuses");
        const QStringList none;
        const QStringList closed{"Device is not open"};
        QTest::newRow("play") << "Play" << 525 << 1 << none;
        QTest::newRow("play, pause") << "PLAY,pause" << 525 << 1 << none;
        QTest::newRow("stop") << "stop" << 525 << 1 << none;
        QTest::newRow("next") << "Next" << 525 << 2 << none;
        QTest::newRow("next past the last") << "next,next,next,next" << 525 << 3 << none;
        QTest::newRow("next, prev") << "next,next,prev" << 525 << 2 << none;
        QTest::newRow("prev at the first") << "Prev" << 525 << 1 << none;
        QTest::newRow("next, stop") << "next,stop" << 525 << 1 << none;
        QTest::newRow("eject keeps the image") << "eject" << 525 << 1 << none;
        QTest::newRow("close") << "close" << 524 << 0 << closed;
        QTest::newRow("close, play") << "close,play" << 524 << 0 << closed;
        QTest::newRow("close, open") << "Close,Open" << 525 << 1 << closed + QStringList{"Device is stopped"};
        QTest::newRow("other texts ignored") << "next,seek,rewind," << 525 << 2 << none;
    }

    void commandsOnAnImage()
    {
        QFETCH(QString, commands);
        QFETCH(QStringList, statuses);
        Session s(m_three);
        s.cddb.Command("open");
        s.statuses();
        for (const QString& command : commands.split(u',')) {
            s.cddb.Command(command);
        }
        QTEST(s.cddb.device().Mode(), "mode");
        QTEST(s.cddb.CurrentTrack(), "current");
        QCOMPARE(s.statuses(), statuses);
        QVERIFY(QFile::exists(m_three));
    }

    // An open image closes, telling so, when it goes away or another drive is named.
    void openImageCloses_data()
    {
        QTest::addColumn<bool>("removed");
        QTest::newRow("image removed") << true;
        QTest::newRow("another drive named") << false;
    }

    void openImageCloses()
    {
        QFETCH(bool, removed);
        const QString cue = m_discs.audioCue("gone", {3000, 4000});
        Session s(cue);
        s.cddb.Command("open");
        s.statuses();
        if (removed) {
            QVERIFY(QFile::remove(cue));
            s.cddb.Refresh();
        } else {
            s.cddb.setFileName(m_discs.path("missing.cue"));
            QCOMPARE(s.cddb.FileName(), m_discs.path("missing.cue"));
        }
        QCOMPARE(s.cddb.device().Mode(), CdDevice::kNotOpen);
        QCOMPARE(s.cddb.LastMode(), CdDevice::kNotOpen);
        QCOMPARE(s.cddb.device().Tracks(), 0);
        QCOMPARE(s.statuses(), QStringList{"Device is not open"});
    }
};

VINORA_TEST_MAIN(tst_cddevice)
#include "tst_cddevice.moc"
