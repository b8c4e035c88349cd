#include "maintenance/frmDBWizard.h"

#include "catalogue/frmEditDictionary.h"
#include "frame/AppContext.h"
#include "frame/FaultLog.h"
#include "maintenance/Backup.h"
#include "maintenance/MaintenanceTexts.h"
#include "maintenance/frmReanimation.h"
#include "store/BackupSet.h"
#include "store/Compaction.h"
#include "store/Db.h"
#include "store/FileErrors.h"
#include "ui/BackgroundWork.h"
#include "ui/TitleWidth.h"
#include "ui/WaitCursor.h"

#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QPushButton>
#include <QVBoxLayout>

namespace vinora {
namespace {

const QString kNoBackup = QStringLiteral("-");

QString backupDateText(const QDate& date)
{
    return QStringLiteral("от ") + QLocale().toString(date, QStringLiteral("d MMMM yyyy г."));
}

QString place(const char* routine)
{
    return QStringLiteral("frmDBWizard, ") + QString::fromLatin1(routine) + QStringLiteral("()");
}

} // namespace

frmDBWizard::frmDBWizard(AppContext& ctx, QWidget* parent) : QDialog(parent), m_ctx(ctx)
{
    setObjectName(QStringLiteral("frmDBWizard"));
    setWindowTitle(QStringLiteral("Мастер обслуживания"));
    auto* layout = new QVBoxLayout(this);

    const auto makeButton = [this](int index, const char* text) {
        auto* button = new QPushButton(QString::fromUtf8(text), this);
        button->setObjectName(QStringLiteral("imgButton%1").arg(index));
        button->setAutoDefault(false);
        m_buttons.append(button);
        return button;
    };
    const char* captions[] = {"Закрыть",  "Восстановить",  "Создать/обновить",
                              "Удалить",  "Стили...",      "Описания...",
                              "Жанры...", "Реанимация...", "Сжать базу данных"};
    for (int i = 0; i < 9; ++i) {
        makeButton(i, captions[i]);
    }

    auto* backup = new QGroupBox(QStringLiteral("Резервная копия"), this);
    auto* backupForm = new QFormLayout(backup);
    backupForm->addRow(QStringLiteral("Последняя резервная копия:"),
                       addValue(QStringLiteral("lblLastBackup")));
    backupForm->addRow(QStringLiteral("Размер базы данных:"), addValue(QStringLiteral("lblFileDBLen")));
    backupForm->addRow(QStringLiteral("Размер резервной копии:"),
                       addValue(QStringLiteral("lblFileBackupLen")));
    auto* backupButtons = new QHBoxLayout;
    for (int index : {2, 1, 3}) {
        backupButtons->addWidget(button(index));
    }
    backupForm->addRow(backupButtons);
    layout->addWidget(backup);

    auto* dictionaries = new QGroupBox(QStringLiteral("Справочники"), this);
    auto* dictionaryGrid = new QGridLayout(dictionaries);
    const std::pair<const char*, const char*> rows[] = {{"Стилей:", "lblStyleCurrent"},
                                                        {"Описаний:", "lblDescriptionCurrent"},
                                                        {"Жанров:", "lblGanreCurrent"}};
    for (int row = 0; row < 3; ++row) {
        dictionaryGrid->addWidget(new QLabel(QString::fromUtf8(rows[row].first), dictionaries), row, 0);
        dictionaryGrid->addWidget(addValue(QString::fromLatin1(rows[row].second)), row, 1);
        dictionaryGrid->addWidget(button(4 + row), row, 2);
    }
    layout->addWidget(dictionaries);

    auto* service = new QGroupBox(QStringLiteral("Обслуживание"), this);
    auto* serviceRow = new QHBoxLayout(service);
    serviceRow->addWidget(button(8));
    serviceRow->addWidget(button(7));
    layout->addWidget(service);
    auto* closeRow = new QHBoxLayout;
    closeRow->addStretch();
    closeRow->addWidget(button(0));
    layout->addLayout(closeRow);

    connect(button(0), &QPushButton::clicked, this, &QDialog::reject);
    connect(button(1), &QPushButton::clicked, this, &frmDBWizard::cmdRecover);
    connect(button(2), &QPushButton::clicked, this, &frmDBWizard::cmdCreate);
    connect(button(3), &QPushButton::clicked, this, &frmDBWizard::cmdDelete);
    connect(button(4), &QPushButton::clicked, this, [this] { editDictionary(Dictionary::Style); });
    connect(button(5), &QPushButton::clicked, this, [this] { editDictionary(Dictionary::Description); });
    connect(button(6), &QPushButton::clicked, this, [this] { editDictionary(Dictionary::Genre); });
    connect(button(7), &QPushButton::clicked, this, &frmDBWizard::openReanimation);
    connect(button(8), &QPushButton::clicked, this, &frmDBWizard::cmdCompress);
    keepTitleVisible(this);
    Form_Load();
}

QLabel* frmDBWizard::addValue(const QString& objectName)
{
    auto* value = new QLabel(this);
    value->setObjectName(objectName);
    m_labels.insert(objectName, value);
    return value;
}

QPushButton* frmDBWizard::button(int index) const
{
    return m_buttons.value(index);
}

void frmDBWizard::showDatabaseSize()
{
    label(QStringLiteral("lblFileDBLen"))->setText(kilobytesText(databasesSize(m_ctx)));
}

void frmDBWizard::Form_Load()
{
    underMaintenanceReport(m_ctx, place("Form_Load"), [this] {
        const QDate last = lastBackupDate(m_ctx);
        const bool backup = backupSetComplete(m_ctx) && last.isValid();
        label(QStringLiteral("lblLastBackup"))->setText(backup ? backupDateText(last) : kNoBackup);
        showDatabaseSize();
        label(QStringLiteral("lblFileBackupLen"))
            ->setText(backup ? kilobytesText(backupSetSize(m_ctx)) : QStringLiteral("0 Kб"));
        button(1)->setEnabled(backup);
        button(2)->setEnabled(true);
        button(3)->setEnabled(backup);
    });
    UpdateCount();
}

void frmDBWizard::UpdateCount()
{
    underMaintenanceReport(m_ctx, place("UpdateCount"), [this] {
        const Db db(m_ctx.MainDBPath, Db::Access::ReadOnly);
        const std::pair<const char*, const char*> counts[] = {
            {"lblStyleCurrent", "Стиль"}, {"lblDescriptionCurrent", "Описание"}, {"lblGanreCurrent", "Жанр"}};
        for (const auto& [name, table] : counts) {
            label(QString::fromLatin1(name))
                ->setText(QString::number(
                    db.scalar(QStringLiteral("SELECT count(*) FROM \"") + QString::fromUtf8(table) + u'"')
                        .toInt()));
        }
    });
}

void frmDBWizard::cmdCreate()
{
    if (label(QStringLiteral("lblLastBackup"))->text() != kNoBackup &&
        m_ctx.prompter().message(QStringLiteral("Вы действительно хотите обновить файлы резервной копии?"),
                                 MessageStyle::YesNoQuestion) != Answer::Yes) {
        return;
    }
    const bool made = underMaintenanceReport(m_ctx, place("cmdCreate"), [this] {
        WaitCursor hourglass;
        runInBackground([this] { createBackup(m_ctx); });
    });
    if (!made) {
        Form_Load(); // whatever the failure left is shown as it is
        return;
    }
    button(1)->setEnabled(true);
    button(3)->setEnabled(true);
    label(QStringLiteral("lblLastBackup"))->setText(backupDateText(m_ctx.clock().today()));
    showDatabaseSize();
    label(QStringLiteral("lblFileBackupLen"))->setText(kilobytesText(backupSetSize(m_ctx)));
    m_ctx.prompter().message(QStringLiteral("Создание/обновление резервной копии данных успешно завершено."),
                             MessageStyle::Information);
}

void frmDBWizard::cmdRecover()
{
    if (m_ctx.prompter().message(
            QStringLiteral("Вы действительно хотите восстановить резервную копию данных?"),
            MessageStyle::YesNoQuestion) != Answer::Yes) {
        return;
    }
    if (!backupSetComplete(m_ctx)) {
        m_ctx.prompter().message(QStringLiteral("ОШИБКА.\n\nФайл резервной копии данных не найден!"),
                                 MessageStyle::Stop);
        return;
    }
    const bool restored = underMaintenanceReport(m_ctx, place("cmdRecover"), [this] {
        WaitCursor hourglass;
        runInBackground([this] { recoverBackup(m_ctx); });
    });
    if (!restored) {
        return;
    }
    label(QStringLiteral("lblLastBackup"))->setText(QStringLiteral("восстановлена"));
    showDatabaseSize();
    UpdateCount();
    m_ctx.prompter().message(QStringLiteral("Резервная копия данных успешно восстановлена."),
                             MessageStyle::Information);
}

void frmDBWizard::cmdDelete()
{
    if (!backupSetComplete(m_ctx)) {
        m_ctx.prompter().message(QStringLiteral("ОШИБКА.\n\nФайл резервной копии данных не найден!"),
                                 MessageStyle::Stop);
        return;
    }
    if (m_ctx.prompter().message(QStringLiteral("Вы действительно хотите удалить резервную копию данных?"),
                                 MessageStyle::YesNoQuestion) != Answer::Yes) {
        return;
    }
    const bool deleted = underMaintenanceReport(m_ctx, place("cmdDelete"), [this] { deleteBackup(m_ctx); });
    if (!deleted) {
        Form_Load();
        return;
    }
    label(QStringLiteral("lblLastBackup"))->setText(kNoBackup);
    label(QStringLiteral("lblFileBackupLen"))->setText(QStringLiteral("0 Kб"));
    button(1)->setEnabled(false);
    button(3)->setEnabled(false);
}

void frmDBWizard::cmdCompress()
{
    if (m_ctx.prompter().message(
            QStringLiteral("Этот процесс может занять некоторое время, в зависимости от объема "
                           "файлов базы данных!\nПродолжить?"),
            MessageStyle::OkCancelQuestion) != Answer::Ok) {
        return;
    }
    const qint64 before = databasesSize(m_ctx);
    bool compacted = false;
    if (!underMaintenanceReport(m_ctx, place("cmdCompress"), [&] {
            WaitCursor hourglass;
            compacted = runInBackground([this] { return compactDatabases(m_ctx); });
            if (!compacted) {
                throw databasesBusyError();
            }
        })) {
        return;
    }
    const qint64 after = databasesSize(m_ctx);
    // Here the size ends in the Cyrillic "Кб".
    label(QStringLiteral("lblFileDBLen"))->setText(QString::number(after / 1024) + QStringLiteral(" Кб"));
    m_ctx.prompter().message(compactionMessage(before, after), MessageStyle::Information);
}

void frmDBWizard::editDictionary(Dictionary dictionary)
{
    {
        frmEditDictionary editor(m_ctx, dictionary, this);
        m_ctx.prompter().showModal(editor);
    }
    UpdateCount();
}

void frmDBWizard::openReanimation()
{
    hide();
    bool backToMain = false;
    {
        frmReanimation repair(m_ctx, this);
        m_ctx.prompter().showModal(repair);
        backToMain = repair.returnToMain();
    }
    if (backToMain) {
        reject();
        return;
    }
    show();
    Form_Load();
}

} // namespace vinora
