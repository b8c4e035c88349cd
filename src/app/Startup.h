#pragma once

#include <QString>
#include <functional>

class QLockFile;

namespace vinora {

class AppContext;

// The application folder: VINORA_HOME when set, else the user's data folder for vinora.
// Created when missing.
QString applicationFolder();

// The start of the program up to its main window: refuses a second instance, resolves
// the database paths, shows the splash (by the callback), creates the databases that
// are missing and offers a way out of a damaged one. Returns false when the program is to end here.
// `instanceLock` is the lock of the application folder; it stays held while the program runs.
bool Main(AppContext& ctx, QLockFile& instanceLock, const std::function<void()>& showSplash);

} // namespace vinora
