#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "agent/host/ToggleFolder.h"
#include "tests/agent/support/TemporaryFolder.h"

namespace QosAgent {
namespace {

constexpr const char* kFile = "Toggles.json";

class ToggleFolderTest : public ::testing::Test {
protected:
    void write(const std::string& text) { std::ofstream(folder / kFile) << text; }
    std::string refusalOf(const std::string& text) {
        write(text);
        const auto read = ToggleFolder(folder.path()).read(kFile);
        const auto* refused = std::get_if<Diagnostic>(&read);
        return refused == nullptr ? "" : refused->line().substr((folder / kFile).string().size());
    }

    TemporaryFolder folder;
};

TEST_F(ToggleFolderTest, readsTheStateOfAToggleAtEachCall) {
    ToggleFolder toggles(folder.path());
    write(R"({"a":true,"b":false})");
    EXPECT_TRUE(toggles.state("a", kFile, false));
    EXPECT_FALSE(toggles.state("b", kFile, true));
    write(R"({"a":false})");
    EXPECT_FALSE(toggles.state("a", kFile, true));
}

TEST_F(ToggleFolderTest, fallsBackWhereNothingIsSaid) {
    EXPECT_TRUE(ToggleFolder(folder.path()).state("a", kFile, true));
    EXPECT_FALSE(ToggleFolder(folder / "missing").state("a", kFile, false));
    EXPECT_TRUE(ToggleFolder("").state("a", kFile, true));
    write(R"({"b":true})");
    EXPECT_FALSE(ToggleFolder(folder.path()).state("a", kFile, false));
}

TEST_F(ToggleFolderTest, warnsOnceOfEachToggleThatIsOff) {
    ToggleFolder toggles(folder.path());
    write(R"({"a":false,"b":false,"c":true})");
    ::testing::internal::CaptureStderr();
    for (const char* toggle : {"a", "a", "b", "c", "absent"})
        toggles.state(toggle, kFile, false);
    const std::string warning = (folder / kFile).string() + ": warning: the toggle ";
    EXPECT_EQ(::testing::internal::GetCapturedStderr(),
              warning + "\"a\" is off: what it enables does not run\n" + warning +
                  "\"b\" is off: what it enables does not run\n");
}

TEST_F(ToggleFolderTest, refusesMalformedFilesWithTheirPlace) {
    EXPECT_EQ(refusalOf("[]"), ":1:1: expected an object, found an array");
    EXPECT_EQ(refusalOf("{\"a\":true,\n \"b\":1}"), ":2:6: expected true or false, found a number");
    EXPECT_EQ(refusalOf(""), ":1:1: expected a value, found the end of the text");
    EXPECT_EQ(refusalOf(R"({"a":true})"), "");
}

TEST_F(ToggleFolderTest, refusesWhatCannotBeRead) {
    std::filesystem::create_directory(folder / kFile);
    const auto read = ToggleFolder(folder.path()).read(kFile);
    ASSERT_TRUE(std::holds_alternative<Diagnostic>(read));
    EXPECT_EQ(std::get<Diagnostic>(read).line(), (folder / kFile).string() + ": Is a directory");
}

}  // namespace
}  // namespace QosAgent
