#include "lending/LoanFlows.h"
#include "lending/LoanLedger.h"
#include "lending/frmAddInDue.h"
#include "lending/frmDiskHistory.h"
#include "lending/frmEditDue.h"
#include "store/Db.h"
#include "store/Reanimator.h"
#include "support/DataRows.h"
#include "support/ScriptedPrompter.h"
#include "support/TestMain.h"
#include "support/Widgets.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QLabel>
#include <QLineEdit>
#include <QTableWidget>
#include <QTreeWidget>

using namespace vinora;

namespace {

struct Shelf
{
    Shelf()
    {
        Reanimator(app.ctx, 0);
        Db db(app.ctx.MainDBPath);
        db.exec("INSERT INTO Аудио (Номер, Название, Альбом, Дисков, КодСтиля) VALUES (12, 'Кино', 'Группа крови', 1, 1)");
        // Borrowers in the table's order, which completion follows (not the alphabet).
        for (const char* name : {"Антон", "Анна", "Борис", "Пётр"}) {
            db.exec("INSERT INTO ИменаДолжников (Имя, Телефон) VALUES (?, 'нет')", {QString::fromUtf8(name)});
        }
    }
    LoanDisc disc() const
    {
        Db db(app.ctx.MainDBPath);
        return *findLoanDisc(db, Category::Audio, 12);
    }
    QVariant scalar(const QString& sql) const { return Db(app.ctx.MainDBPath).scalar(sql); }

    test::TestApp app;
};

QLineEdit* nameBox(const frmAddInDue& dialog)
{
    return dialog.findChild<QComboBox*>("txtFIO")->lineEdit();
}

} // namespace

class tst_lendingwindows : public QObject
{
    Q_OBJECT

private slots:
    void nameCompletionFollowsTheTableOrder()
    {
        Shelf shelf;
        frmAddInDue dialog(shelf.app.ctx, shelf.disc());
        dialog.show();
        QLineEdit* box = nameBox(dialog);
        box->setFocus();
        test::typeText(box, "ан");
        QCOMPARE(box->text(), "Антон");
        QCOMPARE(box->selectedText(), "тон");
        test::typeText(box, "н"); // typed over the completed tail
        QCOMPARE(box->text(), "Анна");
        QCOMPARE(box->selectedText(), "а");
        QTest::keyClick(box, Qt::Key_Backspace); // the tail and the last letter typed
        QCOMPARE(box->text(), "Ан");
        QVERIFY(!box->hasSelectedText());
        test::typeText(box, "я");
        QCOMPARE(box->text(), "Аня"); // a new name: nothing to complete
    }

    void warningForALateBorrower()
    {
        Shelf shelf;
        {
            Db db(shelf.app.ctx.MainDBPath);
            // Пётр: 13 days late once, one disc still out: (13 + 0) / 2 = 6,5 -> 6.
            db.exec("INSERT INTO Должники (КодИмяДолжника, КодДиска, Категория, ДатаВозврата, ДатаВозвратаРеальная, "
                    "Долг) VALUES (4, 1, 'AD', '2026-01-01', '2026-01-14', 0)");
            db.exec("INSERT INTO Должники (КодИмяДолжника, КодДиска, Категория, Долг) VALUES (4, 7, 'PC', -1)");
        }
        frmAddInDue dialog(shelf.app.ctx, shelf.disc());
        dialog.show();
        test::typeText(nameBox(dialog), "П");
        QCOMPARE(nameBox(dialog)->text(), "Пётр");
        QVERIFY(dialog.findChild<QLabel*>("lblRating3")->isVisible());
        QCOMPARE(dialog.findChild<QLabel*>("lblRating3")->text(), "Плохой");
        nameBox(dialog)->clear();
        test::typeText(nameBox(dialog), "Новый");
        QVERIFY(!dialog.findChild<QLabel*>("lblRating3")->isVisible());
    }

    void lendingWithEnter_data()
    {
        QTest::addColumn<bool>("withoutTerm");
        QTest::addColumn<QVariant>("due");
        QTest::newRow("until a day") << false << QVariant("2026-11-30");
        QTest::newRow("without term") << true << QVariant();
    }

    void lendingWithEnter()
    {
        QFETCH(bool, withoutTerm);
        QFETCH(QVariant, due);
        Shelf shelf;
        frmAddInDue dialog(shelf.app.ctx, shelf.disc());
        dialog.show();
        auto* picker = dialog.findChild<QDateEdit*>("dtpBackDate");
        QCOMPARE(picker->minimumDate(), QDate(2026, 11, 22)); // never a day before today
        picker->setDate(QDate(2026, 11, 30));
        dialog.findChild<QCheckBox*>("chDueNonStop")->setChecked(withoutTerm);
        QCOMPARE(picker->isEnabled(), !withoutTerm);
        QLineEdit* box = nameBox(dialog);
        test::typeText(box, "O'Brien \"Бес\" [1]");
        QTest::keyClick(box, Qt::Key_Return);
        QCOMPARE(dialog.result(), int(QDialog::Accepted));
        QVERIFY(shelf.app.ctx.DialogDone);
        QCOMPARE(shelf.scalar("SELECT Должник FROM Аудио").toInt(), -1);
        QCOMPARE(shelf.scalar("SELECT n.Имя FROM Должники l JOIN ИменаДолжников n ON n.КодИмени = l.КодИмяДолжника "
                              "WHERE l.Долг <> 0")
                     .toString(),
                 "O'Brien \"Бес\" [1]");
        QCOMPARE(shelf.scalar("SELECT ДатаВозврата FROM Должники").isNull(), due.isNull());
        QCOMPARE(shelf.scalar("SELECT ДатаВозврата FROM Должники").toString(), due.toString());
    }

    void escapeLeavesWithoutALoan()
    {
        Shelf shelf;
        frmAddInDue dialog(shelf.app.ctx, shelf.disc());
        dialog.show();
        test::typeText(nameBox(dialog), "Борис");
        QTest::keyClick(nameBox(dialog), Qt::Key_Escape);
        QCOMPARE(dialog.result(), int(QDialog::Rejected));
        QVERIFY(!shelf.app.ctx.DialogDone);
        QCOMPARE(shelf.scalar("SELECT COUNT(*) FROM Должники").toInt(), 0);
        QCOMPARE(shelf.scalar("SELECT Должник FROM Аудио").toInt(), 0);
    }

    void aNameIsRequired()
    {
        Shelf shelf;
        frmAddInDue dialog(shelf.app.ctx, shelf.disc());
        dialog.show();
        QTest::keyClick(nameBox(dialog), Qt::Key_Return);
        QCOMPARE(shelf.app.prompter.texts().value(0),
                 "Введите или выберите из списка имя должника.\nДанное поле является обязательным для заполнения.");
        QVERIFY(!shelf.app.ctx.DialogDone);
        QCOMPARE(shelf.scalar("SELECT COUNT(*) FROM Должники").toInt(), 0);
    }

    void theCatalogueCommandLendsAndTakesBack()
    {
        Shelf shelf;
        const qint64 key = shelf.disc().key;
        const QString place = "frmCatalogueAudioCD, cmdDue()";
        shelf.app.prompter.answer(Answer::No);
        QVERIFY(!lendOrTakeBack(shelf.app.ctx, Category::Audio, key, place, nullptr));
        QCOMPARE(shelf.app.prompter.texts().value(0), "Добавить должника на диск № 12?");

        shelf.app.prompter.answer(Answer::Yes);
        shelf.app.prompter.handleModal([](QDialog& dialog) {
            static_cast<QComboBox*>(dialog.findChild<QComboBox*>("txtFIO"))->setEditText("Борис");
            static_cast<frmAddInDue&>(dialog).cmdAdd();
            return dialog.result();
        });
        QVERIFY(lendOrTakeBack(shelf.app.ctx, Category::Audio, key, place, nullptr));
        QVERIFY(!shelf.app.ctx.DialogDone); // read and cleared
        QCOMPARE(shelf.scalar("SELECT COUNT(*) FROM Должники WHERE Долг <> 0").toInt(), 1);

        shelf.app.prompter.answer(Answer::Yes);
        QVERIFY(lendOrTakeBack(shelf.app.ctx, Category::Audio, key, place, nullptr));
        QCOMPARE(shelf.app.prompter.texts().last(), "Удалить должника с диска № 12?");
        QCOMPARE(shelf.scalar("SELECT Должник FROM Аудио").toInt(), 0);
        QCOMPARE(shelf.scalar("SELECT ДатаВозвратаРеальная FROM Должники").toString(), "2026-11-22");
    }

    void changeOfTerm()
    {
        Shelf shelf;
        {
            Db db(shelf.app.ctx.MainDBPath);
            lendDisc(db, shelf.disc(), "Анна", std::nullopt, QDate(2026, 11, 1));
        }
        frmAddInDue dialog(shelf.app.ctx, shelf.disc(), "Анна", std::nullopt);
        dialog.show();
        QCOMPARE(dialog.findChild<QLabel*>("lblDoNewBackDate")->text(),
                 "Ранее установленная дата возврата:\nбессрочный долг");
        QVERIFY(!dialog.findChild<QComboBox*>("txtFIO")->isEnabled());
        QVERIFY(dialog.findChild<QCheckBox*>("chDueNonStop")->isChecked());
        dialog.findChild<QCheckBox*>("chDueNonStop")->setChecked(false);
        dialog.findChild<QDateEdit*>("dtpBackDate")->setDate(QDate(2026, 12, 24));
        dialog.cmdAdd();
        QCOMPARE(shelf.scalar("SELECT ДатаВозврата FROM Должники").toString(), "2026-12-24");
        QCOMPARE(shelf.scalar("SELECT COUNT(*) FROM ИменаДолжников").toInt(), 4);
    }

    void borrowerNames_data()
    {
        QTest::addColumn<QList<std::optional<QString>>>("typed"); // the names typed, in turn
        QTest::addColumn<QList<Answer>>("answers"); // to "уже существует. Ввести другое?"
        QTest::addColumn<QStringList>("names");
        QTest::addColumn<QStringList>("messages");
        const QString fifty(50, u'ж');
        const QStringList four{"Анна", "Антон", "Борис", "Пётр"};
        const auto row = test::addRow<QList<std::optional<QString>>, QList<Answer>, QStringList, QStringList>;
        row("new name", {"Вера"}, {}, {"Анна", "Антон", "Борис", "Вера", "Пётр"}, {});
        row("50 characters", {fifty}, {}, {"Анна", "Антон", "Борис", fifty, "Пётр"}, {});
        row("51 characters, then cancelled", {fifty + "ж", std::nullopt}, {}, four,
            {"Имя должника не должно быть длинее 50 символов!"});
        row("taken, another typed", {"борис", "Глеб"}, {Answer::Yes},
            {"Анна", "Антон", "Борис", "Глеб", "Пётр"},
            {"Должник с именем 'борис' уже существует. Ввести другое?"});
        row("taken, given up", {"Анна"}, {Answer::No}, four,
            {"Должник с именем 'Анна' уже существует. Ввести другое?"});
    }

    void borrowerNames()
    {
        QFETCH(QList<std::optional<QString>>, typed);
        QFETCH(QList<Answer>, answers);
        QFETCH(QStringList, names);
        QFETCH(QStringList, messages);
        Shelf shelf;
        for (const std::optional<QString>& name : typed) {
            shelf.app.prompter.answerInput(name);
        }
        for (const Answer answer : answers) {
            shelf.app.prompter.answer(answer);
        }
        frmEditDue dialog(shelf.app.ctx);
        dialog.cmdAddName();
        QStringList shown = shelf.app.prompter.texts();
        QCOMPARE(shown.removeAll("Введите имя должника:"), typed.size()); // asked once per name typed
        QCOMPARE(shown, messages);
        Db db(shelf.app.ctx.MainDBPath);
        QCOMPARE(db.texts("SELECT Имя FROM ИменаДолжников ORDER BY Имя"), names);
        if (names.size() == 5) {
            QCOMPARE(dialog.current()->name, typed.last().value()); // the new row is the current one
        }
    }

    void deletingABorrower()
    {
        Shelf shelf;
        {
            Db db(shelf.app.ctx.MainDBPath);
            lendDisc(db, shelf.disc(), "Пётр", std::nullopt, QDate(2026, 11, 1));
            db.exec("INSERT INTO Должники (КодИмяДолжника, КодДиска, Категория, Долг) VALUES (3, 5, 'PC', 0)");
        }
        frmEditDue dialog(shelf.app.ctx);
        auto* grid = dialog.findChild<QTableWidget*>("DBGrid");
        grid->setCurrentCell(3, 0); // Пётр, the last row, with a disc out
        shelf.app.prompter.answer(Answer::Yes);
        dialog.cmdDelete();
        QCOMPARE(shelf.app.prompter.texts().last(),
                 "Должник 'Пётр' не может быть удален, т.к. за ним числится один или более долгов.");
        QCOMPARE(grid->rowCount(), 4);

        grid->setCurrentCell(2, 0); // Борис: a returned loan, which goes with him
        shelf.app.prompter.answer(Answer::Yes);
        dialog.cmdDelete();
        QCOMPARE(shelf.app.prompter.texts().last(),
                 "Вы действительно хотите удалить должника 'Борис'?\nСтатистическая информация будет также удалена.");
        QCOMPARE(shelf.scalar("SELECT COUNT(*) FROM Должники WHERE КодИмяДолжника = 3").toInt(), 0);
        QCOMPARE(dialog.current()->name, "Пётр"); // the next row
        {
            Db db(shelf.app.ctx.MainDBPath);
            returnDisc(db, Category::Audio, shelf.disc().key, QDate(2026, 11, 20));
        }
        shelf.app.prompter.answer(Answer::Yes);
        dialog.cmdDelete();
        QCOMPARE(dialog.current()->name, "Антон"); // the last row gone: the new last one
    }

    void phoneOfABorrower()
    {
        Shelf shelf;
        frmEditDue dialog(shelf.app.ctx);
        dialog.show();
        auto* phone = dialog.findChild<QLineEdit*>("txtTelephone");
        QCOMPARE(phone->text(), "нет");
        phone->setFocus();
        QTRY_VERIFY(phone->hasFocus());
        QCOMPARE(phone->text(), ""); // "нет" steps aside for typing
        test::typeText(phone, "+7 (812) 555-01-02-99");
        QCOMPARE(phone->text(), "+7 (812) 555-01"); // 15 characters, as stored
        QTest::keyClick(phone, Qt::Key_Return);
        QCOMPARE(shelf.app.prompter.texts().value(0), "Телефон должника 'Анна' был успешно изменен.");
        QCOMPARE(shelf.scalar("SELECT Телефон FROM ИменаДолжников WHERE Имя = 'Анна'").toString(), "+7 (812) 555-01");
    }

    void historyOfADisc()
    {
        Shelf shelf;
        {
            Db db(shelf.app.ctx.MainDBPath);
            lendDisc(db, shelf.disc(), "Анна", std::nullopt, QDate(2026, 10, 1));
            returnDisc(db, Category::Audio, shelf.disc().key, QDate(2026, 10, 15));
            lendDisc(db, shelf.disc(), "Борис", std::nullopt, QDate(2026, 11, 2));
            db.exec("INSERT INTO DVD (Номер, Название, Дисков, КодЖанр) VALUES (12, 'Фильм', 1, 1)");
        }
        frmDiskHistory dialog(shelf.app.ctx, [](Category, PickMode) { return 0; });
        dialog.show();
        auto* number = dialog.findChild<QLineEdit*>("txtNumber");
        QTest::keyClick(number, Qt::Key_Return);
        QCOMPARE(shelf.app.prompter.texts().value(0), "Введите номер диска!");
        test::typeText(number, "12");
        QTest::keyClick(number, Qt::Key_Return);
        QCOMPARE(dialog.findChild<QLabel*>("lblHistory")->text(), "История диска № 12:");
        auto* list = dialog.findChild<QTreeWidget*>("lvHistory");
        QCOMPARE(list->topLevelItemCount(), 2);
        QCOMPARE(list->topLevelItem(0)->text(0), "Анна");
        QCOMPARE(list->topLevelItem(0)->text(2), "15.10.2026");
        QCOMPARE(list->topLevelItem(1)->text(1), "02.11.2026");
        QCOMPARE(list->topLevelItem(1)->text(2), "нет"); // still out

        dialog.findChild<QWidget*>("optCategory2")->setProperty("checked", true);
        dialog.cmdShow();
        QVERIFY(dialog.findChild<QLabel*>("txtNoHistory")->isVisible());
        QCOMPARE(dialog.findChild<QLabel*>("txtNoHistory")->text(), "Диск № 12 не одалживался!");

        dialog.findChild<QWidget*>("optCategory1")->setProperty("checked", true);
        dialog.cmdShow();
        QCOMPARE(shelf.app.prompter.texts().last(), "Диск № 12 отсутствует в каталоге.");
    }
};

VINORA_TEST_MAIN(tst_lendingwindows)
#include "tst_lendingwindows.moc"
