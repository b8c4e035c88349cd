#pragma once

#include <QString>

namespace vinora::test {

// The catalogue the export pages are checked on, in the databases of the application folder
// `appFolder` (made there): audio, computer and DVD discs with sets of two, three and five,
// covers, file and track lists, and a ledger with a loan without term and a deleted disc.
// The page dates come from the clock; the rows carry fixed dates of their own.
void makeExportFixture(const QString& appFolder);

// The cover pictures the fixture puts in box/ (ad_1, pc_1, dvd_1).
QString fixtureCover(const QString& appFolder, const QString& name);

} // namespace vinora::test
