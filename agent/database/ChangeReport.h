#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "agent/database/InputChanges.h"
#include "agent/database/Path.h"
#include "platform/Vex/TypeRecord.h"

namespace QosAgent {

/// The place at which an editor works, and the reports of what it does there. Costs one branch a
/// step while nobody listens.
class ChangeReport {
public:
    explicit ChangeReport(const InputChanges& changes) : changes_(changes) {}

    bool isWanted() const { return changes_.hasListeners(); }
    /// The report begins at the root of a subtree, or after that many steps of a path.
    void begin(const Subtree& subtree) {
        if (isWanted()) place_ = subtree.mount->path;
    }
    void begin(const Path& path, std::size_t steps);

    /// The place is a step further down while this lives.
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
    /// The entity here is none any more, but its place is kept.
    void emptied(const Vex::TypeRecord& type);
    /// A value of that type took the place of another; absent: of none, or none took its place.
    /// The parts that can be there or not are reported one by one.
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
