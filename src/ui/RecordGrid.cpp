#include "ui/RecordGrid.h"

#include <QHeaderView>
#include <QKeyEvent>
#include <QTableWidget>

namespace vinora {
namespace {

class HomeEndRows : public QObject
{
public:
    explicit HomeEndRows(QTableWidget* grid) : QObject(grid), m_grid(grid) {}

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::KeyPress && m_grid->rowCount() > 0) {
            const int key = static_cast<QKeyEvent*>(event)->key();
            if (key == Qt::Key_Home || key == Qt::Key_End) {
                m_grid->setCurrentCell(key == Qt::Key_Home ? 0 : m_grid->rowCount() - 1, 0);
                return true;
            }
        }
        return QObject::eventFilter(watched, event);
    }

private:
    QTableWidget* m_grid;
};

} // namespace

QTableWidget* recordGrid(const QStringList& headers, QWidget* parent)
{
    auto* grid = new QTableWidget(0, static_cast<int>(headers.size()), parent);
    grid->setObjectName(QStringLiteral("DBGrid"));
    grid->setHorizontalHeaderLabels(headers);
    grid->setEditTriggers(QAbstractItemView::NoEditTriggers);
    grid->setSelectionBehavior(QAbstractItemView::SelectRows);
    grid->setSelectionMode(QAbstractItemView::SingleSelection);
    grid->horizontalHeader()->setSectionResizeMode(0, QHeaderView::Stretch);
    grid->verticalHeader()->hide();
    grid->installEventFilter(new HomeEndRows(grid));
    return grid;
}

} // namespace vinora
