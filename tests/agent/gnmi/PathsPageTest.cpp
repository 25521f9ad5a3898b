#include <gmock/gmock.h>

#include <cstdlib>
#include <fstream>
#include <iterator>

#include "tests/agent/gnmi/Trees.h"

namespace QosAgent::Gnmi {
namespace {

constexpr const char* kPage = "docs/gnmi-paths.md";
constexpr const char* kBegin =
    "| path | type | PROTO | calls | deleted with |\n|---|---|---|---|---|\n";

std::string pathOf(const SchemaNode& node) {
    std::string path;
    for (const SchemaNode* step : node.chain()) {
        path.append("/").append(step->name());
        if (step->isList()) path.append("[").append(step->key()).append("]");
    }
    return path;
}

std::string fieldOf(const SchemaNode& leaf) {
    const auto type = leaf.type();
    std::string field = "`string_val`";
    if (type == "union") field = "`uint_val` or `string_val`";
    if (type == "boolean") field = "`bool_val`";
    if (type == "int32") field = "`int_val`, `uint_val` if not negative";
    if (type.starts_with("uint")) field = "`uint_val`";
    return leaf.kind() == NodeKind::leafList ? "`leaflist_val` of " + field : field;
}

std::string callsOf(const SchemaNode& leaf) {
    switch (leaf.side()) {
        case Side::key:
            return "Get";
        case Side::config:
            return "Get, Set, Subscribe";
        default:
            return "Get, Subscribe";
    }
}

/// The list entry, or container, that takes the leaf with it when it goes.
std::string holderOf(const SchemaNode& leaf) {
    const SchemaNode* node = &leaf;
    while (node->depth() > 1 && !node->isList())
        node = node->parent();
    return node->isList() ? "`" + std::string(node->name()) + "`" : "";
}

void addRows(const SchemaNode& node, std::string& rows) {
    for (const auto& child : node.children()) {
        if (!child->isLeaf()) {
            addRows(*child, rows);
        } else if (child->isServed()) {
            rows += "| `" + pathOf(*child) + "` | " + std::string(child->type()) +
                    (child->kind() == NodeKind::leafList ? " list" : "") + " | " + fieldOf(*child) +
                    " | " + callsOf(*child) + " | " + holderOf(*child) + " |\n";
        }
    }
}

/// Set QOS_UPDATE_DOCS in the environment to have the page written anew.
TEST(PathsPageTest, listsEveryLeafThatIsServed) {
    std::string rows = kBegin;
    addRows(schemaRoot(), rows);
    std::ifstream in(kPage);
    std::string page(std::istreambuf_iterator<char>(in), {});
    const std::size_t begin = page.find(kBegin);
    ASSERT_NE(begin, std::string::npos);
    if (std::getenv("QOS_UPDATE_DOCS") != nullptr) {
        page = page.substr(0, begin) + rows;
        std::ofstream(kPage) << page;
    }
    EXPECT_EQ(page.substr(begin), rows);
}

}  // namespace
}  // namespace QosAgent::Gnmi
