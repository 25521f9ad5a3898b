#include "platform/Agent/Toggles.h"

#include <utility>

namespace Agent {
namespace {

ToggleReader& installedReader() {
    static ToggleReader reader;
    return reader;
}

}  // namespace

void toggleReaderIs(ToggleReader reader) {
    installedReader() = std::move(reader);
}

}  // namespace Agent

bool getToggleState(std::string_view toggle, std::string_view file, bool fallback) {
    const Agent::ToggleReader& reader = Agent::installedReader();
    return reader ? reader(toggle, file, fallback) : fallback;
}
