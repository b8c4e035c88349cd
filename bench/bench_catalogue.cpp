// The screens of the collection: each catalogue opened with its first screen shown, one
// keystroke of its name filter, and the window of the largest disc's file list (its folder
// tree and the list of its first folder) and of an audio disc's track list.
#include "BenchSupport.h"
#include "BenchWindows.h"
#include "Collection.h"
#include "catalogue/frmCatalogue.h"
#include "contents/frmFileList.h"
#include "contents/frmTrackList.h"
#include "store/Db.h"

#include <QApplication>
#include <QLineEdit>
#include <QTest>

using namespace vinora;
using namespace vinora::bench;

namespace {

void openCatalogue(AppContext& ctx, Category category, const char* openLine, const char* filterLine)
{
    std::unique_ptr<frmCatalogue> window;
    report(openLine,
           medianMs(5,
                    [&] {
                        window.reset();
                        window = std::make_unique<frmCatalogue>(ctx, category);
                        window->show();
                        QApplication::processEvents();
                    }),
           100);
    auto* name = window->findChild<QLineEdit*>(QStringLiteral("txtName"));
    name->setFocus();
    // Each keystroke narrows the whole catalogue to the titles holding one letter.
    int keystroke = 0;
    report(filterLine,
           medianMs(7,
                    [&] {
                        name->clear();
                        QTest::keyClick(name, keystroke++ % 2 ? u'а' : 'e');
                        QApplication::processEvents();
                    }),
           50);
    std::printf("%-62s %d rows shown after the keystroke\n", "", window->rowCount());
}

} // namespace

int main(int argc, char* argv[])
{
    const OffscreenWindows windows(argc, argv);
    CollectionApp opened;
    const Collection& collection = opened.collection;
    AppContext& ctx = opened.ctx;

    openCatalogue(ctx, Category::Audio, "open the audio catalogue, first screen shown",
                  "one keystroke of the audio catalogue's name filter");
    openCatalogue(ctx, Category::Computer, "open the computer catalogue, first screen shown",
                  "one keystroke of the computer catalogue's name filter");
    openCatalogue(ctx, Category::Dvd, "open the DVD catalogue, first screen shown",
                  "one keystroke of the DVD catalogue's name filter");

    const QString title = [&] {
        const Db main(ctx.MainDBPath, Db::Access::ReadOnly);
        return main
            .scalar(QStringLiteral("SELECT Название FROM Компьютер WHERE Номер = ?"),
                    {collection.largestListNumber})
            .toString();
    }();
    // As the catalogue hands a set to its list windows: the ids of its discs, the first on view.
    const auto showSet = [&ctx](const QString& firstId) {
        ctx.DiscIDSlots = {firstId};
        ctx.CurrentDiscID = firstId;
    };
    std::unique_ptr<frmFileList> files;
    report("the largest disc's file list window: tree and first folder",
           medianMs(5,
                    [&] {
                        files.reset();
                        showSet(collection.largestListId);
                        files = std::make_unique<frmFileList>(ctx, collection.largestListNumber, title, 1);
                        files->show();
                        QApplication::processEvents();
                    }),
           200);
    files.reset();

    std::unique_ptr<frmTrackList> tracks;
    report("an audio set's track list window",
           medianMs(5,
                    [&] {
                        tracks.reset();
                        showSet(firstTrackListId());
                        tracks = std::make_unique<frmTrackList>(ctx, 1, QStringLiteral("Исполнитель"),
                                                                QStringLiteral("Альбом"), 1);
                        tracks->show();
                        QApplication::processEvents();
                    }),
           100);
    return finish();
}
