#pragma once

#include "contents/FileListScan.h"

#include <QElapsedTimer>
#include <QString>
#include <functional>
#include <memory>

namespace vinora {

class AppContext;
class Db;
class Statement;
class Transaction;

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

// Drops list `id` and unties it from disc `slot` of computer disc `number`: ДискID<slot> and
// slot `slot` of ctx.DiscIDSlots become empty. The binding ДискID<slot>_d stays.
void DeleteFileList(AppContext& ctx, int number, int slot, const QString& id);

// Stores the rows a scan hands over into list `id`. Whole folders are committed, at least
// every quarter of a second, so that a broken-off or failing scan keeps what was stored
// before, without paying a disc flush for every small folder.
class FileListWriter
{
public:
    FileListWriter(const Db& filesDb, QString id);
    ~FileListWriter();
    void write(const QList<FileRow>& rows);
    void commit();
    int rowsWritten() const { return m_count; }

private:
    void bindRow(const FileRow& row);

    const Db& m_db;
    QString m_id;
    int m_count = 0;
    std::unique_ptr<Transaction> m_transaction;
    std::unique_ptr<Statement> m_insert;
    QElapsedTimer m_sinceCommit;
    QByteArray m_utf8;
};

} // namespace vinora
