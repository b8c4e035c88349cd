#pragma once

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

namespace vinora {

// One disc's file list as stored in the files database: what the file browser reads and the
// comments it edits. Folders are keyed by their path ("\" is the root, "\A\B\" below it);
// a folder's own row carries the path as its name.
class StoredFileList
{
public:
    struct File
    {
        QString name;
        QString size; // in kilobytes, as stored
    };

    // The whole list as the browser shows it, read in one pass: a disc of 100,000 files
    // is one query, and moving between its folders costs none.
    struct Contents
    {
        QStringList folders;                      // distinct folder keys, in the catalogue's order
        QStringList sizes;                        // of every row, for the volume shown under the list
        QHash<QString, QList<File>> filesByFolder; // each folder's files, as stored

        QList<File> files(const QString& folder) const; // the folder's files by name
    };

    StoredFileList(QString filesDbPath, QString id);

    bool exists() const;
    Contents read() const;
    QString folderComment(const QString& folder) const;
    QString fileComment(const QString& folder, const QString& name) const;

    // Stores a folder's (name = folder) or a file's comment, cut to 50 characters, empty as
    // none; false when the row is gone.
    bool setComment(const QString& folder, const QString& name, const QString& comment) const;

private:
    QString m_path;
    QString m_id;
};

} // namespace vinora
