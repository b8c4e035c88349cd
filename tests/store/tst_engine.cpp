#include "store/Db.h"
#include "store/InfoStamp.h"
#include "store/JetPattern.h"
#include "store/Reanimator.h"
#include "support/TestFolders.h"
#include "support/TestMain.h"

#include <QSqlRecord>
#include <QTemporaryDir>

using namespace vinora;

// What the catalogue relies on from its database engine.
class tst_engine : public QObject
{
    Q_OBJECT

    QTemporaryDir m_dir;
    QString m_path;

    int errorOf(const QString& sql, const QVariantList& values = {})
    {
        Db db(m_path);
        try {
            db.exec(sql, values);
        } catch (const AppError& error) {
            return error.number();
        }
        return 0;
    }

    QStringList column(const QString& sql, const QVariantList& values = {})
    {
        Db db(m_path);
        QSqlQuery query = db.query(sql, values);
        QStringList out;
        while (query.next()) {
            out.append(query.value(0).toString());
        }
        return out;
    }

private slots:
    void init()
    {
        m_path = m_dir.filePath("vinora.db");
        QFile::remove(m_path);
        createMainDatabase(m_path);
    }

    void defaultsOfNewRows()
    {
        Db db(m_path);
        const QString today = QDate::currentDate().toString(Qt::ISODate);
        db.exec("INSERT INTO Аудио (Номер, Название, КодСтиля) VALUES (1, 'A', 1)");
        db.exec("INSERT INTO Компьютер (Номер, Название, КодОписания) VALUES (1, 'C', 1)");
        db.exec("INSERT INTO DVD (Номер, Название, КодЖанр) VALUES (1, 'D', 1)");
        db.exec("INSERT INTO Должники DEFAULT VALUES");
        QCOMPARE(db.scalar("SELECT ДатаИзменения FROM Аудио").toString(), today);
        QCOMPARE(db.scalar("SELECT ДатаЗаписи FROM Компьютер").toString(), today);
        QVERIFY(db.scalar("SELECT ДатаИзменения FROM Компьютер").isNull());
        QCOMPARE(db.scalar("SELECT ДатаИзменения FROM DVD").toString(), today);
        QCOMPARE(db.scalar("SELECT Должник FROM DVD").toInt(), kFalse);
        QCOMPARE(db.scalar("SELECT Долг FROM Должники").toInt(), kTrue);
        QCOMPARE(db.scalar("SELECT ДатаВыдачи FROM Должники").toString(), today);
        QCOMPARE(db.scalar("SELECT КодДолжника FROM Должники").toInt(), 1);
    }

    void refusals_data()
    {
        QTest::addColumn<QString>("sql");
        QTest::addColumn<QVariantList>("values");
        QTest::addColumn<int>("error");
        const auto row = [](const char* tag, const QString& sql, const QVariantList& values, int error) {
            QTest::newRow(tag) << sql << values << error;
        };
        const QString audio =
            "INSERT INTO Аудио (Номер, Название, Альбом, Год, КодСтиля) VALUES (?, ?, ?, ?, ?)";
        const QString style = "INSERT INTO Стиль (Стиль) VALUES (?)";
        const QVariant null;
        row("empty title", audio, {1, QString(""), QString("x"), QString("1999"), 1}, 3315);
        row("empty year", audio, {1, QString("A"), QString("x"), QString(""), 1}, 3315);
        row("empty album taken", audio, {1, QString("A"), QString(""), QString("1999"), 1}, 0);
        row("null title taken", audio, {1, null, QString("x"), null, 1}, 0);
        row("title of 60", audio, {1, QString(60, u'я'), null, null, 1}, 0);
        row("title of 61", audio, {1, QString(61, u'я'), null, null, 1}, 3163);
        row("number 32767", audio, {32767, QString("A"), null, null, 1}, 0);
        row("number 32768", audio, {32768, QString("A"), null, null, 1}, 6);
        row("number -32769", audio, {-32769, QString("A"), null, null, 1}, 6);
        row("style that is not there", audio, {1, QString("A"), null, null, 99}, 3201);
        row("style 50 characters", style, {QString(50, u'ж')}, 0);
        row("style 51 characters", style, {QString(51, u'ж')}, 3163);
        row("boolean other than -1 or 0", "INSERT INTO Должники (Долг) VALUES (1)", {}, 3317);
        row("used style deleted", "DELETE FROM Стиль WHERE КодСтиля = 3", {}, 3200);
        row("no such table", "SELECT * FROM [12AB]", {}, 3078);
    }

    void refusals()
    {
        QFETCH(QString, sql);
        QFETCH(QVariantList, values);
        Db(m_path).exec(
            QStringLiteral("INSERT INTO Аудио (Номер, Название, КодСтиля) VALUES (100, 'Blues disc', 3)"));
        QTEST(errorOf(sql, values), "error");
        // A prepared statement of a bulk write is refused alike.
        Db db(m_path);
        int statementError = 0;
        try {
            Statement statement(db, sql);
            statement.run(values);
        } catch (const AppError& refusal) {
            statementError = refusal.number();
        }
        QTEST(statementError, "error");
    }

    // A prepared statement stores every kind of value as a plain statement does.
    void statementStoresValuesAsTheDriver()
    {
        const QVariantList values{QVariant(),
                                  QString(),
                                  QStringLiteral(""),
                                  QStringLiteral("Ёлка 'и' \"ель\""),
                                  7,
                                  true,
                                  qint64(1) << 40,
                                  4000000000u,
                                  2.5,
                                  QByteArray("a\0b", 3),
                                  QByteArray(),
                                  QDate(2026, 11, 23),
                                  QDate(),
                                  QDateTime(QDate(2026, 11, 23), QTime(7, 8, 9, 10)),
                                  QTime(1, 2, 3, 4),
                                  QVariant::fromValue(qulonglong(18000000000000000000ull))};
        Db db(m_path);
        db.exec(QStringLiteral("CREATE TABLE t (way, v)"));
        Statement insert(db, QStringLiteral("INSERT INTO t (way, v) VALUES ('statement', ?)"));
        for (const QVariant& value : values) {
            db.exec(QStringLiteral("INSERT INTO t (way, v) VALUES ('driver', ?)"), {value});
            insert.run({value});
        }
        const auto stored = [&](const char* way) {
            return column(
                QStringLiteral("SELECT typeof(v) || ' ' || quote(v) FROM t WHERE way = ? ORDER BY rowid"),
                {QString::fromLatin1(way)});
        };
        QCOMPARE(stored("statement").size(), values.size());
        QCOMPARE(stored("statement"), stored("driver"));
        QCOMPARE(stored("statement").at(2), QStringLiteral("text ''"));
        QCOMPARE(stored("statement").at(1), QStringLiteral("null NULL"));

        // Values bound one by one stay bound until replaced.
        db.exec(QStringLiteral("DELETE FROM t"));
        Statement pair(db, QStringLiteral("INSERT INTO t (way, v) VALUES (?, ?)"));
        pair.bindText(1, u"one");
        pair.bindText(2, u"");
        pair.run();
        pair.bindNull(2);
        pair.run();
        QCOMPARE(column(QStringLiteral("SELECT way || ' ' || quote(v) FROM t ORDER BY rowid")),
                 QStringList({QStringLiteral("one ''"), QStringLiteral("one NULL")}));
        QVERIFY_THROWS_EXCEPTION(AppError, pair.run({QStringLiteral("one value of two")}));
    }

    void relationsCascade()
    {
        Db db(m_path);
        db.exec(QStringLiteral(
            "INSERT INTO ИменаДолжников (Имя, Телефон) VALUES ('Пётр', '123'), ('Анна', '456')"));
        db.exec(
            QStringLiteral("INSERT INTO Должники (КодИмяДолжника, КодДиска, Категория) VALUES (1, 5, 'AD'), "
                           "(1, 6, 'PC'), (2, 7, 'DVD')"));
        db.exec("DELETE FROM ИменаДолжников WHERE КодИмени = 1");
        QCOMPARE(db.scalar("SELECT count(*) FROM Должники").toInt(), 1);

        db.exec("INSERT INTO Аудио (Номер, Название, КодСтиля) VALUES (1, 'A', 27)");
        db.exec("UPDATE Стиль SET КодСтиля = 500 WHERE КодСтиля = 27");
        QCOMPARE(db.scalar("SELECT КодСтиля FROM Аудио").toInt(), 500);
        db.exec("DELETE FROM Стиль WHERE КодСтиля = 26");
        QCOMPARE(db.scalar("SELECT count(*) FROM Стиль").toInt(), 30);
    }

    void comparisonIgnoresCase_data()
    {
        QTest::addColumn<QString>("where");
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QStringList>("found");
        const auto row = [](const char* tag, const QString& where, const QString& value,
                            const QStringList& found) {
            QTest::newRow(tag) << where << QVariant(value) << found;
        };
        const QString equal = "Название = ?";
        const QString like = "Название LIKE ?";
        row("= Cyrillic", equal, "ёЛКА", {"Ёлка"});
        row("= Latin", equal, "the DOORS", {"The Doors"});
        row("е is not ё", equal, "елка", {});
        row("LIKE * Cyrillic", like, "*ЛК*", {"Ёлка"});
        row("LIKE ? one letter", like, "?ина", {"Зина"});
        row("LIKE * Latin", like, "*doors", {"The Doors"});
        row("% is a plain character", like, "50%*", {"50% off"});
        row("_ is a plain character", like, "*_*", {"a_b"});
        row("quotes and brackets bound", equal, "It's \"[x]\"", {"It's \"[x]\""});
    }

    void comparisonIgnoresCase()
    {
        QFETCH(QString, where);
        QFETCH(QVariant, value);
        {
            Db db(m_path);
            for (const char* name : {"Ёлка", "The Doors", "Зина", "50% off", "a_b", "It's \"[x]\""}) {
                db.exec("INSERT INTO Аудио (Номер, Название, КодСтиля) VALUES (1, ?, 1)",
                        {QString::fromUtf8(name)});
            }
        }
        QTEST(column("SELECT Название FROM Аудио WHERE " + where, {value}), "found");
    }

    void russianOrder()
    {
        {
            Db db(m_path);
            for (const char* name :
                 {"яблоко", "Ёж", "ель", "Абрикос", "Zeppelin", "жук", "Едва", "я", "Б", "abba"}) {
                db.exec("INSERT INTO Аудио (Номер, Название, КодСтиля) VALUES (1, ?, 1)",
                        {QString::fromUtf8(name)});
            }
        }
        QCOMPARE(
            column("SELECT Название FROM Аудио ORDER BY Название"),
            (QStringList{"abba", "Zeppelin", "Абрикос", "Б", "Едва", "Ёж", "ель", "жук", "я", "яблоко"}));
        QCOMPARE(column("SELECT upper(Название) FROM Аудио WHERE Название = 'ЁЖ'"), QStringList{"ЁЖ"});
    }

    void jetLike_data()
    {
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("matches");
        const auto row = [](const char* tag, const QString& pattern, const QString& text, bool matches) {
            QTest::newRow(tag) << pattern << text << matches;
        };
        row("star anywhere", "*abc*", "xxABCyy", true);
        row("star alone", "*", "", true);
        row("no star, longer text", "abc", "abcd", false);
        row("question", "a?c", "abc", true);
        row("question needs a char", "a?c", "ac", false);
        row("hash digit", "Disc #", "disc 7", true);
        row("hash not letter", "Disc #", "disc x", false);
        row("set", "[аб]*", "Бор", true);
        row("range", "[a-c]x", "bx", true);
        row("negated set", "[!a-c]x", "dx", true);
        row("negated set miss", "[!a-c]x", "bx", false);
        row("unclosed bracket is plain", "a[b", "A[B", true);
        row("backtracking", "*a*b", "aXaYb", true);
        row("backtracking miss", "*a*b", "aXaYbc", false);
    }

    void jetLike()
    {
        QFETCH(QString, pattern);
        QFETCH(QString, text);
        QTEST(vinora::jetLike(pattern, text), "matches");
    }

    void stamps()
    {
        Db db(m_path);
        QVERIFY(!readStamp(db, "ПослОбновлАудио").isValid());
        StampCatalogueUpdate(db, Category::Dvd, QDate(2026, 1, 2));
        StampCatalogueUpdate(db, Category::Audio, QDate(2026, 1, 3));
        StampBackup(db, QDate(2026, 1, 4));
        QCOMPARE(db.scalar("SELECT count(*) FROM _Информация").toInt(), 1);
        QCOMPARE(readStamp(db, "ПослОбновлDVD"), QDate(2026, 1, 2));
        QCOMPARE(readStamp(db, "ПослОбновлАудио"), QDate(2026, 1, 3));
        QCOMPARE(readStamp(db, "РезервнаяКопия"), QDate(2026, 1, 4));
        QVERIFY(!readStamp(db, "ПослОбновлКомпьютер").isValid());
    }

    void openingErrors_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<int>("error");
        QTest::newRow("text file named .db")
            << "text.db" << QByteArray("just some text, not a database\n") << 3343;
        QTest::newRow("missing file") << "" << QByteArray() << 3024;
        QTest::newRow("missing folder") << "nowhere/vinora.db" << QByteArray() << 3044;
    }

    void openingErrors()
    {
        QFETCH(QString, name);
        QFETCH(QByteArray, content);
        const QString path = m_dir.filePath(name.isEmpty() ? QStringLiteral("absent.db") : name);
        if (!content.isEmpty()) {
            test::writeFile(path, content);
        }
        try {
            Db db(path);
            QFAIL("opened");
        } catch (const AppError& e) {
            QTEST(e.number(), "error");
        }
        QCOMPARE(test::readFile(path), content); // nothing written over the user's file
    }

    void readOnlyFolderRefusesWriting()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath("vinora.db");
        createMainDatabase(path);
        test::ReadOnlyFolder readOnly(dir.path());
        if (!readOnly.active()) {
            QSKIP("this machine cannot make a folder read-only");
        }
        try {
            Db db(path);
            QFAIL("opened for writing");
        } catch (const AppError& e) {
            QCOMPARE(e.number(), 3051);
        }
        Db readable(path, Db::Access::ReadOnly);
        QCOMPARE(readable.scalar("SELECT count(*) FROM Жанр").toInt(), 10);
    }
};

VINORA_TEST_MAIN(tst_engine)
#include "tst_engine.moc"
