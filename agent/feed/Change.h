#pragma once

#include <string>
#include <string_view>

#include "agent/feed/ChangeLine.h"
#include "platform/Vex/TypeRecord.h"
#include "platform/Vex/Value.h"

namespace QosAgent {

/// One published change of the state tree. Borrows what it names: valid during the notification.
class Change {
public:
    /// An entity or value was removed from `path`, with all below it.
    explicit Change(const std::string& path) : path_(path) {}
    /// A value was published under `path`.
    Change(const std::string& path, const Vex::Type& type, const Vex::Value& value)
        : path_(path), type_(&type), value_(&value) {}

    bool isDelete() const { return value_ == nullptr; }
    /// The whole path, with the one at which the state tree is mounted.
    const std::string& path() const { return path_; }
    /// Precondition: no delete.
    const Vex::Value& value() const { return *value_; }

    /// The value as compact JSON. Precondition: no delete.
    std::string valueJson() const;
    /// The change as a line of a change stream, without a line end. Composed once, however many
    /// listeners ask.
    std::string_view line() const {
        const std::string& text = shared()->text;
        return std::string_view(text).substr(0, text.size() - 1);
    }
    /// The same to keep.
    const ChangeLinePtr& shared() const;

private:
    const std::string& path_;
    const Vex::Type* type_ = nullptr;
    const Vex::Value* value_ = nullptr;
    mutable ChangeLinePtr shared_;
};

/// Is notified of each published change, within the change. Throws nothing.
class ChangeListener {
public:
    virtual ~ChangeListener() = default;
    virtual void changed(const Change& change) = 0;
};

}  // namespace QosAgent
