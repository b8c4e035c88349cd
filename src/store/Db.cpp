#include "store/Db.h"

#include "store/SqlFunctions.h"

#include <QAtomicInteger>
#include <QFileInfo>
#include <QSqlDriver>
#include <QSqlError>
#include <QUrl>
#include <sqlite3.h>
#include <unistd.h>

namespace vinora {
namespace {

QAtomicInteger<quint64> g_connectionSerial;

bool writable(const QString& path)
{
    return ::access(QFile::encodeName(path).constData(), W_OK) == 0;
}

// The checks the engine made before it opened a file, with its error numbers.
void checkOpenable(const QString& path, Db::Access access)
{
    const QFileInfo file(path);
    const QFileInfo folder(file.path());
    if (!folder.isDir()) {
        throw AppError(err::InvalidPath, u'\'' + path + QStringLiteral("' isn't a valid path."));
    }
    // The engine needs to write beside the file, so a folder that refuses new files
    // refuses the database before anything else is looked at.
    if (access != Db::Access::ReadOnly && !writable(folder.filePath())) {
        throw AppError(err::CannotOpenFile, QStringLiteral("The database engine cannot open the file '") +
                                                path + QStringLiteral("'. Its folder is read-only."));
    }
    if (!file.exists()) {
        if (access != Db::Access::Create) {
            throw AppError(err::CannotFindFile, QStringLiteral("Could not find file '") + path + u'\'');
        }
        return;
    }
    if (file.isDir()) {
        throw AppError(err::UnrecognizedFormat,
                       QStringLiteral("Unrecognized database format '") + path + u'\'');
    }
    if (access != Db::Access::ReadOnly && !writable(path)) {
        throw AppError(err::CannotOpenFile, QStringLiteral("The database engine cannot open the file '") +
                                                path + QStringLiteral("'. It is read-only."));
    }
}

QString uriFor(const QString& path, Db::Access access)
{
    QUrl url = QUrl::fromLocalFile(QFileInfo(path).absoluteFilePath());
    const char* mode = access == Db::Access::ReadOnly ? "ro" : access == Db::Access::Create ? "rwc" : "rw";
    url.setQuery(QStringLiteral("mode=") + QLatin1StringView(mode));
    return url.toString(QUrl::FullyEncoded);
}

// The error of a statement on the file at `path`: the file is named, so a message about a
// damaged database says which one.
AppError fileSqlError(const QString& driverText, const QString& sql, const QString& path)
{
    const AppError error = sqlError(driverText, sql);
    return AppError(error.number(),
                    error.description() + QStringLiteral(" ('") + path + QStringLiteral("')"));
}

// The value a variant holds, without a copy (its type is checked by the caller).
template <typename T> const T& held(const QVariant& value)
{
    return *static_cast<const T*>(value.constData());
}

} // namespace

AppError sqlError(const QString& driverText, const QString& sql)
{
    const QString where = QStringLiteral(" [") + sql.simplified().left(300) + u']';
    const auto has = [&](const char* part) { return driverText.contains(QLatin1StringView(part)); };
    int number = err::EngineError;
    if (has("FOREIGN KEY constraint failed")) {
        // Deleting a row that others refer to, or pointing a row at one that is not there.
        number = sql.trimmed().startsWith(QStringLiteral("DELETE"), Qt::CaseInsensitive)
                     ? err::RelatedRecordsExist
                     : err::RelatedRecordRequired;
    } else if (has("CHECK constraint failed")) {
        number = has("failed: empty:")   ? err::ZeroLengthString
                 : has("failed: size:")  ? err::FieldTooSmall
                 : has("failed: range:") ? err::Overflow
                                         : err::ValidationRule;
    } else if (has("UNIQUE constraint failed")) {
        number = err::DuplicateValue;
    } else if (has("not a database")) {
        number = err::UnrecognizedFormat;
    } else if (has("database or disk is full")) {
        number = err::DiskFull;
    } else if (has("readonly") || has("unable to open") || has("locked") || has("disk I/O")) {
        number = err::CannotOpenFile;
    } else if (has("already exists")) {
        number = err::TableExists;
    } else if (has("no such table")) {
        number = err::NoSuchTable;
    } else if (has("no such column")) {
        number = err::ItemNotFound;
    }
    return AppError(number, driverText + where);
}

Db::Db(const QString& path, Access access)
    : m_path(path), m_connectionName(QStringLiteral("vinora-") + QString::number(++g_connectionSerial))
{
    checkOpenable(path, access);
    m_db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_connectionName);
    m_db.setConnectOptions(QStringLiteral("QSQLITE_OPEN_URI;QSQLITE_BUSY_TIMEOUT=10000"));
    m_db.setDatabaseName(uriFor(path, access));
    if (!m_db.open()) {
        const QString text = m_db.lastError().text();
        m_db = QSqlDatabase();
        QSqlDatabase::removeDatabase(m_connectionName);
        throw sqlError(text, QStringLiteral("open ") + path);
    }
    try {
        installSqlFunctions(m_db);
        // The first read tells a database from any other file.
        scalar(QStringLiteral("SELECT count(*) FROM sqlite_master"));
        exec(QStringLiteral("PRAGMA foreign_keys = ON"));
    } catch (...) {
        m_db.close();
        m_db = QSqlDatabase();
        QSqlDatabase::removeDatabase(m_connectionName);
        throw;
    }
}

Db::~Db()
{
    m_db.close();
    m_db = QSqlDatabase();
    QSqlDatabase::removeDatabase(m_connectionName);
}

QSqlQuery Db::query(const QString& sql, const QVariantList& values) const
{
    QSqlQuery query(m_db);
    query.setForwardOnly(true);
    if (!query.prepare(sql)) {
        throw fileSqlError(query.lastError().text(), sql, m_path);
    }
    for (const QVariant& value : values) {
        query.addBindValue(value);
    }
    if (!query.exec()) {
        throw fileSqlError(query.lastError().text(), sql, m_path);
    }
    return query;
}

void Db::exec(const QString& sql, const QVariantList& values) const
{
    query(sql, values);
}

QVariant Db::scalar(const QString& sql, const QVariantList& values) const
{
    QSqlQuery result = query(sql, values);
    return result.next() ? result.value(0) : QVariant();
}

QStringList Db::texts(const QString& sql, const QVariantList& values) const
{
    QStringList texts;
    QSqlQuery result = query(sql, values);
    while (result.next()) {
        texts.append(result.value(0).toString());
    }
    return texts;
}

bool Db::tableExists(const QString& table) const
{
    return scalar(QStringLiteral("SELECT count(*) FROM sqlite_master WHERE type = 'table' AND name = ?"),
                  {table})
               .toInt() > 0;
}

void Db::attach(const QString& path, const QString& schema, Access access) const
{
    checkOpenable(path, access);
    const QString name = u'"' + schema + u'"';
    exec(QStringLiteral("ATTACH DATABASE ? AS ") + name, {uriFor(path, access)});
    try {
        // As at opening: the first read tells a database from any other file.
        scalar(QStringLiteral("SELECT count(*) FROM ") + name + QStringLiteral(".sqlite_master"));
    } catch (const AppError& error) {
        QSqlQuery(QStringLiteral("DETACH DATABASE ") + name, m_db);
        throw AppError(error.number(),
                       error.description() + QStringLiteral(" ('") + path + QStringLiteral("')"));
    }
}

Statement::Statement(const Db& db, QString sql)
    : m_handle(sqliteHandle(db.connection())), m_sql(std::move(sql)), m_path(db.path())
{
    const QByteArray text = m_sql.toUtf8();
    if (sqlite3_prepare_v3(m_handle, text.constData(), static_cast<int>(text.size()),
                           SQLITE_PREPARE_PERSISTENT, &m_statement, nullptr) != SQLITE_OK) {
        fail();
    }
}

Statement::~Statement()
{
    sqlite3_finalize(m_statement);
}

void Statement::fail() const
{
    throw fileSqlError(QString::fromUtf8(sqlite3_errmsg(m_handle)), m_sql, m_path);
}

void Statement::check(int result) const
{
    if (result != SQLITE_OK) {
        fail();
    }
}

void Statement::bindText(int index, QStringView text)
{
    // A non-null pointer, so that an empty text is stored as '' and not as NULL.
    static const char16_t empty = 0;
    check(sqlite3_bind_text16(m_statement, index, text.isEmpty() ? &empty : text.utf16(),
                              static_cast<int>(text.size() * sizeof(char16_t)), SQLITE_STATIC));
}

void Statement::bindUtf8(int index, QByteArrayView text)
{
    static const char empty = 0;
    check(sqlite3_bind_text(m_statement, index, text.isEmpty() ? &empty : text.data(),
                            static_cast<int>(text.size()), SQLITE_STATIC));
}

void Statement::bindNull(int index)
{
    check(sqlite3_bind_null(m_statement, index));
}

void Statement::run()
{
    const int stepped = sqlite3_step(m_statement);
    // Reset at once: a statement left open would hold its read of the file.
    const int reset = sqlite3_reset(m_statement);
    if ((stepped != SQLITE_DONE && stepped != SQLITE_ROW) || reset != SQLITE_OK) {
        fail();
    }
}

void Statement::run(const QVariantList& values)
{
    if (values.size() != sqlite3_bind_parameter_count(m_statement)) {
        throw fileSqlError(QStringLiteral("Parameter count mismatch"), m_sql, m_path);
    }
    // The texts made here for dates and other types must outlive the step.
    QStringList made;
    for (qsizetype i = 0; i < values.size(); ++i) {
        const int index = static_cast<int>(i + 1);
        const QVariant& value = values[i];
        const int type = value.typeId();
        if (value.isNull() || (type == QMetaType::QString && held<QString>(value).isNull()) ||
            (type == QMetaType::QByteArray && held<QByteArray>(value).isNull()) ||
            (type == QMetaType::QDateTime && !held<QDateTime>(value).isValid()) ||
            (type == QMetaType::QDate && held<QDate>(value).isNull()) ||
            (type == QMetaType::QTime && held<QTime>(value).isNull())) {
            bindNull(index);
            continue;
        }
        switch (type) {
        case QMetaType::QByteArray: {
            const QByteArray& bytes = held<QByteArray>(value);
            check(sqlite3_bind_blob(m_statement, index, bytes.constData(), static_cast<int>(bytes.size()),
                                    SQLITE_STATIC));
            break;
        }
        case QMetaType::Int:
        case QMetaType::Bool:
            check(sqlite3_bind_int(m_statement, index, value.toInt()));
            break;
        case QMetaType::Double:
            check(sqlite3_bind_double(m_statement, index, value.toDouble()));
            break;
        case QMetaType::UInt:
        case QMetaType::LongLong:
            check(sqlite3_bind_int64(m_statement, index, value.toLongLong()));
            break;
        case QMetaType::QString:
            bindText(index, held<QString>(value));
            break;
        case QMetaType::QDateTime:
            made.append(value.toDateTime().toString(Qt::ISODateWithMs));
            bindText(index, made.last());
            break;
        case QMetaType::QTime:
            made.append(value.toTime().toString(u"hh:mm:ss.zzz"));
            bindText(index, made.last());
            break;
        default:
            made.append(value.toString());
            bindText(index, made.last());
            break;
        }
    }
    run();
}

Transaction::Transaction(const Db& db) : m_db(db)
{
    // The write lock is taken at the start: a transaction that read first and then had to
    // wait for another process's writer could only fail, never wait.
    m_db.exec(QStringLiteral("BEGIN IMMEDIATE"));
}

Transaction::~Transaction()
{
    if (m_open) {
        QSqlQuery(QStringLiteral("ROLLBACK"), m_db.connection());
    }
}

void Transaction::commit()
{
    m_db.exec(QStringLiteral("COMMIT"));
    m_open = false;
}

QVariant dateValue(const QDate& date)
{
    return date.isValid() ? QVariant(date.toString(Qt::ISODate)) : QVariant();
}

QDate dateFrom(const QVariant& stored)
{
    if (stored.isNull()) {
        return {};
    }
    return QDate::fromString(stored.toString().left(10), Qt::ISODate);
}

} // namespace vinora

namespace vinora {

RowReader::RowReader(const Db& db, const QString& sql, const QVariantList& values) : m_db(db), m_sql(sql)
{
    sqlite3* handle = sqliteHandle(db.connection());
    const QByteArray text = sql.toUtf8();
    if (sqlite3_prepare_v2(handle, text.constData(), static_cast<int>(text.size()), &m_statement, nullptr) !=
        SQLITE_OK) {
        throw fileSqlError(QString::fromUtf8(sqlite3_errmsg(handle)), sql, db.path());
    }
    int position = 0;
    for (const QVariant& value : values) {
        ++position;
        int rc = SQLITE_OK;
        switch (value.typeId()) {
        case QMetaType::Bool:
        case QMetaType::Int:
        case QMetaType::UInt:
        case QMetaType::LongLong:
        case QMetaType::ULongLong:
            rc = sqlite3_bind_int64(m_statement, position, value.toLongLong());
            break;
        case QMetaType::Double:
            rc = sqlite3_bind_double(m_statement, position, value.toDouble());
            break;
        default:
            if (value.isNull()) {
                rc = sqlite3_bind_null(m_statement, position);
            } else {
                const QByteArray bound = value.toString().toUtf8();
                rc = sqlite3_bind_text(m_statement, position, bound.constData(),
                                       static_cast<int>(bound.size()), SQLITE_TRANSIENT);
            }
        }
        if (rc != SQLITE_OK) {
            const QString message = QString::fromUtf8(sqlite3_errmsg(handle));
            sqlite3_finalize(m_statement);
            throw fileSqlError(message, sql, db.path());
        }
    }
}

RowReader::~RowReader()
{
    sqlite3_finalize(m_statement);
}

bool RowReader::next()
{
    const int rc = sqlite3_step(m_statement);
    if (rc == SQLITE_ROW) {
        return true;
    }
    if (rc == SQLITE_DONE) {
        return false;
    }
    throw fileSqlError(QString::fromUtf8(sqlite3_errmsg(sqlite3_db_handle(m_statement))), m_sql, m_db.path());
}

int RowReader::columnCount() const
{
    return sqlite3_column_count(m_statement);
}

QString RowReader::columnName(int column) const
{
    return QString::fromUtf8(sqlite3_column_name(m_statement, column));
}

QString RowReader::text(int column) const
{
    const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(m_statement, column));
    return bytes == nullptr ? QString() : QString::fromUtf8(bytes, sqlite3_column_bytes(m_statement, column));
}

QByteArrayView RowReader::utf8(int column) const
{
    const auto* bytes = reinterpret_cast<const char*>(sqlite3_column_text(m_statement, column));
    return QByteArrayView(bytes, bytes == nullptr ? 0 : sqlite3_column_bytes(m_statement, column));
}

QVariant RowReader::value(int column) const
{
    switch (sqlite3_column_type(m_statement, column)) {
    case SQLITE_INTEGER:
        return QVariant(static_cast<qlonglong>(sqlite3_column_int64(m_statement, column)));
    case SQLITE_FLOAT:
        return QVariant(sqlite3_column_double(m_statement, column));
    case SQLITE_NULL:
        return QVariant(QMetaType::fromType<QString>());
    case SQLITE_BLOB:
        return QVariant(QByteArray(static_cast<const char*>(sqlite3_column_blob(m_statement, column)),
                                   sqlite3_column_bytes(m_statement, column)));
    default:
        return QVariant(text(column));
    }
}

} // namespace vinora
