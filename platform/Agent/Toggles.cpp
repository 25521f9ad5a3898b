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

bool getToggleState(std::string_view toggle, std::string_view file, bool fallback) {
    return installedReader() ? installedReader()(toggle, file, fallback) : fallback;
}

}  // namespace Agent
