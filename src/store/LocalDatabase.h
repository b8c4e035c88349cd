#pragma once

#include "store/Db.h"

#include <memory>

namespace vinora {

class AppContext;

// Opens the main database for the dashboard's refresh. When its folder cannot be written
// (3051) the user is asked whether to go back to the application folder: Yes points the
// paths there (writing PathLocalDB) and tries again, No ends the program. Any other error
// goes to the fault log as "frmMain, LoadData()".
std::unique_ptr<Db> openMainDatabaseForRefresh(AppContext& ctx);

} // namespace vinora
