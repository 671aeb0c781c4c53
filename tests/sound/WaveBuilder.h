#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

// Writes small RIFF wave files, chunk by chunk, for the reader's tests.
class WaveBuilder {
  public:
    WaveBuilder& Chunk(const char id[4], const std::vector<uint8_t>& body) {
        bytes.insert(bytes.end(), id, id + 4);
        Put32(static_cast<uint32_t>(body.size()));
        bytes.insert(bytes.end(), body.begin(), body.end());
        if (body.size() % 2 != 0)
            bytes.push_back(0);
        return *this;
    }

    // A format chunk: 16 bytes, or 18 with a zero extension size.
    static std::vector<uint8_t> Format(uint16_t tag, uint16_t channels, uint32_t rate,
                                       uint16_t bits, bool eighteen = false) {
        std::vector<uint8_t> f;
        const uint16_t align = static_cast<uint16_t>(channels * bits / 8);
        Add16(f, tag);
        Add16(f, channels);
        Add32(f, rate);
        Add32(f, rate * align);
        Add16(f, align);
        Add16(f, bits);
        if (eighteen)
            Add16(f, 0);
        return f;
    }

    // An extensible format chunk (40 bytes) whose sub-format is subTag.
    static std::vector<uint8_t> Extensible(uint16_t subTag, uint16_t channels, uint32_t rate,
                                           uint16_t bits) {
        std::vector<uint8_t> f = Format(0xFFFE, channels, rate, bits);
        Add16(f, 22);
        Add16(f, bits);
        Add32(f, channels == 2 ? 3 : 4);
        Add16(f, subTag);
        const uint8_t tail[14] = {0x00, 0x00, 0x00, 0x00, 0x10, 0x00, 0x80,
                                  0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71};
        f.insert(f.end(), tail, tail + 14);
        return f;
    }

    static void Add16(std::vector<uint8_t>& v, uint16_t x) {
        v.push_back(static_cast<uint8_t>(x));
        v.push_back(static_cast<uint8_t>(x >> 8));
    }
    static void Add32(std::vector<uint8_t>& v, uint32_t x) {
        for (int i = 0; i < 4; ++i)
            v.push_back(static_cast<uint8_t>(x >> (8 * i)));
    }

    // The file's bytes with the RIFF header in front.
    std::vector<uint8_t> Bytes(const char form[4] = "WAVE") const {
        std::vector<uint8_t> all = {'R', 'I', 'F', 'F'};
        Add32(all, static_cast<uint32_t>(bytes.size() + 4));
        all.insert(all.end(), form, form + 4);
        all.insert(all.end(), bytes.begin(), bytes.end());
        return all;
    }

    // Writes the file into the temporary folder and returns its path.
    static std::string Save(const std::vector<uint8_t>& data, const std::string& name) {
        const std::string path = TempDir() + "/" + name;
        std::ofstream out(path, std::ios::binary | std::ios::trunc);
        out.write(reinterpret_cast<const char*>(data.data()),
                  static_cast<std::streamsize>(data.size()));
        return path;
    }

    static std::string TempDir() {
        const char* t = std::getenv("TMPDIR");
        std::string dir = std::string(t != nullptr ? t : "/tmp") + "/oxsound-" +
                          std::to_string(static_cast<long>(getpid()));
        mkdir(dir.c_str(), 0700);
        return dir;
    }

  private:
    void Put32(uint32_t x) { Add32(bytes, x); }
    std::vector<uint8_t> bytes;
};
