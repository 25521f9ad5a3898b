#pragma once

#include <string_view>

namespace QosAgent::Http {

// Made from the files in `page/` when the library is built.

/// The page, with a place for its data.
extern const std::string_view kPageText;
/// SHA-256 of its style and its script, in base 64, by which the page's policy allows these alone.
extern const char* const kStyleHash;
extern const char* const kScriptHash;

}  // namespace QosAgent::Http
