#include "frame/TextRules.h"
#include "support/TestMain.h"

#include <QRandomGenerator>

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

    // Wherever the quick order answers, it is the collator's, in UTF-16 and in UTF-8 alike:
    // every pair of printable ASCII characters and many texts made of them, case and
    // prefixes included.
    void quickOrderIsTheCollators()
    {
        const QCollator collator = textCollator();
        const auto sign = [](int order) { return order < 0 ? -1 : order > 0 ? 1 : 0; };
        int answered = 0;
        const auto check = [&](const QString& a, const QString& b) {
            const std::optional<int> quick = quickCompareText(a, b);
            QCOMPARE(quickCompareText(QByteArrayView(a.toUtf8()), QByteArrayView(b.toUtf8())), quick);
            if (quick) {
                ++answered;
                if (*quick != sign(collator.compare(a, b))) {
                    QFAIL(qPrintable(QStringLiteral("'%1' against '%2'").arg(a, b)));
                }
                QCOMPARE(compareText(a, b), *quick);
            }
        };
        for (char16_t a = 0x20; a <= 0x7E; ++a) {
            for (char16_t b = 0x20; b <= 0x7E; ++b) {
                check(QString(QChar(a)), QString(QChar(b)));
            }
        }
        QCOMPARE(answered, 95 * 95);
        answered = 0;
        for (char16_t letter = 0x400; letter <= 0x45F; ++letter) {
            check(QString(QChar(letter)), QString());
            check(QString(), QString(QChar(letter)) + u'\u0483');
        }
        QCOMPARE(answered, 2 * 0x60);
        // A fixed starting state, so that a failure can be repeated.
        QRandomGenerator random(20261123);
        const QString alphabet = QStringLiteral("aAbBzZ09 ._-~,;!'(@&#%+<=>|$");
        const auto text = [&] {
            QString made;
            for (int length = random.bounded(7); length > 0; --length) {
                made += alphabet[random.bounded(int(alphabet.size()))];
            }
            return made;
        };
        answered = 0;
        for (int i = 0; i < 20000; ++i) {
            const QString a = text();
            check(a, random.bounded(4) == 0 ? a.toUpper() + text() : text());
        }
        QCOMPARE(answered, 20000);
    }

    void quickOrderLeavesTheRestToTheCollator_data()
    {
        QTest::addColumn<QString>("a");
        QTest::addColumn<QString>("b");
        QTest::addColumn<bool>("answered");
        QTest::newRow("same Cyrillic") << "Папка"
                                       << "Папка" << true;
        QTest::newRow("Cyrillic against empty") << "ёж"
                                                << "" << true;
        QTest::newRow("empty against a digit") << ""
                                               << "7" << true;
        QTest::newRow("Cyrillic") << "папка"
                                  << "Папка" << false;
        QTest::newRow("Latin and Cyrillic") << "file"
                                            << "файл" << false;
        QTest::newRow("accent") << "cafe"
                                << "café" << false;
        // A control character weighs nothing to the collator.
        QTest::newRow("control against empty") << "\u0001"
                                               << "" << false;
        QTest::newRow("tab") << "a\tb"
                             << "ab" << false;
        QTest::newRow("Cyrillic mark against empty") << "\u0483"
                                                     << "" << false;
        QTest::newRow("ґ against empty") << "ґ"
                                         << "" << false;
    }

    void quickOrderLeavesTheRestToTheCollator()
    {
        QFETCH(QString, a);
        QFETCH(QString, b);
        QFETCH(bool, answered);
        const std::optional<int> quick = quickCompareText(a, b);
        QCOMPARE(quick.has_value(), answered);
        const int order = textCollator().compare(a, b);
        QCOMPARE(compareText(a, b) < 0, order < 0);
        QCOMPARE(compareText(a, b) > 0, order > 0);
        if (quick) {
            QCOMPARE(*quick, order < 0 ? -1 : order > 0 ? 1 : 0);
        }
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
