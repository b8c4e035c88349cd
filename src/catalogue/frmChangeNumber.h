#pragma once

#include <QDialog>

class QLineEdit;
class QRadioButton;

namespace vinora {

class AppContext;

// "Изменение номера диска": gives a disc a free number, or exchanges the numbers of two.
class frmChangeNumber : public QDialog
{
    Q_OBJECT
public:
    explicit frmChangeNumber(AppContext& ctx, QWidget* parent = nullptr);

    void cmdOK();

private:
    AppContext& m_ctx;
    QRadioButton* m_optCategory[3];
    QLineEdit* m_txtNumberOld;
    QLineEdit* m_txtNumberNew;
};

} // namespace vinora
