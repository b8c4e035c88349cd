// The dashboard of the main window: counts, dates, loans and their overdue signs, the clock.
#include "frame/AppContext.h"
#include "frame/FaultLog.h"
#include "mainwindow/DashboardData.h"
#include "mainwindow/frmMain.h"
#include "store/LocalDatabase.h"
#include "ui/ClickableLabel.h"
#include "ui/WaitCursor.h"


namespace vinora {
namespace {
const QString kOption = QStringLiteral("Option");
} // namespace

// ======================================================================================
// Dashboard
// ======================================================================================

void frmMain::LoadData()
{
    DashboardData data;
    {
        WaitCursor hourglass;
        const std::unique_ptr<Db> db = openMainDatabaseForRefresh(m_ctx);
        data = underFaultHandler(m_ctx, QStringLiteral("frmMain, LoadData()"),
                                 [&] { return readDashboard(*db); });
    }
    for (const Category category : allCategories()) {
        const CatalogueSummary& summary = data[static_cast<std::size_t>(category)];
        CategoryBlock& b = block(category);
        b.discs->setText(QString::number(summary.discs));
        b.updated->setText(updateDateText(summary.updated));
        b.onLoan->setText(QString::number(summary.onLoan));
    }
    ConfigureTimers();
    CheckDue();
    CheckCD();
}

void frmMain::ConfigureTimers()
{
    const auto configure = [this](const char* key, BlinkTimer& timer) {
        if (m_ctx.ini().has(kOption, QString::fromLatin1(key), 5)) {
            timer.configure(m_ctx.ini().number(kOption, QString::fromLatin1(key), 5));
        }
    };
    configure("tmrDue", m_tmrFindDue);
    configure("tmrCD", m_tmrNewCD);
}

void frmMain::CheckDue()
{
    m_tmrFindDue.stop();
    for (const Category category : allCategories()) {
        CategoryBlock& b = block(category);
        b.due = false;
        b.dueFrame->hide();
        b.dueCount->setText(QStringLiteral("0"));
    }
    const QString check = m_ctx.ini().read(kOption, QStringLiteral("CheckDueOnStartup"), 2);
    if (!check.isEmpty() && m_ctx.ini().number(kOption, QStringLiteral("CheckDueOnStartup"), 2) == 0) {
        return;
    }
    underFaultHandler(m_ctx, QStringLiteral("frmMain, CheckDue()"), [this] {
        Db db(m_ctx.MainDBPath);
        DashboardData data;
        countOverdue(db, m_ctx.clock().today(), data);
        for (const Category category : allCategories()) {
            const int overdue = data[static_cast<std::size_t>(category)].overdue;
            if (overdue > 0) {
                block(category).due = true;
                block(category).dueCount->setText(QString::number(overdue));
                m_tmrFindDue.startBlinking();
            }
        }
    });
}

void frmMain::CheckCD()
{
    m_lastDriveDiscID.clear();
    ResetDiscSigns();
    m_statusPanels[2]->clear();
    const QString setting = m_ctx.ini().read(kOption, QStringLiteral("CheckCD"), 2);
    if (setting.isEmpty()) {
        // Watching as designed: on, unless an external database is on view.
        if (!m_ctx.ExternalDBOpen) {
            m_tmrCheckCD.start();
        }
        return;
    }
    if (m_ctx.ini().number(kOption, QStringLiteral("CheckCD"), 2) == 1) {
        m_tmrCheckCD.start();
    } else {
        m_tmrCheckCD.stop();
        m_tmrNewCD.stop();
    }
}

void frmMain::tmrFindDue_Timer()
{
    for (const Category category : allCategories()) {
        if (block(category).due) {
            m_tmrFindDue.blink({block(category).dueFrame});
        }
    }
}

void frmMain::tmrTime_Timer()
{
    m_timeShowsDate = !m_timeShowsDate;
    m_statusPanels[3]->setText(m_timeShowsDate ? datePanelText(m_ctx.clock().today())
                                               : m_ctx.clock().now().toString(QStringLiteral("hh:mm")));
}

} // namespace vinora
