#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>
#include <utility>
#include <vector>

#include "platform/Orin/Publisher.h"
#include "tests/support/PublisherModel.h"
#include "tests/support/Reentrancy.h"

namespace Orin {
namespace {

using TestSupport::Differences;
using TestSupport::kNewcomers;
using TestSupport::Script;
using TestSupport::Verb;

/// Subscribers, each in memory of its own, of a publisher of type `P`.
template <class P>
class PublisherStage {
public:
    static const std::vector<Verb> kVerbs;
    static constexpr bool kDropsAct = false;

    PublisherStage(int members, Script& script) : script_(script) {
        for (int member = 0; member < members; ++member)
            enter(member);
    }
    ~PublisherStage() { clear(); }
    PublisherStage(const PublisherStage&) = delete;
    PublisherStage& operator=(const PublisherStage&) = delete;

    void tell() {
        if (publisher_) publisher_->publishChangeRecursive(1, nullptr);
    }
    void perform(Verb verb, int target) {
        switch (verb) {
            case Verb::remove:
                return remove(target);
            case Verb::enterAgain:
                remove(target);
                return enter(target);
            case Verb::off:
                return onIs(target, false);
            case Verb::on:
                return onIs(target, true);
            case Verb::offAndOn:
                onIs(target, false);
                return onIs(target, true);
            case Verb::enter:
                return enter(newcomer_++);
            case Verb::clear:
                return clear();
            case Verb::again:
                return tell();
            default:
                publisher_.reset();
        }
    }

private:
    struct Reader : Subscriber {
        Reader(PublisherStage& on, int number) : stage(on), member(number) {
            owner = this;
            dispatch = [](Publisher&, Subscriber& record, AttributeId, const void*) noexcept {
                const auto& self = static_cast<Reader&>(record);
                self.stage.script_.told(self.stage, self.member);
            };
        }
        PublisherStage& stage;
        int member;
    };

    void enter(int member) {
        readers_.emplace(member, std::make_unique<Reader>(*this, member));
        onIs(member, true);
    }
    void remove(int member) {
        onIs(member, false);
        readers_.erase(member);
    }
    void clear() {
        while (!readers_.empty())
            remove(readers_.begin()->first);
    }
    void onIs(int member, bool on) {
        const auto reader = readers_.find(member);
        if (!publisher_ || reader == readers_.end()) return;
        if (on)
            publisher_->subscriberAdd(*reader->second);
        else
            publisher_->subscriberDel(*reader->second);
    }

    Script& script_;
    std::unique_ptr<P> publisher_ = std::make_unique<P>();
    std::map<int, std::unique_ptr<Reader>> readers_;
    int newcomer_ = kNewcomers;
};
template <class P>
const std::vector<Verb> PublisherStage<P>::kVerbs = {
    Verb::remove, Verb::enterAgain, Verb::off,   Verb::on,       Verb::offAndOn,
    Verb::enter,  Verb::clear,      Verb::again, Verb::dropWhole};

/// What publishers do wrong that are not made for this, each in its own way. None is destroyed
/// while it publishes.
class NaivePublisher {
public:
    void subscriberAdd(Subscriber& record) {
        if (record.isLinked()) return;
        record.next = &record;
        records_.push_back(&record);
    }
    void subscriberDel(Subscriber& record) {
        record.next = nullptr;
        std::erase(records_, &record);
    }

protected:
    void call(Subscriber& record) { record.dispatch(publisher_, record, 1, nullptr); }

    std::vector<Subscriber*> records_;

private:
    Publisher publisher_;
};

/// Skips who stands behind one that left, and tells newcomers.
class IndexPublisher : public NaivePublisher {
public:
    void publishChangeRecursive(AttributeId, const void*) {
        for (std::size_t i = 0; i < records_.size(); ++i)
            call(*records_[i]);
    }
};

/// Tells who left and came back.
class CopyPublisher : public NaivePublisher {
public:
    void publishChangeRecursive(AttributeId, const void*) {
        for (Subscriber* record : std::vector<Subscriber*>(records_))
            if (std::count(records_.begin(), records_.end(), record) != 0) call(*record);
    }
};

/// Tells who has gone.
class CarelessPublisher : public NaivePublisher {
public:
    void publishChangeRecursive(AttributeId, const void*) {
        for (Subscriber* record : std::vector<Subscriber*>(records_))
            call(*record);
    }
};

/// The same without that which destroys the publisher, or a subscriber.
template <class P>
class GentleStage : public PublisherStage<P> {
public:
    using PublisherStage<P>::PublisherStage;
    static const std::vector<Verb> kVerbs;
};
template <class P>
const std::vector<Verb> GentleStage<P>::kVerbs = {Verb::off, Verb::on, Verb::offAndOn, Verb::enter,
                                                  Verb::again};

template <class Stage>
Differences found(int members = TestSupport::mostMembers()) {
    return TestSupport::differences<Stage, TestSupport::PublisherModel<false>>(members);
}

TEST(PublisherReentrancyTest, tellsWhomItMustWhateverTwoSubscribersDo) {
    const Differences none = found<PublisherStage<Publisher>>();
    EXPECT_EQ(none.count, 0u) << none.first;
    EXPECT_GT(none.plays, 500u);
}

TEST(PublisherReentrancyTest, isNotWhatAnIndexIntoAnArrayDoes) {
    EXPECT_EQ(found<GentleStage<IndexPublisher>>(2).first,
              "1 members; 0 turns on 0; 0 enters a newcomer; told: 0 100 | 0 100 |; "
              "expected: 0 | 0 100 |");
}

TEST(PublisherReentrancyTest, isNotWhatACopyOfAnArrayDoes) {
    EXPECT_EQ(found<GentleStage<CopyPublisher>>(2).first,
              "2 members; 0 turns off 0; 0 turns off and on 1; told: 0 1 | 1 |; expected: 0 | 1 |");
}

TEST(PublisherReentrancyTest, isNotWhatForgetsToAskWhoIsLeft) {
    EXPECT_GT(found<GentleStage<CarelessPublisher>>(2).count, 0u);
#ifdef __SANITIZE_ADDRESS__
    EXPECT_DEATH(found<PublisherStage<CarelessPublisher>>(2), "heap-use-after-free");
#endif
}

}  // namespace
}  // namespace Orin
