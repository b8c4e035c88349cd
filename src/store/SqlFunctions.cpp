#include "store/SqlFunctions.h"

#include "frame/AppError.h"
#include "frame/TextRules.h"
#include "store/JetPattern.h"

#include <QCollator>
#include <QLocale>
#include <QSqlDriver>
#include <QString>
#include <QStringDecoder>
#include <QVarLengthArray>
#include <sqlite3.h>

namespace vinora {
namespace {

// Decodes UTF-8 into `buffer` (no allocation for the usual short texts).
QStringView decoded(QVarLengthArray<QChar, 256>& buffer, const void* bytes, int length)
{
    buffer.resize(length); // UTF-8 never takes fewer bytes than UTF-16 code units
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QChar* end =
        decoder.appendToBuffer(buffer.data(), QByteArrayView(static_cast<const char*>(bytes), length));
    return QStringView(buffer.data(), end - buffer.data());
}

int collateNoCase(void* state, int lengthA, const void* a, int lengthB, const void* b)
{
    // Disc ids, most file names and the checks against the empty text are told at once;
    // the collator, which costs much more, orders the rest.
    if (const std::optional<int> quick =
            quickCompareText(QByteArrayView(static_cast<const char*>(a), lengthA),
                             QByteArrayView(static_cast<const char*>(b), lengthB))) {
        return *quick;
    }
    const auto* collator = static_cast<QCollator*>(state);
    QVarLengthArray<QChar, 256> bufferA;
    QVarLengthArray<QChar, 256> bufferB;
    const int order = collator->compare(decoded(bufferA, a, lengthA), decoded(bufferB, b, lengthB));
    return order < 0 ? -1 : order > 0 ? 1 : 0;
}

void destroyCollator(void* state)
{
    delete static_cast<QCollator*>(state);
}

QString textArgument(sqlite3_value* value)
{
    const auto* bytes = reinterpret_cast<const char*>(sqlite3_value_text(value));
    return QString::fromUtf8(bytes, sqlite3_value_bytes(value));
}

void likeFunction(sqlite3_context* context, int argc, sqlite3_value** argv)
{
    if (sqlite3_value_type(argv[0]) == SQLITE_NULL || sqlite3_value_type(argv[1]) == SQLITE_NULL ||
        (argc == 3 && sqlite3_value_type(argv[2]) == SQLITE_NULL)) {
        sqlite3_result_null(context);
        return;
    }
    // The pattern (the first argument) is folded once per statement, not once per row.
    if (const auto* kept = static_cast<const QString*>(sqlite3_get_auxdata(context, 0))) {
        sqlite3_result_int(context, jetLikeFolded(*kept, textArgument(argv[1])) ? 1 : 0);
        return;
    }
    auto* folded = new QString(textArgument(argv[0]).toCaseFolded());
    sqlite3_result_int(context, jetLikeFolded(*folded, textArgument(argv[1])) ? 1 : 0);
    sqlite3_set_auxdata(context, 0, folded, [](void* kept) { delete static_cast<QString*>(kept); });
}

template <bool Upper> void caseFunction(sqlite3_context* context, int, sqlite3_value** argv)
{
    if (sqlite3_value_type(argv[0]) == SQLITE_NULL) {
        sqlite3_result_null(context);
        return;
    }
    const QByteArray converted =
        (Upper ? textArgument(argv[0]).toUpper() : textArgument(argv[0]).toLower()).toUtf8();
    sqlite3_result_text(context, converted.constData(), static_cast<int>(converted.size()), SQLITE_TRANSIENT);
}

} // namespace

sqlite3* sqliteHandle(const QSqlDatabase& db)
{
    const QVariant handle = db.driver()->handle();
    if (!handle.isValid() || qstrcmp(handle.typeName(), "sqlite3*") != 0) {
        throw AppError(err::EngineError, QStringLiteral("The database driver gives no SQLite handle"));
    }
    return *static_cast<sqlite3* const*>(handle.constData());
}

void installSqlFunctions(const QSqlDatabase& db)
{
    sqlite3* handle = sqliteHandle(db);
    constexpr int flags = SQLITE_UTF8 | SQLITE_DETERMINISTIC;
    int rc = sqlite3_create_collation_v2(handle, "NOCASE", SQLITE_UTF8, new QCollator(textCollator()),
                                         collateNoCase, destroyCollator);
    rc |= sqlite3_create_function_v2(handle, "like", 2, flags, nullptr, likeFunction, nullptr, nullptr,
                                     nullptr);
    rc |= sqlite3_create_function_v2(handle, "like", 3, flags, nullptr, likeFunction, nullptr, nullptr,
                                     nullptr);
    rc |= sqlite3_create_function_v2(handle, "upper", 1, flags, nullptr, caseFunction<true>, nullptr, nullptr,
                                     nullptr);
    rc |= sqlite3_create_function_v2(handle, "lower", 1, flags, nullptr, caseFunction<false>, nullptr,
                                     nullptr, nullptr);
    if (rc != SQLITE_OK) {
        throw AppError(err::EngineError, QStringLiteral("Cannot install the text functions: ") +
                                             QString::fromUtf8(sqlite3_errmsg(handle)));
    }
}

} // namespace vinora
