#pragma once

#include "catalogue/CatalogueQuery.h"

#include <QAbstractTableModel>
#include <QHash>
#include <QStringList>

namespace vinora {

class Db;

// The rows of a catalogue as the browser shows them, held in memory (a collection of
// 20,000 discs takes a few megabytes), and the grid's two columns: number and name.
class CatalogueRows : public QAbstractTableModel
{
    Q_OBJECT
public:
    explicit CatalogueRows(const CatalogueKind& kind, QObject* parent = nullptr);

    void load(const Db& db, const BuiltQuery& query);

    int size() const { return static_cast<int>(m_rows.size()); }
    QVariant value(int row, const QString& field) const;
    qint64 key(int row) const { return value(row, m_kind.info().keyField).toLongLong(); }
    int number(int row) const { return value(row, QStringLiteral("Номер")).toInt(); }

    // The first row of `number`, or -1.
    int rowOfNumber(int number) const;
    // Type-ahead: the row to go to when `key` is typed on row `current`. The same key as
    // the last one walks on to the next name beginning with it, wrapping to the first;
    // another key goes to the first such name. -1 when no name begins with it.
    int typeAhead(int current, QChar key, bool sameAsLast) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    bool beginsWith(int row, QChar key) const;

    const CatalogueKind& m_kind;
    QHash<QString, int> m_columns;
    QList<QVariantList> m_rows;
};

} // namespace vinora
