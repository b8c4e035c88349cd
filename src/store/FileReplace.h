#pragma once

#include <QString>

namespace vinora {

// The name of the file in which a new version of `path` is made before it replaces it.
QString partialPathFor(const QString& path);

// Puts `source` in the place of `target` in one step: a reader sees the old file or the
// new one, never a part. Works across file systems (copied beside the target first).
// `source` is gone afterwards. AppError 3051 when the target's folder refuses the file.
void replaceFile(const QString& source, const QString& target);

} // namespace vinora
