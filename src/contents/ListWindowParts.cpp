#include "contents/ListWindowParts.h"

#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QPushButton>
#include <algorithm>

namespace vinora {

QComboBox* discChooser(int discs, QWidget* parent)
{
    auto* chooser = new QComboBox(parent);
    chooser->setObjectName(QStringLiteral("cmbCountCD"));
    for (int k = 1; k <= std::clamp(discs, 1, 6); ++k) {
        chooser->addItem(QString::number(k));
    }
    chooser->setEnabled(discs > 1);
    return chooser;
}

bool chooseDisc(QComboBox* chooser, int k)
{
    if (k < 1 || k > chooser->count() || k == chooser->currentIndex() + 1) {
        return false;
    }
    chooser->setCurrentIndex(k - 1);
    return true;
}

EditRow addEditRow(QFormLayout* form, QWidget* parent, const QString& caption, const QString& fieldName,
                   const QString& buttonName, int maxLength)
{
    auto* field = new QLineEdit(parent);
    field->setObjectName(fieldName);
    field->setMaxLength(maxLength);
    auto* save = new QPushButton(QStringLiteral("Внести изменения"), parent);
    save->setObjectName(buttonName);
    save->setAutoDefault(false);
    auto* row = new QHBoxLayout;
    row->addWidget(field, 1);
    row->addWidget(save);
    form->addRow(caption, row);
    return {field, save};
}

} // namespace vinora
