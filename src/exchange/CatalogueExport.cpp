#include "exchange/CatalogueExport.h"

#include "catalogue/CatalogueKind.h"
#include "catalogue/SoundFormats.h"
#include "exchange/HtmlPieces.h"
#include "exchange/PageOutput.h"
#include "frame/AppContext.h"
#include "store/Db.h"
#include "store/Schema.h"

#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QSet>
#include <QSqlRecord>
#include <optional>

namespace vinora {
namespace {

enum class Cell {
    TextOrSpace,  // left cell, "&nbsp;" when empty
    Centre,       // centre cell
    Date,         // centre cell, dd.MM.yyyy
    Times,        // centre cell, the playing times of a set
    Records,      // centre cell, the track counts of a set
    Minutes,      // centre cell, minutes of a DVD
    SoundFormats, // centre cell, the names of the sound tracks
    Cover,        // the cover picture
    TitleNote,    // no cell: a note under the title
};

struct Column
{
    QString item;   // in the check-list
    QString header; // the column's heading (empty for the title note)
    Cell cell;
    QString field;
};

// The markup of the note under a title.
struct TitleNote
{
    QString open;
    QString close;
};

struct CatalogueExportKind
{
    QList<Column> columns; // in the order of the check-list
    std::optional<TitleNote> note;
    int coverWidth;
};

Column column(const char* item, Cell cell, const char* field)
{
    const QString text = QString::fromUtf8(item);
    return {text, cell == Cell::TitleNote ? QString() : text, cell, QString::fromUtf8(field)};
}

const CatalogueExportKind& exportKind(Category category)
{
    static const CatalogueExportKind audio{
        {column("Альбом", Cell::TextOrSpace, "Альбом"), column("Стиль", Cell::TextOrSpace, "Стиль"),
         column("Год", Cell::Centre, "Год"), column("Дисков", Cell::Centre, "Дисков"),
         column("Время", Cell::Times, "Время"), column("Записей", Cell::Records, "Записей"),
         column("Внесен", Cell::Date, "ДатаЗаписи"), column("Изменен", Cell::Date, "ДатаИзменения"),
         column("Обложка", Cell::Cover, "")},
        std::nullopt,
        100};
    static const CatalogueExportKind computer{
        {column("Описание", Cell::TextOrSpace, "Описание"),
         column("Расширенное описание", Cell::TitleNote, "РасОписание"), column("Год", Cell::Centre, "Год"),
         column("Дисков", Cell::Centre, "Дисков"), column("Внесен", Cell::Date, "ДатаЗаписи"),
         column("Изменен", Cell::Date, "ДатаИзменения"), column("Обложка", Cell::Cover, "")},
        TitleNote{QStringLiteral("<br><font size=\"1pt\" face=\"Tahoma\"><i>"),
                  QStringLiteral("</i></font></td>")},
        100};
    static const CatalogueExportKind dvd{
        {column("Жанр", Cell::TextOrSpace, "Жанр"), column("Год", Cell::Centre, "Год"),
         column("Дисков", Cell::Centre, "Дисков"), column("Время", Cell::Minutes, "Время"),
         column("Зона", Cell::Centre, "Зона"), column("Формат звука", Cell::SoundFormats, "ФорматЗвука"),
         column("Описание", Cell::TitleNote, "Описание"), column("Внесен", Cell::Date, "ДатаЗаписи"),
         column("Изменен", Cell::Date, "ДатаИзменения"), column("Обложка", Cell::Cover, "")},
        // The closing text opens a second italic; pages have always been written so.
        TitleNote{QStringLiteral("<br><i><font size=\"1pt\" face=\"Tahoma\">"),
                  QStringLiteral("<i></font></td>")},
        70};
    return category == Category::Audio ? audio : category == Category::Computer ? computer : dvd;
}

// A column of the result with its place, found once for all rows.
struct Bound
{
    const Column* column;
    int index = -1;
    QList<int> perDisc; // Время1.. or Записей1..4
};

// The times or track counts of a set: disc 1, then disc n when the set has exactly n discs,
// for n = 2, 3, 4 (`perDisc` holds the columns of discs 1 to 4). A set of three shows discs
// 1 and 3, a set above four disc 1 only; pages have always been written so.
QString setText(const QSqlQuery& row, int discs, const QList<int>& perDisc)
{
    QString text = htmlValue(row.value(perDisc[0]));
    for (int n = 2; n <= 4; ++n) {
        if (discs == n) {
            text += QStringLiteral("<br>") + htmlValue(row.value(perDisc[n - 1])) + QStringLiteral(" (") +
                    QString::number(n) + u')';
        }
    }
    return text;
}

QString soundFormatText(const QHash<QString, QString>& names, const QString& stored)
{
    QStringList found;
    for (const QString& code : soundFormatCodes(stored)) {
        if (const auto name = names.constFind(code); name != names.constEnd()) {
            found.append(*name);
        }
    }
    return htmlEscaped(found.join(QStringLiteral(", ")));
}

} // namespace

QStringList catalogueFieldItems(Category category)
{
    QStringList items;
    for (const Column& column : exportKind(category).columns) {
        items.append(column.item);
    }
    return items;
}

int coverFieldPosition(Category category)
{
    return static_cast<int>(exportKind(category).columns.size()); // always the last
}

QStringList FullQueryCombo(const Db& db, Category category)
{
    const CatalogueKind& kind = catalogueKind(category);
    const QString name = quoted(kind.dictionaryTable);
    return QStringList{kAllValues} +
           db.texts(QStringLiteral("SELECT ") + name + QStringLiteral(" FROM ") + name +
                    QStringLiteral(" WHERE ") + name + QStringLiteral(" IS NOT NULL AND ") + name +
                    QStringLiteral(" <> '' ORDER BY ") + quoted(kind.dictionaryKey));
}

QString pictureFolderFor(const QString& page)
{
    return page.left(page.size() - 4) + QStringLiteral(".files");
}

QString catalogueDoneText(const QString& path)
{
    return QStringLiteral("База данных успешно экспортирована в файл:\n") + path;
}

int ExportCatalog(const AppContext& ctx, const CatalogueExportOptions& options, const QString& path)
{
    const CatalogueKind& kind = catalogueKind(options.category);
    const CategoryInfo& info = kind.info();
    const CatalogueExportKind& page = exportKind(options.category);
    const auto checked = [&](int position) { return options.fields.contains(position); };

    PageOutput out(path);
    writePageTop(
        out, QStringLiteral("<title>vinora - [") + kind.title + QStringLiteral("]</title>"),
        {QStringLiteral("<td width=\"30%\" valign=\"middle\"><font size=\"2pt\" face=\"Tahoma\"><b>"),
         kind.title, QStringLiteral("</b></font>")},
        ctx.clock().today());
    out.line(QStringLiteral("<br>"));
    out.line(kRowsTable);
    out.line(QStringLiteral("<tr>") + headerCell(QStringLiteral("№")));

    const Db db(ctx.MainDBPath, Db::Access::ReadOnly);
    out.line(headerCell(kind.nameCaption));
    for (int position = 1; position <= page.columns.size(); ++position) {
        if (checked(position) && !page.columns[position - 1].header.isEmpty()) {
            out.line(headerCell(page.columns[position - 1].header));
        }
    }
    out.line(QStringLiteral("</tr>"));

    QHash<QString, QString> soundFormats;
    for (const SoundFormat& format : soundFormatDictionary(db)) {
        soundFormats.insert(format.code, format.name);
    }

    // A disc whose dictionary row is gone drops out: the join is an inner one.
    const QString table = quoted(info.table);
    const QString dictionary = quoted(kind.dictionaryTable);
    const QString dictionaryKey = quoted(kind.dictionaryKey);
    QString sql = QStringLiteral("SELECT t.*, d.") + dictionary + QStringLiteral(" FROM ") + table +
                  QStringLiteral(" t JOIN ") + dictionary + QStringLiteral(" d ON t.") + dictionaryKey +
                  QStringLiteral(" = d.") + dictionaryKey;
    QVariantList values;
    if (options.only != kAllValues) {
        sql += QStringLiteral(" WHERE d.") + dictionary + QStringLiteral(" = ?");
        values.append(options.only);
    }
    sql += QStringLiteral(" ORDER BY t.") +
           (options.sorted ? QStringLiteral("\"Название\"") : QStringLiteral("\"Номер\"")) +
           QStringLiteral(", t.") + quoted(info.keyField);
    QSqlQuery rows = db.query(sql, values);

    QString linkName;
    if (checked(coverFieldPosition(options.category)) && path.size() >= 4) {
        const QString folder = pictureFolderFor(path);
        out.usePictureFolder(folder);
        linkName = htmlEscaped(QFileInfo(folder).fileName());
    }

    const QSqlRecord record = rows.record();
    const auto indexOf = [&](const QString& field) { return record.indexOf(field); };
    const int numberIndex = indexOf(QStringLiteral("Номер"));
    const int titleIndex = indexOf(QStringLiteral("Название"));
    const int discsIndex = indexOf(QStringLiteral("Дисков"));
    QList<Bound> cells;
    std::optional<Bound> note;
    for (int position = 1; position <= page.columns.size(); ++position) {
        const Column& column = page.columns[position - 1];
        if (!checked(position)) {
            continue;
        }
        Bound bound{&column, column.field.isEmpty() ? -1 : indexOf(column.field), {}};
        if (column.cell == Cell::Times || column.cell == Cell::Records) {
            for (int k = 1; k <= 4; ++k) {
                // The counts never look at Записей3: a set of three shows disc 2's.
                const int disc = column.cell == Cell::Records && k == 3 ? 2 : k;
                bound.perDisc.append(indexOf(column.field + QString::number(disc)));
            }
        }
        if (column.cell == Cell::TitleNote) {
            note = bound;
        } else {
            cells.append(bound);
        }
    }
    // The covers there are, read once rather than looked for row by row.
    const QDir boxFolder(ctx.appFile(QStringLiteral("box")));
    QSet<QString> covers;
    if (!linkName.isEmpty()) {
        for (const QString& name :
             boxFolder.entryList({info.coverPrefix + QStringLiteral("*.box")}, QDir::Files)) {
            covers.insert(name);
        }
    }
    const QString coverSize = QStringLiteral(".box\" width=\"") + QString::number(page.coverWidth) +
                              QStringLiteral("\" height=\"100\" border=\"0\"></td>");

    int count = 0;
    while (rows.next()) {
        ++count;
        const QString number = rows.value(numberIndex).toString();
        out.line(QStringLiteral("<tr>") + centreCell(number));
        const QString title = htmlValue(rows.value(titleIndex));
        if (!page.note) {
            out.line(leftCell(title));
        } else {
            out.line(QStringLiteral("<td bgcolor=\"#ffffff\"><font size=\"2pt\" face=\"Tahoma\">") + title +
                     QStringLiteral("</font>"));
            if (note) {
                out.line(page.note->open);
                if (const QString text = htmlValue(rows.value(note->index)); !text.isEmpty()) {
                    out.line(u'(' + text + u')');
                }
                out.line(page.note->close);
            } else {
                out.line(QStringLiteral("</td>"));
            }
        }
        for (const Bound& bound : cells) {
            switch (bound.column->cell) {
            case Cell::TextOrSpace: {
                const QString text = htmlValue(rows.value(bound.index));
                out.line(leftCell(text.isEmpty() ? QStringLiteral("&nbsp;") : text));
                break;
            }
            case Cell::Centre:
                out.line(centreCell(htmlValue(rows.value(bound.index))));
                break;
            case Cell::Date:
                out.line(centreCell(htmlDate(rows.value(bound.index))));
                break;
            case Cell::Times:
            case Cell::Records:
                out.line(centreCell(setText(rows, rows.value(discsIndex).toInt(), bound.perDisc)));
                break;
            case Cell::Minutes:
                out.line(centreCell(htmlValue(rows.value(bound.index)) + QStringLiteral(" мин.")));
                break;
            case Cell::SoundFormats:
                out.line(centreCell(soundFormatText(soundFormats, rows.value(bound.index).toString())));
                break;
            case Cell::Cover: {
                const QString name = info.coverPrefix + number;
                if (const QString file = name + QStringLiteral(".box"); covers.contains(file)) {
                    out.copyPicture(boxFolder.filePath(file), file);
                    out.line(QStringLiteral("<td bgcolor=\"#ffffff\" align=\"center\"><img src=\"") +
                             linkName + u'\\' + name + coverSize);
                } else {
                    out.line(QStringLiteral("<td bgcolor=\"#ffffff\" align=\"center\">&nbsp;</td>"));
                }
                break;
            }
            case Cell::TitleNote:
                break;
            }
        }
        out.line(QStringLiteral("</tr>"));
    }

    out.line(QStringLiteral("</table>"));
    out.line(QStringLiteral("<br>"));
    writeCountFoot(out, QStringLiteral("Дисков в каталоге"), count);
    out.commit();
    return count;
}

} // namespace vinora
