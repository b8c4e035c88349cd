#include "exchange/HtmlPieces.h"

#include "exchange/PageOutput.h"
#include "store/Db.h"

#include <QLocale>
#include <algorithm>

namespace vinora {

const QString kRowsTable = QStringLiteral("<table cellspacing=\"0\" cellpadding=\"3\" border=\"1\" "
                                          "align=\"center\" width=\"100%\" bordercolor=\"#C9C9C9\">");

namespace {

// Deliberately without its closing bracket: pages have always been written so.
const QString kFootTable = QStringLiteral("<table cellspacing=\"0\" border=\"0\" width=\"100%\"");

void writePageEnd(PageOutput& out)
{
    out.line(QStringLiteral("</tr>"));
    out.line(QStringLiteral("</table>"));
    out.line(QStringLiteral("</body>"));
    out.line(QStringLiteral("</html>"));
}

} // namespace

QString htmlEscaped(const QString& value)
{
    const auto special = [](QChar ch) { return ch == u'&' || ch == u'<' || ch == u'>' || ch == u'"'; };
    if (std::none_of(value.cbegin(), value.cend(), special)) {
        return value; // the common case, without a copy
    }
    QString text;
    text.reserve(value.size() + 8);
    for (const QChar ch : value) {
        switch (ch.unicode()) {
        case u'&':
            text += QStringLiteral("&amp;");
            break;
        case u'<':
            text += QStringLiteral("&lt;");
            break;
        case u'>':
            text += QStringLiteral("&gt;");
            break;
        case u'"':
            text += QStringLiteral("&quot;");
            break;
        default:
            text += ch;
        }
    }
    return text;
}

QString htmlValue(const QVariant& value)
{
    return value.isNull() ? QString() : htmlEscaped(value.toString());
}

QString htmlDate(const QVariant& value)
{
    const QDate date = dateFrom(value);
    return date.isValid() ? date.toString(QStringLiteral("dd.MM.yyyy")) : QString();
}

void writePageTop(PageOutput& out, const QString& titleLine, const QStringList& leftCell, const QDate& today)
{
    out.line(QStringLiteral("<html>"));
    out.line(QStringLiteral("<head>"));
    out.line(
        QStringLiteral("<meta http-equiv=\"Content-Type\" content=\"text/html; charset=windows-1251\">"));
    out.line(QStringLiteral("<meta name=\"GENERATOR\" content=\"vinora\">"));
    out.line(titleLine);
    out.line(QStringLiteral("</head>"));
    out.line(QStringLiteral("<body bgcolor=\"#ffffff\">"));
    out.line(QStringLiteral("<table cellspacing=\"0\" border=\"0\" width=\"100%\">"));
    out.line(QStringLiteral("<tr>"));
    for (const QString& line : leftCell) {
        out.line(line);
    }
    out.line(QStringLiteral("</td>"));
    out.line(QStringLiteral(
        "<td width=\"40%\" align=\"center\"><font size=\"6pt\" face=\"Tahoma\"><b>vinora</b></font>"));
    out.line(QStringLiteral("</td>"));
    out.line(
        QStringLiteral(
            "<td width=\"30%\" align=\"right\" valign=\"middle\"><font size=\"2pt\" face=\"Tahoma\"><b>") +
        QLocale().toString(today, QStringLiteral("d MMMM yyyy г.")) + QStringLiteral("</b></font>"));
    out.line(QStringLiteral("</td>"));
    out.line(QStringLiteral("</tr>"));
    out.line(QStringLiteral("</table>"));
}

QString leftCell(const QString& html)
{
    return QStringLiteral("<td bgcolor=\"#ffffff\"><font size=\"2pt\" face=\"Tahoma\">") + html +
           QStringLiteral("</font></td>");
}

QString centreCell(const QString& html)
{
    return QStringLiteral("<td bgcolor=\"#ffffff\" align=\"center\"><font size=\"2pt\" face=\"Tahoma\">") +
           html + QStringLiteral("</font></td>");
}

QString headerCell(const QString& name)
{
    return QStringLiteral("<td bgcolor=\"#e9e9e9\" align=\"center\"><font size=\"2pt\" face=\"Tahoma\"><b>") +
           name + QStringLiteral("</b></font></td>");
}

QString creditLine()
{
    return QStringLiteral("Создано программой vinora - каталогом аудио, компьютерных и DVD дисков");
}

QString creditCell()
{
    return QStringLiteral(
               "<td width=\"50%\" align=\"right\" valign=\"middle\"><font size=\"1pt\" face=\"Tahoma\">") +
           creditLine() + QStringLiteral("</font>");
}

void writeCountFoot(PageOutput& out, const QString& countLine, qint64 count)
{
    out.line(kFootTable);
    out.line(QStringLiteral("<tr><td width=\"50%\"><font size=\"2pt\" face=\"Tahoma\">") + countLine +
             QStringLiteral(": <b>") + QString::number(count) + QStringLiteral("</b></font>"));
    out.line(QStringLiteral("</td>"));
    out.line(creditCell());
    out.line(QStringLiteral("</td>"));
    writePageEnd(out);
}

void writeCreditFoot(PageOutput& out)
{
    out.line(kFootTable);
    out.line(
        QStringLiteral(
            "<tr><td width=\"100%\" align=\"right\" valign=\"middle\"><font size=\"1pt\" face=\"Tahoma\">") +
        creditLine());
    out.line(QStringLiteral("</td>"));
    writePageEnd(out);
}

} // namespace vinora
