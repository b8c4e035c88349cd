#include "ui/ButtonRow.h"

#include <QBoxLayout>
#include <QPushButton>

namespace vinora {

QList<QPushButton*> addButtonRow(QBoxLayout* row, QWidget* parent, const QStringList& captions,
                                 const QList<int>& order)
{
    QList<QPushButton*> buttons(captions.size(), nullptr);
    for (const int i : order) {
        auto* button = new QPushButton(captions[i], parent);
        button->setObjectName(QStringLiteral("imgButton%1").arg(i));
        button->setAutoDefault(false);
        row->addWidget(button);
        buttons[i] = button;
    }
    return buttons;
}

} // namespace vinora
