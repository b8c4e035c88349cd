#include "frame/AppContext.h"
#include "store/Compaction.h"
#include "store/ContentsLists.h"
#include "store/Db.h"
#include "store/Reanimator.h"
#include "store/Schema.h"
#include "store/SearchIndex.h"
#include "support/ScriptedPrompter.h"
#include "support/TestMain.h"

#include <QSet>

using namespace vinora;

namespace {

// The engine's own check of an index against the rows it indexes; throws on a difference.
void checkIndex(const Db& db, ContentsKind kind)
{
    const ContentsDescriptor& descriptor = contentsDescriptor(kind);
    for (const QString& field : descriptor.searchedFields) {
        const QString table = quoted(searchIndexTable(descriptor, field));
        db.exec("INSERT INTO " + table + "(" + table + ", rank) VALUES ('integrity-check', 1)");
    }
}

// The rows of a list the index gives for a text, by the searched field.
QStringList indexed(const Db& db, ContentsKind kind, const QString& field, const QString& text)
{
    const ContentsDescriptor& descriptor = contentsDescriptor(kind);
    const QString table = quoted(searchIndexTable(descriptor, field));
    return db.texts("SELECT r." + quoted(field) + " FROM " + table + " AS x JOIN " +
                        quoted(descriptor.rowsTable) + " AS r ON r.rowid = x.rowid WHERE x." + table +
                        " MATCH ? ORDER BY 1",
                    {trigramQuery(text)});
}

} // namespace

class tst_searchindex : public QObject
{
    Q_OBJECT

private slots:
    // Whatever the comparison of a search takes as the same letter, the index must too, or
    // a row would be missed: for every character the index answers for, every character of
    // the whole plane that folds to it (Qt's folding) is among the rows the index gives.
    // Known exception: the historic Church Slavonic letter forms U+1C80..U+1C88 (a tall
    // "о", a rounded "в" ...), which Qt folds to the modern letters and the index does not.
    void foldingAgrees()
    {
        test::TestApp app;
        const Db db(app.ctx.appFolder() + "/fold.db", Db::Access::Create);
        db.exec("CREATE VIRTUAL TABLE f USING fts5(t, tokenize='trigram', detail=none)");
        {
            Transaction transaction(db);
            Statement insert(db, "INSERT INTO f (rowid, t) VALUES (?, ?)");
            for (char16_t code = 0x20; code < 0xFFFE; ++code) {
                if (!QChar::isSurrogate(code)) {
                    insert.run({QVariant(int(code)), QVariant(QString(u'q') + QChar(code) + u'z')});
                }
            }
            transaction.commit();
        }
        int answered = 0;
        QStringList missed;
        for (char16_t code = 0x20; code < 0x500; ++code) {
            const QString text = QString(u'q') + QChar(code) + u'z';
            const QString query = trigramQuery(text);
            if (query.isEmpty()) {
                continue;
            }
            ++answered;
            QSet<int> found;
            for (const QString& row : db.texts("SELECT rowid FROM f WHERE f MATCH ?", {query})) {
                found.insert(row.toInt());
            }
            const QString folded = QString(QChar(code)).toCaseFolded();
            for (char16_t other = 0x20; other < 0xFFFE; ++other) {
                const bool historicForm = other >= 0x1C80 && other <= 0x1C88;
                if (!QChar::isSurrogate(other) && !historicForm &&
                    QString(QChar(other)).toCaseFolded() == folded) {
                    if (!found.contains(other)) {
                        missed.append(QStringLiteral("U+%1 for U+%2")
                                          .arg(int(other), 4, 16, QChar(u'0'))
                                          .arg(int(code), 4, 16, QChar(u'0')));
                    }
                }
            }
        }
        QVERIFY2(missed.isEmpty(), qPrintable(missed.join(u' ')));
        // ASCII, the Latin-1 letters and the Cyrillic of Russian and its neighbours.
        QCOMPARE(answered, 250);
    }

    void trigramsOfAText_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("query");
        QTest::newRow("too short") << QString("ab") << "";
        QTest::newRow("one trigram") << QString("abc") << "\"abc\"";
        QTest::newRow("side by side, and the end") << QString("abcdefg") << "\"abc\" AND \"def\" AND \"efg\"";
        QTest::newRow("wildcards split") << QString("ab*cde?fg") << "\"cde\"";
        QTest::newRow("quote doubled") << QString("a\"b") << "\"a\"\"b\"";
        QTest::newRow("repeats once") << QString("aaaaaa") << "\"aaa\"";
        QTest::newRow("Cyrillic") << QString("Ёлка") << "\"Ёлк\" AND \"лка\"";
        QTest::newRow("a foreign letter skipped") << QString("ab\u03A3cde") << "\"cde\"";
        QTest::newRow("long text capped")
            << QString(30, u'x').replace(0, 30, "abcdefghijklmnopqrstuvwxyz1234")
            << "\"abc\" AND \"def\" AND \"ghi\" AND \"jkl\" AND \"mno\" AND \"pqr\" AND \"stu\" AND \"vwx\"";
    }

    void trigramsOfAText()
    {
        QFETCH(QString, text);
        QTEST(trigramQuery(text), "query");
    }

    // The triggers keep the index in step with every kind of write: rows added, a name and a
    // comment changed, a list dropped with its rows, a list made again; and a compaction.
    void indexFollowsEveryWrite_data()
    {
        QTest::addColumn<int>("kind");
        QTest::newRow("files") << int(ContentsKind::Files);
        QTest::newRow("tracks") << int(ContentsKind::Tracks);
    }

    void indexFollowsEveryWrite()
    {
        QFETCH(int, kind);
        const auto contents = static_cast<ContentsKind>(kind);
        const bool files = contents == ContentsKind::Files;
        const QString name = files ? QStringLiteral("Имя") : QStringLiteral("Название");
        test::TestApp app;
        Reanimator(app.ctx, 0);
        {
            const Db db(files ? app.ctx.FilesDBPath : app.ctx.TracksDBPath);
            QVERIFY(hasSearchIndex(db, contents));
            const ContentsLists lists(db, contents);
            const QString insert =
                files ? QStringLiteral("INSERT INTO Файлы (ДискID, Имя, Путь, Размер, Комментарий) VALUES "
                                       "(?, ?, '\\', '0', ?)")
                      : QStringLiteral(
                            "INSERT INTO Треки (ДискID, Номер, Название, Комментарий) VALUES (?, 1, ?, ?)");
            lists.create("A1");
            lists.create("B2");
            db.exec(insert, {"A1", "Группа крови", QVariant()});
            db.exec(insert, {"A1", "Звезда по имени Солнце", "любимая"});
            db.exec(insert, {"B2", "группа", QVariant()});
            checkIndex(db, contents);
            QCOMPARE(indexed(db, contents, name, "ГРУППА"), QStringList({"группа", "Группа крови"}));

            db.exec("UPDATE " + quoted(contentsDescriptor(contents).rowsTable) + " SET " + quoted(name) +
                    " = 'Кукушка' WHERE " + quoted(name) + " = 'группа'");
            checkIndex(db, contents);
            QCOMPARE(indexed(db, contents, name, "группа"), QStringList({"Группа крови"}));
            QCOMPARE(indexed(db, contents, name, "кукушка"), QStringList({"Кукушка"}));
            if (files) {
                db.exec(
                    "UPDATE Файлы SET Комментарий = 'концерт' WHERE Комментарий IS NULL AND Имя = 'Кукушка'");
                checkIndex(db, contents);
                QCOMPARE(indexed(db, contents, "Комментарий", "КОНЦ"), QStringList({"концерт"}));
            }

            lists.drop("A1");
            checkIndex(db, contents);
            QCOMPARE(indexed(db, contents, name, "крови"), QStringList());
            lists.create("A1");
            db.exec(insert, {"A1", "Группа крови", QVariant()});
            checkIndex(db, contents);
            QCOMPARE(indexed(db, contents, name, "крови"), QStringList({"Группа крови"}));
        }
        QVERIFY(compactDatabases(app.ctx));
        const Db db(files ? app.ctx.FilesDBPath : app.ctx.TracksDBPath);
        checkIndex(db, contents);
        QCOMPARE(indexed(db, contents, name, "крови"), QStringList({"Группа крови"}));
    }

    // Many rows written by one statement are indexed after it, as the triggers would have
    // indexed them; the triggers work again afterwards, and other triggers of the table, or
    // a write outside a transaction, leave the work to them.
    void manyRowsIndexedAtOnce()
    {
        test::TestApp app;
        Reanimator(app.ctx, 0);
        const Db db(app.ctx.FilesDBPath);
        const ContentsLists lists(db, ContentsKind::Files);
        lists.create("A1");
        lists.create("B2");
        const QString one =
            "INSERT INTO Файлы (ДискID, Имя, Путь, Размер, Комментарий) VALUES (?, ?, '\\', '0', ?)";
        db.exec(one, {"B2", "группа", QVariant()});
        db.exec("CREATE TEMP TABLE n (Имя, Комментарий)");
        for (int i = 0; i < 300; ++i) {
            db.exec("INSERT INTO temp.n VALUES (?, ?)",
                    {QString("Группа крови %1").arg(i), i % 3 == 0 ? QVariant("концерт") : QVariant()});
        }
        const QString many = "INSERT INTO Файлы (ДискID, Имя, Путь, Размер, Комментарий) SELECT ?, Имя, "
                             "'\\', '0', Комментарий FROM temp.n ORDER BY rowid";
        {
            Transaction transaction(db);
            insertIndexedRows(db, ContentsKind::Files, many, {"A1"});
            transaction.commit();
        }
        checkIndex(db, ContentsKind::Files);
        QCOMPARE(indexed(db, ContentsKind::Files, "Имя", "ГРУППА").size(), 301);
        QCOMPARE(indexed(db, ContentsKind::Files, "Имя", "крови 299"), QStringList({"Группа крови 299"}));
        QCOMPARE(indexed(db, ContentsKind::Files, "Комментарий", "КОНЦ").size(), 100);

        db.exec(one, {"B2", "Кукушка", QVariant()});
        QCOMPARE(indexed(db, ContentsKind::Files, "Имя", "кукушка"), QStringList({"Кукушка"}));
        {
            // Broken off: neither the rows nor their entries stay.
            Transaction transaction(db);
            insertIndexedRows(db, ContentsKind::Files, many, {"B2"});
        }
        checkIndex(db, ContentsKind::Files);
        QCOMPARE(lists.rowCount("B2"), 2);

        // Outside a transaction, and with a trigger of another kind on the table.
        insertIndexedRows(db, ContentsKind::Files, many, {"B2"});
        db.exec("CREATE TEMP TABLE seen (n)");
        db.exec(
            "CREATE TEMP TRIGGER watch AFTER INSERT ON Файлы BEGIN INSERT INTO seen VALUES (new.rowid); END");
        {
            Transaction transaction(db);
            insertIndexedRows(db, ContentsKind::Files, many, {"B2"});
            transaction.commit();
        }
        QCOMPARE(db.scalar("SELECT count(*) FROM temp.seen").toInt(), 300);
        checkIndex(db, ContentsKind::Files);
        QCOMPARE(indexed(db, ContentsKind::Files, "Имя", "крови 299").size(), 3);

        lists.drop("A1");
        checkIndex(db, ContentsKind::Files);
        QCOMPARE(indexed(db, ContentsKind::Files, "Имя", "крови 299").size(), 2);
    }
};

VINORA_TEST_MAIN(tst_searchindex)
#include "tst_searchindex.moc"
