// The main window's search commands: the menu's, the logo menus' and the vinora panel's.
#include "frame/AppContext.h"
#include "mainwindow/frmMain.h"
#include "search/frmDBFind.h"

namespace vinora {

bool frmMain::runSearchCommand(const QString& toolId)
{
    static const QHash<QString, QString> searchFrom = {
        {QStringLiteral("ID_DB_Search"), QString()},
        {QStringLiteral("ID_QuickADFind"), QStringLiteral("AD")},
        {QStringLiteral("ID_QuickPCFind"), QStringLiteral("PC")}};
    if (!searchFrom.contains(toolId)) {
        return false;
    }
    {
        frmDBFind search(m_ctx, searchFrom.value(toolId), this);
        m_ctx.prompter().showModal(search);
    }
    // The lists opened from the hits may have been made or deleted meanwhile.
    if (!m_ctx.ExternalDBOpen) {
        LoadData();
    }
    return true;
}

} // namespace vinora
