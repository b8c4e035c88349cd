// The main window's loan commands: the debtor list, the statistics, the history of a disc,
// the borrowers, and lending from the main window.
#include "catalogue/frmSelectCD.h"
#include "frame/AppContext.h"
#include "lending/frmAddInDueFromMain.h"
#include "lending/frmDiskHistory.h"
#include "lending/frmDue.h"
#include "lending/frmDueStat.h"
#include "lending/frmEditDue.h"
#include "mainwindow/frmMain.h"

namespace vinora {

DiscPicker frmMain::discPicker()
{
    return [this](Category category, PickMode mode) {
        m_ctx.CatalogueQueryFilter = pickModeText(category, mode);
        {
            frmSelectCD picker(m_ctx, this);
            m_ctx.prompter().showModal(picker);
        }
        m_ctx.CatalogueQueryFilter.clear();
        const int number = m_ctx.PickedDisc.section(u':', 0, 0).toInt(); // "12:2": disc 2 of number 12
        m_ctx.PickedDisc.clear();
        return number;
    };
}

bool frmMain::runLoanCommand(const QString& toolId)
{
    static const QHash<QString, QString> lendFromLogo = {{QStringLiteral("ID_QuickADNewDue"), QStringLiteral("AD")},
                                                         {QStringLiteral("ID_QuickPCNewDue"), QStringLiteral("PC")},
                                                         {QStringLiteral("ID_QuickDVDNewDue"), QStringLiteral("DVD")},
                                                         {QStringLiteral("ID_Due_Admin"), QString()}};
    if (toolId == u"ID_Due_List") {
        frmDue list(m_ctx, discPicker(), this);
        m_ctx.prompter().showModal(list);
    } else if (toolId == u"ID_Due_Stat") {
        frmDueStat statistics(m_ctx, QString(), this);
        m_ctx.prompter().showModal(statistics);
        return true; // reads only
    } else if (toolId == u"ID_Due_DiskHistory") {
        frmDiskHistory history(m_ctx, discPicker(), this);
        m_ctx.prompter().showModal(history);
        return true; // reads only
    } else if (toolId == u"ID_Due_EditNames") {
        frmEditDue names(m_ctx, this);
        m_ctx.prompter().showModal(names);
    } else if (lendFromLogo.contains(toolId)) {
        frmAddInDueFromMain lend(m_ctx, discPicker(), lendFromLogo.value(toolId), this);
        m_ctx.prompter().showModal(lend);
    } else {
        return false;
    }
    // The counters of loans and the overdue signs follow every change of the ledger.
    LoadData();
    return true;
}

} // namespace vinora
