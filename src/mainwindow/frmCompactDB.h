#pragma once

#include <QWidget>

namespace vinora {

// The small window that stands while the databases are compacted at exit.
class frmCompactDB : public QWidget
{
    Q_OBJECT
public:
    explicit frmCompactDB(QWidget* parent = nullptr);
    // Shows the window and paints it before the work starts.
    void showAndPaint();
};

} // namespace vinora
