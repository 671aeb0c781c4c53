#include "ui/MidiLearnDialog.h"

#include "engine/EngineLock.h"
#include "ui/KeyMap.h"
#include "ui/MidiMapFile.h"

#include <QDialogButtonBox>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>
#include <mutex>

namespace {

constexpr int PollMs = 20;

const QString FirstPrompt =
    QStringLiteral("Press a computer key, then hit a pad or key on the controller.");

QString EntryText(MidiBinding binding, uint32_t key) {
    return QString::fromStdString(BindingText(binding)) + QStringLiteral(" = key ") +
           QString::number(key);
}

} // namespace

MidiLearnDialog::MidiLearnDialog(QWidget* parent, KeyMap& target, std::string path)
    : QDialog(parent), keyMap(target), mapPath(std::move(path)), prompt(new QLabel(FirstPrompt)),
      list(new QListWidget), poll(new QTimer(this)) {
    setWindowTitle(QStringLiteral("MIDI Learn"));
    QPushButton* remove = new QPushButton(QStringLiteral("Remove"));
    QDialogButtonBox* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    buttons->addButton(remove, QDialogButtonBox::ActionRole);
    for (QPushButton* b : buttons->findChildren<QPushButton*>())
        b->setAutoDefault(false);
    QVBoxLayout* layout = new QVBoxLayout(this);
    layout->addWidget(prompt);
    layout->addWidget(list);
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(remove, &QPushButton::clicked, this, &MidiLearnDialog::RemoveSelected);
    connect(poll, &QTimer::timeout, this, &MidiLearnDialog::Poll);
    MidiBinding stale{};
    {
        std::lock_guard<EngineMutex> guard(theEngineLock);
        theEngine->SetKeyTarget(&keys);
        while (theEngine->TakeHeardMidi(stale)) {
        }
    }
    ShowMap();
    poll->start(PollMs);
}

MidiLearnDialog::~MidiLearnDialog() {
    std::lock_guard<EngineMutex> guard(theEngineLock);
    keyMap.shiftDown = 0;
    keyMap.controlDown = 0;
    theEngine->SetKeyTarget(&keyMap);
}

void MidiLearnDialog::keyPressEvent(QKeyEvent* event) {
    event->accept();
}

void MidiLearnDialog::Poll() {
    if (const uint32_t key = keys.Take()) {
        pendingKey = key;
        prompt->setText(QStringLiteral("Key %1: now hit a pad or key on the controller.").arg(key));
    }
    MidiBinding heard{};
    bool any = false;
    {
        std::lock_guard<EngineMutex> guard(theEngineLock);
        any = theEngine->TakeHeardMidi(heard);
    }
    if (any)
        Learn(heard);
}

void MidiLearnDialog::Learn(MidiBinding binding) {
    if (pendingKey == 0) {
        prompt->setText(QString::fromStdString(BindingText(binding)) +
                        QStringLiteral(": press a computer key first."));
        return;
    }
    {
        std::lock_guard<EngineMutex> guard(theEngineLock);
        theEngine->midiMap.Set(binding, pendingKey);
    }
    prompt->setText(QStringLiteral("Learned ") + EntryText(binding, pendingKey) +
                    QStringLiteral(". ") + FirstPrompt);
    pendingKey = 0;
    Save();
    ShowMap();
}

void MidiLearnDialog::RemoveSelected() {
    const int row = list->currentRow();
    if (row < 0)
        return;
    {
        std::lock_guard<EngineMutex> guard(theEngineLock);
        const std::vector<MidiMap::Entry> entries = theEngine->midiMap.Entries();
        if (row < static_cast<int>(entries.size()))
            theEngine->midiMap.Remove(entries[static_cast<size_t>(row)].binding);
    }
    Save();
    ShowMap();
}

void MidiLearnDialog::ShowMap() {
    std::vector<MidiMap::Entry> entries;
    {
        std::lock_guard<EngineMutex> guard(theEngineLock);
        entries = theEngine->midiMap.Entries();
    }
    list->clear();
    for (const MidiMap::Entry& e : entries)
        list->addItem(EntryText(e.binding, e.key));
}

void MidiLearnDialog::Save() {
    MidiMap copy;
    {
        std::lock_guard<EngineMutex> guard(theEngineLock);
        copy = theEngine->midiMap;
    }
    const std::string failure = MidiMapFile::Save(mapPath, copy);
    if (!failure.empty())
        prompt->setText(QStringLiteral("The MIDI map could not be saved: ") +
                        QString::fromStdString(failure));
}
