#pragma once

#include "store/Category.h"
#include "store/ContentsLists.h"

#include <QDialog>
#include <functional>

class QCheckBox;
class QComboBox;
class QLabel;
class QListWidget;
class QPushButton;
class QRadioButton;
class QTabWidget;
class QTreeWidget;

namespace vinora {

class AppContext;

// "Экспорт в HTML": the catalogue page, the file and track lists, the debtor list, one tab
// each; OK writes the page of the tab on view. In external mode only the catalogue tab can be
// chosen: the other file holds no lists and no loans.
class frmExport : public QDialog
{
    Q_OBJECT
public:
    explicit frmExport(AppContext& ctx, QWidget* parent = nullptr);

    void cmdOK_Click();
    void optCategory_Click();
    void optList_Click();

private:
    QWidget* buildCatalogueTab();
    QWidget* buildListTab();
    QWidget* buildDueTab();
    void exportCatalogue();
    void exportLists();
    void exportDebtors();
    // Runs one export under the hourglass; its failures are told and the window stays.
    bool runExport(const QString& routine, const std::function<void()>& work);
    Category category() const;
    ContentsKind listKind() const;

    AppContext& m_ctx;
    QTabWidget* m_tabs;
    QRadioButton* m_optCategory[3];
    QListWidget* m_lvFields;
    QLabel* m_lblQuery;
    QComboBox* m_cmbQuery;
    QRadioButton* m_optList[2];
    QTreeWidget* m_lvFieldsListNumber;
    QListWidget* m_lvFieldsList;
    QCheckBox* m_chExportFile;
    QRadioButton* m_optDue[2];
    QListWidget* m_lvFieldsDue;
    QCheckBox* m_chSorted;
    QPushButton* m_cmdSelect[8];
};

} // namespace vinora
