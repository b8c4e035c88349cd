#pragma once

#include <QDialog>

class QCheckBox;
class QRadioButton;

namespace vinora {

class AppContext;

// "Реанимация Базы данных": the databases built anew, or the links between the catalogue rows
// and the lists of their discs repaired, or the lists built anew.
class frmReanimation : public QDialog
{
    Q_OBJECT
public:
    explicit frmReanimation(AppContext& ctx, QWidget* parent = nullptr);

    // The start button.
    void cmdStart();
    void optReanimation_Click(int index);
    // True after the databases were built anew: the maintenance wizard closes too.
    bool returnToMain() const { return m_returnToMain; }

private:
    void repair(int kind);
    void recreate(int kind, const QString& question);
    int option() const;

    AppContext& m_ctx;
    QList<QRadioButton*> m_options;
    QCheckBox* m_chReCreate;
    bool m_returnToMain = false;
};

} // namespace vinora
