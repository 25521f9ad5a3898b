#pragma once

#include <algorithm>
#include <map>
#include <vector>

#include "tests/support/Reentrancy.h"

namespace TestSupport {

/// Who is told of a change when subscribers come, go and publish meanwhile: those whose
/// subscription is older than the change and still lasts, in order of subscription.
///
/// `kOutlivesDrop`: whoever publishes lives until all were told, however it is dropped meanwhile.
template <bool kOutlivesDrop>
class PublisherModel {
public:
    PublisherModel(int members, Script& script) : script_(script) {
        for (int member = 0; member < members; ++member)
            enter(member);
    }
    void tell() {
        if (!isDropped_) publish();
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
            case Verb::zombie:
                return zombieIs(target, true);
            case Verb::noZombie:
                return zombieIs(target, false);
            case Verb::enter:
                return enter(newcomer_++);
            case Verb::clear:
                return members_.clear();
            case Verb::again:
                return publish();
            case Verb::dropWhole:
                return drop();
            case Verb::dropOwner:
                hasOwner_ = false;
                return members_.clear();
            case Verb::allOff:
                return allAre(false);
            case Verb::allOn:
                return allAre(true);
            default:
                return;
        }
    }

private:
    struct Member {
        int number;
        /// Counts up with each new subscription; 0: not subscribed.
        int subscription;
        bool isZombie;
    };

    Member* find(int number) {
        const auto at = std::find_if(members_.begin(), members_.end(),
                                     [number](const Member& m) { return m.number == number; });
        return at == members_.end() ? nullptr : &*at;
    }
    void publish() {
        if (!isThere_) return;
        std::map<int, int> told;  // by subscription
        for (const Member& member : members_)
            if (member.subscription != 0) told.emplace(member.subscription, member.number);
        for (const auto& [subscription, number] : told) {
            const Member* member = find(number);
            if (member != nullptr && member->subscription == subscription && !member->isZombie)
                script_.told(*this, number);
        }
    }
    void enter(int number) {
        if (hasOwner_) members_.push_back({number, isThere_ ? ++subscriptions_ : 0, false});
    }
    void remove(int number) {
        std::erase_if(members_, [number](const Member& m) { return m.number == number; });
    }
    void onIs(int number, bool isOn) {
        Member* member = find(number);
        if (member == nullptr || (member->subscription != 0) == isOn) return;
        member->subscription = isOn && isThere_ ? ++subscriptions_ : 0;
    }
    void zombieIs(int number, bool isZombie) {
        if (Member* member = find(number)) member->isZombie = isZombie;
    }
    void allAre(bool on) {
        if (!hasOwner_ || areAllOn_ == on) return;
        areAllOn_ = on;
        for (const Member& member : std::vector<Member>(members_))
            onIs(member.number, on);
    }
    void drop() {
        isDropped_ = true;
        if (kOutlivesDrop) return;
        isThere_ = false;
        for (Member& member : members_)
            member.subscription = 0;
    }

    Script& script_;
    std::vector<Member> members_;  ///< in order of entry
    int subscriptions_ = 0;
    int newcomer_ = kNewcomers;
    bool isThere_ = true;
    bool isDropped_ = false;
    bool hasOwner_ = true;
    bool areAllOn_ = true;
};

}  // namespace TestSupport
