#pragma once

#include <QStringList>

class QTableWidget;
class QWidget;

namespace vinora {

// A read-only grid of records with one row selected at a time, the first column taking the
// spare width; Home and End go to the first and the last row.
QTableWidget* recordGrid(const QStringList& headers, QWidget* parent);

} // namespace vinora
