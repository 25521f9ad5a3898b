#include "agent/database/Path.h"

#include <algorithm>
#include <optional>

#include "agent/database/Scalars.h"
#include "agent/json/Excerpt.h"

namespace QosAgent {
namespace {

const Subtree* subtreeLeading(const Database& database, std::string_view path) {
    for (const Subtree& subtree : database.subtrees()) {
        const std::string_view mount = subtree.mount->path;
        if (path.starts_with(mount) && (path.size() == mount.size() || path[mount.size()] == '/'))
            return &subtree;
    }
    return nullptr;
}

/// Walks down the type records, part by part.
class PathReader {
public:
    PathReader(const Subtree& subtree, std::size_t parts, Interner& interner)
        : path_{&subtree, {}, rootForm(subtree.type), {}}, interner_(interner) {
        path_.steps.reserve(parts);
    }

    /// Returns why the part is wrong; empty if it is right.
    std::string enter(std::string_view part) {
        if (path_.form.isKeyed()) return enterKey(part);
        if (path_.form.hasNamedMembers()) return enterName(part);
        return "nothing is below " + excerpt(*keyFromStep(lastPart_)) + " in the path";
    }
    Path take() { return std::move(path_); }

private:
    std::string enterKey(std::string_view part) {
        if (part.find('~') == std::string_view::npos) return enterKey(part, part);
        const auto text = keyFromStep(part);
        if (!text) return "'~' in the key " + excerpt(part) + " begins neither '~0' nor '~1'";
        return enterKey(part, *text);
    }
    std::string enterKey(std::string_view part, std::string_view text) {
        auto key = keyFrom(*path_.form.keyType, text, interner_);
        if (!key) return keyFault(*path_.form.keyType, text) + " (in the path)";
        lastPart_ = part;
        path_.form = memberForm(path_.form);
        path_.keys = path_.keys.under(*key);
        path_.steps.push_back({nullptr, *std::move(key)});
        return {};
    }
    std::string enterName(std::string_view part) {
        const auto* attribute = namedInText(*path_.form.type->record, part);
        if (attribute == nullptr)
            return unknownMember(*path_.form.type->record, part, " in the path");
        lastPart_ = part;
        path_.form = formOf(*attribute);
        // A single entity has no key.
        if (path_.form.isEntity()) path_.keys = {};
        path_.steps.push_back({attribute, {}});
        return {};
    }

    Path path_;
    Interner& interner_;
    std::string_view lastPart_;  ///< the last part, as it is written in the path
};

}  // namespace

std::variant<Path, std::string> parsePath(Database& database, std::string_view text) {
    const Subtree* subtree = subtreeLeading(database, text);
    if (subtree == nullptr) return noSubtree(text);
    std::size_t end = subtree->mount->path.size();
    const auto parts = static_cast<std::size_t>(std::count(text.begin() + end, text.end(), '/'));
    PathReader reader(*subtree, parts, database.interner());
    while (end < text.size()) {
        const std::size_t begin = end + 1;
        end = std::min(text.find('/', begin), text.size());
        if (std::string fault = reader.enter(text.substr(begin, end - begin)); !fault.empty())
            return fault;
    }
    return reader.take();
}

std::optional<std::string> keyFromStep(std::string_view part) {
    std::string text;
    for (std::size_t at = 0; at < part.size(); ++at) {
        if (part[at] != '~') {
            text += part[at];
            continue;
        }
        const char letter = ++at < part.size() ? part[at] : '\0';
        if (letter != '0' && letter != '1') return {};
        text += letter == '0' ? '~' : '/';
    }
    return text;
}

void appendKeyStep(std::string& path, std::string_view key) {
    path += '/';
    for (const char c : key) {
        if (c == '~')
            path += "~0";
        else if (c == '/')
            path += "~1";
        else
            path += c;
    }
}

}  // namespace QosAgent
