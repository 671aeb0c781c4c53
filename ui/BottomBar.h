#pragma once

#include "ui/SpinArrows.h"

#include <QWidget>

class QCheckBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QSlider;

// One of the frame's bottom bars: a gripper at its left and a panel in which
// the controls stand at their rectangles in dialog units. The line along the
// top of the bars is the frame's, across its whole width. A field is a read-only text display. No
// control takes keyboard focus, so Space, Tab and the arrows stay with the key map. GUI thread
// only.
class BottomBar : public QWidget {
  public:
    static constexpr int HeightDlu = 30;
    static constexpr int GripperWidth = 8;

    BottomBar(const char* name, int widthDlu, QWidget* parent);

    // The parent of the controls; its origin is the origin of their rectangles.
    QWidget* panel;

  protected:
    QLabel* AddLabel(const char* text, int x, int y, int w, int h);
    QLineEdit* AddField(const char* name, int x, int y, int w, int h);
    QPushButton* AddButton(const char* text, int x, int y, int w, int h);
    QCheckBox* AddCheck(const char* text, int x, int y, int w, int h);
    SpinArrows* AddSpin(const char* name, Qt::Orientation orientation, int x, int y, int w, int h);
    QSlider* AddSlider(const char* name, int x, int y, int w, int h);

    void paintEvent(QPaintEvent* event) override;

  private:
    void Place(QWidget* control, int x, int y, int w, int h);
};
