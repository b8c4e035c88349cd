#include "DiscFixtures.h"
#include "recognition/VolumeReader.h"
#include "support/TestFolders.h"
#include "support/TestMain.h"

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
