// The main window's database on view: an external database and back to the local one.
#include "frame/AppContext.h"
#include "mainwindow/DashboardData.h"
#include "mainwindow/DashboardPictures.h"
#include "mainwindow/MainCommands.h"
#include "mainwindow/frmMain.h"
#include "store/InfoStamp.h"
#include "store/LocalDatabase.h"
#include "store/Schema.h"
#include "ui/ClickableLabel.h"
#include "ui/WaitCursor.h"

#include <QComboBox>
#include <QFileInfo>
#include <QListWidget>
#include <QToolBox>

namespace vinora {
namespace {
const QString kOption = QStringLiteral("Option");
} // namespace

// ======================================================================================
// Database set
// ======================================================================================

void frmMain::OpenExternalDB()
{
    const QString path = m_ctx.prompter().openFile(
        QStringLiteral("Открытие базы данных vinora"),
        QStringLiteral("База данных vinora (*.db)|*.db|Все файлы (*.*)|*.*"), QString());
    if (path.isEmpty()) {
        return;
    }
    const QString fileName = QFileInfo(path).fileName();
    if (path.toLower() == m_ctx.MainDBPath.toLower()) {
        m_ctx.prompter().message(QStringLiteral("База данных '") + fileName +
                                     QStringLiteral("' уже открыта."),
                                 MessageStyle::Information);
        return;
    }
    if (path.toLower() == m_ctx.appFile(QStringLiteral("vinora.db")).toLower()) {
        if (m_ctx.prompter().message(QStringLiteral("Открыть локальную базу данных?"),
                                     MessageStyle::YesNoQuestion) == Answer::Yes) {
            OpenLocalDB();
        }
        return;
    }
    try {
        WaitCursor hourglass;
        m_ctx.MainDBPath = path;
        Db db(path);
        for (const Category category : {Category::Audio, Category::Computer}) {
            const CategoryInfo& info = categoryInfo(category);
            block(category).discs->setText(QString::number(
                db.scalar(QStringLiteral("SELECT COUNT(*) FROM ") + quoted(info.table)).toInt()));
            block(category).updated->setText(updateDateText(readStamp(db, info.stampField)));
        }
    } catch (const AppError&) {
        m_ctx.prompter().message(
            QStringLiteral("ОШИБКА!\n\nБаза данных имеет атрибут 'только чтение', повреждена или "
                           "имеет не верный формат."),
            MessageStyle::Stop);
        OpenLocalDB();
        return;
    }
    m_statusPanels[0]->setText(QStringLiteral("База данных - внешняя (файл: '") + fileName +
                               QStringLiteral("')"));
    m_ctx.ExternalDBOpen = true;
    block(Category::Audio).onLoan->setText(QStringLiteral("-"));
    block(Category::Computer).onLoan->setText(QStringLiteral("-"));
    setStatusPicture(2, externalModePicture());
    for (const char* id : {"ID_Catalog_AudioCD", "ID_Catalog_PCCD", "ID_DB_OpenLocal"}) {
        setToolEnabled(QString::fromLatin1(id), true);
    }
    for (const QString& id : localOnlyCommands()) {
        setToolEnabled(id, false);
    }
    for (const char* key : {"g4", "g3", "g2"}) {
        if (auto* group = m_listBar->findChild<QListWidget*>(QString::fromLatin1(key))) {
            m_listBar->removeItem(m_listBar->indexOf(group));
            group->deleteLater();
            group->setObjectName(QString());
        }
    }
    m_tmrFindDue.stop();
    m_tmrCheckCD.stop();
    m_tmrNewCD.stop();
    m_lastDriveDiscID.clear();
    for (const Category category : allCategories()) {
        block(category).dueFrame->hide();
        block(category).due = false;
    }
    ResetDiscSigns();
}

void frmMain::OpenLocalDB()
{
    m_ctx.resolveDatabasePaths();
    for (const QString& path : {m_ctx.MainDBPath, m_ctx.FilesDBPath, m_ctx.TracksDBPath}) {
        if (!QFileInfo::exists(path)) {
            m_ctx.prompter().message(
                QStringLiteral("ОШИБКА.\n\nФайл базы данных не найден. Запуск программы невозможен."),
                MessageStyle::Stop);
            m_ctx.endProcess(0);
        }
    }
    m_ctx.ExternalDBOpen = false;
    LoadData();
    m_statusPanels[0]->setText(QStringLiteral("База данных - локальная"));
    m_statusPanels[1]->clear();
    for (const QString& id : localOnlyCommands()) {
        setToolEnabled(id, true);
    }
    setToolEnabled(QStringLiteral("ID_DB_OpenLocal"), false);
    m_driveSelector->setEnabled(m_driveSelector->count() > 0);
    AddListbars();
    loadShortcuts();
}

} // namespace vinora
