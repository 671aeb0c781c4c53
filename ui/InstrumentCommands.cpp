// The instrument and pattern commands of the frame: the "Instruments" menu,
// the instrument bar and the pattern bar, the help dialogs, and files dropped
// on the window. GUI thread; files are read and written without the engine
// lock, which FrameCommands and the save functions take around each model
// step.
#include "song/FileArchive.h"
#include "song/InstrumentFile.h"
#include "song/SamplePath.h"
#include "ui/BarText.h"
#include "ui/CMainFrame.h"
#include "ui/HelpDialogs.h"

#include <QCheckBox>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QFile>
#include <QMimeData>
#include <QPushButton>

namespace {

std::string Encoded(const QString& path) {
    return QFile::encodeName(path).toStdString();
}

// The local files among the dropped ones that end in the extension.
QStringList DroppedFiles(const QList<QUrl>& urls, const char* extension) {
    QStringList files;
    for (const QUrl& url : urls)
        if (url.isLocalFile() &&
            url.toLocalFile().endsWith(QLatin1String(extension), Qt::CaseInsensitive))
            files << url.toLocalFile();
    return files;
}

} // namespace

void CMainFrame::ConnectInstrumentBar() {
    connect(instrumentBar->changeNameButton, &QPushButton::clicked, this,
            &CMainFrame::ChangeNameCommand);
    connect(instrumentBar->saveButton, &QPushButton::clicked, this,
            &CMainFrame::SaveInstrumentCommand);
    connect(instrumentBar->saveAsButton, &QPushButton::clicked, this, &CMainFrame::SaveAsCommand);
    connect(instrumentBar->closeButton, &QPushButton::clicked, this,
            [this] { commands->CloseInstrument(); });
    const SpinArrows* spins[] = {instrumentBar->controlsSpin,       instrumentBar->nudgeStepSpin,
                                 instrumentBar->nudgeQuarterSpin,   instrumentBar->nudgeEighthSpin,
                                 instrumentBar->nudgeSixteenthSpin, instrumentBar->nudgeTouchSpin};
    for (int32_t control = 0; control < 6; ++control)
        connect(spins[control], &SpinArrows::Spun, this,
                [this, control](int delta) { OnInstrumentSpin(control, delta); });
}

// The up arrow adds a control group or nudges the playhead on; the field
// then shows the count of control groups.
void CMainFrame::OnInstrumentSpin(int32_t control, int spinDelta) {
    commands->InstrumentSpin(control, spinDelta < 0 ? 1 : -1);
    if (control == 0)
        SetField(instrumentBar->controlsField, Int(commands->InstrumentBarValues().controlCount));
}

void CMainFrame::ConnectPatternBar() {
    const std::pair<QPushButton*, PatternAction> buttons[] = {
        {patternBar->saveButton, PatternAction::Save},
        {patternBar->restoreButton, PatternAction::Restore},
        {patternBar->clearButton, PatternAction::Clear},
        {patternBar->doubleButton, PatternAction::Double}};
    for (const auto& entry : buttons) {
        const PatternAction action = entry.second;
        connect(entry.first, &QPushButton::clicked, this,
                [this, action] { commands->PatternCommand(action); });
    }
    connect(patternBar->saveOnSwitchCheck, &QCheckBox::clicked, this, [this](bool checked) {
        commands->SetSaveOnSwitch(checked);
        patternBar->saveOnSwitchCheck->setChecked(commands->PatternBarValues().saveOnSwitch);
    });
    connect(patternBar->lengthSpin, &SpinArrows::Spun, this,
            [this](int delta) { OnPatternSpin(true, delta); });
    connect(patternBar->repeatSpin, &SpinArrows::Spun, this,
            [this](int delta) { OnPatternSpin(false, delta); });
}

// Both spins act only with the pattern bar up.
void CMainFrame::OnPatternSpin(bool length, int spinDelta) {
    if (barState != PatternBarUp)
        return;
    const bool up = spinDelta < 0;
    if (length)
        commands->PatternCommand(up ? PatternAction::Longer : PatternAction::Shorter);
    else
        commands->PatternCommand(up ? PatternAction::MoreRepeats : PatternAction::FewerRepeats);
    const PatternBarFields f = commands->PatternBarValues();
    SetField(patternBar->lengthField, Int(f.measures));
    SetField(patternBar->repeatField, Int(f.repeatCount));
}

void CMainFrame::LoadInstrumentCommand() {
    const QString path = instrumentPrompts.openFile(this);
    if (!path.isEmpty())
        LoadInstrumentPath(path);
}

bool CMainFrame::LoadInstrumentPath(const QString& path) {
    std::vector<MissingWave> missing;
    try {
        commands->LoadInstrumentFile(Encoded(path), missing);
    } catch (const FileError& e) {
        wavePrompts.warn(this, QStringLiteral("The instrument was not loaded.\n\n") +
                                   QString::fromStdString(e.what()));
        return false;
    }
    if (missing.empty())
        return true;
    QStringList lines;
    for (const MissingWave& m : missing)
        lines << QStringLiteral("%1: %2").arg(QString::fromStdString(m.path),
                                              WaveRefusalReason(m.status));
    QStringList folders;
    for (const std::string& folder : SampleSearchFolders(Encoded(path)))
        folders << QString::fromStdString(folder);
    wavePrompts.warn(
        this, QStringLiteral("%1 is loaded without these wave files:\n\n%2\n\n"
                             "A file that was not at its own path was looked for "
                             "in:\n%3")
                  .arg(path, lines.join(QLatin1Char('\n')), folders.join(QLatin1Char('\n'))));
    return true;
}

void CMainFrame::WarnSaveFailed(const std::string& reason) {
    wavePrompts.warn(this, QStringLiteral("The instrument was not saved; a file it was saved to "
                                          "before is as it was.\n\n") +
                               QString::fromStdString(reason));
}

void CMainFrame::SaveInstrumentCommand() {
    try {
        if (SaveInstrument(*commands->CurrentInstrument()))
            return;
    } catch (const FileError& e) {
        WarnSaveFailed(e.what());
        return;
    }
    SaveAsCommand();
}

void CMainFrame::SaveAsCommand() {
    const QString path = instrumentPrompts.saveFile(this);
    if (path.isEmpty())
        return;
    try {
        SaveInstrumentAs(*commands->CurrentInstrument(), Encoded(path));
    } catch (const FileError& e) {
        WarnSaveFailed(e.what());
    }
}

void CMainFrame::ChangeNameCommand() {
    const std::optional<QString> name =
        instrumentPrompts.askName(this, QString::fromStdString(commands->InstrumentName()));
    const std::string text = name ? name->toStdString() : std::string();
    commands->EndRename(name ? &text : nullptr);
}

void CMainFrame::ShowTutorial(int number) {
    TutorialDialog tutorial(this, number);
    tutorial.exec();
}

void CMainFrame::dragEnterEvent(QDragEnterEvent* event) {
    const QList<QUrl> urls = event->mimeData()->urls();
    if (!DroppedFiles(urls, ".nst").isEmpty() || !DroppedFiles(urls, ".wav").isEmpty())
        event->acceptProposedAction();
}

void CMainFrame::dropEvent(QDropEvent* event) {
    if (DropFiles(event->mimeData()->urls(), view->mapFrom(this, event->position().toPoint())))
        event->acceptProposedAction();
}

bool CMainFrame::DropFiles(const QList<QUrl>& urls, QPoint at) {
    const QStringList instruments = DroppedFiles(urls, ".nst");
    for (const QString& file : instruments)
        LoadInstrumentPath(file);
    const QStringList waves = DroppedFiles(urls, ".wav");
    Line* line = nullptr;
    const DropPlace place =
        waves.isEmpty() ? DropPlace::Nothing : commands->DropPlaceAt(at.x(), at.y(), line);
    if (place != DropPlace::Nothing)
        LoadWaveFiles(waves, place == DropPlace::LineName ? line : nullptr);
    return !instruments.isEmpty() || place != DropPlace::Nothing;
}
