#pragma once

#include "contents/DiscFileExtract.h"
#include "contents/FileTree.h"
#include "contents/ListChange.h"
#include "contents/StoredFileList.h"
#include "ui/TextColumnSort.h"
#include "ui/WaitCursor.h"

#include <QDialog>
#include <QFutureWatcher>
#include <atomic>
#include <memory>
#include <optional>

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QTemporaryDir;
class QTreeWidget;

namespace vinora {

class AppContext;

// "Файлы": the file list of one disc of a computer disc record, as a folder tree and a
// list of files with their comments; it creates, deletes and re-creates the list and opens
// a file of the disc in the drive. The ids of the set's lists come in ctx.DiscIDSlots.
// A file of a disc that is not mounted (a disc image) is copied out to a temporary folder
// first; the copies go with the window.
class frmFileList : public QDialog
{
    Q_OBJECT
public:
    frmFileList(AppContext& ctx, int number, const QString& name, int discs, QWidget* parent = nullptr);
    ~frmFileList() override;

    void cmbCountCD_Click();
    void selectFolder(int node);
    void selectFile(const QString& name);
    void cmdMakeChangeDir();
    void cmdMakeChangeFile();
    void cmdCreate();
    void deleteListAsk();
    void recreateListAsk();
    void lvFiles_DblClick();

    // For a window opened at a found place: the k-th disc of the set (1..6); the folder of
    // `path` ("\", "\A\B\") selected with its files; the file `name` of the folder on view
    // selected, set in bold and clicked. Each is brought into view; false when it is not there.
    void showDisc(int k);
    bool showFolder(const QString& path);
    bool showFile(const QString& name);

    QStringList treeTexts() const; // "parent/child" paths of the tree's nodes, in order
    QStringList fileNames() const;
    QString volumeText() const;

private:
    bool buildTree();
    void FillFileList(const QString& path);
    void DeleteList();
    DiscListSteps listSteps();
    void setCommentControls(bool dir, bool file);
    QString currentFolderKey() const;
    StoredFileList storedList() const;
    void openSelectedFile();
    void openCopyOf(const QString& drive, const QString& file, bool openFile);
    void copied();

    AppContext& m_ctx;
    int m_number;
    QList<FileTreeNode> m_nodes;
    StoredFileList::Contents m_contents; // the list on view, read when its tree is built
    QComboBox* m_cmbCountCD;
    QTreeWidget* m_trView;
    QTreeWidget* m_lvFiles;
    QLineEdit* m_txtCommentDir;
    QLineEdit* m_txtCommentFile;
    QPushButton* m_cmdMakeChangeDir;
    QPushButton* m_cmdMakeChangeFile;
    QLabel* m_txtNoFiles;
    QLabel* m_lblCDSpace;
    QList<QPushButton*> m_buttons;          // imgButton0..3
    std::unique_ptr<TextColumnSort> m_sort; // the column click on the files

    std::unique_ptr<QTemporaryDir> m_copies; // files copied out of discs to be opened
    int m_copiesMade = 0;
    QFutureWatcher<ExtractedFile> m_copy;
    std::atomic<bool> m_stopCopy{false};
    QString m_copyName;
    bool m_openCopiedFile = false; // else its folder
    std::optional<WaitCursor> m_copyCursor;
};

} // namespace vinora
