#include <gtest/gtest.h>

#include <ostream>

#include "platform/OvSlab/Tracker.h"
#include "platform/QosOc/AclNameAndType.h"
#include "platform/QosOc/ClassifierMetaData.h"
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

TEST(TermActionInfoTest, isEqualWhereAllFieldsAre) {
    const TermActionInfo info{"10", "voice", "gold"};
    const TermActionInfo same{"10", "voice", "gold"};
    EXPECT_TRUE(TermActionInfo::isEq(&info, &same));
    for (const TermActionInfo& other :
         {TermActionInfo{"20", "voice", "gold"}, TermActionInfo{"10", "video", "gold"},
          TermActionInfo{"10", "voice", ""}})
        EXPECT_FALSE(TermActionInfo::isEq(&info, &other));
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
