#include "ui/SpinArrows.h"

#include <QToolButton>

namespace {

QToolButton* MakeArrow(Qt::ArrowType type, QWidget* parent) {
    auto* arrow = new QToolButton(parent);
    arrow->setArrowType(type);
    arrow->setFocusPolicy(Qt::NoFocus);
    arrow->setAutoRepeat(true);
    return arrow;
}

} // namespace

SpinArrows::SpinArrows(Qt::Orientation o, QWidget* parent) : QWidget(parent), orientation(o) {
    const bool vertical = orientation == Qt::Vertical;
    upArrow = MakeArrow(vertical ? Qt::UpArrow : Qt::RightArrow, this);
    downArrow = MakeArrow(vertical ? Qt::DownArrow : Qt::LeftArrow, this);
    setFocusPolicy(Qt::NoFocus);
    connect(upArrow, &QToolButton::clicked, this, [this] { Q_EMIT Spun(-1); });
    connect(downArrow, &QToolButton::clicked, this, [this] { Q_EMIT Spun(1); });
}

// Splits the rectangle between the arrows: up above down, or down (left)
// beside up (right).
void SpinArrows::resizeEvent(QResizeEvent*) {
    const int w = width();
    const int h = height();
    if (orientation == Qt::Vertical) {
        upArrow->setGeometry(0, 0, w, h / 2);
        downArrow->setGeometry(0, h / 2, w, h - h / 2);
    } else {
        downArrow->setGeometry(0, 0, w / 2, h);
        upArrow->setGeometry(w / 2, 0, w - w / 2, h);
    }
}
