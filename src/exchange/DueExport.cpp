#include "exchange/DueExport.h"

#include "exchange/HtmlPieces.h"
#include "exchange/PageOutput.h"
#include "frame/AppContext.h"
#include "store/Category.h"
#include "store/Db.h"
#include "store/Schema.h"

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

// The rows of one borrower; gives their number.
int CalculateDue(PageOutput& out, const Db& db, const DueExportOptions& options, const QString& name,
                 const QDate& today)
{
    const auto checked = [&](int position) { return options.fields.contains(position); };
    QSqlQuery rows = db.query(
        QStringLiteral("SELECT КодДиска, Категория, ДатаВыдачи, ДатаВозврата, ДатаВозвратаРеальная, Долг "
                       "FROM Должники, ИменаДолжников WHERE ") +
            (options.openOnly ? QStringLiteral("Долг <> 0 AND ") : QString()) +
            QStringLiteral("Имя = ? AND Должники.КодИмяДолжника = ИменаДолжников.КодИмени "
                           "ORDER BY Имя, Категория, ДатаВыдачи, КодДолжника"),
        {name});
    int count = 0;
    while (rows.next()) {
        ++count;
        const qint64 code = rows.value(0).toLongLong();
        const QString kind = rows.value(1).toString();
        const std::optional<QDate> due = dayOf(rows.value(3));
        const std::optional<QDate> back = dayOf(rows.value(4));
        const bool open = rows.value(5).toInt() != 0;
        out.line(QStringLiteral("<tr>"));
        out.line(centreCell(htmlEscaped(GetInfoCD(db, QStringLiteral("Number"), kind, code))));
        if (checked(kCategory)) {
            out.line(centreCell(categoryText(kind)));
        }
        if (checked(kTitle)) {
            out.line(centreCell(htmlEscaped(GetInfoCD(db, QStringLiteral("Name"), kind, code))));
        }
        if (checked(kDelay)) {
            // A loan without term is never late.
            out.line(centreCell(open  ? dueDelayText(due, today)
                                : due ? dueDelayText(due, back)
                                      : QStringLiteral("-")));
        }
        if (checked(kDates)) {
            out.line(centreCell(htmlDate(rows.value(2)) + u'/' + htmlDate(rows.value(3))));
        }
        if (checked(kReturned)) {
            const QString day = htmlDate(rows.value(4));
            out.line(centreCell(open || day.isEmpty() ? QStringLiteral("-") : day));
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

QString GetInfoCD(const Db& db, const QString& field, const QString& kind, qint64 code)
{
    const CategoryInfo* info = categoryByCode(kind);
    if (info == nullptr) {
        return QStringLiteral("-");
    }
    const QVariant value =
        db.scalar(QStringLiteral("SELECT ") +
                      (field == u"Number" ? QStringLiteral("\"Номер\"") : QStringLiteral("\"Название\"")) +
                      QStringLiteral(" FROM ") + quoted(info->table) + QStringLiteral(" WHERE ") +
                      quoted(info->keyField) + QStringLiteral(" = ?"),
                  {code});
    return value.isValid() ? value.toString() : QStringLiteral("-");
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
        const int rows = CalculateDue(out, db, options, name, today);
        out.line(QStringLiteral("</table>"));
        out.line(QStringLiteral("<p><font size=\"2pt\" face=\"Tahoma\">Должников в списке: <b>") +
                 QString::number(rows) + QStringLiteral("</b></font></p>"));
    }
    writeCreditFoot(out);
    out.commit();
    return count;
}

} // namespace vinora
