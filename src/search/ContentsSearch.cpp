#include "search/ContentsSearch.h"

#include "frame/AppContext.h"
#include "frame/AppError.h"
#include "store/Category.h"
#include "store/ContentsLists.h"
#include "store/Db.h"
#include "store/Schema.h"
#include "store/SqlFunctions.h"

#include <QFileInfo>
#include <QSqlError>
#include <QSqlQuery>
#include <QUrl>
#include <algorithm>
#include <sqlite3.h>

namespace vinora {
namespace {

constexpr int kDiscsInSet = 6;
// How often (in engine steps) a running statement looks at the stop flag.
constexpr int kStopCheckSteps = 1000;

QString field(const char* name)
{
    return QStringLiteral("r.") + quoted(QString::fromUtf8(name));
}

// The field the text is compared with.
QString searchedField(const SearchRequest& request)
{
    if (request.tracks) {
        return field("Название");
    }
    return field(request.comments ? "Комментарий" : request.folders ? "Путь" : "Имя");
}

bool onlyStars(const QString& text)
{
    return std::all_of(text.cbegin(), text.cend(), [](QChar ch) { return ch == u'*'; });
}

// The comparison of the searched field with the text. A trigram index of the contents
// would narrow the rows here, before the comparison that decides.
QString textCondition(const SearchRequest& request, QVariantList& values)
{
    const QString column = searchedField(request);
    if (!request.whole && onlyStars(request.text)) {
        return column + QStringLiteral(" IS NOT NULL");
    }
    if (request.whole && !request.text.contains(u'*') && !request.text.contains(u'?')) {
        values.append(request.text);
        return column + QStringLiteral(" = ?");
    }
    values.append(searchPattern(request.text, request.whole));
    return column + QStringLiteral(" LIKE ?");
}

// The list of disc k of the catalogue row: ДискID1..ДискID6 by the set's place.
QString discIdOfPlace()
{
    QString sql = QStringLiteral("CASE k.k");
    for (int k = 1; k <= kDiscsInSet; ++k) {
        sql += QStringLiteral(" WHEN %1 THEN c.").arg(k) + quoted(QStringLiteral("ДискID%1").arg(k));
    }
    return sql + QStringLiteral(" END");
}

QString placesOfSet()
{
    QStringList places;
    for (int k = 1; k <= kDiscsInSet; ++k) {
        places.append(QStringLiteral("SELECT %1 AS k").arg(k));
    }
    return places.join(QStringLiteral(" UNION ALL "));
}

AppError catalogueError(const AppError& error, const QString& path)
{
    return AppError(error.number(),
                    error.description() + QStringLiteral(" ('") + path + QStringLiteral("')"));
}

// Attaches the main database read-only, with the checks and error numbers of opening it.
void attachCatalogue(const Db& db, const QString& path)
{
    const QFileInfo file(path);
    if (!QFileInfo(file.path()).isDir()) {
        throw AppError(err::InvalidPath, u'\'' + path + QStringLiteral("' isn't a valid path."));
    }
    if (!file.exists()) {
        throw AppError(err::CannotFindFile, QStringLiteral("Could not find file '") + path + u'\'');
    }
    if (file.isDir()) {
        throw AppError(err::UnrecognizedFormat,
                       QStringLiteral("Unrecognized database format '") + path + u'\'');
    }
    QUrl url = QUrl::fromLocalFile(file.absoluteFilePath());
    url.setQuery(QStringLiteral("mode=ro"));
    const QString schema = quoted(kCatalogueSchema);
    const auto run = [&](const QString& sql, const QVariantList& values) {
        QSqlQuery query(db.connection());
        const bool done = query.prepare(sql);
        for (const QVariant& value : values) {
            query.addBindValue(value);
        }
        if (!done || !query.exec()) {
            throw catalogueError(sqlError(query.lastError().text(), sql), path);
        }
    };
    run(QStringLiteral("ATTACH DATABASE ? AS ") + schema, {url.toString(QUrl::FullyEncoded)});
    // The first read tells a database from any other file.
    run(QStringLiteral("SELECT count(*) FROM ") + schema + QStringLiteral(".sqlite_master"), {});
}

// Lets the engine give up a running statement once the stop flag is set.
class StopWatch
{
public:
    StopWatch(const Db& db, const std::atomic_bool* stop)
        : m_handle(stop ? sqliteHandle(db.connection()) : nullptr)
    {
        if (m_handle) {
            sqlite3_progress_handler(m_handle, kStopCheckSteps, &StopWatch::check,
                                     const_cast<void*>(static_cast<const void*>(stop)));
        }
    }
    ~StopWatch()
    {
        if (m_handle) {
            sqlite3_progress_handler(m_handle, 0, nullptr, nullptr);
        }
    }
    StopWatch(const StopWatch&) = delete;
    StopWatch& operator=(const StopWatch&) = delete;

private:
    static int check(void* flag) { return static_cast<const std::atomic_bool*>(flag)->load() ? 1 : 0; }

    sqlite3* m_handle;
};

} // namespace

SearchDatabases searchDatabases(const AppContext& ctx, const SearchRequest& request)
{
    return {ctx.MainDBPath, request.tracks ? ctx.TracksDBPath : ctx.FilesDBPath};
}

QString searchPattern(const QString& text, bool whole)
{
    QString pattern = whole ? QString() : QStringLiteral("*");
    for (const QChar ch : text) {
        // "#" (any digit) and "[" (a set) stand for themselves inside brackets.
        if (ch == u'#' || ch == u'[') {
            pattern += u'[' + QString(ch) + u']';
        } else {
            pattern += ch;
        }
    }
    return whole ? pattern : pattern + u'*';
}

SearchQuery buildSearchQuery(const SearchRequest& request, const QString& catalogueSchema)
{
    const CategoryInfo& catalogue = categoryInfo(request.tracks ? Category::Audio : Category::Computer);
    const ContentsDescriptor& contents =
        contentsDescriptor(request.tracks ? ContentsKind::Tracks : ContentsKind::Files);

    const QString selected = request.tracks ? QString(field("Название") + QStringLiteral(", NULL"))
                                            : QString(field("Имя") + QStringLiteral(", ") + field("Путь"));
    SearchQuery query;
    query.sql = QStringLiteral("SELECT c.\"Номер\", k.k, ") + selected + QStringLiteral(" FROM ") +
                quoted(catalogueSchema) + u'.' + quoted(catalogue.table) +
                QStringLiteral(" AS c CROSS JOIN (") + placesOfSet() + QStringLiteral(") AS k CROSS JOIN ") +
                quoted(contents.rowsTable) + QStringLiteral(" AS r WHERE r.\"ДискID\" = ") + discIdOfPlace() +
                QStringLiteral(" AND ") + textCondition(request, query.values);
    if (!request.tracks) {
        // A folder's own row repeats its path as its name, character for character.
        query.sql += QStringLiteral(" AND ") + field("Имя") +
                     (request.folders ? QStringLiteral(" = ") : QStringLiteral(" <> ")) + field("Путь") +
                     QStringLiteral(" COLLATE BINARY");
    }
    query.sql +=
        QStringLiteral(" ORDER BY c.") + quoted(catalogue.keyField) + QStringLiteral(", k.k, r.rowid");
    return query;
}

SearchOutcome searchContents(const SearchDatabases& databases, const SearchRequest& request,
                             const SearchSink& deliver, const std::atomic_bool* stop, int batchSize)
{
    SearchOutcome outcome;
    const auto stopped = [&] {
        outcome.stopped = stop != nullptr && stop->load();
        return outcome.stopped;
    };
    if (stopped()) {
        return outcome;
    }
    const Db db(databases.contents, Db::Access::ReadOnly);
    attachCatalogue(db, databases.catalogue);
    const SearchQuery search = buildSearchQuery(request);
    const StopWatch watch(db, stop);

    QSqlQuery rows(db.connection());
    rows.setForwardOnly(true);
    if (!rows.prepare(search.sql)) {
        throw sqlError(rows.lastError().text(), search.sql);
    }
    for (const QVariant& value : search.values) {
        rows.addBindValue(value);
    }
    if (!rows.exec()) {
        if (stopped()) {
            return outcome;
        }
        throw sqlError(rows.lastError().text(), search.sql);
    }

    const qsizetype size = std::max(1, batchSize);
    QList<SearchHit> batch;
    batch.reserve(size);
    const auto hand = [&] {
        // A stop asked for while the rows were gathered drops them undelivered.
        if (stopped()) {
            return false;
        }
        deliver(batch);
        outcome.found += static_cast<int>(batch.size());
        batch.clear();
        return !stopped();
    };
    while (rows.next()) {
        batch.append({rows.value(0).toInt(), rows.value(1).toInt(), rows.value(2).toString(),
                      rows.value(3).toString()});
        if (batch.size() >= size && !hand()) {
            return outcome;
        }
    }
    if (rows.lastError().isValid()) {
        if (stopped()) {
            return outcome;
        }
        throw sqlError(rows.lastError().text(), search.sql);
    }
    if (!batch.isEmpty() && !stopped()) {
        deliver(batch);
        outcome.found += static_cast<int>(batch.size());
    }
    return outcome;
}

} // namespace vinora
