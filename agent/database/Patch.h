#pragma once

#include <optional>
#include <span>

#include "agent/database/Path.h"
#include "agent/database/Scalars.h"
#include "agent/json/Json.h"

namespace QosAgent {

/// What is to become of a thing: a value at the end of a path from there, which means the same as
/// the value in a nest of objects with one member each. Refers to the path's steps and to the JSON
/// tree; both have been checked.
class Patch {
public:
    enum class Mode {
        merge,    ///< into what is there
        replace,  ///< what is at the end of the path
        set,      ///< values as a whole; entities as `merge`
    };
    Patch(std::span<const Step> path, const JsonValue& value, Mode mode)
        : path_(path), value_(value), mode_(mode) {}

    bool isNull() const { return path_.empty() && value_.is(JsonKind::null); }
    /// The thing itself is to be replaced, not some part of it.
    bool replacesAll() const { return path_.empty() && mode_ == Mode::replace; }
    /// The value is to be what the patch says, whatever it was.
    bool setsAll() const { return path_.empty() && mode_ != Mode::merge; }
    /// The same for a thing that is new anyway.
    Patch asMerge() const { return {path_, value_, Mode::merge}; }
    const JsonValue& value() const { return value_; }

    /// What is to become of one attribute; nothing if it is not mentioned.
    std::optional<Patch> of(const Vex::AttributeRecord& attribute) const {
        if (!path_.empty()) {
            if (path_.front().attribute != &attribute) return {};
            return Patch(path_.subspan(1), value_, mode_);
        }
        const auto member = value_.find(attribute.name);
        if (!member || attribute.isHidden) return {};
        return Patch({}, member->value, mode_);
    }
    /// What is to become of the members of a collection, by key, in the order given.
    template <class Visit>
    void eachMember(const Vex::Type& keyType, Interner& interner, Visit visit) const {
        if (!path_.empty()) {
            visit(path_.front().key, Patch(path_.subspan(1), value_, mode_));
            return;
        }
        for (const JsonMember& member : value_.members())
            visit(*keyFrom(keyType, member.key, interner), Patch({}, member.value, mode_));
    }

private:
    std::span<const Step> path_;
    JsonValue value_;
    Mode mode_;
};

}  // namespace QosAgent
