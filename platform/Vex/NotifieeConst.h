#pragma once

#include <utility>

#include "platform/Orin/Ptr.h"
#include "platform/Orin/Publisher.h"

namespace Vex {

/// A reactor that is a part of a machine and watches its own notifier, which may be replaced. A new
/// reactor is active and not a zombie. `onAttribute` decides what the zombie flag means.
template <class T>
class NotifieeConst {
public:
    using Notifier = Orin::Ptr<const T>;

    explicit NotifieeConst(Notifier notifier) noexcept : notifier_(std::move(notifier)) {
        record_.dispatch = dispatch;
        record_.owner = this;
        subscribedIs(true);
    }
    NotifieeConst(const NotifieeConst&) = delete;
    NotifieeConst& operator=(const NotifieeConst&) = delete;
    virtual ~NotifieeConst() { subscribedIs(false); }

    /// Called for each change of the notifier, while active. An exception that leaves it ends the
    /// process.
    virtual void onAttribute(Orin::AttributeId attributeId, const void* key) = 0;
    virtual void vexDoZombieReactors(bool zombie) { zombie_ = zombie; }

    /// May be null.
    const Notifier& notifier() const noexcept { return notifier_; }
    /// Makes the reactor watch another notifier, or none if null. Calls no handler.
    void notifierIs(const Notifier& notifier) noexcept {
        subscribedIs(false);
        notifier_ = notifier;
        subscribedIs(active_);
    }
    bool notificationActive() const noexcept { return active_; }
    void hasNotificationActiveIs(bool active) noexcept {
        active_ = active;
        subscribedIs(active);
    }
    bool zombie() const noexcept { return zombie_; }

private:
    static void dispatch(Orin::Publisher&, Orin::Subscriber& record, Orin::AttributeId attributeId,
                         const void* key) noexcept {
        static_cast<NotifieeConst*>(record.owner)->onAttribute(attributeId, key);
    }
    void subscribedIs(bool subscribed) noexcept {
        if (!notifier_) return;
        if (subscribed)
            notifier_->publisher()->subscriberAdd(record_);
        else
            notifier_->publisher()->subscriberDel(record_);
    }

    Notifier notifier_;
    Orin::Subscriber record_;
    bool active_ = true;
    bool zombie_ = false;
};

}  // namespace Vex
