#include "agent/store/TakeBack.h"

#include <charconv>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "agent/store/InputRecords.h"
#include "agent/store/RecordEditor.h"
#include "agent/store/Restore.h"

namespace QosAgent {
namespace {

using Records = std::map<std::string, std::string>;
using Paths = std::set<std::string>;

Paths pathsOf(std::span<const TransactionPtr> dropped, RecordArea area) {
    Paths paths;
    for (const TransactionPtr& transaction : dropped)
        for (const RecordEdit& edit : transaction->edits)
            if (edit.key.area == area) paths.insert(edit.key.path);
    return paths;
}

bool isCoveredBy(const Paths& paths, const std::string& path) {
    for (std::size_t slash = path.rfind('/'); slash != std::string::npos && slash != 0;
         slash = path.rfind('/', slash - 1))
        if (paths.contains(path.substr(0, slash))) return true;
    return false;
}

bool holdsBelow(const Records& records, const std::string& path) {
    const auto at = records.lower_bound(path + '/');
    return at != records.end() && at->first.starts_with(path + '/');
}

/// The records at the path and below, as the database has them.
Records recordsNow(const InputRecords& records, const std::string& path) {
    std::vector<RecordEdit> edits;
    records.refresh(path, edits);
    Records now;
    for (RecordEdit& edit : edits)
        if (edit.kind == RecordEdit::Kind::put)
            now.insert_or_assign(std::move(edit.key.path), std::move(edit.value));
    return now;
}

/// Takes one path and all below it back.
class InputsBack {
public:
    InputsBack(Store& store, Database& database)
        : store_(store), records_(database), editor_(database) {}

    StoreFault run(const std::string& path) {
        Records kept;
        StoreFault fault = store_.read(RecordArea::input, path,
                                       [&kept](std::string_view place, std::string_view record) {
                                           kept.emplace(place, record);
                                       });
        if (!fault.empty()) return fault;
        const Records now = recordsNow(records_, path);
        removeOthers(now, kept);
        return put(now, kept);
    }

private:
    void removeOthers(const Records& now, const Records& kept) {
        Paths removed;
        for (const auto& [path, record] : now) {
            if (kept.contains(path) || holdsBelow(kept, path) || isCoveredBy(removed, path))
                continue;
            editor_.remove(path);
            removed.insert(path);
        }
    }
    /// Members before the entities that hold them: what an entity says of itself announces that its
    /// members are as they should be.
    StoreFault put(const Records& now, const Records& kept) {
        for (const bool isHolder : {false, true})
            for (const auto& [path, record] : kept) {
                const auto held = now.find(path);
                if (holdsBelow(kept, path) != isHolder) continue;
                if (held != now.end() && held->second == record) continue;
                if (std::string fault = editor_.put(path, record); !fault.empty()) return fault;
            }
        return {};
    }

    Store& store_;
    InputRecords records_;
    RecordEditor editor_;
};

StoreFault takeOwnersBack(const Paths& paths, Store& store, Ownership& ownership) {
    for (const std::string& path : paths) {
        unsigned notes = 0;
        StoreFault fault = store.read(
            RecordArea::owner, path, [&](std::string_view place, std::string_view record) {
                if (place == path)
                    std::from_chars(record.data(), record.data() + record.size(), notes);
            });
        if (!fault.empty()) return fault;
        ownership.notesAre(path, notes);
    }
    return {};
}

}  // namespace

StoreFault takeBack(std::span<const TransactionPtr> dropped, ConfigurationTree tree, Store& store,
                    Database& database, Configuration& configuration) {
    configuration.suspend();
    InputsBack inputs(store, database);
    const Paths paths = pathsOf(dropped, RecordArea::input);
    for (const std::string& path : paths) {
        if (isCoveredBy(paths, path)) continue;
        if (StoreFault fault = inputs.run(path); !fault.empty()) return fault;
    }
    StoreFault fault =
        takeOwnersBack(pathsOf(dropped, RecordArea::owner), store, configuration.ownership());
    if (!fault.empty()) return fault;
    return restoreConfiguration(store, std::move(tree), configuration);
}

}  // namespace QosAgent
