#pragma once

#include <QString>
#include <functional>
#include <optional>

class QWidget;

// The dialogs of the instrument commands, kept as replaceable calls so that
// the commands run without them in tests and from the program's save hook.
// GUI thread only.
struct InstrumentPrompts {
    // The file to load or to save to; empty when the dialog was cancelled.
    std::function<QString(QWidget* parent)> openFile;
    std::function<QString(QWidget* parent)> saveFile;
    // The new name from "Change Instrument Name", none on "Cancel".
    std::function<std::optional<QString>(QWidget* parent, const QString& name)> askName;
};

// Qt's own file dialogs for ".nst" files, which replace an existing file
// without asking, and the name dialog.
InstrumentPrompts SystemInstrumentPrompts();
