#include "engine/OfflineOutput.h"

#include "engine/AudioCallback.h"

OfflineOutput::OfflineOutput(int32_t sampleRate, int32_t periodFrames)
    : rate(sampleRate), period(periodFrames), buffer(2 * static_cast<size_t>(periodFrames)) {}

bool OfflineOutput::Start(AudioCallback& c) {
    callback = &c;
    spare.clear();
    callback->Prepare(rate);
    return true;
}

std::string OfflineOutput::Describe() const {
    return "offline, " + std::to_string(rate) + " Hz, " + std::to_string(period) + " frames";
}

const float* OfflineOutput::PullPeriod() {
    callback->Render(buffer.data(), period);
    return buffer.data();
}

std::vector<float> OfflineOutput::Pull(int64_t frames) {
    std::vector<float> out;
    out.reserve(2 * static_cast<size_t>(frames));
    out.insert(out.end(), spare.begin(), spare.end());
    spare.clear();
    while (static_cast<int64_t>(out.size()) < 2 * frames) {
        const float* p = PullPeriod();
        out.insert(out.end(), p, p + 2 * static_cast<size_t>(period));
    }
    spare.assign(out.begin() + 2 * frames, out.end());
    out.resize(2 * static_cast<size_t>(frames));
    return out;
}
