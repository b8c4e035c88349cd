// The dashboard of the main window: counts, dates, loans and their overdue signs, the clock.
#include "frame/AppContext.h"
#include "frame/FaultLog.h"
#include "frame/NumericPrefix.h"
#include "mainwindow/DashboardData.h"
#include "mainwindow/frmMain.h"
#include "store/LocalDatabase.h"
#include "ui/ClickableLabel.h"
#include "ui/WaitCursor.h"

#include <climits>

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
    const auto configure = [this](const char* key, QTimer& timer) {
        const QString value = m_ctx.ini().read(kOption, QString::fromLatin1(key), 5);
        if (value.isEmpty()) {
            return;
        }
        const double number = m_ctx.ini().number(kOption, QString::fromLatin1(key), 5);
        timer.setInterval(number == 1 ? 1 : boundedInt(number / 10, 0, INT_MAX));
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
                startBlinking(m_tmrFindDue);
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

void frmMain::startBlinking(QTimer& timer)
{
    // An interval of 0 (a setting below 10) is a timer that never ticks: the sign stays as
    // it stands, and nothing spins the event loop.
    if (timer.interval() > 0) {
        timer.start();
    }
}

void frmMain::tmrFindDue_Timer()
{
    const bool steady = m_tmrFindDue.interval() == 1;
    for (const Category category : allCategories()) {
        CategoryBlock& b = block(category);
        if (!b.due) {
            continue;
        }
        b.dueFrame->setVisible(steady || b.dueFrame->isHidden());
    }
    if (steady) {
        m_tmrFindDue.stop(); // shown for good: the next CheckDue starts it again
    }
}

void frmMain::tmrTime_Timer()
{
    m_timeShowsDate = !m_timeShowsDate;
    m_statusPanels[3]->setText(m_timeShowsDate ? datePanelText(m_ctx.clock().today())
                                               : m_ctx.clock().now().toString(QStringLiteral("hh:mm")));
}

} // namespace vinora
