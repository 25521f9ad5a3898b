#include "agent/store/InputRecords.h"

#include <span>
#include <utility>
#include <variant>

#include "agent/database/Path.h"
#include "agent/database/Printer.h"
#include "agent/database/Scalars.h"

namespace QosAgent {
namespace {

using Vex::AttributeRecord;
using Vex::NodeRef;
using Vex::TypedNode;
using Vex::Value;

constexpr const char* kNull = "null";

bool holdsEntities(const AttributeRecord& attribute) {
    return attribute.type->shape == Vex::Shape::entity;
}

/// Whether an entity's own record has the attribute.
bool isPlain(const AttributeRecord& attribute) {
    return attribute.collection == nullptr && !holdsEntities(attribute) && !attribute.isHidden &&
           attribute.write != nullptr;
}

std::string textOf(const Vex::Type& type, const Value& value) {
    std::string text;
    JsonWriter writer(text);
    writeValue(writer, type, value);
    return text;
}

/// Writes the records of what is there.
class RecordWriter {
public:
    RecordWriter(std::string place, std::vector<RecordEdit>& edits)
        : place_(std::move(place)), edits_(edits) {}

    void eraseBelow() { add(RecordEdit::Kind::eraseBelow, {}); }
    void put(std::string value) { add(RecordEdit::Kind::put, std::move(value)); }
    void putAll(const TypedNode& entity) {
        put(entityRecord(entity));
        for (const AttributeRecord& attribute : entity.typeData().attributes)
            if (!attribute.isHidden &&
                (attribute.collection != nullptr || holdsEntities(attribute)))
                below(attribute.name, [&] { putAttribute(entity, attribute); });
    }
    /// Of a collection, or of a single entity.
    void putAttribute(const TypedNode& entity, const AttributeRecord& attribute) {
        if (attribute.collection == nullptr) return putSingle(attribute.read(&entity));
        attribute.collection->walk(&entity, [&](const Value& key, const Value& member) {
            const std::size_t size = place_.size();
            enterKey(attribute, key);
            putMember(attribute, member);
            place_.resize(size);
        });
    }
    void putMember(const AttributeRecord& attribute, const Value& member) {
        if (!holdsEntities(attribute)) return put(textOf(*attribute.type, member));
        if (const auto& entity = member.as<NodeRef>())
            putAll(*entity);
        else
            put(kNull);
    }
    void enter(std::string_view name) { place_.append("/").append(name); }
    void enterKey(const AttributeRecord& attribute, const Value& key) {
        appendKeyStep(place_, keyText(*attribute.collection->key, key));
    }

private:
    template <class Task>
    void below(std::string_view name, Task task) {
        const std::size_t size = place_.size();
        enter(name);
        task();
        place_.resize(size);
    }
    void putSingle(const Value& entity) {
        if (!isLeftOut(entity)) putAll(*entity.as<NodeRef>());
    }
    void add(RecordEdit::Kind kind, std::string value) {
        edits_.push_back({kind, {RecordArea::input, place_}, std::move(value)});
    }

    std::string place_;
    std::vector<RecordEdit>& edits_;
};

/// Walks down a path as far as there is anything, and writes the records there.
class Refresh {
public:
    Refresh(const Path& path, std::vector<RecordEdit>& edits)
        : writer_(std::string(path.subtree->mount->path), edits),
          entity_(path.subtree->root),
          steps_(path.steps) {}

    void run() {
        while (!steps_.empty())
            if (!(steps_.front().attribute->collection == nullptr ? enterSingle() : enterMember()))
                return;
        writer_.eraseBelow();
        writer_.putAll(*entity_);
    }

private:
    /// Each returns false when all is written.
    bool enterSingle() {
        const AttributeRecord& attribute = *steps_.front().attribute;
        if (!holdsEntities(attribute)) {
            writer_.put(entityRecord(*entity_));
            return false;
        }
        writer_.enter(attribute.name);
        steps_ = steps_.subspan(1);
        return enterEntity(attribute, attribute.read(entity_.get()));
    }
    bool enterMember() {
        const AttributeRecord& attribute = *steps_.front().attribute;
        writer_.enter(attribute.name);
        if (steps_.size() == 1) {
            writer_.eraseBelow();
            writer_.putAttribute(*entity_, attribute);
            return false;
        }
        writer_.enterKey(attribute, steps_[1].key);
        const Value member = attribute.collection->get(entity_.get(), steps_[1].key);
        steps_ = steps_.subspan(2);
        return enterEntity(attribute, member);
    }
    bool enterEntity(const AttributeRecord& attribute, const Value& value) {
        if (holdsEntities(attribute) && !isLeftOut(value)) {
            entity_ = value.as<NodeRef>();
            return true;
        }
        if (value.isAbsent() || holdsEntities(attribute)) writer_.eraseBelow();
        // A null entry is a member all the same.
        if (!value.isAbsent() && (!holdsEntities(attribute) || attribute.collection != nullptr))
            writer_.putMember(attribute, value);
        return false;
    }

    RecordWriter writer_;
    NodeRef entity_;
    std::span<const Step> steps_;
};

}  // namespace

std::string entityRecord(const TypedNode& entity) {
    std::string text;
    JsonWriter writer(text);
    writer.beginObject();
    for (const AttributeRecord& attribute : entity.typeData().attributes) {
        if (!isPlain(attribute)) continue;
        const Value value = attribute.read(&entity);
        if (isLeftOut(value)) continue;
        writer.key(attribute.name);
        writeValue(writer, *attribute.type, value);
    }
    writer.endObject();
    return text;
}

void InputRecords::refresh(std::string_view path, std::vector<RecordEdit>& edits) const {
    const auto parsed = parsePath(database_, path);
    if (const auto* place = std::get_if<Path>(&parsed)) Refresh(*place, edits).run();
}

}  // namespace QosAgent
