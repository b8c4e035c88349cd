#include "DiscFixtures.h"
#include "recognition/Medium.h"
#include "recognition/VolumeIdentity.h"
#include "support/CliRun.h"
#include "support/TestFolders.h"
#include "support/TestMain.h"

#include <QRandomGenerator>
#include <QTemporaryDir>

using namespace vinora;

namespace {

// A medium held in memory, with the table of contents a test gives it.
class MemoryMedium final : public Medium
{
public:
    MemoryMedium(QByteArray bytes, Toc toc) : m_bytes(std::move(bytes)), m_toc(std::move(toc)) {}
    bool readSector(qint32 lsn, Sector& out) override
    {
        if (lsn < 0 || (qint64(lsn) + 1) * kSectorSize > m_bytes.size()) {
            return false;
        }
        std::memcpy(out.data(), m_bytes.constData() + qint64(lsn) * kSectorSize, kSectorSize);
        return true;
    }
    const Toc& toc() const override { return m_toc; }
    QString path() const override { return {}; }
    bool isPlainImage() const override { return true; }

private:
    QByteArray m_bytes;
    Toc m_toc;
};

Toc audioToc(const QList<qint32>& starts, qint32 leadout)
{
    Toc toc;
    for (int i = 0; i < starts.size(); ++i) {
        toc.tracks.append({i + 1, starts[i], true});
    }
    toc.leadoutLsn = leadout;
    return toc;
}

// The first sector from `from` on that holds a UDF descriptor with tag `tag` and a valid
// tag checksum, found without the program's code.
qint64 findUdfTag(const QString& image, int tag, qint64 from)
{
    for (qint64 lsn = from; lsn < from + 4096; ++lsn) {
        const QByteArray s = test::sectorOf(image, lsn);
        if (s.size() < 16) {
            return -1;
        }
        quint8 sum = 0;
        for (int i = 0; i < 16; ++i) {
            sum += i == 4 ? 0 : static_cast<quint8>(s[i]);
        }
        if ((quint8(s[0]) | quint8(s[1]) << 8) == tag && sum == quint8(s[4])) {
            return lsn;
        }
    }
    return -1;
}

QString isoInfoVolume(const QString& image)
{
    const QByteArray out = test::runTool("iso-info", {"-d", "-i", image});
    for (const QByteArray& line : out.split('\n')) {
        if (line.startsWith("Volume      :")) {
            return QString::fromUtf8(line.mid(13)).trimmed();
        }
    }
    return {};
}

} // namespace

class tst_volumeidentity : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    test::DiscFixtures m_discs{m_dir.path()};

private slots:
    void workedExamples_data()
    {
        QTest::addColumn<QList<qint32>>("starts");
        QTest::addColumn<qint32>("leadout");
        QTest::addColumn<quint32>("serial");
        QTest::newRow("three tracks: sum of starts")
            << QList<qint32>{0, 15000, 30000} << 45000 << 0x00094200u;
        QTest::newRow("one track: the lead-out") << QList<qint32>{0} << 200000 << 0x002C1C32u;
        QTest::newRow("two tracks: the lead-out") << QList<qint32>{0, 100000} << 200000 << 0x002C1C32u;
    }

    void workedExamples()
    {
        QFETCH(QList<qint32>, starts);
        QFETCH(qint32, leadout);
        QTEST(audioTocSerial(audioToc(starts, leadout)), "serial");
    }

    void dataTrackAfterAudioIsLeftOut()
    {
        // Four audio tracks and a data track: the audio ends 11,250 frames before the data.
        Toc toc = audioToc({0, 15000, 30000, 45000}, 300000);
        toc.tracks.append({5, 80000, false});
        quint32 expected = 0;
        for (const qint32 start : {0, 15000, 30000, 45000}) {
            expected += packMsf(start);
        }
        QCOMPARE(audioTocSerial(toc), expected);
        // Two audio tracks and data: the serial is the packed lead-out 80000 - 11250.
        Toc two = audioToc({0, 15000}, 300000);
        two.tracks.append({3, 80000, false});
        QCOMPARE(audioTocSerial(two), packMsf(80000 - 11250));
    }

    void isoImages_data()
    {
        QTest::addColumn<QString>("image");
        QTest::addColumn<qint64>("descriptor");
        QTest::addColumn<quint32>("maxLength");
        QTest::addColumn<QString>("label");
        QTest::newRow("ISO 9660 only")
            << m_discs.iso("plain.iso", {"-V", "MY_DISC_01"}) << qint64(16) << 221u << "MY_DISC_01";
        QTest::newRow("Joliet") << m_discs.iso("joliet.iso", {"-J", "-V", "Мой диск"}) << qint64(17) << 110u
                                << "Мой диск";
        QTest::newRow("Rock Ridge and Joliet") << m_discs.iso("rrj.iso", {"-R", "-J", "-V", "Backup 2026"})
                                               << qint64(17) << 110u << "Backup 2026";
        QTest::newRow("two sessions") << m_discs.twoSessionIso("two.iso") << qint64(16) << 221u << "SECOND";
    }

    void isoImages()
    {
        QFETCH(QString, image);
        QFETCH(qint64, descriptor);
        QFETCH(QString, label);
        const VolumeInfo volume = readVolumeInfo(image);
        QVERIFY(volume.ok);
        QCOMPARE(volume.fsName, QStringLiteral("CDFS"));
        QTEST(volume.maxComponentLength, "maxLength");
        QCOMPARE(volume.label, label);
        QCOMPARE(volume.label, isoInfoVolume(image));
        QCOMPARE(volume.serial, test::laneChecksum(test::sectorOf(image, descriptor), false));
    }

    void lastSessionDescriptorCounts()
    {
        const QString image = m_discs.twoSessionIso("sessions.iso");
        const QByteArray bytes = test::readFile(image);
        // Spoil the copy of the descriptor at the start: a disc's last session has its own.
        QByteArray spoiled = bytes;
        spoiled[16 * 2048 + 100] = char(spoiled[16 * 2048 + 100] + 1);
        // Where xorriso put the second session.
        qint32 secondSession = 0;
        for (const QByteArray& line : test::runTool("xorriso", {"-indev", image, "-toc"}).split('\n')) {
            const QList<QByteArray> fields = line.simplified().split(',');
            if (line.startsWith("ISO session") && fields.size() > 2 && fields[0].trimmed().endsWith(" 2")) {
                secondSession = fields[1].trimmed().toInt();
            }
        }
        QVERIFY(secondSession > 16);
        Toc toc;
        toc.tracks = {{1, 0, false}};
        toc.leadoutLsn = static_cast<qint32>(bytes.size() / 2048);
        toc.lastSessionLsn = secondSession;
        MemoryMedium medium(spoiled, toc);
        const QByteArray lastDescriptor = bytes.mid((secondSession + 16) * 2048, 2048);
        QCOMPARE(lastDescriptor.mid(1, 5), QByteArray("CD001"));
        QCOMPARE(identifyVolume(medium).serial, test::laneChecksum(lastDescriptor, false));

        // Nothing valid where the last session should start: the start of the disc counts.
        toc.lastSessionLsn = toc.leadoutLsn - 20;
        MemoryMedium elsewhere(bytes, toc);
        QCOMPARE(identifyVolume(elsewhere).serial, test::laneChecksum(bytes.mid(16 * 2048, 2048), false));
    }

    void udfImages_data()
    {
        QTest::addColumn<QString>("image");
        QTest::addColumn<QString>("label");
        QTest::newRow("UDF") << m_discs.udf("plain.udf", "Фильмы 2026") << "Фильмы 2026";
        QTest::newRow("UDF bridge") << m_discs.iso("bridge.iso", {"-udf", "-J", "-V", "BRIDGE_DVD"})
                                    << "BRIDGE_DVD";
    }

    void udfImages()
    {
        QFETCH(QString, image);
        QFETCH(QString, label);
        const VolumeInfo volume = readVolumeInfo(image);
        QVERIFY(volume.ok);
        QCOMPARE(volume.fsName, QStringLiteral("UDF"));
        QCOMPARE(volume.maxComponentLength, 255u);
        QCOMPARE(volume.label, label);
        const qint64 fileSet = findUdfTag(image, 256, 257);
        QVERIFY(fileSet > 0);
        QCOMPARE(volume.serial, test::laneChecksum(test::sectorOf(image, fileSet), true));
    }

    void audioImages_data()
    {
        QTest::addColumn<QList<int>>("tracks");
        QTest::newRow("1 track") << QList<int>{20000};
        QTest::newRow("2 tracks") << QList<int>{15000, 4000};
        QTest::newRow("3 tracks") << QList<int>{15000, 15000, 15000};
        QList<int> twenty;
        for (int i = 0; i < 20; ++i) {
            twenty.append(1000 + 37 * i);
        }
        QTest::newRow("20 tracks") << twenty;
    }

    void audioImages()
    {
        QFETCH(QList<int>, tracks);
        const QString cue = m_discs.audioCue(QStringLiteral("audio%1").arg(tracks.size()), tracks);
        const VolumeInfo volume = readVolumeInfo(cue);
        QVERIFY(volume.ok);
        QCOMPARE(volume.label, QStringLiteral("Audio CD"));
        QCOMPARE(volume.maxComponentLength, 221u);
        // The rule computed from the plain track lengths.
        const auto pack = [](qint64 lsn) {
            const qint64 x = lsn + 150;
            return quint32((x / 4500) << 16 | ((x / 75) % 60) << 8 | (x % 75));
        };
        quint32 expected = 0;
        qint64 start = 0;
        for (const int length : tracks) {
            expected += pack(start);
            start += length;
        }
        if (tracks.size() <= 2) {
            expected = pack(start);
        }
        QCOMPARE(volume.serial, expected);
    }

    void enhancedCd()
    {
        const QString iso = m_discs.iso("extra.iso", {"-J", "-V", "EXTRA"});
        const QString withIso = m_discs.audioCue("enhanced", {15000, 15000, 15000}, iso);
        const VolumeInfo data = readVolumeInfo(withIso);
        QVERIFY(data.ok);
        QCOMPARE(data.label, QStringLiteral("EXTRA"));
        QCOMPARE(data.maxComponentLength, 110u);
        QCOMPARE(data.serial, test::laneChecksum(test::sectorOf(iso, 17), false));

        // A data track without a file system leaves an audio disc ending before it.
        const QString blank = m_dir.filePath("blank.img");
        test::writeFile(blank, QByteArray(300 * 2048, '\0'));
        const VolumeInfo audio = readVolumeInfo(m_discs.audioCue("audioplus", {15000, 15000, 15000}, blank));
        QVERIFY(audio.ok);
        QCOMPARE(audio.label, QStringLiteral("Audio CD"));
        QCOMPARE(audio.serial, packMsf(0) + packMsf(15000) + packMsf(30000));
    }

    void badMediaAreNoMedium_data()
    {
        QTest::addColumn<QString>("drive");
        const QString iso = m_discs.iso("whole.iso", {"-V", "WHOLE"});
        const QString truncated = m_dir.filePath("truncated.iso");
        test::writeFile(truncated, test::readFile(iso).left(10 * 2048 + 77));
        const QString empty = m_dir.filePath("empty.iso");
        test::writeFile(empty, QByteArray());
        const QString text = m_dir.filePath("notes.iso");
        test::writeFile(text, QByteArray("this is a text file, not a disc\n").repeated(2000));
        const QString lostBin = m_dir.filePath("lost.cue");
        test::writeFile(lostBin, "FILE \"nowhere.bin\" BINARY\n  TRACK 01 AUDIO\n    INDEX 01 00:00:00\n");
        const QString garbageCue = m_dir.filePath("garbage.cue");
        test::writeFile(garbageCue, QByteArray("\x01\x02 TRACK ?? nonsense\n"));
        QTest::newRow("truncated image") << truncated;
        QTest::newRow("zero-length file") << empty;
        QTest::newRow("text file named .iso") << text;
        QTest::newRow("CUE sheet without its BIN") << lostBin;
        QTest::newRow("garbage CUE sheet") << garbageCue;
        QTest::newRow("a folder") << m_dir.path();
        QTest::newRow("missing file") << m_dir.filePath("missing.iso");
        QTest::newRow("device that is not a drive") << "/dev/null";
    }

    void badMediaAreNoMedium()
    {
        QFETCH(QString, drive);
        const VolumeInfo volume = readVolumeInfo(drive);
        QVERIFY(!volume.ok);
        QCOMPARE(volume.serial, 0u);
        QCOMPARE(volume.maxComponentLength, 0u);

        QTemporaryDir home;
        const test::CliRun run = test::runCli(home.path(), {"identify", drive});
        QCOMPARE(run.code, 1);
        QCOMPARE(run.out, QString());
        QCOMPARE(run.err.count('\n'), 1);
        QVERIFY(run.err.startsWith("vinora-cli: no usable medium in "));
    }

    void commandLine()
    {
        QTemporaryDir home;
        const QString iso = m_discs.iso("cli.iso", {"-J", "-V", "Диск 7"});
        const auto cli = [&](const QStringList& arguments, int expectedExit) {
            const test::CliRun run = test::runCli(home.path(), arguments);
            [&] { QCOMPARE(run.code, expectedExit); }();
            return run.out;
        };
        const VolumeInfo volume = readVolumeInfo(iso);
        const QString id = QString::number(volume.serial, 16).toUpper();
        QCOMPARE(cli({"identify", iso}, 0),
                 "kind: PcCD\nid: " + id + "\nlabel: Диск 7\nfs: CDFS\nmaxlen: 110\nserial: " +
                     QString("%1").arg(volume.serial, 8, 16, QChar(u'0')).toUpper() + "\n");
        test::writeFile(home.filePath("skipcd.ini"), "[CD]\n" + id.toLatin1() + "=n/a\n");
        QVERIFY(cli({"identify", iso}, 0).startsWith("kind: \nid: "));
    }

    void damagedImagesNeverCrash()
    {
        const QList<QString> images = {m_discs.iso("fuzz.iso", {"-J", "-R", "-V", "FUZZ"}),
                                       m_discs.udf("fuzz.udf", "FUZZ"),
                                       m_discs.iso("fuzzbridge.iso", {"-udf", "-V", "FUZZ"})};
        QRandomGenerator random(20261122);
        int identified = 0;
        for (const QString& image : images) {
            const QByteArray original = test::readFile(image);
            for (int round = 0; round < 150; ++round) {
                QByteArray damaged = original;
                const int hits = 1 + random.bounded(40);
                for (int i = 0; i < hits; ++i) {
                    // Mostly in the descriptors, where the reader looks first.
                    const qint64 limit = std::min<qint64>(damaged.size(), 600 * 2048);
                    const qint64 at =
                        round % 3 == 0 ? random.bounded(limit) : 16 * 2048 + random.bounded(20 * 2048);
                    damaged[at] = char(random.bounded(256));
                }
                if (round % 10 == 9) {
                    damaged.truncate(random.bounded(damaged.size()));
                }
                Toc toc;
                toc.tracks = {{1, 0, false}};
                toc.leadoutLsn = static_cast<qint32>(damaged.size() / 2048);
                MemoryMedium medium(damaged, toc);
                identified += identifyVolume(medium).ok ? 1 : 0;
            }
        }
        QVERIFY(identified > 0); // most damage leaves a readable volume
    }
};

VINORA_TEST_MAIN(tst_volumeidentity)
#include "tst_volumeidentity.moc"
