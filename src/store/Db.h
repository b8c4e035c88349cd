#pragma once

#include "frame/AppError.h"

#include <QByteArrayView>
#include <QDate>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QString>
#include <QStringList>
#include <QVariant>

struct sqlite3;
struct sqlite3_stmt;

namespace vinora {

// One open database for one user operation: opened by the constructor, closed by the
// destructor. Every connection compares text without regard to case, Cyrillic and Latin
// alike, orders it in Russian alphabetical order, reads "*" and "?" in LIKE, and enforces
// the relations between tables. Errors come out as AppError with the numbers the
// handlers test (3044 no such folder, 3051 cannot be written, 3343 not a database ...).
class Db
{
public:
    enum class Access {
        ReadWrite, // the file must exist
        ReadOnly,  // the file must exist; nothing is written
        Create,    // made when missing
    };

    explicit Db(const QString& path, Access access = Access::ReadWrite);
    ~Db();
    Db(const Db&) = delete;
    Db& operator=(const Db&) = delete;

    const QString& path() const { return m_path; }
    QSqlDatabase connection() const { return m_db; }

    // Runs one statement with its values bound in order and returns the positioned-before-
    // first result. Text from users, files or the network only ever travels as a bound value.
    QSqlQuery query(const QString& sql, const QVariantList& values = {}) const;
    void exec(const QString& sql, const QVariantList& values = {}) const;
    // The first column of the first row, or an invalid QVariant when there is no row.
    QVariant scalar(const QString& sql, const QVariantList& values = {}) const;
    // The first column of every row, as text.
    QStringList texts(const QString& sql, const QVariantList& values = {}) const;
    bool tableExists(const QString& table) const;
    // Opens the database at `path` on this connection as schema `schema` (a name of our own),
    // so that one statement or one transaction spans both files. Checked as the constructor
    // checks its file; read-only access never writes to it.
    void attach(const QString& path, const QString& schema, Access access) const;

private:
    QString m_path;
    QString m_connectionName;
    QSqlDatabase m_db;
};

// One statement prepared once and run many times with new values (bulk writes). It talks
// to the engine directly: a row costs a few calls, not the driver's bookkeeping of named
// values, which cost more than the row's own write. Lives within its Db.
class Statement
{
public:
    Statement(const Db& db, QString sql);
    ~Statement();
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;

    // Runs with `values` bound in order, one for each "?"; they are bound as the driver binds
    // them (a null text or an invalid value is NULL).
    void run(const QVariantList& values);

    // For the hottest loops: values bound one by one (from 1), kept until replaced, then
    // run(). A bound text is not copied: it must live until run() returns.
    void bindText(int index, QStringView text);
    void bindUtf8(int index, QByteArrayView text);
    void bindNull(int index);
    void run();

private:
    [[noreturn]] void fail() const;
    void check(int result) const;

    sqlite3* m_handle = nullptr;
    sqlite3_stmt* m_statement = nullptr;
    QString m_sql;
    QString m_path;
};

// One read statement stepped row by row on the engine's own interface, for reads of many
// rows (a catalogue, a disc's whole list): QSqlQuery copies every value on its way, which
// costs more than the reading. Values come as QSqlQuery gives them (a NULL is a null text).
class RowReader
{
public:
    RowReader(const Db& db, const QString& sql, const QVariantList& values = {});
    ~RowReader();
    RowReader(const RowReader&) = delete;
    RowReader& operator=(const RowReader&) = delete;

    bool next();
    int columnCount() const;
    QString columnName(int column) const;
    QVariant value(int column) const;
    QString text(int column) const;
    QByteArrayView utf8(int column) const; // valid until the next step

private:
    const Db& m_db;
    QString m_sql;
    sqlite3_stmt* m_statement = nullptr;
};

// A transaction that rolls back unless committed.
class Transaction
{
public:
    explicit Transaction(const Db& db);
    ~Transaction();
    Transaction(const Transaction&) = delete;
    Transaction& operator=(const Transaction&) = delete;
    void commit();

private:
    const Db& m_db;
    bool m_open = true;
};

// Booleans are stored as the engine always stored them: True is -1.
inline constexpr int kTrue = -1;
inline constexpr int kFalse = 0;

// Dates are stored as ISO text ("2026-11-22"), which sorts and compares as dates do.
QVariant dateValue(const QDate& date);
QDate dateFrom(const QVariant& stored);

// The error of a failed statement, numbered for the handlers.
AppError sqlError(const QString& driverText, const QString& sql);

} // namespace vinora
