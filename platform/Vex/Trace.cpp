#include "platform/Vex/Trace.h"

#include <algorithm>
#include <charconv>
#include <map>
#include <set>
#include <utility>
#include <vector>

#include "platform/Vex/Escape.h"
#include "platform/Vex/TypeRecord.h"
#include "platform/Vex/UtcTime.h"

namespace Vex {
namespace {

struct TraceState {
    std::vector<TraceHandle*> handles;
    std::map<std::string, unsigned, std::less<>> levels;
    TraceSink sink;
};

/// Never destroyed: libraries unregister their handles when they are unloaded, even at exit.
TraceState& state() {
    static auto* const kept = new TraceState;
    return *kept;
}

}  // namespace

TraceRegistration::TraceRegistration(TraceHandle& handle) : handle_(handle) {
    state().handles.push_back(&handle);
    for (const auto& [name, count] : state().levels)
        if (name == "*" || name == handle.name()) handle.enabledLevelsIs(count);
}

TraceRegistration::~TraceRegistration() {
    std::erase(state().handles, &handle_);
}

void traceLevelsIs(std::string_view name, unsigned count) {
    if (name == "*") state().levels.clear();
    state().levels.insert_or_assign(std::string(name), count);
    for (TraceHandle* handle : state().handles)
        if (name == "*" || name == handle->name()) handle->enabledLevelsIs(count);
}

std::vector<std::string_view> traceHandleNames() {
    std::set<std::string_view> names;
    for (const TraceHandle* handle : state().handles)
        names.insert(handle->name());
    return {names.begin(), names.end()};
}

void traceSinkIs(TraceSink sink) {
    state().sink = std::move(sink);
}

void writeTraceLine(std::string_view line) {
    if (state().sink) state().sink(line);
}

TraceHelper::TraceHelper(const TraceHandle& handle, unsigned level, std::string_view source,
                         unsigned line, std::string_view function) {
    text_ += utcText(std::chrono::system_clock::now());
    text_.append(" ").append(handle.name()).append("/").append(std::to_string(level));
    text_.append(" ").append(source).append(":").append(std::to_string(line));
    text_.append(" ").append(function).append(" ");
}

TraceHelper::~TraceHelper() {
    writeTraceLine(text_);
}

TraceHelper& TraceHelper::operator<<(std::string_view piece) {
    text_ += piece;
    return *this;
}

TraceHelper& TraceHelper::operator<<(const Orin::String& value) {
    appendEscaped(text_, value);
    return *this;
}

TraceHelper& TraceHelper::operator<<(bool value) {
    return *this << (value ? "true" : "false");
}

TraceHelper& TraceHelper::operator<<(std::uint32_t value) {
    return *this << std::string_view(std::to_string(value));
}

TraceHelper& TraceHelper::operator<<(const void* value) {
    char digits[2 * sizeof value];
    const auto end =
        std::to_chars(digits, digits + sizeof digits, reinterpret_cast<std::uintptr_t>(value), 16);
    return *this << "0x" << std::string_view(digits, end.ptr);
}

TraceHelper& TraceHelper::operator<<(const TypedNode& entity) {
    return *this << entity.typeData().fullName << "@" << static_cast<const void*>(&entity);
}

}  // namespace Vex
