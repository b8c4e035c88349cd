#pragma once

#include "catalogue/CatalogueKind.h"

#include <QDialog>

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QTableView;

namespace vinora {

class AppContext;
class CatalogueGrid;
class CatalogueRows;

// The disc picker: one disc of one catalogue and its place in the set. The mode comes in
// ctx.CatalogueQueryFilter ("fullAD", "addPC", "delDVD": all discs, those that can be
// lent, those on loan); the choice goes back in ctx.PickedDisc as "12:2", empty when
// cancelled.
class frmSelectCD : public QDialog
{
    Q_OBJECT
public:
    explicit frmSelectCD(AppContext& ctx, QWidget* parent = nullptr);

    void cmdOK();
    void cmdList();
    int rowCount() const;

protected:
    void done(int result) override;

private:
    void load();
    void reposition();

    AppContext& m_ctx;
    QString m_prefix; // "full", "add", "del"
    const CatalogueKind* m_kind = nullptr;
    CatalogueRows* m_rows = nullptr;
    int m_row = -1;
    CatalogueGrid* m_grid;
    QLineEdit* m_txtName;
    QLineEdit* m_txtNumber;
    QComboBox* m_cmbCountCD;
    QLabel* m_lblCDsCount1;
    QPushButton* m_ok;
    QPushButton* m_list;
};

} // namespace vinora
