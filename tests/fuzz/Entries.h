#pragma once

#include <array>
#include <string_view>

namespace QosAgent {

/// A way into the program for bytes from outside. `run` throws `BrokenProperty`, or ends the
/// process, when something does not hold that must.
struct FuzzEntry {
    std::string_view name;
    void (*run)(std::string_view bytes);
};

/// A state document, merged into a database, on which the plug-in then starts.
void fuzzDocument(std::string_view bytes);
/// An OpenConfig configuration, twice, under a plug-in at work.
void fuzzConfiguration(std::string_view bytes);
/// A change stream under a plug-in at work, followed and traced.
void fuzzStream(std::string_view bytes);
/// Names: those that the program makes up of others are read back, those it gets are decoded.
void fuzzName(std::string_view bytes);
/// A toggle file.
void fuzzToggles(std::string_view bytes);

/// Lets go of what entries keep from one run to the next.
void fuzzEnd();

inline constexpr std::array<FuzzEntry, 5> kFuzzEntries{{
    {"document", fuzzDocument},
    {"configuration", fuzzConfiguration},
    {"stream", fuzzStream},
    {"name", fuzzName},
    {"toggles", fuzzToggles},
}};

}  // namespace QosAgent
