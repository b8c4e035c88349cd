#include "frame/TextRules.h"
#include "support/TestMain.h"
#include "ui/DesktopTheme.h"
#include "ui/KeyFilter.h"
#include "ui/QtPrompter.h"

#include <QLineEdit>

using namespace vinora;

class tst_ui : public QObject
{
    Q_OBJECT

private slots:
    void keyFilterDropsCharactersInField()
    {
        QLineEdit field;
        KeyFilter::install(&field, DiscCountKeys);
        QTest::keyClicks(&field, QStringLiteral("0a7-3x6"));
        QCOMPARE(field.text(), QStringLiteral("36"));
        QTest::keyClick(&field, Qt::Key_Backspace);
        QCOMPARE(field.text(), QStringLiteral("3"));
    }

    void fileFilters_data()
    {
        QTest::addColumn<QString>("pipeFilter");
        QTest::addColumn<QString>("qtFilter");
        QTest::newRow("database") << "База данных vinora (*.db)|*.db|Все файлы (*.*)|*.*"
                                  << "База данных vinora (*.db);;Все файлы (*)";
        QTest::newRow("several patterns") << "Рисунки|*.jpg;*.gif"
                                          << "Рисунки (*.jpg *.gif)";
    }

    void fileFilters()
    {
        QFETCH(QString, pipeFilter);
        QFETCH(QString, qtFilter);
        QCOMPARE(qtFileFilter(pipeFilter), qtFilter);
    }

    void darkDesktopGivesDarkPalette()
    {
        auto* app = qobject_cast<QApplication*>(QCoreApplication::instance());
        const QPalette original = app->palette();
        qputenv("VINORA_COLOR_SCHEME", "light");
        QCOMPARE(desktopColorScheme(), ColorScheme::Light);
        followDesktopTheme(*app);
        QCOMPARE(app->palette().color(QPalette::Window), original.color(QPalette::Window));

        qputenv("VINORA_COLOR_SCHEME", "dark");
        QCOMPARE(desktopColorScheme(), ColorScheme::Dark);
        followDesktopTheme(*app);
        QVERIFY(app->palette().color(QPalette::Window).lightness() < 128);
        QVERIFY(app->palette().color(QPalette::WindowText).lightness() > 128);
        qunsetenv("VINORA_COLOR_SCHEME");
    }
};

VINORA_TEST_MAIN(tst_ui)
#include "tst_ui.moc"
