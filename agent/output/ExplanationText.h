#pragma once

#include <string>

#include "agent/explain/Explainer.h"
#include "agent/output/Terminal.h"

namespace QosAgent {

/// An explanation for people: where each part of the state comes from, then the findings with what
/// to do about them. Of a whole classifier each term has a line, and its findings by their
/// sentence. Lines are folded to the width of the terminal, and to 80 columns otherwise.
std::string explanationText(const Explanation& explanation, const Terminal& terminal = {});

}  // namespace QosAgent
