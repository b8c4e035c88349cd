#pragma once

#include <QStringList>

namespace vinora::cli {

// Runs the tool on its arguments (without the program name): the verb named first, or
// help, or the version. Every error of the verbs ends here as a message and an exit status.
int runTool(const QStringList& arguments);

} // namespace vinora::cli
