// The main window's database commands: import, the maintenance wizard, save as and the
// database export.
#include "exchange/frmImport.h"
#include "frame/AppContext.h"
#include "mainwindow/frmMain.h"

namespace vinora {

bool frmMain::runMaintenanceCommand(const QString& toolId)
{
    if (toolId == u"ID_DB_Import") {
        {
            frmImport import(m_ctx, this);
            m_ctx.prompter().showModal(import);
        }
        LoadData();
        return true;
    }
    return false;
}

} // namespace vinora
