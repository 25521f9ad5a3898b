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

/// The base of every counted object: machines and entities.
///
/// A node is born with one owner; `Ptr::adopt` takes that ownership over. The flags of a machine
/// live beside the count, among them *notification active* and *zombie*, the mark of a machine that
/// is being torn down and ignores all changes.
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
    /// The number of owners: for tests and for people who look at a running agent.
    std::uint32_t userCount() const noexcept { return refs_.value(); }

    bool notificationActive() const noexcept { return flag(kNotificationActive); }
    bool zombie() const noexcept { return flag(kZombie); }
    /// Calls what handles a change, unless the node ignores it: as a zombie, or since its last
    /// owner let go while it handles another. What a handler does may be told to that owner; the
    /// node stays until the handler is done.
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

    /// Called when the last owner has let go; destroys the node once it handles nothing.
    virtual void lastUserGone();
    /// What subscribers of this node are added to; null for a node that publishes nothing.
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
        kGone = 0x8000,  // the sign, which costs nothing to look at when another flag was cleared
    };
    bool flag(Flag bit) const noexcept { return (flags_ & bit) != 0; }
    bool isAny(unsigned bits) const noexcept { return (flags_ & bits) != 0; }
    void flagIs(Flag bit, bool on) noexcept {
        flags_ = static_cast<std::uint16_t>(on ? flags_ | bit : flags_ & ~bit);
    }

private:
    mutable RefCount refs_;
    std::uint16_t flags_ = 0;
    /// Fills the word, so that no derived class places a member in the tail of this one.
    [[maybe_unused]] std::uint16_t spare_ = 0;
};

}  // namespace Orin
