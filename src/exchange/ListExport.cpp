#include "exchange/ListExport.h"

#include "exchange/HtmlPieces.h"
#include "exchange/PageOutput.h"
#include "frame/AppContext.h"
#include "store/Category.h"
#include "store/Db.h"
#include "store/Schema.h"

#include <QDir>
#include <functional>
#include <optional>

namespace vinora {
namespace {

struct ListColumn
{
    QString item;
    QString field;
    bool spaceWhenEmpty; // "&nbsp;" for an empty value
};

struct ListExportKind
{
    ContentsKind contents;
    Category category;
    ListExportTexts texts;
    QString banner;
    QString nameField;
    QString nameHeader;
    QString countLine;
    QString totalLine;
    QString pagePrefix;
    bool album;                // the album beside the title in a disc's heading
    QList<ListColumn> columns; // positions 2.. of the check-list (1 is the numbering)
};

const ListExportKind& listKind(ContentsKind kind)
{
    static const ListExportKind files{ContentsKind::Files,
                                      Category::Computer,
                                      {QStringLiteral("Экспортирование списка файлов"),
                                       QStringLiteral("Выберите каталог для экспортирования списка файлов:"),
                                       QStringLiteral("Список файлов успешно экспортирован в файл:"),
                                       QStringLiteral("ExportFiles"), QStringLiteral("ExportFilesOther")},
                                      QStringLiteral("Список файлов Компьютерных дисков"),
                                      QStringLiteral("Имя"),
                                      QStringLiteral("Файл"),
                                      QStringLiteral("Файлов в списке"),
                                      QStringLiteral("Экспортировано файлов"),
                                      QStringLiteral("files_cd_"),
                                      false,
                                      {{QStringLiteral("Путь"), QStringLiteral("Путь"), false},
                                       {QStringLiteral("Комментарий"), QStringLiteral("Комментарий"), true}}};
    static const ListExportKind tracks{
        ContentsKind::Tracks,
        Category::Audio,
        {QStringLiteral("Экспортирование списка треков"),
         QStringLiteral("Выберите каталог для экспортирования списка треков:"),
         QStringLiteral("Список треков успешно экспортирован в файл:"), QStringLiteral("ExportTracks"),
         QStringLiteral("ExportTracksOther")},
        QStringLiteral("Список треков Аудио дисков"),
        QStringLiteral("Название"),
        QStringLiteral("Треки"),
        QStringLiteral("Треков в списке"),
        QStringLiteral("Экспортировано треков"),
        QStringLiteral("tracks_cd_"),
        true,
        {{QStringLiteral("Комментарий"), QStringLiteral("Комментарий"), true}}};
    return kind == ContentsKind::Files ? files : tracks;
}

constexpr int kListedDiscs = 4;

QList<int> listedNumbers(const Db& db, Category category)
{
    const CategoryInfo& info = categoryInfo(category);
    QList<int> numbers;
    QSqlQuery rows =
        db.query(QStringLiteral("SELECT \"Номер\" FROM ") + quoted(info.table) +
                 QStringLiteral(" WHERE \"ДискID1\" IS NOT NULL OR \"ДискID2\" IS NOT NULL"
                                " OR \"ДискID3\" IS NOT NULL OR \"ДискID4\" IS NOT NULL ORDER BY ") +
                 quoted(info.keyField));
    while (rows.next()) {
        numbers.append(rows.value(0).toInt());
    }
    return numbers;
}

// A disc of the catalogue with the lists of its set.
struct ListedDisc
{
    int number = 0;
    QString title;
    QString album;
    QList<QVariant> ids; // ДискID1..4; Null for none
};

std::optional<ListedDisc> findDisc(const Db& db, const ListExportKind& kind, int number)
{
    const CategoryInfo& info = categoryInfo(kind.category);
    QSqlQuery row =
        db.query(QStringLiteral("SELECT \"Название\", ") +
                     (kind.album ? QStringLiteral("\"Альбом\"") : QStringLiteral("''")) +
                     QStringLiteral(", \"ДискID1\", \"ДискID2\", \"ДискID3\", \"ДискID4\" FROM ") +
                     quoted(info.table) + QStringLiteral(" WHERE \"Номер\" = ? ORDER BY ") +
                     quoted(info.keyField) + QStringLiteral(" LIMIT 1"),
                 {number});
    if (!row.next()) {
        return std::nullopt; // gone since the list of discs was made
    }
    ListedDisc disc{number, row.value(0).toString(), row.value(1).toString(), {}};
    for (int k = 0; k < kListedDiscs; ++k) {
        disc.ids.append(row.value(2 + k));
    }
    return disc;
}

// Writes one disc of a set: its heading, its table and its count; gives the rows.
int writeDisc(PageOutput& out, const Db& contents, const ListExportKind& kind,
              const ListExportOptions& options, const ListedDisc& disc, int slot)
{
    const QString id = disc.ids[slot - 1].toString();
    if (!ContentsLists(contents, kind.contents).exists(id)) {
        throw AppError(err::NoSuchTable, QStringLiteral("Список \"") + id + QStringLiteral("\" диска № ") +
                                             QString::number(disc.number) +
                                             QStringLiteral(" не найден в базе данных \"") +
                                             QDir::toNativeSeparators(contents.path()) + u'"');
    }
    const auto checked = [&](int position) { return options.fields.contains(position); };

    out.line(QStringLiteral("<p align=\"center\"><font size=\"2pt\" face=\"Tahoma\"><b>"));
    out.line(QStringLiteral("Диск № ") + QString::number(disc.number) +
             (slot != 1 ? QStringLiteral(" (") + QString::number(slot) + u')' : QString()));
    out.line(QStringLiteral("</b></font><br>"));
    out.line(QStringLiteral("[ ") + htmlEscaped(disc.title) +
             (kind.album ? QStringLiteral(" - ") + htmlEscaped(disc.album) : QString()) +
             QStringLiteral(" ]</p>"));

    out.line(kRowsTable);
    out.line(QStringLiteral("<tr>"));
    const auto heading = [](const QString& name) -> QString {
        return QStringLiteral("<td bgcolor=\"#e9e9e9\"><font size=\"2pt\" face=\"Tahoma\"><b>") + name +
               QStringLiteral("</b></font></td>");
    };
    if (checked(1)) {
        out.line(QStringLiteral("<td width=40 bgcolor=\"#e9e9e9\" align=\"center\"><font size=\"2pt\" "
                                "face=\"Tahoma\"><b>№</b></font></td>"));
    }
    out.line(heading(kind.nameHeader));
    QStringList fields{quoted(kind.nameField)};
    QList<const ListColumn*> shown;
    for (int position = 2; position <= kind.columns.size() + 1; ++position) {
        if (checked(position)) {
            const ListColumn& column = kind.columns[position - 2];
            out.line(heading(column.item));
            fields.append(quoted(column.field));
            shown.append(&column);
        }
    }
    out.line(QStringLiteral("</tr>"));

    const QString rowsTable = quoted(contentsDescriptor(kind.contents).rowsTable);
    QSqlQuery rows = contents.query(
        QStringLiteral("SELECT ") + fields.join(QStringLiteral(", ")) + QStringLiteral(" FROM ") + rowsTable +
            QStringLiteral(" WHERE \"ДискID\" = ? ORDER BY ") +
            (options.sorted ? quoted(kind.nameField) + QStringLiteral(", rowid") : QStringLiteral("rowid")),
        {id});
    int count = 0;
    while (rows.next()) {
        ++count;
        out.line(QStringLiteral("<tr>"));
        if (checked(1)) {
            out.line(centreCell(QString::number(count)));
        }
        const QString name = htmlValue(rows.value(0));
        if (name.startsWith(u'\\')) { // a folder
            out.line(QStringLiteral("<td bgcolor=\"#f4f4f4\"><font size=\"2pt\" face=\"Tahoma\">Путь: <b>") +
                     name + QStringLiteral("</b></font></td>"));
        } else {
            out.line(leftCell(name));
        }
        for (int i = 0; i < shown.size(); ++i) {
            const QString value = htmlValue(rows.value(i + 1));
            out.line(
                leftCell(value.isEmpty() && shown[i]->spaceWhenEmpty ? QStringLiteral("&nbsp;") : value));
        }
        out.line(QStringLiteral("</tr>"));
    }
    out.line(QStringLiteral("</table>"));
    out.line(QStringLiteral("<p><font size=\"2pt\" face=\"Tahoma\">") + kind.countLine +
             QStringLiteral(": <b>") + QString::number(count) + QStringLiteral("</b></font></p>"));
    return count;
}

void writeListTop(PageOutput& out, const AppContext& ctx, const ListExportKind& kind)
{
    // Both kinds of list carry the title of the file lists; pages have always been written so.
    writePageTop(
        out, QStringLiteral("<title>vinora - [Список файлов]</title>"),
        {QStringLiteral("<td width=\"30%\" valign=\"middle\"><font size=\"2pt\" face=\"Tahoma\"><b>") +
         kind.banner + QStringLiteral("</b></font>")},
        ctx.clock().today());
}

// Runs `each` for every chosen disc of every set that has a list there, in order.
void forEachDisc(const Db& main, const ListExportKind& kind, const ListExportOptions& options,
                 const std::function<void(const ListedDisc&, int)>& each)
{
    for (const int number : options.numbers) {
        const std::optional<ListedDisc> disc = findDisc(main, kind, number);
        if (!disc) {
            continue;
        }
        for (int slot = 1; slot <= kListedDiscs; ++slot) {
            if (!disc->ids[slot - 1].isNull() && (options.onlyDisc == 0 || options.onlyDisc == slot)) {
                each(*disc, slot);
            }
        }
    }
}

QString contentsPath(const AppContext& ctx, ContentsKind kind)
{
    return kind == ContentsKind::Files ? ctx.FilesDBPath : ctx.TracksDBPath;
}

} // namespace

const ListExportTexts& listExportTexts(ContentsKind kind)
{
    return listKind(kind).texts;
}

QString noListedDiscText()
{
    return QStringLiteral("В каталоге Компьютерных дисков нет ни одного диска со списком файлов!");
}

QStringList listFieldItems(ContentsKind kind)
{
    QStringList items{QStringLiteral("Нумерация списка")};
    for (const ListColumn& column : listKind(kind).columns) {
        items.append(column.item);
    }
    return items;
}

QList<int> ViewNumberFiles(const Db& mainDb)
{
    return listedNumbers(mainDb, Category::Computer);
}

QList<int> ViewNumberTracks(const Db& mainDb)
{
    return listedNumbers(mainDb, Category::Audio);
}

int exportListPage(const AppContext& ctx, ContentsKind contentsKind, const ListExportOptions& options,
                   const QString& path)
{
    const ListExportKind& kind = listKind(contentsKind);
    PageOutput out(path);
    writeListTop(out, ctx, kind);
    const Db main(ctx.MainDBPath, Db::Access::ReadOnly);
    const Db contents(contentsPath(ctx, contentsKind), Db::Access::ReadOnly);
    qint64 total = 0;
    forEachDisc(main, kind, options, [&](const ListedDisc& disc, int slot) {
        total += writeDisc(out, contents, kind, options, disc, slot);
    });
    writeCountFoot(out, kind.totalLine, total);
    out.commit();
    return static_cast<int>(total);
}

QStringList exportListPages(const AppContext& ctx, ContentsKind contentsKind,
                            const ListExportOptions& options, const QString& folder)
{
    const ListExportKind& kind = listKind(contentsKind);
    const Db main(ctx.MainDBPath, Db::Access::ReadOnly);
    const Db contents(contentsPath(ctx, contentsKind), Db::Access::ReadOnly);
    QStringList written;
    forEachDisc(main, kind, options, [&](const ListedDisc& disc, int slot) {
        const QString path =
            folder + u'/' + kind.pagePrefix + QString::number(disc.number) + QStringLiteral(".htm");
        PageOutput out(path);
        writeListTop(out, ctx, kind);
        writeDisc(out, contents, kind, options, disc, slot);
        writeCreditFoot(out);
        out.commit();
        if (!written.contains(path)) {
            written.append(path);
        }
    });
    return written;
}

} // namespace vinora
