#pragma once

#include "lending/LoanLedger.h"

#include <QDialog>
#include <optional>

class QCheckBox;
class QComboBox;
class QDateEdit;
class QLabel;
class QLineEdit;

namespace vinora {

class AppContext;

// "Добавление должника": lends a disc to a borrower (named or picked from the known names,
// with a warning for a borrower who brings discs back late), or, for a disc already out,
// changes the day it is promised back.
class frmAddInDue : public QDialog
{
    Q_OBJECT
public:
    // Lending `disc`.
    frmAddInDue(AppContext& ctx, const LoanDisc& disc, QWidget* parent = nullptr);
    // Changing the term of the open loan of `disc` to `borrower`, now due on `due`.
    frmAddInDue(AppContext& ctx, const LoanDisc& disc, const QString& borrower, std::optional<QDate> due,
                QWidget* parent = nullptr);

    void cmdAdd();
    // The rating warning for the name in the box.
    void CheckDue();

private:
    void build();
    void completeName(const QString& typed);

    AppContext& m_ctx;
    LoanDisc m_disc;
    bool m_changeOfTerm = false;
    QStringList m_names; // every borrower, in the order of the table
    bool m_erasing = false; // the last key took text away: no completion
    QLabel* m_lblDescription = nullptr;
    QLabel* m_lblNumber = nullptr;
    QLineEdit* m_txtName = nullptr;
    QLineEdit* m_txtCategory = nullptr;
    QComboBox* m_txtFIO = nullptr;
    QLabel* m_lblDoNewBackDate = nullptr;
    QLabel* m_lblDueDay = nullptr;
    QDateEdit* m_dtpBackDate = nullptr;
    QCheckBox* m_chDueNonStop = nullptr;
    QLabel* m_lblRating[3] = {};
};

} // namespace vinora
