#pragma once

#include "catalogue/DictionaryKind.h"
#include "catalogue/DictionaryTable.h"

#include <QDialog>

class QLabel;
class QListWidget;
class QPushButton;

namespace vinora {

class AppContext;
class Db;

// The editor of a dictionary: frmEditStyle, frmEditDescription and frmEditGenre are this
// window made with their dictionary's texts. The first row (the empty name of a disc
// without one) can be neither changed nor deleted; a name that discs use cannot be deleted.
class frmEditDictionary : public QDialog
{
    Q_OBJECT
public:
    frmEditDictionary(AppContext& ctx, Dictionary dictionary, QWidget* parent = nullptr);

    void cmdAdd();
    void cmdDelete();
    void cmdChange();
    QStringList names() const;
    void selectName(const QString& name);
    QString currentName() const;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void load(const QString& selected = {});
    // Asks for a name until one that may be stored and is not taken is typed; nothing when
    // the user gives up (an empty answer, a refused name, No to typing another one).
    std::optional<QString> askNewName(const QString& title, const QString& prompt, const QString& initial);
    bool exists(const QString& name) const;
    DictionaryTable table(const Db& db) const;

    AppContext& m_ctx;
    const DictionaryKind& m_kind;
    QListWidget* m_grid;
    QLabel* m_count;
    QPushButton* m_delete;
    QPushButton* m_change;
};

} // namespace vinora
