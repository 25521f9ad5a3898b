#include "agent/store/Restore.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>

#include "agent/database/Document.h"
#include "agent/database/Mounts.h"
#include "agent/database/Path.h"
#include "agent/json/Excerpt.h"
#include "agent/store/ConfigurationRecords.h"
#include "agent/store/RecordDocument.h"

namespace QosAgent {
namespace {

StoreFault refused(std::string_view path, const std::string& why) {
    return "holds something else than this program keeps, at " + excerpt(path) + ": " + why;
}

/// Reads an area until a record is refused.
template <class Take>
StoreFault readArea(Store& store, RecordArea area, Take take) {
    StoreFault refusal;
    StoreFault fault = store.read(area, "", [&](std::string_view path, std::string_view record) {
        if (!refusal.empty()) return;
        if (const std::string why = take(path, record); !why.empty()) refusal = refused(path, why);
    });
    return fault.empty() ? refusal : fault;
}

std::optional<std::uint32_t> numberIn(std::string_view record) {
    std::uint32_t number = 0;
    const auto [end, error] = std::from_chars(record.data(), record.data() + record.size(), number);
    if (error != std::errc() || end != record.data() + record.size()) return {};
    return number;
}

/// The mount that the path leads into; empty if it leads into none.
std::string_view mountOf(std::string_view path) {
    for (const MountPoint& mount : mountPoints())
        if (path.starts_with(mount.path) &&
            (path.size() == mount.path.size() || path[mount.path.size()] == '/'))
            return mount.path;
    return {};
}

StoreFault restoreDatabase(Store& store, Database& database) {
    RecordDocument document;
    StoreFault fault =
        readArea(store, RecordArea::input, [&](std::string_view path, std::string_view record) {
            const std::string_view mount = mountOf(path);
            const std::string_view rest = path.substr(std::min(mount.size() + 1, path.size()));
            return mount.empty() ? noSubtree(path) : document.add(mount, rest, record);
        });
    if (!fault.empty()) return fault;
    const std::string_view state = database.stateTree().mount->path;
    fault = readArea(store, RecordArea::state, [&](std::string_view path, std::string_view record) {
        return document.add(state, path, record);
    });
    if (!fault.empty()) return fault;
    const Json json = document.take();
    if (const auto unread = checkDocument(database, json.root()))
        return refused("the database", unread->message);
    mergeDocument(database, json.root());
    return {};
}

StoreFault restoreOwners(Store& store, Ownership& ownership) {
    return readArea(store, RecordArea::owner, [&](std::string_view path, std::string_view record) {
        const auto notes = numberIn(record);
        if (!notes) return "no number";
        ownership.notesAre(std::string(path), *notes);
        return "";
    });
}

}  // namespace

StoreFault restoreConfiguration(Store& store, ConfigurationTree tree,
                                Configuration& configuration) {
    std::unordered_map<std::string, std::uint32_t> numbers;
    StoreFault fault =
        readArea(store, RecordArea::group, [&](std::string_view path, std::string_view record) {
            const auto name = keyFromStep(path);
            const auto number = numberIn(record);
            if (!name || !number) return "no traffic class of a group";
            numbers.emplace(*name, *number);
            return "";
        });
    if (!fault.empty()) return fault;
    const auto unread = configuration.restore(
        std::move(tree), [&](std::string_view group) -> std::optional<std::uint32_t> {
            const auto held = numbers.find(std::string(group));
            if (held == numbers.end()) return {};
            return held->second;
        });
    return unread ? refused("the configuration", unread->message) : StoreFault();
}

StoreFault restore(Store& store, Database& database, Configuration& configuration) {
    if (StoreFault fault = restoreDatabase(store, database); !fault.empty()) return fault;
    if (StoreFault fault = restoreOwners(store, configuration.ownership()); !fault.empty())
        return fault;
    ConfigurationLoader loader;
    StoreFault fault = readArea(
        store, RecordArea::configuration,
        [&](std::string_view path, std::string_view record) { return loader.add(path, record); });
    if (!fault.empty()) return fault;
    return restoreConfiguration(store, loader.take(), configuration);
}

}  // namespace QosAgent
