#pragma once

#include "lending/DiscPicker.h"
#include "ui/TextColumnSort.h"

#include <QDialog>
#include <memory>

class QLabel;
class QLineEdit;
class QRadioButton;
class QStackedLayout;
class QTreeWidget;

namespace vinora {

class AppContext;

// "История дисков": who had a disc, chosen by catalogue and number, and when.
class frmDiskHistory : public QDialog
{
    Q_OBJECT
public:
    frmDiskHistory(AppContext& ctx, DiscPicker picker, QWidget* parent = nullptr);

    void cmdShow();
    void cmdPickDisc();

private:
    Category category() const;
    void refuse(const QString& message);

    AppContext& m_ctx;
    DiscPicker m_picker;
    QRadioButton* m_optCategory[3] = {};
    QLineEdit* m_txtNumber = nullptr;
    QLabel* m_lblHistory = nullptr;
    QTreeWidget* m_lvHistory = nullptr;
    QLabel* m_txtNoHistory = nullptr;
    std::unique_ptr<TextColumnSort> m_sort;
    QStackedLayout* m_historyStack = nullptr; // the list, or the text that there is none
};

} // namespace vinora
