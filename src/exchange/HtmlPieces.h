#pragma once

#include <QDate>
#include <QString>
#include <QStringList>
#include <QVariant>

namespace vinora {

class PageOutput;

// The pieces every exported page shares: the head, the banner with today's date, the cells
// and the foot. Values from the databases pass through htmlEscaped() before they go into a
// cell; the markup around them is the page's own.

// "&", "<", ">" and the double quotation mark as character references.
QString htmlEscaped(const QString& value);
// A stored value as a cell shows it, escaped; Null is empty.
QString htmlValue(const QVariant& value);
// A stored date as "dd.MM.yyyy"; Null is empty.
QString htmlDate(const QVariant& value);

// The opening of every table of rows.
extern const QString kRowsTable;

// From "<html>" to the end of the banner: the title line, then the banner whose left cell is
// `leftCell` (one or more lines), and today's date on the right.
void writePageTop(PageOutput& out, const QString& titleLine, const QStringList& leftCell, const QDate& today);

// "<td bgcolor="#ffffff"><font size="2pt" face="Tahoma">" value "</font></td>".
QString leftCell(const QString& html);
// The same, centred.
QString centreCell(const QString& html);
// A grey heading cell: "<td bgcolor="#e9e9e9" align="center"><font ...><b>" name "</b></font></td>".
QString headerCell(const QString& name);

// The short credit line of the program at the foot of every page.
QString creditLine();
// "<td width="50%" align="right" valign="middle"><font size="1pt" face="Tahoma">" credit "</font>".
QString creditCell();

// The foot table with a count on the left: "<table ... width="100%"" (without its closing
// bracket), the count line `countLine` ... "</b></font>", the credit cell, and the end of the page.
void writeCountFoot(PageOutput& out, const QString& countLine, qint64 count);
// The foot table with the credit alone, across the whole width, and the end of the page.
void writeCreditFoot(PageOutput& out);

} // namespace vinora
