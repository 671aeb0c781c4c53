#include "ui/ToolbarImages.h"

#include <QFont>
#include <QPainter>

namespace {

const QColor Face(212, 208, 200);
const QColor Shadow(128, 128, 128);

void DrawPage(QPainter& p, const QRect& r) {
    p.setPen(Qt::black);
    p.setBrush(Qt::white);
    p.drawRect(r);
    for (int y = r.top() + 2; y < r.bottom() - 1; y += 2)
        p.drawLine(r.left() + 2, y, r.right() - 2, y);
}

void DrawCut(QPainter& p) {
    p.setPen(QPen(Qt::black, 1));
    p.drawLine(5, 1, 9, 9);
    p.drawLine(10, 1, 6, 9);
    p.setPen(QPen(Qt::darkBlue, 1));
    p.setBrush(Qt::NoBrush);
    p.drawEllipse(2, 9, 4, 4);
    p.drawEllipse(9, 9, 4, 4);
}

void DrawCopy(QPainter& p) {
    DrawPage(p, QRect(1, 1, 8, 9));
    DrawPage(p, QRect(6, 5, 8, 9));
}

void DrawPaste(QPainter& p) {
    p.setPen(Qt::black);
    p.setBrush(QColor(160, 110, 40));
    p.drawRect(1, 2, 10, 11);
    p.setBrush(Shadow);
    p.drawRect(4, 1, 4, 2);
    DrawPage(p, QRect(6, 6, 8, 8));
}

void DrawPrint(QPainter& p) {
    DrawPage(p, QRect(4, 1, 7, 6));
    p.setPen(Qt::black);
    p.setBrush(Face);
    p.drawRect(1, 7, 13, 5);
    p.fillRect(11, 9, 2, 1, Qt::green);
}

void DrawAbout(QPainter& p) {
    QFont font(QStringLiteral("Liberation Serif"));
    font.setBold(true);
    font.setPixelSize(14);
    p.setFont(font);
    p.setPen(Qt::darkBlue);
    p.drawText(QRect(0, 0, 16, 15), Qt::AlignCenter, QStringLiteral("?"));
}

} // namespace

QPixmap CommandButtonImage(const QString& label) {
    QPixmap image(122, 31);
    image.fill(Face);
    QPainter p(&image);
    p.fillRect(0, 0, 122, 1, Qt::white);
    p.fillRect(0, 0, 1, 31, Qt::white);
    p.fillRect(0, 30, 122, 1, Shadow);
    p.fillRect(121, 0, 1, 31, Shadow);
    QFont font(QStringLiteral("Liberation Sans"));
    font.setStyleHint(QFont::SansSerif);
    font.setBold(true);
    font.setPixelSize(13);
    p.setFont(font);
    p.setPen(Qt::black);
    p.drawText(image.rect(), Qt::AlignCenter, label);
    return image;
}

QPixmap StockButtonImage(StockImage which) {
    QPixmap image(16, 15);
    image.fill(Qt::transparent);
    QPainter p(&image);
    switch (which) {
    case StockImage::Cut:
        DrawCut(p);
        break;
    case StockImage::Copy:
        DrawCopy(p);
        break;
    case StockImage::Paste:
        DrawPaste(p);
        break;
    case StockImage::Print:
        DrawPrint(p);
        break;
    case StockImage::About:
        DrawAbout(p);
        break;
    }
    return image;
}
