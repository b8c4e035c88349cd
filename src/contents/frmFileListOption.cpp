#include "contents/frmFileListOption.h"

#include "contents/frmEditFilter.h"
#include "contents/frmFileListCreate.h"
#include "frame/AppContext.h"
#include "frame/FaultLog.h"
#include "recognition/DiscIdentity.h"
#include "recognition/DriveChoice.h"
#include "recognition/frmSelectCategory.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace vinora {
namespace {

const QString kSection = QStringLiteral("FileListOption");

} // namespace

frmFileListOption::frmFileListOption(AppContext& ctx, int number, int slot, QWidget* parent)
    : QDialog(parent), m_ctx(ctx), m_number(number), m_slot(slot)
{
    setObjectName(QStringLiteral("frmFileListOption"));
    setWindowTitle(QStringLiteral("Параметры сканирования диска № %1 (CD%2)").arg(number).arg(slot));
    auto* layout = new QVBoxLayout(this);
    auto* form = new QFormLayout;
    m_cmbDrive = new QComboBox(this);
    m_cmbDrive->setObjectName(QStringLiteral("cmbDrive"));
    m_lblInserCD = new QLabel(this);
    m_lblInserCD->setObjectName(QStringLiteral("lblInserCD"));
    form->addRow(QStringLiteral("Устройство:"), m_cmbDrive);
    form->addRow(QStringLiteral("В устройстве:"), m_lblInserCD);
    layout->addLayout(form);
    const auto box = [this, layout](const char* name, const char* caption, bool checked) {
        auto* check = new QCheckBox(QString::fromUtf8(caption), this);
        check->setObjectName(QString::fromLatin1(name));
        check->setChecked(checked);
        layout->addWidget(check);
        return check;
    };
    m_chFilesInCore = box("chFilesInCore", "Файлы в корневом каталоге", true);
    m_chScanDir = box("chScanDir", "Каталоги и подкаталоги", true);
    m_chScanDirOnly = box("chScanDirOnly", "Только имена каталогов", false);
    m_chLCase = box("chLCase", "Имена файлов в нижнем регистре", false);
    m_chHiddenFiles = box("chHiddenFiles", "Скрытые файлы", false);
    m_chFiles = box("chFiles", "Информация mp3-файлов", true);
    m_chFilter = box("chFilter", "Применять фильтр", false);
    auto* filterRow = new QHBoxLayout;
    m_optFilter[0] = new QRadioButton(QStringLiteral("ненужных файлов"), this);
    m_optFilter[1] = new QRadioButton(QStringLiteral("нужных файлов"), this);
    m_optFilter[0]->setObjectName(QStringLiteral("optFilter0"));
    m_optFilter[1]->setObjectName(QStringLiteral("optFilter1"));
    m_optFilter[0]->setChecked(true);
    for (QRadioButton* option : m_optFilter) {
        option->setEnabled(false); // the filter is off
    }
    auto* editFilter = new QPushButton(QStringLiteral("Фильтр..."), this);
    editFilter->setObjectName(QStringLiteral("imgButton2"));
    editFilter->setAutoDefault(false);
    filterRow->addWidget(m_optFilter[0]);
    filterRow->addWidget(m_optFilter[1]);
    filterRow->addWidget(editFilter);
    layout->addLayout(filterRow);
    m_chShare = box("chShare", "Добавить/Изменить привязку к текущему диску", true);
    auto* buttons = new QHBoxLayout;
    auto* start = new QPushButton(QStringLiteral("Начать сканирование"), this);
    start->setObjectName(QStringLiteral("imgButton0"));
    auto* close = new QPushButton(QStringLiteral("Закрыть"), this);
    close->setObjectName(QStringLiteral("imgButton1"));
    buttons->addStretch(1);
    buttons->addWidget(start);
    buttons->addWidget(close);
    layout->addLayout(buttons);

    connect(start, &QPushButton::clicked, this, &frmFileListOption::cmdStartScan);
    connect(close, &QPushButton::clicked, this, &QDialog::reject);
    connect(editFilter, &QPushButton::clicked, this, [this] {
        frmEditFilter filters(m_ctx, this);
        if (m_optFilter[1]->isChecked()) {
            filters.chooseTable(FilterTable::Include);
        }
        m_ctx.prompter().showModal(filters);
    });
    // A box that changes, by hand or by the stored options, rules what its own click rules
    // and nothing else.
    connect(m_chFilter, &QCheckBox::toggled, this, &frmFileListOption::chFilter_Click);
    connect(m_chScanDir, &QCheckBox::toggled, this, &frmFileListOption::chScanDir_Click);
    connect(m_chScanDirOnly, &QCheckBox::toggled, this, &frmFileListOption::chScanDirOnly_Click);
    connect(m_cmbDrive, &QComboBox::activated, this, &frmFileListOption::cmbDrive_Click);

    if (savingOptions()) {
        loadSavedOptions();
    }
    if (fillDriveChoice(*m_cmbDrive, m_ctx.ini())) {
        cmbDrive_Click();
    } else {
        m_ctx.prompter().message(QStringLiteral("Устройство для чтения компакт-дисков не найдено!"),
                                 MessageStyle::Exclamation);
    }
}

bool frmFileListOption::savingOptions() const
{
    return m_ctx.ini()
               .read(QStringLiteral("Option"), QStringLiteral("SaveFileListOption"), 5)
               .trimmed()
               .left(1) == u"1";
}

void frmFileListOption::loadSavedOptions()
{
    const auto apply = [this](const char* key, QCheckBox* check) {
        if (m_ctx.ini().has(kSection, QString::fromLatin1(key), 2)) {
            check->setChecked(m_ctx.ini().number(kSection, QString::fromLatin1(key), 2) == 1);
        }
    };
    apply("FilesInCore", m_chFilesInCore);
    apply("ScanDir", m_chScanDir);
    apply("ScanDirOnly", m_chScanDirOnly);
    apply("InfoMP3", m_chFiles);
    apply("Filter", m_chFilter);
    apply("HiddenFiles", m_chHiddenFiles);
    apply("LCase", m_chLCase);
    apply("Share", m_chShare);
    if (m_ctx.ini().number(kSection, QStringLiteral("FilterPar"), 2) == 1) {
        m_optFilter[1]->setChecked(true);
    }
}

void frmFileListOption::done(int result)
{
    if (savingOptions()) {
        const auto store = [this](const char* key, const QCheckBox* check) {
            m_ctx.ini().write(kSection, QString::fromLatin1(key),
                              check->isChecked() ? QStringLiteral("1") : QStringLiteral("0"));
        };
        store("FilesInCore", m_chFilesInCore);
        store("ScanDir", m_chScanDir);
        store("ScanDirOnly", m_chScanDirOnly);
        store("InfoMP3", m_chFiles);
        store("Filter", m_chFilter);
        store("HiddenFiles", m_chHiddenFiles);
        store("LCase", m_chLCase);
        store("Share", m_chShare);
        m_ctx.ini().write(kSection, QStringLiteral("FilterPar"),
                          m_optFilter[0]->isChecked() ? QStringLiteral("0") : QStringLiteral("1"));
    }
    QDialog::done(result);
}

void frmFileListOption::chFilter_Click()
{
    for (QRadioButton* option : m_optFilter) {
        option->setEnabled(m_chFilter->isChecked());
    }
}

// Unticking the folders disables the names-only box and leaves its tick, and what that tick
// did to the filter, as they are: a names-only tick that is disabled counts for nothing,
// and the filter stays off until the names-only box is unticked.
void frmFileListOption::chScanDir_Click()
{
    m_chScanDirOnly->setEnabled(m_chScanDir->isChecked());
}

void frmFileListOption::chScanDirOnly_Click()
{
    const bool namesOnly = m_chScanDirOnly->isChecked();
    m_chFilter->setEnabled(!namesOnly);
    for (QRadioButton* option : m_optFilter) {
        option->setEnabled(!namesOnly && m_chFilter->isChecked());
    }
}

void frmFileListOption::cmbDrive_Click()
{
    m_lblInserCD->setText(kindCaption(
        GetDiskIDcheck(m_ctx, m_cmbDrive->currentText(), frmSelectCategory::chooser(m_ctx, this))));
}

ScanOptions frmFileListOption::options() const
{
    ScanOptions options{m_chFilesInCore->isChecked(),
                        m_chScanDir->isChecked(),
                        m_chScanDirOnly->isChecked() && m_chScanDirOnly->isEnabled(),
                        m_chLCase->isChecked(),
                        m_chHiddenFiles->isChecked(),
                        m_chFiles->isChecked(),
                        std::nullopt};
    if (m_chFilter->isChecked() && m_chFilter->isEnabled()) {
        options.filter = m_optFilter[0]->isChecked() ? FilterTable::Exclude : FilterTable::Include;
    }
    return options;
}

void frmFileListOption::cmdStartScan()
{
    ScanRequest request;
    request.drive = m_cmbDrive->isEnabled() ? m_cmbDrive->currentText() : QString();
    request.options = options();
    request.number = m_number;
    request.slot = m_slot;
    request.share = m_chShare->isChecked();
    if (!request.drive.isEmpty() && (request.options.filesInCore || request.options.scanDir)) {
        VolumeInfo volume;
        request.kind = GetDiskIDcheck(m_ctx, request.drive, frmSelectCategory::chooser(m_ctx, this), &volume);
        request.id = request.kind.isEmpty() ? QString() : SerialToID(volume.serial);
    }
    const ScanOutcome outcome = prepareScan(m_ctx, request, [this](const QString& text) {
        return m_ctx.prompter().message(text, MessageStyle::YesNoExclamation) == Answer::Yes;
    });
    if (!outcome.refusal.isEmpty()) {
        m_ctx.prompter().message(outcome.refusal, MessageStyle::Exclamation);
        return;
    }
    if (outcome.id.isEmpty()) {
        if (request.kind == u"PcCD") {
            reject(); // the clash was answered No
        }
        return;
    }
    hide();
    {
        frmFileListCreate walk(m_ctx, request, outcome.id, parentWidget());
        m_ctx.prompter().showModal(walk);
    }
    underFaultHandler(m_ctx, QStringLiteral("frmFileListOption, CreateLinkDiskID()"),
                      [&] { CreateLinkDiskID(m_ctx, m_number, m_slot, outcome.id, request.share); });
    m_ctx.DialogDone = true;
    accept();
}

} // namespace vinora
