#pragma once

#include "lending/BorrowerNames.h"
#include "lending/BorrowerRating.h"
#include "ui/TextColumnSort.h"

#include <QDialog>
#include <memory>
#include <optional>

class QCheckBox;
class QLabel;
class QProgressBar;
class QRadioButton;
class QStackedLayout;
class QTableWidget;
class QTreeWidget;

namespace vinora {

class AppContext;

// "Статистика должников": the loans of one borrower at a time, how late each came back,
// and his rating, over all his loans or over one category, or only the discs still out.
class frmDueStat : public QDialog
{
    Q_OBJECT
public:
    // Opens on the borrower of that name (letter case aside) when there is one, else on
    // the first borrower.
    explicit frmDueStat(AppContext& ctx, const QString& borrower = QString(), QWidget* parent = nullptr);

    // Moves the grid to the borrower of that name; false when there is none.
    bool standOn(const QString& name);
    // The record of the borrower of the current row, by the filters set.
    void CheckDue();
    void lvRating_DblClick();
    std::optional<Borrower> current() const;


private:
    void load();
    void reposition();
    // No loan to show: the text over the list, "-" in every figure.
    void showNoDue();
    RatingFilter filter() const;

    AppContext& m_ctx;
    QList<Borrower> m_borrowers;
    std::unique_ptr<TextColumnSort> m_sort; // no column clicked yet: the ledger's order
    QTableWidget* m_grid = nullptr;
    QCheckBox* m_chDue = nullptr;
    QRadioButton* m_optSorted[4] = {};
    QTreeWidget* m_lvRating = nullptr;
    QLabel* m_txtNoDue = nullptr;
    QStackedLayout* m_ratingStack = nullptr; // the list, or the text over it
    QLabel* m_lblRating = nullptr;
    QLabel* m_lblTotalDays = nullptr;
    QLabel* m_lblDueCount = nullptr;
    QProgressBar* m_prbRating = nullptr;
    QList<QWidget*> m_myGroup; // usable only when there are borrowers
};

} // namespace vinora
