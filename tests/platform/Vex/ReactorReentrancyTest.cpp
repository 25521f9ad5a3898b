#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/Vex/Derive.h"
#include "platform/Vex/NotifieeConst.h"
#include "platform/Vex/Reactor.h"
#include "tests/support/Harbour.h"
#include "tests/support/PublisherModel.h"
#include "tests/support/Reentrancy.h"

/// What holds for publishers holds for whatever subscribes to an entity: plain records, reactors
/// and machines. The entity lives until all were told.
namespace Harbour {
namespace {

using TestSupport::Differences;
using TestSupport::kNewcomers;
using TestSupport::Script;
using TestSupport::Verb;

/// Subscribers of a tide, which is told of by changing its level. `Crew` has them by number:
/// `enter`, `remove`, `clear`, `onIs`, `zombieIs`, `allAre` and `drop`.
template <class Crew>
class TideStage {
public:
    static const std::vector<Verb> kVerbs;
    static constexpr bool kDropsAct = false;

    TideStage(int members, Script& script) : script_(script), crew_(*this) {
        for (int member = 0; member < members; ++member)
            crew_.enter(member);
    }
    TideStage(const TideStage&) = delete;
    TideStage& operator=(const TideStage&) = delete;

    void tell() {
        if (held_) publish();
    }
    void perform(Verb verb, int target) {
        switch (verb) {
            case Verb::remove:
                return crew_.remove(target);
            case Verb::enterAgain:
                crew_.remove(target);
                return crew_.enter(target);
            case Verb::off:
                return crew_.onIs(target, false);
            case Verb::on:
                return crew_.onIs(target, true);
            case Verb::offAndOn:
                crew_.onIs(target, false);
                return crew_.onIs(target, true);
            case Verb::zombie:
                return crew_.zombieIs(target, true);
            case Verb::noZombie:
                return crew_.zombieIs(target, false);
            case Verb::enter:
                return crew_.enter(newcomer_++);
            case Verb::clear:
                return crew_.clear();
            case Verb::again:
                return publish();
            case Verb::dropWhole:
                held_ = nullptr;
                return;
            case Verb::dropOwner:
                return crew_.drop();
            case Verb::allOff:
                return crew_.allAre(false);
            default:
                return crew_.allAre(true);
        }
    }
    void told(int member) { script_.told(*this, member); }
    /// Valid whenever somebody performs: that is while it publishes.
    Tide& tide() { return *tide_; }

private:
    void publish() { tide_->levelIs(tide_->level() + 1); }

    Script& script_;
    Orin::Ptr<Tide> held_ = Tide::create();
    Tide* tide_ = held_.get();
    Crew crew_;
    int newcomer_ = kNewcomers;
};
template <class Crew>
const std::vector<Verb> TideStage<Crew>::kVerbs = Crew::verbs();

std::vector<Verb> commonVerbs(std::vector<Verb> more = {}) {
    more.insert(more.end(), {Verb::remove, Verb::enterAgain, Verb::off, Verb::on, Verb::offAndOn,
                             Verb::enter, Verb::clear, Verb::again, Verb::dropWhole});
    return more;
}

/// A crew of things of a type, each in memory of its own.
template <class Thing>
class CrewOf {
public:
    using Stage = TideStage<CrewOf>;

    explicit CrewOf(Stage& stage) : stage_(stage) {}
    static std::vector<Verb> verbs() { return Thing::verbs(); }
    void enter(int member) { things_.emplace(member, std::make_unique<Thing>(stage_, member)); }
    void remove(int member) { things_.erase(member); }
    void clear() {
        while (!things_.empty())
            things_.erase(things_.begin());
    }
    void onIs(int member, bool on) {
        if (const auto at = things_.find(member); at != things_.end()) at->second->onIs(on);
    }
    void zombieIs(int member, bool zombie) {
        if (const auto at = things_.find(member); at != things_.end()) at->second->zombieIs(zombie);
    }
    void allAre(bool) {}
    void drop() {}

private:
    Stage& stage_;
    std::map<int, std::unique_ptr<Thing>> things_;
};

/// A plain record, which does not hold the entity.
class Buoy : Orin::Subscriber {
public:
    Buoy(TideStage<CrewOf<Buoy>>& stage, int member) : stage_(stage), member_(member) {
        owner = this;
        dispatch = [](Orin::Publisher&, Orin::Subscriber& record, Orin::AttributeId,
                      const void*) noexcept {
            const auto& self = *static_cast<Buoy*>(record.owner);
            self.stage_.told(self.member_);
        };
        onIs(true);
    }
    ~Buoy() {
        if (isLinked()) onIs(false);
    }
    Buoy(const Buoy&) = delete;
    Buoy& operator=(const Buoy&) = delete;

    static std::vector<Verb> verbs() { return commonVerbs(); }
    void onIs(bool on) {
        Orin::Publisher& publisher = *stage_.tide().publisher();
        on ? publisher.subscriberAdd(*this) : publisher.subscriberDel(*this);
    }
    void zombieIs(bool) {}

private:
    TideStage<CrewOf<Buoy>>& stage_;
    int member_;
};

/// A reactor as machines have them inside.
class Gauge final : public Vex::NotifieeConst<Tide> {
public:
    Gauge(TideStage<CrewOf<Gauge>>& stage, int member)
        : NotifieeConst(Notifier::sharing(&stage.tide())), stage_(stage), member_(member) {}

    static std::vector<Verb> verbs() { return commonVerbs({Verb::zombie, Verb::noZombie}); }
    void onIs(bool on) { hasNotificationActiveIs(on); }
    void zombieIs(bool zombie) { vexDoZombieReactors(zombie); }
    void onAttribute(Orin::AttributeId, const void*) override {
        if (!zombie()) stage_.told(member_);
    }

private:
    TideStage<CrewOf<Gauge>>& stage_;
    int member_;
};

class Crew;

/// A machine that is known by the name of its ship, and watches the tide.
class MateSm final : public Vex::Reactor<MateSm> {
public:
    static constexpr std::string_view kTypeName = "Harbour::MateSm";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr auto fields() {
        return std::tuple{
            Vex::given("ship", 1, &MateSm::ship_),
            Vex::watched("tide", 2, &MateSm::tide_, tideDispatch),
        };
    }
    MateSm(const Orin::Ptr<const Ship>& ship, const Orin::Ptr<const Tide>& tide)
        : ship_(ship), tide_(tide) {
        start();
    }
    ~MateSm() override { stop(); }
    void handleInitialized() {}
    void handleLevel();
    static constexpr Orin::Dispatch tideDispatch =
        Vex::dispatchTo<MateSm, Vex::On<Tide::kLevel, &MateSm::handleLevel>>;

    static TideStage<Crew>* stage;

private:
    Orin::Ptr<const Ship> ship_;
    Vex::Watched<Tide> tide_;
};
constinit const Vex::TypeRecord MateSm::kTypeRecord = Vex::recordOf<MateSm>();
TideStage<Crew>* MateSm::stage = nullptr;

/// Owns the mates.
class CaptainSm final : public Vex::Reactor<CaptainSm> {
public:
    static constexpr std::string_view kTypeName = "Harbour::CaptainSm";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr auto fields() { return std::tuple{Vex::own("mate", 1, &CaptainSm::mates_)}; }
    using Mates = Vex::Children<Orin::String, MateSm, 5>;

    CaptainSm() { start(); }
    ~CaptainSm() override { stop(); }
    void handleInitialized() {}
    Mates& mates() { return mates_; }

private:
    Mates mates_;
};
constinit const Vex::TypeRecord CaptainSm::kTypeRecord = Vex::recordOf<CaptainSm>();

class Crew {
public:
    explicit Crew(TideStage<Crew>& stage) : stage_(stage) { MateSm::stage = &stage; }
    static std::vector<Verb> verbs() {
        return commonVerbs(
            {Verb::zombie, Verb::noZombie, Verb::dropOwner, Verb::allOff, Verb::allOn});
    }
    void enter(int member) {
        if (!captain_) return;
        const auto ship = Ship::create(nameOf(member));
        ship->draughtIs(static_cast<std::uint16_t>(member));
        captain_->mates().createOrKeep("mate", &Ship::name, Orin::Ptr<const Ship>(ship),
                                       Orin::Ptr<const Tide>::sharing(&stage_.tide()));
    }
    void remove(int member) {
        if (captain_) captain_->mates().remove(nameOf(member));
    }
    void clear() {
        if (captain_) captain_->mates().clear();
    }
    void onIs(int member, bool on) {
        if (MateSm* mate = mateAt(member)) mate->hasNotificationActiveIs(on);
    }
    void zombieIs(int member, bool zombie) {
        if (MateSm* mate = mateAt(member)) mate->vexDoZombieReactors(zombie);
    }
    void allAre(bool on) {
        if (captain_) captain_->hasNotificationActiveIs(on);
    }
    void drop() { captain_ = nullptr; }

private:
    static Orin::String nameOf(int member) { return std::string_view(std::to_string(member)); }
    MateSm* mateAt(int member) {
        return captain_ ? captain_->mates().get(nameOf(member)) : nullptr;
    }

    TideStage<Crew>& stage_;
    Orin::Ptr<CaptainSm> captain_ = CaptainSm::create();
};

void MateSm::handleLevel() {
    stage->told(ship_->draught());
}

template <class AnyCrew>
void expectAgreement() {
    const Differences none =
        TestSupport::differences<TideStage<AnyCrew>, TestSupport::PublisherModel<true>>(
            TestSupport::mostMembers());
    EXPECT_EQ(none.count, 0u) << none.first;
    EXPECT_GT(none.plays, 500u);
}

TEST(ReactorReentrancyTest, tellsPlainRecordsWhateverTwoOfThemDo) {
    expectAgreement<CrewOf<Buoy>>();
}

TEST(ReactorReentrancyTest, tellsReactorsWhateverTwoOfThemDo) {
    expectAgreement<CrewOf<Gauge>>();
}

TEST(ReactorReentrancyTest, tellsMachinesWhateverTwoOfThemDo) {
    expectAgreement<Crew>();
}

TEST(ReactorReentrancyTest, differsForAPublisherThatIsNotKeptAlive) {
    using Stage = TideStage<CrewOf<Buoy>>;
    EXPECT_EQ((TestSupport::differences<Stage, TestSupport::PublisherModel<false>>(2).first),
              "1 members; 0 drops the whole; 0 tells again; told: 0 0 | |; expected: 0 | |");
}

}  // namespace
}  // namespace Harbour
