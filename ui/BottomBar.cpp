#include "ui/BottomBar.h"

#include "ui/DialogUnits.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>
#include <QSlider>

BottomBar::BottomBar(const char* name, int widthDlu, QWidget* parent) : QWidget(parent) {
    setObjectName(QString::fromLatin1(name));
    setFont(DialogFont());
    const QSize panelSize = DluRect(0, 0, widthDlu, HeightDlu).size();
    panel = new QWidget(this);
    panel->setGeometry(QRect(QPoint(GripperWidth, 0), panelSize));
    setFixedSize(panelSize + QSize(GripperWidth, 0));
    hide();
}

void BottomBar::Place(QWidget* control, int x, int y, int w, int h) {
    control->setGeometry(DluRect(x, y, w, h));
    control->setFocusPolicy(Qt::NoFocus);
}

QLabel* BottomBar::AddLabel(const char* text, int x, int y, int w, int h) {
    auto* label = new QLabel(QString::fromLatin1(text), panel);
    Place(label, x, y, w, h);
    return label;
}

QLineEdit* BottomBar::AddField(const char* name, int x, int y, int w, int h) {
    auto* field = new QLineEdit(panel);
    field->setObjectName(QString::fromLatin1(name));
    field->setReadOnly(true);
    field->setTextMargins(1, 0, 1, 0);
    field->setContextMenuPolicy(Qt::NoContextMenu);
    Place(field, x, y, w, h);
    return field;
}

QPushButton* BottomBar::AddButton(const char* text, int x, int y, int w, int h) {
    auto* button = new QPushButton(QString::fromLatin1(text), panel);
    Place(button, x, y, w, h);
    return button;
}

QCheckBox* BottomBar::AddCheck(const char* text, int x, int y, int w, int h) {
    auto* check = new QCheckBox(QString::fromLatin1(text), panel);
    // The gap of the layouts' own check boxes, narrower than Qt's, so that
    // the labels fit their rectangles.
    check->setStyleSheet(QStringLiteral("QCheckBox { spacing: 3px; }"));
    Place(check, x, y, w, h);
    return check;
}

SpinArrows* BottomBar::AddSpin(const char* name, Qt::Orientation orientation, int x, int y, int w,
                               int h) {
    auto* spin = new SpinArrows(orientation, panel);
    spin->setObjectName(QString::fromLatin1(name));
    Place(spin, x, y, w, h);
    return spin;
}

QSlider* BottomBar::AddSlider(const char* name, int x, int y, int w, int h) {
    auto* slider = new QSlider(Qt::Horizontal, panel);
    slider->setObjectName(QString::fromLatin1(name));
    Place(slider, x, y, w, h);
    return slider;
}

// The gripper: two raised ridges in the palette's shades.
void BottomBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QPalette& p = palette();
    for (int x : {2, 5}) {
        painter.fillRect(x, 3, 1, height() - 6, p.color(QPalette::Light));
        painter.fillRect(x + 1, 3, 1, height() - 6, p.color(QPalette::Mid));
    }
}
