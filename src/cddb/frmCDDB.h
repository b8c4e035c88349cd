#pragma once

#include "cddb/CdBase.h"
#include "cddb/CddbResult.h"

#include <QDialog>
#include <QTcpSocket>
#include <QTimer>

class QLabel;

namespace vinora {

class AppContext;

// "Запрос сервера CDDB": asks a CDDB server about the audio disc in `drive` once the
// window is shown, and stores the answer as the caller asked (see writeCddbRecord): a new
// audio disc for the add dialog, the track list of a disc of the catalogue for the track
// list. The caption counts the time of the query. `serverChoice` is the text of the caller's
// server list ("n: host"). On success ctx.DialogDone is set; when the server gave nothing,
// the list CurrentDiscID made for the answer is dropped again.
class frmCDDB : public QDialog
{
    Q_OBJECT
public:
    frmCDDB(AppContext& ctx, QString drive, const QString& serverChoice, NumberShift shift = {},
            QWidget* parent = nullptr);
    ~frmCDDB() override;

    QString statusText() const;

public slots:
    void reject() override;

protected:
    void showEvent(QShowEvent* event) override;

private:
    void tmrTimeout_Timer();
    void runQuery();
    void finish(int result);

    AppContext& m_ctx;
    QString m_drive;
    NumberShift m_shift;
    QTcpSocket m_socket;
    CdBase m_session;
    QLabel* m_lblStatus;
    QTimer m_tmrTimeout;
    int m_minutes = 0;
    int m_seconds = 0;
    bool m_started = false;
    bool m_running = false;
};

} // namespace vinora
