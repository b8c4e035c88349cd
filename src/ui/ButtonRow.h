#pragma once

#include <QList>
#include <QStringList>

class QBoxLayout;
class QPushButton;
class QWidget;

namespace vinora {

// The command buttons of a window: button i has the caption captions[i] and the name
// "imgButton<i>", and none is a default button, so Enter stays with the field that has the
// focus. They are made and put in `row` in the order of `order` (each index once), which is
// also their Tab order. Returns them by index.
QList<QPushButton*> addButtonRow(QBoxLayout* row, QWidget* parent, const QStringList& captions,
                                 const QList<int>& order);

} // namespace vinora
