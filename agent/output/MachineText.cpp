#include "agent/output/MachineText.h"

#include "agent/json/Visible.h"

namespace QosAgent {

void MachineText::beginMembers(std::string_view label) {
    begin(label).pop_back();  // the space after the label
    ++depth_;
}

void MachineText::named(std::string_view label, std::string_view type, Name name) {
    begin(label).append(type);
    if (!name) return;
    text_.append(" ").append(visibleName(*name));
}

std::string& MachineText::begin(std::string_view label) {
    if (!text_.empty()) text_ += '\n';
    text_.append(2 * depth_, ' ');
    if (!label.empty()) text_.append(label).append(": ");
    return text_;
}

}  // namespace QosAgent
