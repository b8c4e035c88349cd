#include "contents/frmFileListCreate.h"

#include "frame/AppContext.h"
#include "frame/FaultLog.h"

#include <QLabel>
#include <QProgressBar>
#include <QVBoxLayout>
#include <QtConcurrent/QtConcurrentRun>

namespace vinora {

frmFileListCreate::frmFileListCreate(AppContext& ctx, ScanRequest request, QString id, QWidget* parent)
    : QDialog(parent), m_ctx(ctx), m_request(std::move(request)), m_id(std::move(id))
{
    setObjectName(QStringLiteral("frmFileListCreate"));
    setWindowTitle(QStringLiteral("Создание списка файлов"));
    resize(460, 140);
    auto* layout = new QVBoxLayout(this);
    m_lblDir = new QLabel(this);
    m_lblDir->setObjectName(QStringLiteral("lblDir"));
    m_lblFile = new QLabel(this);
    m_lblFile->setObjectName(QStringLiteral("lblFile"));
    m_prbFiles = new QProgressBar(this);
    m_prbFiles->setObjectName(QStringLiteral("prbFiles"));
    layout->addWidget(m_lblDir);
    layout->addWidget(m_lblFile);
    layout->addWidget(m_prbFiles);
    connect(&m_walk, &QFutureWatcher<std::optional<Failure>>::finished, this, &frmFileListCreate::finished);
}

frmFileListCreate::~frmFileListCreate()
{
    m_stop = true;
    m_walk.waitForFinished();
}

void frmFileListCreate::showEvent(QShowEvent* event)
{
    QDialog::showEvent(event);
    if (m_started) {
        return;
    }
    m_started = true;
    const auto prepare = [this](FileListScanner& scanner) {
        scanner.cancelled = [this] { return m_stop.load(); };
        scanner.onFolder = [this](const QString& folder) {
            QMetaObject::invokeMethod(
                this, [this, folder] { m_lblDir->setText(folder); }, Qt::QueuedConnection);
        };
        scanner.onFile = [this](const QString& file, int index, int count) {
            QMetaObject::invokeMethod(
                this,
                [this, file, index, count] {
                    m_lblFile->setText(file);
                    m_prbFiles->setRange(0, count);
                    m_prbFiles->setValue(index);
                },
                Qt::QueuedConnection);
        };
    };
    const auto readError = [this] {
        QMetaObject::invokeMethod(
            this,
            [this] {
                m_ctx.prompter().message(
                    QStringLiteral("Ошибка чтения диска! Некоторые файлы не будут добавлены в список."),
                    MessageStyle::Exclamation);
            },
            Qt::QueuedConnection);
    };
    m_walk.setFuture(QtConcurrent::run([this, prepare, readError]() -> std::optional<Failure> {
        try {
            m_rows = runScan(m_ctx, m_request, m_id, prepare, readError);
            return std::nullopt;
        } catch (const AppError& error) {
            return Failure{scanFaultPlace(error), error};
        } catch (const std::bad_alloc&) {
            return Failure{QStringLiteral("frmFileListCreate, CreateFileList()"),
                           AppError(err::OutOfMemory, QStringLiteral("Out of memory"))};
        } catch (const std::exception& error) {
            return Failure{scanFaultPlace(error),
                           AppError(err::EngineError, QString::fromLocal8Bit(error.what()))};
        }
    }));
}

void frmFileListCreate::finished()
{
    if (const std::optional<Failure> failure = m_walk.result()) {
        ReportFault(m_ctx, failure->place, failure->error);
    }
    accept();
}

void frmFileListCreate::reject()
{
    // Closing the window stops the walk at the next folder; what is stored stays.
    m_stop = true;
}

} // namespace vinora
