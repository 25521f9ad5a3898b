#include "tests/support/RecordingSubscriber.h"

#include <utility>

#include "platform/Vex/TypeRecord.h"
#include "tests/support/Printers.h"

namespace TestSupport {
namespace {

Vex::Value publishedKey(const Vex::TypeRecord& type, Orin::AttributeId id, const void* key) {
    const Vex::AttributeRecord* attribute = Vex::attributeWithId(type, id);
    if (attribute == nullptr || attribute->collection == nullptr) return {};
    return attribute->collection->keyAt(key);
}

}  // namespace

void PrintTo(const Change& change, std::ostream* out) {
    *out << '{' << change.id << ", " << textOf(change.key) << '}';
}

RecordingSubscriber::RecordingSubscriber(const Vex::TypedNode& entity)
    : entity_(Orin::Ptr<const Vex::TypedNode>::sharing(&entity)) {
    record_.dispatch = dispatch;
    record_.owner = this;
    entity_->publisher()->subscriberAdd(record_);
}

RecordingSubscriber::~RecordingSubscriber() {
    entity_->publisher()->subscriberDel(record_);
}

Changes RecordingSubscriber::take() {
    return std::exchange(changes_, {});
}

void RecordingSubscriber::dispatch(Orin::Publisher&, Orin::Subscriber& record,
                                   Orin::AttributeId attributeId, const void* key) noexcept {
    auto& self = *static_cast<RecordingSubscriber*>(record.owner);
    self.changes_.push_back(
        {attributeId, publishedKey(self.entity_->typeData(), attributeId, key)});
}

}  // namespace TestSupport
