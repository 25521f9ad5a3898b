#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

#include "platform/QosOc/Naming.h"
#include "tests/support/Allocations.h"

namespace QosOc {

static void PrintTo(const ClassifierKey& key, std::ostream* out) {
    *out << "{classifier '" << key.classifierName << "', term '" << key.termId << "'}";
}

static void PrintTo(const PmapClassifiers& pmap, std::ostream* out) {
    *out << "{ipv4 '" << pmap.ipv4ClassifierName << "', ipv6 '" << pmap.ipv6ClassifierName << "'}";
}

namespace {

using Orin::String;
using namespace std::string_literals;

const ClassifierKey kNoTerm{};
const PmapClassifiers kNoClassifiers{};

/// Names that follow the pattern of neither object.
const std::vector<String> kForeignNames{
    "",
    "voice",
    "class-default",
    "openconfig",
    "openconfig:",
    "openconfig:voice",
    "openconfig::",
    "openconfig:::",
    "openconfig:voice:10:",
    "openconfig::voice:10",
    "openconfig:voice::10",
    "openconfig:voice:10:20",
    "OpenConfig:voice:10",
    " openconfig:voice:10",
    "openconfig-voice:10",
    "xopenconfig:voice:10",
};

/// Parts in which a `%` does not begin one of the two escapes.
const std::vector<std::string> kMalformedParts{
    "%",   "%2",  "%3", "voice%", "voice%2", "%%",   "%%25",    "%3a",
    "%2A", "%20", "%5", "%A3",    "%253%",   "% 3A", "voice%3", "%3B",
};

TEST(NamingTest, readsTheTermThatAnObjectWasMadeFrom) {
    EXPECT_EQ(classifierKeyFromConfigObjName("openconfig:voice:10"),
              (ClassifierKey{"voice", "10"}));
}

TEST(NamingTest, readsEscapesInBothPartsOfATermsName) {
    EXPECT_EQ(classifierKeyFromConfigObjName("openconfig:%25a%3Ab:%3A%3A%25"),
              (ClassifierKey{"%a:b", "::%"}));
}

TEST(NamingTest, readsAnEscapeOnceOnly) {
    EXPECT_EQ(classifierKeyFromConfigObjName("openconfig:%2525:%253A"),
              (ClassifierKey{"%25", "%3A"}));
}

TEST(NamingTest, keepsEveryOtherCharacterOfAPart) {
    const std::string nul("\0", 1);
    EXPECT_EQ(classifierKeyFromConfigObjName(String("openconfig:a/b\\c d" + nul + ":\xC3\xA9~1")),
              (ClassifierKey{String("a/b\\c d" + nul), "\xC3\xA9~1"}));
}

TEST(NamingTest, takesAPartThatLooksLikeThePrefix) {
    EXPECT_EQ(classifierKeyFromConfigObjName("openconfig:openconfig:openconfig"),
              (ClassifierKey{"openconfig", "openconfig"}));
}

TEST(NamingTest, readsNoTermFromForeignNames) {
    for (const String& name : kForeignNames)
        EXPECT_EQ(classifierKeyFromConfigObjName(name), kNoTerm) << name;
}

TEST(NamingTest, readsNoTermWhereAPartIsEmpty) {
    EXPECT_EQ(classifierKeyFromConfigObjName("openconfig::10"), kNoTerm);
    EXPECT_EQ(classifierKeyFromConfigObjName("openconfig:voice:"), kNoTerm);
}

TEST(NamingTest, readsNoTermWhereAPartIsMalformed) {
    for (const std::string& part : kMalformedParts) {
        EXPECT_EQ(classifierKeyFromConfigObjName(String("openconfig:" + part + ":10")), kNoTerm)
            << part;
        EXPECT_EQ(classifierKeyFromConfigObjName(String("openconfig:voice:" + part)), kNoTerm)
            << part;
    }
}

TEST(NamingTest, takesAKeyForATermOnlyWithBothParts) {
    EXPECT_TRUE((ClassifierKey{"voice", "10"}.isTerm()));
    EXPECT_FALSE((ClassifierKey{"voice", ""}.isTerm()));
    EXPECT_FALSE((ClassifierKey{"", "10"}.isTerm()));
    EXPECT_FALSE(kNoTerm.isTerm());
}

TEST(NamingTest, decodesATextOnce) {
    const String name = "openconfig:voice:10";
    const String copy = name;
    EXPECT_EQ(&classifierKeyFromConfigObjName(name), &classifierKeyFromConfigObjName(copy));
    EXPECT_EQ(&classifiersFromPmapName(name), &classifiersFromPmapName(copy));
}

TEST(NamingTest, readsEqualTextsAlike) {
    const String first = "openconfig:voice:10";
    const String second = "openconfig:voice:10";
    EXPECT_NE(&classifierKeyFromConfigObjName(first), &classifierKeyFromConfigObjName(second));
    EXPECT_EQ(classifierKeyFromConfigObjName(first), classifierKeyFromConfigObjName(second));
}

TEST(NamingTest, readsATextAsTermAndAsPolicyMapInEitherOrder) {
    const String first = "openconfig:a:b";
    EXPECT_EQ(classifiersFromPmapName(first), (PmapClassifiers{"a", "b"}));
    EXPECT_EQ(classifierKeyFromConfigObjName(first), (ClassifierKey{"a", "b"}));
    const String second = "openconfig:c:d";
    EXPECT_EQ(classifierKeyFromConfigObjName(second), (ClassifierKey{"c", "d"}));
    EXPECT_EQ(classifiersFromPmapName(second), (PmapClassifiers{"c", "d"}));
}

TEST(NamingTest, takesAnOrdinaryClassMapForTheClassifierOfItsName) {
    for (const char* name : {"voice", "openconfig", "openconfi:g", "class-default ",
                             "Class-Default", "class-defaults", "%", ":", "my:openconfig:a:b"})
        EXPECT_EQ(classifierNameFromClassName(name), name);
}

TEST(NamingTest, takesNoClassifierFromNamesThatStandForNone) {
    for (const char* name : {"", "class-default", "openconfig:", "openconfig:voice:10",
                             "openconfig:voice", "openconfig:::", "openconfig:%:10"})
        EXPECT_EQ(classifierNameFromClassName(name), "") << name;
}

TEST(NamingTest, readsTheTwoClassifiersOfAPolicyMap) {
    EXPECT_EQ(classifiersFromPmapName("openconfig:four:six"), (PmapClassifiers{"four", "six"}));
}

TEST(NamingTest, readsAPolicyMapOfOneClassifier) {
    EXPECT_EQ(classifiersFromPmapName("openconfig:four:"), (PmapClassifiers{"four", ""}));
    EXPECT_EQ(classifiersFromPmapName("openconfig::six"), (PmapClassifiers{"", "six"}));
}

TEST(NamingTest, readsEscapesInBothPartsOfAPolicyMapsName) {
    EXPECT_EQ(classifiersFromPmapName("openconfig:%3A:%25"), (PmapClassifiers{":", "%"}));
}

TEST(NamingTest, readsNoClassifiersFromForeignPolicyMaps) {
    for (const String& name : kForeignNames)
        EXPECT_EQ(classifiersFromPmapName(name), kNoClassifiers) << name;
}

TEST(NamingTest, readsNoClassifiersWhereAPartIsMalformed) {
    for (const std::string& part : kMalformedParts) {
        EXPECT_EQ(classifiersFromPmapName(String("openconfig:" + part + ":six")), kNoClassifiers)
            << part;
        EXPECT_EQ(classifiersFromPmapName(String("openconfig:four:" + part)), kNoClassifiers)
            << part;
        EXPECT_EQ(classifiersFromPmapName(String("openconfig:" + part + ":")), kNoClassifiers)
            << part;
    }
}

TEST(NamingTest, takesTheFamilyFromTheMatchOption) {
    for (std::uint32_t option = 0; option < 9; ++option)
        EXPECT_EQ(classifierTypeFromMatchOption(static_cast<Qos::ClassMapMatchOption>(option)),
                  option == 1 ? Classifier::Type::IPV6 : Classifier::Type::IPV4)
            << option;
}

TEST(NamingTest, takesTheFamilyFromTheAccessListsType) {
    EXPECT_EQ(classifierTypeFromAclType(Acl::AclType::ipv4), Classifier::Type::IPV4);
    EXPECT_EQ(classifierTypeFromAclType(Acl::AclType::ipv6), Classifier::Type::IPV6);
    EXPECT_EQ(classifierTypeFromAclType(Acl::AclType::mac), Classifier::Type::IPV4);
    EXPECT_EQ(classifierTypeFromAclType(static_cast<Acl::AclType>(255)), Classifier::Type::IPV4);
}

class TargetGroupTest : public ::testing::Test {
protected:
    const Orin::Ptr<Qos::ForwardingGroupNameToTcMap> map =
        Qos::ForwardingGroupNameToTcMap::create();
};

TEST_F(TargetGroupTest, isTheGroupOfTheTrafficClass) {
    map->tcIs("gold", 5);
    map->tcIs("silver", 0);
    EXPECT_EQ(targetGroupFromTc(5, map), "gold");
    EXPECT_EQ(targetGroupFromTc(0, map), "silver");
}

TEST_F(TargetGroupTest, isEmptyWhereNoGroupHasTheTrafficClass) {
    EXPECT_EQ(targetGroupFromTc(5, map), "");
    map->tcIs("gold", 4);
    map->tcIs("silver", 6);
    EXPECT_EQ(targetGroupFromTc(5, map), "");
}

TEST_F(TargetGroupTest, isEmptyWithoutAMap) {
    EXPECT_EQ(targetGroupFromTc(5, Orin::Ptr<const Qos::ForwardingGroupNameToTcMap>()), "");
}

TEST_F(TargetGroupTest, isTheLeastNameInByteOrderOfSeveral) {
    for (const char* group : {"silver", "\xC3\xA9", "gold", "golden", "Silver"})
        map->tcIs(group, 5);
    EXPECT_EQ(targetGroupFromTc(5, map), "Silver");
    map->tcDel("Silver");
    EXPECT_EQ(targetGroupFromTc(5, map), "gold");
}

TEST_F(TargetGroupTest, followsAGroupThatMovesToAnotherTrafficClass) {
    map->tcIs("gold", 5);
    map->tcIs("gold", 4294967295);
    EXPECT_EQ(targetGroupFromTc(5, map), "");
    EXPECT_EQ(targetGroupFromTc(4294967295, map), "gold");
}

TEST_F(TargetGroupTest, isEmptyOnceAllGroupsAreGone) {
    Qos::TcByForwardingGroup groups;
    groups.enter("gold", 5);
    groups.clear();
    EXPECT_EQ(groups.size(), 0u);
    EXPECT_EQ(groups.forwardingGroup(5), "");
}

TEST_F(TargetGroupTest, isEmptyWhenAGroupCouldNotBeEntered) {
    Qos::TcByForwardingGroup groups;
    EXPECT_GT(TestSupport::failEachAllocation([&] { groups.enter("gold", 5); },
                                              [&] {
                                                  EXPECT_EQ(groups.size(), 0u);
                                                  EXPECT_EQ(groups.forwardingGroup(5), "");
                                              }),
              1u);
    EXPECT_EQ(groups.forwardingGroup(5), "gold");
}

/// Parts that try the separator, the escapes, and what is neither.
const std::vector<std::string> kParts{
    "voice", "0",   ":",     "%",        "%25", "%3A", "%3a",    "::",
    "a:b%c", "%:%", "%253A", "\xc3\xa9", "a b", "\0"s, "\0:\0"s, "openconfig:x:y",
};

TEST(ConfigObjNameTest, joinsClassifierAndTerm) {
    EXPECT_EQ(configObjName("voice", "10"), "openconfig:voice:10");
}

TEST(ConfigObjNameTest, escapesThePercentSignAndTheColonAndNothingElse) {
    EXPECT_EQ(configObjName("a:b", "%3A c/~\xc3\xa9"), "openconfig:a%3Ab:%253A c/~\xc3\xa9");
}

TEST(ConfigObjNameTest, isReadBackAsTheSameTerm) {
    for (const std::string& classifier : kParts)
        for (const std::string& term : kParts)
            EXPECT_EQ(classifierKeyFromConfigObjName(String(configObjName(classifier, term))),
                      (ClassifierKey{String(classifier), String(term)}));
}

TEST(PmapNameTest, joinsTheClassifiersOfBothFamilies) {
    EXPECT_EQ(pmapName("v4", "v:6"), "openconfig:v4:v%3A6");
}

TEST(PmapNameTest, leavesThePartOfAMissingFamilyEmpty) {
    EXPECT_EQ(pmapName("v4", ""), "openconfig:v4:");
    EXPECT_EQ(pmapName("", "v6"), "openconfig::v6");
}

TEST(PmapNameTest, isReadBackAsTheSameClassifiers) {
    std::vector<std::string> parts = kParts;
    parts.emplace_back();
    for (const std::string& v4 : parts)
        for (const std::string& v6 : parts)
            EXPECT_EQ(classifiersFromPmapName(String(pmapName(v4, v6))),
                      (PmapClassifiers{String(v4), String(v6)}));
}

TEST(NamingTest, makesANameWithOneAllocation) {
    const std::string classifier(100, 'c');
    const std::string term(200, 't');
    const std::size_t before = TestSupport::allocations();
    const std::string name = configObjName(classifier, term);
    EXPECT_EQ(TestSupport::allocations() - before, 1u);
    EXPECT_EQ(name.capacity(), name.size()) << "no room is left over";
    EXPECT_EQ(name, "openconfig:" + classifier + ':' + term);
}

}  // namespace
}  // namespace QosOc
