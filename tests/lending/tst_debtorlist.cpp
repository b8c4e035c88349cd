#include "lending/LoanLedger.h"
#include "lending/frmDue.h"
#include "store/Db.h"
#include "store/Reanimator.h"
#include "support/ScriptedPrompter.h"
#include "support/TestMain.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>

using namespace vinora;

namespace {

// Today is 22 November 2026 (the test clock).
struct Ledger
{
    Ledger()
    {
        Reanimator(app.ctx, 0);
        db = std::make_unique<Db>(app.ctx.MainDBPath);
    }
    // Lends disc `number` of `category` (made when missing) to `name`, issued and due as given.
    void lend(Category category, int number, const QString& name, const QDate& issued, std::optional<QDate> due)
    {
        if (!findLoanDisc(*db, category, number)) {
            const QString table = categoryInfo(category).table;
            const QString dictionary = QString::fromUtf8(category == Category::Audio      ? "КодСтиля"
                                                         : category == Category::Computer ? "КодОписания"
                                                                                          : "КодЖанр");
            db->exec("INSERT INTO " + table + " (Номер, Название, Дисков, " + dictionary + ") VALUES (?, ?, 1, 1)",
                     {number, QString("Диск " + QString::number(number))});
        }
        lendDisc(*db, *findLoanDisc(*db, category, number), name, due, issued);
    }
    frmDue& open()
    {
        window = std::make_unique<frmDue>(app.ctx, [](Category, PickMode) { return 0; });
        window->show();
        return *window;
    }
    QStringList names() const
    {
        QStringList shown;
        auto* grid = window->findChild<QTableWidget*>("DBGrid");
        for (int row = 0; row < grid->rowCount(); ++row) {
            shown.append(grid->item(row, 0)->text());
        }
        return shown;
    }
    QString text(const char* name) const
    {
        if (auto* box = window->findChild<QLineEdit*>(QString::fromLatin1(name))) {
            return box->text();
        }
        return window->findChild<QLabel*>(QString::fromLatin1(name))->text();
    }
    bool shown(const char* name) const { return window->findChild<QWidget*>(QString::fromLatin1(name))->isVisible(); }

    test::TestApp app;
    std::unique_ptr<Db> db;
    std::unique_ptr<frmDue> window;
};

const QDate kToday(2026, 11, 22);

} // namespace

class tst_debtorlist : public QObject
{
    Q_OBJECT

private slots:
    void daysOverdueAndTheMark_data()
    {
        QTest::addColumn<QDate>("due"); // invalid: no term
        QTest::addColumn<QString>("days");
        QTest::addColumn<bool>("mark");
        QTest::newRow("due today") << kToday << "нет" << true;
        QTest::newRow("1 day") << kToday.addDays(-1) << "1 день" << true;
        QTest::newRow("22 days") << kToday.addDays(-22) << "22 дня" << true;
        QTest::newRow("111 days") << kToday.addDays(-111) << "111 день" << true;
        QTest::newRow("ahead") << kToday.addDays(3) << "нет" << false;
        QTest::newRow("no term") << QDate() << "нет" << false;
    }

    void daysOverdueAndTheMark()
    {
        QFETCH(QDate, due);
        QFETCH(QString, days);
        QFETCH(bool, mark);
        Ledger l;
        l.lend(Category::Audio, 12, "Анна", QDate(2026, 1, 1), due.isValid() ? std::optional(due) : std::nullopt);
        l.open();
        QCOMPARE(l.text("txtDaysDue"), days);
        QCOMPARE(l.shown("lblDue"), mark);
        QCOMPARE(l.text("lblDue"), "Забрать");
        QCOMPARE(l.text("txtNumber"), "12");
        QCOMPARE(l.text("lblCDsCount1"), "1");
    }

    void sortsAreKeptWhenAsked()
    {
        Ledger l;
        l.lend(Category::Audio, 1, "Борис", QDate(2026, 3, 1), QDate(2026, 12, 1));
        l.lend(Category::Audio, 2, "Анна", QDate(2026, 5, 1), std::nullopt);
        l.lend(Category::Dvd, 1, "Вера", QDate(2026, 1, 1), QDate(2026, 11, 1));
        l.app.ctx.ini().write("Option", "SaveSortedDueList", "1");
        frmDue& w = l.open();
        QCOMPARE(l.names(), (QStringList{"Анна", "Борис", "Вера"}));
        auto* sort = w.findChild<QComboBox*>("cmbSorted");
        sort->setCurrentIndex(2);
        w.findChild<QCheckBox*>("chSortedDESC")->click();
        QCOMPARE(l.names(), (QStringList{"Борис", "Вера", "Анна"})); // by due, latest first, no term last
        w.accept();
        QCOMPARE(l.app.ctx.ini().read("Sorted", "DUEsorted", 5), "2");
        QCOMPARE(l.app.ctx.ini().read("Sorted", "DUEsortedDESC", 5), "1");
        l.open();
        QCOMPARE(l.names(), (QStringList{"Борис", "Вера", "Анна"}));
    }

    void filtersByCatalogueAndBorrower()
    {
        Ledger l;
        l.lend(Category::Audio, 1, "O'Brien \"Бес\" [1]", QDate(2026, 3, 1), std::nullopt);
        l.lend(Category::Dvd, 4, "Вера", QDate(2026, 1, 1), std::nullopt);
        frmDue& w = l.open();
        auto* category = w.findChild<QComboBox*>("cmbCategory");
        w.cmbCategory_Click(category->findText("DVD диск"));
        QCOMPARE(l.names(), QStringList{"Вера"});
        QCOMPARE(w.windowTitle(), "Список должников - Результат запроса");
        QCOMPARE(l.text("lblCDsCount0"), "Должников удовлетворяющих запросу:");
        QVERIFY(w.findChild<QPushButton*>("imgButton5")->isEnabled());

        w.txtDueName_Click("[1]"); // brackets are plain text
        QCOMPARE(l.names(), QStringList{"O'Brien \"Бес\" [1]"});
        w.cmbCategory_Click(category->findText("Компьютерный диск")); // nothing: the list's controls stay
        QCOMPARE(l.names(), QStringList{});
        QVERIFY(l.shown("cmbSorted"));

        w.findChild<QPushButton*>("imgButton5")->click();
        QCOMPARE(w.windowTitle(), "Список должников");
        QCOMPARE(l.names().size(), 2);
        QVERIFY(!w.findChild<QPushButton*>("imgButton5")->isEnabled());
    }

    void noDebtors()
    {
        Ledger l;
        frmDue& w = l.open();
        QVERIFY(!l.shown("cmbSorted"));
        QVERIFY(!w.findChild<QLineEdit*>("txtNumber")->isEnabled());
        QVERIFY(!w.findChild<QPushButton*>("imgButton2")->isEnabled());
        QCOMPARE(l.text("lblDescriptionCD"), "Группа/Исполнитель - Альбом/Название");
    }

    void returnFromTheList()
    {
        Ledger l;
        l.lend(Category::Audio, 1, "Анна", QDate(2026, 3, 1), std::nullopt);
        l.lend(Category::Audio, 2, "Борис", QDate(2026, 3, 1), std::nullopt);
        frmDue& w = l.open();
        l.app.prompter.answer(Answer::Yes);
        w.findChild<QPushButton*>("imgButton2")->click();
        QCOMPARE(l.app.prompter.texts().value(0), "Удалить из списка должника 'Анна'?");
        QCOMPARE(l.names(), QStringList{"Борис"});
        QVERIFY(w.changed());
        QVERIFY(!findLoanDisc(*l.db, Category::Audio, 1)->lent);
        QCOMPARE(l.db->scalar("SELECT ДатаВозвратаРеальная FROM Должники WHERE КодДиска = 1").toString(), "2026-11-22");
    }

    void findingADiscByItsNumber()
    {
        Ledger l;
        l.lend(Category::Audio, 12, "Анна", QDate(2026, 3, 1), std::nullopt);
        l.lend(Category::Dvd, 12, "Борис", QDate(2026, 3, 1), std::nullopt);
        l.lend(Category::Computer, 5, "Вера", QDate(2026, 3, 1), std::nullopt);
        frmDue& w = l.open();
        auto* number = w.findChild<QLineEdit*>("txtNumber");
        const auto enter = [&](const QString& typed) {
            number->setText(typed);
            QTest::keyClick(number, Qt::Key_Return);
        };
        enter("5");
        QCOMPARE(w.current()->name, "Вера");
        QString question;
        l.app.prompter.handleModal([&](QDialog& dialog) {
            question = dialog.findChild<QLabel*>("lblTrabl")->text();
            dialog.findChild<QWidget*>("optDVD")->setProperty("checked", true);
            return int(QDialog::Accepted);
        });
        enter("12");
        QCOMPARE(question, "Какая категория диска № 12 Вас интересует?");
        QCOMPARE(w.current()->name, "Борис");
        enter("7");
        QCOMPARE(l.app.prompter.texts().last(), "Диска № 7 нет в списке должников!");
        enter("0");
        QCOMPARE(l.app.prompter.texts().last(), "Указан не верный номер диска. Повторите ввод.");
    }

    void homeAndEndAndThePhone()
    {
        Ledger l;
        for (int i = 1; i <= 4; ++i) {
            l.lend(Category::Audio, i, "Должник " + QString::number(i), QDate(2026, 3, 1), std::nullopt);
        }
        frmDue& w = l.open();
        auto* grid = w.findChild<QTableWidget*>("DBGrid");
        grid->setFocus();
        QTest::keyClick(grid, Qt::Key_End);
        QCOMPARE(w.current()->name, "Должник 4");
        QTest::keyClick(grid, Qt::Key_Home);
        QCOMPARE(w.current()->name, "Должник 1");

        auto* phone = w.findChild<QLineEdit*>("txtTelephone");
        phone->setText("555-01-02");
        QTest::keyClick(phone, Qt::Key_Return);
        QCOMPARE(l.app.prompter.texts().last(), "Телефон должника 'Должник 1' был успешно изменен.");
        QCOMPARE(l.db->scalar("SELECT Телефон FROM ИменаДолжников WHERE Имя = 'Должник 1'").toString(), "555-01-02");
        QVERIFY(!w.isHidden()); // Enter in the phone box did nothing else
    }

    void doubleClickFollowsTheSetting_data()
    {
        QTest::addColumn<QString>("setting");
        QTest::addColumn<QString>("opened");
        QTest::newRow("1: statistics") << "1" << "frmDueStat";
        QTest::newRow("missing: change of term") << "" << "frmAddInDue";
    }

    void doubleClickFollowsTheSetting()
    {
        QFETCH(QString, setting);
        QFETCH(QString, opened);
        Ledger l;
        l.lend(Category::Audio, 1, "Анна", QDate(2026, 3, 1), std::nullopt);
        if (!setting.isEmpty()) {
            l.app.ctx.ini().write("Option", "DblClickDue", setting);
        }
        frmDue& w = l.open();
        QString shown;
        l.app.prompter.handleModal([&](QDialog& dialog) {
            shown = dialog.objectName();
            return int(QDialog::Rejected);
        });
        w.DBGrid_DblClick();
        QCOMPARE(shown, opened);
    }
};

VINORA_TEST_MAIN(tst_debtorlist)
#include "tst_debtorlist.moc"
