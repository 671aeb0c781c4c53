#pragma once

#include <QObject>

class Engine;
class KeyFeed;
class QDialog;
class QLineEdit;
class QWidget;

// The key feed on the offscreen platform, where it reads the program's own
// key events: what of a list of synthesized events reaches the engine queue.
class KeyFeedTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void init();
    void cleanup();

    void events_data();
    void events();
    void typingStaysWithTheDialog();

  private:
    QString Drain();

    Engine* engine = nullptr;
    KeyFeed* feed = nullptr;
    QWidget* window = nullptr;
    QDialog* dialog = nullptr;
    QLineEdit* nameEdit = nullptr;
};
