#include "maintenance/frmReanimation.h"

#include "frame/AppContext.h"
#include "maintenance/MaintenanceTexts.h"
#include "maintenance/Reanimation.h"
#include "ui/BackgroundWork.h"
#include "ui/TitleWidth.h"
#include "ui/WaitCursor.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

namespace vinora {
namespace {

struct OptionTexts
{
    const char* caption;
    const char* recreate; // the caption of chReCreate, empty when it is off
    const char* explanation;
};

const OptionTexts kOptions[] = {
    {"Полное восстановление", "",
     "Базы данных создаются заново, как при первом запуске. Все данные каталогов, списков и должников "
     "будут потеряны."},
    {"Восстановление ссылок на структуру диска", "Пересоздать базу данных по структуре дисков",
     "Ссылки компьютерных дисков на несуществующие списки файлов удаляются, число дисков 0 исправляется "
     "на 1. С отметкой база данных списков файлов создается заново."},
    {"Восстановление ссылок на треки", "Пересоздать базу данных по трекам",
     "Ссылки аудио дисков на несуществующие списки треков удаляются, число дисков 0 исправляется на 1. "
     "С отметкой база данных списков треков создается заново."},
};

} // namespace

frmReanimation::frmReanimation(AppContext& ctx, QWidget* parent) : QDialog(parent), m_ctx(ctx)
{
    setObjectName(QStringLiteral("frmReanimation"));
    setWindowTitle(QStringLiteral("Реанимация Базы данных"));
    auto* layout = new QVBoxLayout(this);
    for (int i = 0; i < 3; ++i) {
        auto* option = new QRadioButton(QString::fromUtf8(kOptions[i].caption), this);
        option->setObjectName(QStringLiteral("optReanimation%1").arg(i));
        auto* explanation = new QLabel(QString::fromUtf8(kOptions[i].explanation), this);
        explanation->setWordWrap(true);
        explanation->setContentsMargins(24, 0, 0, 8);
        layout->addWidget(option);
        layout->addWidget(explanation);
        m_options.append(option);
        connect(option, &QRadioButton::toggled, this, [this, i](bool on) {
            if (on) {
                optReanimation_Click(i);
            }
        });
    }
    m_chReCreate = new QCheckBox(this);
    m_chReCreate->setObjectName(QStringLiteral("chReCreate"));
    layout->addWidget(m_chReCreate);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    auto* start = new QPushButton(QStringLiteral("Начать"), this);
    start->setObjectName(QStringLiteral("imgButton0"));
    auto* close = new QPushButton(QStringLiteral("Закрыть"), this);
    close->setObjectName(QStringLiteral("imgButton1"));
    buttons->addWidget(start);
    buttons->addWidget(close);
    layout->addLayout(buttons);
    connect(start, &QPushButton::clicked, this, &frmReanimation::cmdStart);
    connect(close, &QPushButton::clicked, this, &QDialog::reject);
    m_options[1]->setChecked(true);
    keepTitleVisible(this);
}

int frmReanimation::option() const
{
    for (int i = 0; i < m_options.size(); ++i) {
        if (m_options[i]->isChecked()) {
            return i;
        }
    }
    return 0;
}

void frmReanimation::optReanimation_Click(int index)
{
    m_chReCreate->setText(QString::fromUtf8(kOptions[index].recreate));
    m_chReCreate->setEnabled(index != 0);
    if (index == 0) {
        m_chReCreate->setChecked(false);
    }
}

void frmReanimation::cmdStart()
{
    const int chosen = option();
    if (chosen == 0) {
        if (m_ctx.prompter().message(
                QStringLiteral("Вы уверены, что хотите приступить к реанимации vinora?\n\nВсе "
                               "ранее внесенные данные будут потеряны!"),
                MessageStyle::OkCancelStop) != Answer::Ok) {
            return;
        }
        const bool rebuilt =
            underMaintenanceReport(m_ctx, QStringLiteral("frmReanimation, imgButton_Click()"), [this] {
                WaitCursor hourglass;
                runInBackground([this] { fullReanimation(m_ctx); });
            });
        if (rebuilt) {
            m_ctx.prompter().message(QStringLiteral("Реанимация vinora успешно завершена!"),
                                     MessageStyle::Information);
            m_returnToMain = true;
            accept();
        }
        return;
    }
    if (!m_chReCreate->isChecked()) {
        repair(chosen);
        return;
    }
    recreate(chosen, chosen == 1
                         ? QStringLiteral("Вы уверены, что хотите приступить к реанимации структуры дисков?"
                                          "\n\nВсе ранее добавленные файлы будут удалены!")
                         : QStringLiteral("Вы уверены, что хотите приступить к реанимации треков?\n\nВсе "
                                          "ранее добавленные треки будут удалены!"));
}

void frmReanimation::repair(int kind)
{
    RepairReport report;
    const bool done = underMaintenanceReport(m_ctx, QStringLiteral("frmReanimation, Reanimation()"), [&] {
        WaitCursor hourglass;
        report = runInBackground([&] { return Reanimation(m_ctx, kind, true); });
    });
    if (done) {
        m_ctx.prompter().message(reanimationMessage(report), MessageStyle::Information);
    }
}

void frmReanimation::recreate(int kind, const QString& question)
{
    if (m_ctx.prompter().message(question, MessageStyle::OkCancelStop) != Answer::Ok) {
        return;
    }
    const bool done =
        underMaintenanceReport(m_ctx, QStringLiteral("frmReanimation, ReanimationReCreate()"), [&] {
            WaitCursor hourglass;
            runInBackground([&] { ReanimationReCreate(m_ctx, kind); });
        });
    if (done) {
        m_ctx.prompter().message(QStringLiteral("Операция успешно завершена!"), MessageStyle::Information);
    }
}

} // namespace vinora
