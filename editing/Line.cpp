#include "editing/Line.h"

#include "engine/SoundBuffer.h"
#include "song/PatternBank.h"
#include "song/PlayPointList.h"

#include <algorithm>
#include <utility>

namespace {

int32_t Trunc(double v) {
    return static_cast<int32_t>(v);
}

bool InRange(double v, double low, double high) {
    return v >= low && v <= high;
}

// Codes that act on a level; the others act on the sound parameters.
bool IsLevelCode(int32_t code) {
    return code == Line::VolumeCode || code >= Line::FirstSampleVolume;
}

// One step of a value, forced into the code's range.
double Nudged(int32_t code, double value, int32_t step) {
    const double amount = step * (code == Line::ToeInCode ? 0.001 : 0.005);
    const bool signedRange = code == Line::PitchCode || code == Line::PanCode;
    return std::clamp(value + amount, signedRange ? -1.0 : 0.0, 1.0);
}

} // namespace

Line::Line(PatternBank* b, int32_t i, int8_t steps)
    : Row(LineRow), controlGroup(b != nullptr ? b->GetLastControlGroup() : 0),
      stepsPerMeasure(steps), points(new PlayPointList(1024)), index(i), bank(b) {
    // A new line's default note names the line: a note made from it lands
    // on this line.
    defaultNote.line = static_cast<uint8_t>(i);
}

Line::~Line() {
    delete points;
}

void Line::SetWindow(int32_t visible, int32_t first) {
    visibleMeasures = visible;
    firstMeasure = first;
}

void Line::SetPoints(PlayPointList* list) {
    delete points;
    points = list;
    Repaint();
}

void Line::AddSample(const std::string& sampleName, const std::string& samplePath,
                     SoundBuffer* buffer, int32_t lineIndex) {
    if (sampleCount == MaxSamples)
        return;
    samples[sampleCount] =
        SampleSlot{sampleName, samplePath, buffer, static_cast<int16_t>(lineIndex)};
    if (sampleCount == 0)
        name = buffer->GetName();
    else
        sampleVolume[Reversed(sampleCount)] = 0.0; // faded in by hand on the sample panel
    ++sampleCount;
    ForceVolumes();
    Repaint();
}

// Later slots move down with their volumes; sampleEnabled stays by place.
void Line::RemoveSample(int32_t slot) {
    if (slot < 1 || slot > sampleCount)
        return;
    const int32_t gone = slot - 1;
    const SampleSlot& s = samples[gone];
    bank->RemoveEntry(s.name, s.path, s.buffer, s.lineIndex);
    delete s.buffer;
    for (int32_t k = gone; k < sampleCount - 1; ++k) {
        samples[k] = std::move(samples[k + 1]);
        sampleVolume[Reversed(k)] = sampleVolume[Reversed(k + 1)];
    }
    // The slot freed at the end is emptied, so that no free slot keeps a path
    // or a pointer to a destroyed buffer.
    samples[sampleCount - 1] = SampleSlot{};
    --sampleCount;
}

std::string Line::SampleName(int32_t slot) const {
    return slot >= 0 && slot < sampleCount ? samples[slot].name : std::string();
}

std::string Line::SamplePath(int32_t slot) const {
    return slot >= 0 && slot < sampleCount ? samples[slot].path : std::string();
}

SoundBuffer* Line::NewSampleBuffer() {
    return bank->NewBufferForLine(index);
}

int32_t Line::LongestSampleMs() const {
    int32_t longest = 0;
    for (int32_t i = 0; i < sampleCount; ++i)
        longest = std::max(longest, samples[i].buffer->GetLengthMs());
    return longest;
}

const double* Line::ValueOf(int32_t code) const {
    switch (code) {
    case VolumeCode:
        return &volume;
    case PitchCode:
        return &pitch;
    case PanCode:
        return &pan;
    case LengthCode:
        return &length;
    case ToeInCode:
        return &toeIn;
    case FirstSampleVolume:
    case SecondSampleVolume:
    case ThirdSampleVolume:
        return &sampleVolume[Reversed(code - FirstSampleVolume)];
    default:
        return nullptr;
    }
}

double* Line::ValueOf(int32_t code) {
    return const_cast<double*>(std::as_const(*this).ValueOf(code));
}

double Line::GetValue(int32_t code) const {
    const double* v = ValueOf(code);
    return v != nullptr ? *v : -2.0;
}

void Line::SetValue(int32_t code, double value, int32_t step) {
    double* v = ValueOf(code);
    if (v == nullptr)
        return;
    if (step == 2 || step == -2) {
        Switch(code, step > 0 ? 1 : 0);
        return;
    }
    // A pitch of -1.0 would send frequency 0, the sample's own rate: a
    // direct setting stops just short of it, while steps may reach it.
    if (step == 0)
        *v = code == PitchCode && value == -1.0 ? -0.975 : value;
    else if (step == 1 || step == -1)
        *v = Nudged(code, *v, step);
    else
        return;
    if (IsLevelCode(code))
        ApplyVolumes();
    else
        ApplySoundParameters();
}

void Line::Switch(int32_t code, uint8_t on) {
    if (code == VolumeCode)
        audible = on;
    else if (code >= FirstSampleVolume)
        sampleEnabled[Reversed(code - FirstSampleVolume)] = on;
    else
        return;
    ApplyVolumes();
}

void Line::SetOuterLevel(int32_t which, double value) {
    if (which == 0)
        instrumentLevel = value;
    else if (which == 1)
        groupLevel = value;
    else
        return;
    ApplyVolumes();
}

double Line::LevelOf(int32_t slot) const {
    const int32_t r = Reversed(slot);
    return audible * sampleEnabled[r] * volume * sampleVolume[r] * instrumentLevel * groupLevel;
}

// A level outside 0 to 1 is remembered as applied but not sent. The buffer
// combines volumeFraction with each note's volume when the note fires.
void Line::SendVolumes(bool always) {
    for (int32_t i = 0; i < sampleCount; ++i) {
        const double level = LevelOf(i);
        double& applied = appliedLevel[Reversed(i)];
        if (!always && level == applied)
            continue;
        applied = level;
        if (!InRange(level, 0.0, 1.0))
            continue;
        SoundBuffer* b = samples[i].buffer;
        b->volumeFraction = level;
        b->SetVolume(Trunc((1.0 - level) * -10000.0));
    }
}

// Values out of range stay in the line and are not sent. The toe-in is tested
// before its conversion, so that a wild value is never converted: trunc(x)
// lies in 0 to 10000 exactly when x lies above -1 and below 10001.
void Line::ApplySoundParameters() {
    const double toeInMs = toeIn * 10000.0;
    for (int32_t i = 0; i < sampleCount; ++i) {
        SoundBuffer* b = samples[i].buffer;
        if (InRange(pitch, -1.0, 1.0))
            b->SetFrequency(Trunc(b->frequency * pitch) + b->frequency);
        if (InRange(pan, -1.0, 1.0)) {
            b->linePan = pan;
            b->SetPan(Trunc(pan * 10000.0));
        }
        if (toeInMs > -1.0 && toeInMs < 10001.0)
            b->lineToeIn = static_cast<int16_t>(std::min(Trunc(toeInMs), b->lengthMs));
    }
}

void Line::SetAudible(uint8_t value) {
    if (audible == value)
        return;
    audible = value;
    ApplyVolumes();
    Repaint();
}

void Line::StepControlGroup(int32_t direction) {
    if (direction < 0 && controlGroup != 0)
        --controlGroup;
    else if (direction > 0 && bank != nullptr && controlGroup < bank->GetLastControlGroup())
        ++controlGroup;
}

void Line::Remove() {
    bank->DeleteLine(index);
    delete this;
}
