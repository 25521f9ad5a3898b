#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

#include "platform/OvSlab/Tracker.h"
#include "platform/QosOc/AclNameAndType.h"
#include "platform/QosOc/ClassifierMetaData.h"
#include "platform/QosOc/Config/Term.h"
#include "platform/QosOc/State/ClassifiersDir.h"
#include "platform/Vex/TypeRecord.h"

namespace QosOc {

static void PrintTo(const TermActionInfo& info, std::ostream* out) {
    *out << "{term '" << info.termId << "' of '" << info.classifierName << "' to '"
         << info.targetGroup << "'}";
}

namespace {

class ClassifierMetaDataTest : public ::testing::Test {
protected:
    ~ClassifierMetaDataTest() override {
        metaData = nullptr;
        EXPECT_EQ(OvSlab::TrackerOf<ClassifierMetaData>::tracker.live(), 0u);
        EXPECT_EQ(OvSlab::TrackerOf<ClassifierInfo>::tracker.live(), 0u);
    }

    ClassifierMetaData::Ptr metaData = ClassifierMetaData::Ptr::adopt(new ClassifierMetaData);
};

TEST_F(ClassifierMetaDataTest, isMadeEmpty) {
    EXPECT_EQ(metaData->classifierInfo("voice"), nullptr);
}

TEST_F(ClassifierMetaDataTest, makesTheInformationOfAClassifierAtFirstUse) {
    ClassifierInfo& info = metaData->classifierInfoIs("voice");
    EXPECT_EQ(metaData->classifierInfo("voice"), &info);
    EXPECT_EQ(metaData->classifierInfo("video"), nullptr);
}

TEST_F(ClassifierMetaDataTest, keepsTheInformationThatIsThere) {
    ClassifierInfo& info = metaData->classifierInfoIs("voice");
    metaData->classifierInfoIs("video");
    EXPECT_EQ(&metaData->classifierInfoIs("voice"), &info);
    EXPECT_EQ(OvSlab::TrackerOf<ClassifierInfo>::tracker.live(), 2u);
}

TEST_F(ClassifierMetaDataTest, recordsTheActionsOfAClassifierByTerm) {
    ClassifierInfo& info = metaData->classifierInfoIs("voice");
    const TermActionInfo ten{"10", "voice", "gold"};
    const TermActionInfo twenty{"20", "voice", ""};
    info.termActionInfoIs(ten);
    info.termActionInfoIs(twenty);
    ASSERT_NE(info.termActionInfo("10"), nullptr);
    EXPECT_EQ(*info.termActionInfo("10"), ten);
    ASSERT_NE(info.termActionInfo("20"), nullptr);
    EXPECT_EQ(*info.termActionInfo("20"), twenty);
    EXPECT_EQ(info.termActionInfo("30"), nullptr);
}

TEST_F(ClassifierMetaDataTest, recordsTheLastActionOfATerm) {
    ClassifierInfo& info = metaData->classifierInfoIs("voice");
    info.termActionInfoIs({"10", "voice", "gold"});
    info.termActionInfoIs({"10", "voice", "silver"});
    ASSERT_NE(info.termActionInfo("10"), nullptr);
    EXPECT_EQ(*info.termActionInfo("10"), (TermActionInfo{"10", "voice", "silver"}));
}

TEST_F(ClassifierMetaDataTest, recordsManyClassifiersAndTerms) {
    const auto name = [](int number) { return Orin::String(std::to_string(number)); };
    std::vector<ClassifierInfo*> infos;
    for (int i = 0; i != 100; ++i) {
        infos.push_back(&metaData->classifierInfoIs(name(i)));
        for (int term = 0; term <= i; ++term)
            infos.back()->termActionInfoIs({name(term), name(i), name(i + term)});
    }
    for (int i = 0; i != 100; ++i) {
        const ClassifierInfo* info = metaData->classifierInfo(name(i));
        EXPECT_EQ(info, infos[static_cast<std::size_t>(i)]);
        for (int term = 0; term <= i; ++term)
            EXPECT_EQ(info->termActionInfo(name(term))->targetGroup, name(i + term));
        EXPECT_EQ(info->termActionInfo(name(i + 1)), nullptr);
    }
}

TEST(TermActionInfoTest, isEqualWhereAllFieldsAre) {
    const TermActionInfo info{"10", "voice", "gold"};
    const TermActionInfo same{"10", "voice", "gold"};
    EXPECT_TRUE(TermActionInfo::isEq(&info, &same));
    for (const TermActionInfo& other :
         {TermActionInfo{"20", "voice", "gold"}, TermActionInfo{"10", "video", "gold"},
          TermActionInfo{"10", "voice", ""}})
        EXPECT_FALSE(TermActionInfo::isEq(&info, &other));
}

TEST(TermTest, isEqualWhereAllFieldsAre) {
    const Config::Term bare("10");
    Config::Term acting("10");
    acting.actions = Config::TermActions{"gold"};
    EXPECT_TRUE(bare.isEq(Config::Term("10")));
    EXPECT_FALSE(bare.isEq(Config::Term("20")));
    EXPECT_FALSE(bare.isEq(acting));
}

TEST(TermConditionsIpConfigTest, isEmptyWithoutAValueAndWithoutASet) {
    EXPECT_TRUE(Config::TermConditionsIpConfig().empty());
    EXPECT_FALSE(Config::TermConditionsIpConfig(0).empty());
    Config::TermConditionsIpConfig set;
    set.dscpSetPush(0);
    EXPECT_FALSE(set.empty());
}

TEST(StateClassifiersDirTest, makesAClassifierOnce) {
    const auto directory = State::ClassifiersDir::create();
    const Orin::Ptr<State::Classifier> made = directory->classifierIs("voice");
    EXPECT_EQ(directory->classifierIs("voice"), made);
    EXPECT_EQ(directory->classifier().size(), 1u);
}

TEST(AclNameAndTypeTest, keepsNameAndType) {
    const auto acl = AclNameAndType::create(Orin::String("voice6"), Acl::AclType::ipv6);
    EXPECT_EQ(acl->aclName(), "voice6");
    EXPECT_EQ(acl->aclType(), Acl::AclType::ipv6);
}

TEST(AclNameAndTypeTest, describesItself) {
    const auto acl = AclNameAndType::create(Orin::String("voice6"), Acl::AclType::ipv6);
    const Vex::TypeRecord& type = acl->typeData();
    EXPECT_EQ(type.fullName, "QosOc::AclNameAndType");
    ASSERT_EQ(type.attributes.size(), 2u);
    EXPECT_EQ(type.attributes[0].read(acl.get()), Vex::Value(Orin::String("voice6")));
    EXPECT_EQ(type.attributes[1].read(acl.get()), Vex::Value(std::uint64_t{1}));
}

}  // namespace
}  // namespace QosOc
