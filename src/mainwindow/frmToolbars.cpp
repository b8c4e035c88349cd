#include "mainwindow/frmToolbars.h"

#include "ui/TitleWidth.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

namespace vinora {

frmToolbars::frmToolbars(QList<Bar> bars, std::function<void()> resetLayout, QWidget* parent)
    : QDialog(parent), m_bars(std::move(bars))
{
    setObjectName(QStringLiteral("frmToolbars"));
    setWindowTitle(QStringLiteral("Панели инструментов"));
    auto* column = new QVBoxLayout(this);
    auto* group = new QGroupBox(QStringLiteral("Показывать панели:"), this);
    auto* boxes = new QVBoxLayout(group);
    for (qsizetype i = 0; i < m_bars.size(); ++i) {
        auto* box = new QCheckBox(m_bars[i].title, group);
        boxes->addWidget(box);
        m_boxes.append(box);
        connect(box, &QCheckBox::clicked, this, [this, i](bool on) { m_bars[i].show(on); });
    }
    column->addWidget(group);

    auto* buttons = new QHBoxLayout;
    auto* reset = new QPushButton(QStringLiteral("Восстановить расположение"), this);
    reset->setObjectName(QStringLiteral("cmdReset"));
    reset->setToolTip(QStringLiteral("Показать все панели на их первоначальных местах"));
    connect(reset, &QPushButton::clicked, this, [this, resetLayout = std::move(resetLayout)] {
        resetLayout();
        refresh();
    });
    auto* close = new QPushButton(QStringLiteral("Закрыть"), this);
    close->setObjectName(QStringLiteral("cmdClose"));
    close->setDefault(true);
    connect(close, &QPushButton::clicked, this, &QDialog::accept);
    buttons->addWidget(reset);
    buttons->addStretch(1);
    buttons->addWidget(close);
    column->addLayout(buttons);
    keepTitleVisible(this);
    refresh();
}

void frmToolbars::refresh()
{
    for (qsizetype i = 0; i < m_bars.size(); ++i) {
        m_boxes[i]->setChecked(m_bars[i].shown());
    }
}

QCheckBox* frmToolbars::box(const QString& title) const
{
    for (qsizetype i = 0; i < m_bars.size(); ++i) {
        if (m_bars[i].title == title) {
            return m_boxes[i];
        }
    }
    return nullptr;
}

} // namespace vinora
