#include "CanvasPainterTest.h"

#include "ui/CanvasPainter.h"

#include <QFontInfo>
#include <QImage>
#include <QPainter>
#include <QTest>

namespace {

struct Probe {
    int x, y;
    QRgb color;
};

const QRgb W = qRgb(255, 255, 255);
const QRgb K = qRgb(0, 0, 0);
const QRgb G = qRgb(200, 200, 200);

QImage Replay(const std::vector<CanvasRecord>& records, QRgb background = W) {
    QImage image(40, 40, QImage::Format_RGB32);
    image.fill(background);
    QPainter painter(&image);
    CanvasPainter(painter).Replay(records);
    return image;
}

CanvasRecord TextRecord(const Rect& rect, const char* text, Font font, uint32_t flags) {
    RecordingCanvas canvas;
    canvas.Text(rect, text, font, flags, Black);
    return canvas.records[0];
}

// The bounding box of the pixels darker than mid grey.
QRect InkBox(const QImage& image) {
    QRect box;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (qGray(image.pixel(x, y)) < 128)
                box |= QRect(x, y, 1, 1);
    return box;
}

} // namespace

Q_DECLARE_METATYPE(std::vector<CanvasRecord>)
Q_DECLARE_METATYPE(QList<Probe>)

void CanvasPainterTest::pixels_data() {
    QTest::addColumn<std::vector<CanvasRecord>>("records");
    QTest::addColumn<QList<Probe>>("probes");
    RecordingCanvas c;
    c.FillRect(Rect{2, 2, 6, 5}, Black);
    QTest::newRow("fill leaves right and bottom edge")
        << c.records << QList<Probe>{{2, 2, K}, {5, 4, K}, {6, 2, W}, {2, 5, W}, {1, 1, W}};
    c.records.clear();
    c.FillRect(Rect{2, 2, 6, 5}, NoColor);
    QTest::newRow("fill with no colour") << c.records << QList<Probe>{{3, 3, W}};
    c.records.clear();
    c.FrameRect(Rect{1, 1, 9, 7}, Black);
    QTest::newRow("frame inside the rectangle")
        << c.records << QList<Probe>{{1, 1, K}, {8, 1, K}, {8, 6, K}, {1, 6, K},
                                     {9, 1, W}, {1, 7, W}, {4, 4, W}};
    c.records.clear();
    c.DrawLine(Point2{0, 3}, Point2{5, 3}, Black);
    c.DrawLine(Point2{10, 0}, Point2{10, 4}, Black);
    QTest::newRow("lines stop short of their end")
        << c.records
        << QList<Probe>{{0, 3, K}, {4, 3, K}, {5, 3, W}, {10, 0, K}, {10, 3, K}, {10, 4, W}};
    c.records.clear();
    c.DrawLine(Point2{5, 5}, Point2{5, 5}, Black);
    QTest::newRow("empty line") << c.records << QList<Probe>{{5, 5, W}};
    c.records.clear();
    const Point2 corner[] = {{0, 0}, {4, 0}, {4, 4}};
    c.Polyline(corner, 3, Black);
    QTest::newRow("polyline stops short of its last point")
        << c.records << QList<Probe>{{0, 0, K}, {4, 0, K}, {4, 3, K}, {4, 4, W}, {2, 2, W}};
    c.records.clear();
    const Point2 square[] = {{10, 10}, {20, 10}, {20, 20}, {10, 20}};
    c.Polygon(square, 4, Black, Gray);
    QTest::newRow("filled polygon")
        << c.records << QList<Probe>{{15, 15, G}, {10, 15, K}, {25, 15, W}};
    c.records.clear();
    c.Polygon(square, 4, Black, NoColor);
    QTest::newRow("hollow polygon") << c.records << QList<Probe>{{15, 15, W}, {10, 15, K}};
    c.records.clear();
    c.RoundRect(Rect{10, 10, 30, 24}, 10, 10, Black, Gray);
    QTest::newRow("round rect") << c.records
                                << QList<Probe>{{20, 17, G}, {20, 10, K}, {20, 23, K}, {29, 17, K},
                                                {30, 17, W}, {10, 10, W}, {20, 24, W}};
}

void CanvasPainterTest::pixels() {
    QFETCH(std::vector<CanvasRecord>, records);
    QFETCH(QList<Probe>, probes);
    const QImage image = Replay(records);
    for (const Probe& p : probes)
        QVERIFY2(image.pixel(p.x, p.y) == p.color,
                 qPrintable(QString("pixel %1,%2 is %3")
                                .arg(p.x)
                                .arg(p.y)
                                .arg(image.pixel(p.x, p.y) & 0xffffff, 6, 16)));
}

void CanvasPainterTest::textPlacement_data() {
    QTest::addColumn<uint>("flags");
    QTest::addColumn<bool>("centredAcross");
    QTest::addColumn<int>("rowBand"); // 0 top, 1 middle, 2 bottom
    QTest::newRow("top left") << uint(TextSingleLine) << false << 0;
    QTest::newRow("centred") << uint(TextSingleLine | TextCenter | TextVCenter) << true << 1;
    QTest::newRow("bottom centred") << uint(TextSingleLine | TextCenter | TextBottom) << true << 2;
    QTest::newRow("vertical flags need one line") << uint(TextCenter | TextVCenter) << true << 0;
}

void CanvasPainterTest::textPlacement() {
    QFETCH(uint, flags);
    QFETCH(bool, centredAcross);
    QFETCH(int, rowBand);
    const QRect ink =
        InkBox(Replay({TextRecord(Rect{0, 0, 40, 39}, "II", Font{"Times", 80}, flags)}));
    QVERIFY(!ink.isEmpty());
    const int middle = (ink.left() + ink.right()) / 2;
    QCOMPARE(qAbs(middle - 20) <= 3, centredAcross);
    QCOMPARE(ink.center().y() / 13, rowBand);
}

void CanvasPainterTest::textIsClipped() {
    const QImage image =
        Replay({TextRecord(Rect{2, 2, 12, 20}, "WWWWWW", Font{"Times", 100}, TextSingleLine)});
    const QRect ink = InkBox(image);
    QVERIFY(!ink.isEmpty());
    QVERIFY(QRect(2, 2, 10, 18).contains(ink));
}

void CanvasPainterTest::opaqueText() {
    std::vector<CanvasRecord> records{
        TextRecord(Rect{0, 0, 40, 20}, "i", Font{"Times", 80}, TextSingleLine | TextOpaque)};
    QImage image = Replay(records, G);
    QCOMPARE(image.pixel(0, 1), W);
    QCOMPARE(image.pixel(30, 1), G);
    QCOMPARE(image.pixel(1, 30), G);
    records[0].flags = TextSingleLine;
    image = Replay(records, G);
    QCOMPARE(image.pixel(0, 1), G);
}

// A rectangle too low for the text: the fitted text is whole on its white
// ground, below the rectangle's bottom too; unfitted it is cut there.
void CanvasPainterTest::fittedText() {
    std::vector<CanvasRecord> records{
        TextRecord(Rect{2, 2, 30, 7}, "Ig", Font{"Times", 70},
                   TextSingleLine | TextCenter | TextVCenter | TextOpaque | TextFitted)};
    const QImage image = Replay(records, G);
    QVERIFY2(InkBox(image).bottom() >= 9, qPrintable(QString::number(InkBox(image).bottom())));
    QVERIFY(image.pixel(2, 9) != G); // the ground (or the ink) reaches below the rectangle
    QCOMPARE(image.pixel(29, 2), G); // and stops at the text's width
    records[0].flags &= ~uint32_t(TextFitted);
    QVERIFY(InkBox(Replay(records, G)).bottom() < 7);
}

void CanvasPainterTest::repaintDrawsNothing() {
    RecordingCanvas c;
    c.RequestRepaint(Rect{0, 0, 40, 40});
    const QImage image = Replay(c.records);
    QVERIFY(InkBox(image).isEmpty());
    QCOMPARE(image.pixel(5, 5), W);
}

void CanvasPainterTest::fonts_data() {
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("pointSize10");
    QTest::addColumn<QString>("family");
    QTest::addColumn<double>("points");
    QTest::newRow("Times") << "Times" << 80 << "Liberation Serif" << 8.0;
    QTest::newRow("Times at 10") << "Times" << 100 << "Liberation Serif" << 10.0;
    QTest::newRow("Small Fonts") << "Small Fonts" << 60 << "DejaVu Sans" << 6.0;
}

void CanvasPainterTest::fonts() {
    QFETCH(QString, name);
    QFETCH(int, pointSize10);
    QFETCH(QString, family);
    QFETCH(double, points);
    const QFont font = CanvasPainter::FontFor(name.toStdString(), pointSize10);
    QCOMPARE(QFontInfo(font).family(), family);
    QCOMPARE(font.pointSizeF(), points);
    QCOMPARE(CanvasPainter::FontFor("", 0), CanvasPainter::CurrentQFont());
}
