// The loan ledger for scripts: the open loans, lending a disc and taking it back.
#include "cli/Cli.h"
#include "frame/AppContext.h"
#include "frame/Clock.h"
#include "lending/DueList.h"
#include "lending/LoanLedger.h"
#include "store/DatabaseLock.h"
#include "store/Db.h"

#include <QCommandLineParser>
#include <QJsonArray>
#include <QJsonObject>

namespace vinora::cli {
namespace {

const QCommandLineOption kUntil(QStringLiteral("until"),
                                QStringLiteral("The day the disc is promised back (default: no term)."),
                                QStringLiteral("YYYY-MM-DD"));
const QCommandLineOption kJson(QStringLiteral("json"), QStringLiteral("Print one JSON array."));

constexpr int kNameLength = 50; // ИменаДолжников.Имя

const Verb::Argument kCategoryArgument{QStringLiteral("CATEGORY"), QStringLiteral("AD, PC or DVD.")};
const Verb::Argument kNumberArgument{QStringLiteral("NUMBER"), QStringLiteral("The disc's number in its catalogue.")};

Category categoryArgument(const QString& text)
{
    const CategoryInfo* info = categoryByCode(text.toUpper());
    if (info == nullptr) {
        throw Failure{BadUsage, QStringLiteral("CATEGORY is AD, PC or DVD, not '") + text + u'\''};
    }
    return info->category;
}

// The main database, checked, with the lock that keeps maintenance away while we write.
DatabaseLock openLedger(AppContext& ctx)
{
    ctx.resolveDatabasePaths();
    requireDatabase(ctx.MainDBPath, {QStringLiteral("Должники"), QStringLiteral("ИменаДолжников")});
    return DatabaseLock::acquire(ctx.MainDBPath, DatabaseLock::Mode::Shared, [] {
        tell(QStringLiteral("waiting for the program to finish maintenance of the databases..."));
    });
}

LoanDisc discArgument(const Db& db, const QCommandLineParser& parser)
{
    const Category category = categoryArgument(parser.positionalArguments().at(0));
    const int number = wholeNumber(parser.positionalArguments().at(1), QStringLiteral("NUMBER"), 1, 32767);
    const std::optional<LoanDisc> disc = findLoanDisc(db, category, number);
    if (!disc) {
        throw Failure{Refused, QStringLiteral("Диск № ") + QString::number(number) +
                                   QStringLiteral(" отсутствует в каталоге.")};
    }
    return *disc;
}

QString dateText(const std::optional<QDate>& date)
{
    return date ? date->toString(Qt::ISODate) : QStringLiteral("-");
}

int loans(AppContext& ctx, const QCommandLineParser& parser)
{
    const DatabaseLock lock = openLedger(ctx);
    const QDate today = ctx.clock().today();
    QJsonArray records;
    onDatabase(ctx.MainDBPath, [&] {
        const Db db(ctx.MainDBPath, Db::Access::ReadOnly);
        for (const OpenLoan& loan : openLoans(db, DueSort::ByName, false, {})) {
            const std::optional<LoanDisc> disc = loanDiscByKey(db, loan.category, loan.discKey);
            const int overdue = loan.due && *loan.due < today ? static_cast<int>(loan.due->daysTo(today)) : 0;
            const QString code = categoryInfo(loan.category).code;
            const QString number = disc ? QString::number(disc->number) : QStringLiteral("-");
            const QString title = disc ? loanDiscTitle(*disc) : QString();
            if (parser.isSet(kJson)) {
                records.append(QJsonObject{{QStringLiteral("category"), code},
                                           {QStringLiteral("number"), disc ? QJsonValue(disc->number) : QJsonValue()},
                                           {QStringLiteral("title"), title},
                                           {QStringLiteral("borrower"), loan.name},
                                           {QStringLiteral("issued"), loan.issued.toString(Qt::ISODate)},
                                           {QStringLiteral("due"), loan.due ? QJsonValue(dateText(loan.due))
                                                                            : QJsonValue()},
                                           {QStringLiteral("overdue"), overdue}});
            } else {
                print(QStringList{code, number, title, loan.name, loan.issued.toString(Qt::ISODate),
                                  dateText(loan.due), QString::number(overdue)}
                          .join(u'\t'));
            }
        }
    });
    if (parser.isSet(kJson)) {
        printJson(records);
    }
    return Done;
}

int lend(AppContext& ctx, const QCommandLineParser& parser)
{
    const QString name = parser.positionalArguments().at(2).trimmed();
    if (name.isEmpty() || name.size() > kNameLength) {
        throw Failure{BadUsage, QStringLiteral("NAME takes 1 to 50 characters")};
    }
    const QDate today = ctx.clock().today();
    std::optional<QDate> until;
    if (parser.isSet(kUntil)) {
        until = QDate::fromString(parser.value(kUntil), Qt::ISODate);
        if (!until->isValid() || *until < today) {
            throw Failure{BadUsage, QStringLiteral("--until takes a day from today on, as YYYY-MM-DD, not '") +
                                        parser.value(kUntil) + u'\''};
        }
    }
    const DatabaseLock lock = openLedger(ctx);
    onDatabase(ctx.MainDBPath, [&] {
        const Db db(ctx.MainDBPath);
        const LoanDisc disc = discArgument(db, parser);
        if (disc.lent) {
            throw Failure{Refused, QStringLiteral("Диск № ") + QString::number(disc.number) +
                                       QStringLiteral(" уже находится у должника.")};
        }
        lendDisc(db, disc, name, until, today);
    });
    return Done;
}

int takeBack(AppContext& ctx, const QCommandLineParser& parser)
{
    const DatabaseLock lock = openLedger(ctx);
    onDatabase(ctx.MainDBPath, [&] {
        const Db db(ctx.MainDBPath);
        const LoanDisc disc = discArgument(db, parser);
        if (!disc.lent) {
            throw Failure{Refused,
                          QStringLiteral("Диск № ") + QString::number(disc.number) + QStringLiteral(" не одалживался!")};
        }
        returnDisc(db, disc.category, disc.key, ctx.clock().today());
    });
    return Done;
}

} // namespace

QList<Verb> loanVerbs()
{
    return {
        {QStringLiteral("loans"),
         QStringLiteral("List the discs out on loan"),
         {},
         {kJson},
         QStringLiteral("Fields: category, number, title, borrower, issued, due ('-' for no term), days overdue."),
         loans},
        {QStringLiteral("lend"),
         QStringLiteral("Lend a disc of a catalogue to a borrower"),
         {kCategoryArgument, kNumberArgument,
          {QStringLiteral("NAME"), QStringLiteral("The borrower; a new name is added to the borrowers.")}},
         {kUntil},
         {},
         lend},
        {QStringLiteral("return"),
         QStringLiteral("Take a lent disc back"),
         {kCategoryArgument, kNumberArgument},
         {},
         {},
         takeBack},
    };
}

} // namespace vinora::cli
