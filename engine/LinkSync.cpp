#include "engine/LinkSync.h"

#include "engine/Playhead.h"
#include "engine/TickTime.h"

#include <ableton/Link.hpp>

#include <chrono>
#include <optional>

namespace {

constexpr double StartTempo = 120.0;
// A tick placed further than this many ticks from the one before it means
// that the session's timeline jumped (joining a session); the grid then goes
// on from where it stands.
constexpr double JumpTicks = 4.0;

std::chrono::microseconds HostTime(double micros) {
    return std::chrono::microseconds(std::llround(micros));
}

} // namespace

struct LinkSync::Session {
    ableton::Link link{StartTempo};
    // The state captured at the start of the period; audio thread only.
    std::optional<ableton::Link::SessionState> state;
};

LinkSync::LinkSync() : session(std::make_unique<Session>()) {
    session->link.setNumPeersCallback(
        [this](std::size_t n) { peers.store(static_cast<int32_t>(n), std::memory_order_relaxed); });
}

// The session's threads go with it, before the counter they write to.
LinkSync::~LinkSync() {
    session->link.enable(false);
    session.reset();
}

void LinkSync::Enable(bool on) {
    session->link.enable(on);
    enabled.store(on, std::memory_order_relaxed);
}

std::string LinkSync::Note() const {
    const int32_t n = Peers();
    return "Link: " + std::to_string(n) + (n == 1 ? " peer" : " peers");
}

double LinkSync::SessionTempo() const {
    return session->link.captureAppSessionState().tempo();
}

void LinkSync::SetSessionTempo(double bpm) {
    ableton::Link::SessionState state = session->link.captureAppSessionState();
    state.setTempo(bpm, session->link.clock().micros());
    session->link.commitAppSessionState(state);
}

int64_t LinkSync::Micros() const {
    return session->link.clock().micros().count();
}

// Audio thread: the session as it stands, captured once a period.
void LinkSync::BeginPeriod(int64_t frame, int32_t frames, double hostMicros, double perFrame,
                           int32_t rate) {
    // A new output counts its frames from 0 again: the grid starts afresh.
    if (!Enabled() || frame != periodEnd)
        grid.Reset();
    periodOn = Enabled() && perFrame > 0.0;
    periodEnd = frame + frames;
    if (!periodOn)
        return;
    periodFrame = frame;
    periodMicros = hostMicros;
    microsPerFrame = perFrame;
    framesPerTick = static_cast<double>(rate) / TickTime::TicksPerSecond;
    session->state = session->link.captureAudioSessionState();
    LineFromSession();
}

// Audio thread: the period's line from the captured state; its slope comes
// from a second instant a second later, so that it holds the session's clock
// correction as well as its tempo.
void LinkSync::LineFromSession() {
    const ableton::Link::SessionState& s = *session->state;
    const double at = std::round(periodMicros);
    const double b0 = s.beatAtTime(HostTime(at), TickGrid::Quantum);
    const double b1 = s.beatAtTime(HostTime(at + 1e6), TickGrid::Quantum);
    line.frame = periodFrame;
    line.beatsPerFrame = (b1 - b0) / 1e6 * microsPerFrame;
    line.beat = b0 + (periodMicros - at) / microsPerFrame * line.beatsPerFrame;
}

int64_t LinkSync::PlaceTick(int64_t tick, int64_t frame) {
    if (!periodOn)
        return -1;
    lastPlaced = tick;
    const double nominal = line.beatsPerFrame * framesPerTick;
    const auto goOnFrom = [&] {
        const double beat = line.BeatAt(frame + std::llround(framesPerTick));
        if (grid.AimTick() > tick)
            grid.Aim(tick, beat, grid.AimTick(), nominal);
        else
            grid.Anchor(tick, beat, nominal);
    };
    if (!grid.Anchored())
        goOnFrom();
    int64_t at = line.FrameOf(grid.BeatOf(tick));
    const double jump = JumpTicks * framesPerTick;
    if (static_cast<double>(at - frame) > jump || static_cast<double>(frame - at) > framesPerTick) {
        goOnFrom();
        at = line.FrameOf(grid.BeatOf(tick));
    }
    return at;
}

void LinkSync::AfterTick(int64_t tick, const Engine* engine) {
    if (!periodOn || !grid.Anchored())
        return;
    // The grid follows the lead instrument while it plays.
    const Playhead* lead = engine != nullptr ? engine->LeadPlayhead() : nullptr;
    TickGrid::First now;
    if (lead != nullptr && lead->running != 0)
        now = {true, lead->position, lead->lengthTicks, lead->stepMs};
    const double nominal = line.beatsPerFrame * framesPerTick;
    const TickGrid::Pass pass = grid.Follow(tick, now, nominal);
    if (heldStart) {
        // The held start plays its first position on the bar.
        heldStart = false;
        const int64_t end = grid.AimTick();
        grid.Aim(tick + 1, TickGrid::NearestBar(grid.BeatOf(tick + 1)), end, nominal);
    } else if (pass == TickGrid::Pass::Started && Peers() == 0) {
        MoveBarTo(tick + 1);
    }
}

// Audio thread: alone in the session, the start at tick `tick` becomes the
// session's bar: the beat of its instant is moved to the nearest bar's.
void LinkSync::MoveBarTo(int64_t tick) {
    const double beat = grid.BeatOf(tick);
    const double bar = TickGrid::NearestBar(beat);
    if (bar == beat)
        return;
    const int64_t frame = line.FrameOf(beat);
    const double micros = periodMicros + static_cast<double>(frame - periodFrame) * microsPerFrame;
    session->state->requestBeatAtTime(bar, HostTime(micros), TickGrid::Quantum);
    session->link.commitAudioSessionState(*session->state);
    LineFromSession();
    grid.Aim(tick, bar, grid.AimTick(), line.beatsPerFrame * framesPerTick);
}

Engine::StartGate LinkSync::Gate() {
    Engine::StartGate gate;
    gate.context = this;
    // Audio thread, in the tick: held while peers share the session.
    gate.hold = [](void* self) {
        const LinkSync& s = *static_cast<const LinkSync*>(self);
        return s.Enabled() && s.Peers() > 0 && s.periodOn && s.grid.Anchored();
    };
    // Audio thread, in the tick: due in the tick before the bar, or at once
    // when the grid is no longer on the session.
    gate.due = [](void* self) {
        LinkSync& s = *static_cast<LinkSync*>(self);
        if (!s.periodOn || !s.grid.Anchored())
            return true;
        s.heldStart = s.grid.BarAhead(s.lastPlaced);
        return s.heldStart;
    };
    return gate;
}
