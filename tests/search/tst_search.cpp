#include "frame/AppContext.h"
#include "search/ContentsSearch.h"
#include "search/SearchTexts.h"
#include "store/ContentsLists.h"
#include "store/Db.h"
#include "store/Reanimator.h"
#include "store/Schema.h"
#include "store/SearchIndex.h"
#include "support/ScriptedPrompter.h"
#include "support/TestFolders.h"
#include "support/TestMain.h"

#include <QFile>

using namespace vinora;

namespace {

// Computer discs, by catalogue row: number 12 (lists AAAA, BBBB), number 5 (CCCC as disc 1,
// DDDD as disc 3, disc 4 naming a list that is not there), number 7 without lists.
// Audio discs: number 3 (T1, T2), number 1 (T3, and disc 2 naming no list).
struct FileRow
{
    const char* id;
    const char* name;
    const char* path;
    const char* comment;
};

const QList<FileRow> kFiles = {
    {"AAAA", "\\", "\\", "корень"},
    {"AAAA", "Ёлка.txt", "\\", nullptr},
    {"AAAA", "\\Музыка\\", "\\Музыка\\", "Группа"},
    {"AAAA", "Группа крови.mp3", "\\Музыка\\", "ГРУППА"},
    {"AAAA", "\\Docs\\", "\\Docs\\", nullptr},
    {"AAAA", "README.md", "\\Docs\\", "Readme"},
    {"BBBB", "\\", "\\", nullptr},
    {"BBBB", "ёлка", "\\", "rock"},
    {"BBBB", "Rock Ballads.txt", "\\", nullptr},
    {"BBBB", "rock", "\\", nullptr},
    {"CCCC", "\\Rock\\", "\\Rock\\", "rock"},
    {"CCCC", "100%_done.txt", "\\Rock\\", nullptr},
    {"CCCC", "100xydone.txt", "\\Rock\\", nullptr},
    {"CCCC", "it's \"q\".txt", "\\Rock\\", nullptr},
    {"CCCC", "a[b]c.txt", "\\Rock\\", nullptr},
    {"CCCC", "abc.txt", "\\Rock\\", nullptr},
    {"CCCC", "#1.txt", "\\Rock\\", nullptr},
    {"CCCC", "11.txt", "\\Rock\\", nullptr},
    {"DDDD", "\\Ёлка\\", "\\Ёлка\\", nullptr},
    {"DDDD", "track.mp3", "\\Ёлка\\", nullptr},
};

struct TrackRow
{
    const char* id;
    int number;
    const char* title;
    const char* comment;
};

const QList<TrackRow> kTracks = {
    {"T1", 1, "Группа крови", "хит"},   {"T1", 2, "Кукушка", nullptr}, {"T2", 1, "группа", nullptr},
    {"T2", 2, "Rock Ballads", nullptr}, {"T3", 1, "ROCK", nullptr},
};

QVariant text(const char* value)
{
    return value ? QVariant(QString::fromUtf8(value)) : QVariant();
}

void fillCatalogue(const AppContext& ctx)
{
    createMainDatabase(ctx.MainDBPath);
    createFilesDatabase(ctx.FilesDBPath);
    createTracksDatabase(ctx.TracksDBPath);
    {
        const Db db(ctx.MainDBPath);
        db.exec("INSERT INTO Компьютер (Номер, Название, КодОписания, Дисков, ДискID1, ДискID2) "
                "VALUES (12, 'Первый', 1, 2, 'AAAA', 'BBBB')");
        db.exec("INSERT INTO Компьютер (Номер, Название, КодОписания, Дисков, ДискID1, ДискID3, ДискID4) "
                "VALUES (5, 'Второй', 1, 4, 'CCCC', 'DDDD', 'GONE')");
        db.exec("INSERT INTO Компьютер (Номер, Название, КодОписания, Дисков) VALUES (7, 'Пустой', 1, 1)");
        db.exec("INSERT INTO Аудио (Номер, Название, КодСтиля, Дисков, ДискID1, ДискID2) "
                "VALUES (3, 'Кино', 1, 2, 'T1', 'T2')");
        db.exec("INSERT INTO Аудио (Номер, Название, КодСтиля, Дисков, ДискID1, ДискID2) "
                "VALUES (1, 'Сборник', 1, 2, 'T3', 'NOLIST')");
    }
    const Db files(ctx.FilesDBPath);
    const ContentsLists fileLists(files, ContentsKind::Files);
    for (const char* id : {"AAAA", "BBBB", "CCCC", "DDDD"}) {
        fileLists.create(QString::fromUtf8(id));
    }
    for (const FileRow& row : kFiles) {
        files.exec("INSERT INTO Файлы (ДискID, Имя, Путь, Размер, Комментарий) VALUES (?, ?, ?, '1', ?)",
                   {text(row.id), text(row.name), text(row.path), text(row.comment)});
    }
    const Db tracks(ctx.TracksDBPath);
    const ContentsLists trackLists(tracks, ContentsKind::Tracks);
    for (const char* id : {"T1", "T2", "T3"}) {
        trackLists.create(QString::fromUtf8(id));
    }
    for (const TrackRow& row : kTracks) {
        tracks.exec("INSERT INTO Треки (ДискID, Номер, Название, Комментарий) VALUES (?, ?, ?, ?)",
                    {text(row.id), row.number, text(row.title), text(row.comment)});
    }
}

// Leaves the contents databases as a version without the search index made them.
void dropSearchIndex(const AppContext& ctx)
{
    for (const ContentsKind kind : {ContentsKind::Files, ContentsKind::Tracks}) {
        const Db db(kind == ContentsKind::Files ? ctx.FilesDBPath : ctx.TracksDBPath);
        const ContentsDescriptor& descriptor = contentsDescriptor(kind);
        for (const QString& trigger :
             db.texts("SELECT name FROM sqlite_master WHERE type = 'trigger' AND tbl_name = ?",
                      {descriptor.rowsTable})) {
            db.exec("DROP TRIGGER " + quoted(trigger));
        }
        for (const QString& field : descriptor.searchedFields) {
            db.exec("DROP TABLE " + quoted(searchIndexTable(descriptor, field)));
        }
    }
}

// A hit as "number/place path|name", the place always written.
QString hitText(const SearchHit& hit)
{
    return QStringLiteral("%1/%2 %3|%4").arg(hit.number).arg(hit.disc).arg(hit.path, hit.name);
}

struct Collected
{
    QStringList hits;
    int batches = 0;
    SearchOutcome outcome;
};

Collected collect(const AppContext& ctx, const SearchRequest& request, int batchSize = kSearchBatch,
                  std::atomic_bool* stop = nullptr, bool stopAfterFirst = false)
{
    Collected result;
    result.outcome = searchContents(
        searchDatabases(ctx, request), request,
        [&](const QList<SearchHit>& batch) {
            ++result.batches;
            for (const SearchHit& hit : batch) {
                result.hits.append(hitText(hit));
            }
            if (stopAfterFirst) {
                *stop = true;
            }
        },
        stop, batchSize);
    return result;
}

int errorOf(const std::function<void()>& work)
{
    try {
        work();
    } catch (const AppError& error) {
        return error.number();
    }
    return 0;
}

const QStringList kAllFiles = {
    "12/1 \\|Ёлка.txt",
    "12/1 \\Музыка\\|Группа крови.mp3",
    "12/1 \\Docs\\|README.md",
    "12/2 \\|ёлка",
    "12/2 \\|Rock Ballads.txt",
    "12/2 \\|rock",
    "5/1 \\Rock\\|100%_done.txt",
    "5/1 \\Rock\\|100xydone.txt",
    "5/1 \\Rock\\|it's \"q\".txt",
    "5/1 \\Rock\\|a[b]c.txt",
    "5/1 \\Rock\\|abc.txt",
    "5/1 \\Rock\\|#1.txt",
    "5/1 \\Rock\\|11.txt",
    "5/3 \\Ёлка\\|track.mp3",
};

} // namespace

class tst_search : public QObject
{
    Q_OBJECT

    test::TestApp m_app;
    test::TestApp m_unindexed; // the same catalogue as a version without the search index made it

    // `switches` names those set of "tracks folders whole comments".
    static void row(const char* tag, const QString& switches, const QString& text,
                    const QStringList& expected)
    {
        QTest::newRow(tag) << switches << text << expected;
    }
    static void addRequestColumns()
    {
        QTest::addColumn<QString>("switches");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("expected");
    }
    static SearchRequest fetchedRequest()
    {
        QFETCH(QString, switches);
        QFETCH(QString, text);
        return {switches.contains("tracks"), switches.contains("folders"), switches.contains("whole"),
                switches.contains("comments"), text};
    }

private slots:
    void initTestCase()
    {
        fillCatalogue(m_app.ctx);
        fillCatalogue(m_unindexed.ctx);
        dropSearchIndex(m_unindexed.ctx);
    }

    // Every combination of the search's switches: the field compared, whole or contains, and
    // the kind of row kept (file rows for names, folder rows for paths, either way for comments).
    void criteria_data()
    {
        addRequestColumns();
        row("name contains", "", "ёлка", {"12/1 \\|Ёлка.txt", "12/2 \\|ёлка"});
        row("name contains, comments of files", "comments", "группа", {"12/1 \\Музыка\\|Группа крови.mp3"});
        row("path contains", "folders", "ЁЛКА", {"5/3 \\Ёлка\\|\\Ёлка\\"});
        row("path contains, comments of folders", "folders comments", "ГРУППА",
            {"12/1 \\Музыка\\|\\Музыка\\"});
        row("name whole", "whole", "ROCK", {"12/2 \\|rock"});
        row("name whole, comments of files", "whole comments", "rock", {"12/2 \\|ёлка"});
        row("path whole", "folders whole", "\\rock\\", {"5/1 \\Rock\\|\\Rock\\"});
        row("path whole, comments of folders", "folders whole comments", "КОРЕНЬ", {"12/1 \\|\\"});
        row("tracks contains", "tracks", "ГРУППА", {"3/1 |Группа крови", "3/2 |группа"});
        row("tracks whole", "tracks whole", "группа", {"3/2 |группа"});
        row("tracks whole, Latin", "tracks whole", "rock", {"1/1 |ROCK"});
        // Comments and the method switch mean nothing for tracks: the title is searched.
        row("tracks ignore comments", "tracks folders comments", "кукушка", {"3/1 |Кукушка"});
        row("tracks, a comment's text", "tracks comments", "хит", {});
        row("Latin case", "", "readme", {"12/1 \\Docs\\|README.md"});
        row("Latin case, whole", "whole", "rock ballads.TXT", {"12/2 \\|Rock Ballads.txt"});
        row("Cyrillic upper case", "", "ГРУППА КРОВИ", {"12/1 \\Музыка\\|Группа крови.mp3"});
    }

    void criteria()
    {
        QFETCH(QStringList, expected);
        for (const AppContext* ctx : {&m_app.ctx, &m_unindexed.ctx}) {
            const Collected found = collect(*ctx, fetchedRequest());
            QCOMPARE(found.hits, expected);
            QCOMPARE(found.outcome.found, expected.size());
            QVERIFY(!found.outcome.stopped);
        }
    }

    // The text stands for itself except "*" and "?", which keep their meaning of any run and
    // any one character.
    void literalsAndWildcards_data()
    {
        addRequestColumns();
        const QString rock = "5/1 \\Rock\\|";
        row("percent and underscore", "", "0%_d", {rock + "100%_done.txt"});
        row("quotes", "", "'s \"q\"", {rock + "it's \"q\".txt"});
        row("brackets", "", "[b]", {rock + "a[b]c.txt"});
        row("opening bracket", "", "a[", {rock + "a[b]c.txt"});
        row("hash", "", "#1", {rock + "#1.txt"});
        row("star", "", "a*c.txt", {rock + "a[b]c.txt", rock + "abc.txt"});
        row("question marks", "", "100??done", {rock + "100%_done.txt", rock + "100xydone.txt"});
        row("star, whole", "whole", "*.MD", {"12/1 \\Docs\\|README.md"});
        row("question mark, whole", "whole", "ёлк?", {"12/2 \\|ёлка"});
        row("brackets, whole", "whole", "A[B]C.txt", {rock + "a[b]c.txt"});
        row("SQL in the text", "", "x'); DROP TABLE Файлы; --", {});
        row("empty contains: every file", "", "", kAllFiles);
        row("a star alone: every file", "", "*", kAllFiles);
        row("empty contains: every folder", "folders", "",
            {"12/1 \\|\\", "12/1 \\Музыка\\|\\Музыка\\", "12/1 \\Docs\\|\\Docs\\", "12/2 \\|\\",
             "5/1 \\Rock\\|\\Rock\\", "5/3 \\Ёлка\\|\\Ёлка\\"});
        row("empty contains: commented folders", "folders comments", "",
            {"12/1 \\|\\", "12/1 \\Музыка\\|\\Музыка\\", "5/1 \\Rock\\|\\Rock\\"});
        row("empty whole", "whole", "", {});
        row("empty contains: every track", "tracks", "",
            {"3/1 |Группа крови", "3/1 |Кукушка", "3/2 |группа", "3/2 |Rock Ballads", "1/1 |ROCK"});
    }

    void literalsAndWildcards() { criteria(); }

    void textNeverInTheStatement()
    {
        const QString text = "x'); DROP TABLE Файлы; --";
        for (const bool whole : {false, true}) {
            for (const bool indexed : {false, true}) {
                const SearchQuery query = buildSearchQuery({false, false, whole, false, text}, indexed);
                QVERIFY2(!query.sql.contains("DROP"), qPrintable(query.sql));
                QCOMPARE(query.values.last(), QVariant(whole ? text : QString(u'*' + text + u'*')));
                QCOMPARE(query.values.size(), indexed ? 2 : 1);
            }
        }
        QCOMPARE(searchPattern("[#]*?", false), "*[[][#]]*?*");
        QCOMPARE(searchPattern("a#", true), "a[#]");
        const Db files(m_app.ctx.FilesDBPath, Db::Access::ReadOnly);
        QVERIFY(files.tableExists("Файлы"));
    }

    // The databases of a version without the index get it at start; a folder that cannot be
    // written keeps them as they are, and they are searched all the same.
    void missingIndexAdded()
    {
        test::TestApp app;
        fillCatalogue(app.ctx);
        dropSearchIndex(app.ctx);
        const SearchRequest request{false, false, false, false, "ГРУППА"};
        {
            const test::ReadOnlyFolder readOnly(app.ctx.mainDatabaseFolder());
            if (readOnly.active()) {
                addMissingSearchIndex(app.ctx.FilesDBPath, ContentsKind::Files);
                QVERIFY(!hasSearchIndex(Db(app.ctx.FilesDBPath, Db::Access::ReadOnly), ContentsKind::Files));
                QCOMPARE(collect(app.ctx, request).hits, QStringList{"12/1 \\Музыка\\|Группа крови.mp3"});
            }
        }
        addMissingSearchIndex(app.ctx.FilesDBPath, ContentsKind::Files);
        addMissingSearchIndex(app.ctx.TracksDBPath, ContentsKind::Tracks);
        QVERIFY(hasSearchIndex(Db(app.ctx.FilesDBPath, Db::Access::ReadOnly), ContentsKind::Files));
        QVERIFY(hasSearchIndex(Db(app.ctx.TracksDBPath, Db::Access::ReadOnly), ContentsKind::Tracks));
        QCOMPARE(collect(app.ctx, request).hits, QStringList{"12/1 \\Музыка\\|Группа крови.mp3"});
        QCOMPARE(collect(app.ctx, {true, false, false, false, "ГРУППА"}).hits,
                 QStringList({"3/1 |Группа крови", "3/2 |группа"}));
    }

    // A disc whose id names no list is passed over; other discs of the set are still found.
    void discWithoutList()
    {
        test::TestApp app;
        fillCatalogue(app.ctx);
        {
            const Db files(app.ctx.FilesDBPath);
            ContentsLists(files, ContentsKind::Files).drop("AAAA");
        }
        const Collected found = collect(app.ctx, {false, false, false, false, "ёлка"});
        QCOMPARE(found.hits, QStringList{"12/2 \\|ёлка"});
        const Collected tracks = collect(app.ctx, {true, false, false, false, "rock"});
        QCOMPARE(tracks.hits, (QStringList{"3/2 |Rock Ballads", "1/1 |ROCK"}));
    }

    void batchesAndStop()
    {
        const SearchRequest every{false, false, false, false, ""};
        const Collected all = collect(m_app.ctx, every, 3);
        QCOMPARE(all.hits, kAllFiles);
        QCOMPARE(all.batches, 5); // 3 + 3 + 3 + 3 + 2

        std::atomic_bool stop = false;
        const Collected first = collect(m_app.ctx, every, 3, &stop, true);
        QCOMPARE(first.batches, 1);
        QCOMPARE(first.hits, kAllFiles.mid(0, 3));
        QCOMPARE(first.outcome.found, 3);
        QVERIFY(first.outcome.stopped);

        // Stopped before it began: nothing is read or delivered.
        const Collected none = collect(m_app.ctx, every, 3, &stop);
        QCOMPARE(none.batches, 0);
        QVERIFY(none.outcome.stopped);

        stop = false;
        const Collected again = collect(m_app.ctx, every, 100, &stop);
        QCOMPARE(again.hits, kAllFiles);
        QVERIFY(!again.outcome.stopped);
    }

    void brokenDatabases_data()
    {
        QTest::addColumn<QString>("database");
        QTest::addColumn<QByteArray>("content"); // empty: the file is removed
        QTest::addColumn<int>("error");
        QTest::newRow("no catalogue") << "vinora.db" << QByteArray() << 3024;
        QTest::newRow("no files database") << "vinora_files.db" << QByteArray() << 3024;
        QTest::newRow("catalogue not a database") << "vinora.db" << QByteArray(4096, 'x') << 3343;
        QTest::newRow("files database not a database") << "vinora_files.db" << QByteArray(4096, 'x') << 3343;
    }

    void brokenDatabases()
    {
        QFETCH(QString, database);
        QFETCH(QByteArray, content);
        QFETCH(int, error);
        test::TestApp app;
        fillCatalogue(app.ctx);
        const QString path = app.file(database);
        QVERIFY(QFile::remove(path));
        if (!content.isEmpty()) {
            test::writeFile(path, content);
        }
        bool delivered = false;
        QCOMPARE(errorOf([&] {
                     searchContents(searchDatabases(app.ctx, {}), {},
                                    [&](const QList<SearchHit>&) { delivered = true; });
                 }),
                 error);
        QVERIFY(!delivered);
        QCOMPARE(QFile::exists(path), !content.isEmpty()); // nothing made
    }

    void cells()
    {
        QCOMPARE(numberCell(12, 1), "12");
        QCOMPARE(numberCell(12, 3), "12 (3)");
        QCOMPARE(parseNumberCell(u"12"), (DiscPlace{12, 1}));
        QCOMPARE(parseNumberCell(u"12 (3)"), (DiscPlace{12, 3}));
        QCOMPARE(parseNumberCell(numberCell(305, 6)), (DiscPlace{305, 6}));
        for (const char* bad : {"", "12 (7)", "12(3)", "двенадцать", "12 (3"}) {
            QVERIFY2(!parseNumberCell(QString::fromUtf8(bad)), bad);
        }
        QCOMPARE(pathCell("\\"), "...");
        QCOMPARE(pathCell("\\Музыка\\"), "\\Музыка\\");
    }
};

VINORA_TEST_MAIN(tst_search)
#include "tst_search.moc"
