#pragma once

#include <QDialog>

// The about box of "&About program...": the program's icon, its name and
// version, the motto and an "OK" button that closes it. Run modally on the
// GUI thread; the tick goes on behind it.
class AboutDialog : public QDialog {
  public:
    explicit AboutDialog(QWidget* parent);
};
