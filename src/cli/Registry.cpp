#include "cli/Registry.h"

#include "app/Startup.h"
#include "cli/Cli.h"
#include "cli/CliPrompter.h"
#include "frame/AppContext.h"
#include "frame/Clock.h"
#include "frame/Version.h"

#include <QCommandLineParser>
#include <new>

namespace vinora::cli {
namespace {

const QString kHint = QStringLiteral("; 'vinora-cli --help' lists the verbs");

QString versionText()
{
    return QStringLiteral("vinora-cli %1.%2 build %3")
        .arg(kVersionMajor)
        .arg(kVersionMinor)
        .arg(kVersionRevision);
}

QString toolHelp()
{
    QString text =
        QStringLiteral("Usage: vinora-cli VERB [options] [arguments]\n"
                       "       vinora-cli help [VERB]\n"
                       "\n"
                       "The catalogue's drives, discs and file lists for scripts. The application folder is\n"
                       "$VINORA_HOME, else ~/.local/share/vinora, as for the program.\n"
                       "\n"
                       "Verbs:\n");
    qsizetype width = 0;
    for (const Verb& verb : verbs()) {
        width = std::max(width, verb.name.size());
    }
    for (const Verb& verb : verbs()) {
        text += QStringLiteral("  ") + verb.name.leftJustified(width + 2) + verb.summary + u'\n';
    }
    text += QStringLiteral("\n"
                           "Options:\n"
                           "  -h, --help     This text; 'vinora-cli VERB --help' tells a verb's options.\n"
                           "  -v, --version  The version.\n"
                           "\n") +
            exitStatusText() +
            QStringLiteral("\nRecords are printed one per line on standard output, fields separated by\n"
                           "tabs; --json prints a JSON object instead. Messages go to standard error.\n");
    return text;
}

QCommandLineOption helpOption()
{
    return QCommandLineOption({QStringLiteral("h"), QStringLiteral("help")},
                              QStringLiteral("Show this usage and the options."));
}

// The parser's message without its final full stop, as a clause of ours.
QString parserError(const QCommandLineParser& parser)
{
    QString text = parser.errorText();
    if (text.endsWith(u'.')) {
        text.chop(1);
    }
    return text;
}

// The parser of one verb, with its arguments and options.
void describe(QCommandLineParser& parser, const Verb& verb)
{
    parser.setApplicationDescription(verb.summary + u'.');
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    parser.addOption(helpOption());
    for (const Verb::Argument& argument : verb.arguments) {
        parser.addPositionalArgument(argument.name, argument.description);
    }
    parser.addOptions(verb.options);
}

QString verbHelp(const Verb& verb)
{
    QCommandLineParser parser;
    describe(parser, verb);
    QString text = parser.helpText();
    // The parser names the program by its path and knows nothing of verbs.
    QString usage = QStringLiteral("Usage: vinora-cli ") + verb.name;
    if (!verb.options.isEmpty()) {
        usage += QStringLiteral(" [options]");
    }
    for (const Verb::Argument& argument : verb.arguments) {
        usage += u' ' + argument.name;
    }
    text = usage + text.mid(text.indexOf(u'\n'));
    if (!verb.details.isEmpty()) {
        text += u'\n' + verb.details + u'\n';
    }
    return text + u'\n' + exitStatusText();
}

void printText(const QString& text)
{
    std::fputs(text.toUtf8().constData(), stdout);
}

QString usageHint(const Verb& verb)
{
    return QStringLiteral("; 'vinora-cli ") + verb.name + QStringLiteral(" --help' tells its usage");
}

int runVerb(const Verb& verb, const QStringList& arguments)
{
    QCommandLineParser parser;
    describe(parser, verb);
    if (!parser.parse(QStringList{QStringLiteral("vinora-cli")} + arguments)) {
        throw Failure{BadUsage, verb.name + QStringLiteral(": ") + parserError(parser) + usageHint(verb)};
    }
    if (parser.isSet(QStringLiteral("help"))) {
        printText(verbHelp(verb));
        return Done;
    }
    const QStringList positional = parser.positionalArguments();
    if (positional.size() != verb.arguments.size()) {
        QString problem;
        if (positional.size() < verb.arguments.size()) {
            problem = QStringLiteral("missing argument; usage: vinora-cli ") + verb.name;
            for (const Verb::Argument& argument : verb.arguments) {
                problem += u' ' + argument.name;
            }
        } else {
            problem =
                QStringLiteral("unexpected argument '") + positional.value(verb.arguments.size()) + u'\'';
        }
        throw Failure{BadUsage, verb.name + QStringLiteral(": ") + problem + usageHint(verb)};
    }
    CliPrompter prompter;
    SystemClock clock;
    AppContext ctx(applicationFolder(), prompter, clock);
    try {
        return verb.run(ctx, parser);
    } catch (Failure& failure) {
        if (failure.status == BadUsage) {
            failure.message += usageHint(verb);
        }
        throw;
    }
}

// The verb named by the first word, or by the first two for a group ("export catalogue");
// `used` tells how many words it took.
const Verb* verbOf(const QStringList& words, qsizetype& used)
{
    used = 1;
    if (words.size() >= 2) {
        if (const Verb* verb = findVerb(words[0] + u' ' + words[1])) {
            used = 2;
            return verb;
        }
    }
    return words.isEmpty() ? nullptr : findVerb(words.first());
}

// The verbs of the group `word` ("export catalogue", ...), empty when it names none.
QStringList groupOf(const QString& word)
{
    QStringList names;
    for (const Verb& verb : verbs()) {
        if (verb.name.startsWith(word + u' ')) {
            names.append(QStringLiteral("'") + verb.name + u'\'');
        }
    }
    return names;
}

int help(const QStringList& arguments)
{
    if (arguments.isEmpty()) {
        printText(toolHelp());
        return Done;
    }
    qsizetype used = 1;
    const Verb* verb = verbOf(arguments, used);
    if (!verb || arguments.size() > used) {
        throw Failure{BadUsage, QStringLiteral("help: no verb '") + arguments.join(u' ') + u'\'' + kHint};
    }
    printText(verbHelp(*verb));
    return Done;
}

int dispatch(const QStringList& arguments)
{
    QCommandLineParser parser;
    parser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
    const QCommandLineOption versionOption({QStringLiteral("v"), QStringLiteral("version")}, QString());
    parser.addOptions({helpOption(), versionOption});
    parser.addPositionalArgument(QStringLiteral("verb"), QString());
    if (!parser.parse(QStringList{QStringLiteral("vinora-cli")} + arguments)) {
        throw Failure{BadUsage, parserError(parser) + kHint};
    }
    if (parser.isSet(QStringLiteral("help"))) {
        return help({});
    }
    if (parser.isSet(versionOption)) {
        printText(versionText() + u'\n');
        return Done;
    }
    const QStringList words = parser.positionalArguments();
    if (words.isEmpty()) {
        throw Failure{BadUsage, QStringLiteral("no verb given") + kHint};
    }
    if (words.first() == u"help") {
        return help(words.mid(1));
    }
    qsizetype used = 1;
    const Verb* verb = verbOf(words, used);
    if (!verb) {
        if (const QStringList group = groupOf(words.first()); !group.isEmpty()) {
            throw Failure{BadUsage, QStringLiteral("say which: ") + group.join(QStringLiteral(", ")) + kHint};
        }
        throw Failure{BadUsage, QStringLiteral("unknown verb '") + words.first() + u'\'' + kHint};
    }
    return runVerb(*verb, words.mid(used));
}

} // namespace

const QList<Verb>& verbs()
{
    static const QList<Verb> all = driveVerbs() + scanVerbs() + audioVerbs() + searchVerbs() + loanVerbs() +
                                   exportVerbs() + maintenanceVerbs();
    return all;
}

const Verb* findVerb(const QString& name)
{
    for (const Verb& verb : verbs()) {
        if (verb.name == name) {
            return &verb;
        }
    }
    return nullptr;
}

int runTool(const QStringList& arguments)
{
    try {
        return dispatch(arguments);
    } catch (const Failure& failure) {
        tell(failure.message);
        return failure.status;
    } catch (const AppError& error) {
        // Every verb wraps the files it works on; what still comes out is told as it is.
        tell(error.description() + QStringLiteral(" (code ") + QString::number(error.number()) + u')');
        return BadFile;
    } catch (const std::bad_alloc&) {
        tell(QStringLiteral("out of memory"));
        return BadFile;
    } catch (const std::exception& error) {
        tell(QString::fromLocal8Bit(error.what()));
        return BadFile;
    }
}

} // namespace vinora::cli
