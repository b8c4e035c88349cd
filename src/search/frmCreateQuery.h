#pragma once

#include "search/QueryFragments.h"

#include <QDialog>
#include <array>

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;

namespace vinora {

class AppContext;

// The editor of a query shortcut: its name, the catalogue it opens and up to three
// conditions, each a field, an operator and a value typed or picked from the catalogue's
// dictionary. Saving writes the shortcut to query.ini; the window closes only when it did.
class frmCreateQuery : public QDialog
{
    Q_OBJECT
public:
    // A new shortcut: the next free default name, the audio catalogue, no condition.
    explicit frmCreateQuery(AppContext& ctx, QWidget* parent = nullptr);

    // Fills the window from the stored shortcut `name`, whose entry a save then replaces.
    // False when the file has no such shortcut.
    bool editShortcut(const QString& name);

    void cmdSave_Click();

    // --- what tests and callers look at -----------------------------------------------
    QueryShortcut shortcut() const; // as the window holds it
    bool editing() const { return !m_editedName.isEmpty(); }
    const QString& savedName() const { return m_savedName; }

private:
    struct Row
    {
        QLabel* lblQuery = nullptr;
        QComboBox* cmbQ1 = nullptr;    // field
        QComboBox* cmbQ2 = nullptr;    // operator
        QLineEdit* txtQuery = nullptr; // a value typed
        QComboBox* cmbQuery = nullptr; // a value of the dictionary
    };

    Category category() const;
    void setCategory(Category category);
    void optCategory_Click();
    void cmbQ1_Click(int row);
    void setRow(int row, const QueryCondition& condition);
    void showMark(int row);
    QueryCondition condition(int row) const;
    bool isDictionaryField(const QString& field) const;

    AppContext& m_ctx;
    QLineEdit* m_txtName;
    std::array<QRadioButton*, 3> m_optCategory{};
    std::array<Row, kQueryConditions> m_rows;
    QPushButton* m_cmdSave;
    QStringList m_dictionary; // the values of the chosen catalogue's dictionary
    QString m_editedName;     // empty for a new shortcut
    QString m_savedName;
    bool m_filling = false;
};

} // namespace vinora
