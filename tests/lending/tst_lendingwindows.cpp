#include "lending/LoanFlows.h"
#include "lending/LoanLedger.h"
#include "lending/frmAddInDue.h"
#include "store/Db.h"
#include "store/Reanimator.h"
#include "support/ScriptedPrompter.h"
#include "support/TestMain.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDateEdit>
#include <QLabel>
#include <QLineEdit>

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
    QVariant scalar(const QString& sql) const
    {
        Db db(app.ctx.MainDBPath);
        return db.scalar(sql);
    }

    test::TestApp app;
};

// Types text as a keyboard would, Cyrillic included (key clicks know only ASCII).
void type(QWidget* widget, const QString& text)
{
    for (const QChar ch : text) {
        QTest::sendKeyEvent(QTest::Press, widget, Qt::Key_unknown, QString(ch), Qt::NoModifier);
        QTest::sendKeyEvent(QTest::Release, widget, Qt::Key_unknown, QString(ch), Qt::NoModifier);
    }
}

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
        type(box, "ан");
        QCOMPARE(box->text(), "Антон");
        QCOMPARE(box->selectedText(), "тон");
        type(box, "н"); // typed over the completed tail
        QCOMPARE(box->text(), "Анна");
        QCOMPARE(box->selectedText(), "а");
        QTest::keyClick(box, Qt::Key_Backspace); // the tail and the last letter typed
        QCOMPARE(box->text(), "Ан");
        QVERIFY(!box->hasSelectedText());
        type(box, "я");
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
        type(nameBox(dialog), "П");
        QCOMPARE(nameBox(dialog)->text(), "Пётр");
        QVERIFY(dialog.findChild<QLabel*>("lblRating3")->isVisible());
        QCOMPARE(dialog.findChild<QLabel*>("lblRating3")->text(), "Плохой");
        nameBox(dialog)->clear();
        type(nameBox(dialog), "Новый");
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
        type(box, "O'Brien \"Бес\" [1]");
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
};

VINORA_TEST_MAIN(tst_lendingwindows)
#include "tst_lendingwindows.moc"
