#include "cddb/frmCDDB.h"

#include "cddb/CddbServers.h"
#include "contents/TrackListStore.h"
#include "frame/AppContext.h"
#include "frame/FaultLog.h"
#include "frame/Prompter.h"
#include "ui/TitleWidth.h"

#include <QLabel>
#include <QVBoxLayout>

namespace vinora {
namespace {

const QString kCaption = QStringLiteral("Запрос сервера CDDB - ");
constexpr int kStays = -1; // the query's result when the dialog is to stay open

} // namespace

frmCDDB::frmCDDB(AppContext& ctx, QString drive, const QString& serverChoice, NumberShift shift,
                 QWidget* parent)
    : QDialog(parent), m_ctx(ctx), m_drive(std::move(drive)), m_shift(std::move(shift)),
      m_session(ctx, m_socket)
{
    setObjectName(QStringLiteral("frmCDDB"));
    auto* layout = new QVBoxLayout(this);
    m_lblStatus = new QLabel(this);
    m_lblStatus->setObjectName(QStringLiteral("lblStatus"));
    m_lblStatus->setMinimumWidth(360);
    m_lblStatus->setWordWrap(true);
    layout->addWidget(m_lblStatus);

    prepareCddbSession(m_session, m_ctx.ini(), serverChoice);
    setWindowTitle(kCaption + QStringLiteral("0:00"));
    m_tmrTimeout.setInterval(1000);
    connect(&m_tmrTimeout, &QTimer::timeout, this, &frmCDDB::tmrTimeout_Timer);
    // The session's messages come as boxes of their own over the dialog, which stays in
    // place: hiding a dialog would end its modal run.
    connect(&m_session, &CdBase::sessionStatus, m_lblStatus, &QLabel::setText);
    keepTitleVisible(this);
}

frmCDDB::~frmCDDB() = default;

QString frmCDDB::statusText() const
{
    return m_lblStatus->text();
}

void frmCDDB::showEvent(QShowEvent* event)
{
    QDialog::showEvent(event);
    if (m_started) {
        return;
    }
    m_started = true;
    m_tmrTimeout.start();
    QMetaObject::invokeMethod(this, &frmCDDB::runQuery, Qt::QueuedConnection);
}

void frmCDDB::tmrTimeout_Timer()
{
    if (++m_seconds == 60) {
        m_seconds = 0;
        ++m_minutes;
    }
    setWindowTitle(kCaption + QString::number(m_minutes) + u':' +
                   QStringLiteral("%1").arg(m_seconds, 2, 10, QLatin1Char('0')));
}

void frmCDDB::reject()
{
    if (m_running) {
        // Closed by hand during the query: the wait ends now and nothing is stored.
        m_session.cancel();
        return;
    }
    QDialog::reject();
}

void frmCDDB::finish(int result)
{
    m_tmrTimeout.stop();
    m_minutes = 0;
    m_seconds = 0;
    done(result);
}

void frmCDDB::runQuery()
{
    const QString place = QStringLiteral("frmCDDB, Form_Active()");
    m_running = true;
    const int result = underFaultHandler(m_ctx, place, [&] {
        try {
            m_session.setFileName(m_drive);
            QString query = m_session.GetQueryString();
            const QString reply = query.isEmpty() ? QString() : m_session.GetCddbUseQueryString(query);
            m_running = false;
            if (m_session.cancelled() || reply.isEmpty() || reply == QStringLiteral("Error")) {
                dropTrackList(m_ctx, m_ctx.CurrentDiscID);
                return int(Rejected);
            }
            if (writeCddbRecord(m_ctx, m_session.record(), m_session.DiscLength(), m_shift) ==
                CddbWrite::NoTitle) {
                return kStays;
            }
            m_ctx.DialogDone = true;
            return int(Accepted);
        } catch (const AppError& error) {
            // A database that refuses the write: told, and the catalogue goes on.
            m_running = false;
            ReportErrorAndGoOn(m_ctx, place, error);
            return int(Rejected);
        }
    });
    if (result != kStays) {
        finish(result);
        return;
    }
    // Nothing was written; the dialog stays until it is closed.
    m_tmrTimeout.stop();
    m_ctx.prompter().message(
        QStringLiteral("Ошибка сервера CDDB.\r\rНе получено название диска! Повторите попытку "
                       "позже или обратитесь к другому серверу."),
        MessageStyle::Exclamation);
}

} // namespace vinora
