#include "tests/model/Play.h"

#include <memory>

#include "tests/model/Agent.h"
#include "tests/model/Plugin.h"
#include "tests/model/Restart.h"

namespace Model {
namespace {

/// What should be: the database, the plug-in on it and what it publishes and says.
class Expected {
public:
    Expected(bool isTraced, Wrong wrong) : trace_(isTraced), state_(trace_, wrong), wrong_(wrong) {}

    void load(const Json& document) {
        for (const auto& [mount, value] : document.members) {
            if (mount != kClassifierState.path)
                inputs_.merge(mount, value);
            else
                state_.published = publishedFrom(*Inputs::built(*kClassifierState.type, "", value));
        }
    }
    void start() {
        plugin_ = std::make_unique<Plugin>(inputs_, state_, trace_, wrong_);
        inputs_.listenerIs(
            [this](const Thing& entity, std::string_view attribute, const std::string& key) {
                plugin_->changed(entity, attribute, key);
            });
        plugin_->start();
    }
    void tearDown() {
        inputs_.listenerIs(nullptr);
        plugin_.reset();
        if (wrong_ != Wrong::teardownClearsActions) return;
        for (PublishedClassifier& classifier : state_.published)
            if (classifier.terms)
                for (PublishedTerm& term : *classifier.terms)
                    term.targetGroup.reset();
    }
    void apply(const Change& change) {
        if (change.verb != Change::Verb::restart) return inputs_.apply(change);
        tearDown();
        start();
    }
    std::vector<Line> takeLines() {
        std::vector<Line> lines = trace_.take();
        if (wrong_ == Wrong::unescapedText)
            for (Line& line : lines)
                std::erase(line.rest, '\\');
        if (wrong_ == Wrong::lineLeftOut && lines.size() > 3) lines.pop_back();
        if (wrong_ == Wrong::lineTwice && lines.size() > 3) lines.push_back(lines.back());
        return lines;
    }
    const Published& published() const { return state_.published; }
    const std::vector<std::string>& deleted() const { return state_.deleted; }
    const Inputs& inputs() const { return inputs_; }

private:
    Inputs inputs_;
    Trace trace_;
    State state_;
    Wrong wrong_;
    std::unique_ptr<Plugin> plugin_;
};

/// Agent and model side by side.
class Player {
public:
    Player(const std::string& plugin, Wrong wrong, bool isTraced, Tally& tally)
        : plugin_(plugin), tally_(tally), seen_(isTraced), expected_(isTraced, wrong) {}

    bool start(const Json& document) {
        const std::string refused = seen_.load(document.written());
        if (!refused.empty()) return fails("refusal", "the document", refused);
        expected_.load(document);
        const std::string unusable = seen_.start(plugin_);
        if (!unusable.empty()) return fails("refusal", "the plug-in", unusable);
        expected_.start();
        return agrees("the document");
    }
    bool apply(const Change& change) {
        const std::string line = change.line();
        ++tally_.lines;
        const bool isRestart = change.verb == Change::Verb::restart;
        const Published before = isRestart ? expected_.published() : Published();
        const std::string refused = seen_.apply(line);
        if (!refused.empty()) return fails("refusal", line, refused);
        expected_.apply(change);
        if (isRestart) matcher_ = {};
        if (!agrees(line)) return false;
        if (!isRestart) return true;
        ++tally_.restarts;
        return explains(before, expected_.deleted(), line, Start::overWhatWasLeft);
    }
    /// From here on nobody may react to anything, or take anything back.
    bool tearDown() {
        ++tally_.teardowns;
        before_ = seen_.stateText();
        seen_.tearDown();
        expected_.tearDown();
        return isSilent("the teardown");
    }
    bool applyAfterwards(const Change& change) {
        ++tally_.lines;
        const std::string line = change.line();
        const std::string refused = seen_.apply(line);
        if (!refused.empty()) return fails("refusal", line, refused);
        expected_.apply(change);
        return isSilent("the teardown and " + line);
    }
    /// A plug-in that starts with nothing over the same inputs; `incremental` is what one published
    /// that saw them come about.
    bool startsAnew(const Published& incremental, const std::vector<std::string>& deleted,
                    const Json& document) {
        return start(document) &&
               explains(incremental, deleted, "a start over nothing", Start::overNothing);
    }

    const Expected& expected() const { return expected_; }
    std::optional<Failure> failure;

private:
    bool fails(std::string kind, std::string where, std::string what) {
        failure = Failure{std::move(kind), std::move(where), std::move(what)};
        return false;
    }
    bool agrees(const std::string& where) {
        const std::string lines = matcher_.difference(expected_.takeLines(), seen_.takeLines());
        const Published published = seen_.published();
        if (published != expected_.published())
            return fails("state", where,
                         "expected:\n" + shown(expected_.published()) + "seen:\n" +
                             shown(published) + lines);
        return lines.empty() || fails("trace", where, lines);
    }
    bool isSilent(const std::string& where) {
        const std::vector<std::string> lines = seen_.takeLines();
        if (!lines.empty()) return fails("teardown", where, "still traces: " + lines.front());
        if (seen_.stateText() != before_)
            return fails("teardown", where, "was:\n" + before_ + "\nis:\n" + seen_.stateText());
        if (seen_.published() != expected_.published())
            return fails("teardown", where,
                         "expected:\n" + shown(expected_.published()) + "seen:\n" +
                             shown(seen_.published()));
        return true;
    }
    bool explains(const Published& before, const std::vector<std::string>& deleted,
                  const std::string& where, Start start) {
        for (const Difference& each :
             differencesOf(before, expected_.published(), expected_.inputs(), deleted, start)) {
            ++tally_.differences[each.kind];
            if (each.kind == kUnexplained) return fails("restart", where, each.what);
        }
        return true;
    }

    const std::string& plugin_;
    Tally& tally_;
    SeenAgent seen_;
    Expected expected_;
    LineMatcher matcher_;
    std::string before_;
};

}  // namespace

std::optional<Failure> play(const Story& story, const std::string& plugin, Wrong wrong,
                            Tally& tally) {
    ++tally.stories;
    Published incremental;
    std::vector<std::string> deleted;
    Json document;
    {
        Player player(plugin, wrong, story.isTraced, tally);
        if (!player.start(story.document)) return player.failure;
        for (const Change& change : story.lines)
            if (!player.apply(change)) return player.failure;
        incremental = player.expected().published();
        deleted = player.expected().deleted();
        document = player.expected().inputs().document();
        if (!player.tearDown()) return player.failure;
        for (const Change& change : story.afterlife)
            if (!player.applyAfterwards(change)) return player.failure;
    }
    Player anew(plugin, wrong, false, tally);
    anew.startsAnew(incremental, deleted, document);
    return anew.failure;
}

Story prefix(const Story& story, std::size_t lines) {
    Story shorter = story;
    shorter.lines.resize(lines);
    return shorter;
}

}  // namespace Model
