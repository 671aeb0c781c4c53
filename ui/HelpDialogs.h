#pragma once

#include <QDialog>

class QLineEdit;

// One of the five tutorials of the "&Help" menu, number 1 to 5: its texts
// from the program's resources, top to bottom, and an "OK" button at the
// lower right. Run modally on the GUI thread; the tick and the keys go on
// behind it.
class TutorialDialog : public QDialog {
  public:
    TutorialDialog(QWidget* parent, int number);

    // The paragraphs of tutorial number, in order; a paragraph that starts
    // with a tab stands indented.
    static QStringList Texts(int number);
};

// "Change Instrument Name": one text field, "OK" and "Cancel". Any text is
// taken, the empty one too. GUI thread.
class NameDialog : public QDialog {
  public:
    NameDialog(QWidget* parent, const QString& name);

    QLineEdit* field;
};
