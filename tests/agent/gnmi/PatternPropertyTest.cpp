#include <gmock/gmock.h>

#include <random>

#include "tests/agent/gnmi/Trees.h"

namespace QosAgent::Gnmi {
namespace {

/// Matches as the words of the rules say, one element after the other, with all the backtracking
/// that takes.
bool means(const std::vector<PathElement>& pattern, std::size_t at, const DataPath& leaf,
           std::size_t depth, std::size_t key) {
    const auto& chain = leaf.node->chain();
    if (at == pattern.size()) return true;
    if (pattern[at].name == "..." && means(pattern, at + 1, leaf, depth, key)) return true;
    if (depth == chain.size()) return false;
    const SchemaNode& node = *chain[depth];
    const std::size_t next = key + (node.isList() ? 1 : 0);
    if (pattern[at].name == "...") return means(pattern, at, leaf, depth + 1, next);
    if (pattern[at].name != "*" && pattern[at].name != node.name()) return false;
    for (const auto& [name, value] : pattern[at].keys)
        if (name != node.key() || (value != "*" && value != leaf.keys[key])) return false;
    return means(pattern, at + 1, leaf, depth + 1, next);
}

class Random {
public:
    explicit Random(unsigned seed) : engine_(seed) {}
    std::size_t below(std::size_t bound) {
        return std::uniform_int_distribution<std::size_t>(0, bound - 1)(engine_);
    }
    template <class Range>
    const auto& oneOf(const Range& range) {
        return range[below(std::size(range))];
    }

    /// A path that often means something: that of a node, with wildcards here and there.
    RequestPath path() {
        const SchemaNode* node = &schemaRoot();
        RequestPath path;
        while (!node->children().empty() && below(6) != 0) {
            node = oneOf(node->children()).get();
            path.elements.push_back({std::string(node->name()), {}});
            PathElement& element = path.elements.back();
            if (node->isList() && below(2) == 0) element.keys.emplace(node->key(), oneOf(keys_));
            if (below(5) == 0) element.name = "*";
            if (below(6) == 0) element = {"...", {}};
            if (below(6) == 0) path.elements.push_back({"...", {}});
        }
        return path;
    }
    DataPath leaf() {
        DataPath leaf{&schemaRoot(), {}};
        while (!leaf.node->isLeaf()) {
            leaf.node = oneOf(leaf.node->children()).get();
            if (leaf.node->isList()) leaf.keys.push_back(oneOf(keys_));
        }
        return leaf;
    }

private:
    std::mt19937 engine_;
    std::vector<std::string> keys_{"a", "b", "*"};
};

TEST(PatternPropertyTest, meansWhatTheRulesSay) {
    Random random(7);
    std::size_t meant = 0;
    for (int round = 0; round < 3000; ++round) {
        const RequestPath path = random.path();
        const auto pattern = Pattern::of(path);
        if (std::holds_alternative<Refusal>(pattern)) continue;
        Query query;
        query.patterns.push_back(std::get<Pattern>(pattern));
        for (int at = 0; at < 10; ++at) {
            const DataPath leaf = random.leaf();
            const bool expected = means(path.elements, 0, leaf, 0, 0);
            // Key leaves are a matter of the query, not of its paths.
            query.wantsKeys = true;
            EXPECT_EQ(isMeant(query, leaf), expected) << toText(path) << ' ' << toText(leaf);
            meant += expected ? 1 : 0;
        }
    }
    EXPECT_GT(meant, 1000u);
}

TEST(PatternPropertyTest, findsInAWalkWhatItMeans) {
    Random random(8);
    TreeBuilder builder;
    for (const auto* classifier : {"a", "b", "*"}) {
        builder.classifier(classifier);
        for (const auto* id : {"a", "b"})
            builder.term(classifier, term(id, 1, "gold"));
    }
    const TreePtr tree = builder.build();
    const Lines all = values(*tree, query({""}));
    for (int round = 0; round < 2000; ++round) {
        const auto pattern = Pattern::of(random.path());
        if (std::holds_alternative<Refusal>(pattern)) continue;
        Query query;
        query.patterns.push_back(std::get<Pattern>(pattern));
        Lines expected;
        Query everything;
        everything.patterns.push_back(std::get<Pattern>(Pattern::of({})));
        TreeCursor cursor(*tree, everything);
        for (auto event = cursor.next(); event != TreeCursor::Event::end; event = cursor.next())
            if (event == TreeCursor::Event::leaf && isMeant(query, cursor.path()))
                expected.push_back(toText(cursor.path()) + "=" + cursor.json());
        Lines found = values(*tree, query);
        // Entries that are named come in the order of their names.
        std::sort(found.begin(), found.end());
        std::sort(expected.begin(), expected.end());
        EXPECT_EQ(found, expected) << toText(std::get<Pattern>(pattern).path());
    }
}

TEST(PatternPropertyTest, survivesAnyElements) {
    std::mt19937 engine(9);
    const std::vector<std::string> words{"",
                                         "qos",
                                         "*",
                                         "...",
                                         "classifiers",
                                         "classifier",
                                         "name",
                                         "openconfig-qos:qos",
                                         "openconfig-qos:",
                                         "\xc3\xa4",
                                         "/",
                                         "[",
                                         "terms",
                                         "term",
                                         "id",
                                         "state"};
    std::uniform_int_distribution<std::size_t> word(0, words.size() - 1);
    std::uniform_int_distribution<std::size_t> length(0, 40);
    for (int round = 0; round < 20'000; ++round) {
        RequestPath path;
        path.elements.resize(length(engine) % (round % 2 == 0 ? 6 : 40));
        for (PathElement& element : path.elements) {
            element.name = words[word(engine)];
            if (word(engine) < 4) element.keys.emplace(words[word(engine)], words[word(engine)]);
        }
        const auto pattern = Pattern::of(path);
        if (const auto* refusal = std::get_if<Refusal>(&pattern)) {
            EXPECT_EQ(refusal->message.find('\n'), std::string::npos);
        }
    }
}

}  // namespace
}  // namespace QosAgent::Gnmi
