#include "engine/RtAudioOutput.h"

#include "engine/AudioCallback.h"

#include <RtAudio.h>
#include <alsa/asoundlib.h>
#include <jack/jack.h>

namespace {

// The libraries underneath print their own complaints while a system is
// probed that is not there; the program says one line of its own instead.
void QuietJack(const char*) {}
void QuietAlsa(const char*, int, const char*, int, const char*, ...) {}

// The device to open for an API: JACK's "system" client, ALSA's "default"
// PCM, else the API's default output.
unsigned int ChooseDevice(RtAudio& audio, RtAudio::Api api) {
    const char* wanted = api == RtAudio::UNIX_JACK ? "system" : "default";
    const unsigned int count = audio.getDeviceCount();
    for (unsigned int i = 0; i < count; ++i) {
        const RtAudio::DeviceInfo info = audio.getDeviceInfo(i);
        if (info.probed && info.outputChannels >= 2 && info.name == wanted)
            return i;
    }
    return audio.getDefaultOutputDevice();
}

// 48 kHz when offered, else the device's preferred rate. A JACK server offers
// only its own.
unsigned int ChooseRate(const RtAudio::DeviceInfo& info) {
    for (unsigned int r : info.sampleRates)
        if (r == static_cast<unsigned int>(RtAudioOutput::PreferredRate))
            return r;
    if (info.preferredSampleRate != 0)
        return info.preferredSampleRate;
    return info.sampleRates.empty() ? RtAudioOutput::PreferredRate : info.sampleRates.front();
}

const char* ApiLabel(RtAudio::Api api) {
    switch (api) {
    case RtAudio::UNIX_JACK:
        return "JACK";
    case RtAudio::LINUX_PULSE:
        return "PulseAudio";
    default:
        return "ALSA";
    }
}

} // namespace

RtAudioOutput::RtAudioOutput() = default;

RtAudioOutput::~RtAudioOutput() {
    Stop();
}

// Audio thread (RtAudio's or JACK's process thread).
int RtAudioOutput::Callback(void* output, void*, unsigned int frames, double, unsigned int status,
                            void* user) {
    RtAudioOutput* self = static_cast<RtAudioOutput*>(user);
    if ((status & RTAUDIO_OUTPUT_UNDERFLOW) != 0)
        self->underflows.fetch_add(1, std::memory_order_relaxed);
    self->callback->Render(static_cast<float*>(output), static_cast<int32_t>(frames));
    return 0;
}

bool RtAudioOutput::Start(AudioCallback& c) {
    jack_set_error_function(QuietJack);
    jack_set_info_function(QuietJack);
    snd_lib_error_set_handler(QuietAlsa);
    callback = &c;
    for (RtAudio::Api api : {RtAudio::UNIX_JACK, RtAudio::LINUX_PULSE, RtAudio::LINUX_ALSA})
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
        // JACK counts no device when no server runs; nothing is started.
        if (audio->getDeviceCount() == 0) {
            audio.reset();
            return false;
        }
        RtAudio::StreamParameters parameters;
        parameters.deviceId = ChooseDevice(*audio, api);
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
    } catch (const RtAudioError&) {
        audio.reset();
        return false;
    }
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

std::string RtAudioOutput::Describe() const {
    return apiName + " at " + std::to_string(rate) + " Hz, " + std::to_string(period) +
           "-frame periods";
}
