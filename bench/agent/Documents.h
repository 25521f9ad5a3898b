#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <string>

#include "QosOpenConfig/QosOpenConfigClassifierStateSm/ClassifierStateSm.h"
#include "agent/database/Database.h"
#include "agent/explain/Explainer.h"
#include "agent/openconfig/Configuration.h"
#include "bench/Event.h"

namespace QosBench {

/// An OpenConfig configuration of classifiers of eight terms with eight DSCP values each, all
/// attached; the database that it leads to, with the root machine over it; and that database's
/// text.
class Documents {
public:
    explicit Documents(std::size_t terms);

    std::size_t terms() const noexcept { return terms_; }

    /// Reads the configuration into a new database, as the device's configuration side would.
    void translate();
    /// Reads, checks and merges the database's text into a new database.
    void load();
    /// Both made a database, which goes here.
    void drop() { database_ = nullptr; }

    void printDatabase();
    void printOpenConfig();
    void printTable();

    /// Each edits the configuration, and takes that back the next time, from the text of the line
    /// to the changes that are published.
    void editTerm();
    void editGroup();
    void editTerms();
    void editWhatIsNotCarried();

    void explainTerm() { explain({"classifier-7", "term-3"}); }
    void explainClassifier() { explain({"classifier-7", {}}); }
    void printDifferences();

private:
    void explain(const QosAgent::Question& question);
    /// Applies one edit, every other time the second.
    void edit(std::string_view first, std::string_view second);

    std::size_t terms_;
    std::string configuration_;
    QosAgent::Database printed_;
    Orin::Ptr<QosOc::State::ClassifiersDir> state_;
    Orin::Ptr<QosOc::ClassifierStateSm> root_;
    QosAgent::Configuration edited_{printed_};
    bool isEdited_ = false;
    QosAgent::Explainer explainer_{printed_};
    std::string databaseText_;
    std::unique_ptr<QosAgent::Database> database_;
    std::string out_;
};

inline std::size_t termsOf(const Documents& documents) {
    return documents.terms();
}
inline constexpr Event<Documents> documentEvent(std::string_view name, Event<Documents>::Verb run) {
    return {.name = name, .run = run, .after = verb<Documents, &Documents::drop>, .share = termsOf};
}
inline constexpr std::array kDocumentEvents{
    documentEvent("document loaded, a term", verb<Documents, &Documents::load>),
    documentEvent("OpenConfig translated, a term", verb<Documents, &Documents::translate>),
    documentEvent("database printed, a term", verb<Documents, &Documents::printDatabase>),
    documentEvent("OpenConfig printed, a term", verb<Documents, &Documents::printOpenConfig>),
    documentEvent("table printed, a term", verb<Documents, &Documents::printTable>),
};

inline constexpr std::array kEditEvents{
    Event<Documents>{"term edited", verb<Documents, &Documents::editTerm>},
    Event<Documents>{"forwarding group added or removed", verb<Documents, &Documents::editGroup>},
    Event<Documents>{"8 terms added or removed", verb<Documents, &Documents::editTerms>},
    Event<Documents>{"part edited that is not carried",
                     verb<Documents, &Documents::editWhatIsNotCarried>},
};
/// Warmed up, as the first question builds the index.
inline constexpr std::array kExplainEvents{
    Event<Documents>{"term explained", verb<Documents, &Documents::explainTerm>},
    Event<Documents>{"classifier of 8 terms explained",
                     verb<Documents, &Documents::explainClassifier>},
    Event<Documents>{.name = "differences printed, a term",
                     .run = verb<Documents, &Documents::printDifferences>,
                     .share = termsOf},
};

}  // namespace QosBench
