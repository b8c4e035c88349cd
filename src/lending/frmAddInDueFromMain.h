#pragma once

#include "lending/DiscPicker.h"
#include "lending/LoanLedger.h"

#include <QDialog>

class QLineEdit;
class QPushButton;
class QRadioButton;

namespace vinora {

class AppContext;

// "Управление должниками": lends a disc named by its number (ending in "Добавление
// должника") or takes one back, without opening its catalogue.
class frmAddInDueFromMain : public QDialog
{
    Q_OBJECT
public:
    // `category` is the code of the catalogue chosen at the start ("AD", "PC", "DVD"); an
    // empty text leaves the audio discs chosen.
    frmAddInDueFromMain(AppContext& ctx, DiscPicker picker, const QString& category = QString(),
                        QWidget* parent = nullptr);

    void cmdOK_Click();
    void cmdPickDisc();
    // True once a disc has been lent or taken back here, so the caller refreshes its lists.
    bool changed() const { return m_changed; }

private:
    Category category() const;
    bool adding() const;
    void refuse(const QString& message);
    void lend(const LoanDisc& disc, const QString& number);
    void takeBack(const LoanDisc& disc, const QString& number);
    // Closes the newest loan of the disc and gives its borrower's name.
    QString getDueName(const LoanDisc& disc);

    AppContext& m_ctx;
    DiscPicker m_picker;
    bool m_changed = false;
    QRadioButton* m_optMethod[2] = {};
    QRadioButton* m_optCategory[3] = {};
    QLineEdit* m_txtNumber = nullptr;
    QPushButton* m_buttons[3] = {};
};

} // namespace vinora
