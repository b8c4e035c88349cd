// HTML pages for scripts: a catalogue, the file or track lists of a disc, the debtor list.
// The same writers as the export window, so the pages are the same.
#include "catalogue/CatalogueKind.h"
#include "cli/Cli.h"
#include "exchange/CatalogueExport.h"
#include "exchange/DueExport.h"
#include "exchange/ListExport.h"
#include "frame/AppContext.h"
#include "frame/FaultLog.h"
#include "store/Db.h"

#include <QCommandLineParser>
#include <QSet>

namespace vinora::cli {
namespace {

const QCommandLineOption
    kField(QStringLiteral("field"),
           QStringLiteral("Put this column on the page: its name as the export window lists "
                          "it, or its place in that list (may be repeated)."),
           QStringLiteral("NAME"));
const QCommandLineOption kAllFields(QStringLiteral("all-fields"),
                                    QStringLiteral("Put every column on the page."));
const QCommandLineOption kSorted(QStringLiteral("sorted"),
                                 QStringLiteral("Order by title or name instead of by number or as stored."));
const QCommandLineOption
    kOnly(QStringLiteral("only"),
          QStringLiteral("Only the discs of this style (AD), description (PC) or genre (DVD)."),
          QStringLiteral("VALUE"));
const QCommandLineOption kDisc(QStringLiteral("disc"), QStringLiteral("Only disc K of the set (1 to 4)."),
                               QStringLiteral("K"));
const QCommandLineOption kOpen(QStringLiteral("open"), QStringLiteral("Only the loans not yet returned."));

const Verb::Argument kFileArgument{QStringLiteral("FILE"),
                                   QStringLiteral("The page to write (replaced when it exists).")};
const Verb::Argument kNumberArgument{QStringLiteral("NUMBER"),
                                     QStringLiteral("The disc's number in its catalogue.")};

// The checked positions of a check-list from --field and --all-fields.
QList<int> fieldPositions(const QCommandLineParser& parser, const QStringList& items)
{
    if (parser.isSet(kAllFields)) {
        QList<int> all;
        for (int position = 1; position <= items.size(); ++position) {
            all.append(position);
        }
        return all;
    }
    QList<int> positions;
    for (const QString& name : parser.values(kField)) {
        bool isNumber = false;
        int position = name.toInt(&isNumber);
        if (!isNumber) {
            position = 0;
            for (int i = 0; i < items.size(); ++i) {
                if (items[i].compare(name, Qt::CaseInsensitive) == 0) {
                    position = i + 1;
                }
            }
        }
        if (position < 1 || position > items.size()) {
            throw Failure{BadUsage, QStringLiteral("--field is one of ") + items.join(QStringLiteral(", ")) +
                                        QStringLiteral(" (or 1 to ") + QString::number(items.size()) +
                                        QStringLiteral("), not '") + name + u'\''};
        }
        if (!positions.contains(position)) {
            positions.append(position);
        }
    }
    return positions;
}

// A failure of the page itself, or of the database at `database`.
Failure exportFailure(const QString& page, const QString& database, const AppError& error)
{
    static const QSet<int> pageErrors = {
        err::BadFileNameOrNumber, err::FileNotFound, err::DeviceIo, err::DiskFull,
        err::PathFileAccess,      err::PathNotFound};
    if (pageErrors.contains(error.number())) {
        const std::optional<QString> told = fileRefusalText(error.number());
        return {BadFile, QStringLiteral("the page '") + page + QStringLiteral("' cannot be written (") +
                             (told ? *told + u' ' : QString()) + error.description() + u')'};
    }
    return databaseFailure(database, error);
}

void done(const QString& path, int count)
{
    print(path + u'\t' + QString::number(count));
}

int exportCatalogue(AppContext& ctx, const QCommandLineParser& parser)
{
    const QStringList arguments = parser.positionalArguments();
    const CategoryInfo* info = categoryByCode(arguments.at(0).toUpper());
    if (info == nullptr) {
        throw Failure{BadUsage, QStringLiteral("CATEGORY is AD, PC or DVD, not '") + arguments.at(0) + u'\''};
    }
    CatalogueExportOptions options;
    options.category = info->category;
    options.fields = fieldPositions(parser, catalogueFieldItems(info->category));
    options.sorted = parser.isSet(kSorted);
    ctx.resolveDatabasePaths();
    requireDatabase(ctx.MainDBPath, {info->table, catalogueKind(info->category).dictionaryTable});
    if (parser.isSet(kOnly)) {
        QStringList known;
        onDatabase(ctx.MainDBPath,
                   [&] { known = FullQueryCombo(Db(ctx.MainDBPath, Db::Access::ReadOnly), info->category); });
        const QString value = parser.value(kOnly);
        if (!known.mid(1).contains(value, Qt::CaseInsensitive)) {
            throw Failure{Refused, QStringLiteral("there is no ") +
                                       catalogueKind(info->category).dictionaryTable + QStringLiteral(" '") +
                                       value + QStringLiteral("' in the catalogue")};
        }
        options.only = value;
    }
    const QString path = arguments.at(1);
    try {
        done(path, ExportCatalog(ctx, options, path));
    } catch (const AppError& error) {
        throw exportFailure(path, ctx.MainDBPath, error);
    }
    return Done;
}

int exportList(AppContext& ctx, const QCommandLineParser& parser, ContentsKind kind)
{
    const QStringList arguments = parser.positionalArguments();
    const bool files = kind == ContentsKind::Files;
    ListExportOptions options;
    const int number = wholeNumber(arguments.at(0), QStringLiteral("NUMBER"), 1, 32767);
    options.numbers = {number};
    options.fields = fieldPositions(parser, listFieldItems(kind));
    options.sorted = parser.isSet(kSorted);
    if (parser.isSet(kDisc)) {
        options.onlyDisc = wholeNumber(parser.value(kDisc), QStringLiteral("--disc"), 1, 4);
    }
    ctx.resolveDatabasePaths();
    const CategoryInfo& info = categoryInfo(files ? Category::Computer : Category::Audio);
    const QString contents = files ? ctx.FilesDBPath : ctx.TracksDBPath;
    requireDatabase(ctx.MainDBPath, {info.table});
    requireDatabase(contents, {QStringLiteral("Списки"), contentsDescriptor(kind).rowsTable});
    const QString listWord = files ? QStringLiteral("file list") : QStringLiteral("track list");
    onDatabase(ctx.MainDBPath, [&] {
        const Db db(ctx.MainDBPath, Db::Access::ReadOnly);
        if (!db.scalar(QStringLiteral("SELECT 1 FROM \"") + info.table +
                           QStringLiteral("\" WHERE \"Номер\" = ?"),
                       {number})
                 .isValid()) {
            throw Failure{Refused, QStringLiteral("Диск № ") + QString::number(number) +
                                       QStringLiteral(" отсутствует в каталоге.")};
        }
        if (!(files ? ViewNumberFiles(db) : ViewNumberTracks(db)).contains(number)) {
            throw Failure{Refused, QStringLiteral("disc ") + QString::number(number) +
                                       QStringLiteral(" has no ") + listWord +
                                       QStringLiteral(" on its discs 1 to 4")};
        }
        if (options.onlyDisc != 0 &&
            db.scalar(QStringLiteral("SELECT \"ДискID") + QString::number(options.onlyDisc) +
                          QStringLiteral("\" FROM \"") + info.table +
                          QStringLiteral("\" WHERE \"Номер\" = ? ORDER BY \"") + info.keyField +
                          QStringLiteral("\" LIMIT 1"),
                      {number})
                .isNull()) {
            throw Failure{Refused, QStringLiteral("disc ") + QString::number(options.onlyDisc) +
                                       QStringLiteral(" of number ") + QString::number(number) +
                                       QStringLiteral(" has no ") + listWord};
        }
    });
    const QString path = arguments.at(1);
    try {
        done(path, exportListPage(ctx, kind, options, path));
    } catch (const AppError& error) {
        throw exportFailure(path, error.number() == err::NoSuchTable ? contents : ctx.MainDBPath, error);
    }
    return Done;
}

int exportDebtors(AppContext& ctx, const QCommandLineParser& parser)
{
    DueExportOptions options;
    options.openOnly = parser.isSet(kOpen);
    options.fields = fieldPositions(parser, dueFieldItems());
    if (options.fields.isEmpty()) {
        throw Failure{BadUsage, dueNothingCheckedText() + QStringLiteral(" (--field or --all-fields)")};
    }
    ctx.resolveDatabasePaths();
    requireDatabase(ctx.MainDBPath, {QStringLiteral("Должники"), QStringLiteral("ИменаДолжников")});
    const QString path = parser.positionalArguments().at(0);
    try {
        done(path, ExportDue(ctx, options, path));
    } catch (const AppError& error) {
        throw exportFailure(path, ctx.MainDBPath, error);
    }
    return Done;
}

} // namespace

QList<Verb> exportVerbs()
{
    return {
        {QStringLiteral("export catalogue"),
         QStringLiteral("Write a catalogue as an HTML page, cover pictures beside it"),
         {{QStringLiteral("CATEGORY"), QStringLiteral("AD, PC or DVD.")}, kFileArgument},
         {kField, kAllFields, kSorted, kOnly},
         QStringLiteral("Prints the page written and the number of discs on it, separated by a tab.\n"
                        "Without --field the page has the number and the title only. The column\n"
                        "\"Обложка\" copies the covers into the folder named as FILE without its last\n"
                        "four characters, with \".files\"."),
         exportCatalogue},
        {QStringLiteral("export files"),
         QStringLiteral("Write the file lists of a computer disc as an HTML page"),
         {kNumberArgument, kFileArgument},
         {kDisc, kField, kAllFields, kSorted},
         QStringLiteral("Prints the page written and the number of rows on it, separated by a tab.\n"
                        "Columns: \"Нумерация списка\", \"Путь\", \"Комментарий\"."),
         [](AppContext& ctx, const QCommandLineParser& parser) {
             return exportList(ctx, parser, ContentsKind::Files);
         }},
        {QStringLiteral("export tracks"),
         QStringLiteral("Write the track lists of an audio disc as an HTML page"),
         {kNumberArgument, kFileArgument},
         {kDisc, kField, kAllFields, kSorted},
         QStringLiteral("Prints the page written and the number of rows on it, separated by a tab.\n"
                        "Columns: \"Нумерация списка\", \"Комментарий\"."),
         [](AppContext& ctx, const QCommandLineParser& parser) {
             return exportList(ctx, parser, ContentsKind::Tracks);
         }},
        {QStringLiteral("export debtors"),
         QStringLiteral("Write the loan ledger, by borrower, as an HTML page"),
         {kFileArgument},
         {kOpen, kField, kAllFields},
         QStringLiteral("Prints the page written and the number of borrowers on it, separated by a tab.\n"
                        "Columns, at least one: \"Телефон\", \"Категория диска\", \"Название диска\",\n"
                        "\"Задержка (дн)\", \"Внесен/Сроком до\", \"Вернул\"."),
         exportDebtors},
    };
}

} // namespace vinora::cli
