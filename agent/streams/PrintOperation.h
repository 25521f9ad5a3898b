#pragma once

#include <string>
#include <string_view>
#include <variant>

#include "agent/database/Database.h"
#include "agent/explain/Explainer.h"
#include "agent/host/PluginHost.h"
#include "agent/json/JsonReader.h"
#include "agent/json/JsonWriter.h"
#include "agent/openconfig/Configuration.h"

namespace QosAgent {

/// Formats what the operation `print` asks for. Changes nothing.
class PrintOperation {
public:
    /// The arguments must outlive this object.
    PrintOperation(const Database& database, const Configuration& configuration,
                   const PluginHost& host);

    /// Returns the text, without the line end of its last line, or a fault if `what` names nothing
    /// that can be printed.
    std::variant<std::string, Fault> print(const JsonValue& what);

private:
    std::variant<std::string, Fault> explanation(const JsonValue& what);
    std::string textOf(std::string_view what);
    void writeDocument(JsonWriter& writer, std::string_view what);

    const Database& database_;
    const Configuration& configuration_;
    const PluginHost& host_;
    Explainer explainer_;
};

}  // namespace QosAgent
