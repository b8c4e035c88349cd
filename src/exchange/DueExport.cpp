#include "exchange/DueExport.h"

#include "exchange/HtmlPieces.h"
#include "exchange/PageOutput.h"
#include "frame/AppContext.h"
#include "frame/TextRules.h"
#include "store/Category.h"
#include "store/Db.h"
#include "store/Schema.h"

#include <QCollator>
#include <algorithm>

namespace vinora {
namespace {

// Positions in the check-list.
enum DueField { kPhone = 1, kCategory = 2, kTitle = 3, kDelay = 4, kDates = 5, kReturned = 6 };

std::optional<QDate> dayOf(const QVariant& stored)
{
    const QDate day = dateFrom(stored);
    return day.isValid() ? std::optional<QDate>(day) : std::nullopt;
}

QString categoryText(const QString& code)
{
    if (code == u"AD") {
        return QStringLiteral("Аудио диск");
    }
    if (code == u"PC") {
        return QStringLiteral("Компьютерный диск");
    }
    if (code == u"DVD") {
        return QStringLiteral("DVD диск");
    }
    return {};
}

// One loan of the ledger with its borrower's name and, when the disc is still in its
// catalogue, the disc's number and title.
struct DueRow
{
    QString name;
    QString category;
    QVariant issued, due, returned;
    bool open = false;
    bool discFound = false;
    QString number, title;
};

// Every loan the page lists, ordered by borrower, catalogue, day of issue and entry; one
// statement for the whole ledger, the discs joined from the three catalogues.
QList<DueRow> readDueRows(const Db& db, bool openOnly)
{
    RowReader rows(
        db, QStringLiteral(
                "SELECT И.Имя, Д.Категория, Д.ДатаВыдачи, Д.ДатаВозврата, Д.ДатаВозвратаРеальная, Д.Долг, "
                "COALESCE(А.КодАудиоДиск, К.КодКомпьютерныйДиск, V.КодDVDДиск), "
                "COALESCE(А.Номер, К.Номер, V.Номер), COALESCE(А.Название, К.Название, V.Название) "
                "FROM Должники AS Д JOIN ИменаДолжников AS И ON Д.КодИмяДолжника = И.КодИмени "
                "LEFT JOIN Аудио AS А ON Д.Категория = 'AD' COLLATE BINARY AND А.КодАудиоДиск = Д.КодДиска "
                "LEFT JOIN Компьютер AS К ON Д.Категория = 'PC' COLLATE BINARY AND "
                "К.КодКомпьютерныйДиск = Д.КодДиска "
                "LEFT JOIN DVD AS V ON Д.Категория = 'DVD' COLLATE BINARY AND V.КодDVDДиск = Д.КодДиска") +
                (openOnly ? QStringLiteral(" WHERE Д.Долг <> 0") : QString()) +
                QStringLiteral(" ORDER BY И.Имя, Д.Категория, Д.ДатаВыдачи, Д.КодДолжника"));
    QList<DueRow> loans;
    while (rows.next()) {
        loans.append({rows.text(0), rows.text(1), rows.value(2), rows.value(3), rows.value(4),
                      rows.value(5).toInt() != 0, !rows.value(6).isNull(), rows.text(7), rows.text(8)});
    }
    return loans;
}

// The rows of one borrower: the loans whose borrower's name is `name` as the catalogue
// compares text (letter case aside), from `loans` in their order; gives their number.
int CalculateDue(PageOutput& out, const QList<DueRow>& loans, const DueExportOptions& options,
                 const QString& name, const QDate& today)
{
    const auto checked = [&](int position) { return options.fields.contains(position); };
    const QCollator collator = textCollator();
    const auto first =
        std::lower_bound(loans.begin(), loans.end(), name, [&](const DueRow& row, const QString& wanted) {
            return collator.compare(row.name, wanted) < 0;
        });
    int count = 0;
    for (auto loan = first; loan != loans.end() && collator.compare(loan->name, name) == 0; ++loan) {
        ++count;
        const std::optional<QDate> due = dayOf(loan->due);
        const std::optional<QDate> back = dayOf(loan->returned);
        const QString missing = QStringLiteral("-");
        out.line(QStringLiteral("<tr>"));
        out.line(centreCell(htmlEscaped(loan->discFound ? loan->number : missing)));
        if (checked(kCategory)) {
            out.line(centreCell(categoryText(loan->category)));
        }
        if (checked(kTitle)) {
            out.line(centreCell(htmlEscaped(loan->discFound ? loan->title : missing)));
        }
        if (checked(kDelay)) {
            // A loan without term is never late.
            out.line(centreCell(loan->open ? dueDelayText(due, today)
                                : due      ? dueDelayText(due, back)
                                           : missing));
        }
        if (checked(kDates)) {
            out.line(centreCell(htmlDate(loan->issued) + u'/' + htmlDate(loan->due)));
        }
        if (checked(kReturned)) {
            const QString day = htmlDate(loan->returned);
            out.line(centreCell(loan->open || day.isEmpty() ? missing : day));
        }
        out.line(QStringLiteral("</tr>"));
    }
    return count;
}

} // namespace

QStringList dueFieldItems()
{
    return {QStringLiteral("Телефон"),          QStringLiteral("Категория диска"),
            QStringLiteral("Название диска"),   QStringLiteral("Задержка (дн)"),
            QStringLiteral("Внесен/Сроком до"), QStringLiteral("Вернул")};
}

QString dueDialogTitle()
{
    return QStringLiteral("Экспортирование списка должников в HTML-файл");
}

QString dueNothingCheckedText()
{
    return QStringLiteral("Необходимо выбрать хотя бы один элемент!");
}

QString dueDoneText(const QString& path)
{
    return QStringLiteral("Список должников успешно экспортирован в файл:\n") + path;
}

QString dueDelayText(const std::optional<QDate>& from, const std::optional<QDate>& to)
{
    const qint64 days = from && to ? from->daysTo(*to) : 0;
    return days > 0 ? QString::number(days) : QStringLiteral("нет");
}

int ExportDue(const AppContext& ctx, const DueExportOptions& options, const QString& path)
{
    const auto checked = [&](int position) { return options.fields.contains(position); };
    const QDate today = ctx.clock().today();
    PageOutput out(path);
    writePageTop(out, QStringLiteral("<title>vinora - [Список должников]</title>"),
                 {QStringLiteral("<td width=\"30%\" valign=\"middle\"><font size=\"2pt\" "
                                 "face=\"Tahoma\"><b>Список должников</b></font>")},
                 today);
    const Db db(ctx.MainDBPath, Db::Access::ReadOnly);
    const QList<DueRow> loans = readDueRows(db, options.openOnly);
    QSqlQuery borrowers = db.query(
        QStringLiteral("SELECT DISTINCT Имя, Телефон FROM Должники, ИменаДолжников "
                       "WHERE Должники.КодИмяДолжника = ИменаДолжников.КодИмени") +
        (options.openOnly ? QStringLiteral(" AND Долг <> 0") : QString()) + QStringLiteral(" ORDER BY Имя"));
    const auto heading = [](const char* width, const char* name) -> QString {
        return QStringLiteral("<td bgcolor=\"#e9e9e9\" align=\"center\"") +
               (*width != '\0' ? QStringLiteral(" width=\"") + QString::fromLatin1(width) + u'"'
                               : QString()) +
               QStringLiteral("><font size=\"2pt\" face=\"Tahoma\"><b>") + QString::fromUtf8(name) +
               QStringLiteral("</b></font></td>");
    };
    int count = 0;
    while (borrowers.next()) {
        ++count;
        const QString name = borrowers.value(0).toString();
        out.line(QStringLiteral("<br>"));
        out.line(kRowsTable);
        out.line(QStringLiteral("<tr>"));
        out.line(QStringLiteral("<td colspan=\"7\" bgcolor=\"#f5f5f5\"><font size=\"2pt\" "
                                "face=\"Tahoma\">Имя должника: <b>") +
                 htmlEscaped(name) + QStringLiteral("</b>"));
        if (checked(kPhone)) {
            out.line(QStringLiteral(" (тел.: ") + htmlValue(borrowers.value(1)) + u')');
        }
        out.line(QStringLiteral("</font></td>"));
        out.line(QStringLiteral("</tr>"));
        out.line(QStringLiteral("<tr>"));
        out.line(heading("40", "№"));
        if (checked(kCategory)) {
            out.line(heading("130", "Категория диска"));
        }
        if (checked(kTitle)) {
            out.line(heading("", "Название"));
        }
        if (checked(kDelay)) {
            out.line(heading("70", "Задержка (дн)"));
        }
        if (checked(kDates)) {
            out.line(heading("150", "Внесен/Сроком до"));
        }
        if (checked(kReturned)) {
            out.line(heading("80", "Вернул"));
        }
        out.line(QStringLiteral("</tr>"));
        const int rows = CalculateDue(out, loans, options, name, today);
        out.line(QStringLiteral("</table>"));
        out.line(QStringLiteral("<p><font size=\"2pt\" face=\"Tahoma\">Должников в списке: <b>") +
                 QString::number(rows) + QStringLiteral("</b></font></p>"));
    }
    writeCreditFoot(out);
    out.commit();
    return count;
}

} // namespace vinora
