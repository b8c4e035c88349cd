#pragma once

#include <QString>

namespace vinora::test {

// Makes a folder refuse new files, or a file refuse writes, for as long as the guard lives, also
// for root (where the permission bits alone do not stop writes, the immutable flag is set).
class ReadOnlyFolder
{
public:
    explicit ReadOnlyFolder(QString path);
    ~ReadOnlyFolder();
    ReadOnlyFolder(const ReadOnlyFolder&) = delete;
    ReadOnlyFolder& operator=(const ReadOnlyFolder&) = delete;

    // False when this machine could not make it read-only (the test should skip).
    bool active() const { return m_active; }

private:
    QString m_path;
    bool m_immutable = false;
    bool m_active = false;
};

// Writes bytes to a file, creating its folder.
void writeFile(const QString& path, const QByteArray& bytes);
QByteArray readFile(const QString& path);
// The file's inode: it changes when a file is replaced, not when it is written in place.
quint64 inodeOf(const QString& path);

} // namespace vinora::test
