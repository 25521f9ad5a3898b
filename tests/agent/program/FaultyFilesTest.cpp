#include <gtest/gtest.h>

#include "tests/agent/program/FaultsTest.h"

namespace QosAgent {
namespace {

/// Plug-ins and toggle files that cannot be used.
class FaultyFilesTest : public FaultsTest {};

TEST_F(FaultyFilesTest, refuseAPluginThatOthersMayWrite) {
    const std::string plugin = path("p.so");
    fs::copy_file(builtPlugin(), plugin);
    EXPECT_EQ(run({"--plugin", plugin}), (Ended{0, "{}\n", ""}));
    fs::permissions(plugin, fs::perms::others_write, fs::perm_options::add);
    EXPECT_EQ(run({"--plugin", plugin}),
              (Ended{2, "", plugin + ": cannot be loaded: others may write to it (chmod go-w)\n"}));
}

TEST_F(FaultyFilesTest, refuseAPluginThatIsCutOff) {
    const std::string cut = path("cut.so");
    fs::copy_file(builtPlugin(), cut);
    const auto size = fs::file_size(cut);
    // What is loaded comes first; debug information, the larger part, is not missed.
    for (const auto rest : {size / 8, std::uintmax_t{4096}, std::uintmax_t{100}}) {
        fs::resize_file(cut, rest);
        EXPECT_EQ(run({"--plugin", cut}),
                  (Ended{2, "", cut + ": cannot be loaded: file truncated\n"}))
            << rest << " bytes";
    }
    fs::resize_file(cut, 0);
    EXPECT_EQ(run({"--plugin", cut}), (Ended{2, "", cut + ": cannot be loaded: file too short\n"}));
}

TEST_F(FaultyFilesTest, refusePluginsThatAreNoFiles) {
    EXPECT_EQ(run({"--plugin", pipe("p.so")}),
              (Ended{2, "", path("p.so") + ": cannot be loaded: not a regular file\n"}));
    EXPECT_EQ(run({"--plugin", path("")}),
              (Ended{2, "", path("") + ": cannot be loaded: not a regular file\n"}));
}

TEST_F(FaultyFilesTest, refuseAPluginBelowAFolderThatIsNotThere) {
    EXPECT_EQ(run({"--plugin", "nowhere/p.so"}),
              (Ended{2, "", "nowhere/p.so: cannot be loaded: No such file or directory\n"}));
    EXPECT_EQ(run({"--plugin", "p.so"}).err, "p.so: cannot be loaded: No such file or directory\n");
}

TEST_F(FaultyFilesTest, refuseToggleFilesThatCannotBeRead) {
    link(kToggleFile, "/proc/self/mem");  // its first page cannot be read
    EXPECT_EQ(runWithToggles(), (Ended{2, "", refusedToggles(": Input/output error")}));
    fs::remove(path(kToggleFile));
    link(kToggleFile, kToggleFile);
    EXPECT_EQ(runWithToggles(),
              (Ended{2, "", refusedToggles(": Too many levels of symbolic links")}));
}

TEST_F(FaultyFilesTest, refuseAPipeInPlaceOfTheToggleFile) {
    pipe(kToggleFile);
    EXPECT_EQ(runWithToggles(), (Ended{2, "", refusedToggles(": not a regular file")}));
}

TEST_F(FaultyFilesTest, refuseAToggleFileOfMoreThanAMebibyte) {
    const std::string most = std::string((std::size_t{1} << 20) - 2, ' ') + "{}";
    file(kToggleFile, most);
    EXPECT_EQ(runWithToggles(), (Ended{0, "{}\n", ""}));
    file(kToggleFile, ' ' + most);
    EXPECT_EQ(runWithToggles(),
              (Ended{2, "", refusedToggles(":1:1: text longer than 1048576 bytes")}));
}

}  // namespace
}  // namespace QosAgent
