#include "cli/Cli.h"

#include <QFileInfo>

#include "store/Db.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <cstdio>

namespace vinora::cli {

void print(const QString& line)
{
    std::printf("%s\n", line.toUtf8().constData());
}

void printJson(const QJsonValue& value)
{
    const QJsonDocument document =
        value.isArray() ? QJsonDocument(value.toArray()) : QJsonDocument(value.toObject());
    std::fputs(document.toJson(QJsonDocument::Indented).constData(), stdout);
}

void tell(const QString& message)
{
    std::fprintf(stderr, "vinora-cli: %s\n", message.toLocal8Bit().constData());
}

QString exitStatusText()
{
    return QStringLiteral("Exit status:\n"
                          "  0  done\n"
                          "  1  nothing found or refused: no usable medium, no such disc number, an image\n"
                          "     registered already or not registered, a database that does not exist yet\n"
                          "  2  bad usage: unknown verb or option, missing or malformed argument\n"
                          "  3  a damaged or unreadable file: a database that is damaged, foreign or\n"
                          "     read-only, a settings file that cannot be written, an image that cannot\n"
                          "     be read\n");
}

Failure databaseFailure(const QString& path, const AppError& error)
{
    const QString file = u'\'' + path + u'\'';
    const QString why = QStringLiteral(" (") + error.description() + u')';
    switch (error.number()) {
    case err::CannotFindFile:
        return {Refused, QStringLiteral("the database ") + file +
                             QStringLiteral(" does not exist; vinora makes its databases when it starts")};
    case err::InvalidPath:
        return {Refused, QStringLiteral("the folder of the database ") + file +
                             QStringLiteral(" does not exist (PathLocalDB in vinora.ini)")};
    case err::CannotOpenFile:
        return {BadFile, QStringLiteral("the database ") + file + QStringLiteral(" cannot be written") + why};
    case err::UnrecognizedFormat:
    case err::NoSuchTable:
    case err::ItemNotFound:
        return {BadFile, QStringLiteral("the database ") + file +
                             QStringLiteral(" is damaged or is not a vinora database") + why};
    default:
        return {BadFile, QStringLiteral("the database ") + file + QStringLiteral(" could not be used") + why};
    }
}

void onDatabase(const QString& path, const std::function<void()>& work)
{
    try {
        work();
    } catch (const AppError& error) {
        throw databaseFailure(path, error);
    }
}

void requireDatabase(const QString& path, const QStringList& tables)
{
    // The databases are made by the program itself; the tool only reads and fills them.
    if (!QFileInfo::exists(path)) {
        const bool folder = QFileInfo(QFileInfo(path).path()).isDir();
        throw databaseFailure(path, AppError(folder ? err::CannotFindFile : err::InvalidPath, path));
    }
    onDatabase(path, [&] {
        const Db db(path);
        for (const QString& table : tables) {
            if (!db.tableExists(table)) {
                throw AppError(err::NoSuchTable, QStringLiteral("it has no table ") + table);
            }
        }
    });
}

int wholeNumber(const QString& text, const QString& what, int low, int high)
{
    bool ok = false;
    const int value = text.toInt(&ok);
    if (!ok || value < low || value > high) {
        throw Failure{BadUsage,
                      QStringLiteral("%1 takes a whole number from %2 to %3, not '%4'").arg(what).arg(low).arg(high).arg(text)};
    }
    return value;
}

void onSettings(const QString& path, const std::function<void()>& work)
{
    try {
        work();
    } catch (const AppError& error) {
        throw Failure{BadFile, QStringLiteral("the settings file '") + path +
                                   QStringLiteral("' cannot be written (") + error.description() + u')'};
    }
}

} // namespace vinora::cli
