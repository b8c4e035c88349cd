// The loan windows on the collection's ledger (10,000 loans to 2,000 borrowers): the debtor
// list opened and moved along, the rating window on the borrower with the most loans, and the
// history of the audio disc lent most often.
#include "BenchSupport.h"
#include "BenchWindows.h"
#include "Collection.h"
#include "lending/frmDiskHistory.h"
#include "lending/frmDue.h"
#include "lending/frmDueStat.h"
#include "store/Db.h"

#include <QApplication>
#include <QLineEdit>
#include <QTableWidget>
#include <QTreeWidget>

using namespace vinora;
using namespace vinora::bench;

int main(int argc, char* argv[])
{
    const OffscreenWindows windows(argc, argv);
    CollectionApp opened;
    AppContext& ctx = opened.ctx;

    std::unique_ptr<frmDue> window;
    report("open the debtor list, first screen shown",
           medianMs(5,
                    [&] {
                        window.reset();
                        window = std::make_unique<frmDue>(ctx, [](Category, PickMode) { return 0; });
                        window->show();
                        QApplication::processEvents();
                    }),
           100);
    auto* grid = window->findChild<QTableWidget*>(QStringLiteral("DBGrid"));
    std::printf("%-62s %d open loans listed\n", "", grid->rowCount());
    int row = 0;
    report("move to the next loan of the debtor list",
           medianMs(21,
                    [&] {
                        grid->setCurrentCell(++row % grid->rowCount(), 0);
                        QApplication::processEvents();
                    }),
           100);
    window.reset();

    const Db db(ctx.MainDBPath, Db::Access::ReadOnly);
    const QString busiest =
        db.scalar(
              QStringLiteral("SELECT Имя FROM ИменаДолжников WHERE КодИмени = (SELECT КодИмяДолжника FROM "
                             "Должники GROUP BY КодИмяДолжника ORDER BY count(*) DESC LIMIT 1)"))
            .toString();
    std::unique_ptr<frmDueStat> rating;
    report("the rating window on the borrower with the most loans",
           medianMs(5,
                    [&] {
                        rating.reset();
                        rating = std::make_unique<frmDueStat>(ctx, busiest);
                        rating->show();
                        QApplication::processEvents();
                    }),
           100);
    std::printf("%-62s %d loans in the borrower's record\n", "",
                rating->findChild<QTreeWidget*>(QStringLiteral("lvRating"))->topLevelItemCount());
    rating.reset();

    const int lentMost =
        db.scalar(QStringLiteral("SELECT КодДиска FROM Должники WHERE Категория = 'AD' GROUP BY "
                                 "КодДиска ORDER BY count(*) DESC LIMIT 1"))
            .toInt();
    frmDiskHistory history(ctx, [](Category, PickMode) { return 0; });
    history.show();
    history.findChild<QLineEdit*>(QStringLiteral("txtNumber"))->setText(QString::number(lentMost));
    report("the history of the audio disc lent most often",
           medianMs(11,
                    [&] {
                        history.cmdShow();
                        QApplication::processEvents();
                    }),
           100);
    return finish();
}
