#pragma once

#include "contents/FileFilter.h"

#include <QList>
#include <QString>
#include <functional>
#include <optional>

namespace vinora {

class VolumeReader;

// The choices of the scan, as the options dialog names them.
struct ScanOptions
{
    bool filesInCore = true;           // chFilesInCore: the files of the root
    bool scanDir = true;               // chScanDir: folders and their files
    bool scanDirOnly = false;          // chScanDirOnly: folder names only
    bool lowerCase = false;            // chLCase
    bool hidden = false;               // chHiddenFiles
    bool mp3 = false;                  // chFiles: artist and title of MP3 files as comments
    std::optional<FilterTable> filter; // chFilter with optFilter
};

// One row of a file list: a folder (name = path) or a file in its folder.
struct FileRow
{
    QString name;
    QString path; // "\" for the root, "\DIR\SUB\" below it
    QString size; // kilobytes as the regional settings write numbers; "0" for a folder
    QString comment;
};

// "1 000,0" for 1,024,000 bytes, "0,1" for 100: kilobytes rounded to one decimal (half to
// even), grouped from 1000 on.
QString sizeText(qint64 bytes);

// Walks a data disc and hands over its rows folder by folder, a folder's subfolders before
// its own rows (from the last subfolder to the first), by the rules of the catalogue's scan.
class FileListScanner
{
public:
    FileListScanner(VolumeReader& volume, ScanOptions options, QStringList filterEntries);

    std::function<void(const QString& folder)> onFolder;                   // the folder at hand
    std::function<void(const QString& file, int index, int count)> onFile; // the file at hand
    std::function<void(const QList<FileRow>& rows)> onRows;                // one folder's rows
    std::function<void()> onReadError;                                     // a folder that cannot be read
    std::function<bool()> cancelled;                                       // the window was closed

    // False when the walk was broken off.
    bool run();

private:
    bool walk(const QString& folder, int depth);

    VolumeReader& m_volume;
    ScanOptions m_options;
    QStringList m_filter;
};

} // namespace vinora
