#include "contents/StoredFileList.h"

#include "frame/TextRules.h"
#include "store/ContentsLists.h"
#include "store/Db.h"

#include <QCollator>
#include <algorithm>

namespace vinora {

StoredFileList::StoredFileList(QString filesDbPath, QString id)
    : m_path(std::move(filesDbPath)), m_id(std::move(id))
{
}

bool StoredFileList::exists() const
{
    const Db db(m_path, Db::Access::ReadOnly);
    return ContentsLists(db, ContentsKind::Files).exists(m_id);
}

StoredFileList::Contents StoredFileList::read() const
{
    const Db db(m_path, Db::Access::ReadOnly);
    RowReader rows(db, QStringLiteral("SELECT Путь, Имя, Размер FROM Файлы WHERE ДискID = ?"), {m_id});
    Contents contents;
    // A folder's rows follow one another: its path is decoded once for them all.
    QByteArray pathBytes;
    QString path;
    while (rows.next()) {
        if (rows.utf8(0) != QByteArrayView(pathBytes)) {
            pathBytes = rows.utf8(0).toByteArray();
            path = QString::fromUtf8(pathBytes);
        }
        const QString name = rows.text(1);
        contents.sizes.append(rows.text(2));
        auto folder = contents.filesByFolder.find(path);
        if (folder == contents.filesByFolder.end()) {
            folder = contents.filesByFolder.insert(path, {});
            contents.folders.append(path);
        }
        // A folder's own row (its path as its name) is no file of it.
        if (name != path) {
            folder->append({name, contents.sizes.constLast()});
        }
    }
    const QCollator collator = textCollator();
    std::sort(contents.folders.begin(), contents.folders.end(),
              [&collator](const QString& a, const QString& b) { return collator.compare(a, b) < 0; });
    return contents;
}

QList<StoredFileList::File> StoredFileList::Contents::files(const QString& folder) const
{
    QList<File> files = filesByFolder.value(folder);
    const QCollator collator = textCollator();
    std::stable_sort(files.begin(), files.end(), [&collator](const File& a, const File& b) {
        return collator.compare(a.name, b.name) < 0;
    });
    return files;
}

QString StoredFileList::folderComment(const QString& folder) const
{
    return fileComment(folder, folder);
}

QString StoredFileList::fileComment(const QString& folder, const QString& name) const
{
    const Db db(m_path, Db::Access::ReadOnly);
    return db
        .scalar(QStringLiteral("SELECT Комментарий FROM Файлы WHERE ДискID = ? AND Путь = ? AND Имя = ?"),
                {m_id, folder, name})
        .toString();
}

bool StoredFileList::setComment(const QString& folder, const QString& name, const QString& comment) const
{
    const Db db(m_path);
    const QVariant found =
        db.scalar(QStringLiteral("SELECT rowid FROM Файлы WHERE ДискID = ? AND Путь = ? AND Имя = ? LIMIT 1"),
                  {m_id, folder, name});
    if (!found.isValid()) {
        return false;
    }
    db.exec(QStringLiteral("UPDATE Файлы SET Комментарий = ? WHERE rowid = ?"),
            {comment.isEmpty() ? QVariant() : QVariant(comment.left(50)), found});
    return true;
}

} // namespace vinora
