#pragma once

#include "contents/FileListScan.h"

#include <QString>

#include <functional>

namespace vinora {

class AppContext;
class Db;

// Asked when the disc's id names a list that a computer disc owns already; true goes on
// under a made-up id.
using ClashQuestion = std::function<bool(const QString& text)>;

// The question put for such a clash.
QString clashQuestionText();

// True when a row of Компьютер has `id` among ДискID1..ДискID6.
bool CheckFileTableOwner(const AppContext& ctx, const QString& id);

// Makes the list `id` in the files database. On a clash: without `ask`, false; a list no
// disc owns is replaced silently; one that a disc owns is put to the user, and on Yes a
// random decimal id is made (written back to `id`), on No false.
bool CreateFileTable(AppContext& ctx, QString& id, bool ask, const ClashQuestion& question);

// Ties the list to disc `slot` of computer disc `number`: ДискID<slot>, and the binding
// ДискID<slot>_d too with `share`; slot `slot` of ctx.DiscIDSlots follows.
void CreateLinkDiskID(AppContext& ctx, int number, int slot, const QString& id, bool share);

// Stores the rows a scan hands over into list `id`, one transaction per folder, so that a
// broken-off or failing scan keeps what was stored before.
class FileListWriter
{
public:
    FileListWriter(const Db& filesDb, QString id);
    void write(const QList<FileRow>& rows);
    int rowsWritten() const { return m_count; }

private:
    const Db& m_db;
    QString m_id;
    int m_count = 0;
};

} // namespace vinora
