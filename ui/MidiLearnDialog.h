#pragma once

#include "engine/Engine.h"
#include "engine/MidiMap.h"

#include <QDialog>
#include <atomic>
#include <string>

class QLabel;
class QListWidget;
class KeyMap;
class QKeyEvent;
class QTimer;

// Takes the engine's key events while learning: the last key position
// pressed, for the dialog. Audio thread (the tick) writes, GUI thread takes.
class LearnKeys : public KeyTarget {
  public:
    void OnKey(uint8_t pressed, uint32_t scanCode) override {
        if (pressed)
            last.store(scanCode, std::memory_order_release);
    }
    // GUI thread: the key pressed since the last call, or 0.
    uint32_t Take() { return last.exchange(0, std::memory_order_acq_rel); }

  private:
    std::atomic<uint32_t> last{0};
};

// "MIDI Learn": press a computer key, then hit a pad or key on the
// controller, and the pair is mapped and saved. The dialog lists the map and
// removes entries. While it is open, keys and mapped controls teach and do not
// play: the engine's key target is the dialog's until it closes, when the key
// map gets them back with no key held. GUI thread only.
class MidiLearnDialog : public QDialog {
  public:
    MidiLearnDialog(QWidget* parent, KeyMap& keyMap, std::string mapPath);
    ~MidiLearnDialog() override;

  protected:
    // Every key is one to learn: none closes the dialog or presses a button.
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void Poll();
    void Learn(MidiBinding binding);
    void RemoveSelected();
    void ShowMap();
    void Save();

    KeyMap& keyMap;
    std::string mapPath;
    LearnKeys keys;
    uint32_t pendingKey = 0;
    QLabel* prompt;
    QListWidget* list;
    QTimer* poll;
};
