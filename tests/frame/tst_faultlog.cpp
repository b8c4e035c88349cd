#include "frame/Cp1251.h"
#include "frame/FaultLog.h"
#include "frame/Version.h"
#include "support/ScriptedPrompter.h"
#include "support/TestFolders.h"
#include "support/TestMain.h"

using namespace vinora;

class tst_faultlog : public QObject
{
    Q_OBJECT

private slots:
    void lineFormat()
    {
        const AppError error(3051, "Нельзя открыть файл");
        const QString line =
            faultLogLine(QDateTime(QDate(2026, 3, 7), QTime(9, 4, 5)), error, "frmMain, LoadData()");
        const QString version = QString::number(kVersionMajor) + u'.' + QString::number(kVersionMinor) +
                                " b" + QString::number(kVersionRevision);
        QCOMPARE(line,
                 "07.03.2026 09:04:05 " + version + " Нельзя открыть файл (Код: 3051) frmMain, LoadData()");
    }

    void reportAppendsTellsAndEnds()
    {
        test::TestApp app;
        const AppError first(3000, "Первая");
        QVERIFY_THROWS_EXCEPTION(ProcessEnded, ReportFault(app.ctx, "frmDue, cmdDelete()", first));
        app.clock.set(app.clock.now().addSecs(61));
        try {
            ReportFault(app.ctx, "vinoraModule, Main()", AppError(7, "Out of memory"));
        } catch (const ProcessEnded& ended) {
            QCOMPARE(ended.exitCode, 1);
        }

        const QStringList lines =
            cp1251::decode(test::readFile(app.file("bugreport.log"))).split(u'\n', Qt::SkipEmptyParts);
        QCOMPARE(lines.size(), 2);
        QVERIFY(lines[0].startsWith("22.11.2026 14:05:09 "));
        QVERIFY(lines[0].endsWith(" Первая (Код: 3000) frmDue, cmdDelete()"));
        QVERIFY(lines[1].startsWith("22.11.2026 14:06:10 "));
        QVERIFY(lines[1].endsWith(" Out of memory (Код: 7) vinoraModule, Main()"));

        QCOMPARE(app.prompter.shown.size(), 2);
        QCOMPARE(app.prompter.shown[0].style, MessageStyle::Stop);
        const QString message = app.prompter.shown[0].text;
        QVERIFY(message.startsWith("ОШИБКА.\n\nПервая (Код: 3000)\n\nОтправьте на адрес "));
        QVERIFY(message.endsWith(QStringLiteral(
            " файл bugreport.log (расположен в каталоге установленной программы). Файл содержит "
            "информацию, которая поможет исправить эту ошибку. В сообщении укажите "
            "последовательность Ваших действий до возникновения ошибки.")));
    }

    void handlerPassesUnexpectedErrorsOn()
    {
        test::TestApp app;
        const int value = underFaultHandler(app.ctx, "x, y()", [] { return 5; });
        QCOMPARE(value, 5);
        QVERIFY_THROWS_EXCEPTION(ProcessEnded, underFaultHandler(app.ctx, "frmMain, CheckDue()", [] {
                                     throw AppError(3343, "Unrecognized database format");
                                 }));
        QVERIFY(cp1251::decode(test::readFile(app.file("bugreport.log")))
                    .contains("Unrecognized database format (Код: 3343) frmMain, CheckDue()"));
    }
};

VINORA_TEST_MAIN(tst_faultlog)
#include "tst_faultlog.moc"
