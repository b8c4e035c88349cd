#include "mainwindow/DashboardPictures.h"

#include <QApplication>
#include <QPainter>
#include <QPalette>

namespace vinora {
namespace {

QPixmap canvas(int width, int height)
{
    const qreal ratio = qApp ? qApp->devicePixelRatio() : 1.0;
    QPixmap pixmap(QSize(width, height) * ratio);
    pixmap.setDevicePixelRatio(ratio);
    pixmap.fill(Qt::transparent);
    return pixmap;
}

void drawDisc(QPainter& painter, int size, const QColor& colour)
{
    const QRectF outer(1, 1, size - 2, size - 2);
    QRadialGradient shine(outer.center(), size / 2.0);
    shine.setColorAt(0, colour.lighter(170));
    shine.setColorAt(1, colour);
    painter.setBrush(shine);
    painter.setPen(QPen(colour.darker(160), 1));
    painter.drawEllipse(outer);
    painter.setBrush(QApplication::palette().color(QPalette::Window));
    painter.drawEllipse(outer.center(), size / 8.0, size / 8.0);
}

} // namespace

QPixmap discPicture(DiscPicture picture, int size)
{
    QPixmap pixmap = canvas(size, size);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    switch (picture) {
    case DiscPicture::NoDisc:
        painter.setPen(QPen(QApplication::palette().color(QPalette::Mid), 2, Qt::DashLine));
        painter.drawEllipse(QRectF(2, 2, size - 4, size - 4));
        break;
    case DiscPicture::Present:
        drawDisc(painter, size, QColor(0x3d, 0x7a, 0xd6));
        break;
    case DiscPicture::Known:
        drawDisc(painter, size, QColor(0x2f, 0x9e, 0x5b));
        break;
    case DiscPicture::Unknown:
        drawDisc(painter, size, QColor(0xd0, 0x8a, 0x1e));
        painter.setPen(QPen(QColor(0x4a, 0x2a, 0x00)));
        QFont font = painter.font();
        font.setBold(true);
        font.setPixelSize(size / 2);
        painter.setFont(font);
        painter.drawText(QRectF(0, 0, size, size), Qt::AlignCenter, QStringLiteral("?"));
        break;
    }
    return pixmap;
}

QPixmap logoPicture(Category category, bool highlighted)
{
    static const QColor colours[] = {QColor(0x7a, 0x2e, 0x4f), QColor(0x2f, 0x5e, 0x8e),
                                     QColor(0x2f, 0x6f, 0x5e)};
    static const char* const titles[] = {"AUDIO CD", "CD-ROM", "DVD"};
    const QColor colour = colours[static_cast<int>(category)];
    QPixmap pixmap = canvas(132, 56);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(highlighted ? colour.lighter(135) : colour);
    painter.setPen(highlighted ? QPen(QApplication::palette().color(QPalette::Highlight), 2) : Qt::NoPen);
    painter.drawRoundedRect(QRectF(1, 1, 130, 54), 10, 10);
    drawDisc(painter, 40, QColor(0xc9, 0xd6, 0xe8));
    painter.translate(0, 0);
    painter.setPen(Qt::white);
    QFont font = painter.font();
    font.setBold(true);
    font.setPixelSize(15);
    painter.setFont(font);
    painter.drawText(QRectF(44, 0, 84, 56), Qt::AlignCenter,
                     QString::fromLatin1(titles[static_cast<int>(category)]));
    return pixmap;
}

QPixmap overduePicture(int size)
{
    QPixmap pixmap = canvas(size, size);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(QColor(0xd3, 0x2f, 0x2f));
    painter.setPen(Qt::NoPen);
    painter.drawEllipse(QRectF(1, 1, size - 2, size - 2));
    painter.setPen(Qt::white);
    QFont font = painter.font();
    font.setBold(true);
    font.setPixelSize(size * 2 / 3);
    painter.setFont(font);
    painter.drawText(QRectF(0, 0, size, size), Qt::AlignCenter, QStringLiteral("!"));
    return pixmap;
}

QPixmap externalModePicture(int size)
{
    QPixmap pixmap = canvas(size, size);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(QColor(0xd0, 0x8a, 0x1e), 2));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(QRectF(2, 4, size - 6, size - 6));
    painter.drawLine(QPointF(size / 2.0, size / 2.0), QPointF(size - 1, 1));
    return pixmap;
}

} // namespace vinora
