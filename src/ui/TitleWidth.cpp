#include "ui/TitleWidth.h"

#include <QEvent>
#include <QFontMetrics>
#include <QLayout>
#include <QSpacerItem>
#include <QWidget>

namespace vinora {
namespace {

// A spacer in the dialog's layout as wide as the title needs: the layout, not a fixed
// minimum, so that the dialog's contents still count towards its smallest size.
class TitleWidth : public QObject
{
public:
    TitleWidth(QWidget* dialog, QSpacerItem* spacer) : QObject(dialog), m_dialog(dialog), m_spacer(spacer)
    {
        update();
    }

    void update()
    {
        QFont font = m_dialog->font();
        font.setBold(true); // title bars mostly draw their text bold
        const QFontMetrics metrics(font);
        // The icon and the three window buttons take about eight lines' height of width.
        const int width = metrics.horizontalAdvance(m_dialog->windowTitle()) + 8 * metrics.height();
        m_spacer->changeSize(width, 0, QSizePolicy::Minimum, QSizePolicy::Fixed);
        m_dialog->layout()->invalidate();
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (watched == m_dialog && event->type() == QEvent::WindowTitleChange) {
            update();
        }
        return QObject::eventFilter(watched, event);
    }

private:
    QWidget* m_dialog;
    QSpacerItem* m_spacer;
};

} // namespace

void keepTitleVisible(QWidget* dialog)
{
    static const char* const kept = "vinoraTitleKept";
    if (dialog->layout() == nullptr || dialog->property(kept).toBool()) {
        return;
    }
    dialog->setProperty(kept, true);
    auto* spacer = new QSpacerItem(0, 0, QSizePolicy::Minimum, QSizePolicy::Fixed);
    dialog->layout()->addItem(spacer);
    dialog->installEventFilter(new TitleWidth(dialog, spacer));
}

} // namespace vinora
