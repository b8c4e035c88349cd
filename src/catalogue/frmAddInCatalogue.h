#pragma once

#include "catalogue/DiscRecord.h"

#include <QDialog>

class QComboBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;

namespace vinora {

class AppContext;

// The editor of a disc: frmAddInCatalogueAudio, frmAddInCataloguePC and
// frmAddInCatalogueDVD are this dialog made with their catalogue's description. It enters
// a new disc under a number chosen before, or changes the disc of that number.
class frmAddInCatalogue : public QDialog
{
    Q_OBJECT
public:
    enum class Mode { Add, Change };
    frmAddInCatalogue(AppContext& ctx, Category category, Mode mode, int number, QWidget* parent = nullptr);

    // The caption that tells the two jobs apart ("Добавление Аудио диска" ...).
    static QString addCaption(Category category);

    void cmdAdd();  // OK
    void cmdInfo(); // tracks and playing time from the disc in the drive (audio)

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    QLineEdit* newLine(const QString& objectName, int maxLength);
    QWidget* withSpinner(QLineEdit* field, QString (*spin)(const QString&, bool));
    void showDisc(const DiscRecord& disc);
    void txtCDs_Change();
    void cmbCountCD_Click();
    void storeDiscValues();

    AppContext& m_ctx;
    const CatalogueKind& m_kind;
    Mode m_mode;
    DiscRecord m_disc;
    int m_oldDiscCount = 1;
    bool m_loading = false;

    QLabel* m_lblNumber;
    QLineEdit* m_txtName;
    QLineEdit* m_txtAlbum = nullptr;
    QLineEdit* m_txtYear;
    QLineEdit* m_txtCDs;
    QComboBox* m_cmbCountCD = nullptr;
    QLineEdit* m_txtTrack = nullptr;
    QLineEdit* m_txtTime = nullptr;
    QLineEdit* m_txtDictionary;
    QLineEdit* m_txtDescription = nullptr;
    QComboBox* m_cmbZone = nullptr;
    QListWidget* m_lvSoundFormat = nullptr;
    QComboBox* m_cmbDrive = nullptr;
    QPushButton* m_cmdInfo = nullptr;
    QList<QWidget*> m_enterOrder; // the fields Enter walks through; the last one saves
};

} // namespace vinora
