#pragma once

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "agent/database/Path.h"
#include "agent/database/Printer.h"
#include "agent/database/Scalars.h"
#include "platform/Orin/Publisher.h"

namespace QosAgent {

/// Records every published change below the roots of a database, in order: `PATH = VALUE`, with
/// what is there at the time of the change, or `PATH gone`.
class ChangeRecorder {
public:
    explicit ChangeRecorder(const Database& database) {
        for (const Subtree& subtree : database.subtrees())
            watch(std::string(subtree.mount->path), subtree.root);
    }
    /// What was recorded since the last call.
    std::vector<std::string> take() { return std::exchange(changes_, {}); }

private:
    struct Watch {
        ChangeRecorder* recorder;
        std::string path;
        Vex::NodeRef entity;
        Orin::Subscriber record;
        ~Watch() { entity->publisher()->subscriberDel(record); }
    };

    void watch(const std::string& path, const Vex::NodeRef& entity) {
        std::unique_ptr<Watch>& watch = watches_[path];
        if (watch && watch->entity == entity) return;
        watch = std::make_unique<Watch>();
        watch->recorder = this;
        watch->path = path;
        watch->entity = entity;
        watch->record.owner = watch.get();
        watch->record.dispatch = [](Orin::Publisher&, Orin::Subscriber& record,
                                    Orin::AttributeId id, const void* key) noexcept {
            const auto& at = *static_cast<Watch*>(record.owner);
            at.recorder->changed(at, *Vex::attributeWithId(at.entity->typeData(), id), key);
        };
        entity->publisher()->subscriberAdd(watch->record);
        for (const Vex::AttributeRecord& attribute : entity->typeData().attributes)
            if (attribute.type->shape == Vex::Shape::entity) watchBelow(path, *entity, attribute);
    }
    void watchBelow(const std::string& path, const Vex::TypedNode& entity,
                    const Vex::AttributeRecord& attribute) {
        const std::string place = path + '/' + std::string(attribute.name);
        if (attribute.collection == nullptr) return watchValue(place, attribute.read(&entity));
        for (const auto& [key, member] : sortedMembers(entity, attribute))
            watchValue(memberPath(place, attribute, key), member);
    }
    void watchValue(const std::string& path, const Vex::Value& value) {
        if (!isLeftOut(value)) watch(path, value.as<Vex::NodeRef>());
    }
    static std::string memberPath(std::string place, const Vex::AttributeRecord& attribute,
                                  const Vex::Value& key) {
        appendKeyStep(place, keyText(*attribute.collection->key, key));
        return place;
    }
    void changed(const Watch& at, const Vex::AttributeRecord& attribute, const void* published) {
        std::string path = at.path + '/' + std::string(attribute.name);
        Vex::Value value;
        if (attribute.collection == nullptr) {
            value = attribute.read(at.entity.get());
        } else {
            const Vex::Value key = attribute.collection->keyAt(published);
            path = memberPath(path, attribute, key);
            value = attribute.collection->get(at.entity.get(), key);
        }
        record(path, attribute, value);
    }
    void record(const std::string& path, const Vex::AttributeRecord& attribute,
                const Vex::Value& value) {
        if (value.isAbsent()) {
            changes_.push_back(path + " gone");
            return;
        }
        std::string text;
        JsonWriter writer(text);
        writeValue(writer, *attribute.type, value);
        changes_.push_back(path + " = " + text);
        if (attribute.type->shape == Vex::Shape::entity) watchValue(path, value);
    }

    std::vector<std::string> changes_;
    std::map<std::string, std::unique_ptr<Watch>> watches_;
};

}  // namespace QosAgent
