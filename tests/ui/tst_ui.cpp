#include "frame/TextRules.h"
#include "support/TestMain.h"
#include "ui/DesktopTheme.h"
#include "ui/KeyFilter.h"
#include "ui/QtPrompter.h"
#include "ui/TitleWidth.h"
#include "ui/WaitCursor.h"

#include <QDialog>
#include <QLayout>
#include <QLineEdit>
#include <QTimer>
#include <QVBoxLayout>

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
        QTest::newRow("database") << QString("База данных vinora (*.db)|*.db|Все файлы (*.*)|*.*")
                                  << "База данных vinora (*.db);;Все файлы (*)";
        QTest::newRow("several patterns") << QString("Рисунки|*.jpg;*.gif") << "Рисунки (*.jpg *.gif)";
    }

    void fileFilters()
    {
        QFETCH(QString, pipeFilter);
        QTEST(qtFileFilter(pipeFilter), "qtFilter");
    }

    void promptsShowTheNormalPointer()
    {
        // A question asked in the middle of long work: the hourglass steps aside while the
        // box stands and comes back after it.
        QtPrompter prompter;
        const WaitCursor outer;
        const WaitCursor inner;
        bool normalWhileShown = false;
        QTimer::singleShot(0, [&] {
            QTRY_VERIFY(QApplication::activeModalWidget() != nullptr);
            normalWhileShown = QApplication::overrideCursor() == nullptr;
            QTest::keyClick(QApplication::activeModalWidget(), Qt::Key_Escape);
        });
        QCOMPARE(prompter.message(QStringLiteral("Продолжить?"), MessageStyle::YesNo), Answer::No);
        QVERIFY(normalWhileShown);
        QVERIFY(QApplication::overrideCursor() != nullptr);
        QCOMPARE(QApplication::overrideCursor()->shape(), Qt::WaitCursor);
    }

    void dialogsAreWideEnoughForTheirTitles()
    {
        QDialog dialog;
        new QVBoxLayout(&dialog);
        dialog.setWindowTitle(QStringLiteral("О программе"));
        keepTitleVisible(&dialog);
        keepTitleVisible(&dialog); // once is enough: no second spacer
        const int shortTitle = dialog.minimumSizeHint().width();
        dialog.setWindowTitle(QStringLiteral("Изменение номера диска в каталоге компьютерных дисков"));
        QVERIFY(dialog.minimumSizeHint().width() > shortTitle + 200); // follows a new title
        QCOMPARE(dialog.layout()->count(), 1);

        QDialog bare; // no layout: nothing to widen, nothing breaks
        keepTitleVisible(&bare);
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
