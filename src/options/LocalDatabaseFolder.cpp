#include "options/LocalDatabaseFolder.h"

#include "frame/AppContext.h"
#include "frame/AppError.h"
#include "frame/FaultLog.h"
#include "store/Db.h"
#include "store/Reanimator.h"

#include <QDir>
#include <QFileInfo>

namespace vinora {
namespace {

const QString kPlace = QStringLiteral("vinoraModule, Reanimator()");

// The three database paths as they were, put back when the new folder is refused.
class SavedPaths
{
public:
    explicit SavedPaths(AppContext& ctx)
        : m_ctx(ctx), m_main(ctx.MainDBPath), m_files(ctx.FilesDBPath), m_tracks(ctx.TracksDBPath)
    {
    }
    void restore() const
    {
        m_ctx.MainDBPath = m_main;
        m_ctx.FilesDBPath = m_files;
        m_ctx.TracksDBPath = m_tracks;
    }

private:
    AppContext& m_ctx;
    QString m_main;
    QString m_files;
    QString m_tracks;
};

} // namespace

std::optional<QString> changeLocalDatabaseFolder(AppContext& ctx, const QString& startFolder)
{
    QString folder =
        ctx.prompter().chooseFolder(QStringLiteral("Укажите каталог с базой данных vinora."), startFolder);
    if (folder.isEmpty()) {
        return std::nullopt;
    }
    // Stored without a final separator, as the paths are joined to it.
    while (folder.size() > 1 && folder.endsWith(u'/')) {
        folder.chop(1);
    }
    const SavedPaths old(ctx);
    if (!QFileInfo::exists(QDir(folder).filePath(QStringLiteral("vinora.db")))) {
        if (!QFileInfo(folder).isDir()) {
            ctx.prompter().message(
                QStringLiteral("Путь не существует! Выберите другое место расположение базы данных!"),
                MessageStyle::Exclamation);
            return std::nullopt;
        }
        const Answer answer = ctx.prompter().message(
            QStringLiteral("В каталоге '") + folder +
                QStringLiteral("' база данных не обнаружена!\nСоздать новую базу данных?"),
            MessageStyle::YesNoQuestion);
        if (answer != Answer::Yes) {
            return std::nullopt;
        }
        ctx.setDatabaseFolder(folder);
        if (Reanimator(ctx, 0)) {
            old.restore(); // read-only: Reanimator has said so
            return std::nullopt;
        }
    }
    ctx.setDatabaseFolder(folder);
    try {
        const Db probe(ctx.MainDBPath);
        // A folder holding the catalogue alone gets the lists' databases, as at start.
        for (const auto& [path, kind] : {std::pair{ctx.FilesDBPath, 1}, std::pair{ctx.TracksDBPath, 2}}) {
            if (!QFileInfo::exists(path) && Reanimator(ctx, kind)) {
                old.restore();
                return std::nullopt;
            }
        }
        ctx.ini().write(QStringLiteral("Option"), QStringLiteral("PathLocalDB"), folder);
    } catch (const AppError& error) {
        old.restore();
        if (error.number() == err::CannotOpenFile) {
            ctx.prompter().message(
                QStringLiteral("Папка '") + folder +
                    QStringLiteral("' доступна только для чтения! Для локального использования "
                                   "вы должны иметь полный доступ к папке!"),
                MessageStyle::Exclamation);
        } else {
            // A damaged or foreign file, or a settings file that cannot be written: told,
            // and the databases in use stay as they were.
            ReportErrorAndGoOn(ctx, kPlace, error);
        }
        return std::nullopt;
    }
    ctx.prompter().message(QStringLiteral("Путь к локальной базе данных успешно изменен!"),
                           MessageStyle::Information);
    return folder;
}

} // namespace vinora
