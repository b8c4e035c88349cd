#pragma once

#include "contents/DiscScan.h"

#include <QDialog>

class QCheckBox;
class QComboBox;
class QLabel;
class QRadioButton;

namespace vinora {

class AppContext;

// "Параметры сканирования": the choices of a scan of the disc in a drive for disc `slot`
// of computer disc `number`; the start runs the checks, makes the list and shows the walk.
class frmFileListOption : public QDialog
{
    Q_OBJECT
public:
    frmFileListOption(AppContext& ctx, int number, int slot, QWidget* parent = nullptr);

    ScanOptions options() const;
    void cmdStartScan();

protected:
    void done(int result) override;

private:
    void cmbDrive_Click();
    void chFilter_Click();
    void chScanDir_Click();
    void chScanDirOnly_Click();
    void loadSavedOptions();
    bool savingOptions() const;

    AppContext& m_ctx;
    int m_number;
    int m_slot;
    QComboBox* m_cmbDrive;
    QLabel* m_lblInserCD;
    QCheckBox* m_chFilesInCore;
    QCheckBox* m_chScanDir;
    QCheckBox* m_chScanDirOnly;
    QCheckBox* m_chLCase;
    QCheckBox* m_chHiddenFiles;
    QCheckBox* m_chFiles;
    QCheckBox* m_chFilter;
    QRadioButton* m_optFilter[2];
    QCheckBox* m_chShare;
};

} // namespace vinora
