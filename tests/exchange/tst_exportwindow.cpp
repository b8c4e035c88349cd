// The export window driven as the user drives it: a tab, its options, OK, the chooser
// answered by the script; what it refuses, what it tells, and the main window's command.
#include "ExportFixture.h"
#include "exchange/PageOutput.h"
#include "exchange/frmExport.h"
#include "frame/Cp1251.h"
#include "mainwindow/frmMain.h"
#include "store/Reanimator.h"
#include "support/ScriptedPrompter.h"
#include "support/TestFolders.h"
#include "support/TestMain.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QTreeWidget>
#include <cerrno>

using namespace vinora;

namespace {

struct Window
{
    explicit Window(bool fixture = true)
    {
        if (fixture) {
            test::makeExportFixture(app.folder.path());
        } else {
            Reanimator(app.ctx, 0);
        }
        form = std::make_unique<frmExport>(app.ctx);
        form->show();
    }
    template <typename T> T* child(const QString& name) const
    {
        T* widget = form->findChild<T*>(name);
        Q_ASSERT(widget != nullptr);
        return widget;
    }
    // Near the left edge: a radio or check box takes clicks on its mark and text only.
    void click(const QString& name) const
    {
        auto* button = child<QAbstractButton>(name);
        QTest::mouseClick(button, Qt::LeftButton, {}, QPoint(6, button->height() / 2));
    }
    void showTab(int index) const { child<QTabWidget>("SSActiveTabs1")->setCurrentIndex(index); }
    // OK by the keyboard: Enter presses the default button.
    void pressOk() const { QTest::keyClick(form.get(), Qt::Key_Return); }
    QString page(const QString& name) const { return out.filePath(name); }

    test::TestApp app;
    QTemporaryDir out;
    std::unique_ptr<frmExport> form;
};

QStringList texts(const QListWidget* list, bool checkedOnly = false)
{
    QStringList items;
    for (int i = 0; i < list->count(); ++i) {
        if (!checkedOnly || list->item(i)->checkState() == Qt::Checked) {
            items.append(list->item(i)->text());
        }
    }
    return items;
}

QByteArray checkedPage(const QString& name)
{
    return test::readFile(QStringLiteral(VINORA_TEST_DATA "/export/") + name);
}

} // namespace

class tst_exportwindow : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { PageOutput::failWriteForTests(0, 0); }

    void catalogueOptions_data()
    {
        QTest::addColumn<QString>("option");
        QTest::addColumn<QStringList>("fields");
        QTest::addColumn<QString>("label");
        QTest::addColumn<QString>("secondValue");
        QTest::newRow("audio") << "optCategory0"
                               << QStringList{"Альбом",  "Стиль",  "Год",     "Дисков", "Время",
                                              "Записей", "Внесен", "Изменен", "Обложка"}
                               << QString("Стиль:") << "Ballad";
        QTest::newRow("computer") << "optCategory1" << QStringList{"Описание", "Расширенное описание",
                                                                   "Год",      "Дисков",
                                                                   "Внесен",   "Изменен",
                                                                   "Обложка"}
                                  << QString("Описание:") << "Сборник программ";
        QTest::newRow("dvd") << "optCategory2"
                             << QStringList{"Жанр",         "Год",      "Дисков", "Время",   "Зона",
                                            "Формат звука", "Описание", "Внесен", "Изменен", "Обложка"}
                             << QString("Жанр:") << "Боевик";
    }
    void catalogueOptions()
    {
        QFETCH(QString, option);
        QFETCH(QStringList, fields);
        QFETCH(QString, label);
        QFETCH(QString, secondValue);
        Window w;
        w.click(option);
        auto* list = w.child<QListWidget>("lvFields");
        QCOMPARE(texts(list), fields);
        QCOMPARE(w.child<QLabel>("lblQuery")->text(), label);
        QCOMPARE(w.child<QComboBox>("cmbQuery")->itemText(0), "- все -");
        QCOMPARE(w.child<QComboBox>("cmbQuery")->itemText(1), secondValue);
        w.click("cmdSelect5");
        QVERIFY(texts(list, true).isEmpty());
        w.click("cmdSelect4");
        QCOMPARE(texts(list, true), fields);
    }

    void cataloguePage()
    {
        Window w;
        w.click("optCategory2");
        w.click("cmdSelect4");
        w.click("chSorted");
        w.app.prompter.answerPath(w.page("dvd-all.htm"));
        w.pressOk();
        QCOMPARE(w.app.prompter.texts(),
                 QStringList({"Экспортирование каталога в HTML-файл",
                              "База данных успешно экспортирована в файл:\n" + w.page("dvd-all.htm")}));
        QCOMPARE(w.app.prompter.shown.last().style, MessageStyle::Information);
        QCOMPARE(w.form->result(), int(QDialog::Accepted));
        QCOMPARE(test::readFile(w.page("dvd-all.htm")), checkedPage("dvd-all.htm"));
    }

    void cancelledChooser()
    {
        Window w;
        w.app.prompter.answerPath(QString());
        w.pressOk();
        QCOMPARE(w.app.prompter.texts(), QStringList({"Экспортирование каталога в HTML-файл"}));
        QVERIFY(w.form->isVisible());
        QVERIFY(QDir(w.out.path()).isEmpty());
    }

    void refusals_data()
    {
        QTest::addColumn<bool>("fixture");
        QTest::addColumn<int>("tab");
        QTest::addColumn<QString>("clear"); // a button pressed before OK
        QTest::addColumn<QString>("text");
        QTest::newRow("no disc checked")
            << true << 1 << QString("cmdSelect1") << "Необходимо выбрать хотя бы один диск!";
        QTest::newRow("no disc has a list")
            << false << 1 << QString("cmdSelect0")
            << "В каталоге Компьютерных дисков нет ни одного диска со списком файлов!";
        QTest::newRow("no column of the ledger")
            << true << 2 << QString("cmdSelect7") << "Необходимо выбрать хотя бы один элемент!";
    }
    void refusals()
    {
        QFETCH(bool, fixture);
        QFETCH(int, tab);
        QFETCH(QString, clear);
        QFETCH(QString, text);
        Window w(fixture);
        w.showTab(tab);
        w.click(clear);
        w.pressOk();
        QCOMPARE(w.app.prompter.texts(), QStringList{text});
        QCOMPARE(w.app.prompter.shown.last().style, MessageStyle::Exclamation);
        QVERIFY(w.form->isVisible());
    }

    void trackPage()
    {
        Window w;
        w.showTab(1);
        w.click("optList1");
        auto* numbers = w.child<QTreeWidget>("lvFieldsListNumber");
        QCOMPARE(numbers->headerItem()->text(0), "Номера");
        QCOMPARE(numbers->topLevelItemCount(), 2);
        QCOMPARE(texts(w.child<QListWidget>("lvFieldsList")),
                 QStringList({"Нумерация списка", "Комментарий"}));
        w.click("cmdSelect0");
        w.click("chSorted");
        w.app.prompter.answerPath(w.page("tracks.htm"));
        w.pressOk();
        QCOMPARE(w.app.prompter.texts(),
                 QStringList({"Экспортирование списка треков",
                              "Список треков успешно экспортирован в файл:\n" + w.page("tracks.htm")}));
        QCOMPARE(test::readFile(w.page("tracks.htm")), checkedPage("tracks-sorted.htm"));
    }

    void pagePerDisc()
    {
        Window w;
        w.showTab(1);
        QCOMPARE(texts(w.child<QListWidget>("lvFieldsList")),
                 QStringList({"Нумерация списка", "Путь", "Комментарий"}));
        w.child<QTreeWidget>("lvFieldsListNumber")->topLevelItem(0)->setCheckState(0, Qt::Checked);
        w.click("cmdSelect3");
        w.child<QListWidget>("lvFieldsList")->item(1)->setCheckState(Qt::Checked);
        w.click("chExportFile");
        w.app.prompter.answerPath(w.out.path());
        w.pressOk();
        const QString written = w.out.path() + "/files_cd_1.htm";
        QCOMPARE(w.app.prompter.texts(),
                 QStringList({"Выберите каталог для экспортирования списка файлов:",
                              "Список файлов успешно экспортирован в файл:\n" + written}));
        QCOMPARE(test::readFile(written), checkedPage("files_cd_1.htm"));
    }

    void debtorPage()
    {
        Window w;
        w.showTab(2);
        QCOMPARE(texts(w.child<QListWidget>("lvFieldsDue"), true),
                 QStringList({"Телефон", "Категория диска", "Название диска", "Задержка (дн)",
                              "Внесен/Сроком до", "Вернул"}));
        w.app.prompter.answerPath(w.page("due.htm"));
        w.pressOk();
        QCOMPARE(w.app.prompter.texts(),
                 QStringList({"Экспортирование списка должников в HTML-файл",
                              "Список должников успешно экспортирован в файл:\n" + w.page("due.htm")}));
        QCOMPARE(test::readFile(w.page("due.htm")), checkedPage("debtors-all.htm"));
    }

    // A refused page is told; the window stays for another try and nothing is left behind.
    void failureTold_data()
    {
        QTest::addColumn<bool>("readOnly");
        QTest::addColumn<QString>("told");
        QTest::addColumn<MessageStyle>("style");
        QTest::newRow("read-only folder")
            << true << "Папка доступна только для чтения!" << MessageStyle::Exclamation;
        QTest::newRow("disk full") << false << "на диске нет места (Код: 61)" << MessageStyle::Stop;
    }
    void failureTold()
    {
        QFETCH(bool, readOnly);
        QFETCH(QString, told);
        QFETCH(MessageStyle, style);
        Window w;
        std::unique_ptr<test::ReadOnlyFolder> guard;
        if (readOnly) {
            guard = std::make_unique<test::ReadOnlyFolder>(w.out.path());
            if (!guard->active()) {
                QSKIP("this machine cannot make a folder read-only");
            }
        } else {
            PageOutput::failWriteForTests(1, ENOSPC);
        }
        w.app.prompter.answerPath(w.page("cat.htm"));
        w.pressOk();
        QCOMPARE(w.app.prompter.shown.size(), 2);
        QVERIFY2(w.app.prompter.shown[1].text.contains(told), qPrintable(w.app.prompter.shown[1].text));
        QCOMPARE(w.app.prompter.shown[1].style, style);
        QVERIFY(w.form->isVisible());
        guard.reset();
        QVERIFY(QDir(w.out.path()).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot));
    }

    void mainWindowCommand()
    {
        test::TestApp app;
        test::makeExportFixture(app.folder.path());
        frmMain window(app.ctx);
        window.Form_Load();
        QAction* command = window.action("ID_DB_ExportHTML");
        QVERIFY(command->isEnabled());
        QString opened;
        bool listsOpen = false;
        app.prompter.handleModal([&](QDialog& dialog) {
            opened = dialog.objectName();
            listsOpen = dialog.findChild<QTabWidget*>("SSActiveTabs1")->isTabEnabled(1);
            return 0;
        });
        command->trigger();
        QCOMPARE(opened, "frmExport");
        QVERIFY(listsOpen);

        // Another copy's database holds no lists and no loans.
        app.ctx.ExternalDBOpen = true;
        frmExport external(app.ctx);
        const auto* tabs = external.findChild<QTabWidget*>("SSActiveTabs1");
        QVERIFY(tabs->isTabEnabled(0) && !tabs->isTabEnabled(1) && !tabs->isTabEnabled(2));
    }
};

VINORA_TEST_MAIN(tst_exportwindow)
#include "tst_exportwindow.moc"
