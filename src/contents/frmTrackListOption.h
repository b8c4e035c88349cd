#pragma once

#include <QDialog>

class QCheckBox;
class QComboBox;
class QLabel;

namespace vinora {

class AppContext;

// "Параметры сканирования": makes the track list of the audio disc in a drive for disc `slot`
// of audio disc `number` (performer `artist`, album `album`): from a CDDB server, from
// cdplayer.ini, numbered without names, or named track by track. ctx.DialogDone tells the
// caller that a list was made; ctx.CurrentDiscID is its id.
class frmTrackListOption : public QDialog
{
    Q_OBJECT
public:
    frmTrackListOption(AppContext& ctx, int number, int slot, QString artist, QString album,
                       QWidget* parent = nullptr);

    void cmdOK();

private:
    void Form_Load();
    void chCDDB_Click();
    void chTrackImport_Click();
    void chTrackWithoutName_Click();
    void ShowDiscKind();
    QString drive() const;
    void queryCddb(const QString& drive);
    void ImportTrackList(const QString& drive);
    void makeTrackList(const QString& drive);
    // The rows of a new list of `tracks` tracks, named as the ticks say; false when they could
    // not be stored (told).
    bool CreateTrackList(int tracks);
    bool CreateLinkDiskID(int tracks, int seconds);

    AppContext& m_ctx;
    int m_number;
    int m_slot;
    QString m_artist;
    QString m_album;
    QComboBox* m_cmbDrive;
    QLabel* m_lblInserCD;
    QCheckBox* m_chCDDB;
    QComboBox* m_cmbServer;
    QCheckBox* m_chTrackImport;
    QCheckBox* m_chTrackWithoutName;
    QCheckBox* m_chTrackSave;
};

} // namespace vinora
