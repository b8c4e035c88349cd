#include "DamagedImages.h"
#include "DiscFixtures.h"
#include "recognition/VolumeReader.h"
#include "support/TestFolders.h"
#include "support/TestMain.h"

#include <QBuffer>
#include <QDir>
#include <QDirIterator>
#include <QRandomGenerator>
#include <QTemporaryDir>

using namespace vinora;

namespace {

// Every folder and file below `folder`, as "path size" lines ("path/" for folders),
// with "hidden" behind the hidden ones.
QStringList walk(VolumeReader& reader, const QString& folder = {})
{
    QStringList lines;
    const auto entries = reader.list(folder);
    if (!entries) {
        return {"unreadable " + folder};
    }
    for (const VolumeEntry& entry : *entries) {
        const QString path = folder.isEmpty() ? entry.name : folder + "/" + entry.name;
        QString line =
            entry.isFolder ? QString(path + "/") : QString(path + " " + QString::number(entry.size));
        if (entry.hidden) {
            line += " hidden";
        }
        lines.append(line);
        if (entry.isFolder) {
            lines += walk(reader, path);
        }
    }
    return lines;
}

// The same listing of the source tree on disk: the oracle.
QStringList walkTree(const QString& root)
{
    QStringList lines;
    QDirIterator it(root, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        it.next();
        const QString path = QDir(root).relativeFilePath(it.filePath());
        lines.append(it.fileInfo().isDir() ? QString(path + "/")
                                           : QString(path + " " + QString::number(it.fileInfo().size())));
    }
    return lines;
}

// A Cyrillic name of `length` characters (two bytes each in UTF-8), upper and lower case.
QString cyrillicName(int length)
{
    const QString words = "ДлинноеИмяЁжикаВТуманеИЕгоДрузейсъешьжеещёэтихмягкихфранцузскихбулок";
    QString name;
    while (name.size() < length) {
        name += words;
    }
    return name.left(length);
}

// The whole file as the reader copies it, or "failed".
QByteArray copied(VolumeReader& reader, const QString& file, const std::function<bool()>& cancelled = {})
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    return reader.copy(file, buffer, cancelled) ? buffer.data() : QByteArray("failed");
}

QStringList withoutFlags(QStringList lines)
{
    for (QString& line : lines) {
        line.remove(" hidden");
    }
    lines.sort();
    return lines;
}

} // namespace

class tst_volumereader : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    test::DiscFixtures m_discs{m_dir.path()};
    QString m_tree;
    QByteArray m_tag;

private slots:
    void initTestCase()
    {
        m_tree = m_discs.sourceTree();
        m_tag = "TAG" + QByteArray("Песня").leftJustified(30, '\0') +
                QByteArray("Artist").leftJustified(30, '\0');
        m_tag = m_tag.leftJustified(128, '\0');
        test::writeFile(m_tree + "/Музыка/Альбом/трек 01.mp3", QByteArray(5000, 'm') + m_tag);
        test::writeFile(m_tree + "/секрет.txt", "hidden on the disc\n");
        for (int i = 0; i < 40; ++i) {
            test::writeFile(m_tree + QString("/Много/file%1.dat").arg(i, 3, 10, QChar('0')),
                            QByteArray(i * 97, 'x'));
        }
    }

    void readsWhatWasWritten_data()
    {
        QTest::addColumn<QString>("image");
        QTest::newRow("Joliet") << m_discs.iso("j.iso", {"-J", "-hidden", "секрет.txt"});
        QTest::newRow("Rock Ridge") << m_discs.iso("r.iso", {"-R", "-hidden", "секрет.txt"});
        QTest::newRow("Rock Ridge and Joliet")
            << m_discs.iso("rj.iso", {"-R", "-J", "-hidden", "секрет.txt"});
        QTest::newRow("UDF bridge") << m_discs.iso("u.iso", {"-udf", "-J"});
        QTest::newRow("mounted folder") << QString();
    }

    void readsWhatWasWritten()
    {
        QFETCH(QString, image);
        const std::unique_ptr<VolumeReader> reader =
            image.isEmpty() ? openFolderReader(m_tree) : openVolumeReader(image);
        QVERIFY(reader);
        const QStringList listing = walk(*reader);
        QCOMPARE(withoutFlags(listing), [&] {
            QStringList t = walkTree(m_tree);
            t.sort();
            return t;
        }());
        if (qstrcmp(QTest::currentDataTag(), "UDF bridge") != 0 && !image.isEmpty()) {
            QVERIFY(listing.contains("секрет.txt 19 hidden"));
        }
        QCOMPARE(reader->tail("Музыка/Альбом/трек 01.mp3", 128), std::optional<QByteArray>(m_tag));
        QCOMPARE(reader->tail("readme.txt", 128), std::optional<QByteArray>("root file\n"));
        QCOMPARE(reader->tail("DOCS/guide.doc", 3), std::optional<QByteArray>("ddd"));
        QVERIFY(!reader->tail("no/such.file", 128));
        QVERIFY(!reader->list("no/such/folder"));

        // Whole files, as opening one of the disc copies them out.
        QCOMPARE(copied(*reader, "DOCS/guide.doc"), test::readFile(m_tree + "/DOCS/guide.doc"));
        QCOMPARE(copied(*reader, "Музыка/Альбом/трек 01.mp3"),
                 test::readFile(m_tree + "/Музыка/Альбом/трек 01.mp3"));
        QCOMPARE(copied(*reader, "readme.txt"), QByteArray("root file\n"));
        QCOMPARE(copied(*reader, "DOCS"), QByteArray("failed"));
        QCOMPARE(copied(*reader, "no/such.file"), QByteArray("failed"));
        QCOMPARE(copied(*reader, "DOCS/guide.doc", [] { return true; }), QByteArray("failed"));
    }

    // Rock Ridge names longer than a directory record holds go on in continuation areas.
    // The longest name xorriso writes is 255 bytes: 127 Cyrillic letters, or 200 characters
    // of which 55 are Cyrillic.
    void longRockRidgeNames_data()
    {
        QTest::addColumn<QString>("path");
        QTest::newRow("127 Cyrillic letters") << cyrillicName(127);
        QTest::newRow("200 characters") << cyrillicName(55) + QString(140, 'x') + ".html";
        QTest::newRow("in a folder of a long name") << cyrillicName(120) + "/" + cyrillicName(100) + ".mp3";
        QTest::newRow("folders of long names")
            << cyrillicName(127) + "/" + "Вложенная папка " + cyrillicName(100) + "/readme.txt";
    }

    void longRockRidgeNames()
    {
        QFETCH(QString, path);
        const QByteArray content = QByteArray(3000, 'w') + m_tag;
        const QString image = m_discs.rockRidgeIso(QString("long%1.iso").arg(qHash(path)),
                                                   {{path, content}, {"readme.txt", "root file\n"}});
        const auto reader = openVolumeReader(image);
        QVERIFY(reader);
        QStringList expected{"readme.txt 10"};
        const QStringList names = path.split('/');
        for (int i = 1; i < names.size(); ++i) {
            expected.append(names.mid(0, i).join('/') + "/");
        }
        expected.append(path + " " + QString::number(content.size()));
        expected.sort();
        QStringList listing = walk(*reader);
        listing.sort();
        QCOMPARE(listing, expected);
        QCOMPARE(reader->tail(path, 128), std::optional<QByteArray>(m_tag));
        QCOMPARE(copied(*reader, path), content);
    }

    // A file of several extents is read extent by extent, wherever each lies.
    void fileOfSeveralExtents()
    {
        const QString tree = m_dir.filePath("extents");
        test::writeFile(tree + "/A.TXT", QByteArray(4096, 'a'));
        test::writeFile(tree + "/B.TXT", QByteArray(100, 'b'));
        test::writeFile(tree + "/C.TXT", QByteArray(2048, 'c'));
        const QString plain = m_dir.filePath("extents.iso");
        test::runTool("genisoimage", {"-quiet", "-o", plain, tree});
        QByteArray image = test::readFile(plain);
        const quint32 root = test::isoRootExtent(image);
        const qint64 a = test::isoRecord(image, root, "A.TXT");
        const qint64 b = test::isoRecord(image, root, "B.TXT");
        const qint64 c = test::isoRecord(image, root, "C.TXT");
        QVERIFY(a > 0 && b > 0 && c > 0);
        // A.TXT goes on in a second record of the same name, whose extent is C.TXT's.
        image[a + 25] = char(image[a + 25] | 0x80);
        image.replace(b + 33, 7, "A.TXT;1");
        test::pointIsoRecord(image, b, test::le32At(image, c + 2));
        const QString several = m_dir.filePath("several.iso");
        test::writeFile(several, image);
        const auto reader = openVolumeReader(several);
        QVERIFY(reader);
        QCOMPARE(walk(*reader), (QStringList{"A.TXT 4196", "C.TXT 2048"}));
        const QByteArray whole = QByteArray(4096, 'a') + QByteArray(100, 'c');
        QCOMPARE(copied(*reader, "A.TXT"), whole);
        QCOMPARE(reader->tail("A.TXT", 128), std::optional<QByteArray>(whole.right(128)));
    }

    void namesAreSortedAsTheCatalogueSorts()
    {
        const auto reader = openVolumeReader(m_discs.iso("sorted.iso", {"-J"}));
        const QList<VolumeEntry> root = *reader->list({});
        QStringList names;
        for (const VolumeEntry& entry : root) {
            names.append(entry.name);
        }
        QCOMPARE(names, (QStringList{"DOCS", "readme.txt", "Много", "Музыка", "секрет.txt"}));
    }

    void plainIsoNamesLoseTheirVersion()
    {
        const auto reader = openVolumeReader(m_discs.iso("plain.iso", {}));
        QVERIFY(reader);
        const QStringList listing = walk(*reader);
        QVERIFY(listing.contains("README.TXT 10"));
        QVERIFY(listing.contains("DOCS/GUIDE.DOC 1024000"));
        QVERIFY(
            std::none_of(listing.begin(), listing.end(), [](const QString& l) { return l.contains(';'); }));
    }

    void noDataVolume_data()
    {
        QTest::addColumn<QString>("drive");
        QTest::newRow("audio CD") << m_discs.audioCue("music", {15000, 15000});
        QTest::newRow("missing image") << m_dir.filePath("missing.iso");
        QTest::newRow("empty UDF") << m_discs.udf("empty.udf", "EMPTY", "0x0102");
    }

    void noDataVolume()
    {
        QFETCH(QString, drive);
        const auto reader = openVolumeReader(drive);
        if (qstrcmp(QTest::currentDataTag(), "empty UDF") == 0) {
            QVERIFY(reader);
            QCOMPARE(reader->list({})->size(), 0);
        } else {
            QVERIFY(!reader);
        }
    }

    void damagedImagesNeverCrash()
    {
        const QList<QString> images = {m_discs.iso("fj.iso", {"-J", "-R"}), m_discs.iso("fu.iso", {"-udf"}),
                                       m_discs.iso("fp.iso", {})};
        QRandomGenerator random(7);
        for (const QString& image : images) {
            const QByteArray original = test::readFile(image);
            const QString damagedPath = m_dir.filePath("damaged.iso");
            for (int round = 0; round < 60; ++round) {
                QByteArray damaged = original;
                for (int i = 0; i < 1 + random.bounded(30); ++i) {
                    damaged[random.bounded(std::min<qint64>(damaged.size(), 700 * 2048))] =
                        char(random.bounded(256));
                }
                test::writeFile(damagedPath, damaged);
                if (const auto reader = openVolumeReader(damagedPath)) {
                    walk(*reader);
                    reader->tail("readme.txt", 128);
                }
            }
        }
    }
};

VINORA_TEST_MAIN(tst_volumereader)
#include "tst_volumereader.moc"
