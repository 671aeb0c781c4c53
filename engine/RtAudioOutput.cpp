#include "engine/RtAudioOutput.h"

#include "engine/AudioCallback.h"

#include <RtAudio.h>
#include <alsa/asoundlib.h>

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
    self->callback->Render(static_cast<float*>(output), static_cast<int32_t>(frames));
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
        c.Prepare(rate);
        audio->startStream();
        apiName = ApiLabel(api);
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
    audio.reset();
    callback = nullptr;
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
