#pragma once

#include <cstdint>

#include "platform/Orin/Export.h"
#include "platform/Orin/WalkList.h"

namespace Orin {

class Publisher;
struct Subscriber;

/// Names an attribute of an entity within its type.
using AttributeId = std::uint16_t;

/// What a subscriber is called with: `key` points to the key of the member that changed in a
/// collection attribute, to the old value in any other. It is valid during the call only.
/// The type is the contract: an exception that leaves a dispatch ends the process.
using Dispatch = void (*)(Publisher& publisher, Subscriber& record, AttributeId attributeId,
                          const void* key) noexcept;

/// A subscriber record. It is in at most one publisher's list at a time.
struct Subscriber : Link {
    Dispatch dispatch = nullptr;
    void* owner = nullptr;
};

/// Tells subscribers of changes, synchronously and in the order of their subscription.
///
/// During a notification subscribers may come and go, the one that is being called included, and
/// the publisher may publish again. Each record is called at most once for a change; one that was
/// removed meanwhile is not called, nor is one added meanwhile. Who owns the publisher keeps it
/// alive until `publishChangeRecursive` returns.
class PLATFORM_API Publisher {
public:
    Publisher() = default;
    Publisher(const Publisher&) = delete;
    Publisher& operator=(const Publisher&) = delete;
    /// Records still there are released and may be added elsewhere.
    ~Publisher();

    bool hasSubscribers() const noexcept { return !subscribers_.empty(); }
    /// A record that is there already stays where it is.
    void subscriberAdd(Subscriber& record) noexcept {
        if (!record.isLinked()) subscribers_.append(record);
    }
    /// Nothing happens when the record is in no list.
    void subscriberDel(Subscriber& record) noexcept {
        if (record.isLinked()) subscribers_.remove(record);
    }
    void publishChangeRecursive(AttributeId attributeId, const void* key) {
        if (subscribers_.hasOne()) [[likely]]
            call(subscribers_.front(), attributeId, key);  // whatever it does, nobody else is told
        else
            callEach(attributeId, key);
    }

private:
    void call(Link& link, AttributeId attributeId, const void* key) {
        auto& record = static_cast<Subscriber&>(link);
        record.dispatch(*this, record, attributeId, key);
    }
    void callEach(AttributeId attributeId, const void* key);

    WalkList subscribers_;
};

}  // namespace Orin
