#pragma once

#include "contents/ListChange.h"
#include "contents/TrackListStore.h"

#include <QChar>
#include <QDialog>

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QTableWidget;

namespace vinora {

class AppContext;

// "Треки": the track list of one disc of an audio disc record, with a name and a comment per
// track; it creates, deletes and re-creates the list and writes it to cdplayer.ini. The ids
// of the set's lists come in ctx.DiscIDSlots; the list on view is ctx.CurrentDiscID.
class frmTrackList : public QDialog
{
    Q_OBJECT
public:
    frmTrackList(AppContext& ctx, int number, const QString& name, const QString& album, int discs,
                 QWidget* parent = nullptr);

    void cmbCountCD_Click();
    void cmdMakeChange_Click();
    void cmdMakeChangeComm_Click();
    void cmdCreate();
    void cmdSave();
    void deleteListAsk();   // imgButton2
    void recreateListAsk(); // imgButton3

    // For a window opened at a found track: the k-th disc of the set (1..6); the first row of
    // the title `name` made current and brought into view (false when there is none).
    void showDisc(int k);
    bool showTrack(const QString& name);

    // --- what tests look at ---------------------------------------------------------------
    QStringList trackNames() const; // the Название column as shown
    int currentTrack() const;       // the grid's current row, -1 for none

protected:
    void setVisible(bool visible) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void ViewTrackList();
    void dcDatabase_Reposition();
    void cmdDeleteList();
    DiscListSteps listSteps();
    void showListControls(bool present);
    void findByFirstLetter(QChar letter);
    void showRowTexts(int row);
    const StoredTrack* currentStoredTrack() const;

    AppContext& m_ctx;
    int m_number;
    QList<StoredTrack> m_tracks; // the rows on view, in the grid's order
    QChar m_lastLetter;          // of the last first-letter search in the grid
    bool m_steppingAside = false;

    QComboBox* m_cmbCountCD;
    QLabel* m_lblNumber;
    QLabel* m_lblName;
    QLabel* m_lblAlbum;
    QTableWidget* m_grid;
    QLineEdit* m_txtTrackName;
    QLineEdit* m_txtComment;
    QPushButton* m_cmdMakeChange;
    QPushButton* m_cmdMakeChangeComm;
    QList<QPushButton*> m_buttons; // imgButton0..4
    QList<QWidget*> m_myGroup;     // the controls that need a list
};

} // namespace vinora
