#include "DamagedImages.h"
#include "DiscFixtures.h"
#include "recognition/ImageChecks.h"
#include "recognition/ImageProbe.h"
#include "recognition/Medium.h"
#include "recognition/VolumeIdentity.h"
#include "recognition/VolumeReader.h"
#include "support/TestFolders.h"
#include "support/TestMain.h"

#include <QDir>
#include <QElapsedTimer>
#include <QStringEncoder>
#include <QTemporaryDir>
#include <QtEndian>
#include <csignal>
#include <thread>
#include <unistd.h>

using namespace vinora;

namespace {

// Every folder and file below `folder` as "path/" and "path size" lines; "unreadable path"
// for a folder that cannot be read. Checks what holds for every listed entry.
QStringList walk(VolumeReader& reader, const QString& folder = {}, int depth = 0)
{
    if (depth > kDeepestFolder + 1) {
        return {"too deep " + folder};
    }
    const auto entries = reader.list(folder);
    if (!entries) {
        return {"unreadable " + folder};
    }
    QStringList lines;
    for (const VolumeEntry& entry : *entries) {
        if (entry.name.isEmpty() || entry.name.contains('/') || entry.size < 0) {
            return {"bad entry in " + folder};
        }
        const QString path = folder.isEmpty() ? entry.name : folder + "/" + entry.name;
        lines.append(entry.isFolder ? QString(path + "/")
                                    : QString(path + " " + QString::number(entry.size)));
        if (entry.isFolder) {
            lines += walk(reader, path, depth + 1);
        }
    }
    return lines;
}

QString isoOf(const QString& folder, const QString& name, const QStringList& options)
{
    const QString tree = QDir(folder).filePath("ascii");
    if (!QDir(tree).exists()) {
        test::writeFile(tree + "/README.TXT", "root file\n");
        test::writeFile(tree + "/DOCS/A.TXT", QByteArray(3000, 'a'));
        test::writeFile(tree + "/DOCS/SUB/B.TXT", QByteArray(100, 'b'));
        test::writeFile(tree + "/MUSIC/ALBUM/C.MP3", QByteArray(5000, 'c'));
        test::writeFile(tree + "/MUSIC/D.TXT", "d\n");
    }
    const QString image = QDir(folder).filePath(name);
    test::runTool("genisoimage",
                  QStringList{"-quiet", "-V", "DAMAGED", "-o", image} + options + QStringList{tree});
    return image;
}

enum class NrgDamage {
    ChunkSizePastFooter,
    ChunkSizeNotWholeEntries,
    HugeSizeWrapping,
    EtnSizeNotWhole,
    DaoTooShort,
    SecondTrackTable,
    CueOddEntries,
    SinfSizeHuge,
    FooterOffsetPastEnd,
    FooterOffsetHuge,
    FooterOffsetAtStart,
    FooterTooLong,
    NoEnd,
    NoTracks,
    TooManyTracks,
    NoFooter,
    Truncated,
};

enum class UdfDamage {
    NameLength,
    ImplementationUseLength,
    IdentifierOutside,
    FolderIsRoot,
    InformationLength,
    DescriptorsLength,
    AttributesLength,
    ExtentLength,
    ExtentPosition,
};

} // namespace

class tst_damagedimages : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    test::DiscFixtures m_discs{m_dir.path()};
    QByteArray m_iso;
    QString m_udf;

private slots:
    void initTestCase()
    {
        m_iso = test::readFile(isoOf(m_dir.path(), "plain.iso", {}));
        m_udf = isoOf(m_dir.path(), "bridge.iso", {"-udf", "-J"});
    }

    void nrgWrittenHereIsADisc()
    {
        const QString path = m_dir.filePath("good.nrg");
        test::writeFile(path, test::nrgOf(m_iso).bytes);
        QVERIFY(nrgFileLooksSound(path));
        QVERIFY(openMedium(path));
        const VolumeInfo volume = readVolumeInfo(path);
        QVERIFY(volume.ok);
        QCOMPARE(volume.label, QString("DAMAGED"));
        QCOMPARE(volume.serial, test::laneChecksum(m_iso.mid(16 * 2048, 2048), false));
        const auto reader = openVolumeReader(path);
        QVERIFY(reader);
        QVERIFY(walk(*reader).contains("DOCS/SUB/B.TXT 100"));
    }

    void damagedNrgIsNoDisc_data()
    {
        QTest::addColumn<NrgDamage>("damage");
        QTest::newRow("chunk size past the footer") << NrgDamage::ChunkSizePastFooter;
        QTest::newRow("chunk size not whole entries") << NrgDamage::ChunkSizeNotWholeEntries;
        QTest::newRow("huge size wrapping around") << NrgDamage::HugeSizeWrapping;
        QTest::newRow("track table size not whole") << NrgDamage::EtnSizeNotWhole;
        QTest::newRow("disc-at-once chunk too short") << NrgDamage::DaoTooShort;
        QTest::newRow("second track table") << NrgDamage::SecondTrackTable;
        QTest::newRow("cue table of odd entries") << NrgDamage::CueOddEntries;
        QTest::newRow("session chunk size huge") << NrgDamage::SinfSizeHuge;
        QTest::newRow("footer offset past the end") << NrgDamage::FooterOffsetPastEnd;
        QTest::newRow("footer offset huge") << NrgDamage::FooterOffsetHuge;
        QTest::newRow("footer offset at the start") << NrgDamage::FooterOffsetAtStart;
        QTest::newRow("footer longer than a footer") << NrgDamage::FooterTooLong;
        QTest::newRow("no end chunk") << NrgDamage::NoEnd;
        QTest::newRow("no tracks") << NrgDamage::NoTracks;
        QTest::newRow("more tracks than a disc") << NrgDamage::TooManyTracks;
        QTest::newRow("no footer") << NrgDamage::NoFooter;
        QTest::newRow("cut in the chunks") << NrgDamage::Truncated;
    }

    void damagedNrgIsNoDisc()
    {
        QFETCH(NrgDamage, damage);
        test::NrgImage nrg = test::nrgOf(m_iso);
        QByteArray& b = nrg.bytes;
        const qint64 footer = b.size() - 12;
        const qint64 etn2 = nrg.chunk("ETN2");
        QVERIFY(etn2 > 0 && nrg.chunk("SINF") > 0);
        switch (damage) {
        case NrgDamage::ChunkSizePastFooter:
            test::putBe32(b, etn2 + 4, 0x7FFFFFE0);
            break;
        case NrgDamage::ChunkSizeNotWholeEntries:
            test::putBe32(b, etn2 + 4, 28);
            break;
        case NrgDamage::HugeSizeWrapping:
            test::putBe32(b, etn2 + 4, 0xFFFFFFE0);
            break;
        case NrgDamage::EtnSizeNotWhole:
            test::putBe32(b, etn2 + 4, 33);
            break;
        case NrgDamage::DaoTooShort:
            nrg.insertBeforeEnd("DAOX", QByteArray(10, '\1'));
            break;
        case NrgDamage::SecondTrackTable:
            nrg.insertBeforeEnd("CUEX", test::cueEntry(0x41, 0, 0, -150) + test::cueEntry(0x41, 1, 0, -150) +
                                            test::cueEntry(0x41, 1, 1, 0) +
                                            test::cueEntry(0x41, 0xAA, 1, 100));
            break;
        case NrgDamage::CueOddEntries:
            b.remove(etn2, 8 + 32);
            nrg.insertBeforeEnd("CUEX", test::cueEntry(0x41, 0, 0, -150) + test::cueEntry(0x41, 1, 0, -150) +
                                            test::cueEntry(0x41, 1, 1, 0));
            break;
        case NrgDamage::SinfSizeHuge:
            test::putBe32(b, nrg.chunk("SINF") + 4, 0xFFFFFFFF);
            break;
        case NrgDamage::FooterOffsetPastEnd:
            test::putBe64(b, footer + 4, quint64(b.size() + 100));
            break;
        case NrgDamage::FooterOffsetHuge:
            test::putBe64(b, footer + 4, 0xFFFFFFFFFFFFFFF0ull);
            break;
        case NrgDamage::FooterOffsetAtStart:
            test::putBe64(b, footer + 4, 0);
            break;
        case NrgDamage::FooterTooLong:
            test::putBe64(b, footer + 4, quint64(nrg.chunks - 5000));
            break;
        case NrgDamage::NoEnd:
            b.replace(nrg.chunk("END!"), 4, "ENDX");
            break;
        case NrgDamage::NoTracks:
            test::putBe32(b, etn2 + 4, 0);
            b.remove(etn2 + 8, 32);
            break;
        case NrgDamage::TooManyTracks: {
            QByteArray many(100 * 32, '\0');
            for (int i = 0; i < 100; ++i) {
                test::putBe32(many, i * 32 + 16, 3);
            }
            test::putBe32(b, etn2 + 4, quint32(many.size()));
            b.replace(etn2 + 8, 32, many);
            break;
        }
        case NrgDamage::NoFooter:
            b.replace(footer, 4, "NERX");
            break;
        case NrgDamage::Truncated:
            b.truncate(etn2 + 20);
            b += QByteArray("NER5", 4) + QByteArray(8, '\0');
            test::putBe64(b, b.size() - 8, quint64(nrg.chunks));
            break;
        }
        const QString path = m_dir.filePath("damaged.nrg");
        test::writeFile(path, b);
        QVERIFY(!nrgFileLooksSound(path));
        QVERIFY(!openMedium(path));
        QVERIFY(!readVolumeInfo(path).ok);
        QVERIFY(!openVolumeReader(path));
    }

    void cueSheetsAreChecked_data()
    {
        QTest::addColumn<QByteArray>("sheet");
        QTest::addColumn<bool>("sound");
        QTest::newRow("sound")
            << QByteArray("FILE \"data.bin\" BINARY\n  TRACK 01 MODE1/2352\n    INDEX 01 00:00:00\n") << true;
        QTest::newRow("unquoted name")
            << QByteArray("FILE data.bin BINARY\nTRACK 1 MODE1/2352\nINDEX 01 00:00:00\n") << true;
        QTest::newRow("missing file")
            << QByteArray("FILE \"gone.bin\" BINARY\nTRACK 01 AUDIO\nINDEX 01 00:00:00\n") << false;
        QTest::newRow("no file") << QByteArray("TRACK 01 AUDIO\nINDEX 01 00:00:00\n") << false;
        QTest::newRow("no track") << QByteArray("FILE \"data.bin\" BINARY\n") << false;
        QTest::newRow("track 100") << QByteArray(
                                          "FILE \"data.bin\" BINARY\nTRACK 100 AUDIO\nINDEX 01 00:00:00\n")
                                   << false;
        QTest::newRow("track twice")
            << QByteArray("FILE \"data.bin\" BINARY\nTRACK 01 AUDIO\nINDEX 01 00:00:00\nTRACK 01 AUDIO\n")
            << false;
        QTest::newRow("binary") << QByteArray("FILE \"data.bin\" BINARY\n\0TRACK 01 AUDIO\n", 40) << false;
        QTest::newRow("unclosed quote") << QByteArray("FILE \"data.bin BINARY\nTRACK 01 AUDIO\n") << false;
        QTest::newRow("huge") << QByteArray("FILE \"data.bin\" BINARY\nTRACK 01 AUDIO\n") +
                                     QByteArray(300 * 1024, ' ')
                              << false;
    }

    void cueSheetsAreChecked()
    {
        QFETCH(QByteArray, sheet);
        QFETCH(bool, sound);
        const QString folder = m_dir.filePath("cue");
        test::writeFile(folder + "/data.bin", QByteArray(2352 * 300, '\0'));
        test::writeFile(folder + "/sheet.cue", sheet);
        QCOMPARE(cueFileLooksSound(folder + "/sheet.cue"), sound);
        if (!sound) {
            QVERIFY(!openMedium(folder + "/sheet.cue"));
            QVERIFY(!readVolumeInfo(folder + "/sheet.cue").ok);
        }
    }

    void childProcessTellsTheOutcome_data()
    {
        QTest::addColumn<int>("how");
        QTest::addColumn<bool>("survives");
        QTest::newRow("returns") << 0 << true;
        QTest::newRow("segmentation fault") << 1 << false;
        QTest::newRow("abort") << 2 << false;
        QTest::newRow("exit status") << 3 << false;
        QTest::newRow("exception") << 4 << false;
        QTest::newRow("hangs") << 5 << false;
    }

    void childProcessTellsTheOutcome()
    {
        QFETCH(int, how);
        QElapsedTimer clock;
        clock.start();
        const bool survived = runInChild(
            [how] {
                switch (how) {
                case 1:
                    std::raise(SIGSEGV);
                    break;
                case 2:
                    std::abort();
                case 3:
                    std::exit(3);
                case 4:
                    throw std::runtime_error("damaged");
                case 5:
                    std::this_thread::sleep_for(std::chrono::seconds(30));
                    break;
                }
            },
            std::chrono::milliseconds(500));
        QTEST(survived, "survives");
        QVERIFY(clock.elapsed() < 10000); // a hanging child is stopped at its limit
    }

    void verdictIsKeptUntilTheImageChanges()
    {
        const QString cue = m_discs.audioCue("kept", {1000, 2000});
        const int before = imageProbeCount();
        QVERIFY(readVolumeInfo(cue).ok);
        QCOMPARE(imageProbeCount(), before + 1);
        for (int poll = 0; poll < 3; ++poll) {
            QVERIFY(readVolumeInfo(cue).ok); // the drive watch's polls
            QVERIFY(openMedium(cue));
        }
        QCOMPARE(imageProbeCount(), before + 1);

        test::writeFile(cue, test::readFile(cue) + "REM changed\n");
        QVERIFY(readVolumeInfo(cue).ok);
        QCOMPARE(imageProbeCount(), before + 2);
        QVERIFY(readVolumeInfo(cue).ok);
        QCOMPARE(imageProbeCount(), before + 2);

        // Our own readers need no probe: device nodes and plain ISO images.
        QVERIFY(!openMedium("/dev/null"));
        QVERIFY(openMedium(m_dir.filePath("plain.iso")));
        QCOMPARE(imageProbeCount(), before + 2);
    }

    void verdictIsSharedByThreads()
    {
        const QString cue = m_discs.audioCue("threads", {1000});
        const int before = imageProbeCount();
        std::atomic<int> ok{0};
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i) {
            threads.emplace_back([&] { ok += readVolumeInfo(cue).ok ? 1 : 0; });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        QCOMPARE(ok.load(), 4);
        QCOMPARE(imageProbeCount(), before + 1);
    }

    void damagedUdfNeverCrashes_data()
    {
        QTest::addColumn<UdfDamage>("damage");
        QTest::newRow("identifier name length") << UdfDamage::NameLength;
        QTest::newRow("identifier implementation use length") << UdfDamage::ImplementationUseLength;
        QTest::newRow("identifier pointing outside") << UdfDamage::IdentifierOutside;
        QTest::newRow("folder pointing at the root") << UdfDamage::FolderIsRoot;
        QTest::newRow("file entry information length") << UdfDamage::InformationLength;
        QTest::newRow("file entry descriptors length") << UdfDamage::DescriptorsLength;
        QTest::newRow("file entry attributes length") << UdfDamage::AttributesLength;
        QTest::newRow("extent length") << UdfDamage::ExtentLength;
        QTest::newRow("extent position") << UdfDamage::ExtentPosition;
    }

    void damagedUdfNeverCrashes()
    {
        QFETCH(UdfDamage, damage);
        QByteArray image = test::readFile(m_udf);
        const QList<qint64> identifiers = test::udfDescriptors(image, 257);
        const QList<qint64> entries = test::udfDescriptors(image, 261);
        const QList<qint64> fileSets = test::udfDescriptors(image, 256);
        QVERIFY(identifiers.size() > 4 && entries.size() > 4 && fileSets.size() == 1);
        const quint32 rootEntry = test::le32At(image, fileSets[0] + 400 + 4);
        QString cycled;
        for (const qint64 at : identifiers) {
            const quint8 characteristics = quint8(image[at + 18]);
            const bool parent = characteristics & 0x08;
            const bool folder = characteristics & 0x02;
            switch (damage) {
            case UdfDamage::NameLength:
                image[at + 19] = char(0xFF);
                break;
            case UdfDamage::ImplementationUseLength:
                test::putLe16(image, at + 36, 0xFFFF);
                break;
            case UdfDamage::IdentifierOutside:
                test::putLe32(image, at + 24, 0xFFFFFF00);
                break;
            case UdfDamage::FolderIsRoot:
                if (folder && !parent && cycled.isEmpty()) {
                    test::putLe32(image, at + 24, rootEntry);
                    // the name, one byte per character after the compression byte
                    const int length = quint8(image[at + 19]);
                    const int skip = qFromLittleEndian<quint16>(image.constData() + at + 36);
                    cycled = QString::fromLatin1(image.mid(at + 38 + skip + 1, length - 1));
                }
                break;
            default:
                break;
            }
            test::fixUdfTag(image, at);
        }
        for (const qint64 at : entries) {
            const quint32 attributes = test::le32At(image, at + 168);
            switch (damage) {
            case UdfDamage::InformationLength:
                test::putLe32(image, at + 56, 0xFFFFFFFF);
                test::putLe32(image, at + 60, 0x7FFFFFFF);
                break;
            case UdfDamage::DescriptorsLength:
                test::putLe32(image, at + 172, 0xFFFFFFF0);
                break;
            case UdfDamage::AttributesLength:
                test::putLe32(image, at + 168, 0xFFFFFFF0);
                break;
            case UdfDamage::ExtentLength:
                if (attributes < 1024) {
                    test::putLe32(image, at + 176 + attributes, 0x3FFFFFFF);
                }
                break;
            case UdfDamage::ExtentPosition:
                if (attributes < 1024) {
                    test::putLe32(image, at + 176 + attributes + 4, 0xFFFFFF00);
                }
                break;
            default:
                break;
            }
            test::fixUdfTag(image, at);
        }
        const QString path = m_dir.filePath("damaged-udf.iso");
        test::writeFile(path, image);
        (void)readVolumeInfo(path);
        const auto reader = openVolumeReader(path);
        if (reader) {
            const QStringList lines = walk(*reader);
            QVERIFY(!lines.filter("bad entry").size());
            QVERIFY(!lines.filter("too deep").size());
            if (damage == UdfDamage::FolderIsRoot) {
                QVERIFY(!cycled.isEmpty());
                QVERIFY2(lines.contains("unreadable " + cycled), qPrintable(lines.join('\n')));
                QVERIFY(lines.contains("README.TXT 10"));
            }
        }
    }

    void isoCycles_data()
    {
        QTest::addColumn<QString>("options");
        QTest::addColumn<QString>("folder");  // the folder whose record is changed
        QTest::addColumn<QString>("pointTo"); // where it is made to point
        QTest::newRow("subfolder at the root") << QString("") << QString("DOCS") << "";
        QTest::newRow("subfolder at its own parent") << QString("") << QString("DOCS/SUB") << "DOCS";
        QTest::newRow("folder inside itself") << QString("") << QString("MUSIC/ALBUM/C.MP3") << "MUSIC/ALBUM";
        QTest::newRow("Joliet subfolder at the root") << QString("-J") << QString("DOCS") << "";
        QTest::newRow("Rock Ridge subfolder at the root") << QString("-R") << QString("DOCS") << "";
    }

    void isoCycles()
    {
        QFETCH(QString, options);
        QFETCH(QString, folder);
        QFETCH(QString, pointTo);
        const QString source =
            isoOf(m_dir.path(), "cycle-source.iso", options.split(' ', Qt::SkipEmptyParts));
        QByteArray image = test::readFile(source);
        const bool joliet = options == "-J";
        // The directory records of the tree the reader uses: Joliet's or the primary one.
        quint32 rootExtent = test::isoRootExtent(image);
        if (joliet) {
            for (qint64 lsn = 17; lsn < 32; ++lsn) {
                if (image[lsn * 2048] == 2) {
                    rootExtent = test::le32At(image, lsn * 2048 + 156 + 2);
                    break;
                }
            }
        }
        const auto nameOf = [joliet](const QString& name) -> QByteArray {
            return joliet ? QStringEncoder(QStringConverter::Utf16BE).encode(name) : name.toLatin1();
        };
        const auto extentOf = [&](const QString& path) -> std::pair<quint32, qint64> {
            quint32 extent = rootExtent;
            qint64 record = -1;
            for (const QString& name : path.split('/', Qt::SkipEmptyParts)) {
                record = test::isoRecord(image, extent, nameOf(name));
                if (record < 0) {
                    return {0, -1};
                }
                extent = test::le32At(image, record + 2);
            }
            return {extent, record};
        };
        const auto [target, unused] = extentOf(pointTo);
        const auto [changed, record] = extentOf(folder);
        QVERIFY(record > 0 && target > 0);
        test::pointIsoRecord(image, record, target);
        const bool wasFile = !(image[record + 25] & 0x02);
        image[record + 25] = char(image[record + 25] | 0x02); // a folder record now
        const QString path = m_dir.filePath("cycle.iso");
        test::writeFile(path, image);

        const auto original = openVolumeReader(source);
        const auto reader = openVolumeReader(path);
        QVERIFY(original && reader);
        QVERIFY(readVolumeInfo(path).ok);
        QStringList expected;
        for (const QString& line : walk(*original)) {
            if (wasFile && line.startsWith(folder + " ")) {
                expected.append(folder + "/");
            } else if (line == folder + "/" || !line.startsWith(folder + "/")) {
                expected.append(line);
            }
        }
        expected.insert(expected.indexOf(folder + "/") + 1, "unreadable " + folder);
        QCOMPARE(walk(*reader), expected);
    }

    void hugeDirectoriesAreRefused_data()
    {
        QTest::addColumn<quint32>("extent");
        QTest::addColumn<quint32>("size");
        QTest::newRow("size past the image") << 0u << 60u * 1024 * 1024;
        QTest::newRow("size of four gigabytes") << 0u << 0xFFFFFFFFu;
        QTest::newRow("extent past the image") << 0x7FFFFF00u << 2048u;
        QTest::newRow("extent at the last sector") << 0xFFFFFFFFu << 4096u;
    }

    void hugeDirectoriesAreRefused()
    {
        QFETCH(quint32, extent);
        QFETCH(quint32, size);
        QByteArray image = m_iso;
        const qint64 record = test::isoRecord(image, test::isoRootExtent(image), "DOCS");
        QVERIFY(record > 0);
        if (extent != 0) {
            test::pointIsoRecord(image, record, extent);
        }
        test::putLe32(image, record + 10, size);
        qToBigEndian(size, image.data() + record + 14);
        const QString path = m_dir.filePath("huge.iso");
        test::writeFile(path, image);
        const auto reader = openVolumeReader(path);
        QVERIFY(reader);
        const QStringList lines = walk(*reader);
        QVERIFY(lines.contains("unreadable DOCS"));
        QVERIFY(lines.contains("MUSIC/ALBUM/C.MP3 5000"));
    }

    // A mounted disc's symbolic links are listed as what they are, files of their own
    // size, and never followed: not into a cycle, not out of the disc.
    void symbolicLinksAreListedNotFollowed()
    {
        const QString root = m_dir.filePath("mounted");
        test::writeFile(root + "/DOCS/A.TXT", "a");
        test::writeFile(root + "/README.TXT", "root file\n");
        QVERIFY(QFile::link(root, root + "/DOCS/BACK"));
        QVERIFY(QFile::link(root + "/DOCS", root + "/DOCS/SELF"));
        QVERIFY(QFile::link(".", root + "/debian"));
        QVERIFY(QFile::link("../README.TXT", root + "/DOCS/readme-link"));
        QVERIFY(QFile::link(m_dir.path(), root + "/outside"));
        const auto reader = openFolderReader(root);
        QStringList lines = walk(*reader);
        lines.sort();
        const auto linkSize = [](const QString& target) {
            return QString::number(QFile::encodeName(target).size());
        };
        QStringList expected{"DOCS/",
                             "DOCS/A.TXT 1",
                             "DOCS/BACK " + linkSize(root),
                             "DOCS/SELF " + linkSize(root + "/DOCS"),
                             "DOCS/readme-link " + linkSize("../README.TXT"),
                             "README.TXT 10",
                             "debian 1",
                             "outside " + linkSize(m_dir.path())};
        expected.sort();
        QCOMPARE(lines, expected);
        // A folder path through a link is no folder of the disc, and a link is no file to read.
        QVERIFY(!reader->list("debian"));
        QVERIFY(!reader->list("DOCS/BACK/DOCS"));
        QVERIFY(!reader->tail("DOCS/readme-link", 128));
        QVERIFY(!reader->tail("outside/mounted/README.TXT", 128));
        QCOMPARE(reader->tail("README.TXT", 128), std::optional<QByteArray>("root file\n"));
    }

    // Continuation areas of Rock Ridge entries that loop, lie outside the image or are of no
    // sane size: the walk ends, with what the record itself holds of the name.
    void continuationAreasOutOfBounds_data()
    {
        QTest::addColumn<int>("damage");
        QTest::addColumn<bool>("nameWhole");
        QTest::newRow("back to itself after the name") << 0 << true;
        QTest::newRow("to itself at once") << 1 << false;
        QTest::newRow("outside the image") << 2 << false;
        QTest::newRow("offset past its sector") << 3 << false;
        QTest::newRow("length of four gigabytes") << 4 << false;
        QTest::newRow("no length") << 5 << false;
        QTest::newRow("into the directory itself") << 6 << false;
    }

    void continuationAreasOutOfBounds()
    {
        QFETCH(int, damage);
        QFETCH(bool, nameWhole);
        const QString longName = QString(120, QChar(0x0416)) + "ик";
        QByteArray image = test::readFile(
            m_discs.rockRidgeIso("ce.iso", {{longName, "long\n"}, {"readme.txt", "root file\n"}}));
        // The "CE" entry of the record of the long name.
        const quint32 root = test::isoRootExtent(image);
        qint64 ce = -1;
        qint64 record = root * 2048;
        for (int length = quint8(image[record]); length > 0 && ce < 0;
             record += length, length = quint8(image[record])) {
            const int nameLength = quint8(image[record + 32]);
            const qint64 end = record + length;
            for (qint64 at = record + 33 + nameLength + (nameLength % 2 == 0 ? 1 : 0);
                 nameLength > 1 && at + 4 <= end && quint8(image[at + 2]) >= 4; at += quint8(image[at + 2])) {
                if (image.mid(at, 2) == "CE") {
                    ce = at;
                    break;
                }
            }
        }
        QVERIFY(ce > 0);
        const quint32 block = test::le32At(image, ce + 4);
        const quint32 offset = test::le32At(image, ce + 12);
        const quint32 length = test::le32At(image, ce + 20);
        const auto setContinuation = [&image](qint64 at, quint32 toBlock, quint32 toOffset,
                                              quint32 toLength) {
            image.replace(at, 4, QByteArray("CE\x1c\x01", 4));
            for (const auto& [field, value] :
                 {std::pair{4, toBlock}, std::pair{12, toOffset}, std::pair{20, toLength}}) {
                test::putLe32(image, at + field, value);
                qToBigEndian(value, image.data() + at + field + 4);
            }
        };
        const qint64 area = qint64(block) * 2048 + offset;
        switch (damage) {
        case 0: // the area goes on in itself once the name is whole
            setContinuation(ce, block, offset, length + 28);
            setContinuation(area + length, block, offset, length + 28);
            break;
        case 1:
            setContinuation(area, block, offset, length);
            break;
        case 2:
            setContinuation(ce, 0x7FFFFFF0, offset, length);
            break;
        case 3:
            setContinuation(ce, block, 5000, length);
            break;
        case 4:
            setContinuation(ce, block, offset, 0xFFFFFFFF);
            break;
        case 5:
            setContinuation(ce, block, offset, 0);
            break;
        case 6:
            setContinuation(ce, root, quint32(ce - qint64(root) * 2048), 28);
            break;
        }
        const QString path = m_dir.filePath("ce-damaged.iso");
        test::writeFile(path, image);
        const auto reader = openVolumeReader(path);
        QVERIFY(reader);
        QStringList lines = walk(*reader);
        QCOMPARE(lines.size(), 2);
        QVERIFY(lines.contains("readme.txt 10"));
        lines.removeAll("readme.txt 10");
        if (nameWhole) {
            QCOMPARE(lines.first(), longName + " 5");
        } else {
            // What the record holds: the name's beginning, never more than the name.
            QVERIFY(lines.first().startsWith(longName.left(20)));
            QVERIFY(lines.first().size() < longName.size());
        }
    }
};

VINORA_TEST_MAIN(tst_damagedimages)
#include "tst_damagedimages.moc"
