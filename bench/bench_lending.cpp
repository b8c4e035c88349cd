// Speed of the loan windows on a ledger of 10,000 loans to 2,000 borrowers: the debtor list
// opened and moved along, and the record of a borrower with 500 loans.
#include "BenchSupport.h"
#include "BenchWindows.h"
#include "lending/BorrowerRating.h"
#include "lending/LoanLedger.h"
#include "lending/frmDue.h"
#include "store/Db.h"

#include <QApplication>
#include <QTableWidget>

using namespace vinora;
using namespace vinora::bench;

int main(int argc, char* argv[])
{
    const OffscreenWindows windows(argc, argv);
    BenchApp bench;
    AppContext& ctx = bench.ctx;
    const QDate today = QDate::currentDate();
    {
        Db db(ctx.MainDBPath);
        Transaction transaction(db);
        Statement disc(db, QStringLiteral("INSERT INTO Аудио (Номер, Название, Альбом, Дисков, КодСтиля, Должник) "
                                          "VALUES (?, ?, ?, 1, 1, ?)"));
        for (int i = 1; i <= 10000; ++i) {
            disc.run({i, QStringLiteral("Исполнитель %1").arg(i), QStringLiteral("Альбом %1").arg(i),
                      i % 5 == 0 ? kTrue : kFalse});
        }
        Statement borrower(db, QStringLiteral("INSERT INTO ИменаДолжников (Имя, Телефон) VALUES (?, 'нет')"));
        for (int i = 1; i <= 2000; ++i) {
            borrower.run({QStringLiteral("Должник %1").arg(i * 7919 % 100000)});
        }
        // Borrower 1 has 500 loans; the other 9,500 are spread over the rest. Every fifth
        // disc is out: its newest loan is open.
        Statement loan(db, QStringLiteral("INSERT INTO Должники (КодИмяДолжника, КодДиска, Категория, ДатаВыдачи, "
                                          "ДатаВозврата, ДатаВозвратаРеальная, Долг) VALUES (?, ?, 'AD', ?, ?, ?, ?)"));
        for (int i = 1; i <= 10000; ++i) {
            const int who = i <= 500 ? 1 : 2 + i % 1999;
            const bool open = i % 5 == 0;
            const QDate issued = today.addDays(-(i % 300) - 30);
            loan.run({who, i, dateValue(issued), dateValue(issued.addDays(14)),
                      open ? QVariant() : dateValue(issued.addDays(10 + i % 20)), open ? kTrue : kFalse});
        }
        transaction.commit();
    }
    std::unique_ptr<frmDue> window;
    report("open the debtor list of 2,000 open loans (10,000 in the ledger)",
           medianMs(5,
                    [&] {
                        window = std::make_unique<frmDue>(ctx, [](Category, PickMode) { return 0; });
                        window->show();
                        QApplication::processEvents();
                    }),
           100);
    auto* grid = window->findChild<QTableWidget*>(QStringLiteral("DBGrid"));
    int row = 0;
    report("move to the next loan of the debtor list",
           medianMs(21,
                    [&] {
                        grid->setCurrentCell(++row, 0);
                        QApplication::processEvents();
                    }),
           20);
    Db db(ctx.MainDBPath, Db::Access::ReadOnly);
    report("the record and rating of a borrower with 500 loans",
           medianMs(11, [&] { borrowerRecord(db, 1, {}, today); }), 20);
    return finish();
}
