#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <list>
#include <memory>
#include <random>
#include <vector>

#include "platform/Orin/WalkList.h"

namespace Orin {
namespace {

using Visited = std::vector<std::size_t>;

class WalkListTest : public ::testing::Test {
protected:
    struct Numbered : Link {
        std::size_t number = 0;
    };

    WalkListTest() {
        for (std::size_t i = 0; i < links.size(); ++i)
            links[i].number = i;
    }
    ~WalkListTest() override {
        while (list && !list->empty())
            list->remove(list->front());
    }
    void appendFirst(std::size_t count) {
        for (std::size_t i = 0; i < count; ++i)
            list->append(links[i]);
    }
    /// Walks the list, calling `act` with the number of each link; returns the numbers.
    Visited walk(const std::function<void(std::size_t)>& act = [](std::size_t) {}) {
        Visited visited;
        WalkList::Walk walk(*list);
        while (Link* link = walk.step()) {
            visited.push_back(static_cast<Numbered*>(link)->number);
            act(visited.back());
        }
        return visited;
    }
    /// The same, acting only at one link.
    Visited walkActingAt(std::size_t number, const std::function<void()>& act) {
        return walk([&](std::size_t at) {
            if (at == number) act();
        });
    }

    std::array<Numbered, 8> links;
    std::unique_ptr<WalkList> list = std::make_unique<WalkList>();
};

TEST_F(WalkListTest, visitsNothingWhenEmpty) {
    EXPECT_EQ(walk(), Visited{});
}

TEST_F(WalkListTest, visitsInOrderOfEntry) {
    appendFirst(3);
    EXPECT_EQ(walk(), (Visited{0, 1, 2}));
}

TEST_F(WalkListTest, knowsWhatIsLinked) {
    appendFirst(1);
    EXPECT_TRUE(links[0].isLinked());
    list->remove(links[0]);
    EXPECT_FALSE(links[0].isLinked());
    EXPECT_TRUE(list->empty());
}

TEST_F(WalkListTest, knowsWhetherItHasOneLink) {
    EXPECT_FALSE(list->hasOne());
    appendFirst(1);
    EXPECT_TRUE(list->hasOne());
    list->append(links[1]);
    EXPECT_FALSE(list->hasOne());
}

TEST_F(WalkListTest, knowsWhatIsBehindALink) {
    appendFirst(2);
    EXPECT_EQ(list->after(links[0]), &links[1]);
    EXPECT_EQ(list->after(links[1]), nullptr);
}

TEST_F(WalkListTest, goesOnWhenTheCurrentLinkLeaves) {
    appendFirst(3);
    EXPECT_EQ(walk([&](std::size_t at) { list->remove(links[at]); }), (Visited{0, 1, 2}));
    EXPECT_TRUE(list->empty());
}

TEST_F(WalkListTest, skipsTheNextLinkThatLeaves) {
    appendFirst(3);
    EXPECT_EQ(walkActingAt(0, [&] { list->remove(links[1]); }), (Visited{0, 2}));
}

TEST_F(WalkListTest, skipsTheLastLinkThatLeaves) {
    appendFirst(4);
    EXPECT_EQ(walkActingAt(1, [&] { list->remove(links[3]); }), (Visited{0, 1, 2}));
}

TEST_F(WalkListTest, endsWhenTheNextLinkThatLeavesWasTheLast) {
    appendFirst(2);
    EXPECT_EQ(walkActingAt(0, [&] { list->remove(links[1]); }), Visited{0});
}

TEST_F(WalkListTest, endsWhenAllLinksLeave) {
    appendFirst(4);
    EXPECT_EQ(walkActingAt(1,
                           [&] {
                               while (!list->empty())
                                   list->remove(list->front());
                           }),
              (Visited{0, 1}));
}

TEST_F(WalkListTest, passesOverLinksThatEnterMeanwhile) {
    appendFirst(2);
    EXPECT_EQ(walk([&](std::size_t at) {
                  if (!links[at + 4].isLinked()) list->append(links[at + 4]);
              }),
              (Visited{0, 1}));
    EXPECT_EQ(walk(), (Visited{0, 1, 4, 5}));
}

TEST_F(WalkListTest, passesOverALinkThatEntersAtTheLastOne) {
    appendFirst(2);
    EXPECT_EQ(walkActingAt(1, [&] { list->append(links[2]); }), (Visited{0, 1}));
}

TEST_F(WalkListTest, visitsTheCurrentLinkOnceWhenItLeavesAndEntersAgain) {
    appendFirst(3);
    EXPECT_EQ(walk([&](std::size_t at) {
                  list->remove(links[at]);
                  list->append(links[at]);
              }),
              (Visited{0, 1, 2}));
}

TEST_F(WalkListTest, passesOverALaterLinkThatLeavesAndEntersAgain) {
    appendFirst(3);
    EXPECT_EQ(walkActingAt(0,
                           [&] {
                               list->remove(links[2]);
                               list->append(links[2]);
                           }),
              (Visited{0, 1}));
}

TEST_F(WalkListTest, passesOverTheOnlyOtherLinkThatLeavesAndEntersAgain) {
    appendFirst(2);
    EXPECT_EQ(walkActingAt(0,
                           [&] {
                               list->remove(links[1]);
                               list->append(links[1]);
                           }),
              Visited{0});
}

TEST_F(WalkListTest, letsWalksNest) {
    appendFirst(3);
    Visited inner;
    EXPECT_EQ(walkActingAt(1, [&] { inner = walk(); }), (Visited{0, 1, 2}));
    EXPECT_EQ(inner, (Visited{0, 1, 2}));
}

TEST_F(WalkListTest, keepsOuterWalksRightWhileAnInnerOneRemoves) {
    appendFirst(4);
    EXPECT_EQ(walkActingAt(0, [&] { walkActingAt(2, [&] { list->remove(links[1]); }); }),
              (Visited{0, 2, 3}));
}

TEST_F(WalkListTest, showsAnInnerWalkWhatEnteredDuringTheOuter) {
    appendFirst(2);
    Visited inner;
    EXPECT_EQ(walkActingAt(0,
                           [&] {
                               list->append(links[5]);
                               inner = walk();
                           }),
              (Visited{0, 1}));
    EXPECT_EQ(inner, (Visited{0, 1, 5}));
}

TEST_F(WalkListTest, findsTheOutermostWalkThatStandsOnALink) {
    appendFirst(2);
    WalkList::Walk outer(*list);
    WalkList::Walk inner(*list);
    outer.step();
    EXPECT_EQ(list->outermostWalkAt(links[0]), &outer);
    inner.step();
    EXPECT_EQ(list->outermostWalkAt(links[0]), &outer);
    EXPECT_EQ(list->outermostWalkAt(links[1]), nullptr);
    outer.step();
    EXPECT_EQ(list->outermostWalkAt(links[0]), &inner);
}

TEST_F(WalkListTest, endsItsWalksWhenItGoes) {
    appendFirst(3);
    EXPECT_EQ(walkActingAt(1, [&] { list.reset(); }), (Visited{0, 1}));
}

/// A list that is walked, nested walks included, while links come and go at random. The model of a
/// walk is the list of those it still has to visit: a link that leaves is struck off, none enters.
class WalkListModel {
public:
    void run() {
        for (int round = 0; round < 500; ++round) {
            for (int i = 0; i < 8; ++i)
                changeOne();
            walk(0);
        }
    }

private:
    using Pending = std::list<const Link*>;

    void walk(int depth) {
        pending_.emplace_back(order_);
        const auto mine = std::prev(pending_.end());
        WalkList::Walk walk(list_);
        while (const Link* link = walk.step()) {
            ASSERT_FALSE(mine->empty());
            ASSERT_EQ(link, mine->front());
            mine->pop_front();
            for (unsigned changes = random_() % 4; changes > 0; --changes)
                changeOne();
            if (depth < 3 && random_() % 8 == 0) this->walk(depth + 1);
        }
        EXPECT_TRUE(mine->empty());
        pending_.erase(mine);
    }
    void changeOne() {
        Link& link = links_[random_() % links_.size()];
        if (!link.isLinked()) {
            list_.append(link);
            order_.push_back(&link);
            return;
        }
        list_.remove(link);
        order_.remove(&link);
        for (Pending& pending : pending_)
            pending.remove(&link);
    }

    std::mt19937 random_{7};
    std::array<Link, 10> links_;
    WalkList list_;
    Pending order_;
    std::list<Pending> pending_;
};

TEST_F(WalkListTest, agreesWithAModelUnderRandomChanges) {
    WalkListModel().run();
}

}  // namespace
}  // namespace Orin
