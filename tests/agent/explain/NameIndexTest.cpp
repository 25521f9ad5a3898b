#include "agent/explain/NameIndex.h"
#include "tests/agent/explain/ExplainTest.h"

namespace QosAgent {
namespace {

class NameIndexTest : public ExplainTest {
protected:
    /// `T:` and what was made from each term, then the policy maps by family.
    std::string made(std::string_view classifier) const {
        const MadeFromClassifier* made = index.find(classifier);
        if (made == nullptr) return "nothing";
        std::string text;
        for (const auto& [id, term] : made->terms) {
            text.append(id).append(":");
            text.append(term.hasClassMap ? " class-map" : "");
            text.append(term.hasIpv4List ? " ipv4" : "").append(term.hasIpv6List ? " ipv6" : "");
            text.append(listed(term.policyMaps)).append("; ");
        }
        return text + "v4:" + listed(made->ipv4PolicyMaps) + "; v6:" + listed(made->ipv6PolicyMaps);
    }

    NameIndex index{db.database};

private:
    static std::string listed(const Names& names) {
        std::string list;
        for (const Orin::String& name : names)
            list.append(" ").append(name);
        return list;
    }
};

TEST_F(NameIndexTest, readsWhatIsThere) {
    EXPECT_EQ(made("edge"), "voice: class-map ipv4 openconfig:edge:; v4: openconfig:edge:; v6:");
    EXPECT_EQ(made("voice"), "nothing");
}

TEST_F(NameIndexTest, followsWhatIsCreatedAndRemoved) {
    remove(kCmaps + kObj);
    remove(kLists + kObj);
    EXPECT_EQ(made("edge"), "voice: openconfig:edge:; v4: openconfig:edge:; v6:");
    remove(kPmaps + "openconfig:edge:/classes/" + kObj);
    EXPECT_EQ(made("edge"), "v4: openconfig:edge:; v6:");
    remove(kPmaps + "openconfig:edge:");
    EXPECT_EQ(made("edge"), "nothing");
    update("acl/config/cli/aclTypeConfig/ipv6/aclConfig/" + kObj, "{}");
    EXPECT_EQ(made("edge"), "voice: ipv6; v4:; v6:");
}

TEST_F(NameIndexTest, forgetsAllOfATypeThatIsRemoved) {
    remove("qos/status/pmapTypeStatus/mapQos");
    remove("qos/status/cmapTypeStatus/mapQos");
    EXPECT_EQ(made("edge"), "voice: ipv4; v4:; v6:");
    remove("acl/config/cli/aclTypeConfig/ipv4");
    EXPECT_EQ(made("edge"), "nothing");
}

TEST_F(NameIndexTest, followsWhatTakesThePlaceOfAnother) {
    ASSERT_EQ(db.replace(kPmaps + "openconfig:edge:",
                         R"({"classes":{"openconfig:other:t":{},"openconfig:edge:u":{}}})"),
              "");
    EXPECT_EQ(made("edge"),
              "u: openconfig:edge:; voice: class-map ipv4; v4: openconfig:edge:; v6:");
    EXPECT_EQ(made("other"), "t: openconfig:edge:; v4:; v6:");
}

TEST_F(NameIndexTest, tellsThePlacesInTheNameOfAPolicyMapApart) {
    update(kPmaps + "openconfig:edge:edge", "{}");
    update(kPmaps + "openconfig::edge", "{}");
    EXPECT_EQ(
        made("edge"),
        "voice: class-map ipv4 openconfig:edge:; "
        "v4: openconfig:edge: openconfig:edge:edge; v6: openconfig::edge openconfig:edge:edge");
}

TEST_F(NameIndexTest, publishesNothing) {
    ChangeRecorder recorder(db.database);
    const NameIndex another(db.database);
    EXPECT_EQ(recorder.take(), Changes{});
}

}  // namespace
}  // namespace QosAgent
