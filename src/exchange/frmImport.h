#pragma once

#include "exchange/Import.h"

#include <QDialog>

class QCheckBox;
class QLabel;
class QPushButton;

namespace vinora {

class AppContext;

// "Импорт": merges the catalogues of another copy of the databases into ours. The work runs
// off the window's thread; the stage is shown in lblStat.
class frmImport : public QDialog
{
    Q_OBJECT
public:
    explicit frmImport(AppContext& ctx, QWidget* parent = nullptr);

    // The start button: asks for the folder, checks it, imports, tells the outcome.
    void Import();
    QString stageText() const;

private:
    ImportChoice choice() const;
    void syncListBoxes();
    void setStage(const QString& text);

    AppContext& m_ctx;
    QCheckBox* m_chAD;
    QCheckBox* m_chPC;
    QCheckBox* m_chDVD;
    QCheckBox* m_chImportTracks;
    QCheckBox* m_chImportFiles;
    QCheckBox* m_chDouble;
    QLabel* m_lblStat;
    QPushButton* m_start;
    QPushButton* m_close;
};

} // namespace vinora
