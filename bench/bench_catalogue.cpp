// Speed of the catalogue browser on a collection of 20,000 audio discs: opening it with
// its first screen shown, and one keystroke of the name filter.
#include "BenchSupport.h"
#include "BenchWindows.h"
#include "catalogue/frmCatalogue.h"
#include "frame/AppContext.h"
#include "store/Db.h"
#include "store/Reanimator.h"

#include <QApplication>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QTest>

using namespace vinora;
using namespace vinora::bench;

int main(int argc, char* argv[])
{
    const OffscreenWindows windows(argc, argv);
    BenchApp bench;
    AppContext& ctx = bench.ctx;
    {
        Db db(ctx.MainDBPath);
        Transaction transaction(db);
        Statement insert(db,
                         QStringLiteral("INSERT INTO Аудио (Номер, Название, Альбом, Год, Дисков, КодСтиля) "
                                        "VALUES (?, ?, ?, '1999', 1, ?)"));
        static const char* const names[] = {"Ария", "Кино",       "the Doors",
                                            "Ёлка", "Pink Floyd", "Зимовье Зверей"};
        for (int i = 0; i < 20000; ++i) {
            insert.run({i % 32000,
                        QString(QString::fromUtf8(names[i % 6]) + u' ' + QString::number(i * 7919 % 100000)),
                        QStringLiteral("Альбом %1").arg(i), 1 + i % 31});
        }
        transaction.commit();
    }
    std::unique_ptr<frmCatalogue> window;
    report("open a catalogue of 20,000 discs, first screen shown",
           medianMs(5,
                    [&] {
                        window = std::make_unique<frmCatalogue>(ctx, Category::Audio);
                        window->show();
                        QApplication::processEvents();
                    }),
           100);
    auto* name = window->findChild<QLineEdit*>(QStringLiteral("txtName"));
    name->setFocus();
    int keystroke = 0;
    report("one keystroke of the name filter over 20,000 discs",
           medianMs(5,
                    [&] {
                        name->clear();
                        QTest::keyClick(name, keystroke++ % 2 ? 'k' : 'd');
                        QApplication::processEvents();
                    }),
           100);
    std::printf("rows shown after the filter: %d\n", window->rowCount());
    return finish();
}
