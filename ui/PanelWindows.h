#pragma once

#include "editing/SamplePanel.h"
#include "editing/VolumePanel.h"

#include <QDialog>
#include <functional>

class MainView;
class QCheckBox;
class QLineEdit;
class QPushButton;
class QSlider;
class SpinArrows;

// Runs a model call on the view under the engine lock. GUI thread.
using WithView = std::function<void(const std::function<void(MainView&)>&)>;

// The widgets of one column of a volume panel.
struct PanelColumn {
    QSlider* slider;
    SpinArrows* spin;
    QCheckBox* check;
    QLineEdit* value;
    QLineEdit* name;
};

// The window of a VolumePanel: a floating tool window with twenty columns of
// widgets, which show a copy of the panel's rows and pass their commands to
// it. No widget keeps a value: each command ends in a refresh from the
// model. GUI thread only.
class VolumePanelWindow : public QDialog {
  public:
    VolumePanelWindow(QWidget* parent, bool isLinePanel, WithView withView);

    // Shows a copy of the panel taken under the engine lock.
    void Show(const VolumePanel& panel);

    PanelColumn columns[VolumePanel::MaxRows];
    QPushButton* button; // "Controls" on the top panel, "Clear" on the popup

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void reject() override {}

  private:
    VolumePanel& Panel(MainView& view) const;
    void Place(int row, int left);

    bool isLinePanel;
    WithView withView;
};

// The widgets of one row of the sample panel.
struct SampleRowWidgets {
    QCheckBox* check;
    QLineEdit* name;
    QSlider* slider;
    SpinArrows* spin;
    QLineEdit* value;
    QPushButton* clear; // none on the line row
};

// The window of the SamplePanel: the attached line and its three samples.
// Escape does nothing; "OK" and the window's close box hide it and let the
// line go. GUI thread only.
class SamplePanelWindow : public QDialog {
  public:
    SamplePanelWindow(QWidget* parent, WithView withView, std::function<void()> loadSamples);

    void Show(const SamplePanel& panel);

    SampleRowWidgets rows[SamplePanel::Rows];
    QPushButton* okButton;
    QPushButton* loadButton;

  protected:
    void closeEvent(QCloseEvent* event) override;
    void reject() override {}

  private:
    WithView withView;
};
