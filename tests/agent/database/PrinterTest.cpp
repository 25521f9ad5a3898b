#include <gtest/gtest.h>

#include "agent/database/Printer.h"
#include "tests/agent/support/TextDatabase.h"

namespace QosAgent {
namespace {

TEST(PrinterTest, printsAllSubtreesOfAnEmptyDatabase) {
    EXPECT_EQ(TextDatabase().all(),
              R"({"qos/status":{},"qos/input/config/cli":{},"acl/config/cli":{},)"
              R"("qos/openconfig/config/classifiers":{},"qos/openconfig/state/classifiers":{}})");
}

TEST(PrinterTest, sortsNamesByBytes) {
    TextDatabase db;
    ASSERT_EQ(db.update("qos/input/config/cli/forwardingGroupNameToTcMap/tc",
                        R"({"b":1,"é":2,"a":3,"B":4,"aa":5})"),
              "");
    EXPECT_EQ(db.at("qos/input/config/cli"),
              R"({"forwardingGroupNameToTcMap":{"tc":{"B":4,"a":3,"aa":5,"b":1,"é":2}}})");
}

TEST(PrinterTest, sortsNumbersByValue) {
    TextDatabase db;
    ASSERT_EQ(db.update("acl/config/cli/aclTypeConfig/mac/aclConfig/a/aclSubConfig",
                        R"({"ruleIdBySequence":{"100":1,"20":2,"3":3}})"),
              "");
    EXPECT_EQ(db.at("acl/config/cli"),
              R"({"aclTypeConfig":{"mac":{"aclConfig":{"a":{"aclName":"a","aclType":"mac",)"
              R"("aclSubConfig":{"ruleIdBySequence":{"3":3,"20":2,"100":1}}}}}}})");
}

TEST(PrinterTest, sortsEnumerationsByNumber) {
    TextDatabase db;
    ASSERT_EQ(db.update("qos/status/cmapTypeStatus",
                        R"({"10":{},"mapPbr":{},"3":{},"mapCopp":{},"mapQos":{}})"),
              "");
    EXPECT_EQ(db.at("qos/status"),
              R"({"cmapTypeStatus":{"mapCopp":{},"mapQos":{},"mapPbr":{},"3":{},"10":{}}})");
}

}  // namespace
}  // namespace QosAgent
