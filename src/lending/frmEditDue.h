#pragma once

#include "lending/BorrowerNames.h"

#include <QDialog>
#include <optional>

class QPushButton;
class QTableWidget;

namespace vinora {

class AppContext;
class PhoneBox;

// The borrowers: add, rename, phone, delete (refused while a disc is out with one; the
// record of his loans goes with him).
class frmEditDue : public QDialog
{
    Q_OBJECT
public:
    explicit frmEditDue(AppContext& ctx, QWidget* parent = nullptr);

    void cmdAddName();
    void cmdChangeName();
    void cmdMakeChange();
    void cmdDelete();
    // The borrower of the current row, if any.
    std::optional<Borrower> current() const;

private:
    void load(qint64 standOn);
    void reposition();
    // A name typed in the box of `title`: not empty, at most 50 characters and not used by
    // another borrower; nothing when the user gives up.
    std::optional<QString> askName(const QString& title, const QString& prompt, const QString& initial);

    AppContext& m_ctx;
    QList<Borrower> m_borrowers;
    QTableWidget* m_grid = nullptr;
    PhoneBox* m_txtTelephone = nullptr;
    QPushButton* m_cmdMakeChange = nullptr;
    QPushButton* m_buttons[4] = {};
};

} // namespace vinora
