#pragma once

#include "store/Category.h"

#include <QDialog>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;

namespace vinora {

class AppContext;

// The first step of adding a disc: the number, the disc in the drive and whether the new
// row is to recognise it. The editor follows (runAddDisc).
class frmAddCD : public QDialog
{
    Q_OBJECT
public:
    frmAddCD(AppContext& ctx, Category category, QWidget* parent = nullptr);

    int chosenNumber() const { return m_number; }
    // True when an audio source (a CDDB server, cdplayer.ini) has taken over the add: the
    // editor is not wanted, and ctx.DialogDone tells whether a disc was added.
    bool addedFromSource() const { return m_fromSource; }

    void cmdOK();
    void cmdSearch();
    void UpdateDriveInfo();
    bool CheckCDID();
    bool CheckAudioDisc(int number);
    void chQuery_Click(int index);

protected:
    void showEvent(QShowEvent* event) override;

private:
    QString drive() const;
    void queryServer();
    void importFromCdPlayer();
    void setAudioSources(bool usable);
    QString GetLengthCD() const;

    AppContext& m_ctx;
    Category m_category;
    int m_number = 0;
    bool m_activated = false;
    bool m_fromSource = false;
    QLineEdit* m_txtNumber;
    QComboBox* m_cmbDrive;
    QLabel* m_lblInserCD;
    QCheckBox* m_chAutoDetect;
    QCheckBox* m_chQuery[2];
    QCheckBox* m_chTrackSave;
    QComboBox* m_cmbServer;
};

// Adds a disc to the catalogue: frmAddCD, then the editor. True when a disc was saved
// (its number in ctx.LastSavedNumber).
bool runAddDisc(AppContext& ctx, Category category, QWidget* parent);

} // namespace vinora
