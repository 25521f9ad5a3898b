#include <gtest/gtest.h>

#include <string>

#include "platform/Agent/Toggles.h"

namespace Agent {
namespace {

class TogglesTest : public ::testing::Test {
protected:
    ~TogglesTest() override { toggleReaderIs(nullptr); }
};

TEST_F(TogglesTest, readAsTheirFallbackWithoutAReader) {
    EXPECT_TRUE(getToggleState("Path", "File.json", true));
    EXPECT_FALSE(getToggleState("Path", "File.json", false));
}

TEST_F(TogglesTest, areAskedOfTheReader) {
    std::string asked;
    toggleReaderIs([&](std::string_view toggle, std::string_view file, bool fallback) {
        asked =
            std::string(toggle) + " of " + std::string(file) + (fallback ? ", true" : ", false");
        return !fallback;
    });
    EXPECT_FALSE(getToggleState("Path", "File.json", true));
    EXPECT_EQ(asked, "Path of File.json, true");
}

TEST_F(TogglesTest, areReadAnewAtEveryCall) {
    bool state = false;
    toggleReaderIs([&](std::string_view, std::string_view, bool) { return state; });
    EXPECT_FALSE(getToggleState("Path", "File.json", true));
    state = true;
    EXPECT_TRUE(getToggleState("Path", "File.json", true));
}

}  // namespace
}  // namespace Agent
