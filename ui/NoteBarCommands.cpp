// The commands of the note bar, which edit the values of a line's default
// note or of its selected notes, and the line bar's filter spin. GUI thread
// only; the model is reached through FrameCommands, which takes the engine
// lock around each call.
#include "editing/Line.h"
#include "ui/BarText.h"
#include "ui/CMainFrame.h"

#include <QPushButton>
#include <QSlider>
#include <string>

namespace {

// The filter that a label names, in either notation; 0 for none.
int32_t FilterOfName(const std::string& text) {
    for (int32_t value : {1, 2, 4, 8, 64})
        for (uint8_t notational : {uint8_t{0}, uint8_t{1}})
            if (text == Line::FilterName(value, notational))
                return value;
    return 0;
}

// The filter after one spin click, 0 for no change; "Multi" goes to 4 either
// way.
int32_t SpunFilter(const std::string& text, bool up) {
    if (text == "Multi")
        return 4;
    static constexpr int32_t order[] = {1, 2, 4, 8, 64};
    const int32_t present = FilterOfName(text);
    for (int32_t i = 0; i < 5; ++i)
        if (order[i] == present) {
            const int32_t next = i + (up ? 1 : -1);
            return next >= 0 && next < 5 ? order[next] : 0;
        }
    return 0;
}

// The value that a spin click proposes, from the slider's position: the up
// arrow (a change below 0) adds 10, the down arrow takes 10 away.
int32_t Spun(const QSlider* slider, int spinDelta) {
    return slider->value() + (spinDelta < 0 ? 10 : -10);
}

} // namespace

// Acts only while the line bar is up, on the label it shows.
void CMainFrame::OnFilterSpin(int spinDelta) {
    if (barState != LineBarUp)
        return;
    const int32_t value = SpunFilter(commands->MultiLineFilterText(), spinDelta < 0);
    if (value == 0)
        return;
    commands->SetFilter(value == 64 ? -1 : value);
    SetField(lineBar->filterField, QString::fromStdString(commands->MultiLineFilterText()));
}

// The sliders act when let go; a click on a groove pages the thumb without a
// drag, and acts once the slider has moved.
void CMainFrame::ConnectNoteBar() {
    const std::pair<QSlider*, int32_t> sliders[] = {{noteBar->volumeSlider, FieldVolume},
                                                    {noteBar->toeInSlider, FieldToeIn},
                                                    {noteBar->lengthSlider, FieldLength},
                                                    {noteBar->panSlider, FieldPan}};
    for (const auto& entry : sliders) {
        QSlider* slider = entry.first;
        const int32_t code = entry.second;
        connect(slider, &QSlider::sliderReleased, this,
                [this, slider, code] { OnNoteSlider(code, slider->value()); });
        connect(slider, &QSlider::actionTriggered, this, [this, slider, code](int action) {
            if (action == QSlider::SliderPageStepAdd || action == QSlider::SliderPageStepSub)
                QMetaObject::invokeMethod(
                    this, [this, slider, code] { OnNoteSlider(code, slider->value()); },
                    Qt::QueuedConnection);
        });
    }
    const std::pair<SpinArrows*, int32_t> spins[] = {{noteBar->volumeSpin, FieldVolume},
                                                     {noteBar->toeInSpin, FieldToeIn},
                                                     {noteBar->lengthSpin, FieldLength}};
    for (const auto& entry : spins) {
        const int32_t code = entry.second;
        connect(entry.first, &SpinArrows::Spun, this,
                [this, code](int delta) { OnNoteSpin(code, delta); });
    }
    connect(noteBar->zeroButton, &QPushButton::clicked, this, &CMainFrame::OnZeroPan);
}

// The slider's ends of the pan are steps to hard left and right, and the
// length slider's right end is the whole sample, stored as 0.
void CMainFrame::OnNoteSlider(int32_t code, int32_t position) {
    int32_t value = position;
    if (code == FieldLength && position == 10000)
        value = 0;
    else if (code == FieldPan)
        value = position <= -4900 ? -10000 : (position >= 4900 ? 10000 : position);
    const int32_t longest = commands->SetNoteValue(code, static_cast<int16_t>(value));
    if (longest >= 0)
        ShowNoteTexts(code, static_cast<int16_t>(value), longest);
}

// The volume spin's last step down falls to silence and stops at 0 going up;
// the toe-in has no upper limit of its own; the length wraps to the whole
// sample past either end. The slider follows within its range.
void CMainFrame::OnNoteSpin(int32_t code, int spinDelta) {
    QSlider* slider = code == FieldVolume  ? noteBar->volumeSlider
                      : code == FieldToeIn ? noteBar->toeInSlider
                                           : noteBar->lengthSlider;
    const int32_t p = Spun(slider, spinDelta);
    int32_t value = p;
    if (code == FieldVolume)
        value = p <= -5000 ? -10000 : (p > 0 ? 0 : p);
    else if (code == FieldToeIn)
        value = p < 0 ? 0 : p;
    else
        value = p >= 10000 || p < 0 ? 0 : p;
    const int32_t longest = commands->SetNoteValue(code, static_cast<int16_t>(value));
    if (longest < 0)
        return;
    ShowNoteTexts(code, static_cast<int16_t>(value), longest);
    if (code == FieldVolume)
        slider->setValue(value < -5000 ? -5000 : value);
    else if (code == FieldLength)
        slider->setValue(value == 0 ? 10000 : value);
    else
        slider->setValue(value);
}

void CMainFrame::OnZeroPan() {
    if (barState != NoteBarUp)
        return;
    if (commands->SetNoteValue(FieldPan, 0) >= 0)
        noteBar->panSlider->setValue(0);
}

void CMainFrame::ShowNoteTexts(int32_t code, int16_t value, int32_t longestMs) {
    if (code == FieldVolume) {
        SetField(noteBar->volumeField, Float((value + 10000) * 0.0001));
    } else if (code == FieldToeIn) {
        SetField(noteBar->toeInField,
                 QString::asprintf("%i ms", int32_t(value * 0.0001 * longestMs)));
    } else if (code == FieldLength) {
        const double v = value == 0 ? 1.0 : value * 0.0001;
        SetField(noteBar->lengthField, QString::asprintf("%i ms", int32_t(v * longestMs)));
    }
}
