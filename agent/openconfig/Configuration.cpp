#include "agent/openconfig/Configuration.h"

#include <memory>
#include <utility>

#include "agent/json/JsonBuilder.h"

namespace QosAgent {
namespace {

/// The place of a fault that an edit makes: where the edit says it, else the edit's path.
Fault placedIn(const std::vector<ConfigurationEdit>& edits, std::size_t index, Fault fault) {
    const std::size_t end =
        index + 1 < edits.size() ? edits[index + 1].offset : JsonBuilder::kNoOffset;
    const bool isSaidHere = fault.offset >= edits[index].offset && fault.offset < end;
    if (!isSaidHere) fault.offset = edits[index].pathOffset;
    return fault;
}

}  // namespace

Configuration::Configuration(Database& database, Strictness strictness)
    : interner_(database.interner()), strictness_(strictness), translator_(database) {}

std::variant<std::vector<Warning>, Fault> Configuration::apply(Json json,
                                                               const JsonValue& document) {
    const auto kept = std::make_shared<const Json>(std::move(json));
    ConfigurationTree tree = ConfigurationTree::of(kept, document, change_);
    OpenConfigReader reader(interner_, strictness_);
    reader.placesAre(tree);
    auto read = reader.read(document);
    if (auto* fault = std::get_if<Fault>(&read)) return std::move(*fault);
    ++change_;
    tree_ = std::move(tree);
    translator_.apply(std::get<OpenConfigDocument>(std::move(read)));
    return reader.warnings();
}

/// What a configuration says, or its first fault, and what of the newest change was passed over.
struct Configuration::Reading {
    std::variant<OpenConfigDocument, Fault> document;
    std::vector<Warning> warnings;

    const Fault* fault() const { return std::get_if<Fault>(&document); }
};

std::variant<std::vector<Warning>, Configuration::Refusal> Configuration::configure(
    const JsonValue& json) {
    auto edits = readEdits(json);
    if (auto* fault = std::get_if<Fault>(&edits)) return Refusal{std::move(*fault)};
    const auto& list = std::get<std::vector<ConfigurationEdit>>(edits);
    auto trees = treesOf(list);
    if (auto* refusal = std::get_if<Refusal>(&trees)) return std::move(*refusal);
    const ConfigurationTree& edited = std::get<Trees>(trees).back();
    Reading reading = read(edited);
    if (const Fault* fault = reading.fault())
        return refusalOf(list, std::get<Trees>(trees), *fault);
    ++change_;
    tree_ = edited;
    translator_.apply(std::get<OpenConfigDocument>(std::move(reading.document)));
    return std::move(reading.warnings);
}

std::variant<Configuration::Trees, Configuration::Refusal> Configuration::treesOf(
    const std::vector<ConfigurationEdit>& edits) const {
    Trees trees{tree_};
    trees.reserve(edits.size() + 1);
    for (const ConfigurationEdit& edit : edits) {
        auto tree = edited(trees.back(), edit, change_);
        if (auto* fault = std::get_if<Fault>(&tree))
            return Refusal{std::move(*fault), trees.size() - 1};
        trees.push_back(std::get<ConfigurationTree>(std::move(tree)));
    }
    return trees;
}

Configuration::Reading Configuration::read(const ConfigurationTree& tree) const {
    OpenConfigReader reader(interner_, strictness_);
    reader.placesAre(tree);
    const ConfigurationPart part(tree_, tree, change_);
    Reading reading{part.isWhole() ? reader.read(tree.json(change_).root())
                                   : reader.readPart(part, translator_.document()),
                    {}};
    reading.warnings = reader.warnings();
    std::erase_if(reading.warnings,
                  [](const Warning& warning) { return warning.offset == JsonBuilder::kNoOffset; });
    return reading;
}

std::optional<std::uint32_t> Configuration::trafficClassOf(const Orin::String& group) const {
    const ForwardingGroup* held = translator_.document().groups.find(group);
    if (held == nullptr) return {};
    return held->trafficClass;
}

std::optional<Fault> Configuration::restore(ConfigurationTree tree,
                                            const TrafficClasses& trafficClassOf) {
    if (tree.root() == nullptr) {
        translator_.restore({});
        tree_ = {};
        return {};
    }
    // What is kept was let pass once, whatever this run is asked to refuse.
    OpenConfigReader reader(interner_, Strictness::warns);
    reader.placesAre(tree);
    auto read = reader.read(tree.json(change_).root());
    if (auto* fault = std::get_if<Fault>(&read)) return std::move(*fault);
    auto& document = std::get<OpenConfigDocument>(read);
    for (const auto& group : document.groups.inOrder())
        if (const auto number = trafficClassOf(group->name))
            document.groups.set({group->name, *number});
    tree_ = std::move(tree);
    translator_.restore(std::move(document));
    return {};
}

/// Finds the edit before which the configuration could be read, and after which it cannot.
Configuration::Refusal Configuration::refusalOf(const std::vector<ConfigurationEdit>& edits,
                                                const Trees& trees, Fault fault) const {
    std::size_t good = 0;
    std::size_t bad = edits.size();
    while (bad - good > 1) {
        const std::size_t middle = good + (bad - good) / 2;
        const Reading reading = read(trees[middle]);
        if (reading.fault() == nullptr) {
            good = middle;
        } else {
            bad = middle;
            fault = *reading.fault();
        }
    }
    return {placedIn(edits, good, std::move(fault)), good};
}

}  // namespace QosAgent
