#include "engine/MidiMap.h"

#include <gtest/gtest.h>

namespace {

constexpr MidiBinding Kick{MidiBinding::Note, 10, 36};
constexpr MidiBinding Pedal{MidiBinding::Controller, 1, 64};

TEST(MidiMap, TextRoundTripsInOrder) {
    MidiMap map;
    map.Set(Pedal, 57);
    map.Set({MidiBinding::Note, 16, 127}, 208);
    map.Set(Kick, 28);
    map.Set({MidiBinding::Note, 17, 1}, 5); // no such channel
    const std::string text = "note 10 36 = key 28\nnote 16 127 = key 208\ncc 1 64 = key 57\n";
    EXPECT_EQ(map.ToText(), text);
    MidiMap back;
    EXPECT_TRUE(back.FromText(text).empty());
    EXPECT_EQ(back.ToText(), text);
    EXPECT_EQ(BindingText(Pedal), "cc 1 64");
}

TEST(MidiMap, BrokenLinesAreNamedAndSkipped) {
    MidiMap map;
    map.Set({MidiBinding::Note, 1, 1}, 2); // replaced by the text
    const auto broken = map.FromText("# drums\n"
                                     "\n"
                                     "note 10 36 = key 28   # kick starts\n"
                                     "notes 10 36 = key 28\n"
                                     "note 0 36 = key 28\n"
                                     "cc 1 128 = key 57\n"
                                     "cc 1 64 key 57\n"
                                     "cc 1 64 = key 0\n"
                                     "cc 1 64 = key 57 58\n"
                                     "\tcc 2 7 = key 57\r\n"
                                     "note 10 36 = key 41\n");
    EXPECT_EQ(broken, (std::vector<std::string>{
                          "line 4: \"notes\" is neither note nor cc",
                          "line 5: the channel is not a number from 1 to 16",
                          "line 6: the cc number is not a number from 0 to 127",
                          "line 7: \"= key\" is missing after the cc number",
                          "line 8: the key position is not a number from 1 to 255",
                          "line 9: \"58\" follows the key position",
                      }));
    EXPECT_EQ(map.ToText(), "note 10 36 = key 41\ncc 2 7 = key 57\n");
}

TEST(MidiMap, LearnAndRemove) {
    MidiMap map;
    map.Set(Kick, 28);
    map.Set(Kick, 57);
    map.Set(Pedal, 57);
    EXPECT_EQ(map.KeyFor(Kick), 57u);
    map.Remove(Kick);
    EXPECT_EQ(map.KeyFor(Kick), 0u);
    EXPECT_EQ(map.Entries().size(), 1u);
    map.Clear();
    EXPECT_EQ(map.KeyFor(Pedal), 0u);
}

} // namespace
