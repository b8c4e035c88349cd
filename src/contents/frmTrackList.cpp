#include "contents/frmTrackList.h"

#include "contents/ListWindowParts.h"
#include "contents/frmTrackListOption.h"
#include "frame/AppContext.h"
#include "frame/FaultLog.h"
#include "frame/TextRules.h"
#include "ui/ButtonRow.h"
#include "ui/EnterKey.h"
#include "ui/RecordGrid.h"
#include "ui/WaitCursor.h"

#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>
#include <algorithm>

namespace vinora {
namespace {

constexpr int kNameColumn = 1;

} // namespace

frmTrackList::frmTrackList(AppContext& ctx, int number, const QString& name, const QString& album, int discs,
                           QWidget* parent)
    : QDialog(parent), m_ctx(ctx), m_number(number)
{
    setObjectName(QStringLiteral("frmTrackList"));
    setWindowTitle(QStringLiteral("Треки"));
    resize(720, 520);
    auto* layout = new QVBoxLayout(this);
    auto* header = new QLabel(QStringLiteral("Треки Аудио диска"), this);
    QFont bold = header->font();
    bold.setBold(true);
    header->setFont(bold);
    layout->addWidget(header);

    auto* top = new QHBoxLayout;
    m_lblNumber = new QLabel(QString::number(number), this);
    m_lblNumber->setObjectName(QStringLiteral("lblNumber"));
    m_lblName = new QLabel(name, this);
    m_lblName->setObjectName(QStringLiteral("lblName"));
    m_lblAlbum = new QLabel(album, this);
    m_lblAlbum->setObjectName(QStringLiteral("lblAlbum"));
    m_cmbCountCD = discChooser(discs, this);
    top->addWidget(new QLabel(QStringLiteral("№"), this));
    top->addWidget(m_lblNumber);
    top->addWidget(m_lblName, 1);
    top->addWidget(m_lblAlbum, 1);
    top->addWidget(new QLabel(QStringLiteral("Диск:"), this));
    top->addWidget(m_cmbCountCD);
    layout->addLayout(top);

    m_grid = recordGrid({QStringLiteral("Номер"), QStringLiteral("Название"), QStringLiteral("Комментарий")},
                        this);
    m_grid->horizontalHeader()->setSectionResizeMode(0, QHeaderView::ResizeToContents);
    m_grid->horizontalHeader()->setSectionResizeMode(kNameColumn, QHeaderView::Stretch);
    m_grid->horizontalHeader()->setSectionResizeMode(2, QHeaderView::Stretch);
    m_grid->installEventFilter(this);
    layout->addWidget(m_grid, 1);

    auto* edits = new QFormLayout;
    const EditRow nameRow =
        addEditRow(edits, this, QStringLiteral("Название трека:"), QStringLiteral("txtTrackName"),
                   QStringLiteral("cmdMakeChange"), kTrackNameLength);
    const EditRow commentRow =
        addEditRow(edits, this, QStringLiteral("Комментарий:"), QStringLiteral("txtComment"),
                   QStringLiteral("cmdMakeChangeComm"), kTrackCommentLength);
    m_txtTrackName = nameRow.field;
    m_cmdMakeChange = nameRow.save;
    m_txtComment = commentRow.field;
    m_cmdMakeChangeComm = commentRow.save;
    m_myGroup << m_txtTrackName << m_cmdMakeChange << m_txtComment << m_cmdMakeChangeComm;
    layout->addLayout(edits);

    auto* bottom = new QHBoxLayout;
    bottom->addStretch(1);
    m_buttons = addButtonRow(bottom, this,
                             {QStringLiteral("Закрыть"), QStringLiteral("Создать список"),
                              QStringLiteral("Удалить список"), QStringLiteral("Пересоздать список"),
                              QStringLiteral("Сохранить в cdplayer.ini")},
                             {1, 2, 3, 4, 0});
    layout->addLayout(bottom);

    connect(m_buttons[0], &QPushButton::clicked, this, &QDialog::reject);
    connect(m_buttons[1], &QPushButton::clicked, this, &frmTrackList::cmdCreate);
    connect(m_buttons[2], &QPushButton::clicked, this, &frmTrackList::deleteListAsk);
    connect(m_buttons[3], &QPushButton::clicked, this, &frmTrackList::recreateListAsk);
    connect(m_buttons[4], &QPushButton::clicked, this, &frmTrackList::cmdSave);
    connect(m_cmbCountCD, &QComboBox::activated, this, &frmTrackList::cmbCountCD_Click);
    connect(m_grid, &QTableWidget::currentCellChanged, this, &frmTrackList::dcDatabase_Reposition);
    connect(m_cmdMakeChange, &QPushButton::clicked, this, &frmTrackList::cmdMakeChange_Click);
    connect(m_cmdMakeChangeComm, &QPushButton::clicked, this, &frmTrackList::cmdMakeChangeComm_Click);
    onEnter(m_txtTrackName, [this] { cmdMakeChange_Click(); });
    onEnter(m_txtComment, [this] { cmdMakeChangeComm_Click(); });
    m_cmbCountCD->setCurrentIndex(0);
    cmbCountCD_Click();
}

void frmTrackList::showListControls(bool present)
{
    m_buttons[1]->setEnabled(!present);
    for (int i : {2, 3, 4}) {
        m_buttons[i]->setEnabled(present);
    }
    for (QWidget* widget : m_myGroup) {
        widget->setEnabled(present);
    }
    m_grid->setVisible(present);
}

void frmTrackList::cmbCountCD_Click()
{
    m_txtTrackName->clear();
    m_txtComment->clear();
    const int slot = std::clamp(m_cmbCountCD->currentText().toInt(), 1, 6);
    m_ctx.CurrentDiscID = m_ctx.DiscIDSlots[static_cast<std::size_t>(slot - 1)];
    const bool present = !m_ctx.CurrentDiscID.isEmpty();
    showListControls(present);
    if (present) {
        ViewTrackList();
    } else {
        m_tracks.clear();
        m_grid->setRowCount(0);
    }
}

void frmTrackList::ViewTrackList()
{
    WaitCursor hourglass;
    QList<StoredTrack> tracks;
    underErrorReport(m_ctx, QStringLiteral("frmTrackList, ViewTrackList()"),
                     [&] { tracks = readTrackList(m_ctx, m_ctx.CurrentDiscID); });
    m_tracks = tracks;
    {
        const QSignalBlocker quiet(m_grid);
        m_grid->setRowCount(0);
        m_grid->setRowCount(static_cast<int>(m_tracks.size()));
        for (int row = 0; row < m_tracks.size(); ++row) {
            const StoredTrack& track = m_tracks[row];
            m_grid->setItem(row, 0, new QTableWidgetItem(QString::number(track.number)));
            m_grid->setItem(row, kNameColumn, new QTableWidgetItem(track.name.toString()));
            m_grid->setItem(row, 2, new QTableWidgetItem(track.comment.toString()));
        }
        if (!m_tracks.isEmpty()) {
            m_grid->setCurrentCell(0, kNameColumn);
        }
    }
    dcDatabase_Reposition();
}

const StoredTrack* frmTrackList::currentStoredTrack() const
{
    const int row = m_grid->currentRow();
    return row >= 0 && row < m_tracks.size() ? &m_tracks[row] : nullptr;
}

void frmTrackList::dcDatabase_Reposition()
{
    underFaultHandler(m_ctx, QStringLiteral("frmTrackList, dcDatabase_Reposition()"), [this] {
        if (m_tracks.isEmpty()) {
            m_grid->hide();
            return;
        }
        m_grid->show();
        showRowTexts(m_grid->currentRow());
    });
}

void frmTrackList::showRowTexts(int row)
{
    if (row < 0 || row >= m_tracks.size()) {
        return;
    }
    m_txtComment->setText(m_tracks[row].comment.toString());
    m_txtTrackName->setText(m_tracks[row].name.toString());
}

void frmTrackList::cmdMakeChange_Click()
{
    const StoredTrack* track = currentStoredTrack();
    if (!track) {
        return;
    }
    const int row = m_grid->currentRow();
    m_txtTrackName->setText(CleanText(m_txtTrackName->text()));
    const QString name = m_txtTrackName->text();
    if (!underErrorReport(m_ctx, QStringLiteral("frmTrackList, cmdMakeChange_Click()"),
                          [&] { setTrackName(m_ctx, m_ctx.CurrentDiscID, track->row, name); })) {
        return;
    }
    m_tracks[row].name = name.isEmpty() ? QVariant() : QVariant(name);
    m_grid->item(row, kNameColumn)->setText(name);
    // Names are typed one after another: the last track leads back to the first.
    const int count = static_cast<int>(m_tracks.size());
    const bool last = m_tracks[row].number == count || row + 1 >= count;
    m_grid->setCurrentCell(last ? 0 : row + 1, kNameColumn);
    m_txtTrackName->setFocus();
    m_txtTrackName->selectAll();
}

void frmTrackList::cmdMakeChangeComm_Click()
{
    const StoredTrack* track = currentStoredTrack();
    if (!track) {
        return;
    }
    const int row = m_grid->currentRow();
    m_txtComment->setText(CleanText(m_txtComment->text()));
    const QString comment = m_txtComment->text();
    if (!underErrorReport(m_ctx, QStringLiteral("frmTrackList, cmdMakeChangeComm_Click()"),
                          [&] { setTrackComment(m_ctx, m_ctx.CurrentDiscID, track->row, comment); })) {
        return;
    }
    m_tracks[row].comment = comment.isEmpty() ? QVariant() : QVariant(comment);
    m_grid->item(row, 2)->setText(comment);
    m_ctx.prompter().message(QStringLiteral("Комментарий к треку '") + m_tracks[row].name.toString() +
                                 QStringLiteral("' успешно изменен."),
                             MessageStyle::Information);
}

bool frmTrackList::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == m_grid && event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        const QString text = key->text();
        const bool command = key->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
        if (!command && text.size() == 1 && text.at(0).isLetterOrNumber()) {
            findByFirstLetter(text.at(0));
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

// A letter goes to the first track whose name begins with it; the same letter again goes on
// to the next such track, round to the top after the last.
void frmTrackList::findByFirstLetter(QChar letter)
{
    const int count = static_cast<int>(m_tracks.size());
    if (count == 0) {
        return;
    }
    const bool again = !m_lastLetter.isNull() && m_lastLetter.toCaseFolded() == letter.toCaseFolded();
    m_lastLetter = letter;
    const int from = again ? m_grid->currentRow() + 1 : 0;
    for (int step = 0; step < count; ++step) {
        const int row = (from + step) % count;
        if (m_tracks[row].name.toString().startsWith(letter, Qt::CaseInsensitive)) {
            m_grid->setCurrentCell(row, kNameColumn);
            return;
        }
    }
}

void frmTrackList::cmdSave()
{
    const QString number = m_lblNumber->text();
    if (m_ctx.prompter().message(
            QStringLiteral("Вы уверены, что хотите сохранить информацию о треках диска № ") + number +
                QStringLiteral(" в файл 'cdplayer.ini'?"),
            MessageStyle::YesNoQuestion) != Answer::Yes) {
        return;
    }
    const bool saved = underErrorReport(m_ctx, QStringLiteral("frmTrackList, cmdSave()"), [this] {
        WaitCursor hourglass;
        saveTrackListToCdPlayer(m_ctx, m_ctx.CurrentDiscID, m_lblName->text(), m_lblAlbum->text());
    });
    if (saved) {
        m_ctx.prompter().message(QStringLiteral("Данные диска № ") + number +
                                     QStringLiteral(" успешно сохранены в файле 'cdplayer.ini'."),
                                 MessageStyle::Information);
    }
}

void frmTrackList::setVisible(bool visible)
{
    if (!visible && m_steppingAside) {
        // A dialog that hides ends its modal run; stepping aside for the options must not.
        QWidget::setVisible(false);
        return;
    }
    QDialog::setVisible(visible);
}

void frmTrackList::cmdCreate()
{
    const bool stepAside = isVisible() && !isMaximized();
    underErrorReport(m_ctx, QStringLiteral("frmTrackList, cmdCreate()"), [&] {
        m_ctx.DialogDone = false;
        const int slot = std::clamp(m_cmbCountCD->currentText().toInt(), 1, 6);
        frmTrackListOption options(m_ctx, m_number, slot, m_lblName->text(), m_lblAlbum->text(), this);
        options.setWindowTitle(QStringLiteral("Параметры сканирования диска № ") + m_lblNumber->text() +
                               QStringLiteral(" (CD") + m_cmbCountCD->currentText() + u')');
        if (stepAside) {
            m_steppingAside = true;
            hide();
            m_steppingAside = false;
        }
        m_ctx.prompter().showModal(options);
        if (!m_ctx.DialogDone) {
            return;
        }
        m_ctx.DialogDone = false;
        showListControls(true);
        ViewTrackList();
    });
    if (stepAside) {
        show();
    }
}

void frmTrackList::cmdDeleteList()
{
    const int slot = std::clamp(m_cmbCountCD->currentText().toInt(), 1, 6);
    underErrorReport(m_ctx, QStringLiteral("frmTrackList, cmdDeleteList()"),
                     [&] { DeleteTrackList(m_ctx, m_number, slot, m_ctx.CurrentDiscID); });
}

DiscListSteps frmTrackList::listSteps()
{
    return {[this] { cmdDeleteList(); }, [this] { cmbCountCD_Click(); }, [this] { cmdCreate(); }};
}

void frmTrackList::deleteListAsk()
{
    changeListAsk(m_ctx.prompter(), ListChange::Delete,
                  QStringLiteral("Вы действительно хотите удалить информация о треках диска № ") +
                      m_lblNumber->text() + u'?',
                  listSteps());
}

void frmTrackList::recreateListAsk()
{
    changeListAsk(m_ctx.prompter(), ListChange::Recreate,
                  QStringLiteral("Текущий список треков будет удален! Продолжить?"), listSteps());
}

void frmTrackList::showDisc(int k)
{
    if (chooseDisc(m_cmbCountCD, k)) {
        cmbCountCD_Click();
    }
}

bool frmTrackList::showTrack(const QString& name)
{
    for (int row = 0; row < m_tracks.size(); ++row) {
        if (m_tracks[row].name.toString() == name) {
            m_grid->setCurrentCell(row, kNameColumn);
            m_grid->scrollToItem(m_grid->item(row, kNameColumn));
            return true;
        }
    }
    return false;
}

QStringList frmTrackList::trackNames() const
{
    QStringList names;
    for (int row = 0; row < m_grid->rowCount(); ++row) {
        names.append(m_grid->item(row, kNameColumn)->text());
    }
    return names;
}

int frmTrackList::currentTrack() const
{
    return m_tracks.isEmpty() ? -1 : m_grid->currentRow();
}

} // namespace vinora
