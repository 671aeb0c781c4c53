// The whole file: golden bytes, round trips with real waves, and where the
// waves named in a file are found.
#include "FileTestKit.h"

#include "song/PlayPointList.h"
#include "song/SamplePath.h"

#include <cstring>

namespace {

int32_t Int32At(const std::vector<uint8_t>& b, size_t at) {
    return static_cast<int32_t>(GetLE(b.data() + at, 4));
}

std::vector<uint8_t> Serialized(Instrument& i) {
    FileArchive out("t.nst");
    i.Serialize(out);
    return out.Bytes();
}

bool SameList(const PlayPointList& a, const PlayPointList& b) {
    return a.bound == b.bound && a.count == b.count &&
           std::memcmp(a.items, b.items, sizeof(PlayPoint) * a.count) == 0;
}

void Store(Instrument& i, int32_t pattern, int32_t bound, const std::vector<PlayPoint>& points) {
    PlayPointList list(bound);
    for (const PlayPoint& p : points)
        list.InsertOrReplace(p);
    i.GetBank()->SetPattern(pattern, list);
}

using InstrumentFile = FileTest;

TEST_F(InstrumentFile, NewInstrumentIs240KnownBytes) {
    InstrumentPtr i = NewInstrument("Inst 1");
    const std::vector<uint8_t> b = Serialized(*i);
    ASSERT_EQ(b.size(), 240u);
    EXPECT_EQ(b, ReadBytes(Fixture("new-inst-1.nst")));
    // Name and display name, one control group, no lines, 90 empty paths,
    // then sixteen empty patterns of 512.
    EXPECT_EQ(std::string(b.begin(), b.begin() + 14), "\x06Inst 1\x06Inst 1");
    EXPECT_EQ(Int32At(b, 14), 1);
    EXPECT_EQ(Int32At(b, 232), 512);
}

TEST_F(InstrumentFile, LoadAndSaveGiveTheSameBytes) {
    InstrumentPtr i = NewInstrument("Beat 7");
    i->AddControlGroup();
    i->AddControlGroup();
    LoadWave(*i, Wave("kick.wav"));
    LoadWave(*i, Wave("snare.wav"));
    LoadWave(*i, Wave("snare-low.wav"), 1);
    LoadWave(*i, Wave("hat.wav"));
    Store(*i, 0, 512, {Note(0, 0), Note(64, 1), Note(128, 2), Note(192, 0)});
    Store(*i, 3, 256, {Note(16, 2), Note(17, 1)});
    PlayPoint loud = Note(300, 1);
    loud.volume = -700;
    loud.pan = 2500;
    loud.toeIn = 12;
    loud.reserved = 0x5A;
    Store(*i, 15, 1024, {loud});
    SaveInstrumentAs(*i, Path("beat.nst"));
    const std::vector<uint8_t> first = ReadBytes(Path("beat.nst"));

    InstrumentPtr back = Own(LoadInstrument(Path("beat.nst"), &sounds));
    EXPECT_EQ(back->GetName(), "Beat 7");
    EXPECT_EQ(back->displayName, "Beat 7");
    EXPECT_EQ(back->GetControlCount(), 3);
    PatternBank* bank = back->GetBank();
    ASSERT_EQ(bank->GetLineCount(), 3);
    const char* names[] = {"kick", "snare", "hat"};
    for (int32_t l = 0; l < 3; ++l) {
        EXPECT_EQ(bank->GetLine(l)->controlGroup, 2) << "every line joins the last group";
        EXPECT_STREQ(bank->GetLine(l)->GetName(), names[l]);
    }
    EXPECT_EQ(bank->GetLine(1)->SamplePath(1), Path("snare-low.wav"));
    for (int32_t p = 0; p < PatternBank::PatternCount; ++p)
        EXPECT_TRUE(SameList(bank->GetPattern(p), i->GetBank()->GetPattern(p))) << p;
    EXPECT_EQ(Serialized(*back), first);
}

// The two differences a load brings: equal times come back reversed, and
// points a shortened pattern hid are gone.
TEST_F(InstrumentFile, EqualTimesReverseAndHiddenPointsGo) {
    InstrumentPtr i = NewInstrument("Ties");
    PlayPointList list(512);
    for (int line = 0; line < 3; ++line)
        list.InsertOrReplace(Note(64, line));
    list.InsertOrReplace(Note(400, 0));
    list.SetBound(256);
    i->GetBank()->SetPattern(0, list);
    const std::vector<uint8_t> bytes = Serialized(*i);
    // Two names of 1 + 4 bytes, two counts and 90 empty paths: then the block.
    EXPECT_EQ(Int32At(bytes, 112), 4) << "the hidden point is written";

    InstrumentPtr back(new Instrument());
    FileArchive in(bytes.data(), bytes.size(), "t.nst");
    back->Serialize(in);
    const PlayPointList got = back->GetBank()->GetPattern(0);
    ASSERT_EQ(got.count, 3);
    for (int32_t k = 0; k < 3; ++k)
        EXPECT_EQ(got.items[k].line, 2 - k);
    EXPECT_EQ(got.bound, 256);
}

TEST_F(InstrumentFile, SaveTakesTheUnsavedEditsOfTheShownPattern) {
    InstrumentPtr i = NewInstrument("Edits");
    Store(*i, 0, 512, {Note(0, 0)});
    i->GetBank()->AddPoint(Note(32, 0));
    InstrumentPtr back(new Instrument());
    const std::vector<uint8_t> bytes = Serialized(*i);
    FileArchive in(bytes.data(), bytes.size(), "t.nst");
    back->Serialize(in);
    EXPECT_EQ(back->GetBank()->GetPattern(0).count, 2);
    EXPECT_EQ(i->GetBank()->patterns[0].count, 1) << "the stored pattern stays as it was";
}

// A file from another machine: waves found by name beside it or in the
// bundled kit, a missing one leaving its line "Empty" with its points.
TEST_F(InstrumentFile, WavesOfAnotherMachine) {
    fs::copy_file(Fixture("three-lines.nst"), Path("three-lines.nst"));
    InstrumentPtr i = Own(LoadInstrument(Path("three-lines.nst"), &sounds));
    PatternBank* bank = i->GetBank();
    ASSERT_EQ(bank->GetLineCount(), 3);
    EXPECT_EQ(i->GetControlCount(), 3);
    EXPECT_STREQ(bank->GetLine(0)->GetName(), "kick");
    EXPECT_EQ(bank->GetLine(0)->SamplePath(0), BundledSoundFolder() + "/kick.wav");
    EXPECT_STREQ(bank->GetLine(1)->GetName(), "snare") << "found after its last backslash";
    EXPECT_EQ(bank->GetLine(1)->sampleCount, 1) << "snare-2.wav is nowhere";
    EXPECT_STREQ(bank->GetLine(2)->GetName(), "Empty");
    ASSERT_EQ(bank->GetLine(2)->points->count, 1);
    EXPECT_EQ(bank->GetLine(2)->points->items[0].time, 300);
    EXPECT_EQ(i->filePath, Path("three-lines.nst"));
    EXPECT_EQ(i->hasFile, 1);
}

// ---- Where a named wave is looked for --------------------------------------

enum Place { Nowhere, Beside, HomeSounds, BothBesideAndHome };

struct ResolveCase {
    const char* stored; // as the file names it; "@" stands for the test folder
    Place place;        // where a file of that name is put
    const char* found;  // "@": unchanged; else the folder it is found in
};

class Resolve : public FileTest, public ::testing::WithParamInterface<ResolveCase> {};

TEST_P(Resolve, LooksBesideThenInTheDefaultFolderThenInTheKit) {
    const ResolveCase c = GetParam();
    std::string stored = c.stored;
    if (stored[0] == '@')
        stored = dir + stored.substr(1);
    const std::string name = SampleFileName(stored);
    fs::create_directories(Path("own"));
    fs::create_directories(Path("home/sounds"));
    if (c.place == Beside || c.place == BothBesideAndHome)
        Wave("own/" + name);
    if (c.place == HomeSounds || c.place == BothBesideAndHome)
        Wave("home/sounds/" + name);
    const std::string got = ResolveSamplePath(stored, Path("own/song.nst"));
    const std::string found = c.found;
    if (found == "@")
        EXPECT_EQ(got, stored);
    else if (found == "kit")
        EXPECT_EQ(got, BundledSoundFolder() + "/" + name);
    else
        EXPECT_EQ(got, Path(found + "/" + name));
}

INSTANTIATE_TEST_SUITE_P(
    Paths, Resolve,
    ::testing::Values(ResolveCase{"@/own/here.wav", Beside, "@"},
                      ResolveCase{"/gone/away.wav", Beside, "own"},
                      ResolveCase{"C:\\kit\\win.wav", HomeSounds, "home/sounds"},
                      ResolveCase{"/gone/both.wav", BothBesideAndHome, "own"},
                      // ~/sounds exists but lacks it: the bundled kit still has it
                      ResolveCase{"D:\\drums\\kick.wav", Nowhere, "kit"},
                      ResolveCase{"/gone/none.wav", Nowhere, "@"},
                      ResolveCase{"relative.wav", Nowhere, "@"}));

struct NameCase {
    const char* path;
    const char* shown;
};

class DisplayName : public ::testing::TestWithParam<NameCase> {};

TEST_P(DisplayName, IsTheFileNameWithoutItsExtension) {
    EXPECT_EQ(SampleDisplayName(GetParam().path), GetParam().shown);
}

INSTANTIATE_TEST_SUITE_P(Paths, DisplayName,
                         ::testing::Values(NameCase{"C:\\sounds\\kick.wav", "kick"},
                                           NameCase{"/home/a/snare.wav", "snare"},
                                           NameCase{"mixed\\dir/hat.wav", "hat"},
                                           NameCase{"dir/a.b.wav", "a.b"}, NameCase{"/x/ab", "ab"},
                                           NameCase{"/x/", ""}));

} // namespace
