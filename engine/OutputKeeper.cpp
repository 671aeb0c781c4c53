#include "engine/OutputKeeper.h"

#include "engine/AudioCallback.h"
#include "engine/JackOutput.h"
#include "engine/LinkSync.h"
#include "engine/RtAudioOutput.h"

namespace {

OutputKeeper::Outputs ProgramOutputs() {
    OutputKeeper::Outputs outputs;
    outputs.push_back(std::make_unique<JackOutput>());
    outputs.push_back(std::make_unique<RtAudioOutput>());
    return outputs;
}

} // namespace

OutputKeeper::OutputKeeper(AudioCallback& c) : OutputKeeper(c, ProgramOutputs()) {}

OutputKeeper::OutputKeeper(AudioCallback& c, Outputs o) : callback(c), outputs(std::move(o)) {}

OutputKeeper::~OutputKeeper() {
    Close();
}

bool OutputKeeper::Open() {
    for (const std::unique_ptr<AudioOutput>& output : outputs) {
        if (output->Start(callback)) {
            current = output.get();
            return true;
        }
    }
    return false;
}

bool OutputKeeper::Check() {
    if (current != nullptr) {
        if (!current->Lost())
            return true;
        lateBefore += callback.LateTicks();
        droppedBefore += callback.DroppedNotes();
        const std::string described = current->Describe();
        lostOutput = described.substr(0, described.find(','));
        tries = 0;
        Close();
    }
    ++tries;
    return Open();
}

void OutputKeeper::Close() {
    if (current != nullptr)
        current->Stop();
    current = nullptr;
}

std::string OutputKeeper::Failure() const {
    std::string reasons;
    for (const std::unique_ptr<AudioOutput>& output : outputs) {
        const std::string reason = output->Failure();
        if (reason.empty())
            continue;
        if (!reasons.empty())
            reasons += "; ";
        reasons += reason;
    }
    return reasons;
}

uint64_t OutputKeeper::LateTicks() const {
    return lateBefore + (current != nullptr ? callback.LateTicks() : 0);
}

uint64_t OutputKeeper::DroppedNotes() const {
    return droppedBefore + (current != nullptr ? callback.DroppedNotes() : 0);
}

void OutputKeeper::SetSync(bool midiClock, bool transportMaster) {
    for (const std::unique_ptr<AudioOutput>& output : outputs)
        output->SetSync(midiClock, transportMaster);
}

void OutputKeeper::SetLink(LinkSync* l) {
    link = l;
    for (const std::unique_ptr<AudioOutput>& output : outputs)
        output->SetLink(l);
}

std::string OutputKeeper::StatusText() const {
    if (current != nullptr) {
        std::string sync = current->SyncNote();
        if (link != nullptr && link->Enabled())
            sync += (sync.empty() ? "" : "    ") + link->Note();
        return "Sound: " + current->Describe() + "    " + CountsText() +
               (sync.empty() ? "" : "    " + sync);
    }
    std::string text = "No sound";
    if (!lostOutput.empty())
        text += ": the " + lostOutput + " output went away";
    return text + ". Trying JACK, PulseAudio and ALSA again every second (" +
           std::to_string(tries) + (tries == 1 ? " try)" : " tries)") + "    " + CountsText();
}

// The counters since start, over every output the program has had.
std::string OutputKeeper::CountsText() const {
    return "Late ticks: " + std::to_string(LateTicks()) +
           "    Dropped notes: " + std::to_string(DroppedNotes());
}
