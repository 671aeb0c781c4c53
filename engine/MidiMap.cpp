#include "engine/MidiMap.h"

#include <algorithm>
#include <sstream>

int MidiMap::Slot(MidiBinding b) {
    if (b.kind > MidiBinding::Controller || b.channel < 1 || b.channel > Channels ||
        b.number >= Numbers)
        return -1;
    return (b.kind * Channels + b.channel - 1) * Numbers + b.number;
}

uint32_t MidiMap::KeyFor(MidiBinding b) const {
    const int slot = Slot(b);
    return slot < 0 ? 0 : keys[slot];
}

void MidiMap::Set(MidiBinding b, uint32_t key) {
    const int slot = Slot(b);
    if (slot >= 0 && key <= MaxKey)
        keys[slot] = static_cast<uint8_t>(key);
}

void MidiMap::Clear() {
    std::fill(std::begin(keys), std::end(keys), uint8_t{0});
}

std::vector<MidiMap::Entry> MidiMap::Entries() const {
    std::vector<Entry> out;
    for (int slot = 0; slot < Slots; ++slot) {
        if (keys[slot] == 0)
            continue;
        const auto kind = static_cast<MidiBinding::Kind>(slot / (Channels * Numbers));
        const auto channel = static_cast<uint8_t>(slot / Numbers % Channels + 1);
        out.push_back({{kind, channel, static_cast<uint8_t>(slot % Numbers)}, keys[slot]});
    }
    return out;
}

std::string MidiMap::ToText() const {
    std::string text;
    for (const Entry& e : Entries())
        text += BindingText(e.binding) + " = key " + std::to_string(e.key) + "\n";
    return text;
}

namespace {

// Reads a whole number in [low, high] as the next word, or fails the stream.
bool ReadNumber(std::istringstream& in, int low, int high, int& value) {
    std::string word;
    if (!(in >> word) || word.empty() || word.size() > 3 ||
        !std::all_of(word.begin(), word.end(), [](char c) { return c >= '0' && c <= '9'; }))
        return false;
    value = std::stoi(word);
    return value >= low && value <= high;
}

// One line without its comment: empty when it maps, else what is wrong.
std::string ParseLine(const std::string& line, MidiBinding& b, uint32_t& key) {
    std::istringstream in(line);
    std::string kind, equals, keyWord, rest;
    int channel = 0, number = 0, position = 0;
    in >> kind;
    if (kind != "note" && kind != "cc")
        return "\"" + kind + "\" is neither note nor cc";
    if (!ReadNumber(in, 1, 16, channel))
        return "the channel is not a number from 1 to 16";
    if (!ReadNumber(in, 0, 127, number))
        return "the " + kind + " number is not a number from 0 to 127";
    if (!(in >> equals >> keyWord) || equals != "=" || keyWord != "key")
        return "\"= key\" is missing after the " + kind + " number";
    if (!ReadNumber(in, 1, MidiMap::MaxKey, position))
        return "the key position is not a number from 1 to " + std::to_string(MidiMap::MaxKey);
    if (in >> rest)
        return "\"" + rest + "\" follows the key position";
    b = {kind == "note" ? MidiBinding::Note : MidiBinding::Controller,
         static_cast<uint8_t>(channel), static_cast<uint8_t>(number)};
    key = static_cast<uint32_t>(position);
    return {};
}

} // namespace

std::vector<std::string> MidiMap::FromText(const std::string& text) {
    Clear();
    std::vector<std::string> broken;
    std::istringstream lines(text);
    std::string line;
    for (int n = 1; std::getline(lines, line); ++n) {
        line = line.substr(0, line.find('#'));
        if (line.find_first_not_of(" \t\r") == std::string::npos)
            continue;
        MidiBinding b{};
        uint32_t key = 0;
        const std::string wrong = ParseLine(line, b, key);
        if (wrong.empty())
            Set(b, key);
        else
            broken.push_back("line " + std::to_string(n) + ": " + wrong);
    }
    return broken;
}

std::string BindingText(MidiBinding b) {
    return (b.kind == MidiBinding::Note ? "note " : "cc ") + std::to_string(b.channel) + " " +
           std::to_string(b.number);
}
