#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <optional>

class QLocale;

namespace vinora {

// A node of the folder tree of a file list.
struct FileTreeNode
{
    QString text;
    int parent = -1; // -1: a top-level node
    int image = 1;   // 1 a folder, 2 the root ("...")
};

// The folder tree of a list from its sorted distinct paths ("\", "\A\", "\A\X\" ...), built
// the way the catalogue has always built it: each path is compared with the one before it,
// position by position, so the root "..." stands beside the first-level folders and a
// folder whose name stands at the same place as the one before it is taken for that one.
// Nothing when a path is deeper than 40 folders.
std::optional<QList<FileTreeNode>> BuildTree(const QStringList& sortedPaths);

// The node's full path (texts from the top joined by backslashes) as the list's key:
// "..." is the root "\", anything else "\path\".
QString folderKey(const QList<FileTreeNode>& nodes, int node);

// The picture of a file in the list, by its name: 2 programs, 3 zip, 4 bmp, 5 inf/ini,
// 6 video, 7 sound, 8 rar, 9 text, 10 gif, 11 jpeg, 12 html, 1 anything else.
int fileImage(const QString& name);

// "~N Мб" for a sum of kilobytes by cutting digits, never rounding; "~0 Мб" for no rows.
QString listVolumeText(const QStringList& sizes);
// A stored size in kilobytes, read as the locale reads it ("4 096,0" is 4096).
double storedKilobytes(const QString& size, const QLocale& locale);

} // namespace vinora
