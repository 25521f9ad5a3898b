#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "tests/model/Change.h"
#include "tests/model/Schema.h"

namespace Model {

/// What is to happen to one agent, from its document to the changes after its plug-in is gone.
struct Story {
    Json document = Json::object();
    std::vector<Change> lines;
    /// Applied when the plug-in has been torn down.
    std::vector<Change> afterlife;
    bool isTraced = true;
};

/// Makes stories over a small pool of names, in which everything that can collide does.
class Generator {
public:
    explicit Generator(std::uint64_t seed) : random_(seed) {}

    /// With at most so many lines.
    Story story(std::size_t mostLines);

private:
    void newPool();
    Change change();
    Change pathTo(Change::Verb verb);
    static bool isTouchable(Change::Verb verb, const Attribute& attribute);
    Json valueOf(const Type& type, std::string_view name);
    Json plainValue(const Type& type, std::string_view name);
    Json nullOr(const Attribute& attribute);
    Json membersOf(const Attribute& attribute);
    std::string keyFor(std::string_view collection);
    std::string objectName();

    std::size_t below(std::size_t count) { return random_() % count; }
    bool once(std::size_t in) { return below(in) == 0; }
    const std::string& any(const std::vector<std::string>& texts) {
        return texts[below(texts.size())];
    }

    std::mt19937_64 random_;
    std::vector<std::string> classifiers_;
    std::vector<std::string> terms_;
    std::vector<std::string> groups_;
};

}  // namespace Model
