// The pages of the HTML export against pages checked line by line: the catalogues with and
// without their columns, the lists, the ledger; escaping, characters outside the code page,
// the picture folder, failures half-way, and the command line.
#include "ExportFixture.h"
#include "exchange/CatalogueExport.h"
#include "exchange/DueExport.h"
#include "exchange/ListExport.h"
#include "exchange/PageOutput.h"
#include "frame/Cp1251.h"
#include "frame/FaultLog.h"
#include "store/Db.h"
#include "support/CliRun.h"
#include "support/ScriptedPrompter.h"
#include "support/TestFolders.h"
#include "support/TestMain.h"

#include <QDir>
#include <QDirIterator>
#include <cerrno>
#include <functional>

using namespace vinora;

namespace {

using Writer = std::function<void(const AppContext&, const QString& path)>;

QList<int> upTo(int last)
{
    QList<int> positions;
    for (int i = 1; i <= last; ++i) {
        positions.append(i);
    }
    return positions;
}

Writer catalogue(Category category, QList<int> fields, bool sorted, const QString& only = kAllValues)
{
    return [=](const AppContext& ctx, const QString& path) {
        ExportCatalog(ctx, {category, fields, sorted, only}, path);
    };
}

Writer lists(ContentsKind kind, QList<int> numbers, QList<int> fields, bool sorted, bool perDisc = false)
{
    return [=](const AppContext& ctx, const QString& path) {
        const ListExportOptions options{numbers, fields, sorted, 0};
        perDisc ? void(exportListPages(ctx, kind, options, QFileInfo(path).path()))
                : void(exportListPage(ctx, kind, options, path));
    };
}

Writer debtors(bool openOnly, QList<int> fields)
{
    return [=](const AppContext& ctx, const QString& path) { ExportDue(ctx, {openOnly, fields}, path); };
}

struct PageCase
{
    const char* file;
    Writer write;
};

const QList<PageCase>& pageCases()
{
    static const QList<PageCase> cases = {
        {"ad-none.htm", catalogue(Category::Audio, {}, false)},
        {"ad-all.htm", catalogue(Category::Audio, upTo(9), true)},
        {"ad-jazz.htm", catalogue(Category::Audio, {2}, false, "Jazz")},
        {"pc-none.htm", catalogue(Category::Computer, {}, false)},
        {"pc-all.htm", catalogue(Category::Computer, upTo(7), false)},
        {"dvd-all.htm", catalogue(Category::Dvd, upTo(10), true)},
        {"files-all.htm", lists(ContentsKind::Files, {1}, {1, 2, 3}, false)},
        {"tracks-sorted.htm", lists(ContentsKind::Tracks, {1, 2}, {1, 2}, true)},
        {"files_cd_1.htm", lists(ContentsKind::Files, {1}, {2}, false, true)},
        {"debtors-all.htm", debtors(false, upTo(6))},
        {"debtors-open.htm", debtors(true, {2, 3, 4})},
    };
    return cases;
}

QString checkedPage(const QString& name)
{
    return QStringLiteral(VINORA_TEST_DATA "/export/") + name;
}

// A written page against the checked one; the first line that differs is named. A page that
// differs is left in $VINORA_EXPORT_ACTUAL, when set, for a look.
bool samePage(const QByteArray& written, const QString& name, const QByteArray& expected)
{
    if (written == expected) {
        return true;
    }
    if (const QString keep = qEnvironmentVariable("VINORA_EXPORT_ACTUAL"); !keep.isEmpty()) {
        test::writeFile(QDir(keep).filePath(name), written);
    }
    const QList<QByteArray> got = written.split('\n');
    const QList<QByteArray> want = expected.split('\n');
    for (qsizetype i = 0; i < std::max(got.size(), want.size()); ++i) {
        if (got.value(i) != want.value(i)) {
            qWarning("%s, line %lld:\n  written:  %s\n  expected: %s", qPrintable(name),
                     static_cast<long long>(i + 1), qPrintable(cp1251::decode(got.value(i))),
                     qPrintable(cp1251::decode(want.value(i))));
            break;
        }
    }
    return false;
}

// Every entry under `folder` with its bytes, for "nothing changed".
QMap<QString, QByteArray> snapshot(const QString& folder)
{
    QMap<QString, QByteArray> entries;
    QDirIterator it(folder, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QFileInfo entry = it.nextFileInfo();
        entries.insert(QDir(folder).relativeFilePath(entry.filePath()),
                       entry.isFile() ? test::readFile(entry.filePath()) : QByteArray("<folder>"));
    }
    return entries;
}

struct Fixture
{
    Fixture() { test::makeExportFixture(app.folder.path()); }
    test::TestApp app;
    QTemporaryDir out;
    QString page(const QString& name) const { return out.filePath(name); }
};

} // namespace

class tst_exportpages : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { PageOutput::failWriteForTests(0, 0); }

    void pages_data()
    {
        QTest::addColumn<int>("index");
        for (int i = 0; i < pageCases().size(); ++i) {
            QTest::newRow(pageCases()[i].file) << i;
        }
    }
    void pages()
    {
        QFETCH(int, index);
        const PageCase& page = pageCases()[index];
        const QString file = QString::fromLatin1(page.file);
        Fixture f;
        page.write(f.app.ctx, f.page(file));
        QVERIFY(samePage(test::readFile(f.page(file)), file, test::readFile(checkedPage(file))));
    }

    // What a database holds goes on the page as text; what the code page lacks as a reference.
    void valuesAsText()
    {
        Fixture f;
        ExportCatalog(f.app.ctx, {Category::Audio, {1}, false, kAllValues}, f.page("a.htm"));
        const QByteArray bytes = test::readFile(f.page("a.htm"));
        const QString text = cp1251::decode(bytes);
        QVERIFY(text.contains("<td bgcolor=\"#ffffff\"><font size=\"2pt\" face=\"Tahoma\">"
                              "&lt;script&gt;alert(1)&lt;/script&gt;</font></td>"));
        QVERIFY(!text.contains("<script"));
        QVERIFY(text.contains("Аквариум &amp; Co &#9835;</font></td>"));
        QVERIFY(text.contains("Радио &quot;Африка&quot;"));
        QVERIFY(!bytes.contains('?'));
        QCOMPARE(cp1251::encodeForHtml(u"я ♫ 𝄞"), QByteArray("\xFF &#9835; &#119070;"));
    }

    // The covers go into the page's folder; an old folder's files go, folders in it stay.
    void pictureFolder()
    {
        Fixture f;
        test::writeFile(f.page("cat.files/old.box"), "old");
        test::writeFile(f.page("cat.files/mine/keep.txt"), "keep");
        QCOMPARE(ExportCatalog(f.app.ctx, {Category::Audio, {9}, false, kAllValues}, f.page("cat.htm")), 4);
        QCOMPARE(QDir(f.page("cat.files")).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden),
                 QStringList({"ad_1.box", "mine"}));
        QCOMPARE(test::readFile(f.page("cat.files/ad_1.box")),
                 test::readFile(test::fixtureCover(f.app.folder.path(), "ad_1")));
        QCOMPARE(test::readFile(f.page("cat.files/mine/keep.txt")), QByteArray("keep"));
        QVERIFY(cp1251::decode(test::readFile(f.page("cat.htm")))
                    .contains("<img src=\"cat.files\\ad_1.box\" width=\"100\" height=\"100\" border=\"0\">"));

        ExportCatalog(f.app.ctx, {Category::Audio, upTo(8), false, kAllValues}, f.page("plain.htm"));
        QVERIFY(!QFileInfo::exists(f.page("plain.files")));
    }

    // A failure leaves the old page and folder as they were, and nothing beside them.
    void failures_data()
    {
        QTest::addColumn<QString>("how");
        QTest::addColumn<int>("error");
        QTest::addColumn<int>("number");
        QTest::newRow("read-only folder") << "read-only" << 0 << 75;
        QTest::newRow("disk full, first write") << "1" << ENOSPC << 61;
        QTest::newRow("disk full, the page after the picture") << "2" << ENOSPC << 61;
        QTest::newRow("device error half-way") << "2" << EIO << 52;
        QTest::newRow("a folder where the page goes") << "folder" << 0 << 53;
        QTest::newRow("a file where the pictures go") << "file" << 0 << 76;
    }
    void failures()
    {
        QFETCH(QString, how);
        QFETCH(int, error);
        QFETCH(int, number);
        Fixture f;
        QString target = f.page("cat.htm");
        test::writeFile(target, "old page");
        test::writeFile(f.page("cat.files/ad_1.box"), "old cover");
        if (how == "folder") {
            target = f.page("sub.htm");
            QDir(f.out.path()).mkpath("sub.htm");
        } else if (how == "file") {
            target = f.page("other.htm");
            test::writeFile(f.page("other.files"), "not a folder");
        }
        const QMap<QString, QByteArray> before = snapshot(f.out.path());
        std::unique_ptr<test::ReadOnlyFolder> readOnly;
        if (how == "read-only") {
            readOnly = std::make_unique<test::ReadOnlyFolder>(f.out.path());
            if (!readOnly->active()) {
                QSKIP("this machine cannot make a folder read-only");
            }
        } else if (error != 0) {
            PageOutput::failWriteForTests(how.toInt(), error);
        }
        try {
            ExportCatalog(f.app.ctx, {Category::Audio, upTo(9), false, kAllValues}, target);
            QFAIL("the export went through");
        } catch (const AppError& failure) {
            QCOMPARE(failure.number(), number);
            QVERIFY2(failure.description().contains(QFileInfo(target).fileName()) ||
                         failure.description().contains(".files"),
                     qPrintable(failure.description()));
        }
        readOnly.reset();
        QCOMPARE(snapshot(f.out.path()), before);
    }

    void messages_data()
    {
        QTest::addColumn<int>("number");
        QTest::addColumn<QString>("text");
        QTest::newRow("52") << 52 << "Устройство не готово!";
        QTest::newRow("53") << 53 << "Отказано в доступе!";
        QTest::newRow("75") << 75 << "Папка доступна только для чтения!";
        QTest::newRow("61: told by the description") << 61 << QString();
    }
    void messages()
    {
        QFETCH(int, number);
        QFETCH(QString, text);
        QCOMPARE(fileRefusalText(number).value_or(QString()), text);
    }

    // A list the catalogue names but the contents database lacks ends the export, page unmade.
    void missingList()
    {
        Fixture f;
        Db(f.app.ctx.FilesDBPath).exec("DELETE FROM Списки WHERE ДискID = 'F2'");
        try {
            ExportFiles(f.app.ctx, {{1}, {}, false, 0}, f.page("files.htm"));
            QFAIL("the export went through");
        } catch (const AppError& failure) {
            QCOMPARE(failure.number(), 3078);
            QVERIFY(failure.description().contains("\"F2\" диска № 1"));
        }
        QVERIFY(QDir(f.out.path()).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot));
    }

    void listedDiscs()
    {
        Fixture f;
        const Db db(f.app.ctx.MainDBPath);
        QCOMPARE(ViewNumberFiles(db), QList<int>({1}));
        QCOMPARE(ViewNumberTracks(db), QList<int>({1, 2}));
        QCOMPARE(FullQueryCombo(db, Category::Dvd).mid(0, 3),
                 QStringList({"- все -", "Боевик", "Фантастика"}));
    }

    // The command line writes the window's pages (compared on the day it runs).
    void commandLine_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("page"); // the page of the same options in pageCases(), or empty
        QTest::addColumn<QString>("said"); // on standard output (0) or error
        const auto row = [](const char* tag, const QStringList& arguments, int code, const QString& page,
                            const QString& said) { QTest::newRow(tag) << arguments << code << page << said; };
        row("catalogue", {"export", "catalogue", "ad", "@", "--all-fields", "--sorted"}, 0, "ad-all.htm",
            "\t4");
        row("catalogue, one style", {"export", "catalogue", "AD", "@", "--field", "Стиль", "--only", "Jazz"},
            0, "ad-jazz.htm", "\t0");
        row("files",
            {"export", "files", "1", "@", "--field", "1", "--field", "Путь", "--field", "комментарий"}, 0,
            "files-all.htm", "\t7");
        row("debtors", {"export", "debtors", "@", "--all-fields"}, 0, "debtors-all.htm", "\t3");
        row("second disc only", {"export", "tracks", "2", "--disc", "2", "@"}, 0, "", "\t2");
        row("no such category", {"export", "catalogue", "XX", "@"}, 2, "", "CATEGORY");
        row("no such column", {"export", "files", "1", "@", "--field", "Размер"}, 2, "", "--field is one of");
        row("debtors without columns", {"export", "debtors", "@"}, 2, "",
            "Необходимо выбрать хотя бы один элемент!");
        row("disc without list", {"export", "files", "5", "@"}, 1, "", "has no file list");
        row("no such disc", {"export", "tracks", "77", "@"}, 1, "", "Диск № 77 отсутствует в каталоге.");
        row("set disc without list", {"export", "files", "1", "--disc", "3", "@"}, 1, "",
            "disc 3 of number 1 has no file list");
        row("no such style", {"export", "catalogue", "DVD", "@", "--only", "Nope"}, 1, "", "no Жанр 'Nope'");
        row("folder missing", {"export", "debtors", "/nonexistent/@", "--field", "1"}, 3, "",
            "cannot be written");
        row("group without verb", {"export"}, 2, "", "'export catalogue'");
    }
    void commandLine()
    {
        QFETCH(QStringList, arguments);
        QFETCH(int, code);
        QFETCH(QString, page);
        QFETCH(QString, said);
        Fixture f;
        const QString name = page.isEmpty() ? QStringLiteral("page.htm") : page;
        QDir(f.out.path()).mkdir("cli");
        const QString path = f.page("cli/" + name);
        arguments.replaceInStrings("@", path);
        const test::CliRun run = test::runCli(f.app.folder.path(), arguments);
        QCOMPARE(run.code, code);
        QVERIFY2((code == 0 ? run.out : run.err).contains(said), qPrintable(run.out + run.err));
        QCOMPARE(QFileInfo::exists(path), code == 0);
        if (!page.isEmpty()) {
            f.app.clock.set(QDateTime::currentDateTime());
            for (const PageCase& known : pageCases()) {
                if (page == QLatin1StringView(known.file)) {
                    known.write(f.app.ctx, f.page(name));
                }
            }
            QVERIFY(samePage(test::readFile(path), "cli-" + name, test::readFile(f.page(name))));
        }
        if (code == 0 && arguments.contains("--disc")) {
            const QString text = cp1251::decode(test::readFile(path));
            QVERIFY(text.contains("Диск № 2 (2)\r\n") && !text.contains("Диск № 2\r\n"));
        }
    }
};

VINORA_TEST_MAIN(tst_exportpages)
#include "tst_exportpages.moc"
