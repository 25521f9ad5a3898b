#include <gtest/gtest.h>

#include "platform/Orin/Node.h"
#include "platform/Orin/Ptr.h"

namespace Orin {
namespace {

/// Opens the flags to the tests.
class Flagged : public Node {
public:
    using Node::flag;
    using Node::flagIs;
    using Node::kNotificationActive;
    using Node::kStarted;
    using Node::kZombie;
};

TEST(NodeTest, publishesNothingByItself) {
    const auto node = Ptr<Flagged>::adopt(new Flagged);
    EXPECT_EQ(node->publisher(), nullptr);
}

TEST(NodeTest, beginsWithoutFlags) {
    const auto node = Ptr<Flagged>::adopt(new Flagged);
    EXPECT_FALSE(node->notificationActive());
    EXPECT_FALSE(node->zombie());
}

TEST(NodeTest, keepsItsFlagsApart) {
    const auto node = Ptr<Flagged>::adopt(new Flagged);
    node->flagIs(Flagged::kZombie, true);
    EXPECT_TRUE(node->zombie());
    EXPECT_FALSE(node->notificationActive());
    node->flagIs(Flagged::kNotificationActive, true);
    node->flagIs(Flagged::kZombie, false);
    EXPECT_FALSE(node->zombie());
    EXPECT_TRUE(node->notificationActive());
    EXPECT_FALSE(node->flag(Flagged::kStarted));
}

/// Holds itself while it is destroyed, as a node does that publishes then.
class SelfHolding : public Node {
public:
    explicit SelfHolding(int& destroyed) : destroyed_(destroyed) {}
    ~SelfHolding() override {
        ++destroyed_;
        if (destroyed_ == 1) const Ptr<Node> held = Ptr<Node>::sharing(this);
    }

private:
    int& destroyed_;
};

TEST(NodeTest, isDestroyedOnceThoughItsDestructorHoldsIt) {
    int destroyed = 0;
    Ptr<SelfHolding>::adopt(new SelfHolding(destroyed));
    EXPECT_EQ(destroyed, 1);
}

TEST(NodeTest, fillsTwoWords) {
    EXPECT_EQ(sizeof(Node), 2 * sizeof(void*));
}

}  // namespace
}  // namespace Orin
