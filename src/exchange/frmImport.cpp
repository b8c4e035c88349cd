#include "exchange/frmImport.h"

#include "frame/AppContext.h"
#include "frame/FaultLog.h"
#include "store/DatabaseLock.h"
#include "ui/BackgroundWork.h"
#include "ui/TitleWidth.h"
#include "ui/WaitCursor.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace vinora {

frmImport::frmImport(AppContext& ctx, QWidget* parent) : QDialog(parent), m_ctx(ctx)
{
    setObjectName(QStringLiteral("frmImport"));
    setWindowTitle(QStringLiteral("Импорт"));
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(
        new QLabel(QStringLiteral("Каталоги другой базы данных vinora добавляются в конец ваших "
                                  "каталогов под новыми номерами."),
                   this));
    const auto box = [this](const char* name, const char* text, bool checked) {
        auto* check = new QCheckBox(QString::fromUtf8(text), this);
        check->setObjectName(QString::fromLatin1(name));
        check->setChecked(checked);
        return check;
    };
    auto* catalogues = new QGroupBox(QStringLiteral("Категории каталога"), this);
    auto* grid = new QVBoxLayout(catalogues);
    m_chAD = box("chAD", "Аудио диски", true);
    m_chImportTracks = box("chImportTracks", "со списками треков", true);
    m_chPC = box("chPC", "Компьютерные диски", true);
    m_chImportFiles = box("chImportFiles", "со списками файлов", true);
    m_chDVD = box("chDVD", "DVD диски", true);
    for (QCheckBox* check : {m_chAD, m_chImportTracks, m_chPC, m_chImportFiles, m_chDVD}) {
        grid->addWidget(check);
    }
    m_chImportTracks->setContentsMargins(24, 0, 0, 0);
    m_chImportFiles->setContentsMargins(24, 0, 0, 0);
    layout->addWidget(catalogues);
    m_chDouble = box("chDouble", "Не импортировать диски, которые уже есть в каталоге", true);
    layout->addWidget(m_chDouble);
    m_lblStat = new QLabel(this);
    m_lblStat->setObjectName(QStringLiteral("lblStat"));
    layout->addWidget(m_lblStat);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    m_start = new QPushButton(QStringLiteral("Импорт"), this);
    m_start->setObjectName(QStringLiteral("imgButton0"));
    m_close = new QPushButton(QStringLiteral("Закрыть"), this);
    m_close->setObjectName(QStringLiteral("imgButton1"));
    buttons->addWidget(m_start);
    buttons->addWidget(m_close);
    layout->addLayout(buttons);
    connect(m_start, &QPushButton::clicked, this, &frmImport::Import);
    connect(m_close, &QPushButton::clicked, this, &QDialog::reject);
    connect(m_chAD, &QCheckBox::toggled, this, &frmImport::syncListBoxes);
    connect(m_chPC, &QCheckBox::toggled, this, &frmImport::syncListBoxes);
    syncListBoxes();
    keepTitleVisible(this);
}

QString frmImport::stageText() const
{
    return m_lblStat->text();
}

void frmImport::syncListBoxes()
{
    m_chImportTracks->setEnabled(m_chAD->isChecked());
    m_chImportFiles->setEnabled(m_chPC->isChecked());
}

ImportChoice frmImport::choice() const
{
    ImportChoice choice;
    choice.audio = m_chAD->isChecked();
    choice.computer = m_chPC->isChecked();
    choice.dvd = m_chDVD->isChecked();
    choice.tracks = choice.audio && m_chImportTracks->isChecked();
    choice.files = choice.computer && m_chImportFiles->isChecked();
    choice.skipDoubles = m_chDouble->isChecked();
    return choice;
}

void frmImport::setStage(const QString& text)
{
    m_lblStat->setText(text);
    m_lblStat->repaint();
}

void frmImport::Import()
{
    underFaultHandler(m_ctx, QStringLiteral("frmImport, Import()"), [this] {
        const ImportChoice chosen = choice();
        if (!chosen.any()) {
            m_ctx.prompter().message(QStringLiteral("Ни одна из категорий какталога не была выбрана!"),
                                     MessageStyle::Exclamation);
            return;
        }
        const QString folder = m_ctx.prompter().chooseFolder(
            QStringLiteral("Укажите каталог с базой данных vinora."), QString());
        if (folder.isEmpty()) {
            return;
        }
        setStage(QStringLiteral("Анализ данных"));
        const ImportSources sources = importSources(folder, chosen);
        if (const QString refusal = sourceCheckText(m_ctx, sources, chosen); !refusal.isEmpty()) {
            setStage(QStringLiteral("Ошибка"));
            m_ctx.prompter().message(refusal, MessageStyle::Exclamation);
            return;
        }
        const auto writer = DatabaseLock::tryAcquire(m_ctx.MainDBPath, DatabaseLock::Mode::Shared);
        if (!writer) {
            setStage(QStringLiteral("Ошибка"));
            m_ctx.prompter().message(
                QStringLiteral("С базами данных сейчас работает другая программа (vinora-cli). Повторите "
                               "импорт позже."),
                MessageStyle::Exclamation);
            return;
        }
        m_start->setEnabled(false);
        m_close->setEnabled(false);
        std::optional<ImportCounts> counts;
        std::optional<ImportFailure> failure;
        {
            WaitCursor hourglass;
            const ImportStage stage = [this](const QString& text) {
                QMetaObject::invokeMethod(
                    this, [this, text] { setStage(text); }, Qt::QueuedConnection);
            };
            try {
                counts = runInBackground([&] { return importCatalogues(m_ctx, sources, chosen, stage); });
            } catch (const ImportFailure& stopped) {
                failure = stopped;
            }
        }
        m_start->setEnabled(true);
        m_close->setEnabled(true);
        if (failure) {
            // The stage stays where the import stopped; the whole discs before it stay too.
            QCoreApplication::sendPostedEvents(this);
            m_ctx.prompter().message(importFailureText(chosen, *failure), MessageStyle::Stop);
            return;
        }
        QCoreApplication::sendPostedEvents(this);
        setStage(QStringLiteral("Готово"));
        m_ctx.prompter().message(importSummary(chosen, *counts), MessageStyle::Information);
    });
}

} // namespace vinora
