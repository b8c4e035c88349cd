#pragma once

#include "frame/Clock.h"
#include "frame/IniFile.h"
#include "frame/Prompter.h"

#include <QString>
#include <array>
#include <functional>

namespace vinora {

// Thrown instead of ending the process where the ending is replaced (tests).
struct ProcessEnded
{
    int exitCode = 0;
};

// What the program shares between its screens and routines: the paths of its files, the
// values one screen hands to the next, and the services every routine may need. One
// instance lives from start to end and is passed by reference.
class AppContext
{
public:
    AppContext(QString appFolder, Prompter& prompter, const Clock& clock);

    // --- paths -------------------------------------------------------------------------
    const QString& appFolder() const { return m_appFolder; }
    QString appFile(const QString& name) const; // a file of the application folder

    QString HelpFilePath;
    QString IniFilePath;
    QString QueryIniFilePath;
    QString MainDBPath;
    QString FilesDBPath;
    QString TracksDBPath;

    // Points the three database paths at `folder` (as given, not normalised).
    void setDatabaseFolder(const QString& folder);
    // The folder of the main database.
    QString mainDatabaseFolder() const;
    // Reads PathLocalDB and sets the three database paths from it, or from the
    // application folder when it is empty.
    void resolveDatabasePaths();
    // Writes the application folder to PathLocalDB and points the paths there.
    void restoreDatabasePathToAppFolder();

    IniFile ini() const { return IniFile(IniFilePath); }
    IniFile queryIni() const { return IniFile(QueryIniFilePath); }
    IniFile skipIni() const { return IniFile(appFile(QStringLiteral("skipcd.ini"))); }

    // --- values handed from screen to screen --------------------------------------------
    bool ExternalDBOpen = false;
    bool CatalogueQueryMode = false;
    QString CatalogueQueryFilter;
    bool DialogDone = false;
    bool DueDateChange = false;
    qint16 LastSavedNumber = 0;
    qint16 ShiftStart = 0;
    QString AutoDetectTag;
    qint16 OldDiscCount = 0;
    QString PickedDisc;
    QString CurrentDiscID;
    QString LastDiscKind; // the kind word of the disc GetDiskID last read
    std::array<QString, 6> DiscIDSlots;
    bool CDDBUpdateRow = false;
    bool CDDBSaveToIni = false;
    qint16 CDDBDiscInSet = 0;
    bool OpenedFromSearch = false; // the search window is open: its list windows stand over it

    // --- services -----------------------------------------------------------------------
    Prompter& prompter() const { return m_prompter; }
    const Clock& clock() const { return m_clock; }

    // Ends the process at once: no window gets another event. Tests replace the ending.
    [[noreturn]] void endProcess(int exitCode) const;
    void setProcessEnder(std::function<void(int)> ender) { m_ender = std::move(ender); }

private:
    QString m_appFolder;
    Prompter& m_prompter;
    const Clock& m_clock;
    std::function<void(int)> m_ender;
};

} // namespace vinora
