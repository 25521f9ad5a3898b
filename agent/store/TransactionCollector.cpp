#include "agent/store/TransactionCollector.h"

#include <utility>

#include "agent/database/Path.h"
#include "agent/store/ConfigurationRecords.h"

namespace QosAgent {
namespace {

using Kind = RecordEdit::Kind;

/// The list of the configuration's groups, and what its entries begin with.
constexpr std::string_view kGroups = "qos/forwarding-groups/forwarding-group";
constexpr std::string_view kGroupPrefix = "qos/forwarding-groups/forwarding-group/";

}  // namespace

TransactionCollector::TransactionCollector(Database& database, Configuration& configuration,
                                           Feed& feed, bool keepsChanges)
    : database_(database),
      configuration_(configuration),
      feed_(feed),
      keepsChanges_(keepsChanges),
      records_(database),
      tree_(configuration.tree()) {
    database_.inputChanges().listenerAdd(*this);
    feed_.listenerIs(*this);
    configuration_.ownership().noteWatchIs(
        [this](const std::string& path) { owners_.insert(path); });
}

TransactionCollector::~TransactionCollector() {
    configuration_.ownership().noteWatchIs({});
    feed_.listenerDel(*this);
    database_.inputChanges().listenerDel(*this);
}

void TransactionCollector::inputChanged(InputChanges::Kind, std::string_view path) {
    if (!inputs_.contains(path)) inputs_.emplace(path);
}

void TransactionCollector::changed(const Change& change) {
    if (keepsChanges_) changes_.push_back(change.shared());
    const std::string_view path = feed_.below(change);
    if (change.isDelete())
        state_.removed(path);
    else
        state_.updated(path, change.valueJson());
}

Transaction TransactionCollector::take() {
    Transaction taken;
    takeInputs(taken.edits);
    takeConfiguration(taken.edits);
    takeOwners(taken.edits);
    state_.take(taken.edits);
    taken.changes = std::exchange(changes_, {});
    return taken;
}

void TransactionCollector::takeInputs(std::vector<RecordEdit>& edits) {
    for (const std::string& path : inputs_)
        if (!isCovered(path)) records_.refresh(path, edits);
    inputs_.clear();
}

/// Whether something that the path is part of was reported, too.
bool TransactionCollector::isCovered(std::string_view path) const {
    for (std::size_t slash = path.rfind('/'); slash != std::string_view::npos && slash != 0;
         slash = path.rfind('/', slash - 1))
        if (inputs_.contains(path.substr(0, slash))) return true;
    return false;
}

void TransactionCollector::takeConfiguration(std::vector<RecordEdit>& edits) {
    const std::size_t before = edits.size();
    writeDifference(tree_, configuration_.tree(), edits);
    tree_ = configuration_.tree();
    for (std::size_t at = before, end = edits.size(); at < end; ++at)
        takeGroup(edits[at], edits);
}

/// What became of a group's entry becomes of its traffic class.
void TransactionCollector::takeGroup(const RecordEdit& edit, std::vector<RecordEdit>& edits) const {
    const std::string& path = edit.key.path;
    if (path == kGroups) {
        edits.push_back({Kind::eraseBelow, {RecordArea::group, ""}});
        return;
    }
    if (!path.starts_with(kGroupPrefix)) return;
    RecordKey key{RecordArea::group, path.substr(kGroupPrefix.size())};
    const auto number = configuration_.trafficClassOf(Orin::String(*keyFromStep(key.path)));
    if (number)
        edits.push_back({Kind::put, std::move(key), std::to_string(*number)});
    else
        edits.push_back({Kind::erase, std::move(key)});
}

void TransactionCollector::takeOwners(std::vector<RecordEdit>& edits) {
    for (const std::string& path : std::exchange(owners_, {})) {
        RecordKey key{RecordArea::owner, path};
        const unsigned notes = configuration_.ownership().notesOn(path);
        if (notes != 0)
            edits.push_back({Kind::put, std::move(key), std::to_string(notes)});
        else
            edits.push_back({Kind::erase, std::move(key)});
    }
}

}  // namespace QosAgent
