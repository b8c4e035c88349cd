#include "search/ContentsSearch.h"

#include "frame/AppContext.h"
#include "frame/AppError.h"
#include "store/Category.h"
#include "store/ContentsLists.h"
#include "store/Db.h"
#include "store/Schema.h"
#include "store/SearchIndex.h"
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
const QString kDiscs = QStringLiteral("temp.search_discs");

QString field(const QString& name)
{
    return QStringLiteral("r.") + quoted(name);
}

// The field the text is compared with.
QString comparedField(const SearchRequest& request)
{
    if (request.tracks) {
        return QStringLiteral("Название");
    }
    return request.comments  ? QStringLiteral("Комментарий")
           : request.folders ? QStringLiteral("Путь")
                             : QStringLiteral("Имя");
}

// The field whose index narrows the search: a folder row repeats its path as its name.
QString indexedField(const SearchRequest& request)
{
    const QString compared = comparedField(request);
    return compared == QStringLiteral("Путь") ? QStringLiteral("Имя") : compared;
}

bool onlyStars(const QString& text)
{
    return std::all_of(text.cbegin(), text.cend(), [](QChar ch) { return ch == u'*'; });
}

// The comparison of the searched field with the text: the catalogue's LIKE, which folds
// case alike for every script, in the whole-field search too.
QString textCondition(const SearchRequest& request, QVariantList& values)
{
    const QString column = field(comparedField(request));
    if (!request.whole && onlyStars(request.text)) {
        return column + QStringLiteral(" IS NOT NULL");
    }
    values.append(searchPattern(request.text, request.whole));
    return column + QStringLiteral(" LIKE ?");
}

const ContentsDescriptor& contentsOf(const SearchRequest& request)
{
    return contentsDescriptor(request.tracks ? ContentsKind::Tracks : ContentsKind::Files);
}

// The discs of the catalogue, one row per disc of a set, in the order of the catalogue and
// the set: its list id (case folded), the catalogue number and the place in the set.
void gatherDiscs(const Db& db, const SearchRequest& request)
{
    const CategoryInfo& catalogue = categoryInfo(request.tracks ? Category::Audio : Category::Computer);
    QString discId = QStringLiteral("CASE k.k");
    QStringList places;
    for (int k = 1; k <= kDiscsInSet; ++k) {
        discId += QStringLiteral(" WHEN %1 THEN c.").arg(k) + quoted(QStringLiteral("ДискID%1").arg(k));
        places.append(QStringLiteral("SELECT %1 AS k").arg(k));
    }
    discId += QStringLiteral(" END");
    db.exec(QStringLiteral("CREATE TEMP TABLE ") + kDiscs +
            QStringLiteral(" (id TEXT, number INTEGER, place INTEGER)"));
    db.exec(QStringLiteral("INSERT INTO ") + kDiscs + QStringLiteral(" SELECT lower(") + discId +
            QStringLiteral("), c.\"Номер\", k.k FROM ") + quoted(kCatalogueSchema) + u'.' +
            quoted(catalogue.table) + QStringLiteral(" AS c CROSS JOIN (") +
            places.join(QStringLiteral(" UNION ALL ")) + QStringLiteral(") AS k WHERE ") + discId +
            QStringLiteral(" IS NOT NULL ORDER BY c.") + quoted(catalogue.keyField) +
            QStringLiteral(", k.k"));
    db.exec(QStringLiteral("CREATE INDEX temp.search_discs_id ON search_discs (id)"));
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

SearchQuery buildSearchQuery(const SearchRequest& request, bool indexed)
{
    const ContentsDescriptor& contents = contentsOf(request);
    const QString selected =
        request.tracks
            ? QString(field(QStringLiteral("Название")) + QStringLiteral(", NULL"))
            : QString(field(QStringLiteral("Имя")) + QStringLiteral(", ") + field(QStringLiteral("Путь")));
    const QString rows = quoted(contents.rowsTable) + QStringLiteral(" AS r");
    SearchQuery query;
    query.sql = QStringLiteral("SELECT d.rowid, d.number, d.place, ") + selected + QStringLiteral(" FROM ");
    const QString matched =
        indexed && !(!request.whole && onlyStars(request.text)) ? trigramQuery(request.text) : QString();
    if (matched.isEmpty()) {
        // Every row of every disc is compared, disc by disc.
        query.sql += kDiscs + QStringLiteral(" AS d CROSS JOIN ") + rows +
                     QStringLiteral(" WHERE r.\"ДискID\" = d.id");
    } else {
        // The index gives the rows holding every trigram of the text; each leads to its disc.
        const QString index = quoted(searchIndexTable(contents, indexedField(request)));
        query.sql += index + QStringLiteral(" AS x CROSS JOIN ") + rows + QStringLiteral(" CROSS JOIN ") +
                     kDiscs + QStringLiteral(" AS d WHERE x.") + index +
                     QStringLiteral(" MATCH ? AND r.rowid = x.rowid AND d.id = lower(r.\"ДискID\")");
        query.values.append(matched);
        query.inStorageOrder = true;
    }
    query.sql += QStringLiteral(" AND ") + textCondition(request, query.values);
    if (!request.tracks) {
        // A folder's own row repeats its path as its name, character for character.
        query.sql += QStringLiteral(" AND ") + field(QStringLiteral("Имя")) +
                     (request.folders ? QStringLiteral(" = ") : QStringLiteral(" <> ")) +
                     field(QStringLiteral("Путь")) + QStringLiteral(" COLLATE BINARY");
    }
    // Both orders are the ones the loops give, without sorting in the engine.
    query.sql += query.inStorageOrder ? QStringLiteral(" ORDER BY x.rowid")
                                      : QStringLiteral(" ORDER BY d.rowid, r.rowid");
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
    gatherDiscs(db, request);
    const SearchQuery search = buildSearchQuery(
        request, hasSearchIndex(db, request.tracks ? ContentsKind::Tracks : ContentsKind::Files));
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
    const auto add = [&](SearchHit&& hit) {
        batch.append(std::move(hit));
        return batch.size() < size || hand();
    };
    // Rows from the index come in the order they were stored and are put in the order of
    // the discs before they are handed on.
    QList<std::pair<qint64, SearchHit>> stored;
    while (rows.next()) {
        SearchHit hit{rows.value(1).toInt(), rows.value(2).toInt(), rows.value(3).toString(),
                      rows.value(4).toString()};
        if (search.inStorageOrder) {
            stored.append({rows.value(0).toLongLong(), std::move(hit)});
        } else if (!add(std::move(hit))) {
            return outcome;
        }
    }
    if (rows.lastError().isValid()) {
        if (stopped()) {
            return outcome;
        }
        throw sqlError(rows.lastError().text(), search.sql);
    }
    std::stable_sort(stored.begin(), stored.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    for (auto& [disc, hit] : stored) {
        if (!add(std::move(hit))) {
            return outcome;
        }
    }
    if (!batch.isEmpty()) {
        hand();
    }
    return outcome;
}

} // namespace vinora
