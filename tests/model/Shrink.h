#pragma once

#include <functional>

#include "tests/model/Story.h"

namespace Model {

/// The shortest story found that still fails: without lines, and without parts of what is left,
/// that it can do without.
Story shrunk(Story story, const std::function<bool(const Story&)>& fails);

/// How many things the story names: what a reader has to look at.
std::size_t sizeOf(const Story& story);

}  // namespace Model
