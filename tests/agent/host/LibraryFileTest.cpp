#include <gtest/gtest.h>
#include <link.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <fstream>

#include "agent/host/LibraryFile.h"
#include "tests/agent/support/TemporaryFolder.h"

namespace QosAgent {
namespace {

class LibraryFileTest : public ::testing::Test {
protected:
    std::string faultOf(const std::string& bytes) const {
        std::ofstream(folder / "lib.so", std::ios::binary) << bytes;
        return LibraryFile(folder / "lib.so").fault();
    }
    /// A header, one segment, and what the segment is said to be.
    static std::string library(std::uint64_t segmentOffset, std::uint64_t segmentBytes,
                               std::uint16_t segmentHeaderBytes = sizeof(ElfW(Phdr))) {
        ElfW(Ehdr) header{};
        std::memcpy(header.e_ident, ELFMAG, SELFMAG);
        header.e_phoff = sizeof header;
        header.e_phnum = 1;
        header.e_phentsize = segmentHeaderBytes;
        ElfW(Phdr) segment{};
        segment.p_offset = segmentOffset;
        segment.p_filesz = segmentBytes;
        std::string bytes(sizeof header + sizeof segment, '\0');
        std::memcpy(bytes.data(), &header, sizeof header);
        std::memcpy(bytes.data() + sizeof header, &segment, sizeof segment);
        return bytes;
    }

    static constexpr std::uint64_t kSize = sizeof(ElfW(Ehdr)) + sizeof(ElfW(Phdr));
    TemporaryFolder folder;
};

TEST_F(LibraryFileTest, hasNoFaultWhenItIsWhole) {
    EXPECT_EQ(LibraryFile("/proc/self/exe").fault(), "");
    EXPECT_EQ(faultOf(library(0, kSize)), "");
    EXPECT_EQ(faultOf(library(kSize, 0)), "");
}

TEST_F(LibraryFileTest, isTruncatedWhenASegmentEndsBehindIt) {
    EXPECT_EQ(faultOf(library(0, kSize + 1)), "file truncated");
    EXPECT_EQ(faultOf(library(kSize, 1)), "file truncated");
    EXPECT_EQ(faultOf(library(kSize + 1, 0)), "file truncated");
    EXPECT_EQ(faultOf(library(8, ~std::uint64_t{0})), "file truncated");
}

TEST_F(LibraryFileTest, isTruncatedWithinItsListOfSegments) {
    EXPECT_EQ(faultOf(library(0, 0).substr(0, kSize - 1)), "file truncated");
}

TEST_F(LibraryFileTest, leavesWhatIsNoLibraryToTheCLibrary) {
    EXPECT_EQ(faultOf(""), "");
    EXPECT_EQ(faultOf(std::string(1000, 'x')), "");
    EXPECT_EQ(faultOf(library(0, kSize + 1, 32)), "") << "of another machine";
}

TEST_F(LibraryFileTest, isARegularFile) {
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_EQ(LibraryFile(folder / "pipe").fault(), "not a regular file");
    EXPECT_EQ(LibraryFile(folder.path()).fault(), "not a regular file");
    EXPECT_EQ(LibraryFile("/dev/null").fault(), "not a regular file");
    EXPECT_EQ(LibraryFile(folder / "none.so").fault(), "No such file or directory");
}

TEST_F(LibraryFileTest, isWrittenByNobodyElse) {
    faultOf("");
    const auto faultAt = [&](mode_t mode) {
        EXPECT_EQ(::chmod((folder / "lib.so").c_str(), mode), 0);
        return LibraryFile(folder / "lib.so").fault();
    };
    for (const mode_t mode : {0755u, 0644u, 0600u, 0444u})
        EXPECT_EQ(faultAt(mode), "") << std::oct << mode;
    EXPECT_EQ(faultAt(0646), "others may write to it (chmod go-w)");
    EXPECT_EQ(faultAt(0602), "others may write to it (chmod go-w)");
}

TEST_F(LibraryFileTest, isWrittenByAGroupOnlyIfThatIsItsOwnersAlone) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root gives files away";
    faultOf("");
    const std::string file = folder / "lib.so";
    const auto faultOfGroup = [&](gid_t group) {
        EXPECT_EQ(::chown(file.c_str(), 0, group), 0);
        EXPECT_EQ(::chmod(file.c_str(), 0664), 0);
        return LibraryFile(file).fault();
    };
    EXPECT_EQ(faultOfGroup(0), "");
    EXPECT_EQ(faultOfGroup(1), "others may write to it (chmod go-w)");
}

TEST_F(LibraryFileTest, belongsToRootOrToTheUser) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root gives files away";
    faultOf("");
    ASSERT_EQ(::chown((folder / "lib.so").c_str(), 1, 1), 0);
    EXPECT_EQ(LibraryFile(folder / "lib.so").fault(), "belongs to user 1, not to root or to you");
}

TEST_F(LibraryFileTest, staysTheOneThatWasChecked) {
    faultOf("checked");
    const LibraryFile library(folder / "lib.so");
    std::filesystem::rename(folder / "lib.so", folder / "old.so");
    faultOf("put in its place");
    std::string text;
    std::getline(std::ifstream(library.loadName()), text);
    EXPECT_EQ(text, "checked");
}

}  // namespace
}  // namespace QosAgent
