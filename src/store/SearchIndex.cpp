#include "store/SearchIndex.h"

#include "frame/AppError.h"
#include "store/Db.h"
#include "store/Schema.h"
#include "store/SqlFunctions.h"

#include <QStringList>
#include <algorithm>
#include <limits>
#include <sqlite3.h>

namespace vinora {
namespace {

constexpr int kTrigram = 3;
// More trigrams narrow little more and each costs a read of its row list.
constexpr int kMaxTrigrams = 8;

QString indexColumns(const ContentsDescriptor& descriptor, const QString& prefix)
{
    QStringList columns;
    for (const QString& field : descriptor.searchedFields) {
        columns.append(prefix + quoted(field));
    }
    return columns.join(QStringLiteral(", "));
}

// The statements of a trigger body adding (`row` "new") or removing (`row` "old") the
// row's searched fields in the index tables.
QString indexWrites(const ContentsDescriptor& descriptor, const QString& row, bool remove)
{
    QString sql;
    for (const QString& field : descriptor.searchedFields) {
        const QString table = quoted(searchIndexTable(descriptor, field));
        sql += QStringLiteral("INSERT INTO ") + table + u'(' +
               (remove ? table + QStringLiteral(", ") : QString()) + QStringLiteral("rowid, ") +
               quoted(field) + QStringLiteral(") VALUES (") +
               (remove ? QStringLiteral("'delete', ") : QString()) + row + QStringLiteral(".rowid, ") + row +
               u'.' + quoted(field) + QStringLiteral("); ");
    }
    return sql;
}

QString triggerName(const ContentsDescriptor& descriptor, const char* event)
{
    return quoted(descriptor.rowsTable + QStringLiteral("Поиск") + QString::fromUtf8(event));
}

// Characters whose case folding the index and the comparison of the search share (the
// index folds by its own table, the comparison by Qt's): Latin and Cyrillic letters,
// digits, punctuation and blanks.
bool foldsAlike(QChar ch)
{
    const char16_t code = ch.unicode();
    return (code >= 0x20 && code < 0x7F) ||
           (code >= 0xC0 && code <= 0xFF && code != 0xD7 && code != 0xF7 && code != 0xDF) ||
           (code >= 0x400 && code <= 0x45F);
}

// Turns the connection's triggers off for its lifetime (the other connections keep theirs).
class TriggersOff
{
public:
    explicit TriggersOff(const Db& db) : m_handle(sqliteHandle(db.connection()))
    {
        if (sqlite3_db_config(m_handle, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr) != SQLITE_OK) {
            throw AppError(err::EngineError, QStringLiteral("Cannot turn the triggers off: ") +
                                                 QString::fromUtf8(sqlite3_errmsg(m_handle)));
        }
    }
    ~TriggersOff() { sqlite3_db_config(m_handle, SQLITE_DBCONFIG_ENABLE_TRIGGER, 1, nullptr); }
    TriggersOff(const TriggersOff&) = delete;
    TriggersOff& operator=(const TriggersOff&) = delete;

private:
    sqlite3* m_handle;
};

// True when the index's own triggers are the only ones on the rows table.
bool onlyIndexTriggers(const Db& db, const ContentsDescriptor& descriptor)
{
    const QString others = QStringLiteral(
        "SELECT count(*) FROM (SELECT name, tbl_name FROM sqlite_master WHERE type = 'trigger' "
        "UNION ALL SELECT name, tbl_name FROM sqlite_temp_master WHERE type = 'trigger') "
        "WHERE tbl_name = ? AND name NOT IN (?, ?, ?)");
    const auto unquoted = [&](const char* event) -> QString {
        return descriptor.rowsTable + QStringLiteral("Поиск") + QString::fromUtf8(event);
    };
    return db.scalar(others,
                     {descriptor.rowsTable, unquoted("Вставка"), unquoted("Удаление"), unquoted("Изменение")})
               .toInt() == 0;
}

} // namespace

QString searchIndexTable(const ContentsDescriptor& descriptor, const QString& field)
{
    return descriptor.rowsTable + QStringLiteral("Поиск") + field;
}

void createSearchIndex(const Db& db, ContentsKind kind)
{
    const ContentsDescriptor& descriptor = contentsDescriptor(kind);
    const QString rows = quoted(descriptor.rowsTable);
    for (const QString& field : descriptor.searchedFields) {
        // Row lists only (no positions): a row holding every trigram of the text is a
        // candidate, and the comparison decides.
        db.exec(QStringLiteral("CREATE VIRTUAL TABLE ") + quoted(searchIndexTable(descriptor, field)) +
                QStringLiteral(" USING fts5(") + quoted(field) + QStringLiteral(", content='") +
                descriptor.rowsTable +
                QStringLiteral("', content_rowid='rowid', tokenize='trigram', detail=none, columnsize=0)"));
    }
    db.exec(QStringLiteral("CREATE TRIGGER ") + triggerName(descriptor, "Вставка") +
            QStringLiteral(" AFTER INSERT ON ") + rows + QStringLiteral(" BEGIN ") +
            indexWrites(descriptor, QStringLiteral("new"), false) + QStringLiteral("END"));
    db.exec(QStringLiteral("CREATE TRIGGER ") + triggerName(descriptor, "Удаление") +
            QStringLiteral(" AFTER DELETE ON ") + rows + QStringLiteral(" BEGIN ") +
            indexWrites(descriptor, QStringLiteral("old"), true) + QStringLiteral("END"));
    db.exec(QStringLiteral("CREATE TRIGGER ") + triggerName(descriptor, "Изменение") +
            QStringLiteral(" AFTER UPDATE OF ") + indexColumns(descriptor, QString()) +
            QStringLiteral(" ON ") + rows + QStringLiteral(" BEGIN ") +
            indexWrites(descriptor, QStringLiteral("old"), true) +
            indexWrites(descriptor, QStringLiteral("new"), false) + QStringLiteral("END"));
    rebuildSearchIndex(db, kind);
}

bool hasSearchIndex(const Db& db, ContentsKind kind)
{
    const ContentsDescriptor& descriptor = contentsDescriptor(kind);
    for (const QString& field : descriptor.searchedFields) {
        if (!db.tableExists(searchIndexTable(descriptor, field))) {
            return false;
        }
    }
    return true;
}

void rebuildSearchIndex(const Db& db, ContentsKind kind)
{
    const ContentsDescriptor& descriptor = contentsDescriptor(kind);
    for (const QString& field : descriptor.searchedFields) {
        const QString table = quoted(searchIndexTable(descriptor, field));
        db.exec(QStringLiteral("INSERT INTO ") + table + u'(' + table +
                QStringLiteral(") VALUES ('rebuild')"));
    }
}

void insertIndexedRows(const Db& db, ContentsKind kind, const QString& insert, const QVariantList& values)
{
    const ContentsDescriptor& descriptor = contentsDescriptor(kind);
    const QString rows = quoted(descriptor.rowsTable);
    // New rows are numbered after the last one, until the numbers run out; then the engine
    // numbers them at random and only the triggers can tell them.
    const QVariant last = db.scalar(QStringLiteral("SELECT max(rowid) FROM ") + rows);
    // Outside a transaction the rows would be committed before their entries.
    if (sqlite3_get_autocommit(sqliteHandle(db.connection())) != 0 || !hasSearchIndex(db, kind) ||
        !onlyIndexTriggers(db, descriptor) || last.toLongLong() == std::numeric_limits<qint64>::max()) {
        db.exec(insert, values);
        return;
    }
    {
        const TriggersOff off(db);
        db.exec(insert, values);
    }
    const qint64 after = last.isNull() ? std::numeric_limits<qint64>::min() : last.toLongLong();
    for (const QString& field : descriptor.searchedFields) {
        // The rows in the order the triggers would have taken them: the same index.
        db.exec(QStringLiteral("INSERT INTO ") + quoted(searchIndexTable(descriptor, field)) +
                    QStringLiteral("(rowid, ") + quoted(field) + QStringLiteral(") SELECT rowid, ") +
                    quoted(field) + QStringLiteral(" FROM ") + rows +
                    QStringLiteral(" WHERE rowid > ? ORDER BY rowid"),
                {after});
    }
}

void vacuumContents(const Db& db, ContentsKind kind)
{
    const QString numbering =
        QStringLiteral("SELECT count(*) || ' ' || total(rowid) || ' ' || max(rowid) FROM ") +
        quoted(contentsDescriptor(kind).rowsTable);
    const QVariant before = db.scalar(numbering);
    db.exec(QStringLiteral("VACUUM"));
    if (db.scalar(numbering) != before && hasSearchIndex(db, kind)) {
        rebuildSearchIndex(db, kind);
    }
}

void addMissingSearchIndex(const QString& path, ContentsKind kind)
{
    try {
        const Db db(path);
        if (hasSearchIndex(db, kind)) {
            return;
        }
        Transaction transaction(db);
        createSearchIndex(db, kind);
        transaction.commit();
    } catch (const AppError& error) {
        if (error.number() != err::CannotOpenFile) {
            throw;
        }
    }
}

QString trigramQuery(const QString& text)
{
    QStringList trigrams;
    const auto take = [&](QStringView run, qsizetype at) {
        const QStringView trigram = run.mid(at, kTrigram);
        if (trigrams.size() < kMaxTrigrams && std::all_of(trigram.begin(), trigram.end(), foldsAlike)) {
            QString token = trigram.toString();
            token.replace(u'"', QStringLiteral("\"\""));
            token = u'"' + token + u'"';
            if (!trigrams.contains(token)) {
                trigrams.append(token);
            }
        }
    };
    for (const QStringView run : QStringView(text).tokenize(u'*')) {
        for (const QStringView piece : run.tokenize(u'?')) {
            if (piece.size() < kTrigram) {
                continue;
            }
            // Trigrams side by side cover the piece; the last one its end.
            for (qsizetype at = 0; at + kTrigram <= piece.size(); at += kTrigram) {
                take(piece, at);
            }
            take(piece, piece.size() - kTrigram);
        }
    }
    return trigrams.join(QStringLiteral(" AND "));
}

} // namespace vinora
