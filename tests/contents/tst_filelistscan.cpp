#include "../recognition/DamagedImages.h"
#include "../recognition/DiscFixtures.h"
#include "contents/DiscScan.h"
#include "contents/MP3TagEditor.h"
#include "frame/Cp1251.h"
#include "recognition/VolumeIdentity.h"
#include "recognition/VolumeReader.h"
#include "store/ContentsLists.h"
#include "store/Db.h"
#include "store/Reanimator.h"
#include "support/CliRun.h"
#include "support/ScriptedPrompter.h"
#include "support/TestFolders.h"
#include "support/TestMain.h"

#include <QDir>
#include <cmath>

using namespace vinora;

namespace {

const QByteArray kTag = "TAG" + cp1251::encode(QStringLiteral("Группа крови")).leftJustified(30, '\0') +
                        cp1251::encode(QStringLiteral("Кино [Live]")).leftJustified(30, '\0');

struct Listed
{
    QString folder; // "\" or "\DIR\SUB\"
    QString name;
    qint64 size;
};

// The image's contents as iso-info lists them: folders, and files with their sizes.
QList<Listed> isoInfoListing(const QString& image, QStringList* folders)
{
    QList<Listed> files;
    QString folder;
    for (const QByteArray& raw : test::runTool("iso-info", {"-l", "-i", image}).split('\n')) {
        const QString line = QString::fromUtf8(raw);
        if (line.startsWith('/') && line.endsWith(":")) {
            folder = line.chopped(1);
            folder.replace('/', '\\');
            folders->append(folder);
            continue;
        }
        const QStringList fields = line.simplified().split(' ');
        if (fields.size() < 9 || fields[0] != "-") {
            continue;
        }
        // "- [LSN n] size Mon dd yyyy hh:mm:ss name with blanks"
        const qsizetype nameStart = line.indexOf(fields[7]) + fields[7].size() + 2;
        files.append({folder, line.mid(nameStart), fields[3].toLongLong()});
    }
    return files;
}

// The catalogue's size text, computed here on its own.
QString expectedSize(qint64 bytes)
{
    const double tenths = static_cast<double>(bytes) * 10.0 / 1024.0;
    double rounded = std::floor(tenths);
    if (tenths - rounded > 0.5 || (tenths - rounded == 0.5 && std::fmod(rounded, 2.0) != 0.0)) {
        rounded += 1.0;
    }
    return QLocale().toString(rounded / 10.0, 'f', 1);
}

QStringList storedRows(const AppContext& ctx, const QString& id)
{
    QStringList rows = Db(ctx.FilesDBPath)
                           .texts("SELECT Имя || '|' || Путь || '|' || Размер || '|' || "
                                  "coalesce(Комментарий, '') FROM Файлы WHERE ДискID = ?",
                                  {id});
    rows.sort();
    return rows;
}

} // namespace

class tst_filelistscan : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    test::DiscFixtures m_discs{m_dir.path()};
    QString m_tree;
    QString m_image;

private slots:
    void initTestCase()
    {
        m_tree = m_dir.filePath("disc");
        test::writeFile(m_tree + "/readme.txt", "root file\n");
        test::writeFile(m_tree + "/install.exe", QByteArray(2048, 'e'));
        test::writeFile(m_tree + "/скрытый.txt", "hidden\n");
        test::writeFile(m_tree + "/DOCS/Руководство.DOC", QByteArray(1024000, 'd'));
        test::writeFile(m_tree + "/DOCS/small.txt", QByteArray(100, 's'));
        test::writeFile(m_tree + "/DOCS/OLD/note.nfo", QByteArray(256, 'n'));
        test::writeFile(m_tree + "/Музыка/Кино/трек 01.mp3",
                        QByteArray(5000, 'm') + kTag.leftJustified(128, '\0'));
        test::writeFile(m_tree + "/Музыка/Кино/short.mp3", "short");
        QDir().mkpath(m_tree + "/EMPTY");
        m_image = m_dir.filePath("disc.iso");
        test::runTool("genisoimage", {"-quiet", "-J", "-input-charset", "utf-8", "-hidden", "скрытый.txt",
                                      "-o", m_image, m_tree});
    }

    void tags_data()
    {
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QString>("comment");
        QTest::newRow("tag") << QByteArray(300, 'x') + kTag.leftJustified(128, '\0')
                             << "Кино (Live) - Группа крови";
        QTest::newRow("no tag") << QByteArray(300, 'x') << " - ";
        QTest::newRow("128 bytes with TAG are not read") << kTag.leftJustified(128, '\0') << " - ";
        QTest::newRow("full 30 characters")
            << QByteArray(300, 'x') + "TAG" + QByteArray(30, 'T') + QByteArray(30, 'A') + QByteArray(65, '\0')
            << QString(30, 'A') + " - " + QString(17, 'T'); // cut to 50
        QTest::newRow("garbage after zero")
            << QByteArray(300, 'x') + "TAG" + QByteArray("Song\0zzzz", 9).leftJustified(30, 'q') +
                   QByteArray("Band  ").leftJustified(30, '\0') + QByteArray(65, '\0')
            << "Band - Song";
    }

    void tags()
    {
        QFETCH(QByteArray, file);
        MP3TagEditor tag;
        QVERIFY(tag.read(file.size(), file.right(128)));
        QTEST(mp3Comment(tag), "comment");
    }

    void scanRules_data()
    {
        // Of "root folders dirsOnly hidden exclude include noneUsed": the ticks, the filter (Фильтр1
        // leaves out, Фильтр2 takes only) and whether the filter has no entries in use.
        QTest::addColumn<QString>("options");
        QTest::newRow("everything") << "root folders hidden";
        QTest::newRow("root only") << "root";
        QTest::newRow("no root files") << "folders";
        QTest::newRow("folders only") << "root folders dirsOnly";
        QTest::newRow("leave out filter") << "root folders exclude";
        QTest::newRow("take only filter") << "root folders include";
        QTest::newRow("take only, none used") << "root folders include noneUsed";
        QTest::newRow("leave out, none used") << "root folders exclude noneUsed";
    }

    void scanRules()
    {
        QFETCH(QString, options);
        const QStringList ticks = options.split(' ');
        const bool filesInCore = ticks.contains("root");
        const bool scanDir = ticks.contains("folders");
        const bool scanDirOnly = ticks.contains("dirsOnly");
        const bool hidden = ticks.contains("hidden");
        const int filter = ticks.contains("exclude") ? 1 : ticks.contains("include") ? 2 : 0;
        const bool noUsedEntries = ticks.contains("noneUsed");
        test::TestApp app;
        Reanimator(app.ctx, 0);
        if (noUsedEntries) {
            Db files(app.ctx.FilesDBPath);
            files.exec("UPDATE Фильтр1 SET Use = 0");
            files.exec("UPDATE Фильтр2 SET Use = 0");
        }
        ScanOptions scan{filesInCore, scanDir, scanDirOnly, false, hidden, true, std::nullopt};
        if (filter > 0) {
            scan.filter = filter == 1 ? FilterTable::Exclude : FilterTable::Include;
        }
        QStringList entries;
        if (scan.filter) {
            Db files(app.ctx.FilesDBPath);
            entries = FullArrayFileFiltr(files, *scan.filter);
        }

        // What the rules make of iso-info's listing.
        QStringList folders;
        const QList<Listed> listing = isoInfoListing(m_image, &folders);
        QStringList expected;
        for (const QString& folder : folders) {
            if (scanDir || folder == "\\") {
                expected.append(folder + '|' + folder + "|0|");
            }
        }
        for (const Listed& file : listing) {
            const bool root = file.folder == "\\";
            if ((root ? !filesInCore : !scanDir) || scanDirOnly || (!hidden && file.name == "скрытый.txt")) {
                continue;
            }
            const bool inFilter = std::any_of(entries.begin(), entries.end(), [&](const QString& e) {
                return file.name.contains(e, Qt::CaseInsensitive);
            });
            if ((filter == 1 && inFilter) || (filter == 2 && !inFilter)) {
                continue;
            }
            const QString comment = file.name == "трек 01.mp3" ? QStringLiteral("Кино (Live) - Группа крови")
                                    : file.name == "short.mp3" ? QStringLiteral(" - ")
                                                               : QString();
            expected.append(file.name + '|' + file.folder + '|' + expectedSize(file.size) + '|' + comment);
        }
        expected.sort();

        const auto scanOf = [&](const std::unique_ptr<VolumeReader>& volume) {
            Db files(app.ctx.FilesDBPath);
            const QString id =
                "T" + QString::number(qHash(QString::fromUtf8(QTest::currentDataTag())) % 100000);
            ContentsLists lists(files, ContentsKind::Files);
            if (lists.exists(id)) {
                lists.drop(id);
            }
            lists.create(id);
            FileListWriter writer(files, id);
            FileListScanner scanner(*volume, scan, entries);
            scanner.onRows = [&](const QList<FileRow>& rows) { writer.write(rows); };
            scanner.run();
            writer.commit();
            return storedRows(app.ctx, id);
        };
        QCOMPARE(scanOf(openVolumeReader(m_image)), expected);
        if (!hidden) {
            // The same disc through the folder it is mounted on (there hidden means a dot).
            QStringList throughFolder = scanOf(openFolderReader(m_tree));
            throughFolder.removeIf([](const QString& row) { return row.startsWith("скрытый.txt|"); });
            QCOMPARE(throughFolder, expected);
        }
    }

    // A mounted disc with a link to the folder it stands in and links to files: the links
    // are rows of their own, with the size of the link itself, and the walk never enters them.
    void symbolicLinksOfAMountedDisc()
    {
        const QString root = m_dir.filePath("links");
        test::writeFile(root + "/readme.txt", QByteArray(5000, 'r'));
        test::writeFile(root + "/DOCS/A.TXT", QByteArray(2048, 'a'));
        QVERIFY(QFile::link(".", root + "/debian"));
        QVERIFY(QFile::link("..", root + "/DOCS/back"));
        const QString longTarget = "../" + QString("./").repeated(150) + "readme.txt"; // 313 bytes
        QVERIFY(QFile::link(longTarget, root + "/DOCS/readme-link"));
        const auto volume = openFolderReader(root);
        ScanOptions options;
        options.hidden = true;
        FileListScanner scanner(*volume, options, {});
        QStringList rows;
        scanner.onRows = [&rows](const QList<FileRow>& more) {
            for (const FileRow& row : more) {
                rows.append(row.name + '|' + row.path + '|' + row.size);
            }
        };
        QVERIFY(scanner.run());
        rows.sort();
        QStringList expected{"\\|\\|0",           "\\DOCS\\|\\DOCS\\|0", "A.TXT|\\DOCS\\|2,0",
                             "back|\\DOCS\\|0,0", "debian|\\|0,0",       "readme-link|\\DOCS\\|0,3",
                             "readme.txt|\\|4,9"};
        expected.sort();
        QCOMPARE(rows, expected);
    }

    void sizeTexts()
    {
        QCOMPARE(sizeText(1024000), "1" + QLocale().groupSeparator() + "000,0");
        QCOMPARE(sizeText(100), "0,1");
        QCOMPARE(sizeText(256), "0,2"); // 0.25 to the even neighbour
        QCOMPARE(sizeText(0), "0,0");
    }

    void startWithItsRefusals()
    {
        test::TestApp app;
        Reanimator(app.ctx, 0);
        Db(app.ctx.MainDBPath)
            .exec("INSERT INTO Компьютер (Номер, Название, КодОписания, Дисков) VALUES (7, 'Сборник', 1, 2)");
        const QString id = QString::number(readVolumeInfo(m_image).serial, 16).toUpper();
        ScanRequest request{
            m_image, "PcCD", id,  ScanOptions{false, false, false, false, false, false, std::nullopt},
            7,       2,      true};
        QCOMPARE(startScan(app.ctx, request, {}).refusal, "Выберите область сканирования диска!");
        request.options.scanDir = true;
        request.kind = "AudioCD";
        QCOMPARE(startScan(app.ctx, request, {}).refusal,
                 "В устройстве для чтения компакт дисков вставлен Аудио диск.");
        request.kind = "DVD";
        const ScanOutcome silent = startScan(app.ctx, request, {});
        QVERIFY(!silent.done && silent.refusal.isEmpty());
        request.kind = "PcCD";
        const ScanOutcome first = startScan(app.ctx, request, {});
        QVERIFY(first.done);
        QCOMPARE(first.id, id);
        Db db(app.ctx.MainDBPath);
        QCOMPARE(db.scalar("SELECT ДискID2 || '/' || ДискID2_d FROM Компьютер").toString(), id + "/" + id);
        QCOMPARE(app.ctx.DiscIDSlots[1], id);

        // The same disc again: its list is owned, so the question, and on Yes a made-up id.
        int asked = 0;
        const ScanOutcome second = startScan(app.ctx, request, [&](const QString& text) {
            ++asked;
            return text.startsWith("Серийный номер этого диска совпадает");
        });
        QCOMPARE(asked, 1);
        QVERIFY(second.done);
        QVERIFY(second.id != id);
        QVERIFY(std::all_of(second.id.begin(), second.id.end(), [](QChar c) { return c.isDigit(); }));
        QCOMPARE(second.rows, first.rows);

        // An orphaned list is replaced without a question.
        db.exec("UPDATE Компьютер SET ДискID1 = NULL, ДискID2 = NULL");
        const ScanOutcome third = startScan(app.ctx, request, [](const QString&) -> bool { throw 1; });
        QVERIFY(third.done);
        QCOMPARE(third.id, id);
    }

    void damagedImagesEndTheScanWithItsReport()
    {
        test::TestApp app;
        Reanimator(app.ctx, 0);
        Db(app.ctx.MainDBPath)
            .exec("INSERT INTO Компьютер (Номер, Название, КодОписания) VALUES (5, 'Битый', 1)");
        QByteArray image = test::readFile(m_image);
        // The Joliet tree's "DOCS" made to point back at the root: a cycle.
        quint32 root = 0;
        for (qint64 lsn = 17; lsn < 32 && root == 0; ++lsn) {
            if (image[lsn * 2048] == 2) {
                root = test::le32At(image, lsn * 2048 + 158);
            }
        }
        const qint64 docs = test::isoRecord(image, root, QByteArray("\0D\0O\0C\0S", 8));
        QVERIFY(root > 0 && docs > 0);
        test::pointIsoRecord(image, docs, root);
        const QString cycle = m_dir.filePath("cycle.iso");
        test::writeFile(cycle, image);
        const auto scan = [&](const QString& drive, const QString& id, int* readErrors) {
            ScanRequest request{drive, "PcCD", id, ScanOptions{}, 5, 1, false};
            request.options.hidden = true;
            return startScan(app.ctx, request, {}, {}, [readErrors] { ++*readErrors; });
        };
        int errors = 0;
        QVERIFY(scan(m_image, "WHOLE", &errors).done);
        QCOMPARE(errors, 0);
        QStringList expected;
        for (const QString& row : storedRows(app.ctx, "WHOLE")) {
            if (!row.contains("|\\DOCS\\")) {
                expected.append(row);
            }
        }
        QVERIFY(expected.size() < storedRows(app.ctx, "WHOLE").size());
        const ScanOutcome cycled = scan(cycle, "CYCLE", &errors);
        QVERIFY(cycled.done);
        QCOMPARE(errors, 1); // "Ошибка чтения диска!" once, for the folder that leads back
        QCOMPARE(storedRows(app.ctx, "CYCLE"), expected);

        // A Nero image whose chunk size runs past its end is no disc: nothing is listed.
        test::NrgImage nrg = test::nrgOf(test::readFile(m_image));
        test::putBe32(nrg.bytes, nrg.chunk("ETN2") + 4, 0x7FFFFFE0);
        const QString nero = m_dir.filePath("damaged.nrg");
        test::writeFile(nero, nrg.bytes);
        QVERIFY(!readVolumeInfo(nero).ok);
        errors = 0;
        const ScanOutcome none = scan(nero, "NERO", &errors);
        QVERIFY(none.done);
        QCOMPARE(none.rows, 0);
        QCOMPARE(errors, 1);
    }

    void badInput()
    {
        // A path of about 300 characters, names with quotes.
        const QString deep = m_dir.filePath("deep");
        QString path = deep;
        for (int i = 0; i < 12; ++i) {
            path += "/Очень длинное имя папки " + QString::number(i);
        }
        test::writeFile(path + "/it's \"quoted\".txt", "x");
        ScanOptions options;
        QList<FileRow> rows;
        auto folder = openFolderReader(deep);
        FileListScanner scanner(*folder, options, {});
        scanner.onRows = [&](const QList<FileRow>& more) { rows += more; };
        QVERIFY(scanner.run());
        QVERIFY(std::any_of(rows.begin(), rows.end(),
                            [](const FileRow& row) { return row.name == "it's \"quoted\".txt"; }));
        QVERIFY(
            std::all_of(rows.begin(), rows.end(), [](const FileRow& row) { return row.path.size() <= 255; }));
        test::TestApp app;
        Reanimator(app.ctx, 0);
        {
            Db files(app.ctx.FilesDBPath);
            ContentsLists(files, ContentsKind::Files).create("LONG");
            FileListWriter writer(files, "LONG");
            writer.write(rows);
            writer.commit();
            QCOMPARE(writer.rowsWritten(), rows.size());
        }

        // An image that ends in the middle of its directories: what can be read is listed.
        const QByteArray whole = test::readFile(m_image);
        const QString cut = m_dir.filePath("cut.iso");
        int readErrors = 0;
        QList<FileRow> partial;
        for (const qint64 end : {qint64(19 * 2048), qint64(21 * 2048 + 700), qint64(24 * 2048)}) {
            test::writeFile(cut, whole.left(end));
            if (auto volume = openVolumeReader(cut)) {
                FileListScanner damaged(*volume, options, {});
                damaged.onRows = [&](const QList<FileRow>& more) { partial += more; };
                damaged.onReadError = [&] { ++readErrors; };
                damaged.run();
            }
        }
        QVERIFY(readErrors > 0);
    }

    // The writer stores every text byte for byte as a plain statement stores it: one to
    // three bytes a character, a pair of surrogates, a lone one; a comment cut at 50, an
    // empty one left NULL.
    void textsStoredAsWritten()
    {
        const QString lone = QString("lone ") + QChar(0xD800) + ".txt";
        const QList<FileRow> rows{{"ascii.txt", "\\", "0,1", ""},
                                  {"ёлка.txt", "\\Папка\\", "1 000,0", "комментарий"},
                                  {"€uro ✓.txt", "\\", "0,0", QString(60, u'ж')},
                                  {QString::fromUtf8("\xF0\x9F\x98\x80 smile.mp3"), "\\", "0,0", "x"},
                                  {lone, "\\", "0,0", QString()}};
        test::TestApp app;
        Reanimator(app.ctx, 0);
        Db files(app.ctx.FilesDBPath);
        const ContentsLists lists(files, ContentsKind::Files);
        lists.create("WRITER");
        lists.create("PLAIN");
        {
            FileListWriter writer(files, "WRITER");
            writer.write(rows);
        }
        for (const FileRow& row : rows) {
            const auto orNull = [](const QString& text) {
                return text.isEmpty() ? QVariant() : QVariant(text);
            };
            files.exec(
                "INSERT INTO Файлы (ДискID, Имя, Путь, Размер, Комментарий) VALUES ('PLAIN', ?, ?, ?, ?)",
                {orNull(row.name), orNull(row.path), orNull(row.size), orNull(row.comment.left(50))});
        }
        const auto stored = [&](const char* id) {
            return files.texts("SELECT quote(CAST(Имя AS BLOB)) || quote(CAST(Путь AS BLOB)) || "
                               "quote(CAST(Размер AS BLOB)) || quote(CAST(Комментарий AS BLOB)) FROM Файлы "
                               "WHERE ДискID = ? ORDER BY rowid",
                               {QString::fromLatin1(id)});
        };
        QCOMPARE(stored("WRITER").size(), rows.size());
        QCOMPARE(stored("WRITER"), stored("PLAIN"));
        QCOMPARE(files.scalar("SELECT count(*) FROM Файлы WHERE ДискID = 'WRITER' AND Комментарий IS NULL")
                     .toInt(),
                 2);
        QCOMPARE(files
                     .scalar("SELECT length(Комментарий) FROM Файлы WHERE ДискID = 'WRITER' AND Имя = ?",
                             {QString("€uro ✓.txt")})
                     .toInt(),
                 50);
    }

    void commandLine()
    {
        test::TestApp app;
        Reanimator(app.ctx, 0);
        Db(app.ctx.MainDBPath)
            .exec("INSERT INTO Компьютер (Номер, Название, КодОписания) VALUES (3, 'Диск', 1)");
        const test::CliRun run =
            test::runCli(app.folder.path(), {"scan", m_image, "--number", "3", "--files-in-root", "--folders",
                                             "--mp3", "--bind"});
        QCOMPARE(run.code, 0);
        const QString id = QString::number(readVolumeInfo(m_image).serial, 16).toUpper();
        QVERIFY(run.out.startsWith("id: " + id + "\nrows: "));
        QVERIFY(
            storedRows(app.ctx, id).contains("трек 01.mp3|\\Музыка\\Кино\\|5,0|Кино (Live) - Группа крови"));
    }
};

VINORA_TEST_MAIN(tst_filelistscan)
#include "tst_filelistscan.moc"
