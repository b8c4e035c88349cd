#pragma once

#include "frame/AppError.h"

#include <QCommandLineOption>
#include <QJsonValue>
#include <QList>
#include <QString>
#include <functional>

class QCommandLineParser;

namespace vinora {

class AppContext;

namespace cli {

// The exit statuses every verb keeps; scripts test them.
enum Status {
    Done = 0,
    Refused = 1,  // nothing found or refused: no medium, no such disc, image already registered
    BadUsage = 2, // unknown verb or option, missing or malformed argument
    BadFile = 3,  // a damaged or unreadable file, or a file that cannot be written
};

// The end of a verb with a message for standard error and its status.
struct Failure
{
    Status status;
    QString message;
};

// One line on standard output (records for scripts).
void print(const QString& line);
// A JSON object or array on standard output.
void printJson(const QJsonValue& value);
// "vinora-cli: <message>" on standard error.
void tell(const QString& message);

// A verb of the tool: its name, what `help` says of it, its arguments and options, and the
// work. Each group of verbs lives in a file of its own and hands its verbs to the registry.
struct Verb
{
    struct Argument
    {
        QString name; // as the usage line shows it: IMAGE, DRIVE
        QString description;
    };

    QString name; // one word, or two for a group of verbs ("export catalogue")
    QString summary;
    QList<Argument> arguments; // each required, in this order
    QList<QCommandLineOption> options;
    QString details; // further lines of `VERB --help`, empty for none
    std::function<int(AppContext& ctx, const QCommandLineParser& parser)> run;
};

QList<Verb> driveVerbs();
QList<Verb> scanVerbs();
QList<Verb> loanVerbs();
QList<Verb> audioVerbs();
QList<Verb> searchVerbs();
QList<Verb> exportVerbs();
QList<Verb> maintenanceVerbs();

// Every verb in the order `help` lists them.
const QList<Verb>& verbs();
const Verb* findVerb(const QString& name);

// The exit statuses as the help texts tell them.
QString exitStatusText();

// Runs `work` on the database at `path`; an AppError coming out of it ends the verb with a
// message naming the file.
void onDatabase(const QString& path, const std::function<void()>& work);
// Opens the database at `path` for writing and checks that it holds `tables`; nothing is
// made when the file is missing.
void requireDatabase(const QString& path, const QStringList& tables);
// The whole number `text` from `low` to `high`, or a usage failure naming `what` (an option
// "--number" or an argument "NUMBER").
int wholeNumber(const QString& text, const QString& what, int low, int high);
// Runs `work` that writes the settings file at `path`; a failed write ends the verb.
void onSettings(const QString& path, const std::function<void()>& work);

// The message and status of an AppError met on the database at `path`.
Failure databaseFailure(const QString& path, const AppError& error);

} // namespace cli
} // namespace vinora
