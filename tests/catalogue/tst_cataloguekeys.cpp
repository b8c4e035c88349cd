#include "catalogue/frmAddCD.h"
#include "catalogue/frmAddInCatalogue.h"
#include "catalogue/frmChangeNumber.h"
#include "store/Db.h"
#include "store/Reanimator.h"
#include "store/Schema.h"
#include "support/ScriptedPrompter.h"
#include "support/TestMain.h"

#include <QApplication>
#include <QComboBox>
#include <QLineEdit>

using namespace vinora;

namespace {

// A catalogue database and a dialog on screen, driven with the keyboard.
struct Keys
{
    test::TestApp app;
    Keys() { Reanimator(app.ctx, 0); }

    void add(Category category, int number, const QString& name)
    {
        const CatalogueKind& kind = catalogueKind(category);
        Db db(app.ctx.MainDBPath);
        db.exec("INSERT INTO " + quoted(kind.info().table) + " (Номер, Название, Дисков, " +
                    quoted(kind.dictionaryKey) + ") VALUES (?, ?, 1, 1)",
                {number, name});
    }
    QString discs(Category category)
    {
        Db db(app.ctx.MainDBPath);
        return db
            .scalar("SELECT group_concat(Номер || ' ' || Название, ', ') FROM (SELECT * FROM " +
                    quoted(catalogueKind(category).info().table) + " ORDER BY Номер)")
            .toString();
    }
};

void showActive(QWidget& window)
{
    window.show();
    window.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&window));
}

QString focusName()
{
    return QApplication::focusWidget() ? QApplication::focusWidget()->objectName() : QString();
}

void pressEnter()
{
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
}

} // namespace

class tst_cataloguekeys : public QObject
{
    Q_OBJECT

private slots:
    void changeNumberWithEnter()
    {
        Keys k;
        k.add(Category::Audio, 5, "Пятый");
        k.add(Category::Audio, 7, "Седьмой");
        frmChangeNumber dialog(k.app.ctx);
        showActive(dialog);
        auto* oldBox = dialog.findChild<QLineEdit*>("txtNumberOld");
        oldBox->setFocus();
        QTest::keyClicks(oldBox, "5");
        pressEnter();
        QCOMPARE(focusName(), "txtNumberNew"); // Enter only moves on
        QCOMPARE(k.app.prompter.texts(), QStringList());
        QTest::keyClicks(QApplication::focusWidget(), "9");
        k.app.prompter.answer(Answer::Ok);
        pressEnter();
        QCOMPARE(k.app.prompter.texts(), (QStringList{"Подтвердите изменение диска № 5:\n'Пятый' на № 9.",
                                                      "Диск № 5 был успешно изменен на № 9."}));
        QCOMPARE(k.discs(Category::Audio), "7 Седьмой, 9 Пятый");
        QCOMPARE(focusName(), "txtNumberOld");
        QVERIFY(dialog.isVisible()); // ready for the next change
    }

    void addDialogWithEnter()
    {
        Keys k;
        k.add(Category::Computer, 1, "Один");
        frmAddCD dialog(k.app.ctx, Category::Computer);
        showActive(dialog);
        k.app.prompter.shown.clear(); // the missing drive
        auto* number = dialog.findChild<QLineEdit*>("txtNumber");
        number->setFocus();
        number->selectAll();
        QTest::keyClicks(number, "0");
        pressEnter();
        QCOMPARE(k.app.prompter.texts(), QStringList{"Указан не верный номер диска. Повторите ввод."});
        number->selectAll();
        QTest::keyClicks(number, "1");
        k.app.prompter.answer(Answer::Yes);
        pressEnter();
        QCOMPARE(k.app.prompter.texts().size(), 2);
        QCOMPARE(k.app.ctx.ShiftStart, qint16(1));
        QCOMPARE(dialog.result(), int(QDialog::Accepted));
    }

    void editorWalksItsFieldsWithEnter_data()
    {
        QTest::addColumn<int>("category");
        QTest::addColumn<QStringList>("order");
        QTest::newRow("audio") << int(Category::Audio)
                               << QStringList{"txtName", "txtAlbum", "txtYear", "txtTrack",
                                              "txtCDs",  "txtTime",  "txtStyle"};
        QTest::newRow("computer") << int(Category::Computer)
                                  << QStringList{"txtName", "txtYear", "txtCDs", "txtDescription2",
                                                 "txtDescription"};
        QTest::newRow("DVD") << int(Category::Dvd)
                             << QStringList{"txtName", "txtYear", "txtCDs",  "txtDescription",
                                            "txtTime", "cmbZone", "txtGenre"};
    }

    void editorWalksItsFieldsWithEnter()
    {
        QFETCH(int, category);
        QFETCH(QStringList, order);
        const auto which = static_cast<Category>(category);
        Keys k;
        frmAddInCatalogue editor(k.app.ctx, which, frmAddInCatalogue::Mode::Add, 4);
        showActive(editor);
        editor.findChild<QWidget*>("txtName")->setFocus();
        QTest::keyClicks(QApplication::focusWidget(), "Name");
        for (qsizetype i = 0; i + 1 < order.size(); ++i) {
            QCOMPARE(focusName(), order[i]);
            pressEnter();
            QVERIFY2(!k.app.ctx.DialogDone, qPrintable(order[i])); // never saved from the middle
        }
        QCOMPARE(focusName(), order.last());
        QCOMPARE(k.discs(which), QString());
        pressEnter();
        QVERIFY(k.app.ctx.DialogDone);
        QCOMPARE(k.discs(which), "4 Name");
        QCOMPARE(k.app.prompter.texts(), QStringList());
    }

    void spinnerArrowsTakeNoFocus_data()
    {
        QTest::addColumn<int>("category");
        QTest::addColumn<QString>("field");
        QTest::addColumn<QString>("next");
        QTest::newRow("audio year") << int(Category::Audio) << QString("txtYear") << "txtTrack";
        QTest::newRow("audio time, one disc") << int(Category::Audio) << QString("txtTime") << "txtStyle";
        QTest::newRow("computer discs") << int(Category::Computer) << QString("txtCDs") << "txtDescription2";
        QTest::newRow("DVD time") << int(Category::Dvd) << QString("txtTime") << "cmbZone";
    }

    void spinnerArrowsTakeNoFocus()
    {
        QFETCH(int, category);
        QFETCH(QString, field);
        Keys k;
        frmAddInCatalogue editor(k.app.ctx, static_cast<Category>(category), frmAddInCatalogue::Mode::Add, 1);
        showActive(editor);
        editor.findChild<QWidget*>(field)->setFocus();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
        QTEST(focusName(), "next");
    }

    void enterOutsideTheFieldsDoesNotSave()
    {
        Keys k;
        frmAddInCatalogue editor(k.app.ctx, Category::Audio, frmAddInCatalogue::Mode::Add, 2);
        showActive(editor);
        editor.findChild<QLineEdit*>("txtName")->setText("Name");
        editor.findChild<QLineEdit*>("txtCDs")->setText("2"); // the disc of the set can be chosen
        editor.findChild<QComboBox*>("cmbCountCD")->setFocus();
        QCOMPARE(focusName(), "cmbCountCD");
        pressEnter();
        QVERIFY(!k.app.ctx.DialogDone);
        QVERIFY(editor.isVisible());
        QCOMPARE(k.discs(Category::Audio), QString());
    }
};

VINORA_TEST_MAIN(tst_cataloguekeys)
#include "tst_cataloguekeys.moc"
