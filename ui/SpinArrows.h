#pragma once

#include <QWidget>

class QToolButton;

// A pair of arrows that reports only a direction, never a position: Spun(-1)
// for up, which is the upper arrow of a vertical pair and the right arrow of a
// horizontal one, Spun(+1) for the other arrow. Holding an arrow repeats it.
// The arrows take no keyboard focus, so the keys stay with the key map. GUI
// thread only.
class SpinArrows : public QWidget {
    Q_OBJECT

  public:
    SpinArrows(Qt::Orientation orientation, QWidget* parent);

    QToolButton* upArrow;
    QToolButton* downArrow;

  Q_SIGNALS:
    void Spun(int delta);

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    Qt::Orientation orientation;
};
