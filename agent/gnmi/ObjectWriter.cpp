#include "agent/gnmi/ObjectWriter.h"

namespace QosAgent::Gnmi {

void ObjectWriter::endList(Open& object) {
    if (object.list != nullptr) json_ += ']';
    object.list = nullptr;
}

/// Writes what stands before the value of a member: its name, or its place in the list that it
/// belongs to.
void ObjectWriter::beginMember(Open& object, const SchemaNode& member) {
    if (object.list == &member) {
        json_ += ',';
        return;
    }
    endList(object);
    if (!object.isEmpty) json_ += ',';
    object.isEmpty = false;
    json_ += '"';
    if (qualifies_ && object.node == nullptr) json_.append(kModelName).append(":");
    json_.append(member.name()).append("\":");
    if (!member.isList()) return;
    json_ += '[';
    object.list = &member;
}

void ObjectWriter::writeBeginnings() {
    for (std::size_t at = 0; at < open_.size(); ++at) {
        if (open_[at].isWritten) continue;
        if (at > 0) beginMember(open_[at - 1], *open_[at].node);
        json_ += '{';
        open_[at].isWritten = true;
    }
}

void ObjectWriter::leaf(const SchemaNode& node, std::string_view json) {
    writeBeginnings();
    beginMember(open_.back(), node);
    json_ += json;
}

void ObjectWriter::leave() {
    if (open_.back().isWritten) {
        endList(open_.back());
        json_ += '}';
    }
    open_.pop_back();
}

std::string ObjectWriter::take() {
    writeBeginnings();
    leave();
    return std::move(json_);
}

}  // namespace QosAgent::Gnmi
