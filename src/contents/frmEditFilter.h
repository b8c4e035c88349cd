#pragma once

#include "contents/FileFilter.h"

#include <QDialog>

class QLabel;
class QPushButton;
class QRadioButton;
class QTreeWidget;
class QTreeWidgetItem;

namespace vinora {

class AppContext;

// "Фильтр файлов": the entries of the two name filters, each ticked while in force; a tick
// is stored the moment it is made.
class frmEditFilter : public QDialog
{
    Q_OBJECT
public:
    explicit frmEditFilter(AppContext& ctx, QWidget* parent = nullptr);

    void chooseTable(FilterTable table);
    void cmdAddFile();
    void cmdDelete();
    void cmdChangeFile();
    void setAllTicks(bool ticked);
    QStringList entries() const; // "text" or "[x] text" for ticked ones
    QString selectedEntry() const;

private:
    void optFilter_Click();
    void itemChanged(QTreeWidgetItem* item);
    void selectEntry(const QString& text);
    std::optional<QString> askEntry(const QString& title, const QString& prompt, const QString& initial);
    bool exists(const QString& entry) const;
    QString table() const;

    AppContext& m_ctx;
    bool m_loading = false;
    QRadioButton* m_optFilter[2];
    QLabel* m_lblInfo;
    QTreeWidget* m_lvFilter;
    QList<QPushButton*> m_itemCommands;
};

} // namespace vinora
