// The main window's database commands: import, the maintenance wizard, save as and the
// database export.
#include "exchange/frmImport.h"
#include "frame/AppContext.h"
#include "frame/FaultLog.h"
#include "maintenance/DatabaseExport.h"
#include "maintenance/MaintenanceTexts.h"
#include "maintenance/frmDBWizard.h"
#include "mainwindow/frmMain.h"
#include "store/Compaction.h"
#include "ui/BackgroundWork.h"
#include "ui/WaitCursor.h"

namespace vinora {

bool frmMain::runMaintenanceCommand(const QString& toolId)
{
    if (toolId == u"ID_DB_Import") {
        {
            frmImport import(m_ctx, this);
            m_ctx.prompter().showModal(import);
        }
        LoadData();
    } else if (toolId == u"ID_DB_Wizard") {
        {
            frmDBWizard wizard(m_ctx, this);
            m_ctx.prompter().showModal(wizard);
        }
        LoadData();
    } else if (toolId == u"ID_DB_Save") {
        mnuDBESave_Click();
    } else if (toolId == u"ID_DB_ExportDB") {
        mnuDBExportDB_Click();
    } else {
        return false;
    }
    return true;
}

void frmMain::mnuDBESave_Click()
{
    const QString place = QStringLiteral("frmMain, mnuDBESave_Click()");
    const QString folder = underFaultHandler(m_ctx, place, [this] {
        return m_ctx.prompter().chooseFolder(
            QStringLiteral(
                "Выберите каталог для сохранения файлов базы данных программы vinora (требуется: ") +
                QString::number(databasesSize(m_ctx) / 1024) + QStringLiteral(" Kб):"),
            QString());
    });
    if (folder.isEmpty()) {
        return;
    }
    if (samePlace(folder, m_ctx.mainDatabaseFolder())) {
        m_ctx.prompter().message(QStringLiteral("Вы попытались сохранить базу данных по верх локальной!"),
                                 MessageStyle::Exclamation);
        return;
    }
    if (!databaseSetIn(folder).isEmpty() &&
        m_ctx.prompter().message(QStringLiteral("Перезаписать существующие файлы базы данных?"),
                                 MessageStyle::YesNoQuestion) != Answer::Yes) {
        return;
    }
    // The files that stand there are replaced only once the new ones are complete.
    const bool saved = underMaintenanceReport(m_ctx, place, [&] {
        WaitCursor hourglass;
        runInBackground([&] { saveDatabaseSet(m_ctx, folder); });
    });
    if (saved) {
        m_ctx.prompter().message(
            QStringLiteral(
                "Файлы базы данных (vinora.db, vinora_files.db, vinora_tracks.db) успешно сохранены в "
                "каталоге '") +
                folder + QStringLiteral("'."),
            MessageStyle::Information);
    }
}

void frmMain::mnuDBExportDB_Click()
{
    const QString path = underFaultHandler(m_ctx, QStringLiteral("frmMain, mnuDBExportDB_Click()"), [this] {
        return m_ctx.prompter().saveFile(QStringLiteral("Экспорт базы данных vinora"),
                                         QStringLiteral("База данных vinora (*.db)|*.db"), QString());
    });
    if (path.isEmpty()) {
        return;
    }
    // None of the local databases is ever written over, not only the main one.
    for (const QString& local : {m_ctx.MainDBPath, m_ctx.FilesDBPath, m_ctx.TracksDBPath}) {
        if (samePlace(path, local)) {
            m_ctx.prompter().message(
                QStringLiteral("Вы попытались экспортировать базу данных по верх локальной."),
                MessageStyle::Exclamation);
            return;
        }
    }
    const bool saved = underMaintenanceReport(m_ctx, QStringLiteral("frmMain, SaveDB()"), [&] {
        WaitCursor hourglass;
        runInBackground([&] { SaveDB(m_ctx.MainDBPath, path); });
    });
    if (saved) {
        // The "c" of "cохранена" is a Latin letter.
        m_ctx.prompter().message(QStringLiteral("База данных успешно cохранена в файл:\n") + path,
                                 MessageStyle::Information);
    }
}

} // namespace vinora
