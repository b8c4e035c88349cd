#pragma once

#include <QTableView>

namespace vinora {

class CatalogueRows;

// The grid of a catalogue's rows (number and name) as the browser and the picker show it:
// Home and End go to the first and last row, and a typed letter or digit goes to the next
// name beginning with it (again and again, wrapping round).
class CatalogueGrid : public QTableView
{
    Q_OBJECT
public:
    CatalogueGrid(CatalogueRows* rows, QWidget* parent);

    // Makes `row` the current one (-1 or out of range: none); rowChanged follows always.
    void selectRow(int row);

signals:
    void rowChanged(int row);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    CatalogueRows* m_rows;
    QChar m_lastTypeAhead = u' ';
};

} // namespace vinora
