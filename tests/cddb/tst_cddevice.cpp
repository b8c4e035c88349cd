#include "../recognition/DiscFixtures.h"
#include "FakeCddbServer.h"
#include "cddb/CdBase.h"
#include "cddb/CdDevice.h"
#include "frame/AppError.h"
#include "recognition/Medium.h"
#include "support/ScriptedPrompter.h"
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

// A session whose drive is `drive`, with the scripted prompter of a test application.
struct Session
{
    explicit Session(const QString& drive) { cddb.setFileName(drive); }

    test::TestApp app;
    QTcpSocket socket;
    CdBase cddb{app.ctx, socket};
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

QStringList textsOf(const QSignalSpy& spy)
{
    QStringList texts;
    for (const QList<QVariant>& raised : spy) {
        texts.append(raised.at(0).toString());
    }
    return texts;
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
    }

    void modeTexts_data()
    {
        QTest::addColumn<int>("mode");
        QTest::addColumn<QString>("text");
        QTest::newRow("524") << 524 << "Device is not open";
        QTest::newRow("525") << 525 << "Device is stopped";
        QTest::newRow("526") << 526 << "Device is playing";
        QTest::newRow("527") << 527 << "Device is recording";
        QTest::newRow("528") << 528 << "Device is seeking";
        QTest::newRow("529") << 529 << "Device is paused";
        QTest::newRow("530") << 530 << "Tray is out";
        QTest::newRow("below") << 523 << "";
        QTest::newRow("above") << 531 << "";
        QTest::newRow("zero") << 0 << "";
    }

    void modeTexts()
    {
        QFETCH(int, mode);
        QFETCH(QString, text);
        QCOMPARE(CdDevice::modeText(mode), text);
    }

    // Packed as the player packs them: minutes, seconds, frames from the low byte up.
    void trackPositionsAndLengths_data()
    {
        QTest::addColumn<int>("track");
        QTest::addColumn<quint32>("position");
        QTest::addColumn<quint32>("length");
        const auto msf = [](quint32 m, quint32 s, quint32 f) { return f << 16 | s << 8 | m; };
        // Starts at frames 150, 12143 and 31682; the last track stops one frame short of
        // the lead-out at 45562.
        QTest::newRow("first") << 1 << msf(0, 2, 0) << msf(2, 39, 68);
        QTest::newRow("second") << 2 << msf(2, 41, 68) << msf(4, 20, 39);
        QTest::newRow("last") << 3 << msf(7, 2, 32) << msf(3, 5, 4);
        QTest::newRow("none before") << 0 << 0u << 0u;
        QTest::newRow("none after") << 4 << 0u << 0u;
    }

    void trackPositionsAndLengths()
    {
        QFETCH(int, track);
        QFETCH(quint32, position);
        QFETCH(quint32, length);
        CdDevice device;
        device.setFileName(m_three);
        device.Command("open");
        QCOMPARE(device.Mode(), CdDevice::kStopped);
        QCOMPARE(device.Tracks(), 3);
        device.setTrack(track);
        QCOMPARE(device.Track(), track);
        QCOMPARE(device.TrackPosition(), position);
        QCOMPARE(device.TrackLength(), length);
        QCOMPARE(device.Position(), 0x000200u); // a stopped player stands at track 1
    }

    void unusableDrivesStayNotOpen_data()
    {
        QTest::addColumn<QString>("drive");
        QTest::newRow("missing image") << "missing.cue";
        QTest::newRow("folder") << ".";
        QTest::newRow("not an image") << "noise.cue";
        QTest::newRow("no drive named") << "";
    }

    void unusableDrivesStayNotOpen()
    {
        QFETCH(QString, drive);
        QFile noise(m_discs.path("noise.cue"));
        QVERIFY(noise.open(QIODevice::WriteOnly));
        noise.write("this is no cue sheet\n");
        noise.close();
        CdDevice device;
        device.setFileName(drive.isEmpty() ? drive : m_discs.path(drive));
        device.Command("Open");
        QCOMPARE(device.Mode(), CdDevice::kNotOpen);
        QCOMPARE(device.Tracks(), 0);
        QCOMPARE(device.Position(), 0u);
        device.Command("Play");
        device.Refresh();
        QCOMPARE(device.Mode(), CdDevice::kNotOpen);
    }

    void discIdOfAnImage_data()
    {
        QTest::addColumn<QList<int>>("sectors");
        QTest::addColumn<QString>("id");
        QTest::newRow("three tracks") << kThreeTracks << "12025d03";
        QTest::newRow("one track") << QList<int>{30000} << "";
        QTest::newRow("five tracks") << QList<int>{4500, 4501, 1, 22499, 7000} << "";
    }

    void discIdOfAnImage()
    {
        QFETCH(QList<int>, sectors);
        QFETCH(QString, id);
        const QString cue = m_discs.audioCue(QStringLiteral("disc%1").arg(sectors.size()), sectors);
        const std::optional<CddbDisc> expected = cddbDiscFromToc(tocOfSectors(sectors));
        QVERIFY(expected);
        if (!id.isEmpty()) {
            QCOMPARE(expected->id, id);
        }
        Session s(cue);
        QCOMPARE(s.cddb.cddbGetCdid(), expected->id);
        QCOMPARE(s.cddb.Cdid(), expected->id);
        QCOMPARE(s.cddb.Tracks(), expected->tracks);
        QCOMPARE(s.cddb.DiscLength(), expected->discLength);
        // The figures of the same disc read the usual way.
        const std::unique_ptr<Medium> medium = openMedium(cue);
        QVERIFY(medium);
        QCOMPARE(cddbDiscFromToc(medium->toc())->id, expected->id);
        QCOMPARE(s.app.prompter.texts(), QStringList());
    }

    void imageClosesAgainUnlessItWasOpen_data()
    {
        QTest::addColumn<bool>("openBefore");
        QTest::addColumn<int>("modeAfter");
        QTest::addColumn<QStringList>("statuses");
        QTest::newRow("closed before")
            << false << 524 << QStringList{"Device is stopped", "Device is not open"};
        QTest::newRow("open before") << true << 525 << QStringList{"Device is stopped"};
    }

    void imageClosesAgainUnlessItWasOpen()
    {
        QFETCH(bool, openBefore);
        QFETCH(int, modeAfter);
        QFETCH(QStringList, statuses);
        Session s(m_three);
        QCOMPARE(s.cddb.LastMode(), CdDevice::kNotOpen);
        QSignalSpy spy(&s.cddb, &CdBase::deviceStatus);
        if (openBefore) {
            s.cddb.Command("open");
        }
        QCOMPARE(s.cddb.cddbGetCdid(), QString("12025d03"));
        QCOMPARE(s.cddb.device().Mode(), modeAfter);
        QCOMPARE(s.cddb.LastMode(), modeAfter);
        QCOMPARE(textsOf(spy), statuses);
    }

    void missingImageIsNoAccess()
    {
        Session s(m_discs.path("missing.cue"));
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

    void openCommandOnAMissingImageThrows()
    {
        Session s(m_discs.path("missing.cue"));
        QSignalSpy spy(&s.cddb, &CdBase::deviceStatus);
        try {
            s.cddb.Command("Open");
            QFAIL("no error raised");
        } catch (const AppError& error) {
            QCOMPARE(error.description(), kNoAccess);
        }
        QCOMPARE(s.cddb.device().Mode(), CdDevice::kNotOpen);
        QCOMPARE(textsOf(spy), QStringList()); // not open from the start: nothing changed
    }

    void queryStringOfAnImage()
    {
        Session s(m_three);
        QCOMPARE(s.cddb.GetQueryString(), QString("12025d03 3 150 12143 31682 605"));
        QCOMPARE(s.cddb.Cdid(), QString("12025d03"));
        QCOMPARE(s.cddb.device().Mode(), CdDevice::kNotOpen);
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
        QCOMPARE(s.cddb.GetQueryString(), QString("12025d03 3 150 12143 31682 605"));
    }

    void songLengths_data()
    {
        QTest::addColumn<int>("track");
        QTest::addColumn<int>("seconds");
        QTest::newRow("first") << 1 << 159;
        QTest::newRow("second") << 2 << 260;
        QTest::newRow("last, a frame short of the lead-out") << 3 << 185;
        QTest::newRow("zero") << 0 << 0;
        QTest::newRow("beyond") << 4 << 0;
        QTest::newRow("negative") << -1 << 0;
    }

    void songLengths()
    {
        QFETCH(int, track);
        QFETCH(int, seconds);
        Session s(m_three);
        QCOMPARE(s.cddb.SongLength(track, false), 0); // nothing read yet
        QCOMPARE(s.cddb.SongLength(track, true), 0);  // the drive is not open
        QVERIFY(!s.cddb.cddbGetCdid().isEmpty());
        QCOMPARE(s.cddb.SongLength(track, false), seconds);
        s.cddb.Command("OPEN");
        QCOMPARE(s.cddb.SongLength(track, true), seconds);
        QCOMPARE(s.cddb.device().Track(), track);
    }

    void positionsAfterChoosingATrack_data()
    {
        QTest::addColumn<int>("track");
        QTest::addColumn<int>("current");
        QTest::addColumn<QStringList>("kinds"); // kinds 1..4
        QTest::newRow("first") << 1 << 1 << QStringList{"0", "0", "0", "0:00"};
        // 11993 frames after track 1: 2:39 and 68 frames.
        QTest::newRow("second") << 2 << 2
                                << QStringList{QString::number(68 << 16 | 39 << 8 | 2), "11993", "159",
                                               "2:39"};
        // 31532 frames: 7:00 and 32 frames.
        QTest::newRow("third") << 3 << 3
                               << QStringList{QString::number(32 << 16 | 7), "31532", "420", "7:00"};
        QTest::newRow("beyond the last is ignored") << 4 << 1 << QStringList{"0", "0", "0", "0:00"};
        QTest::newRow("none before the first") << 0 << 1 << QStringList{"0", "0", "0", "0:00"};
    }

    void positionsAfterChoosingATrack()
    {
        QFETCH(int, track);
        QFETCH(int, current);
        QFETCH(QStringList, kinds);
        Session s(m_three);
        QCOMPARE(s.cddb.CurrentTrack(), 0);
        s.cddb.Command("open");
        QCOMPARE(s.cddb.CurrentTrack(), 1);
        s.cddb.setCurrentTrack(track);
        QCOMPARE(s.cddb.CurrentTrack(), current);
        for (int kind = 1; kind <= 4; ++kind) {
            QCOMPARE(s.cddb.Position(kind), kinds[kind - 1]);
        }
        QCOMPARE(s.cddb.Position(0), QString());
        QCOMPARE(s.cddb.Position(5), QString());
        QCOMPARE(s.cddb.device().Track(), 1); // Position selects track 1
        QCOMPARE(s.cddb.device().Mode(), CdDevice::kStopped);
    }

    // An image has no sound: the commands keep a stopped player, moving only its place.
    void commandsOnAnImage_data()
    {
        QTest::addColumn<QStringList>("commands");
        QTest::addColumn<int>("mode");
        QTest::addColumn<int>("current");
        QTest::addColumn<QStringList>("statuses");
        const QStringList none;
        QTest::newRow("play") << QStringList{"Play"} << 525 << 1 << none;
        QTest::newRow("play, pause") << QStringList{"PLAY", "pause"} << 525 << 1 << none;
        QTest::newRow("stop") << QStringList{"stop"} << 525 << 1 << none;
        QTest::newRow("next") << QStringList{"Next"} << 525 << 2 << none;
        QTest::newRow("next past the last")
            << QStringList{"next", "next", "next", "next"} << 525 << 3 << none;
        QTest::newRow("next, prev") << QStringList{"next", "next", "prev"} << 525 << 2 << none;
        QTest::newRow("prev at the first") << QStringList{"Prev"} << 525 << 1 << none;
        QTest::newRow("next, stop") << QStringList{"next", "stop"} << 525 << 1 << none;
        QTest::newRow("eject keeps the image") << QStringList{"eject"} << 525 << 1 << none;
        QTest::newRow("close") << QStringList{"close"} << 524 << 0 << QStringList{"Device is not open"};
        QTest::newRow("close, play") << QStringList{"close", "play"} << 524 << 0
                                     << QStringList{"Device is not open"};
        QTest::newRow("close, open") << QStringList{"Close", "Open"} << 525 << 1
                                     << QStringList{"Device is not open", "Device is stopped"};
        QTest::newRow("other texts ignored") << QStringList{"next", "seek", "rewind", ""} << 525 << 2 << none;
    }

    void commandsOnAnImage()
    {
        QFETCH(QStringList, commands);
        QFETCH(int, mode);
        QFETCH(int, current);
        QFETCH(QStringList, statuses);
        Session s(m_three);
        QSignalSpy spy(&s.cddb, &CdBase::deviceStatus);
        s.cddb.Command("open");
        QCOMPARE(textsOf(spy), QStringList{"Device is stopped"});
        spy.clear();
        for (const QString& command : std::as_const(commands)) {
            s.cddb.Command(command);
        }
        QCOMPARE(s.cddb.device().Mode(), mode);
        QCOMPARE(s.cddb.CurrentTrack(), current);
        QCOMPARE(textsOf(spy), statuses);
        QVERIFY(QFile::exists(m_three));
    }

    void imageGoneWhileOpenCloses()
    {
        const QString cue = m_discs.audioCue("gone", {3000, 4000});
        Session s(cue);
        s.cddb.Command("open");
        QCOMPARE(s.cddb.device().Tracks(), 2);
        QSignalSpy spy(&s.cddb, &CdBase::deviceStatus);
        QVERIFY(QFile::remove(cue));
        s.cddb.Refresh();
        QCOMPARE(s.cddb.device().Mode(), CdDevice::kNotOpen);
        QCOMPARE(s.cddb.device().Tracks(), 0);
        QCOMPARE(textsOf(spy), QStringList{"Device is not open"});
    }

    void anotherDriveClosesTheOpenOne()
    {
        Session s(m_three);
        s.cddb.Command("open");
        QCOMPARE(s.cddb.device().Mode(), CdDevice::kStopped);
        s.cddb.setFileName(m_discs.path("missing.cue"));
        QCOMPARE(s.cddb.FileName(), m_discs.path("missing.cue"));
        QCOMPARE(s.cddb.device().Mode(), CdDevice::kNotOpen);
        QCOMPARE(s.cddb.LastMode(), CdDevice::kNotOpen);
    }
};

VINORA_TEST_MAIN(tst_cddevice)
#include "tst_cddevice.moc"
