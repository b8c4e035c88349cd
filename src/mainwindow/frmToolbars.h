#pragma once

#include <QDialog>
#include <functional>

class QCheckBox;

namespace vinora {

// "Панели инструментов": shows or hides each tool bar of the main window at once, and puts
// them back where they were designed to stand.
class frmToolbars : public QDialog
{
    Q_OBJECT
public:
    struct Bar
    {
        QString title;
        std::function<bool()> shown;
        std::function<void(bool)> show;
    };

    frmToolbars(QList<Bar> bars, std::function<void()> resetLayout, QWidget* parent = nullptr);

    // Ticks the boxes as the tool bars stand now.
    void refresh();
    QCheckBox* box(const QString& title) const;

private:
    QList<Bar> m_bars;
    QList<QCheckBox*> m_boxes;
};

} // namespace vinora
