#pragma once

#include "store/Category.h"

#include <QString>
#include <QStringList>
#include <QVariant>

namespace vinora::test {

// Databases with discs for the maintenance and import tests.

// The three databases in `folder`, as the program makes them.
void makeDatabases(const QString& folder);

struct SampleDisc
{
    Category category;
    int number;
    QString title;
    QString album;      // audio only
    QString dictionary; // the name of its style, description or genre; added when missing
    QStringList ids;    // ДискID1.. (audio and computer); each gets a list of `listRows` rows
    int listRows = 3;
};

// Adds the discs to the databases in `folder`. An id starting with '-' is stored without a
// list ("-A1" stores "A1").
void addDiscs(const QString& folder, const QList<SampleDisc>& discs);

// The first column of the first row of `sql` on the database at `path`.
QVariant valueOf(const QString& path, const QString& sql, const QVariantList& values = {});
int countOf(const QString& path, const QString& sql, const QVariantList& values = {});
// "ok" for a sound database, else the engine's complaints.
QString integrityOf(const QString& path);
// The catalogue numbers and titles of a category in number order: "1 Title, 2 Title".
QString catalogueOf(const QString& mainPath, Category category);

} // namespace vinora::test
