#pragma once

#include "store/ContentsLists.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace vinora {

class AppContext;
class Db;

// The file lists of computer discs and the track lists of audio discs as pages: several discs
// on one page, or a page for each disc.

// The texts by which the two kinds of list differ on the screen.
struct ListExportTexts
{
    QString dialogTitle;  // of the save dialog
    QString folderPrompt; // of the folder chooser for a page per disc
    QString doneText;     // followed by the file
    QString pageRoutine;  // "ExportFiles" ...
    QString otherRoutine; // "ExportFilesOther" ...
};
const ListExportTexts& listExportTexts(ContentsKind kind);

// Told when no disc has a list, for both kinds.
QString noListedDiscText();

// The optional columns, as the check-list shows them (positions from 1).
QStringList listFieldItems(ContentsKind kind);

// The numbers of the discs with a list on one of their first four discs, in stored order
// (ДискID5 and ДискID6 are not looked at here).
QList<int> ViewNumberFiles(const Db& mainDb);
QList<int> ViewNumberTracks(const Db& mainDb);

struct ListExportOptions
{
    QList<int> numbers;  // the discs, in this order
    QList<int> fields;   // checked positions of the check-list
    bool sorted = false; // by name, else as stored
    int onlyDisc = 0;    // 1..4: only that disc of each set; 0: all four
};

// One page of all the discs; gives the number of rows written. A list that a disc names but
// the contents database lacks ends the export with AppError 3078; nothing is left behind.
int exportListPage(const AppContext& ctx, ContentsKind kind, const ListExportOptions& options,
                   const QString& path);
// A page for each disc of each set into `folder` ("files_cd_" or "tracks_cd_" and the
// number, ".htm"): a later disc of a set replaces the page of an earlier one. Gives the
// pages written, each once.
QStringList exportListPages(const AppContext& ctx, ContentsKind kind, const ListExportOptions& options,
                            const QString& folder);

inline int ExportFiles(const AppContext& ctx, const ListExportOptions& options, const QString& path)
{
    return exportListPage(ctx, ContentsKind::Files, options, path);
}
inline int ExportTracks(const AppContext& ctx, const ListExportOptions& options, const QString& path)
{
    return exportListPage(ctx, ContentsKind::Tracks, options, path);
}
inline QStringList ExportFilesOther(const AppContext& ctx, const ListExportOptions& options,
                                    const QString& folder)
{
    return exportListPages(ctx, ContentsKind::Files, options, folder);
}
inline QStringList ExportTracksOther(const AppContext& ctx, const ListExportOptions& options,
                                     const QString& folder)
{
    return exportListPages(ctx, ContentsKind::Tracks, options, folder);
}

} // namespace vinora
