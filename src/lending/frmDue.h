#pragma once

#include "lending/DiscPicker.h"
#include "lending/DueList.h"
#include "ui/BlinkTimer.h"

#include <QDialog>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QTableWidget;

namespace vinora {

class AppContext;
class PhoneBox;

// "Список должников": the discs out on loan, sorted three ways, filtered by catalogue or
// borrower, with the days overdue of the selected one; return, change of term, phone, a
// disc found by its number, and the way to lending and to the statistics.
class frmDue : public QDialog
{
    Q_OBJECT
public:
    frmDue(AppContext& ctx, DiscPicker picker, QWidget* parent = nullptr);

    void cmbSorted_Click();
    void cmbCategory_Click(int index);
    void txtDueName_Click(const QString& name);
    void ClearDueQuery();
    void cmdDelete();
    void cmdChange();
    void cmdMakeChange_Click();
    void cmdLend();
    void ShowBorrowerStat();
    void txtNumber_Enter();
    void timerDue_Timer();
    void DBGrid_DblClick();
    // The loan of the current row, if any.
    std::optional<OpenLoan> current() const;
    bool changed() const { return m_changed; } // the ledger changed: the caller refreshes

protected:
    void done(int result) override;

private:
    void Form_Load();
    void runQuery(qint64 standOnLoan);
    void dcDatabase_Reposition();
    void showMark(bool mark, const QString& days);
    void setFilterTitle(bool filtered);
    bool goToLoan(Category category, qint64 discKey);
    QPushButton* button(int index) const { return m_buttons[index]; }

    AppContext& m_ctx;
    DiscPicker m_picker;
    DueFilter m_filter;
    QList<OpenLoan> m_loans;
    bool m_changed = false;
    QLabel* m_lblCDsCount0 = nullptr;
    QLabel* m_lblCDsCount1 = nullptr;
    QLabel* m_lblSorted = nullptr;
    QComboBox* m_cmbSorted = nullptr;
    QCheckBox* m_chSortedDESC = nullptr;
    QTableWidget* m_grid = nullptr;
    QWidget* m_details = nullptr; // the controls that need a row
    QLineEdit* m_txtNumber = nullptr;
    QLabel* m_lblDescriptionCD = nullptr;
    QLineEdit* m_txtName = nullptr;
    QComboBox* m_cmbCategory = nullptr;
    QLineEdit* m_txtDaysDue = nullptr;
    QComboBox* m_txtDueName = nullptr;
    PhoneBox* m_txtTelephone = nullptr;
    QLabel* m_imgDue = nullptr;
    QLabel* m_lblDue = nullptr;
    BlinkTimer m_timerDue;
    QPushButton* m_buttons[6] = {};
};

} // namespace vinora
