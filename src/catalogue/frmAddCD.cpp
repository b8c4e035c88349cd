#include "catalogue/frmAddCD.h"

#include "catalogue/AudioSources.h"
#include "catalogue/DiscRecord.h"
#include "catalogue/Numbering.h"
#include "catalogue/frmAddInCatalogue.h"
#include "cddb/CddbServers.h"
#include "cddb/frmCDDB.h"
#include "contents/TrackListStore.h"
#include "frame/AppContext.h"
#include "frame/FaultLog.h"
#include "frame/TextRules.h"
#include "recognition/DiscIdentity.h"
#include "recognition/DriveChoice.h"
#include "recognition/DriveWatch.h"
#include "recognition/Medium.h"
#include "recognition/frmSelectCategory.h"
#include "store/Db.h"
#include "ui/EnterKey.h"
#include "ui/KeyFilter.h"
#include "ui/TitleWidth.h"
#include "ui/WaitCursor.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace vinora {
namespace {

const char* const kKinds[] = {"AudioCD", "PcCD", "DVD"};

} // namespace

frmAddCD::frmAddCD(AppContext& ctx, Category category, QWidget* parent)
    : QDialog(parent), m_ctx(ctx), m_category(category)
{
    setObjectName(QStringLiteral("frmAddCD"));
    setWindowTitle(QStringLiteral("Добавление диска"));
    auto* layout = new QVBoxLayout(this);
    auto* caption = new QLabel(frmAddInCatalogue::addCaption(category), this);
    caption->setObjectName(QStringLiteral("lblCDsCount0"));
    layout->addWidget(caption);
    auto* form = new QFormLayout;
    m_txtNumber = new QLineEdit(this);
    m_txtNumber->setObjectName(QStringLiteral("txtNumber"));
    KeyFilter::install(m_txtNumber, DigitKeys);
    auto* search = new QPushButton(QStringLiteral("Поиск свободного номера"), this);
    search->setObjectName(QStringLiteral("imgButton2"));
    search->setAutoDefault(false);
    auto* numberRow = new QHBoxLayout;
    numberRow->addWidget(m_txtNumber, 1);
    numberRow->addWidget(search);
    form->addRow(QStringLiteral("Номер диска:"), numberRow);
    m_cmbDrive = new QComboBox(this);
    m_cmbDrive->setObjectName(QStringLiteral("cmbDrive"));
    form->addRow(QStringLiteral("Устройство:"), m_cmbDrive);
    m_lblInserCD = new QLabel(this);
    m_lblInserCD->setObjectName(QStringLiteral("lblInserCD"));
    form->addRow(QStringLiteral("В устройстве:"), m_lblInserCD);
    layout->addLayout(form);
    m_chAutoDetect =
        new QCheckBox(QStringLiteral("Определять этот диск, когда он вставлен в дисковод"), this);
    m_chAutoDetect->setObjectName(QStringLiteral("chAutoDetect"));
    layout->addWidget(m_chAutoDetect);
    // The audio sources: a CDDB server or cdplayer.ini instead of the editor.
    m_chQuery[0] = new QCheckBox(QStringLiteral("сервер CDDB"), this);
    m_chQuery[1] = new QCheckBox(QStringLiteral("файл cdplayer.ini"), this);
    m_chTrackSave = new QCheckBox(QStringLiteral("Сохранить в cdplayer.ini"), this);
    m_cmbServer = new QComboBox(this);
    m_chQuery[0]->setObjectName(QStringLiteral("chQuery0"));
    m_chQuery[1]->setObjectName(QStringLiteral("chQuery1"));
    m_chTrackSave->setObjectName(QStringLiteral("chTrackSave"));
    m_cmbServer->setObjectName(QStringLiteral("cmbServer"));
    for (QWidget* source : {static_cast<QWidget*>(m_chQuery[0]), static_cast<QWidget*>(m_chQuery[1]),
                            static_cast<QWidget*>(m_chTrackSave), static_cast<QWidget*>(m_cmbServer)}) {
        source->setEnabled(false);
        source->setVisible(category == Category::Audio);
        layout->addWidget(source);
    }
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setObjectName(QStringLiteral("imgButton0"));
    buttons->button(QDialogButtonBox::Ok)->setAutoDefault(false);
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, &frmAddCD::cmdOK);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(search, &QPushButton::clicked, this, &frmAddCD::cmdSearch);
    onEnter(m_txtNumber, [this] { cmdOK(); });

    if (!fillDriveChoice(*m_cmbDrive, m_ctx.ini())) {
        m_cmbDrive->addItem(QStringLiteral("---"));
    }
    connect(m_cmbDrive, &QComboBox::activated, this, &frmAddCD::UpdateDriveInfo);
    for (int index : {0, 1}) {
        connect(m_chQuery[index], &QCheckBox::clicked, this, [this, index] { chQuery_Click(index); });
    }
    keepTitleVisible(this);
}

QString frmAddCD::drive() const
{
    return m_cmbDrive->isEnabled() ? m_cmbDrive->currentText() : QString();
}

void frmAddCD::showEvent(QShowEvent* event)
{
    QDialog::showEvent(event);
    if (m_activated) {
        return;
    }
    m_activated = true;
    m_cmbServer->addItems(cddbServerItems(m_ctx.ini()));
    m_cmbServer->setCurrentIndex(preselectedServer(m_ctx.ini()));
    if (!m_cmbDrive->isEnabled()) {
        m_ctx.prompter().message(QStringLiteral("Устройство для чтения компакт-дисков не найдено!"),
                                 MessageStyle::Exclamation);
    }
    underFaultHandler(m_ctx, QStringLiteral("frmAddCD, Form_Activate()"), [this] {
        const Db db(m_ctx.MainDBPath, Db::Access::ReadOnly);
        m_txtNumber->setText(QString::number(firstFreeNumber(db, catalogueKind(m_category))));
    });
    UpdateDriveInfo();
    m_txtNumber->selectAll();
    m_txtNumber->setFocus();
    if (CheckCDID()) {
        if (m_ctx.prompter().message(
                QStringLiteral("Вы пытаетесь добавить диск, который уже есть в каталоге! Продолжить?"),
                MessageStyle::YesNo) == Answer::Yes) {
            m_chAutoDetect->setChecked(false);
            m_chAutoDetect->setEnabled(false);
        } else {
            QMetaObject::invokeMethod(this, &QDialog::reject, Qt::QueuedConnection);
        }
    }
}

void frmAddCD::UpdateDriveInfo()
{
    const QString kind = drive().isEmpty()
                             ? QString()
                             : GetDiskIDcheck(m_ctx, drive(), frmSelectCategory::chooser(m_ctx, this));
    m_lblInserCD->setText(kindCaption(kind));
    const bool expected = kind == QString::fromLatin1(kKinds[static_cast<int>(m_category)]);
    const bool bound = expected && CheckCDID();
    m_chAutoDetect->setChecked(expected && !bound);
    m_chAutoDetect->setEnabled(expected && !bound);
    if (m_category == Category::Audio) {
        setAudioSources(expected);
    }
}

void frmAddCD::setAudioSources(bool usable)
{
    m_chQuery[0]->setEnabled(usable);
    m_chQuery[1]->setEnabled(usable);
    m_cmbServer->setEnabled(usable && m_chQuery[0]->isChecked());
    if (!usable) {
        m_chQuery[0]->setChecked(false);
        m_chQuery[1]->setChecked(false);
        m_chTrackSave->setEnabled(false);
    }
}

void frmAddCD::chQuery_Click(int index)
{
    if (!m_chQuery[index]->isChecked()) {
        if (index == 0) {
            m_chTrackSave->setEnabled(false);
            m_cmbServer->setEnabled(false);
        }
        return;
    }
    m_chQuery[1 - index]->setChecked(false);
    m_chTrackSave->setEnabled(index == 0);
    m_cmbServer->setEnabled(index == 0);
}

bool frmAddCD::CheckAudioDisc(int number)
{
    const auto refuse = [this](const QString& text) {
        m_ctx.prompter().message(text, MessageStyle::Exclamation);
        return false;
    };
    if (drive().isEmpty()) {
        return refuse(QStringLiteral("Устройство для чтения компакт-дисков не найдено!"));
    }
    if (GetDiskIDcheck(m_ctx, drive(), frmSelectCategory::chooser(m_ctx, this)) !=
        QStringLiteral("AudioCD")) {
        return refuse(QStringLiteral(
            "Вставьте Аудио диск в устройство для чтения компакт-дисков и повторите операцию."));
    }
    m_ctx.CurrentDiscID = GetDiskID(m_ctx, drive(), frmSelectCategory::chooser(m_ctx, this));
    if (m_ctx.CurrentDiscID.isEmpty()) {
        return refuse(
            QStringLiteral("В устройстве для чтения компакт дисков вставлен диск без идентификационного "
                           "номера (возможно, что диск записан в формате PacketCD, который не "
                           "поддерживается программой)!"));
    }
    m_ctx.LastSavedNumber = static_cast<qint16>(number);
    return true;
}

void frmAddCD::queryServer()
{
    if (!CreateTrackTable(m_ctx, m_ctx.CurrentDiscID, true)) {
        return;
    }
    m_ctx.CatalogueQueryFilter = QStringLiteral("cddb:1");
    m_ctx.CDDBUpdateRow = false;
    m_ctx.CDDBSaveToIni = m_chTrackSave->isChecked();
    if (m_chAutoDetect->isChecked()) {
        m_ctx.AutoDetectTag = QStringLiteral("ad:") + m_ctx.CurrentDiscID;
    }
    m_ctx.CDDBDiscInSet = 1;
    m_ctx.DialogDone = false;
    hide();
    frmCDDB query(m_ctx, drive(), m_cmbServer->currentText(), audioNumberShift(m_ctx), parentWidget());
    m_ctx.prompter().showModal(query);
    m_ctx.CDDBSaveToIni = false;
    m_ctx.CatalogueQueryFilter.clear();
    m_fromSource = true;
}

void frmAddCD::importFromCdPlayer()
{
    WaitCursor hourglass;
    if (!CreateTrackTable(m_ctx, m_ctx.CurrentDiscID, true)) {
        return;
    }
    const bool found =
        underFaultHandler(m_ctx, QStringLiteral("frmAddCD, AddNewDisk()"),
                          [this] { return AddNewDisk(m_ctx, m_chAutoDetect->isChecked(), GetLengthCD()); }) &&
        underFaultHandler(m_ctx, QStringLiteral("frmAddCD, ImportTrackList()"),
                          [this] { return importTrackNames(m_ctx, m_ctx.CurrentDiscID).has_value(); });
    if (found) {
        m_ctx.DialogDone = true;
        m_fromSource = true;
        return;
    }
    dropTrackList(m_ctx, m_ctx.CurrentDiscID);
    m_ctx.prompter().message(QStringLiteral("Информация о этом диске отсутствует в файле cdplayer.ini!"),
                             MessageStyle::Exclamation);
}

QString frmAddCD::GetLengthCD() const
{
    const std::unique_ptr<Medium> medium = openMedium(drive());
    return medium ? playingTimeText(medium->toc()) : QString();
}

bool frmAddCD::CheckCDID()
{
    if (drive().isEmpty()) {
        return false;
    }
    m_ctx.CurrentDiscID = GetDiskID(m_ctx, drive(), frmSelectCategory::chooser(m_ctx, this));
    if (m_ctx.CurrentDiscID.isEmpty()) {
        return false;
    }
    return underFaultHandler(m_ctx, QStringLiteral("frmAddCD, CheckCDID()"), [this] {
        const Db db(m_ctx.MainDBPath, Db::Access::ReadOnly);
        return findBoundDisc(db, m_category, m_ctx.CurrentDiscID).has_value();
    });
}

void frmAddCD::cmdSearch()
{
    underFaultHandler(m_ctx, QStringLiteral("frmAddCD, cmdSearch()"), [this] {
        const CatalogueKind& kind = catalogueKind(m_category);
        int candidate = 1;
        for (;;) {
            {
                const Db db(m_ctx.MainDBPath, Db::Access::ReadOnly);
                while (discTitle(db, kind, candidate)) {
                    ++candidate;
                }
            }
            const Answer answer = m_ctx.prompter().message(
                QStringLiteral("Найден свободный диск № ") + QString::number(candidate) +
                    QStringLiteral(".\nДа\t- принять этот номер\nНет\t- поиск следующего номера\nОтмена\t- "
                                   "отменить поиск"),
                MessageStyle::YesNoCancelQuestion);
            if (answer == Answer::Yes) {
                m_txtNumber->setText(QString::number(candidate));
                cmdOK();
                return;
            }
            if (answer != Answer::No) {
                return;
            }
            ++candidate;
            if (m_category == Category::Audio && candidate >= 10000) {
                m_ctx.prompter().message(QStringLiteral("Свободных номеров нет!"), MessageStyle::Exclamation);
                return;
            }
        }
    });
}

void frmAddCD::cmdOK()
{
    const int number = static_cast<int>(m_txtNumber->text().toLongLong());
    if (number <= 0 || number > 32767) {
        m_ctx.prompter().message(QStringLiteral("Указан не верный номер диска. Повторите ввод."),
                                 MessageStyle::Exclamation);
        m_txtNumber->selectAll();
        return;
    }
    m_txtNumber->setText(QString::number(number));
    const bool goOn = underFaultHandler(m_ctx, QStringLiteral("frmAddCD, cmdOK()"), [&] {
        std::optional<QString> title;
        {
            const Db db(m_ctx.MainDBPath, Db::Access::ReadOnly);
            title = discTitle(db, catalogueKind(m_category), number, true);
        }
        if (title &&
            m_ctx.prompter().message(
                QStringLiteral("Диск № ") + QString::number(number) + QStringLiteral(":\n'") + *title +
                    QStringLiteral("' уже существует.\nСместить все номера на 1 начиная с ") +
                    QString::number(number) + QStringLiteral("-го?"),
                MessageStyle::YesNoQuestion) == Answer::Yes) {
            m_ctx.ShiftStart = static_cast<qint16>(number);
        }
        if (m_category == Category::Audio) {
            for (int index : {0, 1}) {
                if (m_chQuery[index]->isChecked() && m_chQuery[index]->isEnabled()) {
                    if (CheckAudioDisc(number)) {
                        index == 0 ? queryServer() : importFromCdPlayer();
                    }
                    return false;
                }
            }
        }
        if (m_chAutoDetect->isChecked()) {
            WaitCursor hourglass;
            m_ctx.CurrentDiscID = GetDiskID(m_ctx, drive(), frmSelectCategory::chooser(m_ctx, this));
            if (m_ctx.CurrentDiscID.isEmpty()) {
                m_ctx.prompter().message(m_category == Category::Audio
                                             ? QStringLiteral("Идентификатор диска не обнаружен!")
                                             : QStringLiteral("Идентификатор не обнаружен!"),
                                         MessageStyle::Exclamation);
                return false;
            }
            m_ctx.AutoDetectTag = QStringLiteral("ad:") + m_ctx.CurrentDiscID;
        }
        return true;
    });
    if (m_fromSource) {
        m_ctx.ShiftStart = 0;
        m_ctx.AutoDetectTag.clear();
        accept();
        return;
    }
    if (!goOn) {
        return;
    }
    m_number = number;
    accept();
}

bool runAddDisc(AppContext& ctx, Category category, QWidget* parent)
{
    int number = 0;
    {
        frmAddCD first(ctx, category, parent);
        if (ctx.prompter().showModal(first) != QDialog::Accepted) {
            return false;
        }
        if (first.addedFromSource()) {
            const bool added = ctx.DialogDone;
            ctx.DialogDone = false;
            return added;
        }
        number = first.chosenNumber();
    }
    ctx.DialogDone = false;
    frmAddInCatalogue editor(ctx, category, frmAddInCatalogue::Mode::Add, number, parent);
    ctx.prompter().showModal(editor);
    if (category != Category::Audio) {
        // The computer and DVD paths end so; the audio path leaves the catalogue's filter be.
        ctx.CatalogueQueryFilter.clear();
    }
    const bool added = ctx.DialogDone;
    ctx.DialogDone = false;
    return added;
}

} // namespace vinora
