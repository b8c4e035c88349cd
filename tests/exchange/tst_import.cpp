#include "SampleCollection.h"
#include "exchange/frmImport.h"
#include "store/Reanimator.h"
#include "support/ScriptedPrompter.h"
#include "support/TestFolders.h"
#include "support/TestMain.h"

#include <QCheckBox>
#include <QCryptographicHash>
#include <QDir>
#include <QPushButton>

using namespace vinora;

namespace {

// The other copy: audio 5, 7 and 12 (numbers with gaps), two computer discs, one DVD.
const QList<test::SampleDisc> kOtherCopy = {
    {Category::Audio, 12, "Кино", "Группа крови", "Rock", {"A1", "A2"}},
    {Category::Audio, 5, "Aria", "Герой асфальта", "Heavy Metal", {"A3"}},
    {Category::Audio, 7, "Сплин", QString(), "Шансон", {}},
    {Category::Computer, 3, "Office \"2000\"", {}, "Офисные программы", {"C1"}, 4},
    {Category::Computer, 9, "Дистрибутив", {}, "Сборник программ", {"C2", "C3"}, 2},
    {Category::Dvd, 1, "Матрица", {}, "Фантастика", {}},
};

QString hashOf(const QString& path)
{
    return QString::fromLatin1(
        QCryptographicHash::hash(test::readFile(path), QCryptographicHash::Sha1).toHex());
}

struct ImportCase
{
    test::TestApp app;
    QTemporaryDir other;

    ImportCase(const QList<test::SampleDisc>& theirs = kOtherCopy)
    {
        Reanimator(app.ctx, 0);
        test::makeDatabases(other.path());
        test::addDiscs(other.path(), theirs);
    }

    // Runs the window's import on `folder` with the boxes as given, as the user clicks.
    QString run(const QString& folder, const QStringList& unchecked = {})
    {
        frmImport window(app.ctx);
        for (const QString& box : unchecked) {
            window.findChild<QCheckBox*>(box)->setChecked(false);
        }
        app.prompter.answerPath(folder);
        QTest::mouseClick(window.findChild<QPushButton*>("imgButton0"), Qt::LeftButton);
        return window.stageText();
    }
    QString main() const { return app.ctx.MainDBPath; }
    QString lastMessage() const { return app.prompter.texts().last(); }
};

const QString kFullSummary = "Операция успешно завершена!\n\nИмпортировано:\n\n"
                             "- Аудио дисков: 3 из 3\n- Компьютерных дисков: 2 из 2\n- DVD дисков: 1 из 1\n\n"
                             "- треков: 3 из 3\n- списков файлов: 3 из 3";

} // namespace

class tst_import : public QObject
{
    Q_OBJECT

private slots:
    void intoAnEmptyCatalogue()
    {
        ImportCase c;
        const QStringList sourceHashes = {hashOf(c.other.filePath("vinora.db")),
                                          hashOf(c.other.filePath("vinora_files.db")),
                                          hashOf(c.other.filePath("vinora_tracks.db"))};
        QCOMPARE(c.run(c.other.path()), QString("Готово"));
        QCOMPARE(c.app.prompter.texts(),
                 (QStringList{"Укажите каталог с базой данных vinora.", kFullSummary}));
        QCOMPARE(c.app.prompter.shown.last().style, MessageStyle::Information);

        // Numbers from 1 in the order of theirs, without their gaps.
        QCOMPARE(test::catalogueOf(c.main(), Category::Audio), QString("1 Aria, 2 Сплин, 3 Кино"));
        QCOMPARE(test::catalogueOf(c.main(), Category::Computer),
                 QString("1 Office \"2000\", 2 Дистрибутив"));
        QCOMPARE(test::catalogueOf(c.main(), Category::Dvd), QString("1 Матрица"));
        // Dictionary values by their text: ours where we have it, added where we do not.
        QCOMPARE(test::valueOf(c.main(),
                               "SELECT s.Стиль FROM Аудио a JOIN Стиль s USING (КодСтиля) WHERE Номер = 3")
                     .toString(),
                 QString("Rock"));
        QCOMPARE(test::countOf(c.main(), "SELECT count(*) FROM Стиль"), 32);
        QCOMPARE(test::valueOf(c.main(), "SELECT КодСтиля FROM Стиль WHERE Стиль = 'Шансон'").toInt(), 32);
        QCOMPARE(test::valueOf(c.main(), "SELECT Альбом FROM Аудио WHERE Номер = 2").isNull(), true);
        // The lists with their rows, and the ids that point at them.
        QCOMPARE(
            test::valueOf(c.main(), "SELECT ДискID1 || ',' || ДискID2 FROM Аудио WHERE Номер = 3").toString(),
            QString("A1,A2"));
        QCOMPARE(test::countOf(c.app.ctx.TracksDBPath, "SELECT count(*) FROM Треки WHERE ДискID = 'A2'"), 3);
        QCOMPARE(test::countOf(c.app.ctx.FilesDBPath, "SELECT count(*) FROM Файлы WHERE ДискID = 'C1'"), 4);
        QCOMPARE(
            test::valueOf(c.app.ctx.TracksDBPath,
                          "SELECT count(*) FROM ТрекиПоискНазвание WHERE ТрекиПоискНазвание MATCH '\"''A3\"'")
                .toInt(),
            3);
        // What is not copied: the bindings and the loan mark.
        QCOMPARE(
            test::countOf(c.main(), "SELECT count(*) FROM Аудио WHERE ДискID1_d IS NOT NULL OR Должник <> 0"),
            0);
        QCOMPARE(test::valueOf(c.main(), "SELECT ПослОбновлDVD FROM _Информация").toString(),
                 QString("2026-11-22"));
        // Theirs is never changed.
        QCOMPARE(
            (QStringList{hashOf(c.other.filePath("vinora.db")), hashOf(c.other.filePath("vinora_files.db")),
                         hashOf(c.other.filePath("vinora_tracks.db"))}),
            sourceHashes);
    }

    void behindOurLastNumber()
    {
        ImportCase c({{Category::Dvd, 4, "Чужой", {}, "Ужасы", {}},
                      {Category::Dvd, 2, "Терминатор", {}, "Боевик", {}}});
        test::addDiscs(c.app.folder.path(), {{Category::Dvd, 40, "Наш", {}, "Комедия", {}}});
        c.run(c.other.path(), {"chAD", "chPC"});
        QCOMPARE(test::catalogueOf(c.main(), Category::Dvd), QString("40 Наш, 41 Терминатор, 42 Чужой"));
        QCOMPARE(c.lastMessage(),
                 QString("Операция успешно завершена!\n\nИмпортировано:\n\n- DVD дисков: 2 из 2"));
    }

    void secondImport_data()
    {
        QTest::addColumn<bool>("skipDoubles");
        QTest::addColumn<QString>("summary");
        QTest::addColumn<QString>("audio");
        QTest::newRow("doubles skipped")
            << true
            << "Операция успешно завершена!\n\nИмпортировано:\n\n- Аудио дисков: 0 из 3\n"
               "- Компьютерных дисков: 0 из 2\n- DVD дисков: 0 из 1\n\n- треков: 0 из 0\n- списков файлов: 0 "
               "из 0"
            << "1 Aria, 2 Сплин, 3 Кино";
        // Without the test every disc comes again; its lists clash with the first ones.
        QTest::newRow("doubles imported")
            << false
            << "Операция успешно завершена!\n\nИмпортировано:\n\n- Аудио дисков: 3 из 3\n"
               "- Компьютерных дисков: 2 из 2\n- DVD дисков: 1 из 1\n\n- треков: 0 из 3\n- списков файлов: 0 "
               "из 3"
            << "1 Aria, 2 Сплин, 3 Кино, 4 Aria, 5 Сплин, 6 Кино";
    }

    void secondImport()
    {
        QFETCH(bool, skipDoubles);
        ImportCase c;
        c.run(c.other.path());
        c.run(c.other.path(), skipDoubles ? QStringList() : QStringList{"chDouble"});
        QTEST(c.lastMessage(), "summary");
        QTEST(test::catalogueOf(c.main(), Category::Audio), "audio");
        QCOMPARE(
            test::countOf(c.main(), "SELECT count(*) FROM Аудио WHERE Номер > 3 AND ДискID1 IS NOT NULL"), 0);
        QCOMPARE(test::countOf(c.app.ctx.TracksDBPath, "SELECT count(*) FROM Треки"), 9);
    }

    void doublesByTheCataloguesComparison()
    {
        ImportCase c({{Category::Audio, 1, "КИНО", "ГРУППА КРОВИ", "Rock", {}},
                      {Category::Audio, 2, "Кино", "Звезда", "Rock", {}},
                      {Category::Audio, 3, "Кино", "Звезда", "Rock", {}},
                      {Category::Computer, 1, "Say \"hi\" [1]", {}, "", {}}});
        test::addDiscs(c.app.folder.path(), {{Category::Audio, 1, "кино", "группа крови", "Rock", {}},
                                             {Category::Computer, 1, "say \"HI\" [1]", {}, "", {}}});
        c.run(c.other.path(), {"chDVD"});
        // Two equal discs of theirs give one: what came in a moment ago counts too.
        QCOMPARE(c.lastMessage(),
                 QString("Операция успешно завершена!\n\nИмпортировано:\n\n- Аудио дисков: 1 из 3\n"
                         "- Компьютерных дисков: 0 из 1\n\n- треков: 0 из 0\n- списков файлов: 0 из 0"));
        QCOMPARE(test::catalogueOf(c.main(), Category::Audio), QString("1 кино, 2 Кино"));
    }

    void theirListMissing()
    {
        ImportCase c({{Category::Audio, 1, "Кино", "Звезда", "Rock", {"B1", "-B2", "-"}}});
        c.run(c.other.path(), {"chPC", "chDVD"});
        QCOMPARE(c.lastMessage(),
                 QString("Операция успешно завершена!\n\nИмпортировано:\n\n- Аудио дисков: 1 из 1\n\n"
                         "- треков: 1 из 2"));
        QCOMPARE(test::valueOf(c.main(), "SELECT ifnull(ДискID1, '-') || ifnull(ДискID2, '-') || "
                                         "ifnull(ДискID3, '-') FROM Аудио")
                     .toString(),
                 QString("B1--"));
        // The list made for the missing one stays, empty.
        QCOMPARE(
            test::valueOf(c.app.ctx.TracksDBPath, "SELECT group_concat(ДискID, ',') FROM Списки").toString(),
            QString("B1,B2"));
    }

    void listsNotAskedFor()
    {
        ImportCase c;
        c.run(c.other.path(), {"chImportTracks", "chImportFiles"});
        QCOMPARE(c.lastMessage(),
                 QString("Операция успешно завершена!\n\nИмпортировано:\n\n- Аудио дисков: 3 из 3\n"
                         "- Компьютерных дисков: 2 из 2\n- DVD дисков: 1 из 1"));
        QCOMPARE(test::countOf(c.main(), "SELECT count(*) FROM Аудио WHERE ДискID1 IS NOT NULL"), 0);
        QCOMPARE(test::countOf(c.app.ctx.TracksDBPath, "SELECT count(*) FROM Списки"), 0);
    }

    void sourcePaths_data()
    {
        QTest::addColumn<QString>("folder");
        QTest::addColumn<QString>("main");
        QTest::newRow("root") << QString("/") << "/vinora.db";
        QTest::newRow("folder") << QString("/media/cdrom") << "/media/cdrom/vinora.db";
        QTest::newRow("with separator") << QString("/media/cdrom/") << "/media/cdrom/vinora.db";
    }

    void sourcePaths()
    {
        QFETCH(QString, folder);
        QFETCH(QString, main);
        ImportChoice choice;
        choice.audio = choice.tracks = true;
        const ImportSources sources = importSources(folder, choice);
        QCOMPARE(sources.main, main);
        QCOMPARE(sources.tracks, main.replace("vinora.db", "vinora_tracks.db"));
        QCOMPARE(sources.files, QString());
    }

    void refusals_data()
    {
        QTest::addColumn<QStringList>("unchecked");
        QTest::addColumn<QString>("remove"); // a file of theirs taken away; "*" their folder is ours
        QTest::addColumn<QString>("message");
        QTest::newRow("no catalogue") << QStringList{"chAD", "chPC", "chDVD"} << QString("")
                                      << "Ни одна из категорий какталога не была выбрана!";
        QTest::newRow("no database") << QStringList() << QString("vinora.db")
                                     << "В указанном каталоге база данных vinora не найдена!";
        QTest::newRow("no tracks") << QStringList() << QString("vinora_tracks.db")
                                   << "В указанном каталоге база данных vinora со списком треков не найдена!";
        QTest::newRow("no files") << QStringList() << QString("vinora_files.db")
                                  << "В указанном каталоге база данных vinora со списком файлов не найдена!";
        QTest::newRow("tracks not asked for")
            << QStringList{"chImportTracks"} << QString("vinora_tracks.db") << "";
        QTest::newRow("our own folder")
            << QStringList() << "*"
            << "В указанном каталоге находится открытая база данных vinora. Импорт из "
               "нее невозможен.";
    }

    void refusals()
    {
        QFETCH(QStringList, unchecked);
        QFETCH(QString, remove);
        QFETCH(QString, message);
        ImportCase c;
        QString folder = c.other.path();
        if (remove == "*") {
            folder = c.app.folder.path();
        } else if (!remove.isEmpty()) {
            QFile::remove(c.other.filePath(remove));
        }
        frmImport window(c.app.ctx);
        for (const QString& box : unchecked) {
            window.findChild<QCheckBox*>(box)->setChecked(false);
        }
        if (unchecked.size() < 3) {
            c.app.prompter.answerPath(folder);
        }
        window.Import();
        if (message.isEmpty()) {
            QCOMPARE(window.stageText(), QString("Готово"));
            return;
        }
        QCOMPARE(c.lastMessage(), message);
        QCOMPARE(c.app.prompter.shown.last().style, MessageStyle::Exclamation);
        QCOMPARE(window.stageText(), unchecked.size() < 3 ? QString("Ошибка") : QString());
        QCOMPARE(test::countOf(c.main(), "SELECT count(*) FROM Аудио"), 0);
    }

    void cancelledFolderChoiceDoesNothing()
    {
        ImportCase c;
        frmImport window(c.app.ctx);
        c.app.prompter.answerPath(QString());
        window.Import();
        QCOMPARE(window.stageText(), QString());
        QCOMPARE(c.app.prompter.texts(), QStringList{"Укажите каталог с базой данных vinora."});
    }

    void listBoxesFollowTheirCatalogue()
    {
        test::TestApp app;
        frmImport window(app.ctx);
        auto* audio = window.findChild<QCheckBox*>("chAD");
        auto* computer = window.findChild<QCheckBox*>("chPC");
        QTest::mouseClick(audio, Qt::LeftButton);
        QCOMPARE(window.findChild<QCheckBox*>("chImportTracks")->isEnabled(), false);
        QCOMPARE(window.findChild<QCheckBox*>("chImportFiles")->isEnabled(), true);
        QTest::mouseClick(computer, Qt::LeftButton);
        QCOMPARE(window.findChild<QCheckBox*>("chImportFiles")->isEnabled(), false);
        QTest::mouseClick(audio, Qt::LeftButton);
        QCOMPARE(window.findChild<QCheckBox*>("chImportTracks")->isEnabled(), true);
    }

    void damagedSourceIsToldAndChangesNothing()
    {
        ImportCase c;
        test::writeFile(c.other.filePath("vinora.db"), QByteArray(4096, 'x'));
        c.run(c.other.path());
        QVERIFY(
            c.lastMessage().startsWith("ОШИБКА!\n\nБаза данных имеет атрибут 'только чтение', повреждена или "
                                       "имеет не верный формат.\n\nИмпортировано до ошибки:"));
        QCOMPARE(c.app.prompter.shown.last().style, MessageStyle::Stop);
        QCOMPARE(test::countOf(c.main(), "SELECT count(*) FROM Аудио"), 0);
        QCOMPARE(test::integrityOf(c.main()), QString("ok"));
    }

    void numbersBeyondTheLastStopWithWholeDiscs()
    {
        // Numbers are 16-bit: the second disc of theirs has no number left.
        ImportCase c({{Category::Audio, 1, "Первый", "", "Rock", {"D1"}},
                      {Category::Audio, 2, "Второй", "", "Rock", {"D2"}}});
        test::addDiscs(c.app.folder.path(), {{Category::Audio, 32766, "Наш", "", "Rock", {}}});
        c.run(c.other.path(), {"chPC", "chDVD"});
        QCOMPARE(c.lastMessage(),
                 QString("ОШИБКА!\n\nБаза данных имеет атрибут 'только чтение', повреждена или имеет не "
                         "верный формат.\n\nИмпортировано до ошибки:\n\n- Аудио дисков: 1 из 1\n\n"
                         "- треков: 1 из 1"));
        QCOMPARE(c.run(c.other.path(), {"chPC", "chDVD"}), QString("Импортирование Аудио дисков..."));
        QCOMPARE(test::catalogueOf(c.main(), Category::Audio), QString("32766 Наш, 32767 Первый"));
        // The failed disc took its list with it.
        QCOMPARE(test::valueOf(c.app.ctx.TracksDBPath, "SELECT group_concat(ДискID) FROM Списки").toString(),
                 QString("D1"));
    }
};

VINORA_TEST_MAIN(tst_import)
#include "tst_import.moc"
