#include "frame/Cp1251.h"
#include "lending/LoanLedger.h"
#include "lending/frmAddInDue.h"
#include "lending/frmAddInDueFromMain.h"
#include "store/Db.h"
#include "store/Reanimator.h"
#include "support/DataRows.h"
#include "support/ScriptedPrompter.h"
#include "support/TestFolders.h"
#include "support/TestMain.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

using namespace vinora;

Q_DECLARE_METATYPE(vinora::Category)

namespace {

// Number 12 in every catalogue, an audio disc 13 without album, a computer disc 20.
struct Shelf
{
    Shelf()
    {
        Reanimator(app.ctx, 0);
        Db db(app.ctx.MainDBPath);
        db.exec("INSERT INTO Аудио (Номер, Название, Альбом, Дисков, КодСтиля) VALUES (12, 'Кино', 'Группа "
                "крови', 1, 1)");
        db.exec("INSERT INTO Аудио (Номер, Название, Дисков, КодСтиля) VALUES (13, 'Аквариум', 1, 1)");
        db.exec("INSERT INTO Компьютер (Номер, Название, Дисков, КодОписания) VALUES (12, 'Rock''n''Roll "
                "Racing', 1, 1)");
        db.exec(
            "INSERT INTO Компьютер (Номер, Название, Дисков, КодОписания) VALUES (20, 'Справочник', 1, 1)");
        db.exec("INSERT INTO DVD (Номер, Название, Дисков, КодЖанр) VALUES (12, 'Брат', 1, 1)");
        for (const char* name : {"Анна", "Борис"}) {
            db.exec("INSERT INTO ИменаДолжников (Имя, Телефон) VALUES (?, 'нет')", {QString::fromUtf8(name)});
        }
    }
    LoanDisc disc(Category category, int number) const
    {
        Db db(app.ctx.MainDBPath);
        return *findLoanDisc(db, category, number);
    }
    void lend(Category category, int number, const QString& name, const QDate& day) const
    {
        Db db(app.ctx.MainDBPath);
        lendDisc(db, disc(category, number), name, QDate(2026, 11, 30), day);
    }
    void takeBack(Category category, int number, const QDate& day) const
    {
        Db db(app.ctx.MainDBPath);
        returnDisc(db, category, disc(category, number).key, day);
    }
    QVariant scalar(const QString& sql, const QVariantList& values = {}) const
    {
        return Db(app.ctx.MainDBPath).scalar(sql, values);
    }
    void exec(const QString& sql) const { Db(app.ctx.MainDBPath).exec(sql); }
    int loans() const { return scalar("SELECT COUNT(*) FROM Должники").toInt(); }
    int openLoans() const { return scalar("SELECT COUNT(*) FROM Должники WHERE Долг <> 0").toInt(); }

    test::TestApp app;
};

// The window as the user meets it: shown, with a catalogue and an action chosen and a
// number typed.
struct Window
{
    Window(Shelf& shelf, Category category, bool adding, const QString& start = QString())
        : dialog(
              shelf.app.ctx, [this](Category c, PickMode m) { return pick(c, m); }, start)
    {
        dialog.show();
        option(QStringLiteral("optMethod%1").arg(adding ? 0 : 1))->setChecked(true);
        option(QStringLiteral("optCategory%1").arg(static_cast<int>(category)))->setChecked(true);
    }
    QRadioButton* option(const QString& name) const { return dialog.findChild<QRadioButton*>(name); }
    QLineEdit* number() const { return dialog.findChild<QLineEdit*>("txtNumber"); }
    // Types the number and presses Enter in the box.
    void enter(const QString& typed)
    {
        number()->clear();
        QTest::keyClicks(number(), typed);
        QTest::keyClick(number(), Qt::Key_Return);
    }
    int pick(Category c, PickMode m)
    {
        picks.append({c, m});
        return picked;
    }

    QList<std::pair<Category, PickMode>> picks;
    int picked = 0;
    frmAddInDueFromMain dialog;
};

// Fills in the lending dialog as the user would and saves it; what it showed is kept.
struct LendingDialog
{
    QString number, category, description, title;

    std::function<int(QDialog&)> handler(const QString& name)
    {
        return [this, name](QDialog& shown) {
            auto& dialog = dynamic_cast<frmAddInDue&>(shown);
            number = dialog.findChild<QLabel*>("lblNumber")->text();
            category = dialog.findChild<QLineEdit*>("txtCategory")->text();
            description = dialog.findChild<QLabel*>("lblDescription")->text();
            title = dialog.findChild<QLineEdit*>("txtName")->text();
            dialog.findChild<QComboBox*>("txtFIO")->setEditText(name);
            dialog.cmdAdd();
            return dialog.result();
        };
    }
};

} // namespace

class tst_quickloan : public QObject
{
    Q_OBJECT

private slots:
    void lendingEndsInTheLendingDialog_data()
    {
        QTest::addColumn<Category>("category");
        QTest::addColumn<int>("number");
        test::addColumns<QString>({"title", "categoryText", "description"});
        const auto row = test::addRow<Category, int, QString, QString, QString>;
        row("audio with album", Category::Audio, 12, "Кино - Группа крови", "Аудио диск",
            "Группа/Исполнитель");
        row("audio without album", Category::Audio, 13, "Аквариум", "Аудио диск", "Группа/Исполнитель");
        row("computer, apostrophes in the title", Category::Computer, 12, "Rock'n'Roll Racing",
            "Компьютерный диск", "Название");
        row("DVD", Category::Dvd, 12, "Брат", "DVD диск", "Название");
    }

    void lendingEndsInTheLendingDialog()
    {
        QFETCH(Category, category);
        QFETCH(int, number);
        QFETCH(QString, title);
        Shelf shelf;
        Window window(shelf, category, true);
        LendingDialog lending;
        shelf.app.prompter.answer(Answer::Ok);
        shelf.app.prompter.handleModal(lending.handler("Борис"));
        window.enter(QString::number(number));

        QCOMPARE(shelf.app.prompter.texts(),
                 QStringList{
                     QString("Подтвердите добавление должника на диск № %1:\n'%2'").arg(number).arg(title)});
        QCOMPARE(shelf.app.prompter.shown.value(0).style, MessageStyle::OkCancelInformation);
        QCOMPARE(lending.number, QString::number(number));
        QTEST(lending.category, "categoryText");
        QTEST(lending.description, "description");
        QCOMPARE(lending.title, shelf.disc(category, number).title);
        QVERIFY(shelf.disc(category, number).lent);
        QCOMPARE(
            shelf
                .scalar("SELECT n.Имя FROM Должники l JOIN ИменаДолжников n ON n.КодИмени = l.КодИмяДолжника "
                        "WHERE l.Долг <> 0 AND l.КодДиска = ? AND l.Категория = ?",
                        {shelf.disc(category, number).key, categoryInfo(category).code})
                .toString(),
            "Борис");
        QCOMPARE(shelf.loans(), 1);
        QCOMPARE(window.number()->text(), ""); // ready for the next disc
        QVERIFY(window.dialog.changed());
        QVERIFY(!shelf.app.ctx.DialogDone); // read and cleared
        QVERIFY(window.dialog.isVisible());
    }

    void lendingGivenUp_data()
    {
        QTest::addColumn<bool>("atTheQuestion");
        QTest::newRow("question cancelled") << true;
        QTest::newRow("lending dialog closed") << false;
    }

    void lendingGivenUp()
    {
        QFETCH(bool, atTheQuestion);
        Shelf shelf;
        Window window(shelf, Category::Audio, true);
        shelf.app.prompter.answer(atTheQuestion ? Answer::Cancel : Answer::Ok);
        if (!atTheQuestion) {
            shelf.app.prompter.handleModal([](QDialog& dialog) {
                dialog.reject();
                return dialog.result();
            });
        }
        window.enter("12");
        QCOMPARE(shelf.app.prompter.texts().size(), 1);
        QVERIFY(!shelf.disc(Category::Audio, 12).lent);
        QCOMPARE(shelf.loans(), 0);
        QVERIFY(!window.dialog.changed());
    }

    void refusals_data()
    {
        QTest::addColumn<bool>("adding");
        QTest::addColumn<Category>("category");
        test::addColumns<QString>({"typed", "message"});
        const auto row = test::addRow<bool, Category, QString, QString>;
        const QString wrong = "Указан не верный номер диска. Повторите ввод.";
        const QString no77 = "Диск № 77 отсутствует в каталоге.";
        row("nothing typed", true, Category::Audio, "", wrong);
        row("number 0", true, Category::Audio, "0", wrong);
        row("zeros, taking back", false, Category::Dvd, "000", wrong);
        row("unknown number", true, Category::Audio, "77", no77);
        row("leading zeros", false, Category::Audio, "0077", no77);
        row("number of another catalogue", true, Category::Dvd, "13", "Диск № 13 отсутствует в каталоге.");
        row("beyond any number", true, Category::Audio, "99999999999",
            "Диск № 99999999999 отсутствует в каталоге.");
        row("letters dropped", true, Category::Audio, "7a7", no77);
        row("already out", true, Category::Computer, "12", "Диск № 12 уже находится у должника.");
        row("never lent", false, Category::Audio, "13", "Диск № 13 не одалживался!");
    }

    void refusals()
    {
        QFETCH(bool, adding);
        QFETCH(Category, category);
        QFETCH(QString, typed);
        QFETCH(QString, message);
        Shelf shelf;
        shelf.lend(Category::Computer, 12, "Анна", QDate(2026, 11, 1));
        Window window(shelf, category, adding);
        QVERIFY(QTest::qWaitForWindowActive(&window.dialog));
        window.enter(typed);
        // Said once: Enter ran OK and did not reach the default button as well.
        QCOMPARE(shelf.app.prompter.texts(), QStringList{message});
        QCOMPARE(shelf.app.prompter.shown.value(0).style, MessageStyle::Exclamation);
        QVERIFY(window.number()->hasFocus());
        QCOMPARE(window.number()->selectedText(), window.number()->text());
        QCOMPARE(shelf.loans(), 1);
        QCOMPARE(shelf.openLoans(), 1);
        QVERIFY(!window.dialog.changed());
    }

    void theOkButtonRunsTheSameCommand()
    {
        Shelf shelf;
        Window window(shelf, Category::Audio, true);
        QTest::keyClicks(window.number(), "77");
        QTest::mouseClick(window.dialog.findChild<QPushButton*>("imgButton0"), Qt::LeftButton);
        QCOMPARE(shelf.app.prompter.texts(), QStringList{"Диск № 77 отсутствует в каталоге."});
    }

    void takingBack_data()
    {
        QTest::addColumn<Category>("category");
        QTest::addColumn<QString>("question");
        const QString asked = "Подтвердите удаление должника на %1 диск № 12:\n'%2'\nДолжник: Борис";
        QTest::newRow("audio") << Category::Audio << asked.arg("Аудио").arg("Кино - Группа крови");
        QTest::newRow("computer") << Category::Computer
                                  << asked.arg("Компьютерный").arg("Rock'n'Roll Racing");
        QTest::newRow("DVD, asked as a computer disc")
            << Category::Dvd << asked.arg("Компьютерный").arg("Брат");
    }

    void takingBack()
    {
        QFETCH(Category, category);
        QFETCH(QString, question);
        Shelf shelf;
        // An older loan, to Анна, and the one out now, to Борис.
        shelf.lend(category, 12, "Анна", QDate(2026, 10, 1));
        shelf.takeBack(category, 12, QDate(2026, 10, 9));
        shelf.lend(category, 12, "Борис", QDate(2026, 11, 2));
        Window window(shelf, category, false);
        shelf.app.prompter.answer(Answer::Ok);
        window.enter("12");

        QCOMPARE(shelf.app.prompter.texts(), (QStringList{question, "Операция успешно завершена!"}));
        QCOMPARE(shelf.app.prompter.shown.value(0).style, MessageStyle::OkCancelQuestion);
        QCOMPARE(shelf.app.prompter.shown.value(1).style, MessageStyle::Information);
        QVERIFY(!shelf.disc(category, 12).lent);
        QCOMPARE(shelf.openLoans(), 0);
        QCOMPARE(
            shelf.scalar("SELECT ДатаВозвратаРеальная FROM Должники ORDER BY КодДолжника DESC").toString(),
            "2026-11-22");
        QCOMPARE(shelf.scalar("SELECT ДатаВозвратаРеальная FROM Должники ORDER BY КодДолжника").toString(),
                 "2026-10-09"); // the older loan as it was
        QCOMPARE(window.number()->text(), "");
        QVERIFY(window.dialog.changed());
        QCOMPARE(shelf.loans(), 2);
    }

    void takingBackCancelled()
    {
        Shelf shelf;
        shelf.lend(Category::Audio, 12, "Анна", QDate(2026, 11, 2));
        Window window(shelf, Category::Audio, false);
        shelf.app.prompter.answer(Answer::Cancel);
        window.enter("12");

        QCOMPARE(
            shelf.app.prompter.texts(),
            QStringList{
                "Подтвердите удаление должника на Аудио диск № 12:\n'Кино - Группа крови'\nДолжник: Анна"});
        // The loan was closed before the question was asked, and stays closed; the disc
        // keeps its mark.
        QVERIFY(shelf.disc(Category::Audio, 12).lent);
        QCOMPARE(shelf.openLoans(), 0);
        QCOMPARE(shelf.scalar("SELECT ДатаВозвратаРеальная FROM Должники").toString(), "2026-11-22");
        QCOMPARE(window.number()->text(), "12");
        QVERIFY(window.dialog.changed());
    }

    void startingCategory_data()
    {
        QTest::addColumn<QString>("start");
        QTest::addColumn<int>("checked");
        QTest::addColumn<QString>("title");
        QTest::newRow("none") << "" << 0 << "Кино - Группа крови";
        QTest::newRow("AD") << "AD" << 0 << "Кино - Группа крови";
        QTest::newRow("PC") << "PC" << 1 << "Rock'n'Roll Racing";
        QTest::newRow("DVD") << "DVD" << 2 << "Брат";
    }

    void startingCategory()
    {
        QFETCH(QString, start);
        QFETCH(int, checked);
        QFETCH(QString, title);
        Shelf shelf;
        frmAddInDueFromMain dialog(shelf.app.ctx, DiscPicker(), start);
        dialog.show();
        for (int i = 0; i < 3; ++i) {
            QCOMPARE(dialog.findChild<QRadioButton*>(QStringLiteral("optCategory%1").arg(i))->isChecked(),
                     i == checked);
        }
        QVERIFY(dialog.findChild<QRadioButton*>("optMethod0")->isChecked());
        shelf.app.prompter.answer(Answer::Cancel);
        auto* number = dialog.findChild<QLineEdit*>("txtNumber");
        QTest::keyClicks(number, "12");
        QTest::keyClick(number, Qt::Key_Enter); // the keypad's Enter
        QCOMPARE(shelf.app.prompter.texts(),
                 QStringList{"Подтвердите добавление должника на диск № 12:\n'" + title + "'"});
    }

    void pickingADisc_data()
    {
        QTest::addColumn<bool>("adding");
        QTest::addColumn<Category>("category");
        QTest::addColumn<int>("mode");
        QTest::newRow("to lend") << true << Category::Computer << int(PickMode::OnShelf);
        QTest::newRow("to take back") << false << Category::Dvd << int(PickMode::Lent);
    }

    void pickingADisc()
    {
        QFETCH(bool, adding);
        QFETCH(Category, category);
        Shelf shelf;
        Window window(shelf, category, adding);
        auto* pick = window.dialog.findChild<QPushButton*>("imgButton2");
        window.number()->setText("5");
        QTest::mouseClick(pick, Qt::LeftButton); // cancelled: the number stays
        QCOMPARE(window.number()->text(), "5");
        window.picked = 20;
        QTest::mouseClick(pick, Qt::LeftButton);
        QCOMPARE(window.number()->text(), "20");
        QCOMPARE(window.picks.size(), 2);
        QCOMPARE(window.picks.last().first, category);
        QTEST(int(window.picks.last().second), "mode");
        QVERIFY(shelf.app.prompter.texts().isEmpty()); // picking asks nothing by itself
    }

    void choosingAnOptionGoesToTheNumber()
    {
        Shelf shelf;
        Window window(shelf, Category::Audio, true);
        QVERIFY(QTest::qWaitForWindowActive(&window.dialog));
        for (const char* name : {"optCategory2", "optMethod1", "optCategory0"}) {
            window.dialog.findChild<QPushButton*>("imgButton1")->setFocus();
            QTRY_VERIFY(!window.number()->hasFocus());
            QRadioButton* option = window.option(QString::fromLatin1(name));
            QTest::mouseClick(option, Qt::LeftButton, {}, QPoint(8, option->height() / 2));
            QVERIFY(option->isChecked());
            QTRY_VERIFY(window.number()->hasFocus());
        }
    }

    void faultsAreToldWithTheirPlace_data()
    {
        QTest::addColumn<QString>("routine");
        QTest::addColumn<bool>("adding");
        QTest::addColumn<QString>("damage");
        QTest::newRow("finding the disc") << "cmdOK_Click" << true << "DROP TABLE DVD";
        QTest::newRow("closing the loan") << "getDueName" << false << "DROP TABLE Должники";
    }

    void faultsAreToldWithTheirPlace()
    {
        QFETCH(QString, routine);
        QFETCH(bool, adding);
        QFETCH(QString, damage);
        Shelf shelf;
        shelf.lend(Category::Dvd, 12, "Анна", QDate(2026, 11, 2));
        Window window(shelf, Category::Dvd, adding);
        shelf.exec(damage);
        window.number()->setText("12");
        QVERIFY_THROWS_EXCEPTION(ProcessEnded, window.dialog.cmdOK_Click());
        const QString log = cp1251::decode(test::readFile(shelf.app.file("bugreport.log")));
        QVERIFY2(log.contains("frmAddInDueFromMain, " + routine + "()"), qPrintable(log));
    }
};

VINORA_TEST_MAIN(tst_quickloan)
#include "tst_quickloan.moc"
