// Broken and hostile files: each is refused with its name and a reason, and
// leaves nothing behind.
#include "FileTestKit.h"

#include <unistd.h>

namespace {

struct RefusalCase {
    const char* fixture;
    const char* reason; // a part of the reason given
};

class Refusal : public FileTest, public ::testing::WithParamInterface<RefusalCase> {};

TEST_P(Refusal, NamesTheFileAndTheReason) {
    const RefusalCase c = GetParam();
    const std::string path = Fixture(c.fixture);
    try {
        LoadInstrument(path, &sounds);
        FAIL() << "taken: " << c.fixture;
    } catch (const FileError& e) {
        EXPECT_EQ(e.file, path);
        EXPECT_NE(e.reason.find(c.reason), std::string::npos) << e.reason;
        EXPECT_EQ(std::string(e.what()), path + ": " + e.reason);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Fixtures, Refusal,
    ::testing::Values(RefusalCase{"empty.nst", "ends too early"},
                      RefusalCase{"cut-in-name.nst", "runs past the end of the file"},
                      RefusalCase{"cut-in-paths.nst", "ends too early"},
                      RefusalCase{"cut-in-pattern.nst", "ends too early"},
                      RefusalCase{"entries-below-0.nst", "claims -3 sample places"},
                      RefusalCase{"entries-above-90.nst", "claims 93 sample places"},
                      RefusalCase{"entries-not-three.nst", "claims 4 sample places"},
                      RefusalCase{"controls-below-0.nst", "claims -1 control groups"},
                      RefusalCase{"controls-above-30.nst", "claims 31 control groups"},
                      RefusalCase{"count-below-0.nst", "claims -1 notes"},
                      RefusalCase{"count-above-10000.nst", "claims 10001 notes"},
                      RefusalCase{"bound-0.nst", "length of 0 time units"},
                      RefusalCase{"time-below-0.nst", "before the start of its pattern"},
                      RefusalCase{"text-longer-than-file.nst", "runs past the end of the file"},
                      RefusalCase{"text-longer-short-form.nst", "runs past the end of the file"}),
    [](const auto& info) { return CaseName(info.param.fixture); });

using Unreadable = FileTest;

TEST_F(Unreadable, MissingFolderAndHugeFilesAreRefused) {
    const struct {
        std::string path;
        const char* reason;
    } cases[] = {{Path("absent.nst"), "cannot be opened: the file or its folder does not exist"},
                 {dir, "is not a file"},
                 {Path("huge.nst"), "far too large"}};
    WriteBytes(Path("huge.nst"), {});
    ASSERT_EQ(truncate(Path("huge.nst").c_str(), MaxInstrumentFileBytes + 1), 0);
    for (const auto& c : cases) {
        try {
            LoadInstrument(c.path, &sounds);
            ADD_FAILURE() << "taken: " << c.path;
        } catch (const FileError& e) {
            EXPECT_EQ(e.file, c.path);
            EXPECT_NE(e.reason.find(c.reason), std::string::npos) << e.reason;
        }
    }
}

// The waves of a file load only once all of it has been read, so a file
// broken in its last pattern reads none of the waves it names.
TEST_F(Unreadable, ABrokenFileReadsNoWave) {
    InstrumentPtr i = NewInstrument("Late break");
    LoadWave(*i, Wave("kick.wav"));
    FileArchive out("t.nst");
    i->Serialize(out);
    std::vector<uint8_t> bytes = out.Bytes();
    PutLE(bytes.data() + bytes.size() - 4, 10001, 4); // the count of pattern 16
    WriteBytes(Path("late.nst"), bytes);
    SoundSystem fresh;
    EXPECT_THROW(LoadInstrument(Path("late.nst"), &fresh), FileError);
    EXPECT_EQ(fresh.waveDataSize, 0u);
}

} // namespace
