#pragma once

#include <compare>
#include <cstdint>
#include <optional>

#include "platform/Orin/Export.h"
#include "platform/Orin/String.h"
#include "platform/QosOc/ClassifierType.h"
#include "platform/Vex/KeyTraits.h"
#include "platform/Vex/Row.h"
#include "platform/Vex/Trace.h"

namespace QosOc::Config {

/// Name and address family of a classifier: `classifier/config` of openconfig-qos. Ordered by name,
/// then by type, an unset type first.
class PLATFORM_API ClassifierConfig {
public:
    static constexpr std::string_view kTypeName = "QosOc::Config::ClassifierConfig";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr auto fields() {
        return std::tuple{
            Vex::key("name", 1, &ClassifierConfig::name),
            Vex::field("type", 2, &ClassifierConfig::type),
        };
    }

    Orin::String name;
    std::optional<Classifier::Type> type;

    std::uint32_t hash(std::uint32_t seed) const noexcept {
        const std::uint64_t family = type ? static_cast<std::uint64_t>(*type) + 1 : 0;
        return name.hash() ^ Vex::mixed(family ^ seed);
    }
    bool isEq(const ClassifierConfig& other) const { return *this == other; }
    friend auto operator<=>(const ClassifierConfig&, const ClassifierConfig&) = default;
};

/// `NAME (TYPE)`, the bare name without a type.
PLATFORM_API Vex::TraceHelper& operator<<(Vex::TraceHelper& line, const ClassifierConfig& config);

}  // namespace QosOc::Config
