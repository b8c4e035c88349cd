#include "catalogue/CatalogueRows.h"

#include "store/Db.h"

#include <QSqlRecord>

namespace vinora {

CatalogueRows::CatalogueRows(const CatalogueKind& kind, QObject* parent)
    : QAbstractTableModel(parent), m_kind(kind)
{
}

void CatalogueRows::load(const Db& db, const BuiltQuery& query)
{
    beginResetModel();
    m_rows.clear();
    m_columns.clear();
    RowReader result(db, query.sql, query.values);
    const int columns = result.columnCount();
    for (int i = 0; i < columns; ++i) {
        m_columns.insert(result.columnName(i), i);
    }
    while (result.next()) {
        QVariantList row;
        row.reserve(columns);
        for (int i = 0; i < columns; ++i) {
            row.append(result.value(i));
        }
        m_rows.append(std::move(row));
    }
    endResetModel();
}

QVariant CatalogueRows::value(int row, const QString& field) const
{
    const auto column = m_columns.constFind(field);
    if (row < 0 || row >= m_rows.size() || column == m_columns.constEnd()) {
        return {};
    }
    return m_rows[row][*column];
}

int CatalogueRows::rowOfNumber(int wanted) const
{
    for (int row = 0; row < size(); ++row) {
        if (number(row) == wanted) {
            return row;
        }
    }
    return -1;
}

bool CatalogueRows::beginsWith(int row, QChar key) const
{
    return value(row, QStringLiteral("Название")).toString().startsWith(key, Qt::CaseInsensitive);
}

int CatalogueRows::typeAhead(int current, QChar key, bool sameAsLast) const
{
    if (sameAsLast) {
        for (int row = current + 1; row < size(); ++row) {
            if (beginsWith(row, key)) {
                return row;
            }
        }
    }
    for (int row = 0; row < size(); ++row) {
        if (beginsWith(row, key)) {
            return row;
        }
    }
    return -1;
}

int CatalogueRows::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : size();
}

int CatalogueRows::columnCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : 2;
}

QVariant CatalogueRows::data(const QModelIndex& index, int role) const
{
    if (role != Qt::DisplayRole || !index.isValid()) {
        return {};
    }
    return index.column() == 0 ? value(index.row(), QStringLiteral("Номер"))
                               : value(index.row(), QStringLiteral("Название"));
}

QVariant CatalogueRows::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole || orientation != Qt::Horizontal) {
        return {};
    }
    return section == 0 ? QStringLiteral("Номер") : m_kind.nameCaption;
}

} // namespace vinora
