#pragma once

#include "contents/DiscScan.h"

#include <QDialog>
#include <QFutureWatcher>
#include <atomic>
#include <optional>

class QLabel;
class QProgressBar;

namespace vinora {

class AppContext;

// "Создание списка файлов": runs the walk of a prepared scan off the GUI thread, shows the
// folder and file at hand, and stops the walk when it is closed. Rows stored so far stay.
class frmFileListCreate : public QDialog
{
    Q_OBJECT
public:
    frmFileListCreate(AppContext& ctx, ScanRequest request, QString id, QWidget* parent = nullptr);
    ~frmFileListCreate() override;

    int rowsStored() const { return m_rows; }

    // Closing the window stops the walk at the next folder; what is stored stays.
    void reject() override;

protected:
    void showEvent(QShowEvent* event) override;

private:
    // An error of the walk and the routine it is told under.
    struct Failure
    {
        QString place;
        AppError error;
    };

    void finished();

    AppContext& m_ctx;
    ScanRequest m_request;
    QString m_id;
    int m_rows = 0;
    bool m_started = false;
    std::atomic<bool> m_stop{false};
    QFutureWatcher<std::optional<Failure>> m_walk; // nothing when all went well
    QLabel* m_lblDir;
    QLabel* m_lblFile;
    QProgressBar* m_prbFiles;
};

} // namespace vinora
