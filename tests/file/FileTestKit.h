#pragma once

#include "editing/Line.h"
#include "engine/EngineLock.h"
#include "engine/SoundSystem.h"
#include "song/FileArchive.h"
#include "song/Instrument.h"
#include "song/InstrumentFile.h"
#include "song/PatternBank.h"
#include "sound/WaveBuilder.h"

#include <gtest/gtest.h>

#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace fs = std::filesystem;

// A test's name from the text that describes its case: letters and digits,
// everything else '_'.
inline std::string CaseName(const std::string& text) {
    std::string name = text;
    for (char& c : name)
        if (!std::isalnum(static_cast<unsigned char>(c)))
            c = '_';
    return name;
}

inline std::vector<uint8_t> ReadBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::vector<uint8_t>(std::istreambuf_iterator<char>(in), {});
}

inline void WriteBytes(const std::string& path, const std::vector<uint8_t>& bytes) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(bytes.data()),
              static_cast<std::streamsize>(bytes.size()));
}

inline std::string Fixture(const std::string& name) {
    const char* source = std::getenv("OX_SOURCE_DIR");
    return std::string(source != nullptr ? source : ".") + "/tests/file/fixtures/" + name;
}

inline std::string SourcePath(const std::string& relative) {
    const char* source = std::getenv("OX_SOURCE_DIR");
    return std::string(source != nullptr ? source : ".") + "/" + relative;
}

// A mono 16-bit wave whose first frame is height and whose other frames are
// silent: heard as a click on exactly one frame when played at its own rate.
inline std::vector<uint8_t> ClickWave(int32_t rate, double height, int32_t frames = 1) {
    std::vector<uint8_t> data;
    WaveBuilder::Add16(data, static_cast<uint16_t>(static_cast<int16_t>(height * 32767)));
    for (int32_t i = 1; i < frames; ++i)
        WaveBuilder::Add16(data, 0);
    return WaveBuilder()
        .Chunk("fmt ", WaveBuilder::Format(1, 1, static_cast<uint32_t>(rate), 16))
        .Chunk("data", data)
        .Bytes();
}

inline PlayPoint Note(int32_t time, int line) {
    PlayPoint p{};
    p.time = time;
    p.line = static_cast<uint8_t>(line);
    return p;
}

// Destroys instruments under the engine lock, as their sound buffers need.
struct LockedDelete {
    void operator()(Instrument* i) const {
        std::lock_guard<EngineMutex> hold(theEngineLock);
        delete i;
    }
};
using InstrumentPtr = std::unique_ptr<Instrument, LockedDelete>;

inline InstrumentPtr Own(std::unique_ptr<Instrument> i) {
    return InstrumentPtr(i.release());
}

// A fresh folder of its own for each test, removed afterwards, with HOME
// pointing into it so that the default sound folder is under the test's
// control (no ~/sounds: the bundled kit).
class FileTest : public ::testing::Test {
  protected:
    void SetUp() override {
        const testing::TestInfo* info = testing::UnitTest::GetInstance()->current_test_info();
        std::string name = std::string(info->test_suite_name()) + "-" + info->name();
        for (char& c : name)
            if (c == '/')
                c = '-';
        dir = (fs::temp_directory_path() / ("oxfile-" + std::to_string(getpid()) + "-" + name))
                  .string();
        fs::remove_all(dir);
        fs::create_directories(dir + "/home");
        const char* home = std::getenv("HOME");
        savedHome = home != nullptr ? home : "";
        setenv("HOME", (dir + "/home").c_str(), 1);
    }
    void TearDown() override {
        setenv("HOME", savedHome.c_str(), 1);
        fs::remove_all(dir);
    }

    std::string Path(const std::string& name) const { return dir + "/" + name; }

    // Writes a click wave into the test's folder and returns its path.
    std::string Wave(const std::string& name, int32_t rate = 48000, double height = 0.5) {
        WriteBytes(Path(name), ClickWave(rate, height));
        return Path(name);
    }

    // Loads a wave as "Load Waves" does: onto a new line, or onto line.
    void LoadWave(Instrument& i, const std::string& path, int32_t line = -1) {
        SoundBuffer* b = line < 0 ? i.NewBufferForNewLine() : i.NewBufferForLine(line);
        sounds.LoadWave(path, SampleDisplayNameOf(path), b);
        ASSERT_EQ(sounds.lastStatus, WaveStatus::Ok) << path;
    }

    static std::string SampleDisplayNameOf(const std::string& path) {
        const std::string name = fs::path(path).filename().string();
        return name.substr(0, name.size() - 4);
    }

    InstrumentPtr NewInstrument(const std::string& name) {
        InstrumentPtr i(new Instrument());
        i->SetName(name);
        return i;
    }

    std::string dir;
    std::string savedHome;
    SoundSystem sounds;
};
