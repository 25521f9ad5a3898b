#include "agent/streams/Operations.h"

#include <algorithm>

#include "agent/database/Path.h"
#include "agent/database/Scalars.h"
#include "agent/json/Excerpt.h"
#include "agent/json/Suggestion.h"
#include "platform/Vex/Escape.h"
#include "platform/Vex/Trace.h"

namespace QosAgent {

/// A kind of operation. Its name is the name of the member that has the operand.
struct Verb {
    using Apply = std::optional<Fault> (Operations::*)(const JsonValue& operand,
                                                       const JsonValue* value);
    std::string_view name;
    Apply apply;
    bool takesValue = false;
    bool mayChange = true;
    static const Verb all[10];
};

const Verb Verb::all[10] = {
    {"update", &Operations::update, true},
    {"replace", &Operations::replace, true},
    {"delete", &Operations::remove},
    {"touch", &Operations::touch},
    {"openconfig", &Operations::openconfig},
    {"configure", &Operations::configure},
    {"print", &Operations::print, false, false},
    {"echo", &Operations::echo, false, false},
    {"restart", &Operations::restart},
    {"follow", &Operations::follow, false, false},
};

namespace {

const Verb* verbNamed(std::string_view name) {
    const auto* at = std::find_if(std::begin(Verb::all), std::end(Verb::all),
                                  [name](const Verb& verb) { return verb.name == name; });
    return at == std::end(Verb::all) ? nullptr : at;
}

constexpr std::string_view kDocumentHint =
    "; a document is an INPUT of its own, FILE.json or /dev/stdin";

/// Returns true if a line that ends at this fault looks like the first line of a document.
bool beginsDocument(std::string_view line, const Fault& fault) {
    const std::size_t last = line.find_last_not_of(" \t\r\n");
    return fault.offset == line.size() && (line[last] == '{' || line[last] == '[');
}

std::string unknownOperation(std::string_view name) {
    const auto isMounted = [name](const MountPoint& mount) { return mount.path == name; };
    if (isTopMember(name) || std::ranges::any_of(mountPoints(), isMounted))
        return "unknown operation " + excerpt(name).append(kDocumentHint);
    std::vector<std::string_view> known{"value"};
    for (const Verb& verb : Verb::all)
        known.push_back(verb.name);
    return "unknown operation " + excerpt(name) + suggestion(name, known);
}

std::string verbNames() {
    std::string list;
    for (const Verb& verb : Verb::all)
        list.append(list.empty() ? "" : ", ").append(verb.name);
    return list;
}

/// The members of a line.
struct Line {
    const Verb* verb = nullptr;
    std::optional<JsonMember> operand;
    std::optional<JsonMember> value;
};

std::variant<Line, Fault> linePartsOf(const JsonValue& operation) {
    Line line;
    for (const JsonMember& member : operation.members()) {
        if (member.key == "value") {
            line.value = member;
            continue;
        }
        const Verb* verb = verbNamed(member.key);
        if (verb == nullptr) return Fault{member.keyOffset, unknownOperation(member.key)};
        if (line.verb != nullptr) return Fault{member.keyOffset, "a second operation in one line"};
        line.verb = verb;
        line.operand = member;
    }
    return line;
}

std::optional<Fault> lineFault(const Line& line, const JsonValue& operation) {
    if (line.verb == nullptr)
        return Fault{operation.offset(), "no operation, expected one of " + verbNames()};
    if (line.verb->takesValue && !line.value)
        return Fault{operation.offset(), "no value for the operation " + excerpt(line.verb->name)};
    if (!line.verb->takesValue && line.value)
        return Fault{line.value->keyOffset,
                     "the operation " + excerpt(line.verb->name) + " takes no value"};
    return {};
}

/// Returns why a place of this form can be neither deleted nor touched; empty if it can.
std::string_view fixedFault(const Form& form) {
    if (form.isMember || form.isNullable) return {};
    if (form.isRoot) return "the root of a subtree";
    if (form.isKeyed()) return "a whole collection";
    if (form.repeatsKey()) return "a member that repeats a key";
    return "a member that is always there";
}

}  // namespace

bool isPassedOver(std::string_view line) {
    return line.starts_with('#') || line.find_first_not_of(" \t\r\n") == std::string_view::npos;
}

Operations::Operations(Database& database, Configuration& configuration, PluginHost& host)
    : database_(database),
      configuration_(configuration),
      host_(host),
      printer_(database, configuration, host),
      checker_(database.interner()),
      editor_(database) {}

std::optional<Fault> Operations::apply(std::string_view line, StreamOutput& output) {
    mayChange_ = false;
    refusedEdit_.reset();
    if (isPassedOver(line)) return {};
    output_ = &output;
    JsonResult json = parseJsonLine(line);
    if (const auto* fault = std::get_if<Fault>(&json)) {
        Fault refused = *fault;
        if (beginsDocument(line, refused)) refused.message += kDocumentHint;
        return refused;
    }
    json_.emplace(std::get<Json>(std::move(json)));
    Result result = applyOperation();
    json_.reset();
    return result;
}

Operations::Result Operations::applyOperation() {
    const JsonValue operation = json_->root();
    if (!operation.is(JsonKind::object))
        return Fault{operation.offset(), unexpected("an object", operation.kind())};
    const auto parts = linePartsOf(operation);
    if (const auto* fault = std::get_if<Fault>(&parts)) return *fault;
    const Line& line = std::get<Line>(parts);
    if (auto fault = lineFault(line, operation)) return fault;
    mayChange_ = line.verb->mayChange;
    return (this->*line.verb->apply)(line.operand->value,
                                     line.value ? &line.value->value : nullptr);
}

std::variant<Path, Fault> Operations::place(const JsonValue& path, const JsonValue* value) {
    if (!path.is(JsonKind::string)) return Fault{path.offset(), unexpected("a path", path.kind())};
    auto parsed = parsePath(database_, path.text());
    if (auto* fault = std::get_if<std::string>(&parsed))
        return Fault{path.offset(), std::move(*fault)};
    Path& place = std::get<Path>(parsed);
    if (place.subtree->mount->isState)
        return Fault{path.offset(), "only the plug-in may change the state tree"};
    if (value != nullptr)
        if (auto fault = checker_.check(place.form, place.keys, *value)) return *std::move(fault);
    return std::move(place);
}

Operations::Result Operations::update(const JsonValue& path, const JsonValue* value) {
    const auto place = this->place(path, value);
    if (const auto* fault = std::get_if<Fault>(&place)) return *fault;
    editor_.update(std::get<Path>(place), *value);
    return {};
}

Operations::Result Operations::replace(const JsonValue& path, const JsonValue* value) {
    const auto place = this->place(path, value);
    if (const auto* fault = std::get_if<Fault>(&place)) return *fault;
    editor_.replace(std::get<Path>(place), *value);
    return {};
}

Operations::Result Operations::remove(const JsonValue& path, const JsonValue*) {
    const auto place = this->place(path, nullptr);
    if (const auto* fault = std::get_if<Fault>(&place)) return *fault;
    const std::string_view fixed = fixedFault(std::get<Path>(place).form);
    if (!fixed.empty()) return Fault{path.offset(), std::string(fixed) + " cannot be deleted"};
    editor_.remove(std::get<Path>(place));
    return {};
}

Operations::Result Operations::touch(const JsonValue& path, const JsonValue*) {
    const auto place = this->place(path, nullptr);
    if (const auto* fault = std::get_if<Fault>(&place)) return *fault;
    const Form& form = std::get<Path>(place).form;
    const bool isRecord = !form.isKeyed() && form.type->shape == Vex::Shape::record;
    const std::string_view fixed = isRecord ? std::string_view() : fixedFault(form);
    if (!fixed.empty()) return Fault{path.offset(), std::string(fixed) + " cannot be touched"};
    editor_.touch(std::get<Path>(place));
    return {};
}

Operations::Result Operations::openconfig(const JsonValue& document, const JsonValue*) {
    auto applied = configuration_.apply(*std::exchange(json_, std::nullopt), document);
    if (auto* fault = std::get_if<Fault>(&applied)) return std::move(*fault);
    warnings_ = std::get<std::vector<Warning>>(std::move(applied));
    return {};
}

Operations::Result Operations::configure(const JsonValue& edits, const JsonValue*) {
    auto applied = configuration_.configure(edits);
    if (auto* refusal = std::get_if<Configuration::Refusal>(&applied)) {
        refusedEdit_ = refusal->edit;
        return std::move(refusal->fault);
    }
    warnings_ = std::get<std::vector<Warning>>(std::move(applied));
    return {};
}

Operations::Result Operations::print(const JsonValue& what, const JsonValue*) {
    auto printed = printer_.print(what);
    if (auto* fault = std::get_if<Fault>(&printed)) return std::move(*fault);
    output_->line(std::get<std::string>(printed));
    return {};
}

Operations::Result Operations::echo(const JsonValue& text, const JsonValue*) {
    if (!text.is(JsonKind::string))
        return Fault{text.offset(), unexpected("a string", text.kind())};
    std::string line = "# ";
    Vex::appendEscaped(line, text.text());
    output_->line(line);
    Vex::writeTraceLine(line);
    return {};
}

Operations::Result Operations::restart(const JsonValue& plugin, const JsonValue*) {
    if (!plugin.is(JsonKind::string))
        return Fault{plugin.offset(), unexpected("a string", plugin.kind())};
    if (auto fault = host_.restart(plugin.text())) return Fault{plugin.offset(), *std::move(fault)};
    return {};
}

Operations::Result Operations::follow(const JsonValue& isWanted, const JsonValue*) {
    if (!isWanted.is(JsonKind::boolean))
        return Fault{isWanted.offset(), unexpected("true or false", isWanted.kind())};
    output_->followIs(isWanted.boolean());
    return {};
}

}  // namespace QosAgent
