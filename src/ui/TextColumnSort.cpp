#include "ui/TextColumnSort.h"

#include "frame/TextRules.h"

#include <QHeaderView>
#include <QTreeWidget>
#include <algorithm>

namespace vinora {

TextColumnSort::TextColumnSort(QTreeWidget* list, int key) : m_list(list), m_key(key)
{
    // The view itself never sorts: its own order is not the catalogue's.
    m_list->setSortingEnabled(false);
    m_list->header()->setSectionsClickable(true);
    m_list->header()->setSortIndicatorShown(m_key >= 0);
    if (m_key >= 0) {
        m_list->header()->setSortIndicator(m_key, m_order);
    }
    QObject::connect(m_list->header(), &QHeaderView::sectionClicked, m_list, [this](int column) { click(column); });
}

void TextColumnSort::setCompare(int column, Compare compare)
{
    m_compares.insert(column, std::move(compare));
}

void TextColumnSort::click(int column)
{
    if (column == m_key) {
        m_order = m_order == Qt::AscendingOrder ? Qt::DescendingOrder : Qt::AscendingOrder;
    } else {
        m_key = column;
        m_order = Qt::AscendingOrder;
    }
    QTreeWidgetItem* current = m_list->currentItem();
    apply();
    if (current != nullptr) {
        m_list->setCurrentItem(current);
    }
}

void TextColumnSort::apply()
{
    if (m_key < 0) {
        return;
    }
    QList<QTreeWidgetItem*> items;
    while (m_list->topLevelItemCount() > 0) {
        items.append(m_list->takeTopLevelItem(0));
    }
    const int column = m_key;
    const bool descending = m_order == Qt::DescendingOrder;
    const Compare compare =
        m_compares.value(column, [](QStringView a, QStringView b) { return compareText(a, b); });
    std::stable_sort(items.begin(), items.end(), [&](QTreeWidgetItem* a, QTreeWidgetItem* b) {
        const int order = compare(a->text(column), b->text(column));
        return descending ? order > 0 : order < 0;
    });
    m_list->addTopLevelItems(items);
    m_list->header()->setSortIndicatorShown(true);
    m_list->header()->setSortIndicator(m_key, m_order);
}

} // namespace vinora
