#pragma once

#include "store/Db.h"

#include <memory>

namespace vinora {

class AppContext;

// Opens the main database for the dashboard's refresh. When its folder or the file itself
// cannot be written (3051) the user is told which of the two it is and, when the databases
// stand outside the application folder, asked whether to go back there: Yes points the
// paths there (writing PathLocalDB) and tries again, No ends the program. In the
// application folder itself there is nowhere to go back to: the user is told and the
// program ends. Any other error goes to the fault log as "frmMain, LoadData()".
std::unique_ptr<Db> openMainDatabaseForRefresh(AppContext& ctx);

} // namespace vinora
