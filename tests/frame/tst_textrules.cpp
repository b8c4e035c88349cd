#include "frame/TextRules.h"
#include "support/TestMain.h"

using namespace vinora;

class tst_textrules : public QObject
{
    Q_OBJECT

private slots:
    void cleanText_data()
    {
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("stored");
        QTest::newRow("quote") << QString("Say \"Hi\"") << "Say 'Hi'";
        QTest::newRow("brackets") << QString("[Live] Best]") << "(Live) Best)";
        QTest::newRow("untouched") << QString("Rock & Roll 50% _x_ *") << "Rock & Roll 50% _x_ *";
        QTest::newRow("Cyrillic") << QString("Ария \"Герой\"") << "Ария 'Герой'";
    }

    void cleanText()
    {
        QFETCH(QString, typed);
        QTEST(CleanText(typed), "stored");
    }

    void keyRules_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<bool>("digit");
        QTest::addColumn<bool>("discCount");
        QTest::newRow("0") << int('0') << true << false;
        QTest::newRow("1") << int('1') << true << true;
        QTest::newRow("6") << int('6') << true << true;
        QTest::newRow("7") << int('7') << true << false;
        QTest::newRow("9") << int('9') << true << false;
        QTest::newRow("backspace") << 8 << true << true;
        QTest::newRow("letter") << int('a') << false << false;
        QTest::newRow("minus") << int('-') << false << false;
    }

    void keyRules()
    {
        QFETCH(int, key);
        QFETCH(bool, digit);
        QFETCH(bool, discCount);
        QCOMPARE(DigitKeys(key), digit ? key : 0);
        QCOMPARE(DiscCountKeys(key), discCount ? key : 0);
    }
};

VINORA_TEST_MAIN(tst_textrules)
#include "tst_textrules.moc"
