#include "catalogue/CatalogueGrid.h"

#include "catalogue/CatalogueRows.h"

#include <QHeaderView>
#include <QKeyEvent>

namespace vinora {

CatalogueGrid::CatalogueGrid(CatalogueRows* rows, QWidget* parent) : QTableView(parent), m_rows(rows)
{
    setObjectName(QStringLiteral("DBGrid"));
    setModel(rows);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    verticalHeader()->hide();
    verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 8);
    horizontalHeader()->setStretchLastSection(true);
    horizontalHeader()->resizeSection(0, fontMetrics().horizontalAdvance(QStringLiteral("Номер 00000")));
    connect(selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            [this](const QModelIndex& current) { emit rowChanged(current.isValid() ? current.row() : -1); });
}

void CatalogueGrid::selectRow(int row)
{
    if (row < 0 || row >= m_rows->size()) {
        emit rowChanged(-1);
        return;
    }
    if (currentIndex().row() == row) {
        emit rowChanged(row);
        return;
    }
    const QModelIndex index = m_rows->index(row, 0);
    setCurrentIndex(index);
    scrollTo(index);
}

void CatalogueGrid::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Home || event->key() == Qt::Key_End) {
        selectRow(event->key() == Qt::Key_Home ? 0 : m_rows->size() - 1);
        return;
    }
    const QString text = event->text();
    if (text.size() == 1 && text[0].isLetterOrNumber()) {
        const QChar key = text[0];
        const int row =
            m_rows->typeAhead(currentIndex().row(), key, key.toUpper() == m_lastTypeAhead.toUpper());
        if (row >= 0) {
            selectRow(row);
        }
        m_lastTypeAhead = key;
        return;
    }
    QTableView::keyPressEvent(event);
}

} // namespace vinora
