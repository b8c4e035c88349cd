#include "catalogue/frmSelectCD.h"
#include "store/Db.h"
#include "store/Reanimator.h"
#include "support/ScriptedPrompter.h"
#include "support/TestMain.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

using namespace vinora;

class tst_picker : public QObject
{
    Q_OBJECT

    static void addDiscs(test::TestApp& app)
    {
        Reanimator(app.ctx, 0);
        Db db(app.ctx.MainDBPath);
        db.exec("INSERT INTO Аудио (Номер, Название, Дисков, КодСтиля, Должник) VALUES "
                "(3, 'Один', 1, 1, -1), (12, 'Двойной', 3, 1, 0), (20, 'Третий', 1, 1, -1)");
    }

private slots:
    void modes_data()
    {
        QTest::addColumn<QString>("mode");
        QTest::addColumn<int>("rows");
        QTest::addColumn<QString>("title");
        QTest::newRow("all") << "fullAD" << 3 << "Выбор Аудио диска";
        QTest::newRow("can be lent") << "addAD" << 1 << "Выбор Аудио диска";
        QTest::newRow("on loan") << "delAD" << 2 << "Выбор Аудио диска";
        QTest::newRow("DVD, none") << "fullDVD" << 0 << "Выбор DVD диска";
    }

    void modes()
    {
        QFETCH(QString, mode);
        QFETCH(int, rows);
        test::TestApp app;
        addDiscs(app);
        app.ctx.CatalogueQueryFilter = mode;
        frmSelectCD picker(app.ctx);
        QCOMPARE(picker.rowCount(), rows);
        QTEST(picker.windowTitle(), "title");
        QCOMPARE(picker.findChild<QPushButton*>("imgButton0")->isEnabled(), rows > 0);
    }

    void nameFilterCaption_data()
    {
        QTest::addColumn<QString>("mode");
        QTest::addColumn<QString>("caption");
        QTest::newRow("audio") << QString("fullAD") << "Группа/Исполнитель [запрос]";
        QTest::newRow("DVD") << QString("addDVD") << "Название [запрос]";
    }

    void nameFilterCaption()
    {
        QFETCH(QString, mode);
        QFETCH(QString, caption);
        test::TestApp app;
        addDiscs(app);
        app.ctx.CatalogueQueryFilter = mode;
        frmSelectCD picker(app.ctx);
        QStringList captions;
        for (const QLabel* label : picker.findChildren<QLabel*>()) {
            captions.append(label->text());
        }
        QVERIFY2(captions.contains(caption), qPrintable(captions.join(" | ")));
    }

    void pickTheSecondDiscOfASet()
    {
        test::TestApp app;
        addDiscs(app);
        app.ctx.CatalogueQueryFilter = "fullAD";
        frmSelectCD picker(app.ctx);
        auto* number = picker.findChild<QLineEdit*>("txtNumber");
        number->setText("12");
        QTest::keyClick(number, Qt::Key_Return);
        auto* discs = picker.findChild<QComboBox*>("cmbCountCD");
        QCOMPARE(discs->count(), 3);
        QVERIFY(discs->isEnabled());
        discs->setCurrentIndex(1);
        picker.cmdOK();
        QCOMPARE(app.ctx.PickedDisc, "12:2");
        QCOMPARE(app.ctx.CatalogueQueryFilter, QString());
    }

    void filterAndCancel()
    {
        test::TestApp app;
        addDiscs(app);
        app.ctx.CatalogueQueryFilter = "fullAD";
        app.ctx.PickedDisc = "old";
        frmSelectCD picker(app.ctx);
        auto* name = picker.findChild<QLineEdit*>("txtName");
        name->setText("нет такого");
        emit name->textEdited(name->text());
        QCOMPARE(picker.rowCount(), 0);
        QVERIFY(!picker.findChild<QPushButton*>("imgButton0")->isEnabled());
        QCOMPARE(picker.windowTitle(), "Выбор Аудио диска - Результат запроса");
        name->clear();
        emit name->textEdited(QString());
        QCOMPARE(picker.rowCount(), 3);
        picker.reject();
        QCOMPARE(app.ctx.PickedDisc, QString());
    }
};

VINORA_TEST_MAIN(tst_picker)
#include "tst_picker.moc"
