#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "agent/json/Faults.h"
#include "platform/Orin/TextHash.h"

namespace QosAgent {

/// Something in a document that the agent does not carry, once for each kind, with its first place.
struct Warning {
    std::size_t offset;
    std::string message;

    bool operator==(const Warning&) const = default;
};

/// What reading a document brings to light besides what it says.
class Findings {
public:
    /// Keeps the first `mostFaults` faults.
    explicit Findings(std::size_t mostFaults = 1) : faults_(mostFaults) {}

    /// Adds a fault, which refuses the document.
    void refuse(std::size_t offset, std::string message);
    /// Makes each warning a fault, behind the others.
    void refuseWarnings();
    /// The warning if it is the first of its kind, to be added to; else null. Valid until the next.
    Warning* passOver(std::size_t offset, const std::string& kind);
    /// The same for a `state` container, wherever it is.
    void passOverState(std::size_t offset);

    /// While it lives, what is passed over is a condition of that term of that classifier: the
    /// warning names the first such term, and counts them.
    class OfTerm {
    public:
        OfTerm(Findings& findings, std::string_view classifier, std::string_view term);
        OfTerm(const OfTerm&) = delete;
        OfTerm& operator=(const OfTerm&) = delete;
        ~OfTerm() { findings_.term_ = nullptr; }

    private:
        friend class Findings;
        Findings& findings_;
        std::string_view classifier_;
        std::string_view term_;
        std::size_t number_;
    };

    /// In the order in which they were found.
    const Faults& faults() const { return faults_; }
    /// In ascending order of place.
    std::vector<Warning> warnings() const;

private:
    struct Kind {
        std::size_t warning;    ///< its place among the warnings
        std::string firstTerm;  ///< empty: the kind is no condition of terms
        std::size_t terms = 0;  ///< how many terms have it
        std::size_t lastTerm = 0;
    };

    void count(Kind& kind) const;

    Faults faults_;
    std::vector<Warning> warnings_;
    std::unordered_map<std::string, Kind, Orin::TextHash> kinds_;
    const OfTerm* term_ = nullptr;
    std::size_t terms_ = 0;
};

}  // namespace QosAgent
