#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace vinora {

class Db;

// The tables of the three databases, described once and turned into SQL here.
enum class FieldType { Long, Integer, Text, Date, Boolean };

struct FieldDef
{
    QString name;
    FieldType type = FieldType::Text;
    int size = 0;            // Text: the most characters it holds
    bool counter = false;    // Long: the table's key, numbered by the engine
    bool allowEmpty = false; // Text: takes the empty text (otherwise only Null or a non-empty text)
    QString defaultSql;      // an SQL default expression, or empty for none
};

// A relation, declared on the table that refers: `field` points at `parentTable`.`parentField`.
struct RelationDef
{
    QString name;
    QString field;
    QString parentTable;
    QString parentField;
    bool updateCascade = false;
    bool deleteCascade = false;
};

struct TableDef
{
    QString name;
    QList<FieldDef> fields;
    QList<RelationDef> relations;
    // Rows of a new database, one value each for the field `initialField` (the filter tables
    // get their Use flag from its default).
    QString initialField;
    QStringList initialRows;
};

// The tables of vinora.db in the order they are made.
const QList<TableDef>& mainTables();
// The filter tables of vinora_files.db.
const QList<TableDef>& filterTables();

QString createTableSql(const TableDef& table);
// Creates the table and adds its initial rows.
void createTable(const Db& db, const TableDef& table);

// Quotes an identifier for SQL; only for the names of this schema, never for user text.
QString quoted(const QString& identifier);

} // namespace vinora
