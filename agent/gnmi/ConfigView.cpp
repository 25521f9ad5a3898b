#include "agent/gnmi/ConfigView.h"

#include "agent/json/JsonWriter.h"

namespace QosAgent::Gnmi {

namespace {

using Kind = ConfigurationView::Kind;

/// Whether the configuration has a node of the kind that the model asks for. What is malformed in a
/// part that the agent does not carry is not served.
bool fits(const ConfigurationView& view, const SchemaNode& node) {
    switch (node.kind()) {
        case NodeKind::list:
            return view.kind() == Kind::list;
        case NodeKind::container:
            return view.kind() == Kind::container;
        case NodeKind::leaf:
            return view.kind() == Kind::leaf;
        case NodeKind::leafList:
            return view.kind() == Kind::leafList;
    }
    return false;
}

}  // namespace

ConfigView ConfigView::child(const SchemaNode& child) const {
    if (!view_ || view_->kind() != Kind::container) return {};
    auto member = view_->member(child.name());
    return member && fits(*member, child) ? ConfigView(std::move(member)) : ConfigView();
}

ConfigView ConfigView::entry(std::string_view key) const {
    return view_ ? ConfigView(view_->entry(key)) : ConfigView();
}

ConfigView::Entries ConfigView::entries() const {
    std::vector<std::string> keys;
    if (view_)
        view_->eachEntry(
            [&](std::string_view key, const ConfigurationView&) { keys.emplace_back(key); });
    return {*this, std::move(keys)};
}

std::string ConfigView::json() const {
    std::string text;
    JsonWriter writer(text);
    view_->write(writer);
    return text;
}

}  // namespace QosAgent::Gnmi
