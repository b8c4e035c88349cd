#include "support/Widgets.h"

#include <QCheckBox>
#include <QTest>

namespace vinora::test {

void click(const QObject& parent, const QString& name)
{
    QWidget* widget = child(parent, name);
    const bool checkBox = qobject_cast<QCheckBox*>(widget) != nullptr;
    QTest::mouseClick(widget, Qt::LeftButton, {}, checkBox ? QPoint(6, widget->height() / 2) : QPoint());
}

void typeText(QWidget* widget, const QString& text)
{
    for (const QChar ch : text) {
        QTest::sendKeyEvent(QTest::Press, widget, Qt::Key_unknown, QString(ch), Qt::NoModifier);
        QTest::sendKeyEvent(QTest::Release, widget, Qt::Key_unknown, QString(ch), Qt::NoModifier);
    }
}

void clickHeader(QHeaderView* header, int column)
{
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {},
                      QPoint(header->sectionViewportPosition(column) + header->sectionSize(column) / 2,
                             header->height() / 2));
}

QStringList items(const QComboBox* box)
{
    QStringList texts;
    for (int i = 0; i < box->count(); ++i) {
        texts.append(box->itemText(i));
    }
    return texts;
}

} // namespace vinora::test
