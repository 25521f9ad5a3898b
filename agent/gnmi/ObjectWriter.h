#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "agent/gnmi/Schema.h"

namespace QosAgent::Gnmi {

/// Writes the leaves of a walk as one JSON object: that of the node at which the walk began.
/// Containers and list entries without a leaf are left out.
class ObjectWriter {
public:
    /// With `qualifies`, the members of the outermost object carry the module's name (RFC 7951).
    explicit ObjectWriter(bool qualifies) : qualifies_(qualifies) { open_.emplace_back(); }

    void enter(const SchemaNode& node) { open_.push_back({&node, {}, true, false}); }
    void leave();
    void leaf(const SchemaNode& node, std::string_view json);
    /// The object. Nothing may be written afterwards.
    std::string take();
    bool isEmpty() const { return json_.empty(); }

private:
    struct Open {
        const SchemaNode* node = nullptr;  ///< null for the outermost object
        const SchemaNode* list = nullptr;  ///< the inner list that is being written
        bool isEmpty = true;
        bool isWritten = false;  ///< its beginning is
    };

    void writeBeginnings();
    void beginMember(Open& object, const SchemaNode& member);
    void endList(Open& object);

    bool qualifies_;
    std::string json_;
    std::vector<Open> open_;
};

}  // namespace QosAgent::Gnmi
