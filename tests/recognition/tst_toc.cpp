#include "DiscFixtures.h"
#include "cddb/DiscId.h"
#include "recognition/Medium.h"
#include "support/TestMain.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <discid/discid.h>

using namespace vinora;

namespace {

Toc tocOf(const QList<qint32>& positions, qint32 leadoutPosition)
{
    Toc toc;
    for (int i = 0; i < positions.size(); ++i) {
        toc.tracks.append({i + 1, positions[i] - kLeadInFrames, true});
    }
    toc.leadoutLsn = leadoutPosition - kLeadInFrames;
    return toc;
}

// The freedb id that libdiscid computes for the same table of contents.
QString libdiscidId(const Toc& toc)
{
    DiscId* disc = discid_new();
    int offsets[100] = {};
    offsets[0] = toc.leadoutPosition();
    for (int i = 0; i < toc.tracks.size(); ++i) {
        offsets[i + 1] = toc.trackPosition(i);
    }
    QString id;
    if (discid_put(disc, 1, static_cast<int>(toc.tracks.size()), offsets)) {
        id = QString::fromLatin1(discid_get_freedb_id(disc));
    }
    discid_free(disc);
    return id;
}

struct CdInfoTrack
{
    int number;
    qint32 lsn;
    bool audio;
};

QList<CdInfoTrack> cdInfoTracks(const QString& cue, qint32* leadout)
{
    const QByteArray out = test::runTool(
        "cd-info", {"--no-header", "--no-device-info", "--no-cddb", "--no-analyze", "--cue-file", cue});
    QList<CdInfoTrack> tracks;
    for (const QByteArray& raw : out.split('\n')) {
        const QList<QByteArray> fields = raw.simplified().split(' ');
        if (fields.size() < 4 || !fields[0].endsWith(':')) {
            continue;
        }
        bool ok = false;
        const int number = fields[0].chopped(1).toInt(&ok);
        if (!ok) {
            continue;
        }
        if (number == 170) {
            *leadout = fields[2].toInt();
        } else {
            tracks.append({number, fields[2].toInt(), fields[3] == "audio"});
        }
    }
    return tracks;
}

} // namespace

class tst_toc : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    test::DiscFixtures m_discs{m_dir.path()};

private slots:
    void playerArithmetic()
    {
        qint32 n = 1234;
        QCOMPARE(SumN(n), qint16(10));
        QCOMPARE(n, 0);
        qint32 negative = -5;
        QCOMPARE(SumN(negative), qint16(0));
        QCOMPARE(FrontPad(QStringLiteral("b4"), 4), QStringLiteral("00b4"));
        QCOMPARE(FrontPad(QStringLiteral("123456"), 4), QStringLiteral("3456"));
        qint32 frames = 13661; // 3:02:11
        QCOMPARE(FramesToMsf(frames), quint32(11 * 65536 + 2 * 256 + 3));
        QCOMPARE(frames, 11);
        QCOMPARE(MsfToFrames(11 * 65536 + 2 * 256 + 3), 13661);
    }

    void oneTrackExample()
    {
        // Track 1 at 00:02:00 and 03:00:10 long, as the player reports it.
        const Toc toc = tocOf({150}, 150 + 3 * 4500 + 10 + 1);
        const auto disc = cddbDiscFromToc(toc);
        QVERIFY(disc);
        QCOMPARE(disc->id, QStringLiteral("0200b401"));
        QCOMPARE(disc->discLength, 180);
        QCOMPARE(GetQueryString(*disc), QStringLiteral("0200b401 1 150 180"));
        QVERIFY(!cddbDiscFromToc(Toc{}));
    }

    void publishedDiscs_data()
    {
        QTest::addColumn<QString>("freedbId");
        QTest::addColumn<QList<qint32>>("offsets");
        QTest::addColumn<qint32>("leadout");
        QFile table(QStringLiteral(VINORA_TEST_DATA "/tocs.tsv"));
        QVERIFY(table.open(QIODevice::ReadOnly));
        table.readLine(); // header
        int rows = 0;
        while (!table.atEnd()) {
            const QList<QByteArray> fields = table.readLine().split('\t');
            if (fields.size() < 6 || fields[3] == "-") {
                continue; // only discs whose exact lead-out is known
            }
            QList<qint32> offsets;
            for (const QByteArray& offset : fields[4].split(' ')) {
                offsets.append(offset.toInt());
            }
            QTest::newRow(fields[0].constData())
                << QString::fromLatin1(fields[0]) << offsets << fields[3].toInt();
            ++rows;
        }
        QVERIFY(rows >= 8);
    }

    void publishedDiscs()
    {
        QFETCH(QList<qint32>, offsets);
        QFETCH(qint32, leadout);
        const Toc toc = tocOf(offsets, leadout);
        const auto disc = cddbDiscFromToc(toc);
        QVERIFY(disc);
        QTEST(disc->id, "freedbId");
        QCOMPARE(disc->id, libdiscidId(toc));
        QCOMPARE(disc->offsets, offsets);
    }

    void imagesAgreeWithCdInfoAndLibdiscid_data()
    {
        QTest::addColumn<QList<int>>("tracks");
        QTest::addColumn<bool>("dataTrack");
        QTest::newRow("1 track") << QList<int>{22222} << false;
        QTest::newRow("2 tracks") << QList<int>{15000, 4000} << false;
        QTest::newRow("3 tracks") << QList<int>{15000, 15000, 15000} << false;
        QList<int> twenty;
        for (int i = 0; i < 20; ++i) {
            twenty.append(1500 + 71 * i);
        }
        QTest::newRow("20 tracks") << twenty << false;
        QTest::newRow("enhanced CD") << QList<int>{15000, 16000, 17000} << true;
    }

    void imagesAgreeWithCdInfoAndLibdiscid()
    {
        QFETCH(QList<int>, tracks);
        QFETCH(bool, dataTrack);
        const QString data = dataTrack ? m_discs.iso("data.iso", {"-V", "DATA"}) : QString();
        const QString cue =
            m_discs.audioCue(QStringLiteral("toc%1%2").arg(tracks.size()).arg(dataTrack), tracks, data);
        const std::unique_ptr<Medium> medium = openMedium(cue);
        QVERIFY(medium);
        const Toc& toc = medium->toc();
        qint32 leadout = -1;
        const QList<CdInfoTrack> expected = cdInfoTracks(cue, &leadout);
        QCOMPARE(toc.tracks.size(), expected.size());
        for (int i = 0; i < expected.size(); ++i) {
            QCOMPARE(toc.tracks[i].number, expected[i].number);
            QCOMPARE(toc.tracks[i].startLsn, expected[i].lsn);
            QCOMPARE(toc.tracks[i].audio, expected[i].audio);
        }
        QCOMPARE(toc.leadoutLsn, leadout);
        QCOMPARE(toc.tracks.last().audio, !dataTrack);
        QCOMPARE(cddbDiscFromToc(toc)->id, libdiscidId(toc));
    }

    void commandLinePrintsTheToc()
    {
        const QString cue = m_discs.audioCue("cli", {15000, 15000, 15000});
        QProcess cli;
        cli.start(QStringLiteral(VINORA_CLI), {"toc", cue});
        QVERIFY(cli.waitForFinished(20000));
        QCOMPARE(cli.exitCode(), 0);
        QCOMPARE(QString::fromUtf8(cli.readAllStandardOutput()),
                 QStringLiteral("1 150 15000 (00:02:00 03:20:00) audio\n"
                                "2 15150 15000 (03:22:00 03:20:00) audio\n"
                                "3 30150 14999 (06:42:00 03:19:74) audio\n"
                                "leadout 45150 (10:02:00)\n"
                                "discid 0c025803\n"
                                "query 0c025803 3 150 15150 30150 600\n"));
    }
};

VINORA_TEST_MAIN(tst_toc)
#include "tst_toc.moc"
