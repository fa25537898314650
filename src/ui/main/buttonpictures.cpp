#include "buttonpictures.h"

#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QPolygonF>

namespace quillet {

namespace {

using MainLayout::Command;

const QColor Ink(40, 40, 40);
const QColor Paper(255, 255, 255);
const QColor Green(30, 140, 60);
const QColor Red(200, 40, 40);
const QColor Blue(40, 90, 190);

void drawPage(QPainter &painter, const QRectF &page)
{
    painter.setPen(QPen(Ink, 1));
    painter.setBrush(Paper);
    painter.drawRect(page);
}

void drawAddNew(QPainter &painter, QSizeF size)
{
    drawPage(painter, QRectF(1.5, 0.5, size.width() - 6, size.height() - 2));
    painter.setPen(QPen(Green, 2.5, Qt::SolidLine, Qt::FlatCap));
    const QPointF centre(size.width() - 4.5, size.height() - 4.5);
    painter.drawLine(centre - QPointF(3.5, 0), centre + QPointF(3.5, 0));
    painter.drawLine(centre - QPointF(0, 3.5), centre + QPointF(0, 3.5));
}

void drawCopy(QPainter &painter, QSizeF size)
{
    drawPage(painter, QRectF(0.5, 0.5, size.width() - 6, size.height() - 5));
    drawPage(painter, QRectF(5.5, 4.5, size.width() - 6, size.height() - 5));
    painter.setPen(QPen(Blue, 1));
    for (int line = 7; line < size.height() - 2; line += 2)
        painter.drawLine(QPointF(7.5, line + 0.5), QPointF(size.width() - 2.5, line + 0.5));
}

void drawDelete(QPainter &painter, QSizeF size)
{
    painter.setPen(QPen(Red, 2.5, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(QPointF(2.5, 2.5), QPointF(size.width() - 2.5, size.height() - 2.5));
    painter.drawLine(QPointF(size.width() - 2.5, 2.5), QPointF(2.5, size.height() - 2.5));
}

void drawUndo(QPainter &painter, QSizeF size)
{
    painter.setPen(QPen(Blue, 2, Qt::SolidLine, Qt::RoundCap));
    painter.setBrush(Qt::NoBrush);
    QPainterPath arc;
    arc.moveTo(4, 6);
    arc.cubicTo(9, 1, 16, 4, 14, 9);
    arc.cubicTo(13, 12, 10, 13, 7, 13);
    painter.drawPath(arc);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Blue);
    painter.drawPolygon(QPolygonF({QPointF(0.5, 6.5), QPointF(6.5, 2), QPointF(6.5, 10)}));
    Q_UNUSED(size);
}

void drawArrow(QPainter &painter, QSizeF size, bool up)
{
    const double w = size.width();
    const double h = size.height();
    const double mid = w / 2;
    QPolygonF arrow({QPointF(mid, 1), QPointF(mid + 9, 10), QPointF(mid + 4, 10),
                     QPointF(mid + 4, h - 1), QPointF(mid - 4, h - 1), QPointF(mid - 4, 10),
                     QPointF(mid - 9, 10)});
    if (!up) {
        for (QPointF &point : arrow)
            point.setY(h - point.y());
    }
    painter.setPen(QPen(Ink, 1));
    painter.setBrush(Green);
    painter.drawPolygon(arrow);
}

void drawAmortize(QPainter &painter, QSizeF size)
{
    drawPage(painter, QRectF(0.5, 0.5, size.width() - 1, size.height() - 1));
    painter.setPen(QPen(Ink, 1));
    for (int line = 4; line < size.height() - 1; line += 3)
        painter.drawLine(QPointF(1, line + 0.5), QPointF(size.width() - 1, line + 0.5));
    painter.drawLine(QPointF(5.5, 1), QPointF(5.5, size.height() - 1));
    painter.setPen(QPen(Green, 1.5));
    painter.drawLine(QPointF(7, size.height() - 2.5), QPointF(size.width() - 2, 2.5));
}

void drawPrint(QPainter &painter, QSizeF size)
{
    drawPage(painter, QRectF(3.5, 0.5, size.width() - 7, 6));
    painter.setPen(QPen(Ink, 1));
    painter.setBrush(QColor(170, 170, 170));
    painter.drawRoundedRect(QRectF(0.5, 5.5, size.width() - 1, 6), 1.5, 1.5);
    drawPage(painter, QRectF(3.5, 9.5, size.width() - 7, size.height() - 10));
    painter.setPen(QPen(Green, 1));
    painter.drawPoint(QPointF(size.width() - 2.5, 7.5));
}

void drawExit(QPainter &painter, QSizeF size)
{
    painter.setPen(QPen(Ink, 1));
    painter.setBrush(QColor(150, 100, 60));
    painter.drawRect(QRectF(1.5, 0.5, 8, size.height() - 1));
    painter.setBrush(Paper);
    painter.drawEllipse(QPointF(7.5, size.height() / 2), 0.8, 0.8);
    painter.setPen(QPen(Red, 2, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(QPointF(9.5, size.height() / 2),
                     QPointF(size.width() - 1.5, size.height() / 2));
    painter.drawLine(QPointF(size.width() - 4.5, size.height() / 2 - 3),
                     QPointF(size.width() - 1.5, size.height() / 2));
    painter.drawLine(QPointF(size.width() - 4.5, size.height() / 2 + 3),
                     QPointF(size.width() - 1.5, size.height() / 2));
}

} // namespace

QPixmap commandPicture(Command command, QSize size)
{
    QPixmap picture(size);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    const QSizeF area(size);
    switch (command) {
    case Command::AddNew:
        drawAddNew(painter, area);
        break;
    case Command::Copy:
        drawCopy(painter, area);
        break;
    case Command::Delete:
        drawDelete(painter, area);
        break;
    case Command::Undo:
        drawUndo(painter, area);
        break;
    case Command::MoveUp:
        drawArrow(painter, area, true);
        break;
    case Command::MoveDown:
        drawArrow(painter, area, false);
        break;
    case Command::Amort:
        drawAmortize(painter, area);
        break;
    case Command::Print:
        drawPrint(painter, area);
        break;
    case Command::cmdExit:
    case Command::Command2:
        drawExit(painter, area);
        break;
    }
    return picture;
}

QPixmap greyedPicture(const QPixmap &picture)
{
    QImage image = picture.toImage().convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < image.height(); ++y) {
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            // Light grey of the same shape: the greyed look of a disabled button.
            const int grey = 128 + qGray(line[x]) / 2;
            line[x] = qRgba(grey, grey, grey, qAlpha(line[x]) * 3 / 5);
        }
    }
    return QPixmap::fromImage(image);
}

QIcon commandIcon(const MainLayout::CommandSpec &layout)
{
    const QPixmap picture = commandPicture(layout.command, layout.picture);
    QIcon icon(picture);
    if (layout.greyPicture)
        icon.addPixmap(greyedPicture(picture), QIcon::Disabled);
    return icon;
}

QIcon quilletIcon()
{
    QIcon icon;
    for (const int size : {16, 32}) {
        QPixmap picture(size, size);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.scale(size / 32.0, size / 32.0);
        // A ledger page with a rising line: a calculator of growth.
        painter.setPen(QPen(Ink, 1.5));
        painter.setBrush(QColor(255, 255, 192));
        painter.drawRoundedRect(QRectF(3, 2, 26, 28), 3, 3);
        painter.setPen(QPen(QColor(192, 192, 255), 1.5));
        for (int y = 9; y < 28; y += 5)
            painter.drawLine(QPointF(6, y), QPointF(26, y));
        painter.setPen(QPen(Green, 3, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.drawPolyline(
            QPolygonF({QPointF(7, 25), QPointF(13, 19), QPointF(18, 21), QPointF(25, 9)}));
        icon.addPixmap(picture);
    }
    return icon;
}

} // namespace quillet
