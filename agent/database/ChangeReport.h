#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "agent/database/InputChanges.h"
#include "agent/database/Path.h"
#include "platform/Vex/TypeRecord.h"

namespace QosAgent {

/// Keeps the path at which an editor works, and reports the editor's changes. Costs one branch for
/// each step while there is no listener.
class ChangeReport {
public:
    explicit ChangeReport(const InputChanges& changes) : changes_(changes) {}

    bool isWanted() const { return changes_.hasListeners(); }
    /// Begins at the root of a subtree, or after the first `steps` steps of a path.
    void begin(const Subtree& subtree) {
        if (isWanted()) place_ = subtree.mount->path;
    }
    void begin(const Path& path, std::size_t steps);

    /// Moves one step down the path, and back at the end of the scope.
    class Below {
    public:
        Below(ChangeReport& report, std::string_view attribute) : Below(report) {
            if (report.isWanted()) report.place_.append("/").append(attribute);
        }
        Below(ChangeReport& report, const Vex::Type& keyType, const Vex::Value& key)
            : Below(report) {
            if (report.isWanted()) report.appendKey(keyType, key);
        }
        Below(const Below&) = delete;
        Below& operator=(const Below&) = delete;
        ~Below() { report_.place_.resize(size_); }

    private:
        explicit Below(ChangeReport& report) : report_(report), size_(report.place_.size()) {}

        ChangeReport& report_;
        std::size_t size_;
    };

    void created() const { tell(InputChanges::Kind::created); }
    void changed() const { tell(InputChanges::Kind::changed); }
    void removed() const { tell(InputChanges::Kind::removed); }
    /// Reports that the entity was replaced by null; the member stays.
    void emptied(const Vex::TypeRecord& type);
    /// Reports that a value of this type replaced another; absence means no value before or now.
    /// Optional parts are reported one by one.
    void valueChanged(const Vex::Type& type, const Vex::Value& before, const Vex::Value& after);

private:
    void appendKey(const Vex::Type& keyType, const Vex::Value& key);
    void partsChanged(const Vex::Type& type, const Vex::Value& before, const Vex::Value& after);
    void tell(InputChanges::Kind kind) const {
        if (isWanted()) changes_.report(kind, place_);
    }

    const InputChanges& changes_;
    std::string place_;
};

}  // namespace QosAgent
