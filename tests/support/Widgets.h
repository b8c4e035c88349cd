#pragma once

#include <QComboBox>
#include <QHeaderView>
#include <QString>
#include <QStringList>
#include <QWidget>

namespace vinora::test {

// The control `name` of a window; a name that is not there ends the run, as a misspelt one should.
template <typename T = QWidget> T* child(const QObject& parent, const QString& name)
{
    T* found = parent.findChild<T*>(name);
    if (found == nullptr) {
        qFatal("no control %s", qPrintable(name));
    }
    return found;
}
template <typename T = QWidget> T* child(const QObject& parent, const char* name)
{
    return child<T>(parent, QString::fromUtf8(name));
}

// A mouse click on a control, on the box of a check box (a click beside its text misses it).
void click(const QObject& parent, const QString& name);
// Types the text key by key, Cyrillic included.
void typeText(QWidget* widget, const QString& text);
// A click in the middle of a column's header.
void clickHeader(QHeaderView* header, int column);
QStringList items(const QComboBox* box);

} // namespace vinora::test
