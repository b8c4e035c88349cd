#include "../recognition/DiscFixtures.h"
#include "catalogue/CatalogueOps.h"
#include "catalogue/frmAddCD.h"
#include "catalogue/frmAddInCatalogue.h"
#include "catalogue/frmCatalogue.h"
#include "catalogue/frmChangeNumber.h"
#include "catalogue/frmSelectCD.h"
#include "frame/Cp1251.h"
#include "recognition/VolumeIdentity.h"
#include "store/ContentsLists.h"
#include "store/Db.h"
#include "store/InfoStamp.h"
#include "store/Reanimator.h"
#include "store/Schema.h"
#include "support/ScriptedPrompter.h"
#include "support/TestFolders.h"
#include "support/TestMain.h"
#include "support/Widgets.h"

#include <QCheckBox>
#include <QComboBox>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTableView>

using namespace vinora;

namespace {

// A catalogue of the given category with rows (number, name, year) added in order.
struct Catalogue
{
    test::TestApp app;
    Category category;
    std::unique_ptr<frmCatalogue> window;

    explicit Catalogue(Category which) : category(which) { Reanimator(app.ctx, 0); }

    const CatalogueKind& kind() const { return catalogueKind(category); }

    void add(int number, const QString& name, const QString& year = {}, int dictionary = 1)
    {
        Db(app.ctx.MainDBPath)
            .exec("INSERT INTO " + quoted(kind().info().table) + " (Номер, Название, Год, Дисков, " +
                      quoted(kind().dictionaryKey) + ") VALUES (?, ?, ?, 1, ?)",
                  {number, name, year.isEmpty() ? QVariant() : QVariant(year), dictionary});
    }
    frmCatalogue& open()
    {
        window = std::make_unique<frmCatalogue>(app.ctx, category);
        window->show();
        return *window;
    }
    template <typename T = QWidget> T* control(const QString& name) const
    {
        return window->findChild<T*>(name);
    }
    QString label(const QString& name) const { return control<QLabel>(name)->text(); }
    QStringList rows() const
    {
        QStringList list;
        for (int i = 0; i < window->rowCount(); ++i) {
            list.append(window->rowText(i));
        }
        return list;
    }
    void typeName(const QString& text)
    {
        auto* field = control<QLineEdit>("txtName");
        field->setFocus();
        field->selectAll();
        test::typeText(field, text);
    }
};

void addCategories()
{
    QTest::addColumn<int>("category");
    QTest::newRow("audio") << int(Category::Audio);
    QTest::newRow("computer") << int(Category::Computer);
    QTest::newRow("DVD") << int(Category::Dvd);
}

} // namespace

class tst_cataloguebrowser : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    test::DiscFixtures m_discs{m_dir.path()};

private slots:
    void emptyCatalogue_data() { addCategories(); }
    void emptyCatalogue()
    {
        QFETCH(int, category);
        Catalogue c(static_cast<Category>(category));
        frmCatalogue& w = c.open();
        QCOMPARE(w.windowTitle(), c.kind().title);
        QCOMPARE(c.label("lblCDsCount0"), "Дисков в каталоге:");
        QCOMPARE(c.label("lblCDsCount1"), "0");
        QVERIFY(!c.control("imgButton2")->isEnabled());
        QVERIFY(!c.control("cmbSorted")->isEnabled());
        QVERIFY(!c.control("txtName")->isEnabled());
        QVERIFY(c.control("imgButton0")->isEnabled());
    }

    void queryWithoutResult_data() { addCategories(); }
    void queryWithoutResult()
    {
        QFETCH(int, category);
        Catalogue c(static_cast<Category>(category));
        c.add(1, "Первый");
        c.open();
        c.typeName("zzz");
        QCOMPARE(c.rows(), QStringList());
        QCOMPARE(c.label("lblCDsCount0"), "Дисков удовлетворяющих запросу:");
        QCOMPARE(c.label("lblCDsCount1"), "0");
        QVERIFY(c.control("txtName")->isEnabled()); // the filter can still be changed
        QVERIFY(!c.control("imgButton2")->isEnabled());
        QCOMPARE(c.window->windowTitle(), c.kind().queryTitle());
        QVERIFY(c.control("imgButton5")->isEnabled());
        qobject_cast<QPushButton*>(c.control("imgButton5"))->click();
        QCOMPARE(c.rows(), QStringList{"1 Первый"});
        QCOMPARE(c.window->windowTitle(), c.kind().title);

        // A dictionary name that no disc has: the list shows no name either.
        auto* dictionary = c.control<QComboBox>(c.kind().dictionaryControl);
        dictionary->setCurrentIndex(1);
        emit dictionary->activated(1);
        QCOMPARE(c.rows(), QStringList());
        QCOMPARE(dictionary->currentText(), QString());
    }

    void filteredListStaysAfterAChangeAndAnAdd_data()
    {
        QTest::addColumn<bool>("stored"); // a stored query, or a name typed in
        QTest::newRow("stored query") << true;
        QTest::newRow("name typed") << false;
    }

    void filteredListStaysAfterAChangeAndAnAdd()
    {
        QFETCH(bool, stored);
        Catalogue c(Category::Audio);
        c.add(1, "Rock one", {}, 27);
        c.add(2, "Jazz one", {}, 16);
        c.add(3, "Rock two", {}, 27);
        if (stored) {
            c.app.ctx.CatalogueQueryFilter = "AND Стиль = \"Rock\"";
            c.app.ctx.CatalogueQueryMode = true;
        }
        frmCatalogue& w = c.open();
        if (!stored) {
            c.typeName("Rock");
        }
        QCOMPARE(c.rows(), (QStringList{"1 Rock one", "3 Rock two"}));

        c.app.prompter.handleModal([](QDialog& editor) {
            editor.findChild<QLineEdit*>("txtName")->setText("Rock first");
            static_cast<frmAddInCatalogue&>(editor).cmdAdd();
            return editor.result();
        });
        w.cmdChange();
        QCOMPARE(c.rows(), (QStringList{"1 Rock first", "3 Rock two"}));
        QCOMPARE(w.windowTitle(), c.kind().queryTitle());

        c.app.prompter.handleModal([](QDialog& first) {
            first.show();
            static_cast<frmAddCD&>(first).cmdOK();
            return first.result();
        });
        c.app.prompter.handleModal([](QDialog& editor) {
            editor.findChild<QLineEdit*>("txtName")->setText("Rock three");
            editor.findChild<QLineEdit*>("txtStyle")->setText("Rock");
            static_cast<frmAddInCatalogue&>(editor).cmdAdd();
            return editor.result();
        });
        w.cmdAdd();
        QCOMPARE(c.rows(), (QStringList{"1 Rock first", "3 Rock two", "4 Rock three"}));
        QCOMPARE(w.currentRow(), 2);
        QCOMPARE(w.windowTitle(), c.kind().queryTitle());
    }

    void faultsNameTheirRoutine_data()
    {
        QTest::addColumn<QString>("routine");
        QTest::newRow("change") << "cmdChange";
        QTest::newRow("add") << "cmdAdd";
        QTest::newRow("reposition") << "dcDatabase_Reposition";
    }

    void faultsNameTheirRoutine()
    {
        QFETCH(QString, routine);
        Catalogue c(routine == "dcDatabase_Reposition" ? Category::Dvd : Category::Audio);
        c.add(1, "Один");
        const QString mainDb = c.app.ctx.MainDBPath;
        // The database is damaged while a dialog is up: a table the browser reads is gone.
        const auto damage = [mainDb](const QString& table) {
            Db db(mainDb);
            db.exec("ALTER TABLE " + table + " RENAME TO Пропавший");
        };
        if (routine == "dcDatabase_Reposition") {
            Db db(mainDb);
            db.exec("UPDATE DVD SET ФорматЗвука = '1,'");
        }
        frmCatalogue& w = c.open();
        if (routine == "cmdChange") {
            c.app.prompter.handleModal([&](QDialog& editor) {
                static_cast<frmAddInCatalogue&>(editor).cmdAdd();
                damage("Стиль");
                return editor.result();
            });
            QVERIFY_THROWS_EXCEPTION(ProcessEnded, w.cmdChange());
        } else if (routine == "cmdAdd") {
            c.app.prompter.handleModal([](QDialog& first) {
                first.show();
                static_cast<frmAddCD&>(first).cmdOK();
                return first.result();
            });
            c.app.prompter.handleModal([&](QDialog& editor) {
                editor.findChild<QLineEdit*>("txtName")->setText("Два");
                static_cast<frmAddInCatalogue&>(editor).cmdAdd();
                damage("Стиль");
                return editor.result();
            });
            QVERIFY_THROWS_EXCEPTION(ProcessEnded, w.cmdAdd());
        } else {
            damage("ФорматЗвука");
            const QString picture = m_dir.filePath("cover.png");
            QImage image(8, 8, QImage::Format_RGB32);
            image.fill(Qt::green);
            QVERIFY(image.save(picture));
            c.app.prompter.answerPath(picture);
            QVERIFY_THROWS_EXCEPTION(ProcessEnded, w.cmdChangeBox());
        }
        const QString log = cp1251::decode(test::readFile(c.app.file("bugreport.log")));
        QVERIFY2(log.contains(c.kind().formName + ", " + routine + "()"), qPrintable(log));
    }

    void windowKeepsItsSizeUnderAFilter()
    {
        Catalogue c(Category::Computer);
        c.add(1, "Первый");
        frmCatalogue& w = c.open();
        QApplication::processEvents(); // the layout settles
        const QSize size = w.size();
        c.typeName("zzz");
        QApplication::processEvents();
        QCOMPARE(c.label("lblCDsCount0"), "Дисков удовлетворяющих запросу:");
        QCOMPARE(w.size(), size);
    }

    void dialogsShowTheirWholeTitle_data()
    {
        QTest::addColumn<QString>("dialog");
        QTest::newRow("change number") << "frmChangeNumber";
        QTest::newRow("add") << "frmAddCD";
        QTest::newRow("editor") << "frmAddInCatalogue";
        QTest::newRow("picker, filtered") << "frmSelectCD";
        QTest::newRow("browser, query") << "frmCatalogue";
    }

    void dialogsShowTheirWholeTitle()
    {
        QFETCH(QString, dialog);
        test::TestApp app;
        Reanimator(app.ctx, 0);
        app.ctx.CatalogueQueryMode = true;
        std::unique_ptr<QDialog> window;
        if (dialog == "frmChangeNumber") {
            window = std::make_unique<frmChangeNumber>(app.ctx);
        } else if (dialog == "frmAddCD") {
            window = std::make_unique<frmAddCD>(app.ctx, Category::Computer);
        } else if (dialog == "frmAddInCatalogue") {
            window = std::make_unique<frmAddInCatalogue>(app.ctx, Category::Computer,
                                                         frmAddInCatalogue::Mode::Change, 1);
        } else if (dialog == "frmSelectCD") {
            app.ctx.CatalogueQueryFilter = "fullPC";
            window = std::make_unique<frmSelectCD>(app.ctx);
            test::typeText(window->findChild<QLineEdit*>("txtName"), "x");
        } else {
            window = std::make_unique<frmCatalogue>(app.ctx, Category::Computer);
        }
        window->show();
        QFont bold = window->font();
        bold.setBold(true);
        // The title's text, and room for a title bar's icon and three buttons.
        const int needed = QFontMetrics(bold).horizontalAdvance(window->windowTitle()) + 100;
        QVERIFY2(window->width() >= needed, qPrintable(window->windowTitle()));
    }

    void sortTiesFollowTheDirection_data() { addCategories(); }
    void sortTiesFollowTheDirection()
    {
        QFETCH(int, category);
        Catalogue c(static_cast<Category>(category));
        c.add(3, "C", "1999");
        c.add(1, "A", "2001");
        c.add(2, "B", "1999");
        c.add(4, "D", "1999");
        c.open();
        QCOMPARE(c.rows(), (QStringList{"1 A", "2 B", "3 C", "4 D"}));
        auto* sort = c.control<QComboBox>("cmbSorted");
        sort->setCurrentIndex(sort->findText("по году"));
        c.control<QCheckBox>("chSortedDESC")->setChecked(true);
        c.window->cmbSorted_Click();
        QCOMPARE(c.rows(), (QStringList{"1 A", "4 D", "3 C", "2 B"}));
        c.control<QCheckBox>("chSortedDESC")->setChecked(false);
        c.window->cmbSorted_Click();
        QCOMPARE(c.rows(), (QStringList{"2 B", "3 C", "4 D", "1 A"}));
    }

    void typeAheadWraps()
    {
        Catalogue c(Category::Audio);
        c.add(1, "Ария");
        c.add(2, "Браво");
        c.add(3, "агата Кристи");
        c.add(4, "ABBA");
        frmCatalogue& w = c.open();
        auto* grid = c.control<QTableView>("DBGrid");
        grid->setFocus();
        test::typeText(grid, "а");
        QCOMPARE(w.currentRow(), 0);
        test::typeText(grid, "А");
        QCOMPARE(w.currentRow(), 2);
        test::typeText(grid, "а");
        QCOMPARE(w.currentRow(), 0); // wrapped
        test::typeText(grid, "б");
        QCOMPARE(w.currentRow(), 1);
        test::typeText(grid, "я"); // no name: stays
        QCOMPARE(w.currentRow(), 1);
        QTest::keyClick(grid, Qt::Key_End);
        QCOMPARE(w.currentRow(), 3);
        QTest::keyClick(grid, Qt::Key_Home);
        QCOMPARE(w.currentRow(), 0);
    }

    void jumpToANumber()
    {
        Catalogue c(Category::Computer);
        c.add(5, "Пять");
        c.add(9, "Девять");
        frmCatalogue& w = c.open();
        auto* number = c.control<QLineEdit>("txtNumber");
        number->setFocus();
        number->selectAll();
        QTest::keyClicks(number, "9");
        QTest::keyClick(number, Qt::Key_Return);
        QCOMPARE(w.currentRow(), 1);
        number->selectAll();
        QTest::keyClicks(number, "7x7");
        QCOMPARE(number->text(), "77");
        QTest::keyClick(number, Qt::Key_Return);
        QCOMPARE(c.app.prompter.texts().last(), "Диск № 77 не найден.");
        QCOMPARE(w.currentRow(), 1);
        QCOMPARE(number->text(), "9");
        number->clear();
        QTest::keyClick(number, Qt::Key_Return);
        QCOMPARE(c.app.prompter.texts().last(), "Указан не верный номер диска. Повторите ввод.");
    }

    void deletingTheLastRow_data() { addCategories(); }
    void deletingTheLastRow()
    {
        QFETCH(int, category);
        Catalogue c(static_cast<Category>(category));
        c.add(1, "Один");
        c.add(2, "Два");
        c.add(3, "Три");
        const CatalogueKind& kind = c.kind();
        if (kind.contents) {
            Db lists(*kind.contents == ContentsKind::Tracks ? c.app.ctx.TracksDBPath : c.app.ctx.FilesDBPath);
            ContentsLists(lists, *kind.contents).create("ABCD");
            Db db(c.app.ctx.MainDBPath);
            db.exec("UPDATE " + quoted(kind.info().table) + " SET ДискID1 = 'ABCD' WHERE Номер = 3");
        }
        test::writeFile(c.app.file("box/" + kind.info().coverPrefix + "3.box"), "picture");
        frmCatalogue& w = c.open();
        QTest::keyClick(c.control("DBGrid"), Qt::Key_End);
        c.app.prompter.answer(Answer::No);
        w.cmdDelete();
        QCOMPARE(w.rowCount(), 3);
        c.app.prompter.answer(Answer::Yes);
        QTest::keyClick(c.control("DBGrid"), Qt::Key_Delete);
        QCOMPARE(c.app.prompter.texts().last(),
                 "Вы действительно хотите удалить диск № 3?\n" + kind.deleteSecondLine);
        QCOMPARE(c.rows(), (QStringList{"1 Один", "2 Два"}));
        QCOMPARE(w.currentRow(), 1);
        QVERIFY(!QFile::exists(c.app.file("box/" + kind.info().coverPrefix + "3.box")));
        Db db(c.app.ctx.MainDBPath);
        QCOMPARE(readStamp(db, kind.info().stampField), c.app.clock.today());
        if (kind.contents) {
            Db lists(*kind.contents == ContentsKind::Tracks ? c.app.ctx.TracksDBPath : c.app.ctx.FilesDBPath);
            QVERIFY(!ContentsLists(lists, *kind.contents).exists("ABCD"));
        }
    }

    void namesAreFoundAsTyped_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("shown"); // the text after CleanText
        QTest::addColumn<QStringList>("found");
        QTest::newRow("apostrophe") << QString("it's") << "it's" << QStringList{"2 it's mine"};
        QTest::newRow("percent is plain") << QString("50%") << "50%" << QStringList{"3 50% off"};
        QTest::newRow("underscore is plain") << QString("_") << "_" << QStringList{"4 under_score"};
        QTest::newRow("double quote") << QString("\"q") << "'q" << QStringList{"1 say 'quoted'"};
        QTest::newRow("brackets") << QString("[live]") << "(live)" << QStringList{"5 best (live)"};
        QTest::newRow("Cyrillic any case") << QString("ЁЛК") << "ЁЛК" << QStringList{"6 Ёлки-палки"};
    }

    void namesAreFoundAsTyped()
    {
        QFETCH(QString, typed);
        Catalogue c(Category::Audio);
        c.add(1, "say 'quoted'");
        c.add(2, "it's mine");
        c.add(3, "50% off");
        c.add(4, "under_score");
        c.add(5, "best (live)");
        c.add(6, "Ёлки-палки");
        c.open();
        c.typeName(typed);
        QTEST(c.control<QLineEdit>("txtName")->text(), "shown");
        QTEST(c.rows(), "found");
    }

    void filtersFromOutside()
    {
        Catalogue c(Category::Audio);
        c.add(1, "Rock one", {}, 27);
        c.add(2, "Jazz one", {}, 16);
        c.app.ctx.CatalogueQueryFilter = "AND Стиль = \"Rock\"";
        c.open();
        QCOMPARE(c.rows(), QStringList{"1 Rock one"});
        c.window->reject();
        QCOMPARE(c.app.ctx.CatalogueQueryFilter, QString());

        c.app.ctx.CatalogueQueryFilter = "AND 1=1; DROP TABLE Аудио";
        c.open();
        QVERIFY(c.app.prompter.texts().last().startsWith("Условие запроса не распознано"));
        QCOMPARE(c.rows().size(), 2);
    }

    void dictionaryFilterAndQueryMode()
    {
        Catalogue c(Category::Dvd);
        c.add(1, "Комедия раз", {}, 4);
        c.add(2, "Ужас", {}, 6);
        c.app.ctx.CatalogueQueryMode = true;
        c.open();
        QCOMPARE(c.window->windowTitle(), "Каталог DVD дисков - Результат запроса");
        auto* genre = c.control<QComboBox>("cmbGenre");
        genre->setCurrentIndex(genre->findText("Ужасы"));
        emit genre->activated(genre->currentIndex());
        QCOMPARE(c.rows(), QStringList{"2 Ужас"});
    }

    void lentDiscShowsItsBorrower()
    {
        Catalogue c(Category::Audio);
        c.add(1, "На руках");
        {
            Db db(c.app.ctx.MainDBPath);
            db.exec("UPDATE Аудио SET Должник = -1");
            db.exec("INSERT INTO ИменаДолжников (Имя) VALUES ('Пётр')");
            db.exec("INSERT INTO Должники (КодИмяДолжника, КодДиска, Категория) VALUES (1, 1, 'AD')");
        }
        c.open();
        QCOMPARE(c.label("lblDue"), "Должник\nПётр");
        QVERIFY(c.control("lblDue")->isVisible());
        QVERIFY(!c.control("imgButton2")->isEnabled()); // a lent disc cannot be deleted
    }

    void sortOrderIsKept()
    {
        Catalogue c(Category::Computer);
        c.add(1, "B", "2000");
        c.add(2, "A", "1990");
        c.app.ctx.ini().write("Option", "SaveSortedCatalogue", "1");
        c.open();
        auto* sort = c.control<QComboBox>("cmbSorted");
        sort->setCurrentIndex(1);
        c.window->cmbSorted_Click();
        c.window->reject();
        QCOMPARE(c.app.ctx.ini().read("Sorted", "PCCDsorted", 5), "1");
        c.open();
        QCOMPARE(c.control<QComboBox>("cmbSorted")->currentText(), "по названию");
        QCOMPARE(c.rows(), (QStringList{"2 A", "1 B"}));
    }

    void covers_data() { addCategories(); }
    void covers()
    {
        QFETCH(int, category);
        Catalogue c(static_cast<Category>(category));
        c.add(12, "С обложкой");
        const QString picture = m_dir.filePath("front.png");
        QImage image(40, 30, QImage::Format_RGB32);
        image.fill(Qt::darkCyan);
        QVERIFY(image.save(picture));
        const QString fake = m_dir.filePath("fake.jpg");
        test::writeFile(fake, "just text with a picture's name\n");
        const QString cover = c.app.file("box/" + c.kind().info().coverPrefix + "12.box");
        frmCatalogue& w = c.open();
        QVERIFY(!c.control("imgButton9")->isEnabled());

        c.app.prompter.answerPath(picture);
        w.cmdChangeBox();
        QCOMPARE(test::readFile(cover), test::readFile(picture)); // the box folder was made
        QVERIFY(c.control("imgButton9")->isEnabled());
        QVERIFY(!c.control<QLabel>("imgBox")->pixmap().isNull());

        c.app.prompter.answerPath(fake);
        w.cmdChangeBox();
        QCOMPARE(c.app.prompter.texts().last(), "Этот формат изображения не поддерживается программой!");
        QCOMPARE(test::readFile(cover), test::readFile(picture));

        image.fill(Qt::red);
        const QString second = m_dir.filePath("second.png");
        image.save(second);
        c.app.prompter.answerPath(second);
        c.app.prompter.answer(Answer::No);
        w.cmdChangeBox();
        QCOMPARE(c.app.prompter.texts().last(), "Заменить обложку диска № 12?");
        QCOMPARE(test::readFile(cover), test::readFile(picture));
        c.app.prompter.answerPath(second);
        c.app.prompter.answer(Answer::Yes);
        w.cmdChangeBox();
        QCOMPARE(test::readFile(cover), test::readFile(second));

        c.app.prompter.answer(Answer::Yes);
        w.cmdDeleteBox();
        QCOMPARE(c.app.prompter.texts().last(), "Вы действительно хотите удалить обложку диска № 12?");
        QVERIFY(!QFile::exists(cover));
        QVERIFY(!c.control("imgButton9")->isEnabled());
    }

    void pictureFormats_data()
    {
        QTest::addColumn<QString>("format");
        QTest::newRow("PNG") << "png";
        QTest::newRow("JPEG") << "jpg";
        QTest::newRow("BMP") << "bmp";
        QTest::newRow("GIF") << "gif";
    }

    void pictureFormats()
    {
        QFETCH(QString, format);
        const QString path = m_dir.filePath("picture." + format);
        if (format == "gif") {
            // Qt reads GIF but does not write it: a 1x1 picture by hand.
            test::writeFile(path, QByteArray("GIF89a\x01\x00\x01\x00\x80\x00\x00\xff\xff\xff\x00\x00\x00"
                                             "!\xf9\x04\x01\x00\x00\x00\x00,\x00\x00\x00\x00\x01\x00\x01\x00"
                                             "\x00\x02\x02D\x01\x00;",
                                             43));
        } else {
            QImage image(8, 8, QImage::Format_RGB32);
            image.fill(Qt::yellow);
            QVERIFY(image.save(path));
        }
        QVERIFY(isReadablePicture(path));
        test::writeFile(path, "not a picture");
        QVERIFY(!isReadablePicture(path));
    }

    void externalDatabaseIsReadOnly()
    {
        Catalogue c(Category::Audio);
        c.add(1, "Чужой");
        test::writeFile(c.app.file("box/ad_1.box"), "cover");
        c.app.ctx.ExternalDBOpen = true;
        c.open();
        for (const char* button : {"imgButton1", "imgButton2", "imgButton3", "imgButton8", "imgButton9"}) {
            QVERIFY2(!c.control(QString::fromLatin1(button))->isEnabled(), button);
        }
        QVERIFY(!c.control<QTabWidget>("TabStrip")->isTabEnabled(1));
    }

    void soundFormatsOfADvd()
    {
        Catalogue c(Category::Dvd);
        c.add(1, "Фильм");
        Db(c.app.ctx.MainDBPath).exec("UPDATE DVD SET ФорматЗвука = '2,5,'");
        c.open();
        auto* formats = c.control<QComboBox>("cmbSoundFormat");
        QCOMPARE(formats->count(), 2);
        QCOMPARE(formats->itemText(0), "Dolby Digital 5.1");
        QCOMPARE(formats->itemText(1), "DTS");
        QCOMPARE(formats->currentText(), "Звук (2):");
    }

    void findsTheDiscInTheDrive()
    {
        Catalogue c(Category::Audio);
        const QString cue = m_discs.audioCue("drive", {15000, 15000, 15000});
        const QString id = QString::number(readVolumeInfo(cue).serial, 16).toUpper();
        c.add(1, "Один");
        c.add(2, "Два");
        Db(c.app.ctx.MainDBPath).exec("UPDATE Аудио SET Дисков = 3, ДискID2_d = ? WHERE Номер = 2", {id});
        c.app.ctx.ini().write("Option", "AutoResp", "1");
        c.app.ctx.ini().write("Option", "Drive", cue);
        frmCatalogue& w = c.open();
        QCOMPARE(w.currentRow(), 1);
        QCOMPARE(c.control<QComboBox>("cmbCountCD")->currentText(), "2");
        QCOMPARE(c.app.ctx.CurrentDiscID, id);
    }
};

VINORA_TEST_MAIN(tst_cataloguebrowser)
#include "tst_cataloguebrowser.moc"
