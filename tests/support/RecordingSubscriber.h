#pragma once

#include <ostream>
#include <vector>

#include "platform/Orin/Ptr.h"
#include "platform/Orin/Publisher.h"
#include "platform/Vex/TypedNode.h"
#include "platform/Vex/Value.h"

namespace TestSupport {

/// One published change: the attribute's id and the key that it pointed to. The key is absent where
/// the attribute is no collection.
struct Change {
    Orin::AttributeId id;
    Vex::Value key;
    friend bool operator==(const Change&, const Change&) = default;
};
void PrintTo(const Change& change, std::ostream* out);
using Changes = std::vector<Change>;

/// Subscribes to an entity for its own lifetime and keeps what is published, in order:
///
///     RecordingSubscriber heard(*port);
///     port->shipIs("Anna");
///     EXPECT_EQ(heard.take(), (Changes{{Port::kShip.id, Orin::String("Anna")}}));
///
/// It keeps the entity alive.
class RecordingSubscriber {
public:
    explicit RecordingSubscriber(const Vex::TypedNode& entity);
    ~RecordingSubscriber();
    RecordingSubscriber(const RecordingSubscriber&) = delete;
    RecordingSubscriber& operator=(const RecordingSubscriber&) = delete;

    const Changes& changes() const noexcept { return changes_; }
    /// The changes since the last call.
    Changes take();

private:
    static void dispatch(Orin::Publisher& publisher, Orin::Subscriber& record,
                         Orin::AttributeId attributeId, const void* key) noexcept;

    Orin::Ptr<const Vex::TypedNode> entity_;
    Orin::Subscriber record_;
    Changes changes_;
};

}  // namespace TestSupport
