#pragma once

#include "platform/Orin/String.h"
#include "platform/Qos/ClassMapMatchOption.h"
#include "platform/Vex/Entity.h"

namespace Qos {

/// A class map as the device applies it.
class PLATFORM_API ClassMapStatus final : public Vex::Entity<ClassMapStatus> {
public:
    static constexpr std::string_view kTypeName = "Qos::ClassMapStatus";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr Vex::Attribute<ClassMapMatchOption> kMatch{"match", 262};
    static constexpr auto fields() {
        return std::tuple{
            Vex::key("cmapName", 261, &ClassMapStatus::cmapName_),
            Vex::published(kMatch, &ClassMapStatus::match_),
        };
    }
    /// The name of the matched object, such as an access list, by match option; may be empty.
    using Match =
        Vex::HashMap2018<ClassMapMatchOption, Orin::String, Vex::seedOf("ClassMapStatus.match")>;

    explicit ClassMapStatus(const Orin::String& cmapName);
    ~ClassMapStatus() override;

    const Orin::String& cmapName() const noexcept { return cmapName_; }
    const Match& match() const noexcept { return match_; }
    void matchIs(ClassMapMatchOption option, const Orin::String& matched);
    void matchDel(ClassMapMatchOption option);

private:
    Orin::String cmapName_;
    Match match_;
};

}  // namespace Qos
