#include "catalogue/Numbering.h"
#include "catalogue/frmChangeNumber.h"
#include "store/Db.h"
#include "store/Reanimator.h"
#include "store/Schema.h"
#include "support/ScriptedPrompter.h"
#include "support/TestFolders.h"
#include "support/TestMain.h"

#include <QDir>
#include <QLineEdit>
#include <QRadioButton>

using namespace vinora;

namespace {

struct Numbers
{
    test::TestApp app;
    Numbers() { Reanimator(app.ctx, 0); }

    void add(Category category, int number, const QString& name, const QString& album = {})
    {
        const CatalogueKind& kind = catalogueKind(category);
        Db db(app.ctx.MainDBPath);
        db.exec("INSERT INTO " + quoted(kind.info().table) + " (Номер, Название, " +
                    quoted(kind.dictionaryKey) + ") VALUES (?, ?, 1)",
                {number, name});
        if (!album.isEmpty()) {
            db.exec("UPDATE Аудио SET Альбом = ? WHERE Номер = ?", {album, number});
        }
    }
    QList<int> numbers(Category category)
    {
        Db db(app.ctx.MainDBPath);
        QSqlQuery q = db.query("SELECT Номер FROM " + quoted(catalogueKind(category).info().table) +
                               " ORDER BY " + quoted(catalogueKind(category).info().keyField));
        QList<int> list;
        while (q.next()) {
            list.append(q.value(0).toInt());
        }
        return list;
    }
    QString cover(const QString& name) const { return app.file("box/" + name + ".box"); }
};

} // namespace

class tst_numbering : public QObject
{
    Q_OBJECT

private slots:
    void firstFree()
    {
        Numbers n;
        Db empty(n.app.ctx.MainDBPath);
        QCOMPARE(firstFreeNumber(empty, catalogueKind(Category::Audio)), 1);
        n.add(Category::Audio, 1, "A");
        n.add(Category::Audio, 2, "B");
        n.add(Category::Audio, 4, "D");
        n.add(Category::Dvd, 1, "Film");
        Db db(n.app.ctx.MainDBPath);
        QCOMPARE(firstFreeNumber(db, catalogueKind(Category::Audio)), 3);
        QCOMPARE(firstFreeNumber(db, catalogueKind(Category::Dvd)), 2);
        QCOMPARE(firstFreeNumber(db, catalogueKind(Category::Computer)), 1);
    }

    void shiftMakesRoom()
    {
        Numbers n;
        n.add(Category::Computer, 1, "A");
        n.add(Category::Computer, 2, "B");
        n.add(Category::Computer, 3, "C");
        test::writeFile(n.cover("dvd_2"), "two");
        test::writeFile(n.cover("dvd_3"), "three");
        test::writeFile(n.cover("pc_2"), "pc two");
        qint16 start = 2;
        MoveNumbers(n.app.ctx, Category::Computer, start);
        QCOMPARE(start, qint16(0));
        QCOMPARE(n.numbers(Category::Computer), (QList<int>{1, 3, 4}));
        // The covers named dvd_ move, whichever catalogue is renumbered; its own stay.
        QCOMPARE(test::readFile(n.cover("dvd_3")), QByteArray("two"));
        QCOMPARE(test::readFile(n.cover("dvd_4")), QByteArray("three"));
        QVERIFY(!QFile::exists(n.cover("dvd_2")));
        QCOMPARE(test::readFile(n.cover("pc_2")), QByteArray("pc two"));
    }

    void changeNumber_data()
    {
        QTest::addColumn<int>("category");
        QTest::newRow("audio") << int(Category::Audio);
        QTest::newRow("computer") << int(Category::Computer);
        QTest::newRow("DVD") << int(Category::Dvd);
    }

    void changeNumber()
    {
        QFETCH(int, category);
        const auto which = static_cast<Category>(category);
        Numbers n;
        n.add(which, 5, "Пятый", "Live");
        n.add(which, 7, "Седьмой");
        test::writeFile(n.cover("dvd_5"), "five");
        frmChangeNumber dialog(n.app.ctx);
        dialog.findChild<QRadioButton*>(QStringLiteral("optCategory%1").arg(category))->setChecked(true);
        auto* oldBox = dialog.findChild<QLineEdit*>("txtNumberOld");
        auto* newBox = dialog.findChild<QLineEdit*>("txtNumberNew");
        const QString title = which == Category::Audio ? QString("Пятый - Live") : QString("Пятый");

        // A free number: a move, the cover following.
        oldBox->setText("5");
        newBox->setText("9");
        n.app.prompter.answer(Answer::Ok);
        dialog.cmdOK();
        QCOMPARE(n.app.prompter.shown[0].text, "Подтвердите изменение диска № 5:\n'" + title + "' на № 9.");
        QCOMPARE(n.app.prompter.shown[1].text, "Диск № 5 был успешно изменен на № 9.");
        QCOMPARE(n.numbers(which), (QList<int>{9, 7}));
        QCOMPARE(test::readFile(n.cover("dvd_9")), QByteArray("five"));
        QCOMPARE(oldBox->text(), QString());

        // A taken number: a swap, the one cover moving over.
        oldBox->setText("9");
        newBox->setText("7");
        n.app.prompter.answer(Answer::Yes);
        dialog.cmdOK();
        QCOMPARE(n.app.prompter.shown[2].text,
                 "Поменять местами диск № 9:\n'" + title + "' и № 7:\n'Седьмой'?");
        QCOMPARE(n.numbers(which), (QList<int>{7, 9}));
        QCOMPARE(test::readFile(n.cover("dvd_7")), QByteArray("five"));
        QVERIFY(!QFile::exists(n.cover("dvd_9")));
        QVERIFY(!QFile::exists(n.cover("dvd_0")));

        // The same number in both boxes takes the swap path.
        oldBox->setText("7");
        newBox->setText("7");
        n.app.prompter.answer(Answer::No);
        dialog.cmdOK();
        QCOMPARE(n.app.prompter.shown.last().text,
                 "Поменять местами диск № 7:\n'" + title + "' и № 7:\n'" + title + "'?");
    }

    void coverThatCannotMoveStays_data()
    {
        QTest::addColumn<QString>("renumbering");
        QTest::addColumn<QString>("blocked"); // a folder standing where the cover would go
        QTest::newRow("move") << QString("move") << "dvd_9";
        QTest::newRow("shift") << QString("shift") << "dvd_6";
        QTest::newRow("swap") << QString("swap") << "dvd_0";
    }

    void coverThatCannotMoveStays()
    {
        QFETCH(QString, renumbering);
        QFETCH(QString, blocked);
        Numbers n;
        for (int number = 1; number <= 5; ++number) {
            n.add(Category::Dvd, number, QStringLiteral("Диск %1").arg(number));
        }
        test::writeFile(n.cover("dvd_5"), "five");
        test::writeFile(n.cover("dvd_2"), "two");
        QVERIFY(QDir().mkpath(n.cover(blocked)));
        const CatalogueKind& kind = catalogueKind(Category::Dvd);
        if (renumbering == "move") {
            moveNumber(n.app.ctx, kind, 5, 9);
        } else if (renumbering == "shift") {
            qint16 start = 5;
            MoveNumbers(n.app.ctx, Category::Dvd, start);
        } else {
            swapNumbers(n.app.ctx, kind, 5, 2);
        }
        QCOMPARE(test::readFile(n.cover("dvd_5")), QByteArray("five"));
        QCOMPARE(test::readFile(n.cover("dvd_2")), QByteArray("two"));
    }

    void refusals()
    {
        Numbers n;
        n.add(Category::Audio, 1, "One");
        frmChangeNumber dialog(n.app.ctx);
        auto* oldBox = dialog.findChild<QLineEdit*>("txtNumberOld");
        auto* newBox = dialog.findChild<QLineEdit*>("txtNumberNew");
        QTest::keyClicks(oldBox, "1a-2");
        QCOMPARE(oldBox->text(), "12");
        oldBox->clear();
        dialog.cmdOK();
        QCOMPARE(n.app.prompter.texts().last(),
                 "Указан не верный номер диска для изменения. Повторите ввод.");
        oldBox->setText("1");
        newBox->setText("0");
        dialog.cmdOK();
        QCOMPARE(n.app.prompter.texts().last(), "Указан не верный новый номер диска. Повторите ввод.");
        oldBox->setText("44");
        newBox->setText("2");
        dialog.cmdOK();
        QCOMPARE(n.app.prompter.texts().last(), "Диск № 44 отсутствует в каталоге.");
        QCOMPARE(n.numbers(Category::Audio), QList<int>{1});
    }
};

VINORA_TEST_MAIN(tst_numbering)
#include "tst_numbering.moc"
