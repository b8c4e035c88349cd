#include "contents/StoredFileList.h"

#include "store/ContentsLists.h"
#include "store/Db.h"

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

QStringList StoredFileList::folders() const
{
    const Db db(m_path, Db::Access::ReadOnly);
    return db.texts(QStringLiteral("SELECT DISTINCT Путь FROM Файлы WHERE ДискID = ? ORDER BY Путь"), {m_id});
}

QStringList StoredFileList::sizes() const
{
    const Db db(m_path, Db::Access::ReadOnly);
    return db.texts(QStringLiteral("SELECT Размер FROM Файлы WHERE ДискID = ?"), {m_id});
}

QList<StoredFileList::File> StoredFileList::files(const QString& folder) const
{
    const Db db(m_path, Db::Access::ReadOnly);
    QSqlQuery rows = db.query(
        QStringLiteral(
            "SELECT Имя, Размер FROM Файлы WHERE ДискID = ? AND Путь = ? AND Имя <> Путь ORDER BY Имя"),
        {m_id, folder});
    QList<File> files;
    while (rows.next()) {
        files.append({rows.value(0).toString(), rows.value(1).toString()});
    }
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
