#include "SearchCollection.h"

#include "CollectionNames.h"
#include "contents/FileListScan.h"
#include "contents/FileListStore.h"
#include "store/ContentsLists.h"
#include "store/Db.h"

#include <QFile>
#include <QStringList>
#include <QTextStream>

namespace vinora::bench {

void generateSearchCollection(const AppContext& ctx, const CollectionShape& shape, const QString& dump)
{
    Random random(20261123);
    NameMaker names(random);
    QFile dumpFile(dump);
    if (!dumpFile.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        throw AppError(err::PathFileAccess, QStringLiteral("Cannot write ") + dump);
    }
    QTextStream dumpText(&dumpFile);
    dumpText.setEncoding(QStringConverter::Utf8);

    const Db main(ctx.MainDBPath);
    const Db files(ctx.FilesDBPath);
    const ContentsLists lists(files, ContentsKind::Files);
    {
        Transaction transaction(main);
        Statement disc(main,
                       QStringLiteral("INSERT INTO Компьютер (Номер, Название, КодОписания, Дисков, ДискID1) "
                                      "VALUES (?, ?, 1, 1, ?)"));
        for (int n = 1; n <= shape.discs; ++n) {
            disc.run({n, names.title(3), QStringLiteral("%1-BENCH").arg(n, 4, 16, QChar(u'0')).toUpper()});
        }
        transaction.commit();
    }
    for (int n = 1; n <= shape.discs; ++n) {
        const QString id = QStringLiteral("%1-BENCH").arg(n, 4, 16, QChar(u'0')).toUpper();
        lists.create(id);
        FileListWriter writer(files, id);
        const QList<FileRow> rows = names.fileTree(shape.rowsPerDisc);
        writer.write(rows);
        writer.commit();
        for (const FileRow& row : rows) {
            if (row.name != row.path) {
                dumpText << row.name << u'\n';
            }
        }
    }
}

} // namespace vinora::bench
