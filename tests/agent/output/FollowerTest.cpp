#include <gtest/gtest.h>

#include <regex>

#include "agent/output/Follower.h"
#include "platform/QosOc/State/ClassifiersDir.h"
#include "tests/agent/support/TextDatabase.h"

namespace QosAgent {
namespace {

const std::string kTree = "qos/openconfig/state/classifiers/classifier/";

std::string updated(const std::string& path, const std::string& value) {
    return R"({"update":")" + kTree + path + R"(","value":)" + value + "}\n";
}
std::string deleted(const std::string& path) {
    return R"({"delete":")" + kTree + path + "\"}\n";
}

class FollowerTest : public ::testing::Test {
protected:
    FollowerTest()
        : tree(Vex::entityCast<QosOc::State::ClassifiersDir>(db.database.stateTree().root)),
          feed(db.database) {}

    TextDatabase db;
    Orin::Ptr<QosOc::State::ClassifiersDir> tree;
    Feed feed;
};

TEST_F(FollowerTest, tellsOfClassifiersByTheirState) {
    const Follower follower(feed, db.out.output());
    tree->classifierIs("a/b")->stateIs({"a/b", QosOc::Classifier::Type::IPV6});
    EXPECT_EQ(db.out.text(), updated("a~1b/state", R"({"name":"a/b","type":"IPV6"})"));
}

TEST_F(FollowerTest, tellsOfTermsWhole) {
    const Follower follower(feed, db.out.output());
    const Orin::Ptr<QosOc::State::Terms> terms = tree->classifierIs("C")->termsIs();
    QosOc::State::Term term("T");
    terms->termIs(term);
    term.actions.emplace().targetGroup = "g";
    terms->termIs(term);
    terms->termIs(term);
    terms->termDel("T");
    EXPECT_EQ(
        db.out.text(),
        updated("C/terms/term/T", R"({"id":"T","stateId":"T"})") +
            updated("C/terms/term/T", R"({"id":"T","stateId":"T","actions":{"targetGroup":"g"}})") +
            deleted("C/terms/term/T"));
}

TEST_F(FollowerTest, tellsOfEntitiesThatGoWithoutTheirMembers) {
    const Orin::Ptr<QosOc::State::Classifier> classifier = tree->classifierIs("C");
    classifier->termsIs()->termIs(QosOc::State::Term("T"));
    const Follower follower(feed, db.out.output());
    classifier->termsDel();
    tree->classifierDel("C");
    EXPECT_EQ(db.out.text(), deleted("C/terms") + deleted("C"));
}

TEST_F(FollowerTest, takesWhatIsThereForNoChange) {
    tree->classifierIs("C")->stateIs({"C", QosOc::Classifier::Type::IPV4});
    const Follower follower(feed, db.out.output());
    EXPECT_EQ(db.out.text(), "");
    tree->classifierIs("C")->stateIs({"C", QosOc::Classifier::Type::IPV6});
    EXPECT_EQ(db.out.text(), updated("C/state", R"({"name":"C","type":"IPV6"})"));
}

TEST_F(FollowerTest, tellsAllOfAnEntityThatComesFull) {
    const Follower follower(feed, db.out.output());
    ASSERT_EQ(db.load(R"({"qos/openconfig/state/classifiers":{"classifier":
        {"C":{"terms":{"term":{"T":{}}}}}}})"),
              "");
    EXPECT_EQ(db.out.text(), updated("C/state", R"({"name":"C","type":"IPV4"})") +
                                 updated("C/terms/term/T", R"({"id":"T","stateId":"T"})"));
}

TEST_F(FollowerTest, followsAnEntityThatCameBack) {
    const Follower follower(feed, db.out.output());
    tree->classifierIs("C");
    tree->classifierDel("C");
    tree->classifierIs("C")->termsIs()->termIs(QosOc::State::Term("T"));
    EXPECT_EQ(db.out.text(),
              deleted("C") + updated("C/terms/term/T", R"({"id":"T","stateId":"T"})"));
}

TEST_F(FollowerTest, endsWithItself) {
    { const Follower follower(feed, db.out.output()); }
    tree->classifierIs("C")->stateIs({"C", QosOc::Classifier::Type::IPV4});
    EXPECT_EQ(db.out.text(), "");
}

TEST_F(FollowerTest, writesChangesForPeople) {
    tree->classifierIs("before")->stateIs({"before", QosOc::Classifier::Type::IPV6});
    const Follower follower(feed, db.out.output(), FollowForm::text, db.database.stateTree());
    tree->classifierIs("C")->stateIs({"C", QosOc::Classifier::Type::IPV4});
    tree->classifierDel("before");
    const std::string time = R"(\d\d:\d\d:\d\d\.\d{3}Z )";
    EXPECT_TRUE(std::regex_match(db.out.text(), std::regex(time + "C: absent -> IPV4\n" + time +
                                                           "before: IPV6 -> absent\n")))
        << db.out.text();
}

}  // namespace
}  // namespace QosAgent
