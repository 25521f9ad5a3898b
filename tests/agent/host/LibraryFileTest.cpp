#include <gtest/gtest.h>
#include <link.h>
#include <sys/stat.h>

#include <cstring>
#include <fstream>

#include "agent/host/LibraryFile.h"
#include "tests/agent/support/TemporaryFolder.h"

namespace QosAgent {
namespace {

class LibraryFileTest : public ::testing::Test {
protected:
    std::string faultOf(const std::string& bytes) const {
        std::ofstream(folder / "lib.so", std::ios::binary) << bytes;
        return libraryFileFault(folder / "lib.so");
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
    EXPECT_EQ(libraryFileFault("/proc/self/exe"), "");
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
    EXPECT_EQ(libraryFileFault(folder.path()), "");
    EXPECT_EQ(libraryFileFault(folder / "none.so"), "");
}

TEST_F(LibraryFileTest, isNoPipe) {
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_EQ(libraryFileFault(folder / "pipe"), "not a regular file");
}

}  // namespace
}  // namespace QosAgent
