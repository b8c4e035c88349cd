#include "mainwindow/frmCompactDB.h"

#include <QLabel>
#include <QVBoxLayout>

namespace vinora {

frmCompactDB::frmCompactDB(QWidget* parent) : QWidget(parent, Qt::Dialog | Qt::FramelessWindowHint)
{
    setObjectName(QStringLiteral("frmCompactDB"));
    setWindowModality(Qt::ApplicationModal);
    auto* layout = new QVBoxLayout(this);
    auto* text = new QLabel(QStringLiteral("Сжатие базы данных...\nПожалуйста, подождите."), this);
    text->setAlignment(Qt::AlignCenter);
    layout->addWidget(text);
}

void frmCompactDB::showAndPaint()
{
    show();
    repaint();
}

} // namespace vinora
