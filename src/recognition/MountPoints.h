#pragma once

#include <QString>

namespace vinora {

// The folder where the medium of `drive` is mounted, or empty when it is not mounted. An
// image counts as mounted when a loop device backed by it is mounted. `mountsTable` is the
// text of /proc/self/mounts (given by tests).
QString mountPointOf(const QString& drive);
QString mountPointOf(const QString& drive, const QString& mountsTable);

} // namespace vinora
