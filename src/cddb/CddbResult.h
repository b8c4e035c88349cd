#pragma once

#include "cddb/CddbRecord.h"

#include <functional>

namespace vinora {

class AppContext;
class Db;

// A pending shift of the audio catalogue's numbers (ctx.ShiftStart), made by the catalogue:
// `numbers` runs inside the transaction that adds the new row and gives the row count,
// `covers` runs once that transaction is committed.
struct NumberShift
{
    std::function<int(const Db& db, int start)> numbers;
    std::function<void(int start, int rowCount)> covers;

    // Runs the pending shift on `db` (ctx.ShiftStart is 0 afterwards; a failure goes to the
    // fault log), for a caller inside its transaction; afterCommit() then moves the covers.
    void inTransaction(AppContext& ctx, const Db& db);
    void afterCommit() const;

private:
    int m_start = 0;
    int m_rowCount = 0;
};

enum class CddbWrite { Written, NoTitle };

// Stores a record the server gave for the disc in the drive, as the caller asked
// (ctx.CDDBUpdateRow, LastSavedNumber, CDDBDiscInSet, CurrentDiscID, CDDBSaveToIni,
// AutoDetectTag, ShiftStart):
// - an existing disc gets ДискID, Записей and Время of its place in the set;
// - a new disc gets a row with the artist and album (cut to 50 characters), this year, the
//   style named by the record's category (added when the style table has none) and the
//   same three fields for its first place; a record without an artist writes nothing and
//   gives NoTitle;
// then the track names go to the list CurrentDiscID ("Запись N" for a nameless track), to
// cdplayer.ini too when asked, and the catalogue's date of change is stamped.
// `discLength` is the disc's playing time in seconds as the drive gives it.
CddbWrite writeCddbRecord(AppContext& ctx, const CddbRecord& record, int discLength,
                          const NumberShift& shift);

} // namespace vinora
