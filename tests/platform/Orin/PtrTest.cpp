#include <gtest/gtest.h>

#include <type_traits>
#include <utility>
#include <vector>

#include "platform/Orin/Node.h"
#include "platform/Orin/Ptr.h"

namespace Orin {
namespace {

/// Notes its end in a log of its own, and says whether it was told of its last user.
class Buoy : public Node {
public:
    explicit Buoy(std::vector<std::string>& log) : log_(log) {}
    ~Buoy() override { log_.push_back("destroyed"); }
    void lastUserGone() override {
        log_.push_back("last user gone");
        Node::lastUserGone();
    }

private:
    std::vector<std::string>& log_;
};

class PtrTest : public ::testing::Test {
protected:
    using Log = std::vector<std::string>;
    const Log kEnded{"last user gone", "destroyed"};

    Ptr<Buoy> made() { return Ptr<Buoy>::adopt(new Buoy(log)); }

    Log log;
};

TEST_F(PtrTest, isNullByDefault) {
    const Ptr<Buoy> none;
    EXPECT_FALSE(none);
    EXPECT_EQ(none.get(), nullptr);
    EXPECT_EQ(none, Ptr<Buoy>(nullptr));
}

// `Ptr<Buoy>(new Buoy(log))` would leave a second owner that nobody knows of.
static_assert(!std::is_constructible_v<Ptr<Buoy>, Buoy*>);
static_assert(!std::is_constructible_v<Ptr<const Buoy>, const Buoy*>);

TEST_F(PtrTest, sharesANodeThatSomebodyOwns) {
    const Ptr<Buoy> buoy = made();
    {
        const Ptr<Buoy> again = Ptr<Buoy>::sharing(buoy.get());
        const auto constant = Ptr<const Buoy>::sharing(buoy.get());
        EXPECT_EQ(again, buoy);
        EXPECT_EQ(constant, buoy);
        EXPECT_EQ(buoy->userCount(), 3u);
    }
    EXPECT_EQ(buoy->userCount(), 1u);
    EXPECT_FALSE(Ptr<Buoy>::sharing(nullptr));
}

TEST_F(PtrTest, adoptsTheOwnershipThatANodeIsBornWith) {
    const Ptr<Buoy> buoy = made();
    EXPECT_EQ(buoy->userCount(), 1u);
}

TEST_F(PtrTest, sharesOwnershipOfAPlainPointer) {
    const Ptr<Buoy> buoy = made();
    const Ptr<Buoy> shared = Ptr<Buoy>::sharing(buoy.get());
    EXPECT_EQ(buoy->userCount(), 2u);
}

TEST_F(PtrTest, sharesOwnershipWhenCopied) {
    const Ptr<Buoy> buoy = made();
    {
        const Ptr<Buoy> copy = buoy;  // NOLINT(performance-unnecessary-copy-initialization)
        EXPECT_EQ(buoy->userCount(), 2u);
        EXPECT_EQ(copy, buoy);
    }
    EXPECT_EQ(buoy->userCount(), 1u);
}

TEST_F(PtrTest, givesOwnershipAwayWhenMoved) {
    Ptr<Buoy> buoy = made();
    const Ptr<Buoy> taken = std::move(buoy);
    EXPECT_FALSE(buoy);  // NOLINT(bugprone-use-after-move): null is what is promised
    EXPECT_EQ(taken->userCount(), 1u);
}

TEST_F(PtrTest, tellsTheNodeOnceThatItsLastUserIsGone) {
    Ptr<Buoy> buoy = made();
    Ptr<Buoy> copy = buoy;
    buoy = nullptr;
    EXPECT_EQ(log, Log{});
    copy = nullptr;
    EXPECT_EQ(log, kEnded);
}

TEST_F(PtrTest, survivesItsAssignmentToItself) {
    Ptr<Buoy> buoy = made();
    Ptr<Buoy>& itself = buoy;
    buoy = itself;
    EXPECT_EQ(buoy->userCount(), 1u);
    EXPECT_EQ(log, Log{});
}

TEST_F(PtrTest, survivesItsMoveToItself) {
    Ptr<Buoy> buoy = made();
    Ptr<Buoy>& itself = buoy;
    buoy = std::move(itself);
    ASSERT_TRUE(buoy);
    EXPECT_EQ(buoy->userCount(), 1u);
}

TEST_F(PtrTest, releasesWhatItHeldWhenAssigned) {
    Log otherLog;
    Ptr<Buoy> buoy = made();
    buoy = Ptr<Buoy>::adopt(new Buoy(otherLog));
    EXPECT_EQ(log, kEnded);
    EXPECT_EQ(otherLog, Log{});
}

TEST_F(PtrTest, convertsToABaseAndToConst) {
    const Ptr<Buoy> buoy = made();
    const Ptr<const Node> base = buoy;
    EXPECT_EQ(base.get(), buoy.get());
    EXPECT_EQ(buoy->userCount(), 2u);
}

TEST_F(PtrTest, givesOwnershipAwayWhenMovedToABase) {
    Ptr<Buoy> buoy = made();
    const Ptr<const Node> base = std::move(buoy);
    EXPECT_FALSE(buoy);  // NOLINT(bugprone-use-after-move): null is what is promised
    EXPECT_EQ(base->userCount(), 1u);
}

TEST_F(PtrTest, convertsNeitherToADerivedClassNorFromConst) {
    EXPECT_FALSE((std::is_convertible_v<Ptr<Node>, Ptr<Buoy>>));
    EXPECT_FALSE((std::is_convertible_v<Ptr<const Buoy>, Ptr<Buoy>>));
    EXPECT_FALSE((std::is_convertible_v<Buoy*, Ptr<Buoy>>));
}

TEST_F(PtrTest, comparesByIdentity) {
    Log otherLog;
    const Ptr<Buoy> buoy = made();
    const Ptr<Buoy> twin = Ptr<Buoy>::adopt(new Buoy(otherLog));
    EXPECT_EQ(buoy, Ptr<Buoy>::sharing(buoy.get()));
    EXPECT_NE(buoy, twin);
    EXPECT_NE(buoy, nullptr);
}

TEST_F(PtrTest, detachesWithoutReleasing) {
    Ptr<Buoy> buoy = made();
    Buoy* const detached = buoy.detach();
    EXPECT_FALSE(buoy);
    EXPECT_EQ(detached->userCount(), 1u);
    detached->release();
    EXPECT_EQ(log, kEnded);
}

TEST_F(PtrTest, isOnePointerWide) {
    EXPECT_EQ(sizeof(Ptr<Buoy>), sizeof(void*));
}

}  // namespace
}  // namespace Orin
