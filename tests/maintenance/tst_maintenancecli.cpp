#include "SampleCollection.h"
#include "store/ContentsLists.h"
#include "store/DatabaseLock.h"
#include "store/Db.h"
#include "support/CliRun.h"
#include "support/TestFolders.h"
#include "support/TestMain.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

using namespace vinora;

namespace {

using Run = test::CliRun;

// An application folder with its databases and discs, and the tool run on it.
struct Home
{
    QTemporaryDir dir;
    Home()
    {
        test::makeDatabases(dir.path());
        test::addDiscs(dir.path(), {{Category::Audio, 1, "Кино", "Звезда", "Rock", {"A1"}},
                                    {Category::Computer, 1, "Игры", {}, "Квест", {"C1", "C2"}}});
    }
    QString file(const QString& name) const { return dir.filePath(name); }
    Run cli(const QStringList& arguments) const { return test::runCli(dir.path(), arguments, 120000); }
    int discs() const { return test::countOf(file("vinora.db"), "SELECT count(*) FROM Аудио"); }
};

} // namespace

class tst_maintenancecli : public QObject
{
    Q_OBJECT

private slots:
    void backupRestoreCompact()
    {
        Home home;
        Run run = home.cli({"backup"});
        QCOMPARE(run.code, 0);
        QCOMPARE(run.out, QString("Создание/обновление резервной копии данных успешно завершено.\n"));
        QCOMPARE(test::countOf(home.file("backup_of_vinora_files.db"), "SELECT count(*) FROM Файлы"), 6);
        const QString date =
            test::valueOf(home.file("vinora.db"), "SELECT РезервнаяКопия FROM _Информация").toString();
        QCOMPARE(date, QDate::currentDate().toString(Qt::ISODate));

        test::addDiscs(home.dir.path(), {{Category::Audio, 2, "Сплин", "", "Rock", {"A2"}}});
        run = home.cli({"restore"});
        QCOMPARE(run.code, 0);
        QCOMPARE(run.out, QString("Резервная копия данных успешно восстановлена.\n"));
        QCOMPARE(home.discs(), 1);
        QCOMPARE(test::valueOf(home.file("vinora.db"), "SELECT РезервнаяКопия FROM _Информация").toString(),
                 date);

        Db(home.file("vinora_files.db")).exec("DELETE FROM Фильтр1");
        run = home.cli({"compact"});
        QCOMPARE(run.code, 0);
        QVERIFY2(run.out.startsWith("Операция успешно завершена! Файлы базы данных"), qPrintable(run.out));
        QCOMPARE(home.cli({"compact"}).out,
                 QString("Операция успешно завершена! Файлы базы данных не были сжаты.\n"));
    }

    void refusals_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<bool>("busy"); // another process writes meanwhile
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("message");
        const QString busy = "vinora-cli: С базами данных сейчас работает другая программа (vinora-cli).";
        QTest::newRow("restore without a set")
            << QStringList{"restore"} << false << 1
            << "vinora-cli: ОШИБКА. Файл резервной копии данных не найден!";
        QTest::newRow("backup while writing") << QStringList{"backup"} << true << 1 << busy;
        QTest::newRow("compact while writing") << QStringList{"compact"} << true << 1 << busy;
        QTest::newRow("export over our own")
            << QStringList{"export-db", "vinora_tracks.db"} << false << 1
            << "vinora-cli: Вы попытались экспортировать базу данных по верх "
               "локальной.";
        QTest::newRow("import of nothing")
            << QStringList{"import", "/"} << false << 2
            << "vinora-cli: Ни одна из категорий какталога не была выбрана! (--ad, "
               "--pc, --dvd); 'vinora-cli import --help' tells its usage";
        QTest::newRow("import from no database")
            << QStringList{"import", "/", "--dvd"} << false << 1
            << "vinora-cli: В указанном каталоге база данных vinora не найдена!";
    }

    void refusals()
    {
        QFETCH(QStringList, arguments);
        QFETCH(bool, busy);
        QFETCH(int, code);
        Home home;
        std::optional<DatabaseLock> writer;
        if (busy) {
            writer = DatabaseLock::acquire(home.file("vinora.db"), DatabaseLock::Mode::Shared, [] {});
        }
        for (QString& argument : arguments) {
            if (argument.endsWith(".db")) {
                argument = home.file(argument);
            }
        }
        const QByteArray tracks = test::readFile(home.file("vinora_tracks.db"));
        const Run run = home.cli(arguments);
        QCOMPARE(run.code, code);
        QTEST(run.err.trimmed(), "message");
        QCOMPARE(run.out, QString());
        QCOMPARE(test::readFile(home.file("vinora_tracks.db")), tracks);
        QVERIFY(!QFileInfo::exists(home.file("backup_of_vinora.db")));
    }

    void checkAndFix()
    {
        Home home;
        Run run = home.cli({"check"});
        QCOMPARE(run.code, 0);
        QCOMPARE(run.out,
                 QString("vinora.db: ok\nvinora_files.db: ok\nvinora_tracks.db: ok\n"
                         "Компьютерные диски: Ошибок не найдено!\nАудио диски: Ошибок не найдено!\n"));
        {
            Db files(home.file("vinora_files.db"));
            ContentsLists(files, ContentsKind::Files).drop("C2");
            // The search index loses its rows behind the triggers' back.
            files.exec("INSERT INTO ФайлыПоискИмя(ФайлыПоискИмя) VALUES ('delete-all')");
            Db main(home.file("vinora.db"));
            main.exec("UPDATE Аудио SET Дисков = 0");
        }
        run = home.cli({"check"});
        QCOMPARE(run.code, 1);
        QCOMPARE(run.out,
                 QString("vinora.db: ok\nvinora_files.db: the search index is out of step with the rows\n"
                         "vinora_tracks.db: ok\nКомпьютер № 1: ДискID2 'C2' - нет такого списка\n"
                         "Компьютерные диски: найдено ошибок: 1\nАудио № 1: Дисков 0\n"
                         "Аудио диски: найдено ошибок: 1\n"));
        run = home.cli({"check", "--fix"});
        QCOMPARE(run.code, 0);
        QCOMPARE(run.out.section('\n', 1, 1),
                 QString("vinora_files.db: the search index was out of step with the rows; rebuilt"));
        QVERIFY(run.out.contains(
            "Компьютерные диски: Операция успешно завершена! Найдено и исправлено ошибок: 1\n"));
        QCOMPARE(home.cli({"check"}).code, 0);
        QCOMPARE(test::countOf(home.file("vinora_files.db"),
                               "SELECT count(*) FROM ФайлыПоискИмя WHERE ФайлыПоискИмя MATCH '\"fil\"'"),
                 3);
    }

    void checkOfADamagedDatabase()
    {
        Home home;
        QFile file(home.file("vinora_tracks.db"));
        QVERIFY(file.open(QIODevice::ReadWrite));
        file.seek(1024); // within the first table's pages
        file.write(QByteArray(2048, '\x5a'));
        file.close();
        const Run run = home.cli({"check", "--fix"});
        QCOMPARE(run.code, 3);
        QVERIFY2(run.out.startsWith("vinora.db: ok\nvinora_files.db: ok\nvinora_tracks.db: "),
                 qPrintable(run.out));
        QVERIFY(!run.out.contains("vinora_tracks.db: ok"));
        QVERIFY(run.err.contains("vinora-cli restore"));
    }

    void exportAndImport()
    {
        Home home;
        QTemporaryDir elsewhere;
        const QString path = elsewhere.filePath("catalogue.db");
        Run run = home.cli({"export-db", path});
        QCOMPARE(run.code, 0);
        QCOMPARE(run.out, "База данных успешно cохранена в файл:\n" + path + "\n");
        QCOMPARE(test::countOf(path, "SELECT count(*) FROM sqlite_master WHERE name IN ('Должники', "
                                     "'ИменаДолжников')"),
                 0);

        Home other;
        run = other.cli({"import", home.dir.path(), "--ad", "--tracks", "--pc", "--files", "--skip-doubles"});
        QCOMPARE(run.code, 0);
        QCOMPARE(run.out,
                 QString("Операция успешно завершена!\n\nИмпортировано:\n\n- Аудио дисков: 0 из 1\n"
                         "- Компьютерных дисков: 0 из 1\n\n- треков: 0 из 0\n- списков файлов: 0 из 0\n"));
        run = other.cli({"import", elsewhere.path(), "--dvd", "--ad"});
        QCOMPARE(run.code, 0);
        QCOMPARE(run.out, QString("Операция успешно завершена!\n\nИмпортировано:\n\n- Аудио дисков: 1 из 1\n"
                                  "- DVD дисков: 0 из 0\n"));
        QCOMPARE(test::catalogueOf(other.file("vinora.db"), Category::Audio), QString("1 Кино, 2 Кино"));
    }
};

VINORA_TEST_MAIN(tst_maintenancecli)
#include "tst_maintenancecli.moc"
