// Query shortcuts: the editor's checks, the conditions it writes to query.ini, and a
// shortcut's life in the main window from its making to its deletion.
#include "catalogue/frmCatalogue.h"
#include "frame/Cp1251.h"
#include "frame/IniFile.h"
#include "mainwindow/frmMain.h"
#include "search/QueryFragments.h"
#include "search/frmCreateQuery.h"
#include "store/Db.h"
#include "store/Reanimator.h"
#include "support/DataRows.h"
#include "support/ScriptedPrompter.h"
#include "support/TestFolders.h"
#include "support/TestMain.h"
#include "support/Widgets.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>
#include <QToolBox>
#include <cerrno>
#include <tuple>

using namespace vinora;

namespace {

struct Shortcuts
{
    test::TestApp app;

    Shortcuts()
    {
        Reanimator(app.ctx, 0);
        Db db(app.ctx.MainDBPath);
        const auto style = [&](const char* name) {
            return db.scalar("SELECT КодСтиля FROM Стиль WHERE Стиль = ?", {QString::fromUtf8(name)});
        };
        for (const auto& [number, title, album, kind] :
             {std::tuple{1, "Кино", "Группа крови", "Rock"}, std::tuple{2, "O'Brien", "Live", "Pop"},
              std::tuple{3, "Аквариум", "Радио Африка", "Rock"},
              std::tuple{12, "Ария", "Герой асфальта", "Metal"}}) {
            db.exec("INSERT INTO Аудио (Номер, Название, Альбом, Дисков, КодСтиля) VALUES (?, ?, ?, 1, ?)",
                    {number, QString::fromUtf8(title), QString::fromUtf8(album), style(kind)});
        }
    }

    QString path() const { return app.file("query.ini"); }
    QByteArray bytes() const { return QFileInfo::exists(path()) ? test::readFile(path()) : QByteArray(); }
    void store(const QString& text) const { test::writeFile(path(), cp1251::encode(text)); }
};

template <typename T> T* child(const QWidget& form, const char* name, int row)
{
    return test::child<T>(form, QString::fromLatin1(name) + QString::number(row));
}

// Fills condition `row` as the user does: "field|operator|value", "" leaves it alone.
void fillRow(const frmCreateQuery& form, int row, const QString& condition)
{
    if (condition.isEmpty()) {
        return;
    }
    const QStringList part = condition.split(u'|');
    auto* field = child<QComboBox>(form, "cmbQ1_", row);
    field->setCurrentIndex(field->findText(part[0]));
    QVERIFY2(field->currentText() == part[0], qPrintable(part[0]));
    auto* op = child<QComboBox>(form, "cmbQ2_", row);
    op->setCurrentIndex(op->findText(part[1]));
    auto* list = child<QComboBox>(form, "cmbQuery", row);
    if (list->isVisibleTo(&form)) {
        const int index = list->findText(part[2]);
        index >= 0 ? list->setCurrentIndex(index) : list->setEditText(part[2]);
    } else {
        child<QLineEdit>(form, "txtQuery", row)->insert(part[2]);
    }
}

void fill(const frmCreateQuery& form, const QString& name, int category, const QStringList& conditions)
{
    form.findChild<QLineEdit*>("txtName")->setText(name);
    child<QRadioButton>(form, "optCategory", category)->click();
    for (int row = 0; row < conditions.size(); ++row) {
        fillRow(form, row, conditions[row]);
    }
}

void save(frmCreateQuery& form)
{
    form.findChild<QPushButton*>("imgButton0")->click();
}

using test::items;

// The whole query.ini after the first shortcut was saved into an empty file.
QByteArray firstShortcutFile(const QString& name, const QString& category, const QStringList& queries)
{
    QString text =
        "[Query]\nCount=1\n[1]\nName=" + name + "\n[" + name + "]\nNum=1\nCategory=" + category + '\n';
    for (int i = 0; i < 3; ++i) {
        text += QString("Query%1=%2\n").arg(i + 1).arg(queries.value(i));
    }
    return cp1251::encode(text);
}

const QString kThree = "[Query]\nCount=3\n[1]\nName=Рок\n[2]\nName=Джаз\n[3]\nName=Игры\n"
                       "[Рок]\nNum=1\nCategory=AD\nQuery1=And Стиль = 'Rock'\n"
                       "[Джаз]\nNum=2\nCategory=AD\nQuery1=And Номер < 3\nQuery2=And Альбом LIKE '*Live*'\n"
                       "[Игры]\nNum=3\nCategory=PC\nQuery1=And Описание = 'Квест'\n";

} // namespace

class tst_createquery : public QObject
{
    Q_OBJECT

    struct Window
    {
        Shortcuts s;
        frmMain w{s.app.ctx};

        Window()
        {
            for (const char* name : {"tmrCheckCD", "tmrNewCD", "tmrFindDue", "tmrTime"}) {
                w.timer(QString::fromLatin1(name)).setInterval(24 * 3600 * 1000);
            }
            w.Form_Load();
            w.show();
        }

        // The editor as the main window opens it, handed to `work`.
        void onEditor(std::function<void(frmCreateQuery&)> work)
        {
            s.app.prompter.handleModal([work](QDialog& dialog) {
                auto& form = dynamic_cast<frmCreateQuery&>(dialog);
                work(form);
                return form.result();
            });
        }

        // The rows the shortcut's click shows in its catalogue.
        QStringList run(const QString& shortcut)
        {
            QStringList rows;
            s.app.prompter.handleModal([&](QDialog& dialog) {
                auto& catalogue = dynamic_cast<frmCatalogue&>(dialog);
                for (int row = 0; row < catalogue.rowCount(); ++row) {
                    rows.append(catalogue.rowText(row));
                }
                rows.prepend(catalogue.windowTitle());
                return 0;
            });
            w.listBarItemClicked("g4", shortcut);
            return rows;
        }

        // The pop-up menu of the shortcuts' group opened on `shortcut`, then `command`.
        void onItem(const QString& shortcut, const QString& command)
        {
            auto* group = w.findChild<QListWidget*>("g4");
            w.findChild<QToolBox*>("SSListBar")->setCurrentWidget(group);
            const QList<QListWidgetItem*> found = group->findItems(shortcut, Qt::MatchExactly);
            QCOMPARE(found.size(), 1);
            emit group->customContextMenuRequested(group->visualItemRect(found[0]).center());
            w.findChild<QMenu*>("ID_ToolbarEdit")->hide();
            QVERIFY(w.action(command)->isEnabled());
            w.action(command)->trigger();
        }
    };

private slots:
    void refusals_data()
    {
        QTest::addColumn<QString>("stored"); // query.ini before
        QTest::addColumn<QString>("name");
        QTest::addColumn<int>("category");
        QTest::addColumn<QStringList>("conditions");
        QTest::addColumn<QString>("message"); // empty when saved
        const auto row = test::addRow<QString, QString, int, QStringList, QString>;
        const QString noName = "Введите название ярлыка!";
        const QString twice = "В условии запроса дважды указано одно и то же поле!";
        const QString none = "Хотя бы один запрос должен быть сформирован!";
        row("no name", "", "", 0, {"Номер|=|5"}, noName);
        row("blank name before a field twice", "", "  ", 0, {"Номер|=|5", "Номер|>|1"}, noName);
        row("field twice", "", "Запрос1", 0, {"Номер|=|5", "", "Номер|<|9"}, twice);
        row("field twice before an open condition", "", "Запрос1", 0, {"Название|=|", "Название|LIKE|a"},
            twice);
        row("three conditions on two fields", "", "Запрос1", 0, {"Номер|=|1", "Название|=|a", "Номер|>|0"},
            twice);
        row("no operator", "", "Запрос1", 0, {"Номер|=|5", "Название||abc"},
            "Укажите условие запроса (для 2)!");
        row("no value", "", "Запрос1", 1, {"", "", "Описание|=|"}, "Укажите условие запроса (для 3)!");
        row("open condition before none formed", "", "Запрос1", 0, {"Альбом|LIKE|"},
            "Укажите условие запроса (для 1)!");
        row("nothing formed", "", "Запрос1", 2, {}, none);
        row("name in use", kThree, "джаз", 0, {"Номер|=|5"},
            "Запрос с таким именем уже существует. Выберите другое название!");
        row("number not a number", "", "Запрос1", 0, {"Название|=|a", "Номер|=|12a"},
            "Номер диска в условии запроса (для 2) должен быть целым числом!");
        row("number below zero", "", "Запрос1", 0, {"Номер|<|-1"},
            "Номер диска в условии запроса (для 1) должен быть целым числом!");
        row("name of the count's section", "", "query", 0, {"Номер|=|5"},
            "Название ярлыка не может состоять из одних цифр или быть словом 'Query'. Выберите другое "
            "название!");
        row("name of a numbered section", "", "2", 0, {"Номер|=|5"},
            "Название ярлыка не может состоять из одних цифр или быть словом 'Query'. Выберите другое "
            "название!");
        row("name beyond the reader", "", QString(55, u'я'), 0, {"Номер|=|5"},
            "Название ярлыка должно быть не длиннее 54 символов!");
        // "And Альбом LIKE '**'" leaves 34 characters of the reader's 54 to the value.
        row("condition beyond the reader", "", "Запрос1", 0, {"", "Альбом|LIKE|" + QString(35, u'я')},
            "Условие запроса (для 2) длиннее 54 символов. Сократите значение!");
        row("longest condition", "", "Запрос1", 0, {"Альбом|LIKE|" + QString(34, u'я')}, "");
        row("three fields", "", "Запрос1", 0, {"Номер|=|1", "Название|=|a", "Альбом|=|b"}, "");
        row("name in use by another catalogue's shortcut", kThree, "Рок", 2, {"Жанр|=|Комедия"},
            "Запрос с таким именем уже существует. Выберите другое название!");
    }

    void refusals()
    {
        QFETCH(QString, stored);
        QFETCH(QString, name);
        QFETCH(int, category);
        QFETCH(QStringList, conditions);
        QFETCH(QString, message);
        Shortcuts s;
        if (!stored.isEmpty()) {
            s.store(stored);
        }
        const QByteArray before = s.bytes();
        frmCreateQuery form(s.app.ctx);
        fill(form, name, category, conditions);
        save(form);
        QCOMPARE(s.app.prompter.texts(), message.isEmpty() ? QStringList() : QStringList{message});
        QCOMPARE(form.result(), message.isEmpty() ? int(QDialog::Accepted) : int(QDialog::Rejected));
        QCOMPARE(s.bytes() == before, !message.isEmpty());
    }

    void fragmentsWritten_data()
    {
        QTest::addColumn<int>("category");
        QTest::addColumn<QStringList>("conditions");
        QTest::addColumn<QString>("code");
        QTest::addColumn<QStringList>("queries");
        const auto row = test::addRow<int, QStringList, QString, QStringList>;
        row("Номер =", 0, {"Номер|=|5"}, "AD", {"And Номер = 5"});
        row("Номер <", 0, {"Номер|<|10"}, "AD", {"And Номер < 10"});
        row("Номер >", 1, {"Номер|>| 3 "}, "PC", {"And Номер > 3"});
        row("Номер LIKE, unquoted", 2, {"Номер|LIKE|12"}, "DVD", {"And Номер LIKE 12"});
        row("Название LIKE", 0, {"Название|LIKE|abc"}, "AD", {"And Название LIKE '*abc*'"});
        row("Название =", 1, {"Название|=|Кино"}, "PC", {"And Название = 'Кино'"});
        row("Стиль from the dictionary", 0, {"Стиль|=|Rock & Roll"}, "AD", {"And Стиль = 'Rock & Roll'"});
        row("Описание LIKE", 1, {"Описание|LIKE|Квест"}, "PC", {"And Описание LIKE '*Квест*'"});
        row("Жанр =", 2, {"Жанр|=|Комедия"}, "DVD", {"And Жанр = 'Комедия'"});
        row("apostrophe doubled", 0, {"Альбом|LIKE|O'Brien"}, "AD", {"And Альбом LIKE '*O''Brien*'"});
        row("second and third only", 0, {"", "Стиль|LIKE|Rock", "Номер|>|2"}, "AD",
            {"", "And Стиль LIKE '*Rock*'", "And Номер > 2"});
    }

    void fragmentsWritten()
    {
        QFETCH(int, category);
        QFETCH(QStringList, conditions);
        QFETCH(QString, code);
        QFETCH(QStringList, queries);
        Shortcuts s;
        s.store(""); // an empty file: no Count yet
        frmCreateQuery form(s.app.ctx);
        QCOMPARE(form.findChild<QLineEdit*>("txtName")->text(), "Запрос1");
        fill(form, "Запрос1", category, conditions);
        save(form);
        QCOMPARE(s.app.prompter.texts(), QStringList());
        QCOMPARE(s.bytes(), firstShortcutFile("Запрос1", code, queries));
        // Read back for editing, the window shows what was chosen.
        frmCreateQuery edit(s.app.ctx);
        QVERIFY(edit.editShortcut("Запрос1"));
        QVERIFY(child<QRadioButton>(edit, "optCategory", category)->isChecked());
        for (int row = 0; row < 3; ++row) {
            const QStringList part = conditions.value(row).split(u'|');
            const QueryCondition shown = edit.shortcut().conditions[row];
            QCOMPARE(shown.field, part.value(0));
            QCOMPARE(shown.op, part.value(1));
            QCOMPARE(shown.value, part.value(2).trimmed());
            QCOMPARE(child<QLabel>(edit, "lblQuery", row)->text(), part.value(2).isEmpty()
                                                                       ? QString("%1.").arg(row + 1)
                                                                       : QString("%1. - Верно").arg(row + 1));
        }
    }

    void fieldsAndOperatorsFollowTheChoice()
    {
        Shortcuts s;
        frmCreateQuery form(s.app.ctx);
        auto* field = child<QComboBox>(form, "cmbQ1_", 0);
        auto* op = child<QComboBox>(form, "cmbQ2_", 0);
        const QStringList byCategory[] = {{"", "Номер", "Название", "Альбом", "Стиль"},
                                          {"", "Номер", "Название", "Описание"},
                                          {"", "Номер", "Название", "Жанр"}};
        for (int category : {1, 2, 0}) {
            child<QRadioButton>(form, "optCategory", category)->click();
            QCOMPARE(items(field), byCategory[category]);
        }
        QVERIFY(!op->isEnabled());
        fillRow(form, 0, "Номер|<|7");
        QCOMPARE(items(op), (QStringList{"=", "LIKE", "<", ">"}));
        QCOMPARE(child<QLabel>(form, "lblQuery", 0)->text(), "1. - Верно");
        fillRow(form, 1, "Стиль|=|Rock");
        QVERIFY(child<QComboBox>(form, "cmbQuery", 1)->isVisibleTo(&form));
        QVERIFY(!child<QLineEdit>(form, "txtQuery", 1)->isVisibleTo(&form));
        QVERIFY(items(child<QComboBox>(form, "cmbQuery", 1)).contains("Hard Rock"));
        // Another field: its operators, no value and no mark.
        field->setCurrentIndex(field->findText("Название"));
        QCOMPARE(items(op), (QStringList{"=", "LIKE"}));
        QCOMPARE(child<QLineEdit>(form, "txtQuery", 0)->text(), "");
        QCOMPARE(child<QLabel>(form, "lblQuery", 0)->text(), "1.");
        child<QLineEdit>(form, "txtQuery", 0)->insert("x");
        // Another catalogue keeps the fields it has too and clears the others.
        child<QRadioButton>(form, "optCategory", 2)->click();
        QCOMPARE(form.shortcut().conditions[0], (QueryCondition{"Название", "", "x"}));
        QCOMPARE(form.shortcut().conditions[1], QueryCondition{});
        QCOMPARE(child<QLabel>(form, "lblQuery", 1)->text(), "2.");
    }

    void defaultNames_data()
    {
        QTest::addColumn<QString>("stored");
        QTest::addColumn<QString>("name");
        QTest::newRow("no file") << QString() << "Запрос1";
        QTest::newRow("other names") << kThree << "Запрос1";
        QTest::newRow("a gap") << QString("[Query]\nCount=2\n[1]\nName=Запрос1\n[2]\nName=запрос3\n")
                               << "Запрос2";
        QTest::newRow("in any case") << QString("[Query]\nCount=1\n[1]\nName=ЗАПРОС1\n") << "Запрос2";
    }

    void defaultNames()
    {
        QFETCH(QString, stored);
        Shortcuts s;
        if (!stored.isEmpty()) {
            s.store(stored);
        }
        frmCreateQuery form(s.app.ctx);
        QTEST(form.findChild<QLineEdit*>("txtName")->text(), "name");
    }

    void readBack_data()
    {
        test::addColumns<QString>({"fragment", "condition"}); // condition "-" when it does not read
        const auto row = test::addRow<QString, QString>;
        row("number", "And Номер > 12", "Номер|>|12");
        row("LIKE", "and Название like '*abc*'", "Название|LIKE|abc");
        row("doubled apostrophe", "And Альбом LIKE '*O''Brien*'", "Альбом|LIKE|O'Brien");
        row("blanks inside", "And Стиль =  'Rock & Roll'", "Стиль|=|Rock & Roll");
        row("single apostrophe inside", "And Название = 'Rock'n'Roll'", "-");
        row("OR", "Or Номер = 5", "-");
        row("operator not offered", "And Номер <> 5", "-");
        row("< on text", "And Название < 'a'", "-");
        row("number in quotes", "And Номер = '12'", "-");
        row("statement after it", "And Номер = 5; DROP TABLE Аудио", "-");
        row("open quote", "And Название = 'abc", "-");
        row("nothing after the operator", "And Номер =", "-");
    }

    void readBack()
    {
        QFETCH(QString, fragment);
        QFETCH(QString, condition);
        const std::optional<QueryCondition> read = readFragment(fragment);
        QCOMPARE(read.has_value(), condition != "-");
        if (read) {
            QCOMPARE(read->field + '|' + read->op + '|' + read->value, condition);
            QCOMPARE(readFragment(conditionFragment(*read)), read);
        }
    }

    void editingKeepsItsPlace_data()
    {
        test::addColumns<QString>({"name", "message"});
        QTest::addColumn<QStringList>("list");
        const auto row = test::addRow<QString, QString, QStringList>;
        row("same name", "Джаз", "", {"Рок", "Джаз", "Игры"});
        row("renamed", "Блюз", "", {"Рок", "Блюз", "Игры"});
        row("name of another", "игры", "Запрос с таким именем уже существует. Выберите другое название!",
            {"Рок", "Джаз", "Игры"});
    }

    void editingKeepsItsPlace()
    {
        QFETCH(QString, name);
        QFETCH(QString, message);
        Window t;
        t.s.store(kThree);
        t.w.loadShortcuts();
        t.onEditor([&](frmCreateQuery& form) {
            QVERIFY(form.editing());
            QCOMPARE(form.findChild<QLineEdit*>("txtName")->text(), "Джаз");
            QCOMPARE(form.shortcut().conditions[0], (QueryCondition{"Номер", "<", "3"}));
            QCOMPARE(form.shortcut().conditions[1], (QueryCondition{"Альбом", "LIKE", "Live"}));
            form.findChild<QLineEdit*>("txtName")->setText(name);
            child<QComboBox>(form, "cmbQ2_", 0)->setCurrentText(">");
            save(form);
        });
        t.onItem("Джаз", "ID_ToolbarEditChange");
        QCOMPARE(t.s.app.prompter.texts(), message.isEmpty() ? QStringList() : QStringList{message});
        QTEST(t.w.listBarItems("g4"), "list");
        const IniFile ini = t.s.app.ctx.queryIni();
        QCOMPARE(ini.read("Query", "Count", 55), "3");
        if (message.isEmpty()) {
            QCOMPARE(ini.read(name, "Num", 55), "2");
            QCOMPARE(ini.read(name, "Query1", 55), "And Номер > 3");
            QCOMPARE(ini.read(name, "Query2", 55), "And Альбом LIKE '*Live*'");
            QCOMPARE(ini.has("Джаз", "Category", 55), name == "Джаз");
        } else {
            QCOMPARE(ini.read("Джаз", "Query1", 55), "And Номер < 3");
        }
    }

    void editingTellsWhatItCannotShow()
    {
        Window t;
        t.s.store("[Query]\nCount=1\n[1]\nName=Год\n[Год]\nNum=1\nCategory=AD\nQuery1=And Год = '1999'\n"
                  "Query2=And Номер = 4\n");
        t.w.loadShortcuts();
        t.onEditor([](frmCreateQuery& form) {
            QCOMPARE(form.shortcut().conditions[0], QueryCondition{});
            QCOMPARE(form.shortcut().conditions[1], (QueryCondition{"Номер", "=", "4"}));
        });
        t.w.changeShortcut("Год");
        QCOMPARE(t.s.app.prompter.texts(),
                 QStringList{
                     "Условие запроса не распознано и при сохранении не будет записано:\nAnd Год = '1999'"});
        t.s.app.ctx.queryIni().removeSection("Год");
        t.w.changeShortcut("Год");
        QCOMPARE(t.s.app.prompter.texts().last(), "Запрос с именем 'Год' ее найден!");
    }

    void shortcutFromMakingToDeletion()
    {
        Window t;
        QCOMPARE(t.w.listBarItems("g4"), QStringList());
        t.onEditor([](frmCreateQuery& form) {
            QVERIFY(!form.editing());
            form.show();
            auto* name = form.findChild<QLineEdit*>("txtName");
            QCOMPARE(name->text(), "Запрос1");
            name->clear();
            QTest::keyClicks(name, "Rock");
            fillRow(form, 0, "Стиль|=|Rock");
            fillRow(form, 1, "Номер|<|3");
            QTest::keyClick(name, Qt::Key_Return);
        });
        t.w.runCommand("ID_ToolbarEditAdd");
        QCOMPARE(t.w.listBarItems("g4"), QStringList{"Rock"});
        QCOMPARE(t.s.bytes(), firstShortcutFile("Rock", "AD", {"And Стиль = 'Rock'", "And Номер < 3"}));
        const QString title = "Каталог Аудио дисков - Результат запроса";
        QCOMPARE(t.run("Rock"), (QStringList{title, "1 Кино"}));

        t.onEditor([](frmCreateQuery& form) {
            QCOMPARE(child<QComboBox>(form, "cmbQuery", 0)->currentText(), "Rock");
            QCOMPARE(child<QLabel>(form, "lblQuery", 1)->text(), "2. - Верно");
            child<QComboBox>(form, "cmbQ2_", 1)->setCurrentText(">");
            child<QLineEdit>(form, "txtQuery", 1)->setText("1");
            save(form);
        });
        t.onItem("Rock", "ID_ToolbarEditChange");
        QCOMPARE(t.s.app.ctx.queryIni().read("Rock", "Query2", 55), "And Номер > 1");
        QCOMPARE(t.run("Rock"), (QStringList{title, "3 Аквариум"}));

        t.s.app.prompter.answer(Answer::Yes);
        t.onItem("Rock", "ID_ToolbarEditDel");
        QCOMPARE(t.w.listBarItems("g4"), QStringList());
        QCOMPARE(t.s.app.ctx.queryIni().read("Query", "Count", 55), "0");
        QVERIFY(!t.s.app.ctx.queryIni().has("Rock", "Category", 55));
        QCOMPARE(t.s.app.prompter.texts(), QStringList{"Вы дейсвительно хотите удалить ярлык 'Rock'?"});
    }

    void apostropheRoundTrip()
    {
        Window t;
        t.onEditor([](frmCreateQuery& form) {
            form.findChild<QLineEdit*>("txtName")->setText("Ирландцы");
            child<QComboBox>(form, "cmbQ1_", 0)->setCurrentText("Название");
            child<QComboBox>(form, "cmbQ2_", 0)->setCurrentText("LIKE");
            QTest::keyClicks(child<QLineEdit>(form, "txtQuery", 0), "O'Brien");
            save(form);
        });
        t.w.runCommand("ID_ToolbarEditAdd");
        QVERIFY(t.s.bytes().contains(cp1251::encode(QString("Query1=And Название LIKE '*O''Brien*'\n"))));
        QCOMPARE(t.run("Ирландцы"), (QStringList{"Каталог Аудио дисков - Результат запроса", "2 O'Brien"}));
        t.onEditor([](frmCreateQuery& form) {
            QCOMPARE(child<QLineEdit>(form, "txtQuery", 0)->text(), "O'Brien");
            save(form);
        });
        t.onItem("Ирландцы", "ID_ToolbarEditChange");
        QCOMPARE(t.s.app.ctx.queryIni().read("Ирландцы", "Query1", 55), "And Название LIKE '*O''Brien*'");
        QCOMPARE(t.s.app.prompter.texts(), QStringList());
    }

    void unwritableFileIsTold()
    {
        Window t;
        const QByteArray before = t.s.bytes();
        t.onEditor([&](frmCreateQuery& form) {
            fillRow(form, 0, "Номер|=|1");
            IniFile::failWriteForTests(1, ENOSPC);
            save(form);
            IniFile::failWriteForTests(0, 0);
            QCOMPARE(form.result(), int(QDialog::Rejected)); // still open, the work is not lost
        });
        t.w.runCommand("ID_ToolbarEditAdd");
        QCOMPARE(t.s.app.prompter.texts().size(), 1);
        QVERIFY(t.s.app.prompter.texts()[0].startsWith("ОШИБКА."));
        QCOMPARE(t.s.bytes(), before);
        QCOMPARE(t.w.listBarItems("g4"), QStringList());

        t.s.store(kThree);
        t.w.loadShortcuts();
        t.s.app.prompter.answer(Answer::Yes);
        IniFile::failWriteForTests(1, ENOSPC);
        t.w.deleteShortcut("Рок");
        IniFile::failWriteForTests(0, 0);
        QVERIFY(t.s.app.prompter.texts().last().startsWith("ОШИБКА."));
        QCOMPARE(t.s.bytes(), cp1251::encode(kThree));
        QCOMPARE(t.w.listBarItems("g4"), (QStringList{"Рок", "Джаз", "Игры"}));
    }
};

VINORA_TEST_MAIN(tst_createquery)
#include "tst_createquery.moc"
