#pragma once

#include <QWidget>

namespace vinora {

// The window that stands while the program starts.
class frmSplashMain : public QWidget
{
    Q_OBJECT
public:
    explicit frmSplashMain(QWidget* parent = nullptr);
    // "vinora 1.0 build 1", a line break and the two credit lines.
    static QString labelText();
    void showAndPaint();
};

} // namespace vinora
