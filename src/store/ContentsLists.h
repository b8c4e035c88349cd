#pragma once

#include <QString>
#include <QStringList>

namespace vinora {

class Db;

// The per-disc lists of the two contents databases. Each database keeps all its lists in
// one table with the disc id as a column, and a registry (Списки) of the ids that have a
// list, so that "a list named id" behaves as a table of its own: it is created, it may
// clash with an existing one, it is dropped with its rows.
enum class ContentsKind { Files, Tracks };

struct ContentsDescriptor
{
    ContentsKind kind;
    QString rowsTable;          // "Файлы" or "Треки"
    QStringList fields;         // the list's own fields, in order
    QStringList searchedFields; // the fields the global search compares, indexed for it
};

const ContentsDescriptor& contentsDescriptor(ContentsKind kind);

class ContentsLists
{
public:
    ContentsLists(const Db& db, ContentsKind kind);

    // Makes the empty tables of a new contents database (registry and rows).
    static void createStorage(const Db& db, ContentsKind kind);

    bool exists(const QString& id) const;
    // Registers an empty list; AppError 3010 when a list of that id exists already.
    void create(const QString& id) const;
    // Removes the list with its rows; AppError 3265 when there is none.
    void drop(const QString& id) const;
    QStringList ids() const;
    int rowCount(const QString& id) const;

private:
    const Db& m_db;
    const ContentsDescriptor& m_descriptor;
};

} // namespace vinora
