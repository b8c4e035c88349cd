// Makes docs/screenshots/catalogue-*.png and editor.png: the three catalogue browsers on a
// catalogue of a few dozen discs with a cover, and the disc editor; filelist.png; loans.png
// and rating.png: the debtor list and the statistics of a dozen loans; tracklist.png: the
// track list of an audio disc; search.png: the search through the file lists; cddb.png: the CDDB query two
// seconds into its wait for a server; options.png: the options dialog. The windows draw
// themselves (no display needed).
#include "catalogue/CatalogueOps.h"
#include "catalogue/frmAddInCatalogue.h"
#include "catalogue/frmCatalogue.h"
#include "cddb/frmCDDB.h"
#include "contents/FileListStore.h"
#include "contents/TrackListStore.h"
#include "contents/frmFileList.h"
#include "contents/frmTrackList.h"
#include "frame/AppContext.h"
#include "frame/Version.h"
#include "lending/LoanLedger.h"
#include "lending/frmDue.h"
#include "lending/frmDueStat.h"
#include "options/frmOption.h"
#include "recognition/Drives.h"
#include "recognition/VolumeReader.h"
#include "search/frmDBFind.h"
#include "store/ContentsLists.h"
#include "store/Db.h"
#include "store/InfoStamp.h"
#include "store/Reanimator.h"
#include "ui/DesktopTheme.h"
#include "ui/QtPrompter.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QIcon>
#include <QImage>
#include <QLineEdit>
#include <QLinearGradient>
#include <QPainter>
#include <QTabWidget>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTimer>
#include <QTreeWidget>

using namespace vinora;

namespace {

void fill(AppContext& ctx)
{
    Db db(ctx.MainDBPath);
    const char* const artists[] = {
        "Кино", "Аквариум", "Pink Floyd",     "ДДТ",    "The Beatles", "Наутилус Помпилиус",
        "Ария", "Queen",    "Машина времени", "Земфира"};
    const char* const albums[] = {"Группа крови", "Равноденствие", "The Wall",       "Это всё",
                                  "Abbey Road",   "Разлука",       "Герой асфальта", "A Night at the Opera",
                                  "Реки и мосты", "Вендетта"};
    for (int i = 0; i < 36; ++i) {
        db.exec(QStringLiteral(
                    "INSERT INTO Аудио (Номер, Название, Альбом, Год, Дисков, Записей1, Время1, КодСтиля) "
                    "VALUES (?, ?, ?, ?, ?, ?, ?, ?)"),
                {i + 1, QString::fromUtf8(artists[i % 10]), QString::fromUtf8(albums[i % 10]),
                 QString::number(1979 + i), i % 7 == 0 ? 2 : 1, 10 + i % 6,
                 QStringLiteral("4%1:1%2").arg(i % 10).arg(i % 6), 1 + (i * 7) % 30});
        db.exec(
            QStringLiteral("INSERT INTO Компьютер (Номер, Название, КодОписания, Год, Дисков, РасОписание) "
                           "VALUES (?, ?, ?, ?, 1, ?)"),
            {i + 1, QStringLiteral("Сборник программ %1").arg(2000 + i), 1 + i % 22,
             QString::number(2000 + i), QStringLiteral("Утилиты, драйверы и документация")});
        db.exec(
            QStringLiteral(
                "INSERT INTO DVD (Номер, Название, Описание, Год, Дисков, Время, Зона, КодЖанр, ФорматЗвука) "
                "VALUES (?, ?, ?, ?, 1, ?, 5, ?, '2,5,')"),
            {i + 1, QStringLiteral("Фильм № %1").arg(i + 1), QStringLiteral("Режиссёрская версия"),
             QString::number(1990 + i), 90 + i, 1 + i % 9});
    }
    for (const Category category : allCategories()) {
        StampCatalogueUpdate(db, category, QDate::currentDate());
    }
}

// A dozen loans: some returned late, some out, two overdue, one without term.
void lend(AppContext& ctx)
{
    const Db db(ctx.MainDBPath);
    const char* const borrowers[] = {"Андрей Смирнов", "Ольга Кузнецова", "Дмитрий Попов", "Мария Волкова"};
    const QDate today = QDate::currentDate();
    for (int i = 0; i < 12; ++i) {
        const Category category = allCategories()[static_cast<std::size_t>(i % 3)];
        const LoanDisc disc = *findLoanDisc(db, category, 2 + i);
        const QString name = QString::fromUtf8(borrowers[i % 4]);
        const QDate issued = today.addDays(-90 + i * 5);
        lendDisc(db, disc, name, i == 5 ? std::nullopt : std::optional(issued.addDays(14)), issued);
        if (i % 3 == 1 && i < 10) {
            returnDisc(db, category, disc.key, issued.addDays(14 + i * 3)); // 3, 12 and 21 days late
        }
    }
}

QString makeCover(const QString& folder)
{
    QImage cover(300, 300, QImage::Format_RGB32);
    QPainter painter(&cover);
    QLinearGradient gradient(0, 0, 300, 300);
    gradient.setColorAt(0, QColor(0x7a, 0x2e, 0x4f));
    gradient.setColorAt(1, QColor(0x2f, 0x5e, 0x8e));
    painter.fillRect(cover.rect(), gradient);
    painter.setPen(Qt::white);
    QFont font = painter.font();
    font.setPixelSize(36);
    font.setBold(true);
    painter.setFont(font);
    painter.drawText(cover.rect(), Qt::AlignCenter, QStringLiteral("Группа\nкрови"));
    painter.end();
    const QString path = folder + QStringLiteral("/cover.png");
    cover.save(path);
    return path;
}

// A CUE sheet of three silent audio tracks of `sectors` each.
QString audioImage(const QString& folder, int sectors)
{
    QFile bin(folder + QStringLiteral("/album.bin"));
    if (!bin.open(QIODevice::WriteOnly) || !bin.resize(qint64(sectors) * 3 * 2352)) {
        return {};
    }
    QString sheet = QStringLiteral("FILE \"album.bin\" BINARY\n");
    for (int track = 0; track < 3; ++track) {
        const int start = track * sectors;
        sheet += QStringLiteral("  TRACK %1 AUDIO\n    INDEX 01 %2:%3:%4\n")
                     .arg(track + 1, 2, 10, QLatin1Char('0'))
                     .arg(start / 4500, 2, 10, QLatin1Char('0'))
                     .arg(start / 75 % 60, 2, 10, QLatin1Char('0'))
                     .arg(start % 75, 2, 10, QLatin1Char('0'));
    }
    QFile cue(folder + QStringLiteral("/album.cue"));
    if (!cue.open(QIODevice::WriteOnly)) {
        return {};
    }
    cue.write(sheet.toLatin1());
    return cue.fileName();
}

// The window as a desktop would frame it: its caption above its contents (offscreen
// windows have no frame of their own, and this caption is the dialog's clock).
QImage withCaption(QWidget& window)
{
    const QPixmap contents = window.grab();
    const int bar = 30;
    QImage framed(contents.width(), contents.height() + bar, QImage::Format_ARGB32);
    framed.fill(window.palette().color(QPalette::Window).darker(115));
    QPainter painter(&framed);
    painter.setPen(window.palette().color(QPalette::WindowText));
    QFont font = window.font();
    font.setBold(true);
    painter.setFont(font);
    painter.drawText(QRect(0, 0, framed.width(), bar), Qt::AlignCenter, window.windowTitle());
    painter.drawPixmap(0, bar, contents);
    return framed;
}

// The CDDB dialog waiting for a server that has taken the call and says nothing.
void shootCddbQuery(AppContext& ctx, const QString& folder, const QString& out)
{
    QTcpServer silent;
    silent.listen(QHostAddress::LocalHost);
    ctx.ini().write(QStringLiteral("CDDBServers"), QStringLiteral("Server3"),
                    QStringLiteral("localhost:") + QString::number(silent.serverPort()));
    frmCDDB query(ctx, audioImage(folder, 900), QStringLiteral("3: localhost"));
    QTimer::singleShot(2300, &query, [&] {
        withCaption(query).save(out + QStringLiteral("/cddb.png"));
        query.reject();
    });
    query.exec();
}

} // namespace

int main(int argc, char* argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QLocale::setDefault(QLocale(QLocale::Russian, QLocale::Russia));
    QIcon::setThemeName(QStringLiteral("Adwaita"));
    installRussianTranslations(app);
    const QString out = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QStringLiteral("docs/screenshots");
    QTemporaryDir dir;
    QtPrompter prompter;
    SystemClock clock;
    AppContext ctx(dir.path(), prompter, clock);
    Reanimator(ctx, 0);
    fill(ctx);
    const QString cover = makeCover(dir.path());
    for (const Category category : allCategories()) {
        setCover(ctx, catalogueKind(category), 1, cover);
    }
    const char* const names[] = {"catalogue-audio.png", "catalogue-pc.png", "catalogue-dvd.png"};
    for (const Category category : allCategories()) {
        frmCatalogue window(ctx, category);
        window.resize(900, 560);
        window.show();
        if (category == Category::Dvd) {
            window.findChild<QTabWidget*>(QStringLiteral("TabStrip"))->setCurrentIndex(1);
        }
        QApplication::processEvents();
        window.grab().save(out + u'/' + QString::fromLatin1(names[static_cast<int>(category)]));
    }
    {
        // The file list of computer disc 1: the program's own sources stand in for a disc.
        const Db files(ctx.FilesDBPath);
        ContentsLists(files, ContentsKind::Files).create(QStringLiteral("5A3C19E2"));
        FileListWriter writer(files, QStringLiteral("5A3C19E2"));
        const auto volume = openFolderReader(QString::fromUtf8(kSourceResources) + QStringLiteral("/../src"));
        FileListScanner scanner(*volume, ScanOptions{}, {});
        scanner.onRows = [&writer](const QList<FileRow>& rows) { writer.write(rows); };
        scanner.run();
        writer.commit();
        CreateLinkDiskID(ctx, 1, 1, QStringLiteral("5A3C19E2"), false);
        frmFileList list(ctx, 1, QStringLiteral("Сборник программ 2000"), 1);
        list.selectFolder(1);
        list.show();
        QApplication::processEvents();
        list.grab().save(out + QStringLiteral("/filelist.png"));

        // The search through the file lists for the windows among those sources.
        frmDBFind search(ctx, QStringLiteral("PC"));
        search.resize(760, 520);
        search.show();
        search.findChild<QLineEdit*>(QStringLiteral("txtSearchText"))->setText(QStringLiteral("frm"));
        search.cmdSearch();
        while (search.searching()) {
            QApplication::processEvents(QEventLoop::AllEvents, 50);
        }
        auto* hits = search.findChild<QTreeWidget*>(QStringLiteral("lvFind"));
        hits->setCurrentItem(hits->topLevelItem(2));
        QApplication::processEvents();
        search.grab().save(out + QStringLiteral("/search.png"));
    }
    {
        // The track list of audio disc 1 (Кино, "Группа крови").
        const char* const songs[] = {"Группа крови",
                                     "Закрой за мной дверь, я ухожу",
                                     "Война",
                                     "Спокойная ночь",
                                     "Мама, мы все тяжело больны",
                                     "Попробуй спеть вместе со мной",
                                     "Песня без слов",
                                     "Бошетунмай",
                                     "Звезда по имени Солнце",
                                     "Легенда",
                                     "Прохожий"};
        QList<QVariant> names;
        for (const char* song : songs) {
            names.append(QString::fromUtf8(song));
        }
        const QString id = QStringLiteral("2C1F0B0B");
        CreateTrackTable(ctx, id, false);
        writeTrackNames(ctx, id, names);
        setTrackComment(ctx, id, readTrackList(ctx, id).at(8).row, QStringLiteral("Лучшая песня альбома"));
        linkTrackList(ctx, 1, 1, id, static_cast<int>(names.size()), 2732);
        ctx.DiscIDSlots = {id};
        ctx.CurrentDiscID = id;
        frmTrackList tracks(ctx, 1, QStringLiteral("Кино"), QStringLiteral("Группа крови"), 1);
        tracks.show();
        QApplication::processEvents();
        tracks.grab().save(out + QStringLiteral("/tracklist.png"));
    }
    frmAddInCatalogue editor(ctx, Category::Audio, frmAddInCatalogue::Mode::Change, 1);
    editor.show();
    QApplication::processEvents();
    editor.grab().save(out + QStringLiteral("/editor.png"));

    lend(ctx);
    frmDue loans(ctx, [](Category, PickMode) { return 0; });
    loans.resize(760, 560);
    loans.show();
    QApplication::processEvents();
    loans.grab().save(out + QStringLiteral("/loans.png"));
    frmDueStat rating(ctx, QStringLiteral("Мария Волкова"));
    rating.resize(820, 480);
    rating.show();
    QApplication::processEvents();
    rating.grab().save(out + QStringLiteral("/rating.png"));
    shootCddbQuery(ctx, dir.path(), out);

    // The options with a disc image registered as a drive and a few settings of a user.
    const QString image = QDir(dir.path()).filePath(QStringLiteral("Отпуск 2026.iso"));
    QFile(image).open(QIODevice::WriteOnly);
    addVirtualDrive(ctx.ini(), image);
    ctx.ini().write(QStringLiteral("Option"), QStringLiteral("ConfirmExit"), QStringLiteral("0"));
    ctx.ini().write(QStringLiteral("Option"), QStringLiteral("SaveSortedCatalogue"), QStringLiteral("1"));
    ctx.ini().write(QStringLiteral("Option"), QStringLiteral("Drive"), image);
    frmOption options(ctx);
    options.show();
    QApplication::processEvents();
    withCaption(options).save(out + QStringLiteral("/options.png"));
    return 0;
}
