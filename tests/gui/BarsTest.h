#pragma once

#include <QObject>

class CMainFrame;
class FakeFrameCommands;

// The frame's bottom bars on a fake model: their layout, the switching
// between them and what each Show... writes into their fields.
class BarsTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void init();
    void cleanup();

    void barSizes_data();
    void barSizes();
    void controlRects_data();
    void controlRects();
    void controlsTakeNoFocus();
    void barSwitching_data();
    void barSwitching();
    void showAgainOnlyRefreshes_data();
    void showAgainOnlyRefreshes();
    void lineBarFields();
    void otherBarFields();
    void timersBarFields();
    void noteBarFields_data();
    void noteBarFields();
    void lineBarCommands();

  private:
    void Apply(const QString& step);

    FakeFrameCommands* commands = nullptr;
    CMainFrame* frame = nullptr;
};
