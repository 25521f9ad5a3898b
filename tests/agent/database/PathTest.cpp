#include <gtest/gtest.h>

#include "agent/database/Path.h"
#include "agent/database/Scalars.h"

namespace QosAgent {
namespace {

class PathTest : public ::testing::Test {
protected:
    std::string faultOf(const std::string& path) {
        const auto parsed = parsePath(database, path);
        const auto* fault = std::get_if<std::string>(&parsed);
        return fault == nullptr ? "" : *fault;
    }
    Path parsed(const std::string& path) { return std::get<Path>(parsePath(database, path)); }

    Database database;
};

TEST_F(PathTest, leadsToARoot) {
    const Path path = parsed("acl/config/cli");
    EXPECT_EQ(path.subtree, database.subtreeAt("acl/config/cli"));
    EXPECT_TRUE(path.steps.empty());
    EXPECT_TRUE(path.form.isRoot);
}

TEST_F(PathTest, decodesKeys) {
    const Path path = parsed("qos/status/cmapTypeStatus/mapQos/cmapStatus/a~1b~0c~01");
    ASSERT_EQ(path.steps.size(), 4u);
    EXPECT_EQ(path.steps[0].attribute->name, "cmapTypeStatus");
    EXPECT_EQ(path.steps[1].key, Vex::Value(std::uint64_t{1}));
    EXPECT_EQ(path.steps[3].key, Vex::Value(Orin::String("a/b~c~1")));
    EXPECT_TRUE(path.form.isMember);
}

TEST_F(PathTest, tellsTheKeysThatMayBeRepeated) {
    const Path path = parsed("acl/config/cli/aclTypeConfig/ipv6/aclConfig/a");
    EXPECT_EQ(path.keys.own, Vex::Value(Orin::String("a")));
    EXPECT_EQ(path.keys.outer, Vex::Value(std::uint64_t{1}));
    EXPECT_TRUE(
        parsed("acl/config/cli/aclTypeConfig/ipv6/aclConfig/a/aclSubConfig").keys.own.isAbsent());
}

TEST_F(PathTest, refusesUnknownRoots) {
    for (const std::string path : {"", "qos", "/qos", "acl/config"})
        EXPECT_EQ(faultOf(path), "no subtree is mounted at the path \"" + path + '"');
}

TEST_F(PathTest, tellsWhichRootWasMeant) {
    for (const std::string path :
         {"qos/stauts", "qos/statusX/cmapTypeStatus/mapQos", "/qos/status/cmapTypeStatus"})
        EXPECT_EQ(faultOf(path), "no subtree is mounted at the path \"" + path +
                                     "\", did you mean \"qos/status\"?");
}

TEST_F(PathTest, refusesUnknownMembers) {
    EXPECT_EQ(faultOf("qos/status/cmapTypStatus/mapQos"),
              R"(unknown member "cmapTypStatus" in the path, did you mean "cmapTypeStatus"?)");
    EXPECT_EQ(faultOf("qos/status/x"), R"(unknown member "x" in the path)");
    EXPECT_EQ(faultOf("qos/status/"), R"(unknown member "" in the path)");
    EXPECT_EQ(faultOf("qos/status/cmapTypeStatus/mapQos/mapType"),
              R"(unknown member "mapType" in the path)");
    EXPECT_EQ(faultOf("qos/status/cmapTypeStatus/mapQos/cmapStatus/v/match/matchDscp/x"),
              R"(nothing is below "matchDscp" in the path)");
}

TEST_F(PathTest, refusesKeysThatStandForNothing) {
    const std::string maps = "qos/status/cmapTypeStatus/";
    EXPECT_EQ(faultOf(maps + "1"), R"("1" must be written by its name "mapQos" (in the path))");
    EXPECT_EQ(faultOf(maps + "03"),
              R"(expected a number without leading zeros, found "03" (in the path))");
    EXPECT_EQ(faultOf(maps + "mapQos/cmapStatus/"), "a name must not be empty (in the path)");
    EXPECT_EQ(faultOf(maps + "mapQos/cmapStatus//match"), "a name must not be empty (in the path)");
}

TEST_F(PathTest, refusesUnknownEscapes) {
    const std::string maps = "qos/status/cmapTypeStatus/mapQos/cmapStatus/";
    EXPECT_EQ(faultOf(maps + "a~2"), R"('~' in the key "a~2" begins neither '~0' nor '~1')");
    EXPECT_EQ(faultOf(maps + "a~"), R"('~' in the key "a~" begins neither '~0' nor '~1')");
}

TEST_F(PathTest, writesKeysAsItReadsThem) {
    std::string path = "qos/status/cmapTypeStatus/mapQos/cmapStatus";
    appendKeyStep(path, "a/b~c~1");
    EXPECT_EQ(path, "qos/status/cmapTypeStatus/mapQos/cmapStatus/a~1b~0c~01");
}

}  // namespace
}  // namespace QosAgent
