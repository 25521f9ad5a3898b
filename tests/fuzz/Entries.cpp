#include "tests/fuzz/Entries.h"

#include <sys/mman.h>

#include <fstream>

#include "agent/host/ToggleFolder.h"
#include "agent/json/Excerpt.h"
#include "agent/output/Diagnostics.h"
#include "agent/output/Follower.h"
#include "agent/streams/LineReader.h"
#include "platform/QosOc/Naming.h"
#include "platform/Vex/Escape.h"
#include "tests/agent/support/TemporaryFolder.h"
#include "tests/fuzz/Property.h"
#include "tests/support/TraceCapture.h"

namespace QosAgent {
namespace {

constexpr std::string_view kPlugin = "ClassifierStateSmPlugin";
constexpr std::string_view kCmaps = "qos/status/cmapTypeStatus/mapQos/cmapStatus";

/// Something of each kind that the plug-in reads.
constexpr std::string_view kBase = R"({
    "qos/status": {"cmapTypeStatus": {"mapQos": {"cmapStatus": {
            "c": {"match": {"matchIpv6AccessGroup": "a"}},
            "openconfig:C:T": {"match": {"matchIpAccessGroup": "openconfig:C:T"}}}}},
        "pmapTypeStatus": {"mapQos": {"pmapStatus": {"openconfig:C:": {"version": 1,
            "classes": {"openconfig:C:T": {"action": {"4": 5}}}}}}}},
    "qos/input/config/cli": {"forwardingGroupNameToTcMap": {"tc": {"gold": 5}}},
    "acl/config/cli": {"aclTypeConfig": {"ipv4": {"aclConfig": {"openconfig:C:T": {"aclSubConfig": {
        "ipRuleById": {"1": {"filter": {"dscpValue": 46, "dscpEnabled": true}}},
        "ruleIdBySequence": {"10": 1}}}}}}},
    "qos/openconfig/config/classifiers": {"classifier": {"C": {"config": {"type": "IPV4"},
        "terms": {"term": {"T": {"actions": {"targetGroup": "silver"}}}}}}}})";

void start(TextDatabase& db) {
    require(!db.host.restart(kPlugin), "the plug-in cannot be started again");
}

std::unique_ptr<TextDatabase> baseDatabase() {
    auto db = std::make_unique<TextDatabase>();
    require(db->load(kBase).empty(), "the base is refused");
    return db;
}

/// A database with the base in it, the same again as long as nobody takes it. Null at first.
std::unique_ptr<TextDatabase>& keptDatabase() {
    static std::unique_ptr<TextDatabase> kept;
    return kept;
}

std::unique_ptr<TextDatabase>& sharedDatabase() {
    auto& kept = keptDatabase();
    if (kept == nullptr) kept = baseDatabase();
    return kept;
}

/// A file that is not on any disk.
class MemoryFile {
public:
    explicit MemoryFile(std::string_view bytes) : file_(::memfd_create("input", MFD_CLOEXEC)) {
        Output(file_).line(bytes);
        // Without the line's end.
        require(::ftruncate(file_, static_cast<off_t>(bytes.size())) == 0,
                "the file keeps its size");
        ::lseek(file_, 0, SEEK_SET);
    }
    ~MemoryFile() { ::close(file_); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    int fd() const { return file_; }

private:
    int file_;
};

/// Each line is the comment of an `echo`, or one JSON value.
void requireOutput(std::string_view text) {
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        require(end != text.npos, "the output ends within a line");
        const std::string_view line = text.substr(0, end);
        text.remove_prefix(end + 1);
        if (line.starts_with("# ")) {
            requireLine(line);
            continue;
        }
        const JsonResult json = parseJson(line);
        require(std::holds_alternative<Json>(json), "a line is not JSON: " + std::string(line));
    }
}

void requireWarnings(const std::vector<Warning>& warnings, std::string_view text) {
    std::size_t last = 0;
    for (const Warning& passed : warnings) {
        require(passed.offset >= last, "warnings are out of order");
        require(passed.offset <= text.size(), "a place behind the text");
        last = passed.offset;
        requireLine(warning("file", placeOf(text, passed.offset), passed.message).line());
    }
}

std::optional<Fault> configure(TextDatabase& db, std::string_view text) {
    JsonResult json = parseJson(text);
    if (const auto* fault = std::get_if<Fault>(&json)) return *fault;
    const JsonValue root = std::get<Json>(json).root();
    const auto applied = db.configuration.apply(std::get<Json>(std::move(json)), root);
    if (const auto* fault = std::get_if<Fault>(&applied)) return *fault;
    requireWarnings(std::get<std::vector<Warning>>(applied), text);
    return {};
}

/// The text as a JSON string reads back as itself, or is refused for what it is not.
void requireQuotedReadsBack(std::string_view text) {
    std::string quoted;
    appendQuoted(quoted, text);
    const JsonResult json = parseJson(quoted);
    if (const auto* fault = std::get_if<Fault>(&json))
        require(fault->message == "the string is not UTF-8", fault->message);
    else
        require(std::get<Json>(json).root().text() == text, "a string reads as something else");
}

/// A key in a path reads back as itself.
void requireStepReadsBack(std::string_view key) {
    TextDatabase db;
    std::string path(kCmaps);
    appendKeyStep(path, key);
    const auto parsed = parsePath(db.database, path);
    if (const auto* fault = std::get_if<std::string>(&parsed)) {
        require(key.empty(), *fault);
        return;
    }
    const auto& steps = std::get<Path>(parsed).steps;
    require(steps.size() == 4 && steps.back().key.as<Orin::String>() == Orin::String(key),
            "a key in a path reads as something else");
}

/// What names from outside are turned into for messages, trace lines and tables.
void requireShownOnOneLine(std::string_view text) {
    requireLine(excerpt(text));
    std::string escaped;
    Vex::appendEscaped(escaped, text);
    requireLine(escaped);
    requireLine(refusal(text, text).line());
}

/// A name from outside: what it is decoded to makes the same name again.
void requireNameDecodes(std::string_view text) {
    const Orin::String name(text);
    const auto& term = QosOc::classifierKeyFromConfigObjName(name);
    require(term.classifierName.empty() == term.termId.empty(), "half a term");
    if (term.isTerm())
        require(QosOc::configObjName(term.classifierName, term.termId) == text, "another term");
    const auto& pmap = QosOc::classifiersFromPmapName(name);
    if (!pmap.ipv4ClassifierName.empty() || !pmap.ipv6ClassifierName.empty())
        require(QosOc::pmapName(pmap.ipv4ClassifierName, pmap.ipv6ClassifierName) == text,
                "other classifiers");
    const bool standsForNone = text == "class-default" || text.starts_with("openconfig:");
    require(QosOc::classifierNameFromClassName(name) == (standsForNone ? Orin::String() : name),
            "another classifier");
}

/// A name made of two parts is decoded to these.
void requireNameIsDecoded(std::string_view first, std::string_view second) {
    if (first.empty() && second.empty()) return;
    const Orin::String pmap(QosOc::pmapName(first, second));
    require(QosOc::classifiersFromPmapName(pmap) ==
                QosOc::PmapClassifiers{Orin::String(first), Orin::String(second)},
            "a policy map of other classifiers");
    if (first.empty() || second.empty()) return;
    const Orin::String term(QosOc::configObjName(first, second));
    require(QosOc::classifierKeyFromConfigObjName(term) ==
                QosOc::ClassifierKey{Orin::String(first), Orin::String(second)},
            "another term");
}

/// A folder with one toggle file, gone in the end.
class ToggleFile {
public:
    static constexpr const char* kName = "Toggles.json";

    auto read(std::string_view bytes) const {
        std::ofstream(name(), std::ios::binary) << bytes;
        return ToggleFolder(folder_.path()).read(kName);
    }
    bool state(std::string_view toggle, bool fallback) const {
        return ToggleFolder(folder_.path()).state(toggle, kName, fallback);
    }
    std::string name() const { return folder_ / kName; }

private:
    TemporaryFolder folder_;
};

std::string textOf(const ToggleFolder::Toggles& toggles) {
    std::string text;
    JsonWriter writer(text);
    writer.beginObject();
    for (const auto& [name, isOn] : toggles)
        writer.key(name).boolean(isOn);
    writer.endObject();
    return text;
}

}  // namespace

void fuzzDocument(std::string_view bytes) {
    auto& shared = sharedDatabase();
    if (!requireAllOrNothing(*shared, bytes, [&](auto text) { return shared->merge(text); }))
        return;
    const auto db = std::move(shared);
    start(*db);
    requireReadsBack(*db);
}

void fuzzConfiguration(std::string_view bytes) {
    auto& shared = sharedDatabase();
    if (shared->host.mounters().empty()) start(*shared);
    if (!requireAllOrNothing(*shared, bytes, [&](auto text) { return configure(*shared, text); }))
        return;
    const auto db = std::move(shared);
    const std::string once = db->all();
    require(!configure(*db, bytes), "refused at the second time");
    require(db->all() == once, "the second time changes something");
    requireReadsBack(*db);
}

void fuzzEnd() {
    keptDatabase().reset();
}

void fuzzStream(std::string_view bytes) {
    static const StopSignals stop;
    const auto base = baseDatabase();
    TextDatabase& db = *base;
    const TestSupport::TraceCapture trace;
    Feed feed(db.database);
    const Follower follower(feed, db.out.output());
    start(db);
    const MemoryFile file(bytes);
    LineReader lines(file.fd(), Limits{}.lineBytes, stop);
    while (lines.next()) {
        requireAllOrNothing(db, lines.line(), [&](auto line) { return db.applyLine(line); });
        requireWarnings(db.operations.takeWarnings(), lines.line());
    }
    requireOutput(db.out.text());
    for (const std::string& line : trace.rawLines())
        requireLine(line);
    requireReadsBack(db);
}

void fuzzName(std::string_view bytes) {
    requireNameDecodes(bytes);
    requireNameDecodes("openconfig:" + std::string(bytes));
    const std::size_t middle = std::min(bytes.find('\n'), bytes.size());
    requireNameIsDecoded(bytes.substr(0, middle), bytes.substr(middle));
    requireStepReadsBack(bytes);
    requireQuotedReadsBack(bytes);
    requireShownOnOneLine(bytes);
}

void fuzzToggles(std::string_view bytes) {
    static const ToggleFile file;
    const auto read = file.read(bytes);
    if (const auto* refused = std::get_if<Diagnostic>(&read)) {
        requireLine(refused->line());
        require(refused->place.starts_with(file.name() + ':'), "no place: " + refused->line());
        require(file.state("t", true) && !file.state("t", false), "a refused file says something");
        return;
    }
    const auto& toggles = std::get<ToggleFolder::Toggles>(read);
    for (const auto& [name, isOn] : toggles)
        require(file.state(name, !isOn) == isOn, "a toggle has another state");
    const auto again = file.read(textOf(toggles));
    require(std::get<ToggleFolder::Toggles>(again) == toggles, "toggles read as something else");
}

}  // namespace QosAgent
