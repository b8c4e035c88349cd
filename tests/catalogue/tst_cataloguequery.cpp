#include "catalogue/CatalogueQuery.h"
#include "support/TestMain.h"

using namespace vinora;

class tst_cataloguequery : public QObject
{
    Q_OBJECT

private slots:
    void parse_data()
    {
        QTest::addColumn<int>("category");
        QTest::addColumn<QString>("fragment");
        QTest::addColumn<QString>("readBack"); // "-" when refused
        QTest::newRow("empty") << 0 << QString("") << "";
        QTest::newRow("style") << 0 << QString("AND Стиль = \"Rock\"") << "AND Стиль = \"Rock\"";
        QTest::newRow("stored query")
            << 0 << QString("And Название LIKE '*abc*'") << "AND Название LIKE \"*abc*\"";
        QTest::newRow("three conditions") << 0 << QString("And Номер > 10 And Номер < 20 And Стиль = 'Pop'")
                                          << "AND Номер > 10 AND Номер < 20 AND Стиль = \"Pop\"";
        QTest::newRow("bracketed, qualified")
            << 1 << QString("AND [Компьютер].[Год] <> '1999'") << "AND Год <> \"1999\"";
        QTest::newRow("doubled quote")
            << 0 << QString("AND Название = \"say \"\"hi\"\"\"") << "AND Название = \"say \"\"hi\"\"\"";
        QTest::newRow("doubled apostrophe")
            << 0 << QString("And Название LIKE '*O''Brien*'") << "AND Название LIKE \"*O'Brien*\"";
        QTest::newRow("genre of DVD") << 2 << QString("AND Жанр = \"Комедия\"") << "AND Жанр = \"Комедия\"";
        QTest::newRow("number LIKE") << 0 << QString("And Номер LIKE 12") << "AND Номер LIKE 12";
        QTest::newRow("album not on DVD") << 2 << QString("AND Альбом = 'x'") << "-";
        QTest::newRow("unknown field") << 0 << QString("AND Пароль = 'x'") << "-";
        QTest::newRow("injection") << 0 << QString("AND 1=1; DROP TABLE Аудио") << "-";
        QTest::newRow("subquery") << 0 << QString("AND Номер IN (SELECT 1)") << "-";
        QTest::newRow("open quote") << 0 << QString("AND Название = 'abc") << "-";
        QTest::newRow("quote inside single quotes")
            << 0 << QString("And Название LIKE '*Rock'n'Roll*'") << "-";
        QTest::newRow("starts with OR") << 0 << QString("OR Номер = 1") << "-";
        QTest::newRow("other table") << 0 << QString("AND Должники.Долг = True") << "-";
    }

    void parse()
    {
        QFETCH(int, category);
        QFETCH(QString, fragment);
        QFETCH(QString, readBack);
        const auto filter = parseFilter(catalogueKind(static_cast<Category>(category)), fragment);
        QCOMPARE(filter.has_value(), readBack != "-");
        if (filter) {
            QCOMPARE(filterText(*filter), readBack);
            QCOMPARE(parseFilter(catalogueKind(static_cast<Category>(category)), filterText(*filter))
                         ->conditions.size(),
                     filter->conditions.size());
        }
    }

    void queryOrdersTiesByNumber()
    {
        const CatalogueKind& audio = catalogueKind(Category::Audio);
        const BuiltQuery byYear = buildCatalogueQuery(audio, {}, 3, true);
        QVERIFY(byYear.sql.contains("ORDER BY t.\"Год\" DESC, t.\"Номер\" DESC"));
        const BuiltQuery byNumber = buildCatalogueQuery(audio, {}, 0, false);
        QVERIFY(byNumber.sql.contains("ORDER BY t.\"Номер\", t.\"КодАудиоДиск\""));
        const BuiltQuery byStyle = buildCatalogueQuery(audio, dictionaryFilter(audio, "Rock"), 5, false);
        QVERIFY(byStyle.sql.contains("WHERE (d.\"Стиль\" = ?) ORDER BY d.\"Стиль\", t.\"Номер\""));
        QCOMPARE(byStyle.values, QVariantList{QString("Rock")});
    }
};

VINORA_TEST_MAIN(tst_cataloguequery)
#include "tst_cataloguequery.moc"
