#include "engine/RenderOptions.h"

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace {

// A number that takes the whole text and lies within [low, high].
bool ReadNumber(const char* text, double low, double high, double& value) {
    errno = 0;
    char* end = nullptr;
    const double v = std::strtod(text, &end);
    if (end == text || *end != '\0' || errno != 0 || !std::isfinite(v) || v < low || v > high)
        return false;
    value = v;
    return true;
}

bool ReadWhole(const char* text, int32_t low, int32_t high, int32_t& value) {
    double v = 0.0;
    if (!ReadNumber(text, low, high, v) || v != std::floor(v))
        return false;
    value = static_cast<int32_t>(v);
    return true;
}

const char* const ValueOptions[] = {"--render", "--pattern", "--seconds", "--bpm",
                                    "--rate",   "--level",   "--gain"};

bool IsValueOption(const std::string& name) {
    for (const char* known : ValueOptions)
        if (name == known)
            return true;
    return false;
}

// One option with its value; false with the reason when it does not take it.
bool TakeOption(const std::string& name, const char* value, RenderOptions& o, std::string& error) {
    if (name == "--render") {
        o.output = value;
        error = "--render needs the name of the WAV file to write";
        return *value != '\0';
    }
    if (name == "--pattern") {
        error = "--pattern needs a whole number from 1 to 16";
        return ReadWhole(value, 1, 16, o.pattern);
    }
    if (name == "--seconds") {
        // The limit keeps the output well within what a WAV file can hold.
        error = "--seconds needs a number above 0 and at most 3600";
        return ReadNumber(value, 0.001, 3600.0, o.seconds);
    }
    if (name == "--bpm") {
        // The tempo slider's range.
        error = "--bpm needs a number from 30 to 250";
        return ReadNumber(value, 30.0, 250.0, o.bpm);
    }
    if (name == "--rate") {
        error = "--rate needs a whole number of frames per second from 8000 to 192000";
        return ReadWhole(value, 8000, 192000, o.rate);
    }
    if (name == "--gain") {
        error = "--gain needs a number of dB from -100 to 100";
        return ReadNumber(value, -100.0, 100.0, o.gainDb);
    }
    error = "--level needs a number from 0 to 1";
    return ReadNumber(value, 0.0, 1.0, o.level);
}

} // namespace

bool IsCommandLine(int argc, const char* const* argv) {
    if (argc < 2)
        return false;
    const std::string first = argv[1];
    return first == "--render" || first == "--help" || first == "--version";
}

std::string RenderUsage() {
    return "Usage: oxbowlantern --render OUT.wav [options] FILE.nst...\n"
           "Starts the same pattern of every instrument file together, as the Enter key\n"
           "does, and writes what they play to OUT.wav (32-bit float stereo), with no\n"
           "window and no sound device.\n"
           "  --pattern N   the pattern to start, 1 to 16 (default 1)\n"
           "  --seconds S   length of the output (default: one pass of the longest pattern)\n"
           "  --bpm B       tempo, 30 to 250 beats a minute (default 120)\n"
           "  --rate R      frames per second, 8000 to 192000 (default 48000)\n"
           "  --level L     level of every instrument, 0 to 1 (default 0.9)\n"
           "  --gain DB     added to the whole output, -100 to 100 dB (default 0); an output\n"
           "                that goes above full scale is written as it is (in floats), and\n"
           "                its peak is reported on standard error\n"
           "  --normalize   scale the output so that its peak is at -1 dBFS, measured over\n"
           "                the whole render before it is written; --gain then moves it\n"
           "  --help        this text\n"
           "  --version     the program's version\n";
}

std::string ParseRenderOptions(int argc, const char* const* argv, RenderOptions& options) {
    for (int i = 0; i < argc; ++i) {
        options.help = options.help || std::strcmp(argv[i], "--help") == 0;
        options.version = options.version || std::strcmp(argv[i], "--version") == 0;
    }
    if (options.help || options.version)
        return std::string();
    for (int i = 0; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg.rfind("--", 0) != 0) {
            options.files.push_back(arg);
            continue;
        }
        if (arg == "--normalize") {
            options.normalize = true;
            continue;
        }
        if (!IsValueOption(arg))
            return "unknown option " + arg + " (see --help)";
        if (i + 1 == argc)
            return arg + " needs a value (see --help)";
        std::string error;
        if (!TakeOption(arg, argv[++i], options, error))
            return error;
    }
    if (options.output.empty())
        return "--render OUT.wav is missing (see --help)";
    if (options.files.empty())
        return "no instrument file was named (see --help)";
    return std::string();
}
