#include "catalogue/Numbering.h"

#include "frame/AppContext.h"
#include "frame/FaultLog.h"
#include "store/Db.h"
#include "store/Schema.h"

#include <QDir>
#include <QFile>
#include <filesystem>

namespace vinora {
namespace {

// Renumbering moves these covers, whichever catalogue is renumbered.
QString renumberedCover(const AppContext& ctx, int number)
{
    return QDir(ctx.appFile(QStringLiteral("box"))).filePath(QStringLiteral("dvd_%1.box").arg(number));
}

// Renames a cover, replacing a file of the new name; false, with the cover where it was,
// when that cannot be done.
bool moveFile(const QString& from, const QString& to)
{
    std::error_code error;
    std::filesystem::rename(std::filesystem::path(QFile::encodeName(from).toStdString()),
                            std::filesystem::path(QFile::encodeName(to).toStdString()), error);
    return !error;
}

// Renumbers the first row (in key order) of number `from`.
void setNumber(const Db& db, const CatalogueKind& kind, int from, int to)
{
    const QString table = quoted(kind.info().table);
    const QString key = quoted(kind.info().keyField);
    db.exec(QStringLiteral("UPDATE ") + table + QStringLiteral(" SET Номер = ? WHERE ") + key +
                QStringLiteral(" = (SELECT ") + key + QStringLiteral(" FROM ") + table +
                QStringLiteral(" WHERE Номер = ? ORDER BY ") + key + QStringLiteral(" LIMIT 1)"),
            {to, from});
}

} // namespace

int firstFreeNumber(const Db& db, const CatalogueKind& kind)
{
    QSqlQuery numbers = db.query(QStringLiteral("SELECT DISTINCT Номер FROM ") + quoted(kind.info().table) +
                                 QStringLiteral(" WHERE Номер >= 1 ORDER BY Номер"));
    int candidate = 1;
    while (numbers.next() && numbers.value(0).toInt() == candidate) {
        ++candidate;
    }
    return candidate;
}

std::optional<QString> discTitle(const Db& db, const CatalogueKind& kind, int number, bool albumAlways)
{
    const QString album = kind.hasAlbum ? QStringLiteral("Альбом") : QStringLiteral("NULL");
    QSqlQuery row = db.query(QStringLiteral("SELECT Название, ") + album + QStringLiteral(" FROM ") +
                                 quoted(kind.info().table) + QStringLiteral(" WHERE Номер = ? ORDER BY ") +
                                 quoted(kind.info().keyField) + QStringLiteral(" LIMIT 1"),
                             {number});
    if (!row.next()) {
        return std::nullopt;
    }
    QString title = row.value(0).toString();
    if (kind.hasAlbum && (albumAlways || !row.value(1).toString().isEmpty())) {
        title += QStringLiteral(" - ") + row.value(1).toString();
    }
    return title;
}

void MoveNumbers(AppContext& ctx, Category category, qint16& start)
{
    const int from = start;
    start = 0;
    const CatalogueKind& kind = catalogueKind(category);
    underFaultHandler(ctx, QStringLiteral("vinoraModule, MoveNumbers()"), [&] {
        Db db(ctx.MainDBPath);
        Transaction transaction(db);
        const int count = shiftNumbers(db, kind, from);
        transaction.commit();
        shiftCovers(ctx, from, count);
    });
}

int shiftNumbers(const Db& db, const CatalogueKind& kind, int start)
{
    // Through negative numbers, so that no two rows share a number on the way.
    db.exec(QStringLiteral("UPDATE ") + quoted(kind.info().table) +
                QStringLiteral(" SET Номер = -Номер - 1 WHERE Номер >= ?"),
            {start});
    db.exec(QStringLiteral("UPDATE ") + quoted(kind.info().table) +
            QStringLiteral(" SET Номер = -Номер WHERE Номер < 0"));
    return db.scalar(QStringLiteral("SELECT COUNT(*) FROM ") + quoted(kind.info().table)).toInt();
}

void shiftCovers(const AppContext& ctx, int start, int rowCount)
{
    // From the top down, so that no cover lands on its neighbour.
    for (int i = rowCount; i >= start && i >= 0; --i) {
        if (QFile::exists(renumberedCover(ctx, i))) {
            moveFile(renumberedCover(ctx, i), renumberedCover(ctx, i + 1));
        }
    }
}

void moveNumber(AppContext& ctx, const CatalogueKind& kind, int from, int to)
{
    Db db(ctx.MainDBPath);
    setNumber(db, kind, from, to);
    if (QFile::exists(renumberedCover(ctx, from))) {
        moveFile(renumberedCover(ctx, from), renumberedCover(ctx, to));
    }
}

void swapNumbers(AppContext& ctx, const CatalogueKind& kind, int a, int b)
{
    {
        Db db(ctx.MainDBPath);
        Transaction transaction(db);
        setNumber(db, kind, b, 0);
        setNumber(db, kind, a, b);
        setNumber(db, kind, 0, a);
        transaction.commit();
    }
    const QString coverA = renumberedCover(ctx, a);
    const QString coverB = renumberedCover(ctx, b);
    const QString temporary = renumberedCover(ctx, 0);
    const bool hasA = QFile::exists(coverA);
    const bool hasB = QFile::exists(coverB);
    if (hasA && hasB) {
        // A step that fails takes the steps before it back, so each picture keeps a name.
        if (!moveFile(coverA, temporary)) {
            return;
        }
        if (!moveFile(coverB, coverA)) {
            moveFile(temporary, coverA);
            return;
        }
        if (!moveFile(temporary, coverB)) {
            moveFile(coverA, coverB);
            moveFile(temporary, coverA);
        }
    } else if (hasA) {
        moveFile(coverA, coverB);
    } else if (hasB) {
        moveFile(coverB, coverA);
    }
}

} // namespace vinora
