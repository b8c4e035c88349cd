#pragma once

#include <QHash>
#include <QStringView>
#include <Qt>
#include <functional>

class QTreeWidget;

namespace vinora {

// The column sort of a list view: a click on the column it is sorted by turns the order,
// a click on another column sorts by that one ascending. Texts compare as the catalogue
// compares them (numbers too), and rows that compare equal keep the order they came in.
// The header clicks are connected here; the owner calls apply() after refilling the list.
class TextColumnSort
{
public:
    // `key` -1: the list keeps the order it is filled in until a column is clicked.
    explicit TextColumnSort(QTreeWidget* list, int key = -1);

    // A column whose texts are not ordered as words (numbers with a suffix, say) gets an
    // order of its own: negative, zero or positive as for compareText.
    using Compare = std::function<int(QStringView, QStringView)>;
    void setCompare(int column, Compare compare);

    void click(int column);
    void apply();
    int key() const { return m_key; }
    Qt::SortOrder order() const { return m_order; }

private:
    QTreeWidget* m_list;
    int m_key;
    Qt::SortOrder m_order = Qt::AscendingOrder;
    QHash<int, Compare> m_compares;
};

} // namespace vinora
