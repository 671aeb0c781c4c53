// Save and Save As: the extension rule, which path a save takes, stale
// sample paths, and failed saves that keep the old file.
#include "FileTestKit.h"

#include "song/PlayPointList.h"

#include <csignal>
#include <sys/resource.h>

namespace {

struct ExtensionCase {
    const char* given;
    const char* saved;
};

class Extension : public ::testing::TestWithParam<ExtensionCase> {};

TEST_P(Extension, IsAppendedOnlyWhereItStandsNowhere) {
    EXPECT_EQ(WithInstrumentExtension(GetParam().given), GetParam().saved);
}

INSTANTIATE_TEST_SUITE_P(Paths, Extension,
                         ::testing::Values(ExtensionCase{"/a/song", "/a/song.nst"},
                                           ExtensionCase{"/a/song.nst", "/a/song.nst"},
                                           ExtensionCase{"/a/song.nst.bak", "/a/song.nst.bak"},
                                           ExtensionCase{"/a.nst/song", "/a.nst/song"},
                                           // the test minds the case
                                           ExtensionCase{"/a/song.NST", "/a/song.NST.nst"},
                                           ExtensionCase{"/a/song.ns", "/a/song.ns.nst"}));

using Save = FileTest;

TEST_F(Save, TheFirstSaveNeedsAPathAndTheNextDoesNot) {
    InstrumentPtr i = NewInstrument("Inst 1");
    EXPECT_FALSE(SaveInstrument(*i));
    EXPECT_EQ(i->hasFile, 0);

    SaveInstrumentAs(*i, Path("song"));
    EXPECT_EQ(i->filePath, Path("song.nst"));
    EXPECT_EQ(i->hasFile, 1);
    EXPECT_EQ(ReadBytes(Path("song.nst")), ReadBytes(Fixture("new-inst-1.nst")));

    i->SetName("Inst 2");
    EXPECT_TRUE(SaveInstrument(*i));
    EXPECT_EQ(ReadBytes(Path("song.nst"))[6], '2');
}

TEST_F(Save, AFileWithoutTheExtensionIsSavedBesideIt) {
    fs::copy_file(Fixture("new-inst-1.nst"), Path("beat"));
    InstrumentPtr i = Own(LoadInstrument(Path("beat"), nullptr));
    i->SetName("Changed");
    EXPECT_TRUE(SaveInstrument(*i));
    EXPECT_EQ(i->filePath, Path("beat")) << "the extension is for this save only";
    EXPECT_EQ(ReadBytes(Path("beat")), ReadBytes(Fixture("new-inst-1.nst")));
    EXPECT_EQ(ReadBytes(Path("beat.nst"))[1], 'C');
}

// A sample the performer removed does not come back at the next load.
TEST_F(Save, ARemovedSampleLeavesAnEmptyPath) {
    InstrumentPtr i = NewInstrument("Stale");
    LoadWave(*i, Wave("kick.wav"));
    LoadWave(*i, Wave("snare.wav"));
    SaveInstrumentAs(*i, Path("stale.nst"));
    InstrumentPtr back = Own(LoadInstrument(Path("stale.nst"), &sounds));
    back->GetBank()->GetLine(0)->RemoveSample(1);
    EXPECT_TRUE(SaveInstrument(*back));
    // Name and display name of 1 + 5 bytes each, two counts, then the paths.
    EXPECT_EQ(ReadBytes(Path("stale.nst"))[20], 0) << "the first path is empty";
    InstrumentPtr again = Own(LoadInstrument(Path("stale.nst"), &sounds));
    EXPECT_EQ(again->GetBank()->GetLine(0)->sampleCount, 0);
    EXPECT_EQ(again->GetBank()->GetLine(1)->SamplePath(0), Path("snare.wav"));
}

// ---- A failed save keeps the old file ------------------------------------

enum Failure { TooManyPoints, DiskFull, NoFolder };

struct FailureCase {
    Failure failure;
    const char* reason;
};

class FailedSave : public FileTest, public ::testing::WithParamInterface<FailureCase> {
  protected:
    void TearDown() override {
        setrlimit(RLIMIT_FSIZE, &unlimited);
        signal(SIGXFSZ, SIG_DFL);
        FileTest::TearDown();
    }
    rlimit unlimited{RLIM_INFINITY, RLIM_INFINITY};
};

TEST_P(FailedSave, LeavesTheOldFileWhole) {
    const FailureCase c = GetParam();
    InstrumentPtr i = NewInstrument("Kept");
    SaveInstrumentAs(*i, Path("kept.nst"));
    const std::vector<uint8_t> old = ReadBytes(Path("kept.nst"));
    i->SetName("Lost");
    if (c.failure == TooManyPoints) {
        PlayPointList full(1 << 20);
        for (int32_t t = 0; t <= 10000; ++t)
            full.Insert(Note(t, 0));
        i->GetBank()->SetPattern(4, full);
    } else if (c.failure == DiskFull) {
        // The new file may not grow past 100 bytes: as on a full disk.
        signal(SIGXFSZ, SIG_IGN);
        rlimit small{100, RLIM_INFINITY};
        ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &small), 0);
    } else {
        i->filePath = Path("gone/kept.nst");
    }
    const std::string target = i->filePath;
    try {
        SaveInstrument(*i);
        FAIL() << "saved";
    } catch (const FileError& e) {
        EXPECT_EQ(e.file, target);
        EXPECT_NE(e.reason.find(c.reason), std::string::npos) << e.reason;
    }
    EXPECT_EQ(i->filePath, target);
    EXPECT_EQ(ReadBytes(Path("kept.nst")), old);
    int files = 0;
    for (const auto& entry : fs::directory_iterator(dir))
        files += entry.is_regular_file() ? 1 : 0;
    EXPECT_EQ(files, 1) << "no new file is left beside it";
}

INSTANTIATE_TEST_SUITE_P(Causes, FailedSave,
                         ::testing::Values(FailureCase{TooManyPoints, "pattern 5 has 10001 notes"},
                                           FailureCase{DiskFull, "cannot be written"},
                                           FailureCase{NoFolder,
                                                       "the file or its folder does not exist"}));

} // namespace
