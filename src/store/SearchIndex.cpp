#include "store/SearchIndex.h"

#include "frame/AppError.h"
#include "store/Db.h"
#include "store/Schema.h"

#include <QStringList>
#include <algorithm>

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
