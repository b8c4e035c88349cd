#pragma once

#include "recognition/DiscIdentity.h"

#include <QDialog>

class QLabel;
class QRadioButton;

namespace vinora {

class AppContext;

// The question put for a disc whose category cannot be told from the disc itself.
class frmSelectCategory : public QDialog
{
    Q_OBJECT
public:
    explicit frmSelectCategory(QWidget* parent = nullptr);

    // "AD", "PC" or "DVD" as chosen.
    QString category() const;
    void choose(const QString& category);
    // Puts another question in place of the one about an unknown disc.
    void ask(const QString& question);

    // A chooser that shows this dialog through the context's prompter.
    static CategoryChooser chooser(AppContext& ctx, QWidget* parent = nullptr);

private:
    QLabel* m_lblTrabl;
    QLabel* m_lblInfo;
    QRadioButton* m_optAD;
    QRadioButton* m_optPC;
    QRadioButton* m_optDVD;
};

} // namespace vinora
