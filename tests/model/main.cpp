#include <dlfcn.h>

#include <CLI/CLI.hpp>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iostream>

#include "tests/model/Play.h"
#include "tests/model/Reach.h"
#include "tests/model/Shrink.h"

namespace Model {
namespace {

struct Options {
    std::string plugin = QOS_PLUGIN_FILE;
    std::string program = QOS_AGENT_PROGRAM;
    std::string failures = ".";
    std::uint64_t lines = 100'000;
    std::uint64_t seed = 1;
    std::size_t longest = 80;
    unsigned seconds = 0;
    bool tearsDownAfterEachLine = false;
    bool provesItself = false;
    bool talks = false;
};

/// A shrunk plant names at most so many things.
constexpr std::size_t kHandful = 24;
constexpr std::uint64_t kMostLinesOfPlant = 250'000;
constexpr std::size_t kLongestOfPlant = 24;
/// So many lines, not torn down again and again, set every rule of the model to work.
constexpr std::uint64_t kEnoughLines = 25'000;

std::string writtenLines(const std::vector<Change>& changes) {
    std::string text;
    for (const Change& change : changes)
        text += change.line() + '\n';
    return text;
}

class Campaign {
public:
    explicit Campaign(const Options& options)
        : options_(options), start_(std::chrono::steady_clock::now()) {}

    int run() { return options_.provesItself ? proveItself() : playAll(); }

private:
    int playAll() {
        Generator generator(options_.seed);
        while (tally_.lines < options_.lines && !isTimeOver()) {
            const Story story = generator.story(options_.longest);
            if (!playOne(story)) return 1;
            tellProgress();
        }
        std::cout << summary() << std::endl;
        const bool isEnough = !options_.tearsDownAfterEachLine && tally_.lines >= kEnoughLines;
        return !isEnough || isAllReached() ? 0 : 1;
    }
    bool playOne(const Story& story) {
        if (!options_.tearsDownAfterEachLine) return agrees(story);
        for (std::size_t lines = 0; lines <= story.lines.size(); ++lines)
            if (!agrees(prefix(story, lines))) return false;
        return true;
    }
    bool agrees(const Story& story) {
        const auto failure = play(story, options_.plugin, Wrong::nothing, tally_);
        if (failure) report(story, Wrong::nothing, *failure);
        return !failure;
    }

    /// Agents and models that differ in one rule, which must be found.
    int proveItself() {
        int missed = 0;
        for (int i = 1; i < static_cast<int>(Wrong::count); ++i)
            if (!findsPlant(static_cast<Wrong>(i))) ++missed;
        std::cout << static_cast<int>(Wrong::count) - 1 - missed << " of "
                  << static_cast<int>(Wrong::count) - 1 << " plants found and shrunk" << std::endl;
        return missed == 0 ? 0 : 1;
    }
    bool findsPlant(Wrong wrong) {
        Generator generator(options_.seed);
        Tally tally;
        while (tally.lines < kMostLinesOfPlant) {
            const Story story = generator.story(kLongestOfPlant);
            const auto failure = play(story, options_.plugin, wrong, tally);
            if (!failure) continue;
            const Story least = shrinkOf(story, wrong, failure->kind);
            const std::size_t size = sizeOf(least);
            std::cout << "planted " << nameOf(wrong) << ": " << failure->kind << " differs after "
                      << tally.lines << " lines, shrunk to " << size << std::endl;
            if (options_.talks) show(least, *play(least, options_.plugin, wrong, tally));
            if (size <= kHandful) return true;
        }
        std::cout << "planted " << nameOf(wrong) << ": NOT FOUND" << std::endl;
        return false;
    }

    Story shrinkOf(const Story& story, Wrong wrong, const std::string& kind) const {
        Tally ignored;
        return shrunk(story, [&](const Story& tried) {
            const auto failure = play(tried, options_.plugin, wrong, ignored);
            return failure && failure->kind == kind;
        });
    }
    void report(const Story& story, Wrong wrong, const Failure& failure) {
        std::cout << "seed " << options_.seed << ": agent and model differ (" << failure.kind
                  << ") after " << failure.where << "\n"
                  << failure.what << "\nshrinking ..." << std::endl;
        const Story least = shrinkOf(story, wrong, failure.kind);
        Tally ignored;
        show(least, *play(least, options_.plugin, wrong, ignored));
        const std::filesystem::path folder = options_.failures;
        std::filesystem::create_directories(folder);
        std::ofstream(folder / "document.json") << least.document.written() << '\n';
        std::ofstream(folder / "changes.jsonl") << writtenLines(least.lines);
        std::cout << "replay: " << options_.program << " --trace '*/8' --output entities --plugin "
                  << options_.plugin << ' ' << (folder / "document.json").string() << ' '
                  << (folder / "changes.jsonl").string() << std::endl;
    }
    static void show(const Story& story, const Failure& failure) {
        std::cout << "--- document.json\n"
                  << story.document.written() << "\n--- changes.jsonl\n"
                  << writtenLines(story.lines);
        if (!story.afterlife.empty())
            std::cout << "--- after the teardown\n" << writtenLines(story.afterlife);
        std::cout << "--- " << failure.kind << ", after " << failure.where << '\n'
                  << failure.what << std::endl;
    }

    std::string summary() const {
        std::string text = std::to_string(tally_.lines) + " lines, " +
                           std::to_string(tally_.stories) + " sequences, " +
                           std::to_string(tally_.restarts) + " restarts, " +
                           std::to_string(tally_.teardowns) + " teardowns";
        for (const auto& [kind, count] : tally_.differences)
            text += ", " + std::to_string(count) + ' ' + kind;
        return text;
    }
    bool isAllReached() const {
        if (options_.talks)
            for (const Counter* counter : Counter::all())
                std::cout << counter->count() << '\t' << counter->name() << '\n';
        bool isAll = true;
        for (const Counter* counter : Counter::all()) {
            if (counter->count() != 0) continue;
            std::cout << "never at work: " << counter->name() << std::endl;
            isAll = false;
        }
        return isAll;
    }

    bool isTimeOver() const {
        return options_.seconds != 0 &&
               std::chrono::steady_clock::now() - start_ > std::chrono::seconds(options_.seconds);
    }
    void tellProgress() {
        if (tally_.lines < told_ + 250'000) return;
        told_ = tally_.lines;
        std::cerr << "seed " << options_.seed << ": " << tally_.lines << " lines" << std::endl;
    }

    const Options& options_;
    std::chrono::steady_clock::time_point start_;
    Tally tally_;
    std::uint64_t told_ = 0;
};

}  // namespace
}  // namespace Model

int main(int argc, char** argv) {
    Model::Options options;
    CLI::App app("Plays random documents and change streams to the agent and to the model.");
    app.add_option("--plugin", options.plugin, "The plug-in's library");
    app.add_option("--lines", options.lines, "Lines to play");
    app.add_option("--seed", options.seed, "Where the generator begins");
    app.add_option("--longest", options.longest, "Most lines of one sequence");
    app.add_option("--seconds", options.seconds, "Stop after this time; 0: never");
    app.add_option("--failures", options.failures, "Folder for what failed");
    app.add_flag("--each-prefix", options.tearsDownAfterEachLine,
                 "Tear down after each line of each sequence");
    app.add_flag("--prove", options.provesItself, "Make the model wrong, rule by rule");
    app.add_flag("--talk", options.talks, "Print each rule's count, and each plant");
    CLI11_PARSE(app, argc, argv);
    // The library stays, so that no sequence has to load it anew.
    if (::dlopen(options.plugin.c_str(), RTLD_NOW | RTLD_LOCAL) == nullptr) {
        std::cerr << ::dlerror() << std::endl;
        return 2;
    }
    return Model::Campaign(options).run();
}
