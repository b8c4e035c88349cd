#pragma once

#include "contents/FileListStore.h"
#include "frame/AppError.h"

namespace vinora {

class AppContext;

// What the start of a scan needs: the drive and the kind of its disc, the options, and the
// computer disc (number and place in its set) that gets the list.
struct ScanRequest
{
    QString drive;
    QString kind; // as GetDiskIDcheck gives it
    QString id;   // the disc's identifier
    ScanOptions options;
    int number = 0;
    int slot = 1;
    bool share = false; // chShare: the disc is also bound to the record
};

struct ScanOutcome
{
    bool done = false;
    QString refusal; // the message of a refused start, empty for a silent one
    QString id;      // the list's id (a made-up one after a clash)
    int rows = 0;
};

// The checks of the start in order, with their messages, and the list made
// (CreateFileTable); `done` stays false, `id` is the list's id when the walk may begin.
ScanOutcome prepareScan(AppContext& ctx, const ScanRequest& request, const ClashQuestion& clash);

// An error met while the entries of the chosen filter were loaded (FullArrayFileFiltr),
// before the walk began.
class FilterLoadError : public AppError
{
public:
    explicit FilterLoadError(const AppError& error) : AppError(error) {}
};

// The routine an error of runScan is told under: the loading of the filter or the walk.
QString scanFaultPlace(const std::exception& error);

// The walk into list `id`, stored folder by folder; the number of rows stored. AppError
// comes out (the caller tells the user, under scanFaultPlace). May run off the GUI thread:
// it touches no window.
int runScan(const AppContext& ctx, const ScanRequest& request, const QString& id,
            const std::function<void(FileListScanner&)>& prepare, const std::function<void()>& readError);

// cmdStartScan without its window: the checks in order with their messages, the list made
// (CreateFileTable), the walk stored folder by folder, and the disc record linked.
// `prepare` may hook progress and cancelling into the scanner before it runs.
ScanOutcome startScan(AppContext& ctx, const ScanRequest& request, const ClashQuestion& clash,
                      const std::function<void(FileListScanner&)>& prepare = {},
                      const std::function<void()>& readError = {});

} // namespace vinora
