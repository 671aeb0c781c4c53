#pragma once

#include "ProgramFixture.h"

#include <memory>

#include <QObject>
#include <QStringList>
#include <QTemporaryDir>
#include <optional>

class CMainFrame;
class ClockDisplay;
class Engine;
class SoundSystem;
class ViewWidget;

// The instrument and pattern commands, the panels' windows and the help
// dialogs on the real frame, view and model, with the file dialogs, the name
// dialog and the message box replaced by the test's answers.
class InstrumentCommandsTest : public QObject {
    Q_OBJECT

  private Q_SLOTS:
    void init();
    void cleanup();

    void saveAsThenSave();
    void loadAddsTheSavedInstrument();
    void refusedFilesAddNothing_data();
    void refusedFilesAddNothing();
    void missingWavesInOneMessage();
    void failedSaveKeepsTheOldFile();
    void changeName();
    void instrumentSpins_data();
    void instrumentSpins();
    void patternBar();
    void droppedFiles();
    void panelWindows();
    void sampleWindow();
    void helpDialogs();

  private:
    QString Path(const char* name) const;
    int InstrumentCount() const;

    std::unique_ptr<ProgramFixture> program;
    ViewWidget* view = nullptr;
    CMainFrame* frame = nullptr;
    QTemporaryDir folder;
    QString nextPath; // what the file dialogs answer
    int fileDialogs = 0;
    std::optional<QString> nextName; // what the name dialog answers
    QStringList messages;
};
