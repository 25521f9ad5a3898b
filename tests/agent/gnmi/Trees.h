#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "agent/gnmi/NoticeWalk.h"
#include "agent/gnmi/Tree.h"
#include "agent/json/JsonReader.h"

namespace QosAgent::Gnmi {

/// The path of a string such as `/qos/queues/queue[name=q1]`, without escapes.
inline RequestPath path(std::string_view text) {
    RequestPath path;
    while (!text.empty()) {
        text.remove_prefix(1);
        PathElement& element = path.elements.emplace_back();
        const std::size_t end = text.find_first_of("/[");
        element.name = text.substr(0, end);
        text.remove_prefix(std::min(end, text.size()));
        while (text.starts_with('[')) {
            const std::size_t equals = text.find('=');
            const std::size_t close = text.find(']');
            element.keys.emplace(text.substr(1, equals - 1),
                                 text.substr(equals + 1, close - equals - 1));
            text.remove_prefix(close + 1);
        }
    }
    return path;
}

/// A query for paths that are in order.
inline Query query(std::initializer_list<std::string_view> paths) {
    Query query;
    for (const auto text : paths)
        query.patterns.push_back(std::get<Pattern>(Pattern::of(path(text))));
    return query;
}

/// A tree that a test builds up.
class TreeBuilder {
public:
    TreeBuilder& at(std::int64_t timestamp) {
        timestamp_ = timestamp;
        return *this;
    }
    TreeBuilder& configuration(const std::string& json) {
        const auto tree = std::make_shared<const Json>(std::get<Json>(parseJson(json)));
        configuration_ = ConfigurationTree::of(tree, tree->root(), 0);
        return *this;
    }
    TreeBuilder& classifier(const std::string& name, const std::string& type = "IPV4") {
        StateValue value;
        value.classifier = name;
        value.type = type;
        state_ = state_.with("classifier/" + name + "/state", share(std::move(value)));
        return *this;
    }
    TreeBuilder& term(const std::string& classifier, StateTerm term) {
        if (term.stateId.empty()) term.stateId = term.id;
        const std::string path = "classifier/" + classifier + "/terms/term/" + term.id;
        StateValue value;
        value.term = std::move(term);
        state_ = state_.with(path, share(std::move(value)));
        return *this;
    }
    TreeBuilder& without(const std::string& path) {
        state_ = state_.without(path);
        return *this;
    }
    TreeBuilder& policyMap(const std::string& name) {
        policyMaps_.insert(name);
        return *this;
    }
    const StateMap& state() const { return state_; }
    const ConfigurationTree& configuration() const { return configuration_; }
    TreePtr build() const {
        return std::make_shared<const Tree>(
            Tree{timestamp_, ConfigView(configuration_.view()), StateSource(state_), policyMaps_});
    }

private:
    static StateValuePtr share(StateValue value) {
        return std::make_shared<const StateValue>(std::move(value));
    }

    std::int64_t timestamp_ = 0;
    ConfigurationTree configuration_;
    StateMap state_;
    PolicyMapNames policyMaps_;
};

/// A term with one DSCP value and a group.
inline StateTerm term(const std::string& id, std::uint8_t dscp, const std::string& group = {}) {
    StateTerm term;
    term.id = id;
    term.hasConditions = true;
    term.ipv4.dscp = dscp;
    if (!group.empty()) term.targetGroup = group;
    return term;
}

/// A notice as lines: `@TIMESTAMP`, `-PATH`, `PATH=JSON`, `PATH=JSON +DUPLICATES`.
inline std::vector<std::string> lines(const Notice& notice) {
    std::vector<std::string> lines{"@" + std::to_string(notice.timestamp)};
    for (const DataPath& path : notice.deletes)
        lines.push_back("-" + toText(path));
    for (const NodeUpdate& update : notice.updates) {
        lines.push_back(toText(update.path) + "=" + update.json);
        if (update.duplicates > 0) lines.back() += " +" + std::to_string(update.duplicates);
    }
    return lines;
}

using Lines = std::vector<std::string>;

inline Lines lines(const std::vector<Notice>& notices) {
    Lines all;
    for (const Notice& notice : notices)
        for (std::string& line : lines(notice))
            all.push_back(std::move(line));
    return all;
}

/// All that a query means in a tree, as `PATH=JSON`.
inline Lines values(const Tree& tree, const Query& query) {
    Lines values;
    TreeCursor cursor(tree, query);
    for (auto event = cursor.next(); event != TreeCursor::Event::end; event = cursor.next())
        if (event == TreeCursor::Event::leaf)
            values.push_back(toText(cursor.path()) + "=" + cursor.json());
    return values;
}

}  // namespace QosAgent::Gnmi
