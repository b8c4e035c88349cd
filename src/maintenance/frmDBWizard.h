#pragma once

#include "catalogue/DictionaryKind.h"

#include <QDialog>
#include <QHash>

class QLabel;
class QPushButton;

namespace vinora {

class AppContext;

// "Мастер обслуживания": the backup set (made, restored, deleted), the sizes of the databases
// and of the set, the dictionaries with their editors, the repair form and the compaction.
class frmDBWizard : public QDialog
{
    Q_OBJECT
public:
    explicit frmDBWizard(AppContext& ctx, QWidget* parent = nullptr);

    void Form_Load();
    void UpdateCount();
    void cmdCreate();
    void cmdRecover();
    void cmdDelete();
    void cmdCompress();
    void editDictionary(Dictionary dictionary);
    void openReanimation();

    QLabel* label(const QString& objectName) const { return m_labels.value(objectName); }
    QPushButton* button(int index) const;

private:
    QLabel* addValue(const QString& objectName);
    void showDatabaseSize();

    AppContext& m_ctx;
    QHash<QString, QLabel*> m_labels;
    QList<QPushButton*> m_buttons;
};

} // namespace vinora
