#include "frame/AppContext.h"

#include <QDir>
#include <QFileInfo>
#include <cstdio>
#include <cstdlib>
#include <unistd.h>

namespace vinora {
namespace {
const QString kOption = QStringLiteral("Option");
const QString kPathLocalDB = QStringLiteral("PathLocalDB");
} // namespace

AppContext::AppContext(QString appFolder, Prompter& prompter, const Clock& clock)
    : m_appFolder(std::move(appFolder)), m_prompter(prompter), m_clock(clock)
{
    IniFilePath = appFile(QStringLiteral("vinora.ini"));
    QueryIniFilePath = appFile(QStringLiteral("query.ini"));
    setDatabaseFolder(m_appFolder);
}

QString AppContext::appFile(const QString& name) const
{
    return QDir(m_appFolder).filePath(name);
}

void AppContext::setDatabaseFolder(const QString& folder)
{
    // Joined as text, like the old paths: a folder given with a final separator keeps it.
    const QString base = folder.endsWith(u'/') ? folder : folder + u'/';
    MainDBPath = base + QStringLiteral("vinora.db");
    FilesDBPath = base + QStringLiteral("vinora_files.db");
    TracksDBPath = base + QStringLiteral("vinora_tracks.db");
}

QString AppContext::mainDatabaseFolder() const
{
    return QFileInfo(MainDBPath).path();
}

void AppContext::resolveDatabasePaths()
{
    const QString folder = ini().read(kOption, kPathLocalDB, 255).trimmed();
    setDatabaseFolder(folder.isEmpty() ? m_appFolder : folder);
}

void AppContext::restoreDatabasePathToAppFolder()
{
    ini().write(kOption, kPathLocalDB, m_appFolder);
    setDatabaseFolder(m_appFolder);
}

void AppContext::endProcess(int exitCode) const
{
    if (m_ender) {
        m_ender(exitCode);
    }
    std::fflush(nullptr);
    ::_exit(exitCode);
}

} // namespace vinora
