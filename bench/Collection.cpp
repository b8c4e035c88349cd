#include "Collection.h"

#include "CollectionNames.h"
#include "contents/FileListStore.h"
#include "frame/AppContext.h"
#include "frame/IniFile.h"
#include "search/QueryFragments.h"
#include "store/ContentsLists.h"
#include "store/Db.h"
#include "store/Reanimator.h"
#include "store/Schema.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QDate>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QSet>
#include <cstdio>
#include <unistd.h>

namespace vinora::bench {
namespace {

const QString kStamp = QStringLiteral("complete-1");
const QStringList kSoundFormats = {QStringLiteral("Dolby Digital 2.0"), QStringLiteral("Dolby Digital 5.1"),
                                   QStringLiteral("DTS"), QStringLiteral("Stereo")};
const QDate kToday(2026, 11, 23);

int scaled(int full, double fraction)
{
    return std::max(1, static_cast<int>(full * fraction + 0.5));
}

// Discs in a set: mostly one, now and then up to six.
int setSize(Random& random)
{
    const int draw = random.below(100);
    return draw < 84 ? 1 : draw < 92 ? 2 : draw < 96 ? 3 : draw < 98 ? 4 : draw < 99 ? 5 : 6;
}

// The id of a disc as the recogniser stores it: eight hex digits, one run per catalogue.
QString discId(unsigned catalogueBase, int serial)
{
    return QStringLiteral("%1")
        .arg(catalogueBase + static_cast<unsigned>(serial), 8, 16, QChar(u'0'))
        .toUpper();
}

QString durationText(int seconds)
{
    return QStringLiteral("%1:%2").arg(seconds / 60).arg(seconds % 60, 2, 10, QChar(u'0'));
}

class Generator
{
public:
    Generator(const AppContext& ctx, const CollectionSize& size, Collection& collection)
        : m_ctx(ctx), m_size(size), m_collection(collection), m_names(m_random)
    {
    }

    void run()
    {
        const Db main(m_ctx.MainDBPath);
        Transaction mainWrites(main);
        addAudio(main);
        addComputer(main);
        addDvd(main);
        addLoans(main);
        mainWrites.commit();
        addCovers();
        addShortcuts();
    }

private:
    QString artist()
    {
        return m_random.below(2) == 0 ? m_names.title(2) : QStringLiteral("Группа ") + m_names.title(2);
    }

    void addAudio(const Db& main)
    {
        const Db tracksDb(m_ctx.TracksDBPath);
        const ContentsLists lists(tracksDb, ContentsKind::Tracks);
        Transaction trackWrites(tracksDb);
        Statement track(tracksDb,
                        QStringLiteral("INSERT INTO Треки (ДискID, Номер, Название) VALUES (?, ?, ?)"));
        Statement disc(main,
                       QStringLiteral("INSERT INTO Аудио (Номер, Название, Альбом, Год, Дисков, КодСтиля, "
                                      "ДатаЗаписи, Записей1, Записей2, Записей3, Записей4, Записей5, "
                                      "Записей6, Время1, Время2, Время3, Время4, Время5, Время6, ДискID1, "
                                      "ДискID2, ДискID3, ДискID4, ДискID5, ДискID6, ДискID1_d, ДискID2_d, "
                                      "ДискID3_d, ДискID4_d, ДискID5_d, ДискID6_d) VALUES (?, ?, ?, ?, ?, "
                                      "?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, "
                                      "?, ?, ?)"));
        int serial = 0;
        for (int number = 1; number <= m_size.audioRows; ++number) {
            const int discs = setSize(m_random);
            QVariantList counts, times, ids;
            for (int k = 1; k <= 6; ++k) {
                if (k > discs) {
                    counts.append(QVariant());
                    times.append(QVariant());
                    ids.append(QVariant());
                    continue;
                }
                const QString id = discId(0xA0000000u, ++serial);
                lists.create(id);
                const int tracks = 6 + m_random.below(9);
                int seconds = 0;
                for (int t = 1; t <= tracks; ++t) {
                    track.run({id, t, m_names.title(4)});
                    seconds += 120 + m_random.below(240);
                }
                counts.append(tracks);
                times.append(durationText(seconds));
                ids.append(id);
            }
            QVariantList values{number,
                                artist(),
                                m_names.title(3),
                                QString::number(1960 + m_random.below(66)),
                                discs,
                                2 + m_random.below(30),
                                dateValue(kToday.addDays(-m_random.below(7000)))};
            values += counts + times + ids + ids;
            disc.run(values);
        }
        trackWrites.commit();
    }

    // The rows of every computer disc's list: the largest one holds its share, the others
    // share the rest unevenly.
    void addComputer(const Db& main)
    {
        struct Disc
        {
            int number;
            QString id;
        };
        QList<Disc> discs;
        Statement row(main,
                      QStringLiteral("INSERT INTO Компьютер (Номер, Название, КодОписания, РасОписание, "
                                     "Год, Дисков, ДатаЗаписи, ДискID1, ДискID2, ДискID3, ДискID4, ДискID5, "
                                     "ДискID6, ДискID1_d, ДискID2_d, ДискID3_d, ДискID4_d, ДискID5_d, "
                                     "ДискID6_d) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, ?, "
                                     "?, ?, ?)"));
        m_collection.largestListNumber = (m_size.computerRows + 1) / 2;
        for (int number = 1; number <= m_size.computerRows; ++number) {
            const int count = number == m_collection.largestListNumber ? 1 : setSize(m_random);
            QVariantList ids;
            for (int k = 1; k <= 6; ++k) {
                if (k > count) {
                    ids.append(QVariant());
                    continue;
                }
                const QString id = discId(0xC0000000u, static_cast<int>(discs.size()) + 1);
                discs.append({number, id});
                ids.append(id);
            }
            const QVariant note = m_random.below(3) == 0 ? QVariant(m_names.title(6)) : QVariant();
            QVariantList values{number,
                                m_names.title(3),
                                2 + m_random.below(22),
                                note,
                                QString::number(1995 + m_random.below(31)),
                                count,
                                dateValue(kToday.addDays(-m_random.below(7000)))};
            values += ids + ids;
            row.run(values);
        }

        QList<int> weights;
        qint64 weightSum = 0;
        for (const Disc& disc : discs) {
            weights.append(disc.number == m_collection.largestListNumber ? 0 : 50 + m_random.below(100));
            weightSum += weights.constLast();
        }
        const qint64 shared = m_size.fileRows - m_size.largestListRows;
        const Db filesDb(m_ctx.FilesDBPath);
        const ContentsLists lists(filesDb, ContentsKind::Files);
        for (int i = 0; i < discs.size(); ++i) {
            const Disc& disc = discs.at(i);
            const bool largest = disc.number == m_collection.largestListNumber;
            const int rows = largest ? m_size.largestListRows
                                     : std::max<int>(2, static_cast<int>(shared * weights.at(i) / weightSum));
            if (largest) {
                m_collection.largestListId = disc.id;
            }
            lists.create(disc.id);
            FileListWriter writer(filesDb, disc.id);
            writer.write(m_names.fileTree(rows));
            writer.commit();
        }
    }

    void addDvd(const Db& main)
    {
        Statement row(main,
                      QStringLiteral("INSERT INTO DVD (Номер, Название, Описание, Год, Дисков, Время, Зона, "
                                     "КодЖанр, ФорматЗвука, ДатаЗаписи, ДискID1_d, ДискID2_d) VALUES (?, ?, "
                                     "?, ?, ?, ?, ?, ?, ?, ?, ?, ?)"));
        for (int number = 1; number <= m_size.dvdRows; ++number) {
            const int discs = m_random.below(10) == 0 ? 2 : 1;
            const QString first = discId(0xD0000000u, 2 * number - 1);
            const QVariant second = discs == 2 ? QVariant(discId(0xD0000000u, 2 * number)) : QVariant();
            row.run({number, m_names.title(3), m_names.title(8), QString::number(1970 + m_random.below(56)),
                     discs, 80 + m_random.below(100), 1 + m_random.below(6), 2 + m_random.below(9),
                     kSoundFormats.at(m_random.below(static_cast<int>(kSoundFormats.size()))),
                     dateValue(kToday.addDays(-m_random.below(7000))), first, second});
        }
    }

    // Loans over three years; a few borrowers take many discs, most a few. The newest loan of
    // a disc in five is still open, and the disc is marked as out.
    void addLoans(const Db& main)
    {
        Statement borrower(main, QStringLiteral("INSERT INTO ИменаДолжников (Имя, Телефон) VALUES (?, ?)"));
        for (int i = 1; i <= m_size.borrowers; ++i) {
            const QString name = m_names.title(2) + u' ' + QString::number(i);
            borrower.run({name, QStringLiteral("8-9%1").arg(m_random.below(1000000000), 9, 10, QChar(u'0'))});
        }
        Statement loan(
            main, QStringLiteral("INSERT INTO Должники (КодИмяДолжника, КодДиска, Категория, ДатаВыдачи, "
                                 "ДатаВозврата, ДатаВозвратаРеальная, Долг) VALUES (?, ?, ?, ?, ?, ?, ?)"));
        const QList<std::pair<QString, int>> catalogues = {{QStringLiteral("AD"), m_size.audioRows},
                                                           {QStringLiteral("PC"), m_size.computerRows},
                                                           {QStringLiteral("DVD"), m_size.dvdRows}};
        QSet<QString> out;
        for (int i = 0; i < m_size.loans; ++i) {
            const int draw = m_random.below(20);
            const auto& [code, rows] = catalogues.at(draw < 15 ? 0 : draw < 16 ? 1 : 2);
            const int disc = 1 + m_random.below(rows);
            const QString key = code + QString::number(disc);
            // The last loans of the ledger are the newest; a fifth of them are open.
            const bool open =
                i >= m_size.loans - m_size.loans / 3 && m_random.below(3) < 2 && !out.contains(key);
            const QDate issued =
                kToday.addDays(-(m_size.loans - i) * 1000 / m_size.loans - m_random.below(20));
            const QVariant due =
                m_random.below(10) == 0 ? QVariant() : QVariant(dateValue(issued.addDays(14)));
            loan.run({1 + m_random.zipf(m_size.borrowers), disc, code, dateValue(issued), due,
                      open ? QVariant() : dateValue(issued.addDays(5 + m_random.below(30))),
                      open ? kTrue : kFalse});
            if (open) {
                out.insert(key);
                const QString table = code == u"AD"   ? QStringLiteral("Аудио")
                                      : code == u"PC" ? QStringLiteral("Компьютер")
                                                      : QStringLiteral("DVD");
                main.exec(QStringLiteral("UPDATE ") + quoted(table) +
                              QStringLiteral(" SET Должник = -1 WHERE Номер = ?"),
                          {disc});
            }
        }
    }

    // Covers for every tenth row of each catalogue, from a handful of pictures.
    void addCovers()
    {
        QList<QByteArray> pictures;
        for (int i = 0; i < 8; ++i) {
            QImage image(300, 300, QImage::Format_RGB32);
            image.fill(QColor::fromHsv(i * 45, 160, 200));
            QPainter painter(&image);
            painter.setPen(Qt::white);
            painter.drawEllipse(40 + i * 5, 40, 220 - i * 10, 220);
            painter.end();
            QByteArray bytes;
            QBuffer buffer(&bytes);
            buffer.open(QIODevice::WriteOnly);
            image.save(&buffer, "JPG", 85);
            pictures.append(bytes);
        }
        const QDir box(m_ctx.appFile(QStringLiteral("box")));
        QDir().mkpath(box.path());
        const QList<std::pair<QString, int>> catalogues = {{QStringLiteral("ad_"), m_size.audioRows},
                                                           {QStringLiteral("pc_"), m_size.computerRows},
                                                           {QStringLiteral("dvd_"), m_size.dvdRows}};
        for (const auto& [prefix, rows] : catalogues) {
            for (int number = 10; number <= rows; number += 10) {
                QFile cover(box.filePath(prefix + QString::number(number) + QStringLiteral(".box")));
                cover.open(QIODevice::WriteOnly);
                cover.write(pictures.at(number / 10 % pictures.size()));
            }
        }
    }

    void addShortcuts()
    {
        const IniFile queryIni(m_ctx.QueryIniFilePath);
        for (int i = 1; i <= m_size.shortcuts; ++i) {
            QueryShortcut shortcut;
            shortcut.name = QStringLiteral("Запрос %1 ").arg(i) + m_names.russianWord();
            shortcut.category = i % 3 == 0   ? Category::Dvd
                                : i % 3 == 1 ? Category::Audio
                                             : Category::Computer;
            shortcut.conditions[0] = {QStringLiteral("Название"), QStringLiteral("LIKE"), m_names.word()};
            if (i % 2 == 0) {
                shortcut.conditions[1] = {kNumberField, QStringLiteral(">"), QString::number(i * 100)};
            }
            saveShortcut(queryIni, shortcut);
        }
    }

    const AppContext& m_ctx;
    const CollectionSize& m_size;
    Collection& m_collection;
    Random m_random{20261124};
    NameMaker m_names;
};

void copyFolder(const QString& from, const QString& to)
{
    QDir().mkpath(to);
    QDirIterator files(from, QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        const QString path = files.next();
        const QString target = QDir(to).filePath(QDir(from).relativeFilePath(path));
        if (files.fileInfo().isDir()) {
            QDir().mkpath(target);
        } else if (!QFile::copy(path, target)) {
            throw AppError(err::PathFileAccess, QStringLiteral("Cannot copy ") + path);
        }
    }
}

} // namespace

CollectionSize collectionSize(double fraction)
{
    const CollectionSize full;
    CollectionSize size;
    size.fraction = fraction;
    size.audioRows = scaled(full.audioRows, fraction);
    size.computerRows = scaled(full.computerRows, fraction);
    size.dvdRows = scaled(full.dvdRows, fraction);
    size.fileRows = scaled(full.fileRows, fraction);
    size.largestListRows = scaled(full.largestListRows, fraction);
    size.borrowers = scaled(full.borrowers, fraction);
    size.loans = scaled(full.loans, fraction);
    return size;
}

QString benchDataFolder()
{
    return qEnvironmentVariable("VINORA_BENCH_DATA",
                                QCoreApplication::applicationDirPath() + QStringLiteral("/data"));
}

Collection benchCollection()
{
    const double fraction = qEnvironmentVariable("VINORA_BENCH_SCALE", QStringLiteral("1")).toDouble();
    Collection collection;
    collection.size = collectionSize(fraction > 0 && fraction <= 1 ? fraction : 1.0);
    collection.folder =
        QDir(benchDataFolder())
            .filePath(QStringLiteral("collection-") + QString::number(collection.size.fraction));
    const QString facts = QDir(collection.folder).filePath(kStamp);
    QFile stamp(facts);
    if (stamp.open(QIODevice::ReadOnly)) {
        const QStringList fields = QString::fromUtf8(stamp.readAll()).split(u' ');
        if (fields.size() == 2) {
            collection.largestListNumber = fields.at(0).toInt();
            collection.largestListId = fields.at(1);
            return collection;
        }
    }
    QDir(collection.folder).removeRecursively();
    QDir().mkpath(collection.folder);
    std::printf("making the collection at %g of full size in %s (once)...\n", collection.size.fraction,
                qPrintable(collection.folder));
    std::fflush(stdout);
    UnattendedPrompter prompts;
    SystemClock clock;
    AppContext ctx(collection.folder, prompts, clock);
    Reanimator(ctx, 0);
    Generator(ctx, collection.size, collection).run();
    stamp.open(QIODevice::WriteOnly);
    stamp.write(
        QStringLiteral("%1 %2").arg(collection.largestListNumber).arg(collection.largestListId).toUtf8());
    return collection;
}

void copyCollection(const Collection& collection, const QString& target)
{
    QDir(target).removeRecursively();
    copyFolder(collection.folder, target);
    QFile::remove(QDir(target).filePath(kStamp));
    // The copy goes to the disc now: otherwise the first flush a benchmark measures would
    // write out hundreds of megabytes of it.
    ::sync();
}

QString firstTrackListId()
{
    return discId(0xA0000000u, 1);
}

namespace {

QString openedFolder(const Collection& collection, const QString& copy)
{
    describeCollection(collection);
    if (copy.isEmpty()) {
        return collection.folder;
    }
    const QString target = QDir(benchDataFolder()).filePath(copy);
    copyCollection(collection, target);
    return target;
}

} // namespace

CollectionApp::CollectionApp(const QString& copy)
    : collection(benchCollection()), folder(openedFolder(collection, copy))
{
}

CollectionApp::~CollectionApp()
{
    if (folder != collection.folder) {
        QDir(folder).removeRecursively();
    }
}

void describeCollection(const Collection& collection)
{
    UnattendedPrompter prompts;
    SystemClock clock;
    const AppContext ctx(collection.folder, prompts, clock);
    const Db main(ctx.MainDBPath, Db::Access::ReadOnly);
    const auto count = [](const Db& db, const char* sql) {
        return db.scalar(QString::fromUtf8(sql)).toLongLong();
    };
    const qint64 rows =
        count(main, "SELECT (SELECT count(*) FROM Аудио) + (SELECT count(*) FROM Компьютер) + "
                    "(SELECT count(*) FROM DVD)");
    const qint64 discs =
        count(main, "SELECT (SELECT sum(Дисков) FROM Аудио) + (SELECT sum(Дисков) FROM Компьютер) "
                    "+ (SELECT sum(Дисков) FROM DVD)");
    const qint64 loans = count(main, "SELECT count(*) FROM Должники");
    const Db files(ctx.FilesDBPath, Db::Access::ReadOnly);
    const Db tracks(ctx.TracksDBPath, Db::Access::ReadOnly);
    std::printf(
        "collection at %g: %lld rows (%lld discs), %lld file rows, %lld tracks, %lld loans; largest list "
        "%d rows (computer disc %d)\n",
        collection.size.fraction, rows, discs, count(files, "SELECT count(*) FROM Файлы"),
        count(tracks, "SELECT count(*) FROM Треки"), loans, collection.size.largestListRows,
        collection.largestListNumber);
}

} // namespace vinora::bench
