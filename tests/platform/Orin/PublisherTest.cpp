#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/Orin/Publisher.h"

namespace Orin {
namespace {

constexpr AttributeId kDraught = 7;
using Calls = std::vector<std::string>;

/// Three subscribers `a`, `b` and `c` of one publisher, and a fourth, `d`, that is not subscribed.
/// Each notes its calls, and may do something at its next one.
class PublisherTest : public ::testing::Test {
protected:
    struct Reader : Subscriber {
        Reader() {
            owner = this;
            dispatch = called;
        }
        static void called(Publisher& publisher, Subscriber& record, AttributeId id,
                           const void* key) noexcept {
            auto& self = *static_cast<Reader*>(record.owner);
            self.calls->push_back(self.name);
            self.publisher = &publisher;
            self.id = id;
            self.key = key;
            if (auto act = std::exchange(self.atNextCall, nullptr)) act();
        }

        std::string name;
        Calls* calls = nullptr;
        std::function<void()> atNextCall;
        const Publisher* publisher = nullptr;
        AttributeId id = 0;
        const void* key = nullptr;
    };

    PublisherTest() {
        for (std::size_t i = 0; i < readers.size(); ++i) {
            readers[i].name = std::string(1, static_cast<char>('a' + i));
            readers[i].calls = &calls;
        }
        for (Reader* reader : {&a, &b, &c})
            publisher->subscriberAdd(*reader);
    }
    Calls published() {
        publisher->publishChangeRecursive(kDraught, nullptr);
        return std::exchange(calls, {});
    }
    void add(Reader& reader) { publisher->subscriberAdd(reader); }
    void del(Reader& reader) { publisher->subscriberDel(reader); }

    Calls calls;
    std::array<Reader, 4> readers;
    Reader& a = readers[0];
    Reader& b = readers[1];
    Reader& c = readers[2];
    Reader& d = readers[3];
    std::unique_ptr<Publisher> publisher = std::make_unique<Publisher>();
};

TEST_F(PublisherTest, tellsSubscribersInTheOrderOfTheirSubscription) {
    EXPECT_EQ(published(), (Calls{"a", "b", "c"}));
}

TEST_F(PublisherTest, handsOutItselfTheIdAndTheKey) {
    const int key = 5;
    publisher->publishChangeRecursive(kDraught, &key);
    EXPECT_EQ(a.publisher, publisher.get());
    EXPECT_EQ(a.id, kDraught);
    EXPECT_EQ(a.key, &key);
}

TEST_F(PublisherTest, tellsNobodyWhenNobodySubscribed) {
    for (Reader* reader : {&a, &b, &c})
        del(*reader);
    EXPECT_FALSE(publisher->hasSubscribers());
    EXPECT_EQ(published(), Calls{});
}

TEST_F(PublisherTest, keepsASubscriberThatIsAddedTwiceWhereItIs) {
    add(a);
    EXPECT_EQ(published(), (Calls{"a", "b", "c"}));
}

TEST_F(PublisherTest, ignoresTheRemovalOfARecordThatIsInNoList) {
    del(d);
    del(a);
    del(a);
    EXPECT_EQ(published(), (Calls{"b", "c"}));
}

TEST_F(PublisherTest, putsASubscriberThatComesBackAtTheEnd) {
    del(a);
    add(a);
    EXPECT_EQ(published(), (Calls{"b", "c", "a"}));
}

TEST_F(PublisherTest, goesOnAfterASubscriberThatRemovedItself) {
    b.atNextCall = [&] { del(b); };
    EXPECT_EQ(published(), (Calls{"a", "b", "c"}));
    EXPECT_EQ(published(), (Calls{"a", "c"}));
}

TEST_F(PublisherTest, goesOnAfterASubscriberThatDestroyedItsOwnRecord) {
    auto own = std::make_unique<Reader>(a);
    static_cast<Link&>(*own) = Link();
    own->owner = own.get();
    add(*own);
    own->atNextCall = [&] {
        del(*own);
        own.reset();
    };
    add(d);
    EXPECT_EQ(published(), (Calls{"a", "b", "c", "a", "d"}));
}

TEST_F(PublisherTest, toleratesTheRemovalOfAnEarlierSubscriber) {
    b.atNextCall = [&] { del(a); };
    EXPECT_EQ(published(), (Calls{"a", "b", "c"}));
    EXPECT_EQ(published(), (Calls{"b", "c"}));
}

TEST_F(PublisherTest, doesNotCallTheNextSubscriberThatWasRemoved) {
    a.atNextCall = [&] { del(b); };
    EXPECT_EQ(published(), (Calls{"a", "c"}));
}

TEST_F(PublisherTest, doesNotCallTheLastSubscriberThatWasRemoved) {
    a.atNextCall = [&] { del(c); };
    EXPECT_EQ(published(), (Calls{"a", "b"}));
}

TEST_F(PublisherTest, stopsWhenAllSubscribersWereRemoved) {
    a.atNextCall = [&] {
        for (Reader* reader : {&a, &b, &c})
            del(*reader);
    };
    EXPECT_EQ(published(), Calls{"a"});
}

TEST_F(PublisherTest, doesNotCallASubscriberThatWasAddedMeanwhile) {
    c.atNextCall = [&] { add(d); };
    EXPECT_EQ(published(), (Calls{"a", "b", "c"}));
    EXPECT_EQ(published(), (Calls{"a", "b", "c", "d"}));
}

TEST_F(PublisherTest, callsASubscriberThatLeftAndCameBackAtMostOnce) {
    a.atNextCall = [&] {
        del(a);
        add(a);
        del(b);
        add(b);
    };
    EXPECT_EQ(published(), (Calls{"a", "c"}));
    EXPECT_EQ(published(), (Calls{"c", "a", "b"}));
}

TEST_F(PublisherTest, finishesANestedNotificationFirst) {
    b.atNextCall = [&] { publisher->publishChangeRecursive(kDraught, nullptr); };
    EXPECT_EQ(published(), (Calls{"a", "b", "a", "b", "c", "c"}));
}

TEST_F(PublisherTest, tellsNestedNotificationsToThoseWhoCameMeanwhile) {
    b.atNextCall = [&] {
        add(d);
        publisher->publishChangeRecursive(kDraught, nullptr);
    };
    EXPECT_EQ(published(), (Calls{"a", "b", "a", "b", "c", "d", "c"}));
}

TEST_F(PublisherTest, doesNotCallWhoWasRemovedDuringANestedNotification) {
    a.atNextCall = [&] {
        b.atNextCall = [&] { del(c); };
        publisher->publishChangeRecursive(kDraught, nullptr);
    };
    EXPECT_EQ(published(), (Calls{"a", "a", "b", "b"}));
}

TEST_F(PublisherTest, releasesItsSubscribersWhenItGoes) {
    publisher.reset();
    EXPECT_FALSE(a.isLinked());
    Publisher other;
    other.subscriberAdd(a);
    EXPECT_TRUE(other.hasSubscribers());
}

TEST_F(PublisherTest, tellsNobodyElseOnceItIsGone) {
    b.atNextCall = [&] { publisher.reset(); };
    Publisher& going = *publisher;
    going.publishChangeRecursive(kDraught, nullptr);
    EXPECT_EQ(calls, (Calls{"a", "b"}));
}

TEST_F(PublisherTest, endsTheProcessWhenAnExceptionLeavesADispatch) {
    a.atNextCall = [] { throw std::runtime_error("from a handler"); };
    EXPECT_DEATH(published(), "from a handler");
}

}  // namespace
}  // namespace Orin
