#pragma once

#include <QString>

class QComboBox;
class QFormLayout;
class QLineEdit;
class QPushButton;
class QWidget;

namespace vinora {

// Controls the file list and track list windows build alike.

// "cmbCountCD": one item a disc of a set of `discs` (1 to 6), open to a choice only for a set.
QComboBox* discChooser(int discs, QWidget* parent);

// Makes the k-th disc (1..) the chosen one; false when there is no such disc or it is chosen
// already, so nothing changed.
bool chooseDisc(QComboBox* chooser, int k);

// A field of at most `maxLength` characters with its "Внести изменения" button beside it, as
// the row `caption` of `form`.
struct EditRow
{
    QLineEdit* field;
    QPushButton* save;
};
EditRow addEditRow(QFormLayout* form, QWidget* parent, const QString& caption, const QString& fieldName,
                   const QString& buttonName, int maxLength);

} // namespace vinora
