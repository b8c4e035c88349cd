#include "../cddb/FakeCddbServer.h"
#include "../recognition/DiscFixtures.h"
#include "recognition/DiscIdentity.h"
#include "recognition/VolumeIdentity.h"
#include "store/ContentsLists.h"
#include "store/DatabaseLock.h"
#include "store/Db.h"
#include "store/Reanimator.h"
#include "support/CliRun.h"
#include "support/TestFolders.h"
#include "support/TestMain.h"

#include <QDir>
#include <QFile>
#include <QHostInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QTemporaryDir>

using namespace vinora;

namespace {

using Run = test::CliRun;

// An application folder of its own for each test, with the three databases when asked.
struct Home
{
    QTemporaryDir dir;

    QString path() const { return dir.path(); }
    QString file(const QString& name) const { return dir.filePath(name); }
    QString mainDb() const { return file("vinora.db"); }
    QString filesDb() const { return file("vinora_files.db"); }
    QString tracksDb() const { return file("vinora_tracks.db"); }

    // The databases as the program makes them, with computer disc 3.
    void makeDatabases() const
    {
        createMainDatabase(mainDb());
        createFilesDatabase(filesDb());
        createTracksDatabase(tracksDb());
        Db db(mainDb());
        db.exec("INSERT INTO Компьютер (Номер, Название, КодОписания) VALUES (3, 'Диск', 1)");
    }

    Run cli(const QStringList& arguments) const { return test::runCli(path(), arguments); }
};

enum Damage { Damaged, Empty, ForeignText, ForeignSqlite, Missing, ReadOnly };

const QList<std::pair<Damage, const char*>> kDamages = {
    {Damaged, "damaged"},          {Empty, "empty"},
    {ForeignText, "foreign text"}, {ForeignSqlite, "foreign SQLite"},
    {Missing, "missing"},          {ReadOnly, "read-only"}};

// Brings the database at `path` to the given state; the guard keeps a read-only one so.
std::unique_ptr<test::ReadOnlyFolder> damage(const QString& path, Damage kind)
{
    switch (kind) {
    case Damaged: {
        QByteArray bytes = test::readFile(path);
        bytes.replace(0, 16, "NOT A DATABASE!!");
        for (qsizetype page = 4096; page + 200 < bytes.size(); page += 4096) {
            bytes.replace(page + 8, 120, QByteArray(120, char(0xA5)));
        }
        test::writeFile(path, bytes);
        break;
    }
    case Empty:
        test::writeFile(path, {});
        break;
    case ForeignText:
        test::writeFile(path, "Shopping list\n- bread\n- milk\n");
        break;
    case ForeignSqlite: {
        QFile::remove(path);
        Db db(path, Db::Access::Create);
        db.exec("CREATE TABLE notes (line TEXT)");
        db.exec("INSERT INTO notes VALUES (?)", {"not a catalogue"});
        break;
    }
    case Missing:
        QFile::remove(path);
        break;
    case ReadOnly:
        return std::make_unique<test::ReadOnlyFolder>(path);
    }
    return {};
}

QJsonObject jsonObject(const QString& text)
{
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(text.toUtf8(), &error);
    [&] { QCOMPARE(error.error, QJsonParseError::NoError); }();
    [&] { QVERIFY(document.isObject()); }();
    return document.object();
}

int storedRows(const QString& filesDb, const QString& id)
{
    Db db(filesDb, Db::Access::ReadOnly);
    return ContentsLists(db, ContentsKind::Files).rowCount(id);
}

} // namespace

class tst_cli : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    test::DiscFixtures m_discs{m_dir.path()};
    QString m_iso;
    QString m_cue;
    QString m_isoId;

    QStringList filled(QStringList arguments) const
    {
        for (QString& argument : arguments) {
            argument.replace("$ISO", m_iso).replace("$CUE", m_cue);
        }
        return arguments;
    }

private slots:
    void initTestCase()
    {
        m_iso = m_discs.iso("pc.iso", {"-J", "-V", "CLI"});
        m_cue = m_discs.audioCue("audio", {15000, 15000, 15000});
        m_isoId = SerialToID(readVolumeInfo(m_iso).serial);
    }

    // Every verb over every kind of broken database: those that never open a database work
    // as ever and leave the file as it was; scan stops with the file named.
    void brokenDatabases_data()
    {
        QTest::addColumn<QStringList>("setup");
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("database");
        QTest::addColumn<int>("damageKind");
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("message");

        const QString scanCode = "scan $ISO --number 3 --files-in-root --folders";
        const QList<std::tuple<const char*, QString, QString>> untouched = {
            {"drives", {}, "drives"},
            {"add-image", {}, "add-image $ISO"},
            {"remove-image", "add-image $ISO", "remove-image $ISO"},
            {"identify", {}, "identify $ISO"},
            {"toc", {}, "toc $CUE"},
        };
        for (const auto& [kind, name] : kDamages) {
            for (const auto& [verb, setup, arguments] : untouched) {
                QTest::addRow("%s, %s", verb, name)
                    << setup.split(' ', Qt::SkipEmptyParts) << arguments.split(' ') << QString("vinora.db")
                    << int(kind) << 0 << QString();
            }
            for (const QString& database : {QString("vinora.db"), QString("vinora_files.db")}) {
                const bool missing = kind == Missing;
                const QString message =
                    missing            ? QString("does not exist; vinora makes its databases when it starts")
                    : kind == ReadOnly ? QString("cannot be written")
                                       : QString("is damaged or is not a vinora database");
                QTest::addRow("scan, %s %s", qPrintable(database), name)
                    << QStringList() << scanCode.split(' ') << database << int(kind) << (missing ? 1 : 3)
                    << message;
            }
        }
    }

    void brokenDatabases()
    {
        QFETCH(QStringList, setup);
        QFETCH(QStringList, arguments);
        QFETCH(QString, database);
        QFETCH(int, damageKind);
        QFETCH(QString, message);

        Home home;
        home.makeDatabases();
        if (!setup.isEmpty()) {
            QCOMPARE(home.cli(filled(setup)).code, 0);
        }
        const QString path = home.file(database);
        const auto guard = damage(path, Damage(damageKind));
        if (guard && !guard->active()) {
            QSKIP("this machine lets the test's user write a read-only file");
        }
        const QByteArray before = test::readFile(path);
        const bool existed = QFile::exists(path);

        const Run run = home.cli(filled(arguments));
        QVERIFY(!run.crashed);
        QVERIFY2(!run.err.contains("terminate") && !run.err.contains("abort"), qPrintable(run.err));
        QTEST(run.code, "status");
        if (message.isEmpty()) {
            QVERIFY2(run.err.isEmpty(), qPrintable(run.err));
        } else {
            QCOMPARE(run.out, QString());
            QCOMPARE(run.err.count('\n'), 1);
            QVERIFY2(run.err.startsWith("vinora-cli: the database '" + path + "' " + message),
                     qPrintable(run.err));
        }
        // Nothing was made or written behind the user's back.
        QCOMPARE(QFile::exists(path), existed);
        QCOMPARE(test::readFile(path), before);
        if (database != "vinora_files.db") {
            QCOMPARE(storedRows(home.filesDb(), m_isoId), 0);
        }
    }
    void usageErrors_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("message");
        const auto row = [](const char* tag, const QStringList& arguments, const QString& message) {
            QTest::newRow(tag) << arguments << message;
        };
        const QString number = "--number takes a whole number from 1 to 32767, not ";
        row("nothing", {}, "no verb given");
        row("unknown verb", {"frobnicate"}, "unknown verb 'frobnicate'");
        row("unknown option of the tool", {"--bogus"}, "Unknown option 'bogus'");
        row("unknown option of a verb", {"toc", "--bogus", "$CUE"}, "toc: Unknown option 'bogus'");
        row("option of another verb", {"drives", "--json"}, "drives: Unknown option 'json'");
        row("missing argument", {"identify"}, "identify: missing argument; usage: vinora-cli identify DRIVE");
        row("extra argument", {"add-image", "$ISO", "$CUE"}, "add-image: unexpected argument '$CUE'");
        row("scan without number", {"scan", "$ISO", "--folders"}, "scan needs --number N");
        row("number without value", {"scan", "$ISO", "--number"}, "scan: Missing value after '--number'");
        row("number not a number", {"scan", "$ISO", "--number", "three"}, number + "'three'");
        row("number zero", {"scan", "$ISO", "--number", "0"}, number + "'0'");
        row("disc out of the set", {"scan", "$ISO", "--number", "3", "--disc", "7"},
            "--disc takes a whole number from 1 to 6, not '7'");
        row("both filters",
            {"scan", "$ISO", "--number", "3", "--folders", "--filter-exclude", "--filter-include"},
            "--filter-exclude and --filter-include exclude each other");
        row("help of no verb", {"help", "frobnicate"}, "help: no verb 'frobnicate'");
        row("lend to no category", {"lend", "CD", "3", "Анна"}, "CATEGORY is AD, PC or DVD, not 'CD'");
        row("lend no number", {"lend", "PC", "три", "Анна"},
            "NUMBER takes a whole number from 1 to 32767, not 'три'");
        row("lend to nobody", {"lend", "PC", "3", " "}, "NAME takes 1 to 50 characters");
        row("lend to a long name", {"lend", "PC", "3", QString(51, u'я')}, "NAME takes 1 to 50 characters");
        row("lend until yesterday",
            {"lend", "PC", "3", "Анна", "--until", QDate::currentDate().addDays(-1).toString(Qt::ISODate)},
            "--until takes a day from today on");
        row("lend until no day", {"lend", "PC", "3", "Анна", "--until", "2026-02-30"},
            "--until takes a day from today on, as YYYY-MM-DD, not '2026-02-30'");
    }

    void usageErrors()
    {
        QFETCH(QStringList, arguments);
        QFETCH(QString, message);
        Home home;
        home.makeDatabases();
        const QByteArray before = test::readFile(home.mainDb());
        const Run run = home.cli(filled(arguments));
        QVERIFY(!run.crashed);
        QCOMPARE(run.code, 2);
        QCOMPARE(run.out, QString());
        QCOMPARE(run.err.count('\n'), 1);
        QVERIFY2(run.err.startsWith("vinora-cli: " + filled({message}).constFirst()), qPrintable(run.err));
        QVERIFY2(run.err.contains("--help"), qPrintable(run.err));
        QCOMPARE(test::readFile(home.mainDb()), before);
    }

    void helpListsTheVerbs()
    {
        Home home;
        const Run help = home.cli({"help"});
        QCOMPARE(help.code, 0);
        QCOMPARE(help.err, QString());
        QCOMPARE(home.cli({"--help"}).out, help.out);
        QCOMPARE(home.cli({"-h"}).out, help.out);
        QVERIFY(help.out.startsWith("Usage: vinora-cli VERB [options] [arguments]\n"));
        const QStringList lines = help.out.split('\n');
        const QStringList verbs = {"drives", "add-image", "remove-image", "identify", "toc",  "scan",
                                   "cddb",   "tracks",    "search",       "loans",    "lend", "return"};
        QStringList listed;
        for (const QString& line : lines) {
            const QString word = line.section(' ', 2, 2);
            if (line.startsWith("  ") && verbs.contains(word)) {
                listed.append(word);
                QVERIFY2(line.section(' ', 3).trimmed().size() > 10, qPrintable(line)); // its summary
            }
        }
        QCOMPARE(listed, verbs);
        for (const char* status : {"  0  done", "  1  nothing found or refused", "  2  bad usage",
                                   "  3  a damaged or unreadable file"}) {
            QVERIFY2(help.out.contains(QString::fromUtf8(status)), status);
        }
        // No files appear for a question about the tool.
        QCOMPARE(QDir(home.path()).entryList(QDir::Files), QStringList());

        const Run version = home.cli({"--version"});
        QCOMPARE(version.code, 0);
        QVERIFY2(QRegularExpression("^vinora-cli \\d+\\.\\d+ build \\d+\n$").match(version.out).hasMatch(),
                 qPrintable(version.out));
    }

    void helpOfEachVerb_data()
    {
        QTest::addColumn<QString>("verb");
        QTest::addColumn<QString>("usage");
        QTest::addColumn<QStringList>("options");
        const auto row = [](const char* verb, const QString& usage, const QStringList& options) {
            QTest::newRow(verb) << QString::fromUtf8(verb) << "Usage: vinora-cli " + usage + "\n" << options;
        };
        row("drives", "drives", {"-h, --help"});
        row("add-image", "add-image IMAGE", {"IMAGE"});
        row("remove-image", "remove-image IMAGE", {"IMAGE"});
        row("identify", "identify [options] DRIVE", {"--json", "DRIVE"});
        row("toc", "toc [options] DRIVE", {"--json", "leadout"});
        row("scan", "scan [options] DRIVE",
            {"--number <N>", "--disc <K>", "--files-in-root", "--folders", "--folders-only", "--lower-case",
             "--hidden", "--mp3", "--filter-exclude", "--filter-include", "--bind", "--new-id", "--json"});
        row("cddb", "cddb [options] DRIVE", {"--server <HOST:PORT>", "--timeout <S>", "--email <ADDRESS>"});
        row("tracks", "tracks [options] NUMBER", {"--disc <K>", "--json"});
        row("search", "search [options] TEXT", {"--tracks", "--folders", "--comments", "--whole"});
        row("loans", "loans [options]", {"--json", "days overdue"});
        row("lend", "lend [options] CATEGORY NUMBER NAME", {"--until <YYYY-MM-DD>", "CATEGORY", "NAME"});
        row("return", "return CATEGORY NUMBER", {"NUMBER"});
    }

    void helpOfEachVerb()
    {
        QFETCH(QString, verb);
        QFETCH(QString, usage);
        QFETCH(QStringList, options);
        Home home;
        const Run run = home.cli({verb, "--help"});
        QCOMPARE(run.code, 0);
        QCOMPARE(run.err, QString());
        QVERIFY2(run.out.startsWith(usage), qPrintable(run.out));
        for (const QString& option : options) {
            QVERIFY2(run.out.contains(option), qPrintable(option));
        }
        QVERIFY(run.out.contains("Exit status:"));
        QCOMPARE(home.cli({"help", verb}).out, run.out);
        // Help wins over a missing argument; nothing runs.
        QCOMPARE(home.cli({verb, "--help", "extra", "words"}).code, 0);
    }

    void foundAndRefused()
    {
        Home home;
        home.makeDatabases();
        const QString missing = m_dir.filePath("missing.iso");
        const auto refused = [&](const QStringList& arguments, const QString& message) {
            const Run run = home.cli(arguments);
            QCOMPARE(run.code, 1);
            QCOMPARE(run.err, "vinora-cli: " + message + "\n");
        };

        QCOMPARE(home.cli({"identify", m_iso}).code, 0);
        refused({"identify", missing}, "no usable medium in " + missing);
        QCOMPARE(home.cli({"toc", m_cue}).code, 0);
        QCOMPARE(home.cli({"toc", missing}).code, 1);

        QCOMPARE(home.cli({"drives"}).out.contains(m_iso), false);
        QCOMPARE(home.cli({"add-image", m_iso}).code, 0);
        QVERIFY(home.cli({"drives"}).out.endsWith(m_iso + "\n"));
        refused({"add-image", m_iso}, "already registered: " + m_iso);
        refused({"add-image", missing}, "no such file: " + missing);
        refused({"add-image", m_dir.path()}, "not an image file: " + m_dir.path());
        QCOMPARE(home.cli({"remove-image", m_iso}).code, 0);
        QVERIFY(!home.cli({"drives"}).out.contains(m_iso));
        refused({"remove-image", m_iso}, "not registered: " + m_iso);

        const QStringList scan = {"scan", m_iso, "--number", "3", "--files-in-root", "--folders"};
        refused({"scan", m_iso, "--number", "99", "--folders"}, "no computer disc number 99");
        refused({"scan", m_iso, "--number", "3"}, "Выберите область сканирования диска!");
        refused({"scan", m_cue, "--number", "3", "--folders"},
                "В устройстве для чтения компакт дисков вставлен Аудио диск.");
        QCOMPARE(storedRows(home.filesDb(), m_isoId), 0);
        Run run = home.cli(scan);
        QCOMPARE(run.code, 0);
        QVERIFY(storedRows(home.filesDb(), m_isoId) > 0);
        QCOMPARE(run.out,
                 "id: " + m_isoId + "\nrows: " + QString::number(storedRows(home.filesDb(), m_isoId)) + "\n");
        run = home.cli(scan); // the list is owned now
        QCOMPARE(run.code, 1);
        QVERIFY2(run.err.contains("--new-id"), qPrintable(run.err));
        QCOMPARE(home.cli(scan + QStringList{"--new-id", "--disc", "2"}).code, 0);
    }

    void lendingThroughTheTool()
    {
        Home home;
        home.makeDatabases();
        Db(home.mainDb())
            .exec("INSERT INTO Аудио (Номер, Название, Альбом, Дисков, КодСтиля) VALUES (12, 'Кино', "
                  "'Группа крови', 1, 1)");
        const QString today = QDate::currentDate().toString(Qt::ISODate);
        const QString until = QDate::currentDate().addDays(3).toString(Qt::ISODate);
        const QString name = "O'Brien \"Бес\" [1]";
        QCOMPARE(home.cli({"lend", "ad", "12", name, "--until", until}).code, 0);
        const Run again = home.cli({"lend", "AD", "12", "Анна"});
        QCOMPARE(again.code, 1);
        QCOMPARE(again.err, "vinora-cli: Диск № 12 уже находится у должника.\n");
        const Run missing = home.cli({"lend", "DVD", "12", "Анна"});
        QCOMPARE(missing.code, 1);
        QCOMPARE(missing.err, "vinora-cli: Диск № 12 отсутствует в каталоге.\n");
        QCOMPARE(home.cli({"lend", "PC", "3", "Анна"}).code, 0); // without term

        Run listed = home.cli({"loans"});
        QCOMPARE(listed.code, 0);
        QCOMPARE(listed.out, "AD\t12\tКино - Группа крови\t" + name + "\t" + today + "\t" + until + "\t0\n" +
                                 "PC\t3\tДиск\tАнна\t" + today + "\t-\t0\n");
        listed = home.cli({"loans", "--json"});
        const QJsonArray records = QJsonDocument::fromJson(listed.out.toUtf8()).array();
        QCOMPARE(records.size(), 2);
        QCOMPARE(records.at(0).toObject().value("borrower").toString(), name);
        QVERIFY(records.at(1).toObject().value("due").isNull());

        QCOMPARE(home.cli({"return", "AD", "12"}).code, 0);
        const Run notOut = home.cli({"return", "AD", "12"});
        QCOMPARE(notOut.code, 1);
        QCOMPARE(notOut.err, "vinora-cli: Диск № 12 не одалживался!\n");
        QCOMPARE(home.cli({"loans"}).out, "PC\t3\tДиск\tАнна\t" + today + "\t-\t0\n");
        Db db(home.mainDb());
        QCOMPARE(db.scalar("SELECT Должник FROM Аудио").toInt(), 0);
        QCOMPARE(
            db.scalar("SELECT ДатаВозвратаРеальная FROM Должники WHERE КодДиска = 1 AND Категория = 'AD'")
                .toString(),
            today);
    }

    void cddbRecordOfTheDiscInADrive()
    {
        // Tracks of the lengths that give disc id 12025d03, a record the server holds.
        const QString cue = m_discs.audioCue("country", {11993, 19539, 13880});
        test::FakeCddbServer server(VINORA_TEST_DATA "/cddb");
        QVERIFY(server.start());
        Home home;
        const auto ask = [&](const QStringList& extra) {
            QProcess process;
            test::startCli(process, home.path(),
                           QStringList{"cddb", cue, "--server", "127.0.0.1:" + QString::number(server.port()),
                                       "--email", "tester@example.org"} +
                               extra);
            // The server answers from this thread's event loop while the tool runs.
            [&] { QTRY_VERIFY_WITH_TIMEOUT(process.state() == QProcess::NotRunning, 30000); }();
            return test::readCli(process);
        };
        const Run found = ask({});
        QVERIFY2(found.code == 0, qPrintable(found.err));
        QCOMPARE(found.out, "discid: 12025d03\ncategory: country\nartist: Ernest Ray Everett - Single CD\n"
                            "album: Ernest Ray Everett - Single CD\n1\tI'm Your Puppet\n2\tMe And Jacky\n"
                            "3\tIf You Don't Like Country\n");
        QVERIFY(server.received.contains("cddb hello tester@example.org " +
                                         QHostInfo::localHostName().toUtf8() + " vinora 1.0\r\n"));
        QVERIFY(QDir(home.path()).entryList(QDir::Files).isEmpty()); // nothing written

        server.reply("cddb query", "202 No match for disc ID 12025d03.\r\n");
        const Run none = ask({"--timeout", "5"});
        QCOMPARE(none.code, 1);
        QVERIFY2(none.err.contains("На сервере отсутствует описание для этого диска!"), qPrintable(none.err));
        QCOMPARE(ask({"--timeout", "70"}).code, 2);
    }

    void storedTrackList()
    {
        Home home;
        home.makeDatabases();
        {
            Db db(home.mainDb());
            db.exec("INSERT INTO Аудио (Номер, Название, Дисков, КодСтиля, ДискID1) VALUES (12, 'Кино', 2, "
                    "1, 'A1B2')");
            Db tracks(home.tracksDb());
            ContentsLists(tracks, ContentsKind::Tracks).create("A1B2");
            tracks.exec("INSERT INTO Треки (ДискID, Номер, Название, Комментарий) VALUES "
                        "('A1B2', 2, 'Закрой за мной дверь', NULL), ('A1B2', 1, 'Группа крови', 'хит')");
        }
        const Run listed = home.cli({"tracks", "12"});
        QCOMPARE(listed.code, 0);
        QCOMPARE(listed.out, "1\tГруппа крови\tхит\n2\tЗакрой за мной дверь\t\n");
        const QJsonArray json =
            QJsonDocument::fromJson(home.cli({"tracks", "12", "--json"}).out.toUtf8()).array();
        QCOMPARE(json.size(), 2);
        QCOMPARE(json.at(1).toObject().value("title").toString(), "Закрой за мной дверь");
        const Run second = home.cli({"tracks", "12", "--disc", "2"});
        QCOMPARE(second.code, 1);
        QCOMPARE(second.err, "vinora-cli: disc 2 of audio disc number 12 has no track list\n");
        QCOMPARE(home.cli({"tracks", "12", "--disc", "3"}).code, 1); // the set has two discs
        QCOMPARE(home.cli({"tracks", "99"}).err, "vinora-cli: Диск № 99 отсутствует в каталоге.\n");
    }

    // Files by name, folders by path or comment, tracks by title: a line per hit in catalogue
    // order, status 1 with the window's message when nothing is found.
    void searchTheContents()
    {
        Home home;
        home.makeDatabases();
        {
            Db db(home.mainDb());
            db.exec("UPDATE Компьютер SET Дисков = 2, ДискID1 = 'F1', ДискID2 = 'F2' WHERE Номер = 3");
            db.exec("INSERT INTO Аудио (Номер, Название, Дисков, КодСтиля, ДискID1) "
                    "VALUES (12, 'Кино', 1, 1, 'A1')");
            Db files(home.filesDb());
            const ContentsLists lists(files, ContentsKind::Files);
            lists.create("F1");
            lists.create("F2");
            files.exec(
                "INSERT INTO Файлы (ДискID, Имя, Путь, Размер, Комментарий) VALUES "
                "('F1', '\\', '\\', '0', NULL), ('F1', 'Ёлка.txt', '\\', '1', NULL), "
                "('F2', '\\Ёлки\\', '\\Ёлки\\', '0', 'зима'), ('F2', 'ёлка.jpg', '\\Ёлки\\', '2', NULL)");
            Db tracks(home.tracksDb());
            ContentsLists(tracks, ContentsKind::Tracks).create("A1");
            tracks.exec("INSERT INTO Треки (ДискID, Номер, Название) VALUES ('A1', 1, 'Группа крови')");
        }
        const Run files = home.cli({"search", "ЁЛК"});
        QCOMPARE(files.code, 0);
        QCOMPARE(files.err, QString());
        QCOMPARE(files.out, "3\t1\t\\\tЁлка.txt\n3\t2\t\\Ёлки\\\tёлка.jpg\n");
        // The switches reach the search; what each of them means is left to the search's own tests.
        QCOMPARE(home.cli({"search", "ЗИМА", "--folders", "--comments", "--whole"}).out,
                 "3\t2\t\\Ёлки\\\t\\Ёлки\\\n");
        QCOMPARE(home.cli({"search", "группа*", "--tracks", "--whole"}).out, "12\t1\t\tГруппа крови\n");
        const Run nothing = home.cli({"search", "зима", "--folders"});
        QCOMPARE(nothing.code, 1);
        QCOMPARE(nothing.out, QString());
        QCOMPARE(nothing.err, "vinora-cli: Нет таких папок!\n");
        QVERIFY(QFile::remove(home.tracksDb()));
        const Run missing = home.cli({"search", "x", "--tracks"});
        QCOMPARE(missing.code, 1);
        QVERIFY2(missing.err.startsWith("vinora-cli: the database '" + home.tracksDb() + "' does not exist"),
                 qPrintable(missing.err));
    }

    // A scan never makes the databases: the program does that when it starts.
    void scanWithoutDatabasesMakesNone()
    {
        Home home;
        Run run = home.cli({"scan", m_iso, "--number", "3", "--folders"});
        QCOMPARE(run.code, 1);
        QCOMPARE(run.err, "vinora-cli: the database '" + home.mainDb() +
                              "' does not exist; vinora makes its databases when it starts\n");
        QCOMPARE(QDir(home.path()).entryList(QDir::Files), QStringList());

        // The folder named by the settings is gone.
        const QString gone = home.file("gone");
        test::writeFile(home.file("vinora.ini"), "[Option]\nPathLocalDB=" + gone.toUtf8() + "\n");
        run = home.cli({"scan", m_iso, "--number", "3", "--folders"});
        QCOMPARE(run.code, 1);
        QCOMPARE(run.err, "vinora-cli: the folder of the database '" + gone +
                              "/vinora.db' does not exist (PathLocalDB in vinora.ini)\n");
        QVERIFY(!QFileInfo::exists(gone));
    }

    void settingsThatCannotBeWritten_data()
    {
        QTest::addColumn<QStringList>("setup");
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("add-image") << QStringList() << QStringList{"add-image", "$ISO"};
        QTest::newRow("remove-image")
            << QStringList{"add-image", "$ISO"} << QStringList{"remove-image", "$ISO"};
    }

    void settingsThatCannotBeWritten()
    {
        QFETCH(QStringList, setup);
        QFETCH(QStringList, arguments);
        Home home;
        const QString ini = home.file("vinora.ini");
        test::writeFile(ini, "[Option]\nConfirmExit=1\n");
        if (!setup.isEmpty()) {
            QCOMPARE(home.cli(filled(setup)).code, 0);
        }
        const QByteArray before = test::readFile(ini);
        const test::ReadOnlyFolder file(ini);
        const test::ReadOnlyFolder folder(home.path());
        if (!file.active() || !folder.active()) {
            QSKIP("this machine lets the test's user write a read-only file");
        }
        const Run run = home.cli(filled(arguments));
        QVERIFY(!run.crashed);
        QCOMPARE(run.code, 3);
        QCOMPARE(run.err.count('\n'), 1);
        QVERIFY2(run.err.startsWith("vinora-cli: the settings file '" + ini + "' cannot be written"),
                 qPrintable(run.err));
        QCOMPARE(test::readFile(ini), before);
    }

    void json()
    {
        Home home;
        home.makeDatabases();
        const VolumeInfo volume = readVolumeInfo(m_iso);
        Run run = home.cli({"identify", "--json", m_iso});
        QCOMPARE(run.code, 0);
        QJsonObject object = jsonObject(run.out);
        QCOMPARE(object.value("drive").toString(), m_iso);
        QCOMPARE(object.value("kind").toString(), "PcCD");
        QCOMPARE(object.value("id").toString(), m_isoId);
        QCOMPARE(object.value("label").toString(), "CLI");
        QCOMPARE(object.value("fs").toString(), "CDFS");
        QCOMPARE(object.value("maxlen").toInt(), 110);
        QCOMPARE(object.value("serial").toString(),
                 QString("%1").arg(volume.serial, 8, 16, QChar(u'0')).toUpper());

        run = home.cli({"toc", "--json", m_cue});
        QCOMPARE(run.code, 0);
        object = jsonObject(run.out);
        const QJsonArray tracks = object.value("tracks").toArray();
        QCOMPARE(tracks.size(), 3);
        QCOMPARE(tracks[0].toObject().value("number").toInt(), 1);
        QCOMPARE(tracks[0].toObject().value("position").toInt(), 150);
        QCOMPARE(tracks[0].toObject().value("length").toInt(), 15000);
        QCOMPARE(tracks[0].toObject().value("positionMsf").toString(), "00:02:00");
        QCOMPARE(tracks[2].toObject().value("lengthMsf").toString(), "03:19:74");
        QCOMPARE(tracks[2].toObject().value("type").toString(), "audio");
        QCOMPARE(object.value("leadout").toInt(), 45150);
        QCOMPARE(object.value("discid").toString(), "0c025803");
        QCOMPARE(object.value("query").toString(), "0c025803 3 150 15150 30150 600");

        run = home.cli(
            {"scan", m_iso, "--number", "3", "--disc", "2", "--folders", "--files-in-root", "--json"});
        QCOMPARE(run.code, 0);
        object = jsonObject(run.out);
        QCOMPARE(object.value("id").toString(), m_isoId);
        QCOMPARE(object.value("number").toInt(), 3);
        QCOMPARE(object.value("disc").toInt(), 2);
        QCOMPARE(object.value("rows").toInt(), storedRows(home.filesDb(), m_isoId));
        QVERIFY(object.value("rows").toInt() > 0);
        Db db(home.mainDb(), Db::Access::ReadOnly);
        QCOMPARE(db.scalar("SELECT ДискID2 FROM Компьютер WHERE Номер = 3").toString(), m_isoId);
    }

    // The window's maintenance holds the databases exclusively: a scan waits, says so, and
    // stores its whole list once they are let go.
    void scanWaitsForMaintenance()
    {
        const QStringList scan = {"scan", m_iso, "--number", "3", "--files-in-root", "--folders"};
        Home reference;
        reference.makeDatabases();
        QCOMPARE(reference.cli(scan).code, 0);
        const int rows = storedRows(reference.filesDb(), m_isoId);
        QVERIFY(rows > 0);

        Home home;
        home.makeDatabases();
        std::optional<DatabaseLock> maintenance =
            DatabaseLock::tryAcquire(home.mainDb(), DatabaseLock::Mode::Exclusive);
        QVERIFY(maintenance);
        QProcess process;
        test::startCli(process, home.path(), scan);
        QVERIFY(process.waitForStarted());
        QVERIFY(!process.waitForFinished(1200));
        QByteArray err;
        QTRY_VERIFY(
            (err += process.readAllStandardError())
                .contains("vinora-cli: waiting for the program to finish maintenance of the databases...\n"));
        QCOMPARE(storedRows(home.filesDb(), m_isoId), 0);

        maintenance.reset();
        QVERIFY(process.waitForFinished(60000));
        QCOMPARE(process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(process.exitCode(), 0);
        QCOMPARE(QString::fromUtf8(process.readAllStandardOutput()),
                 "id: " + m_isoId + "\nrows: " + QString::number(rows) + "\n");
        QCOMPARE(storedRows(home.filesDb(), m_isoId), rows);
    }
};

VINORA_TEST_MAIN(tst_cli)
#include "tst_cli.moc"
