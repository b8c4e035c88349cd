#include "contents/frmTrackListOption.h"

#include "cddb/CddbServers.h"
#include "cddb/DiscId.h"
#include "cddb/frmCDDB.h"
#include "contents/CdPlayerIni.h"
#include "contents/TrackListStore.h"
#include "frame/AppContext.h"
#include "frame/FaultLog.h"
#include "frame/ProgramInfo.h"
#include "recognition/DiscIdentity.h"
#include "recognition/DriveChoice.h"
#include "recognition/Medium.h"
#include "recognition/frmSelectCategory.h"
#include "ui/WaitCursor.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>
#include <optional>

namespace vinora {
namespace {

const QString kNoDrive = QStringLiteral("Устройство для чтения компакт-дисков не найдено!");
const QString kInsertAudio =
    QStringLiteral("Вставьте Аудио диск в устройство для чтения компакт-дисков и повторите операцию.");

// What a new list takes from the disc itself: its audio tracks (the disc's ".cda files") and
// its playing time in seconds.
struct DiscFigures
{
    int tracks = 0;
    int seconds = 0;
};

std::optional<DiscFigures> discFigures(const QString& drive)
{
    const std::unique_ptr<Medium> medium = openMedium(drive);
    if (!medium) {
        return std::nullopt;
    }
    const std::optional<CddbDisc> disc = cddbDiscFromToc(medium->toc());
    const int tracks = medium->toc().audioTrackCount();
    if (!disc || tracks == 0) {
        return std::nullopt;
    }
    return DiscFigures{tracks, disc->discLength};
}

} // namespace

frmTrackListOption::frmTrackListOption(AppContext& ctx, int number, int slot, QString artist, QString album,
                                       QWidget* parent)
    : QDialog(parent), m_ctx(ctx), m_number(number), m_slot(slot), m_artist(std::move(artist)),
      m_album(std::move(album))
{
    setObjectName(QStringLiteral("frmTrackListOption"));
    setWindowTitle(QStringLiteral("Параметры сканирования"));
    auto* layout = new QVBoxLayout(this);
    auto* header = new QLabel(QStringLiteral("Параметры сканирования треков"), this);
    QFont bold = header->font();
    bold.setBold(true);
    header->setFont(bold);
    layout->addWidget(header);

    auto* form = new QFormLayout;
    m_cmbDrive = new QComboBox(this);
    m_cmbDrive->setObjectName(QStringLiteral("cmbDrive"));
    m_lblInserCD = new QLabel(this);
    m_lblInserCD->setObjectName(QStringLiteral("lblInserCD"));
    form->addRow(QStringLiteral("Устройство:"), m_cmbDrive);
    form->addRow(QStringLiteral("В устройстве:"), m_lblInserCD);
    layout->addLayout(form);

    const auto box = [this](const char* name, const char* caption) {
        auto* check = new QCheckBox(QString::fromUtf8(caption), this);
        check->setObjectName(QString::fromLatin1(name));
        return check;
    };
    layout->addWidget(new QLabel(QStringLiteral("Названия треков:"), this));
    auto* cddbRow = new QHBoxLayout;
    m_chCDDB = box("chCDDB", "сервер CDDB");
    m_cmbServer = new QComboBox(this);
    m_cmbServer->setObjectName(QStringLiteral("cmbServer"));
    m_cmbServer->setEnabled(false); // the server box is off
    cddbRow->addWidget(m_chCDDB);
    cddbRow->addWidget(m_cmbServer, 1);
    layout->addLayout(cddbRow);
    m_chTrackImport = box("chTrackImport", "файл cdplayer.ini");
    layout->addWidget(m_chTrackImport);
    m_chTrackWithoutName = box("chTrackWithoutName", "Без запроса названия треков");
    layout->addWidget(m_chTrackWithoutName);
    m_chTrackSave = box("chTrackSave", "Сохранить в cdplayer.ini");
    layout->addWidget(m_chTrackSave);

    auto* buttons = new QHBoxLayout;
    auto* ok = new QPushButton(QStringLiteral("Создать список"), this);
    ok->setObjectName(QStringLiteral("cmdOK"));
    ok->setAutoDefault(false);
    auto* close = new QPushButton(QStringLiteral("Закрыть"), this);
    close->setObjectName(QStringLiteral("cmdCancel"));
    close->setAutoDefault(false);
    buttons->addStretch(1);
    buttons->addWidget(ok);
    buttons->addWidget(close);
    layout->addLayout(buttons);

    connect(ok, &QPushButton::clicked, this, &frmTrackListOption::cmdOK);
    connect(close, &QPushButton::clicked, this, &QDialog::reject);
    // A box that changes, by hand or by another box's rule, applies its own rule.
    connect(m_chCDDB, &QCheckBox::toggled, this, &frmTrackListOption::chCDDB_Click);
    connect(m_chTrackImport, &QCheckBox::toggled, this, &frmTrackListOption::chTrackImport_Click);
    connect(m_chTrackWithoutName, &QCheckBox::toggled, this, &frmTrackListOption::chTrackWithoutName_Click);
    connect(m_cmbDrive, &QComboBox::activated, this, &frmTrackListOption::ShowDiscKind);
    Form_Load();
}

void frmTrackListOption::Form_Load()
{
    underErrorReport(m_ctx, QStringLiteral("frmTrackListOption, Form_Load()"), [this] {
        m_cmbServer->addItems(cddbServerItems(m_ctx.ini()));
        m_cmbServer->setCurrentIndex(preselectedServer(m_ctx.ini()));
        if (!fillDriveChoice(*m_cmbDrive, m_ctx.ini())) {
            m_ctx.prompter().message(kNoDrive, MessageStyle::Exclamation);
            return;
        }
        ShowDiscKind();
    });
}

QString frmTrackListOption::drive() const
{
    return m_cmbDrive->isEnabled() ? m_cmbDrive->currentText() : QString();
}

void frmTrackListOption::chCDDB_Click()
{
    if (!m_chCDDB->isChecked()) {
        m_cmbServer->setEnabled(false);
        return;
    }
    m_chTrackWithoutName->setChecked(false);
    m_chTrackImport->setChecked(false);
    m_chTrackSave->setEnabled(true);
    m_cmbServer->setEnabled(true);
}

void frmTrackListOption::chTrackImport_Click()
{
    if (!m_chTrackImport->isChecked()) {
        m_chTrackSave->setEnabled(true);
        return;
    }
    m_chTrackWithoutName->setChecked(false);
    m_chCDDB->setChecked(false);
    m_chTrackSave->setEnabled(false); // the names come from the file itself
}

void frmTrackListOption::chTrackWithoutName_Click()
{
    if (!m_chTrackWithoutName->isChecked()) {
        ShowDiscKind();
        return;
    }
    // The other ways keep their ticks but count for nothing while they are disabled.
    m_chCDDB->setEnabled(false);
    m_chTrackImport->setEnabled(false);
    m_chTrackSave->setEnabled(true);
    m_cmbServer->setEnabled(false);
}

void frmTrackListOption::ShowDiscKind()
{
    const QString drive = this->drive();
    const QString kind =
        drive.isEmpty() ? QString() : GetDiskIDcheck(m_ctx, drive, frmSelectCategory::chooser(m_ctx, this));
    m_lblInserCD->setText(kindCaption(kind));
    const bool audio = kind == u"AudioCD";
    m_chCDDB->setEnabled(audio);
    m_cmbServer->setEnabled(audio && m_chCDDB->isChecked());
    m_chTrackImport->setEnabled(audio);
    m_chTrackSave->setEnabled(audio && !m_chTrackImport->isChecked());
}

void frmTrackListOption::cmdOK()
{
    underErrorReport(m_ctx, QStringLiteral("frmTrackListOption, cmdOK()"), [this] {
        const QString drive = this->drive();
        if (drive.isEmpty()) {
            m_ctx.prompter().message(kNoDrive, MessageStyle::Exclamation);
            return;
        }
        const CategoryChooser chooser = frmSelectCategory::chooser(m_ctx, this);
        if (GetDiskIDcheck(m_ctx, drive, chooser) != u"AudioCD") {
            m_ctx.prompter().message(kInsertAudio, MessageStyle::Exclamation);
            return;
        }
        m_ctx.CurrentDiscID = GetDiskID(m_ctx, drive, chooser);
        if (m_ctx.CurrentDiscID.isEmpty()) {
            m_ctx.prompter().message(
                QStringLiteral("В устройстве для чтения компакт дисков вставлен диск без идентификационного "
                               "номера (возможно, что диск записан в формате PacketCD, который не "
                               "поддерживается программой)!"),
                MessageStyle::Exclamation);
            return;
        }
        bool made = false;
        if (!underErrorReport(m_ctx, QStringLiteral("frmTrackListOption, cmdOK()"),
                              [&] { made = CreateTrackTable(m_ctx, m_ctx.CurrentDiscID, true); })) {
            return;
        }
        if (!made) {
            reject(); // the disc has a list already; the clash was told
            return;
        }
        if (m_chCDDB->isEnabled() && m_chCDDB->isChecked()) {
            queryCddb(drive);
            return;
        }
        if (m_chTrackImport->isEnabled() && m_chTrackImport->isChecked()) {
            ImportTrackList(drive);
            return;
        }
        makeTrackList(drive);
    });
}

void frmTrackListOption::queryCddb(const QString& drive)
{
    // The CDDB dialog stores its answer as these values ask: the track list of a disc already
    // in the catalogue. They are the caller's again afterwards.
    struct Handover
    {
        AppContext& ctx;
        QString filter = ctx.CatalogueQueryFilter;
        bool updateRow = ctx.CDDBUpdateRow;
        qint16 number = ctx.LastSavedNumber;
        qint16 slot = ctx.CDDBDiscInSet;
        bool saveToIni = ctx.CDDBSaveToIni;
        ~Handover()
        {
            ctx.CatalogueQueryFilter = filter;
            ctx.CDDBUpdateRow = updateRow;
            ctx.LastSavedNumber = number;
            ctx.CDDBDiscInSet = slot;
            ctx.CDDBSaveToIni = saveToIni;
        }
    } handover{m_ctx};
    m_ctx.CatalogueQueryFilter = QStringLiteral("cddb:2");
    m_ctx.CDDBUpdateRow = true;
    m_ctx.LastSavedNumber = static_cast<qint16>(m_number);
    m_ctx.CDDBDiscInSet = static_cast<qint16>(m_slot);
    m_ctx.CDDBSaveToIni = m_chTrackSave->isChecked();
    m_ctx.DialogDone = false;
    hide();
    {
        frmCDDB query(m_ctx, drive, m_cmbServer->currentText(), {}, this);
        m_ctx.prompter().showModal(query);
    }
    done(m_ctx.DialogDone ? Accepted : Rejected);
}

void frmTrackListOption::ImportTrackList(const QString& drive)
{
    std::optional<DiscFigures> figures;
    std::optional<int> count;
    bool read = false;
    {
        WaitCursor hourglass;
        figures = discFigures(drive);
        read = figures && underErrorReport(m_ctx, QStringLiteral("frmTrackListOption, ImportTrackList()"),
                                           [&] { count = importTrackNames(m_ctx, m_ctx.CurrentDiscID); });
    }
    if (!figures) {
        underErrorReport(m_ctx, QStringLiteral("frmTrackListOption, ImportTrackList()"),
                         [this] { dropTrackList(m_ctx, m_ctx.CurrentDiscID); });
        m_ctx.prompter().message(kInsertAudio, MessageStyle::Exclamation);
        return;
    }
    if (!read) {
        return;
    }
    if (!count) {
        underErrorReport(m_ctx, QStringLiteral("frmTrackListOption, ImportTrackList()"),
                         [this] { dropTrackList(m_ctx, m_ctx.CurrentDiscID); });
        m_ctx.prompter().message(QStringLiteral("Информация о этом диске отсутствует в файле cdplayer.ini!"),
                                 MessageStyle::Exclamation);
        return;
    }
    if (!CreateLinkDiskID(*count, figures->seconds)) {
        return;
    }
    m_ctx.DialogDone = true;
    accept();
}

void frmTrackListOption::makeTrackList(const QString& drive)
{
    std::optional<DiscFigures> figures;
    bool made = false;
    {
        WaitCursor hourglass;
        figures = discFigures(drive);
        made = figures && CreateTrackList(figures->tracks);
    }
    if (!figures) {
        underErrorReport(m_ctx, QStringLiteral("frmTrackListOption, CreateTrackList()"),
                         [this] { dropTrackList(m_ctx, m_ctx.CurrentDiscID); });
        m_ctx.prompter().message(kInsertAudio, MessageStyle::Exclamation);
        return;
    }
    if (!made || !CreateLinkDiskID(figures->tracks, figures->seconds)) {
        return;
    }
    m_ctx.DialogDone = true;
    accept();
}

bool frmTrackListOption::CreateTrackList(int tracks)
{
    const bool nameless = m_chTrackWithoutName->isChecked();
    const bool toIni = m_chTrackSave->isChecked();
    QList<QVariant> names;
    QStringList iniNames;
    for (int i = 1; i <= tracks; ++i) {
        if (nameless) {
            const QString name = QStringLiteral("Запись ") + QString::number(i);
            names.append(name);
            iniNames.append(name);
            continue;
        }
        // A cancelled box leaves this track without a name and goes on to the next.
        const std::optional<QString> answer = m_ctx.prompter().input(
            QStringLiteral("Введите название ") + QString::number(i) + QStringLiteral("-го из ") +
                QString::number(tracks) + QStringLiteral(" треков:"),
            programCaption(), QString());
        const bool named = answer && !answer->isEmpty();
        names.append(named ? QVariant(answer->left(kTrackNameLength)) : QVariant());
        iniNames.append(named ? *answer : QString());
    }
    return underErrorReport(m_ctx, QStringLiteral("frmTrackListOption, CreateTrackList()"), [&] {
        writeTrackNames(m_ctx, m_ctx.CurrentDiscID, names);
        if (toIni) {
            writeCdPlayerDisc(cdPlayerIni(m_ctx), m_ctx.CurrentDiscID, {m_artist, m_album, iniNames});
        }
    });
}

bool frmTrackListOption::CreateLinkDiskID(int tracks, int seconds)
{
    return underErrorReport(m_ctx, QStringLiteral("frmTrackListOption, CreateLinkDiskID()"), [&] {
        linkTrackList(m_ctx, m_number, m_slot, m_ctx.CurrentDiscID, tracks, seconds);
    });
}

} // namespace vinora
