#pragma once

#include <functional>
#include <map>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

#include "agent/database/Scalars.h"
#include "platform/Orin/Publisher.h"
#include "platform/Vex/TypedNode.h"

namespace QosAgent {

/// Reports the keys of collections that lie within each other: those present at construction, then
/// each that is published. Works on type records alone.
///
/// Subscribes to every entity on the way, and keeps it alive. Changes nothing and publishes
/// nothing.
class KeyWatch {
public:
    /// Keys from the outermost collection inwards.
    using Keys = std::vector<Vex::Value>;
    /// Called with the keys of a member and whether the member is present. May be called again for
    /// what it was called for before. Returns true to watch the collection within the member.
    using Report = std::function<bool(const Keys& keys, bool isPresent)>;

    /// `attributes` names the collection of `entity` to watch, then the one of each member, and so
    /// on. The names and `report` must outlive the watch. A report must not throw.
    KeyWatch(Vex::NodeRef entity, std::span<const std::string_view> attributes,
             const Report& report);
    ~KeyWatch();
    KeyWatch(const KeyWatch&) = delete;
    KeyWatch& operator=(const KeyWatch&) = delete;

private:
    struct KeyOrder {
        bool operator()(const Vex::Value& left, const Vex::Value& right) const {
            return keyBelow(left, right);
        }
    };

    /// Subscribes, and reports nothing as yet: what throws later finds a watch to destroy.
    KeyWatch(Vex::NodeRef entity, std::span<const std::string_view> attributes,
             const Report& report, Keys above);
    static void dispatch(Orin::Publisher& publisher, Orin::Subscriber& record,
                         Orin::AttributeId attributeId, const void* key) noexcept;
    void reportAll();
    void handleMember(const Vex::Value& key, const Vex::Value& member);
    /// Reports all members as absent, the innermost first. Called when the entity was removed.
    void reportAllAbsent();

    Vex::NodeRef entity_;
    const Vex::AttributeRecord& attribute_;
    std::span<const std::string_view> within_;
    const Report& report_;
    Keys keys_;  ///< of the entity, and room for one of a member
    std::map<Vex::Value, std::unique_ptr<KeyWatch>, KeyOrder> members_;  ///< that are watched
    Orin::Subscriber record_;
};

}  // namespace QosAgent
