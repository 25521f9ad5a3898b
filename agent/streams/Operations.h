#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "agent/database/Checker.h"
#include "agent/database/Editor.h"
#include "agent/database/Path.h"
#include "agent/explain/Explainer.h"
#include "agent/host/PluginHost.h"
#include "agent/json/JsonReader.h"
#include "agent/json/JsonWriter.h"
#include "agent/openconfig/Configuration.h"
#include "agent/streams/StreamOutput.h"

namespace QosAgent {

struct Verb;

/// Whether the line is no operation: empty, or a comment.
bool isPassedOver(std::string_view line);

/// Applies the operations of change streams, one JSON object a line. A line is checked whole before
/// any of it is applied.
class Operations {
public:
    /// What is passed outlives the operations.
    Operations(Database& database, Configuration& configuration, PluginHost& host);

    /// Applies a line, or passes over one that is empty or a comment. What it prints goes to
    /// `output`. Returns the fault of a line that is refused; nothing has changed then.
    std::optional<Fault> apply(std::string_view line, StreamOutput& output);
    /// Whether the last line applied was an operation that may change something, unlike `print`.
    bool mayChange() const { return mayChange_; }
    /// Which edit of the last line was refused, from 0; nothing if it was no `configure`.
    std::optional<std::size_t> refusedEdit() const { return refusedEdit_; }
    /// What the last line said that was passed over.
    std::vector<Warning> takeWarnings() { return std::exchange(warnings_, {}); }

private:
    friend struct Verb;
    using Result = std::optional<Fault>;

    Result applyOperation(const JsonValue& operation);
    Result update(const JsonValue& path, const JsonValue* value);
    Result replace(const JsonValue& path, const JsonValue* value);
    Result remove(const JsonValue& path, const JsonValue* value);
    Result touch(const JsonValue& path, const JsonValue* value);
    Result openconfig(const JsonValue& document, const JsonValue* value);
    Result configure(const JsonValue& edits, const JsonValue* value);
    Result print(const JsonValue& what, const JsonValue* value);
    Result echo(const JsonValue& text, const JsonValue* value);
    Result restart(const JsonValue& plugin, const JsonValue* value);
    Result follow(const JsonValue& isWanted, const JsonValue* value);

    /// The place to work on, with the value checked if there is one.
    std::variant<Path, Fault> place(const JsonValue& path, const JsonValue* value);
    void writePrinted(std::string& text, std::string_view what);
    void writeDocument(JsonWriter& writer, std::string_view what);
    Result printExplanation(const JsonValue& what);

    Database& database_;
    Configuration& configuration_;
    PluginHost& host_;
    StreamOutput* output_ = nullptr;  ///< of the line that is being applied
    Explainer explainer_;
    Checker checker_;
    Editor editor_;
    bool mayChange_ = false;
    std::optional<std::size_t> refusedEdit_;
    std::vector<Warning> warnings_;
};

}  // namespace QosAgent
