#pragma once

#include "store/Category.h"

#include <QList>
#include <QString>

namespace vinora {

class Db;

struct Borrower
{
    qint64 key = 0;
    QString name;
    QString phone;
};

inline constexpr int kBorrowerNameLength = 50; // ИменаДолжников.Имя
inline constexpr int kBorrowerPhoneLength = 15; // ИменаДолжников.Телефон

// Every borrower in the order of their names.
QList<Borrower> borrowers(const Db& db);

// Adds a borrower with the phone "нет"; gives its key. The caller has checked that the
// name is new (findBorrower).
qint64 addBorrower(const Db& db, const QString& name);
void renameBorrower(const Db& db, qint64 borrower, const QString& name);
// True when a disc is still out with the borrower, who then cannot be deleted.
bool hasOpenLoan(const Db& db, qint64 borrower);
// Deletes the borrower and, with him, his loans (the record of the past goes too).
void deleteBorrower(const Db& db, qint64 borrower);

// One loan of a disc's history.
struct HistoryLine
{
    QString name;
    QString issued;   // dd.MM.yyyy
    QString returned; // dd.MM.yyyy, or "нет" while out
};
// The loans of the disc of record `key`, in ledger order; loans of a deleted borrower are gone.
QList<HistoryLine> discHistory(const Db& db, Category category, qint64 key);

} // namespace vinora
