#pragma once

#include <cstdint>

#include "platform/Orin/Export.h"
#include "platform/Orin/WalkList.h"

namespace Orin {

class Publisher;
struct Subscriber;

/// Identifies an attribute of an entity within its type.
using AttributeId = std::uint16_t;

/// The function that a publisher calls for a change. For a collection attribute, `key` points to
/// the key of the changed member; for any other attribute, to the old value. It is valid during the
/// call only. A dispatch must not throw: an exception that leaves it ends the process.
using Dispatch = void (*)(Publisher& publisher, Subscriber& record, AttributeId attributeId,
                          const void* key) noexcept;

/// A subscriber record. It is in at most one publisher's list at a time.
struct Subscriber : Link {
    Dispatch dispatch = nullptr;
    void* owner = nullptr;
};

/// Notifies subscribers of changes, synchronously and in the order of their subscription.
///
/// During a notification a subscriber may add and remove records, including its own, and the
/// publisher may publish again. Each record is called at most once for a change. A record that is
/// removed or added during the notification is not called. The owner must keep the publisher alive
/// until `publishChangeRecursive` returns.
class PLATFORM_API Publisher {
public:
    Publisher() = default;
    Publisher(const Publisher&) = delete;
    Publisher& operator=(const Publisher&) = delete;
    /// Removes the remaining records; they may be added to another publisher.
    ~Publisher();

    bool hasSubscribers() const noexcept { return !subscribers_.empty(); }
    /// Adds the record. No-op if the record is in a publisher's list.
    void subscriberAdd(Subscriber& record) noexcept {
        if (!record.isLinked()) subscribers_.append(record);
    }
    /// Removes the record. No-op if the record is in no list.
    void subscriberDel(Subscriber& record) noexcept {
        if (record.isLinked()) subscribers_.remove(record);
    }
    void publishChangeRecursive(AttributeId attributeId, const void* key) {
        if (subscribers_.hasOne()) [[likely]]
            call(subscribers_.front(), attributeId, key);  // the only call for this change
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
