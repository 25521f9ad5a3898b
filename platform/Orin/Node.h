#pragma once

#include <cstdint>

#include "platform/Orin/Export.h"
#include "platform/Orin/RefCount.h"

namespace Vex {
struct FwkType;
struct TypeRecord;
}  // namespace Vex

namespace Orin {

class Publisher;

/// The base class of all reference-counted objects: machines and entities.
///
/// A new node has one reference, which the caller takes over by `Ptr::adopt`. The flags of a
/// machine are stored beside the count. Among them are *notification active*, and *zombie*: a
/// machine that is being torn down and ignores all changes.
class PLATFORM_API Node {
public:
    Node() = default;
    Node(const Node&) = delete;
    Node& operator=(const Node&) = delete;
    virtual ~Node();

    void retain() const noexcept { refs_.up(); }
    void release() const noexcept {
        if (refs_.down()) const_cast<Node*>(this)->lastUserGone();
    }
    /// Returns the number of references. For tests and debugging.
    std::uint32_t userCount() const noexcept { return refs_.value(); }

    bool notificationActive() const noexcept { return flag(kNotificationActive); }
    bool zombie() const noexcept { return flag(kZombie); }
    /// Calls `handler` for a change. No-op if the node is a zombie, or if its last reference was
    /// released while it handles another change. The handler may cause the last reference to be
    /// released; the node stays alive until the handler returns.
    template <class Handler>
    void handle(Handler handler) {
        if (isAny(kZombie | kGone | kHandling)) [[unlikely]] {
            if (!isAny(kZombie | kGone)) handler();
            return;
        }
        flagIs(kHandling, true);
        handler();
        flagIs(kHandling, false);
        if (flag(kGone)) [[unlikely]]
            lastUserGone();
    }

    /// Called when the last reference is released. Destroys the node once it handles no change.
    virtual void lastUserGone();
    /// Returns the publisher of the node's changes; null if the node publishes nothing.
    virtual Publisher* publisher() const;
    /// Returns the type record of the node's class. Ends the process if the class has none.
    virtual const Vex::TypeRecord& typeData() const;
    /// Returns where that record is registered. Ends the process if it is in no module.
    Vex::FwkType fwkType() const;

protected:
    enum Flag : std::uint16_t {
        kNotificationActive = 1,
        kZombie = 2,
        kStarted = 4,
        kHandling = 8,
        kGone = 0x8000,  // the sign bit: testing it after another flag was cleared costs nothing
    };
    bool flag(Flag bit) const noexcept { return (flags_ & bit) != 0; }
    bool isAny(unsigned bits) const noexcept { return (flags_ & bits) != 0; }
    void flagIs(Flag bit, bool on) noexcept {
        flags_ = static_cast<std::uint16_t>(on ? flags_ | bit : flags_ & ~bit);
    }

private:
    mutable RefCount refs_;
    std::uint16_t flags_ = 0;
    /// Fills the word, so that no derived class places a member in the padding of this class.
    [[maybe_unused]] std::uint16_t spare_ = 0;
};

}  // namespace Orin
