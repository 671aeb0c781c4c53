#include "engine/RtAudioOutput.h"

#include "engine/AudioCallback.h"
#include "engine/Engine.h"

#include <RtAudio.h>
#include <alsa/asoundlib.h>
#include <chrono>

namespace {

// ALSA prints its own complaints while a device is probed that is not there;
// the program says one line of its own instead.
void QuietAlsa(const char*, int, const char*, int, const char*, ...) {}

// The device to open: ALSA's "default" PCM, else the API's default output.
unsigned int ChooseDevice(RtAudio& audio) {
    const char* wanted = "default";
    const unsigned int count = audio.getDeviceCount();
    for (unsigned int i = 0; i < count; ++i) {
        const RtAudio::DeviceInfo info = audio.getDeviceInfo(i);
        if (info.probed && info.outputChannels >= 2 && info.name == wanted)
            return i;
    }
    return audio.getDefaultOutputDevice();
}

// 48 kHz when offered, else the device's preferred rate.
unsigned int ChooseRate(const RtAudio::DeviceInfo& info) {
    for (unsigned int r : info.sampleRates)
        if (r == static_cast<unsigned int>(RtAudioOutput::PreferredRate))
            return r;
    if (info.preferredSampleRate != 0)
        return info.preferredSampleRate;
    return info.sampleRates.empty() ? RtAudioOutput::PreferredRate : info.sampleRates.front();
}

const char* ApiLabel(RtAudio::Api api) {
    return api == RtAudio::LINUX_PULSE ? "PulseAudio" : "ALSA";
}

} // namespace

RtAudioOutput::RtAudioOutput() = default;

RtAudioOutput::~RtAudioOutput() {
    Stop();
}

// Audio thread (RtAudio's stream thread).
int RtAudioOutput::Callback(void* output, void*, unsigned int frames, double, unsigned int status,
                            void* user) {
    RtAudioOutput* self = static_cast<RtAudioOutput*>(user);
    if ((status & RTAUDIO_OUTPUT_UNDERFLOW) != 0)
        self->underflows.fetch_add(1, std::memory_order_relaxed);
    const bool clockOn = self->clockOn.load(std::memory_order_relaxed);
    if (clockOn) {
        const auto now = std::chrono::steady_clock::now().time_since_epoch();
        self->periodNs =
            std::chrono::duration_cast<std::chrono::nanoseconds>(now).count() + self->latencyNs;
        self->clock.BeginPeriod(static_cast<int64_t>(self->callback->FramesRendered()),
                                static_cast<int32_t>(frames));
    }
    self->callback->Render(static_cast<float*>(output), static_cast<int32_t>(frames));
    if (clockOn)
        self->clock.EndPeriod();
    self->periods.fetch_add(1, std::memory_order_relaxed);
    return 0;
}

bool RtAudioOutput::Start(AudioCallback& c) {
    snd_lib_error_set_handler(QuietAlsa);
    callback = &c;
    failure.clear();
    periods.store(0, std::memory_order_relaxed);
    periodsAsked = 0;
    for (RtAudio::Api api : {RtAudio::LINUX_PULSE, RtAudio::LINUX_ALSA})
        if (TryApi(api, c))
            return true;
    callback = nullptr;
    return false;
}

bool RtAudioOutput::TryApi(int apiNumber, AudioCallback& c) {
    const RtAudio::Api api = static_cast<RtAudio::Api>(apiNumber);
    try {
        audio = std::make_unique<RtAudio>(api);
        audio->showWarnings(false);
        if (audio->getDeviceCount() == 0) {
            Fail(api, "RtAudio finds no output device");
            return false;
        }
        RtAudio::StreamParameters parameters;
        parameters.deviceId = ChooseDevice(*audio);
        parameters.nChannels = 2;
        parameters.firstChannel = 0;
        const unsigned int wantedRate = ChooseRate(audio->getDeviceInfo(parameters.deviceId));
        RtAudio::StreamOptions options;
        options.streamName = ClientName;
        options.flags = RTAUDIO_SCHEDULE_REALTIME;
        if (api == RtAudio::LINUX_ALSA)
            options.flags |= RTAUDIO_ALSA_USE_DEFAULT;
        options.priority = 70;
        unsigned int frames = PreferredPeriod;
        audio->openStream(&parameters, nullptr, RTAUDIO_FLOAT32, wantedRate, &frames, Callback,
                          this, &options);
        rate = static_cast<int32_t>(audio->getStreamSampleRate());
        period = static_cast<int32_t>(frames);
        latencyNs = static_cast<int64_t>(audio->getStreamLatency()) * 1000000000 / rate;
        c.Prepare(rate);
        clock.Prepare(rate, WriteMidi, this);
        c.SetTickObserver(OnTick, this);
        audio->startStream();
        apiName = ApiLabel(api);
        if (theEngine != nullptr)
            midiIn.Open(*theEngine);
        OpenClock();
        return true;
    } catch (const RtAudioError& e) {
        Fail(api, e.getMessage());
        return false;
    }
}

void RtAudioOutput::Fail(int api, const std::string& reason) {
    audio.reset();
    if (!failure.empty())
        failure += "; ";
    failure += ApiLabel(static_cast<RtAudio::Api>(api)) + std::string(": ") + reason;
}

void RtAudioOutput::Stop() {
    if (!audio)
        return;
    try {
        if (audio->isStreamRunning())
            audio->stopStream();
        if (audio->isStreamOpen())
            audio->closeStream();
    } catch (const RtAudioError&) {
    }
    midiIn.Close();
    audio.reset();
    OpenClock();
    callback->SetTickObserver(nullptr, nullptr);
    callback = nullptr;
}

// The ALSA clock port is open only while this output plays: while JACK
// plays, the clock goes out on JACK's port alone.
void RtAudioOutput::SetSync(bool midiClock, bool) {
    clockWanted = midiClock;
    OpenClock();
}

void RtAudioOutput::OpenClock() {
    const bool open = clockWanted && audio != nullptr && alsaClock.Open();
    clockOn.store(open, std::memory_order_relaxed);
    if (!open)
        alsaClock.Close();
}

std::string RtAudioOutput::SyncNote() const {
    const std::string in = midiIn.Failure();
    const std::string out = clockWanted && !alsaClock.IsOpen() ? alsaClock.Failure() : "";
    return in.empty() || out.empty() ? in + out : in + "; " + out;
}

// Audio thread, engine lock held (the callback's tick observer).
void RtAudioOutput::OnTick(void* self, int64_t tick) {
    static_cast<RtAudioOutput*>(self)->clock.AfterTick(
        tick, theEngine != nullptr ? theEngine->LeadPlayhead() : nullptr);
}

// Audio thread: the byte is due when the period's frame `offset` sounds.
void RtAudioOutput::WriteMidi(void* arg, int32_t offset, uint8_t byte) {
    RtAudioOutput& self = *static_cast<RtAudioOutput*>(arg);
    self.alsaClock.Queue(self.periodNs + int64_t{offset} * 1000000000 / self.rate, byte);
}

bool RtAudioOutput::Lost() {
    const uint64_t now = periods.load(std::memory_order_relaxed);
    const bool stalled = audio != nullptr && now == periodsAsked;
    periodsAsked = now;
    return stalled;
}

std::string RtAudioOutput::Describe() const {
    return DescribeDevice(apiName, rate, period);
}
