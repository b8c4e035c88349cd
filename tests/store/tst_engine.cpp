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
        m_path = m_dir.filePath(QStringLiteral("vinora.db"));
        QFile::remove(m_path);
        createMainDatabase(m_path);
    }

    void defaultsOfNewRows()
    {
        Db db(m_path);
        const QString today = QDate::currentDate().toString(Qt::ISODate);
        db.exec(QStringLiteral("INSERT INTO Аудио (Номер, Название, КодСтиля) VALUES (1, 'A', 1)"));
        db.exec(QStringLiteral("INSERT INTO Компьютер (Номер, Название, КодОписания) VALUES (1, 'C', 1)"));
        db.exec(QStringLiteral("INSERT INTO DVD (Номер, Название, КодЖанр) VALUES (1, 'D', 1)"));
        db.exec(QStringLiteral("INSERT INTO Должники DEFAULT VALUES"));
        QCOMPARE(db.scalar(QStringLiteral("SELECT ДатаИзменения FROM Аудио")).toString(), today);
        QCOMPARE(db.scalar(QStringLiteral("SELECT ДатаЗаписи FROM Компьютер")).toString(), today);
        QVERIFY(db.scalar(QStringLiteral("SELECT ДатаИзменения FROM Компьютер")).isNull());
        QCOMPARE(db.scalar(QStringLiteral("SELECT ДатаИзменения FROM DVD")).toString(), today);
        QCOMPARE(db.scalar(QStringLiteral("SELECT Должник FROM DVD")).toInt(), kFalse);
        QCOMPARE(db.scalar(QStringLiteral("SELECT Долг FROM Должники")).toInt(), kTrue);
        QCOMPARE(db.scalar(QStringLiteral("SELECT ДатаВыдачи FROM Должники")).toString(), today);
        QCOMPARE(db.scalar(QStringLiteral("SELECT КодДолжника FROM Должники")).toInt(), 1);
    }

    void refusals_data()
    {
        QTest::addColumn<QString>("sql");
        QTest::addColumn<QVariantList>("values");
        QTest::addColumn<int>("error");
        const QString audio = QStringLiteral(
            "INSERT INTO Аудио (Номер, Название, Альбом, Год, КодСтиля) VALUES (?, ?, ?, ?, ?)");
        QTest::newRow("empty title") << audio
                                     << QVariantList{1, QStringLiteral(""), QStringLiteral("x"),
                                                     QStringLiteral("1999"), 1}
                                     << 3315;
        QTest::newRow("empty year") << audio
                                    << QVariantList{1, QStringLiteral("A"), QStringLiteral("x"),
                                                    QStringLiteral(""), 1}
                                    << 3315;
        QTest::newRow("empty album taken")
            << audio << QVariantList{1, QStringLiteral("A"), QStringLiteral(""), QStringLiteral("1999"), 1}
            << 0;
        QTest::newRow("null title taken")
            << audio << QVariantList{1, QVariant(), QStringLiteral("x"), QVariant(), 1} << 0;
        QTest::newRow("title of 60") << audio << QVariantList{1, QString(60, u'я'), QVariant(), QVariant(), 1}
                                     << 0;
        QTest::newRow("title of 61") << audio << QVariantList{1, QString(61, u'я'), QVariant(), QVariant(), 1}
                                     << 3163;
        QTest::newRow("number 32767")
            << audio << QVariantList{32767, QStringLiteral("A"), QVariant(), QVariant(), 1} << 0;
        QTest::newRow("number 32768")
            << audio << QVariantList{32768, QStringLiteral("A"), QVariant(), QVariant(), 1} << 6;
        QTest::newRow("number -32769")
            << audio << QVariantList{-32769, QStringLiteral("A"), QVariant(), QVariant(), 1} << 6;
        QTest::newRow("style that is not there")
            << audio << QVariantList{1, QStringLiteral("A"), QVariant(), QVariant(), 99} << 3201;
        QTest::newRow("style 50 characters")
            << QStringLiteral("INSERT INTO Стиль (Стиль) VALUES (?)") << QVariantList{QString(50, u'ж')} << 0;
        QTest::newRow("style 51 characters") << QStringLiteral("INSERT INTO Стиль (Стиль) VALUES (?)")
                                             << QVariantList{QString(51, u'ж')} << 3163;
        QTest::newRow("boolean other than -1 or 0")
            << QStringLiteral("INSERT INTO Должники (Долг) VALUES (1)") << QVariantList{} << 3317;
        QTest::newRow("used style deleted")
            << QStringLiteral("DELETE FROM Стиль WHERE КодСтиля = 3") << QVariantList{} << 3200;
        QTest::newRow("no such table") << QStringLiteral("SELECT * FROM [12AB]") << QVariantList{} << 3078;
    }

    void refusals()
    {
        QFETCH(QString, sql);
        QFETCH(QVariantList, values);
        QFETCH(int, error);
        {
            Db db(m_path);
            db.exec(QStringLiteral(
                "INSERT INTO Аудио (Номер, Название, КодСтиля) VALUES (100, 'Blues disc', 3)"));
        }
        QCOMPARE(errorOf(sql, values), error);
    }

    void relationsCascade()
    {
        Db db(m_path);
        db.exec(QStringLiteral(
            "INSERT INTO ИменаДолжников (Имя, Телефон) VALUES ('Пётр', '123'), ('Анна', '456')"));
        db.exec(
            QStringLiteral("INSERT INTO Должники (КодИмяДолжника, КодДиска, Категория) VALUES (1, 5, 'AD'), "
                           "(1, 6, 'PC'), (2, 7, 'DVD')"));
        db.exec(QStringLiteral("DELETE FROM ИменаДолжников WHERE КодИмени = 1"));
        QCOMPARE(db.scalar(QStringLiteral("SELECT count(*) FROM Должники")).toInt(), 1);

        db.exec(QStringLiteral("INSERT INTO Аудио (Номер, Название, КодСтиля) VALUES (1, 'A', 27)"));
        db.exec(QStringLiteral("UPDATE Стиль SET КодСтиля = 500 WHERE КодСтиля = 27"));
        QCOMPARE(db.scalar(QStringLiteral("SELECT КодСтиля FROM Аудио")).toInt(), 500);
        db.exec(QStringLiteral("DELETE FROM Стиль WHERE КодСтиля = 26"));
        QCOMPARE(db.scalar(QStringLiteral("SELECT count(*) FROM Стиль")).toInt(), 30);
    }

    void comparisonIgnoresCase_data()
    {
        QTest::addColumn<QString>("where");
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QStringList>("found");
        QTest::newRow("= Cyrillic") << "Название = ?" << QVariant(QStringLiteral("ёЛКА"))
                                    << QStringList{"Ёлка"};
        QTest::newRow("= Latin") << "Название = ?" << QVariant(QStringLiteral("the DOORS"))
                                 << QStringList{"The Doors"};
        QTest::newRow("е is not ё") << "Название = ?" << QVariant(QStringLiteral("елка")) << QStringList{};
        QTest::newRow("LIKE * Cyrillic")
            << "Название LIKE ?" << QVariant(QStringLiteral("*ЛК*")) << QStringList{"Ёлка"};
        QTest::newRow("LIKE ? one letter")
            << "Название LIKE ?" << QVariant(QStringLiteral("?ина")) << QStringList{"Зина"};
        QTest::newRow("LIKE * Latin")
            << "Название LIKE ?" << QVariant(QStringLiteral("*doors")) << QStringList{"The Doors"};
        QTest::newRow("% is a plain character")
            << "Название LIKE ?" << QVariant(QStringLiteral("50%*")) << QStringList{"50% off"};
        QTest::newRow("_ is a plain character")
            << "Название LIKE ?" << QVariant(QStringLiteral("*_*")) << QStringList{"a_b"};
        QTest::newRow("quotes and brackets bound")
            << "Название = ?" << QVariant(QStringLiteral("It's \"[x]\"")) << QStringList{"It's \"[x]\""};
    }

    void comparisonIgnoresCase()
    {
        QFETCH(QString, where);
        QFETCH(QVariant, value);
        QFETCH(QStringList, found);
        {
            Db db(m_path);
            for (const char* name : {"Ёлка", "The Doors", "Зина", "50% off", "a_b", "It's \"[x]\""}) {
                db.exec(QStringLiteral("INSERT INTO Аудио (Номер, Название, КодСтиля) VALUES (1, ?, 1)"),
                        {QString::fromUtf8(name)});
            }
        }
        QCOMPARE(column(QStringLiteral("SELECT Название FROM Аудио WHERE ") + where, {value}), found);
    }

    void russianOrder()
    {
        {
            Db db(m_path);
            for (const char* name :
                 {"яблоко", "Ёж", "ель", "Абрикос", "Zeppelin", "жук", "Едва", "я", "Б", "abba"}) {
                db.exec(QStringLiteral("INSERT INTO Аудио (Номер, Название, КодСтиля) VALUES (1, ?, 1)"),
                        {QString::fromUtf8(name)});
            }
        }
        QCOMPARE(
            column(QStringLiteral("SELECT Название FROM Аудио ORDER BY Название")),
            (QStringList{"abba", "Zeppelin", "Абрикос", "Б", "Едва", "Ёж", "ель", "жук", "я", "яблоко"}));
        QCOMPARE(column(QStringLiteral("SELECT upper(Название) FROM Аудио WHERE Название = 'ЁЖ'")),
                 QStringList{"ЁЖ"});
    }

    void jetLike_data()
    {
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("matches");
        QTest::newRow("star anywhere") << "*abc*"
                                       << "xxABCyy" << true;
        QTest::newRow("star alone") << "*"
                                    << "" << true;
        QTest::newRow("no star, longer text") << "abc"
                                              << "abcd" << false;
        QTest::newRow("question") << "a?c"
                                  << "abc" << true;
        QTest::newRow("question needs a char") << "a?c"
                                               << "ac" << false;
        QTest::newRow("hash digit") << "Disc #"
                                    << "disc 7" << true;
        QTest::newRow("hash not letter") << "Disc #"
                                         << "disc x" << false;
        QTest::newRow("set") << "[аб]*"
                             << "Бор" << true;
        QTest::newRow("range") << "[a-c]x"
                               << "bx" << true;
        QTest::newRow("negated set") << "[!a-c]x"
                                     << "dx" << true;
        QTest::newRow("negated set miss") << "[!a-c]x"
                                          << "bx" << false;
        QTest::newRow("unclosed bracket is plain") << "a[b"
                                                   << "A[B" << true;
        QTest::newRow("backtracking") << "*a*b"
                                      << "aXaYb" << true;
        QTest::newRow("backtracking miss") << "*a*b"
                                           << "aXaYbc" << false;
    }

    void jetLike()
    {
        QFETCH(QString, pattern);
        QFETCH(QString, text);
        QFETCH(bool, matches);
        QCOMPARE(vinora::jetLike(pattern, text), matches);
    }

    void stamps()
    {
        Db db(m_path);
        QVERIFY(!readStamp(db, QStringLiteral("ПослОбновлАудио")).isValid());
        StampCatalogueUpdate(db, Category::Dvd, QDate(2026, 1, 2));
        StampCatalogueUpdate(db, Category::Audio, QDate(2026, 1, 3));
        StampBackup(db, QDate(2026, 1, 4));
        QCOMPARE(db.scalar(QStringLiteral("SELECT count(*) FROM _Информация")).toInt(), 1);
        QCOMPARE(readStamp(db, QStringLiteral("ПослОбновлDVD")), QDate(2026, 1, 2));
        QCOMPARE(readStamp(db, QStringLiteral("ПослОбновлАудио")), QDate(2026, 1, 3));
        QCOMPARE(readStamp(db, QStringLiteral("РезервнаяКопия")), QDate(2026, 1, 4));
        QVERIFY(!readStamp(db, QStringLiteral("ПослОбновлКомпьютер")).isValid());
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
        QFETCH(int, error);
        const QString path = m_dir.filePath(name.isEmpty() ? QStringLiteral("absent.db") : name);
        if (!content.isEmpty()) {
            test::writeFile(path, content);
        }
        try {
            Db db(path);
            QFAIL("opened");
        } catch (const AppError& e) {
            QCOMPARE(e.number(), error);
        }
        QCOMPARE(test::readFile(path), content); // nothing written over the user's file
    }

    void readOnlyFolderRefusesWriting()
    {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("vinora.db"));
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
        QCOMPARE(readable.scalar(QStringLiteral("SELECT count(*) FROM Жанр")).toInt(), 10);
    }
};

VINORA_TEST_MAIN(tst_engine)
#include "tst_engine.moc"
