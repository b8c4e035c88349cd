#pragma once

#include <QString>

namespace vinora {

// An exported page on its way to the disc. Its lines go, in code page 1251, to a file beside
// the target, and its cover pictures to a folder beside the picture folder; commit() puts
// both in place. An output dropped before its commit (an error half-way) leaves nothing
// behind, and an old page and picture folder stay as they were.
//
// Errors come out as AppError: 75 a folder that refuses new files, 53 a file that cannot be
// read or a folder standing in the page's place, 52 a device that fails or a name it refuses,
// 61 a full disk, 76 a folder that is not there, 57 anything else.
class PageOutput
{
public:
    explicit PageOutput(QString target);
    ~PageOutput();
    PageOutput(const PageOutput&) = delete;
    PageOutput& operator=(const PageOutput&) = delete;

    // One line of the page.
    void line(const QString& text);

    // Gives the page a picture folder; whatever the old folder held is replaced at the commit.
    void usePictureFolder(const QString& folder);
    // Copies `source` into the picture folder under `name`.
    void copyPicture(const QString& source, const QString& name);

    void commit();

    // For tests: the `nth` write of page or picture data from now on (1 = the next) fails
    // with `error`; 0 turns it off.
    static void failWriteForTests(int nth, int error);

private:
    void flush();
    void installPictureFolder();
    void discard();

    QString m_target;
    QString m_partial;
    int m_fd = -1;
    QString m_buffer;
    QString m_folder;  // empty without pictures
    QString m_staging; // where the pictures gather until the commit
    bool m_committed = false;
};

} // namespace vinora
