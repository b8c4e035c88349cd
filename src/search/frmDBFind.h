#pragma once

#include "search/ContentsSearch.h"
#include "ui/TextColumnSort.h"

#include <QDialog>
#include <QFutureWatcher>
#include <atomic>
#include <exception>
#include <memory>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;
class QTreeWidget;
class QTreeWidgetItem;

namespace vinora {

class AppContext;
struct FoundDisc;

// "Поиск": files and folders of the computer discs or tracks of the audio discs, over the
// whole catalogue. The search runs off the window's thread and its hits come into the list
// batch by batch; the search button stops it meanwhile. A double click (or Enter) on a hit
// opens the file list or track list of its disc at the found place.
class frmDBFind : public QDialog
{
    Q_OBJECT
public:
    // `category` "AD" starts with the tracks, "PC" (or anything else) with files and folders.
    explicit frmDBFind(AppContext& ctx, const QString& category = QString(), QWidget* parent = nullptr);
    ~frmDBFind() override;

    void cmdSearch(); // imgButton1: starts a search, or stops the one running
    void cmdClear();  // imgButton2
    void lvFind_DblClick();

    // The request the controls make now.
    SearchRequest request() const;
    // A search whose hits come into the list is running.
    bool searching() const { return m_running && !m_abandoned; }
    // Batches the search on view has added to the list (tests look at it).
    int batchesShown() const { return m_batches; }

    void done(int result) override;

private:
    struct Outcome
    {
        SearchOutcome outcome;
        std::exception_ptr error;
    };

    void ReadyToFindFile();
    void addHits(quint64 generation, const QList<SearchHit>& hits);
    void searchFinished();
    void stopSearch();    // ends the search; what it found stays
    void abandonSearch(); // ends it and shows no more of it
    void showRunning();
    void modeChanged();
    void clearResults();
    void showCurrentNumber();
    // The list of the k-th disc of `found` at the place of `hit`.
    void openFileList(const FoundDisc& found, int disc, const QTreeWidgetItem& hit);
    void openTrackList(const FoundDisc& found, int disc, const QTreeWidgetItem& hit);

    AppContext& m_ctx;
    QLineEdit* m_txtSearchText;
    QComboBox* m_cmbList;
    QRadioButton* m_optSearchMethod[2];
    QCheckBox* m_chWholeWord;
    QCheckBox* m_chCommentOnly;
    QTreeWidget* m_lvFind;
    std::unique_ptr<TextColumnSort> m_sort;
    QLabel* m_lblResult;
    QLineEdit* m_txtNoFile;
    QList<QPushButton*> m_buttons; // imgButton0..2

    SearchRequest m_shown; // the request whose hits stand in the list
    QFutureWatcher<Outcome> m_search;
    std::atomic_bool m_stop{false};
    quint64 m_generation = 0; // of the search whose batches the list takes
    bool m_running = false;   // a search runs (or is ending)
    bool m_abandoned = false; // ... and its hits are no longer wanted
    int m_found = 0;
    int m_batches = 0;
};

} // namespace vinora
