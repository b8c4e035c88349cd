#include "catalogue/frmEditDictionary.h"
#include "store/Db.h"
#include "store/Reanimator.h"
#include "support/ScriptedPrompter.h"
#include "support/TestMain.h"

using namespace vinora;

class tst_dictionaries : public QObject
{
    Q_OBJECT

private slots:
    void editing_data()
    {
        QTest::addColumn<int>("dictionary");
        QTest::addColumn<QString>("usedName");   // a name that a disc uses
        QTest::addColumn<QString>("usingTable"); // and the catalogue of that disc
        QTest::newRow("styles") << int(Dictionary::Style) << QString("Rock") << "Аудио";
        QTest::newRow("descriptions") << int(Dictionary::Description) << QString("Квест") << "Компьютер";
        QTest::newRow("genres") << int(Dictionary::Genre) << QString("Комедия") << "DVD";
    }

    void editing()
    {
        QFETCH(int, dictionary);
        QFETCH(QString, usedName);
        QFETCH(QString, usingTable);
        const DictionaryKind& kind = dictionaryKind(static_cast<Dictionary>(dictionary));
        test::TestApp app;
        Reanimator(app.ctx, 0);
        {
            Db db(app.ctx.MainDBPath);
            const QString key = kind.key;
            db.exec("INSERT INTO \"" + usingTable + "\" (Номер, Название, \"" + key +
                        "\") SELECT 1, 'x', \"" + key + "\" FROM \"" + kind.table + "\" WHERE \"" +
                        kind.table + "\" = ?",
                    {usedName});
        }
        frmEditDictionary editor(app.ctx, static_cast<Dictionary>(dictionary));
        QCOMPARE(editor.names().first(), QString()); // the empty name comes first
        const int rows = static_cast<int>(editor.names().size());

        // The first row is protected.
        editor.selectName(QString());
        editor.cmdDelete();
        editor.cmdChange();
        QCOMPARE(app.prompter.texts(), (QStringList{kind.protectedOnDelete, kind.protectedOnChange}));

        // Adding: 51 characters, a quotation mark, a duplicate (asked twice), then 50 characters.
        app.prompter.answerInput(QString(51, u'я'));
        editor.cmdAdd();
        QCOMPARE(app.prompter.texts().last(), kind.lengthMessage);
        app.prompter.answerInput("say \"hi\"");
        editor.cmdAdd();
        QCOMPARE(app.prompter.texts().last(), kind.quoteMessage);
        app.prompter.answerInput(usedName.toUpper());
        app.prompter.answer(Answer::Yes);
        app.prompter.answerInput(QString(50, u'я'));
        editor.cmdAdd();
        QVERIFY(app.prompter.texts().contains(kind.duplicateStart + usedName.toUpper() + kind.duplicateEnd));
        QCOMPARE(editor.names().size(), rows + 1);
        QCOMPARE(editor.currentName(), QString(50, u'я'));

        // Changing a name to itself finds it taken.
        app.prompter.answerInput(QString(50, u'я'));
        app.prompter.answer(Answer::No);
        editor.cmdChange();
        QCOMPARE(app.prompter.texts().last(), kind.duplicateStart + QString(50, u'я') + kind.duplicateEnd);
        app.prompter.answerInput("Новое имя");
        editor.cmdChange();
        QVERIFY(editor.names().contains("Новое имя"));

        // A name in use stays; an unused one goes.
        editor.selectName(usedName);
        app.prompter.answer(Answer::Yes);
        editor.cmdDelete();
        QCOMPARE(app.prompter.texts().last(), kind.inUseStart + usedName + kind.inUseEnd);
        QVERIFY(editor.names().contains(usedName));
        editor.selectName("Новое имя");
        app.prompter.answer(Answer::Yes);
        editor.cmdDelete();
        QCOMPARE(app.prompter.texts().last(), kind.deletePrompt + "Новое имя'?");
        QVERIFY(!editor.names().contains("Новое имя"));
        QVERIFY(app.prompter.unanswered());
    }
};

VINORA_TEST_MAIN(tst_dictionaries)
#include "tst_dictionaries.moc"
