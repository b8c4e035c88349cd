#include "contents/DiscScan.h"

#include "frame/AppContext.h"
#include "frame/FaultLog.h"
#include "recognition/VolumeReader.h"
#include "store/Db.h"

namespace vinora {

ScanOutcome prepareScan(AppContext& ctx, const ScanRequest& request, const ClashQuestion& clash)
{
    ScanOutcome outcome;
    const auto refuse = [&outcome](const char* text) {
        outcome.refusal = QString::fromUtf8(text);
        return outcome;
    };
    if (!request.options.filesInCore && !request.options.scanDir) {
        return refuse("Выберите область сканирования диска!");
    }
    if (request.drive.isEmpty()) {
        return refuse("Устройство для чтения компакт-дисков не найдено!");
    }
    if (request.kind == u"AudioCD") {
        return refuse("В устройстве для чтения компакт дисков вставлен Аудио диск.");
    }
    if (request.kind.isEmpty()) {
        return refuse("Вставьте диск в устройство для чтения компакт-дисков и повторите операцию.");
    }
    if (request.kind != u"PcCD") {
        return outcome; // a DVD: no word, the dialog stays
    }
    ctx.CurrentDiscID = request.id;
    if (ctx.CurrentDiscID.isEmpty()) {
        return refuse(
            "В устройстве для чтения компакт дисков вставлен диск без идентификационного номера "
            "(возможно, что диск записан в формате PacketCD, который не поддерживается программой)!");
    }
    QString id = ctx.CurrentDiscID;
    if (CreateFileTable(ctx, id, true, clash)) {
        outcome.id = id;
        ctx.CurrentDiscID = id;
    }
    return outcome;
}

QString scanFaultPlace(const std::exception& error)
{
    return dynamic_cast<const FilterLoadError*>(&error) != nullptr
               ? QStringLiteral("frmFileListCreate, FullArrayFileFiltr()")
               : QStringLiteral("frmFileListCreate, CreateFileList()");
}

int runScan(const AppContext& ctx, const ScanRequest& request, const QString& id,
            const std::function<void(FileListScanner&)>& prepare, const std::function<void()>& readError)
{
    const std::unique_ptr<VolumeReader> volume = openVolumeReader(request.drive);
    if (!volume) {
        if (readError) {
            readError();
        }
        return 0;
    }
    QStringList entries;
    if (request.options.filter) {
        try {
            const Db files(ctx.FilesDBPath, Db::Access::ReadOnly);
            entries = FullArrayFileFiltr(files, *request.options.filter);
        } catch (const AppError& error) {
            throw FilterLoadError(error);
        }
    }
    const Db files(ctx.FilesDBPath);
    FileListWriter writer(files, id);
    FileListScanner scanner(*volume, request.options, entries);
    scanner.onRows = [&writer](const QList<FileRow>& rows) { writer.write(rows); };
    scanner.onReadError = readError;
    if (prepare) {
        prepare(scanner);
    }
    scanner.run();
    writer.commit();
    return writer.rowsWritten();
}

ScanOutcome startScan(AppContext& ctx, const ScanRequest& request, const ClashQuestion& clash,
                      const std::function<void(FileListScanner&)>& prepare,
                      const std::function<void()>& readError)
{
    ScanOutcome outcome = prepareScan(ctx, request, clash);
    if (outcome.id.isEmpty()) {
        return outcome;
    }
    try {
        outcome.rows = runScan(ctx, request, outcome.id, prepare, readError);
    } catch (const std::bad_alloc&) {
        ReportFault(ctx, QStringLiteral("frmFileListCreate, CreateFileList()"),
                    AppError(err::OutOfMemory, QStringLiteral("Out of memory")));
    } catch (const std::exception& error) {
        ReportFault(ctx, scanFaultPlace(error), error);
    }
    underFaultHandler(ctx, QStringLiteral("frmFileListOption, CreateLinkDiskID()"), [&] {
        CreateLinkDiskID(ctx, request.number, request.slot, outcome.id, request.share);
    });
    outcome.done = true;
    return outcome;
}

} // namespace vinora
