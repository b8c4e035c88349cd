#pragma once

#include "catalogue/CatalogueKind.h"
#include "catalogue/CatalogueQuery.h"
#include "ui/BlinkTimer.h"

#include <QDialog>
#include <QPixmap>
#include <QTimer>
#include <functional>

class QCheckBox;
class QComboBox;
class QFormLayout;
class QLabel;
class QLineEdit;
class QPushButton;
class QTabWidget;
class QTableView;

namespace vinora {

class AppContext;
class CatalogueGrid;
class CatalogueRows;

// The browser of one catalogue: frmCatalogueAudioCD, frmCataloguePCCD and frmCatalogueDVD
// are this window made with their catalogue's description. It lists the discs by number
// and name, sorts and filters them, shows the details, the cover and the loan of the disc
// at hand, and deletes discs. The catalogue's filter lives in ctx.CatalogueQueryFilter, so
// a stored query set before opening is honoured.
class frmCatalogue : public QDialog
{
    Q_OBJECT
public:
    frmCatalogue(AppContext& ctx, Category category, QWidget* parent = nullptr);
    ~frmCatalogue() override;

    const CatalogueKind& kind() const { return m_kind; }

    void cmbSorted_Click();
    // Reads the rows again with the query they were last read with, and goes to the first.
    void Refresh();
    void ShowWholeCatalogue();
    void AutoResp();
    void cmdDelete();
    void cmdAdd();
    void cmdChange();
    void cmdList();   // the list of the disc at hand: cmdFiles or cmdTracks, as the catalogue has
    void cmdFiles();  // the file list of a computer disc
    void cmdTracks(); // the track list of an audio disc
    void cmdChangeBox();
    void cmdDeleteBox();
    // Positions on the row of `number`; false when there is none.
    bool goToNumber(int number);

    // --- what tests and callers look at -----------------------------------------------
    int currentRow() const { return m_row; }
    int rowCount() const;
    QString rowText(int row) const; // "number name"
    QString currentNumberText() const;

protected:
    void showEvent(QShowEvent* event) override;
    void done(int result) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Form_Load();
    void FullDictionary();
    void setFilter(const CatalogueFilter& filter);
    void dcDatabase_Reposition();
    void showRow();
    void showCover();
    void CheckDue();
    // Lends the disc of the current row, or takes it back when it is out.
    void cmdDue();
    void cmbCountCD_Click();
    void txtNumber_Enter();
    void txtName_KeyUp();
    void txtAlbum_Enter();
    void timerDue_Timer();
    void setRowButtonsEnabled(bool enabled);
    // Hands the set's list ids to the list window that `showList` shows for the disc at hand,
    // then reads the catalogue again: a list made there changes the row.
    void showDiscContents(const QString& routine, const std::function<void(int number)>& showList);
    QLineEdit* addField(const QString& objectName, const QString& caption, QFormLayout* form);
    QPushButton* button(int index) const;

    AppContext& m_ctx;
    const CatalogueKind& m_kind;
    CatalogueRows* m_rows;
    BuiltQuery m_recordSource; // the query the rows on view were read with
    QPixmap m_cover;           // the cover of the disc at hand, as its file holds it
    int m_row = -1;
    bool m_autoRespDone = false;
    BlinkTimer m_timerDue;

    CatalogueGrid* m_grid;
    QComboBox* m_cmbSorted;
    QCheckBox* m_chSortedDESC;
    QLabel* m_lblSorted;
    QComboBox* m_cmbDictionary;
    QLineEdit* m_txtName;
    QLineEdit* m_txtAlbum = nullptr;
    QLineEdit* m_txtNumber;
    QComboBox* m_cmbCountCD = nullptr;
    QLineEdit* m_txtTrecks = nullptr;
    QLineEdit* m_txtTime = nullptr;
    QComboBox* m_cmbSoundFormat = nullptr;
    QTabWidget* m_tabs;
    QLabel* m_imgBox;
    QLabel* m_imgDue;
    QLabel* m_lblDue;
    QLabel* m_lblCDsCount0;
    QLabel* m_lblCDsCount1;
    QList<QWidget*> m_myGroup;
    QList<QPushButton*> m_buttons;
};

} // namespace vinora
