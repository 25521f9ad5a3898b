#pragma once
// long: one schema, with an attribute of every kind

#include <array>
#include <cstdint>
#include <optional>
#include <span>

#include "platform/Orin/String.h"
#include "platform/Orin/Vector.h"
#include "platform/Ovk/UniqueId.h"
#include "platform/Vex/Entity.h"
#include "platform/Vex/FlatMap.h"
#include "platform/Vex/NamedEnum.h"

/// A toy schema with one attribute of every kind that the runtime knows. Its machines are in
/// `HarbourMachines.h`.
namespace Harbour {

enum class Signal : std::uint8_t { clear = 0, caution = 1, danger = 2 };

inline constexpr std::array kSignalNames{
    Vex::EnumName{0, "clear"},
    Vex::EnumName{1, "caution"},
    Vex::EnumName{2, "danger"},
};
constexpr std::span<const Vex::EnumName> enumNames(Signal) {
    return kSignalNames;
}

/// What a ship carries of one kind: a value record.
struct Cargo {
    static constexpr std::string_view kTypeName = "Harbour::Cargo";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr auto fields() {
        return std::tuple{
            Vex::key("kind", 1, &Cargo::kind),           Vex::field("tons", 2, &Cargo::tons),
            Vex::field("isSealed", 3, &Cargo::isSealed), Vex::field("hazard", 4, &Cargo::hazard),
            Vex::field("holds", 5, &Cargo::holds),       Vex::field("crates", 6, &Cargo::crates),
        };
    }

    Orin::String kind;
    std::uint32_t tons = 0;
    bool isSealed = false;
    std::optional<Signal> hazard = {};
    Orin::Vector<std::uint8_t> holds = {};
    Vex::FlatMap<std::uint32_t, std::uint32_t> crates = {};

    friend bool operator==(const Cargo&, const Cargo&) = default;
};

class Tide final : public Vex::Entity<Tide> {
public:
    static constexpr std::string_view kTypeName = "Harbour::Tide";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr Vex::Attribute<> kLevel{"level", 300};
    static constexpr auto fields() { return std::tuple{Vex::published(kLevel, &Tide::level_)}; }

    ~Tide() override;

    std::uint32_t level() const noexcept { return level_; }
    void levelIs(std::uint32_t level) { attributeIs(kLevel.id, level_, level); }

private:
    std::uint32_t level_ = 0;
};

class Ship final : public Vex::Entity<Ship> {
public:
    static constexpr std::string_view kTypeName = "Harbour::Ship";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr Vex::Attribute<> kDraught{"draught", 311};
    static constexpr Vex::Attribute<Orin::String> kCargo{"cargo", 312};
    static constexpr auto fields() {
        return std::tuple{
            Vex::key("name", 310, &Ship::name_),
            Vex::published(kDraught, &Ship::draught_),
            Vex::published(kCargo, &Ship::cargo_),
        };
    }
    using CargoByKind = Vex::HashMap2018<Orin::String, Cargo, Vex::seedOf("Ship.cargo")>;

    explicit Ship(const Orin::String& name);
    ~Ship() override;

    const Orin::String& name() const noexcept { return name_; }
    std::uint16_t draught() const noexcept { return draught_; }
    void draughtIs(std::uint16_t draught) { attributeIs(kDraught.id, draught_, draught); }
    const CargoByKind& cargo() const noexcept { return cargo_; }
    void cargoIs(const Cargo& cargo) { memberIs(kCargo.id, cargo_, cargo.kind, cargo); }
    void cargoDel(const Orin::String& kind) { memberDel(kCargo.id, cargo_, kind); }

private:
    Orin::String name_;
    std::uint16_t draught_ = 0;
    CargoByKind cargo_;
};

/// The root of the toy inputs.
class Port final : public Vex::Entity<Port> {
public:
    static constexpr std::string_view kTypeName = "Harbour::Port";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr Vex::Attribute<Orin::String> kShip{"ship", 320};
    static constexpr Vex::Attribute<> kTide{"tide", 321};
    static constexpr Vex::Attribute<> kIsOpen{"isOpen", 322};
    static constexpr Vex::Attribute<> kSignal{"signal", 323};
    static constexpr Vex::Attribute<Ovk::UniqueId> kManifest{"manifest", 324};
    static constexpr auto fields() {
        return std::tuple{
            Vex::published(kShip, &Port::ship_),         Vex::published(kTide, &Port::tide_),
            Vex::published(kIsOpen, &Port::isOpen_),     Vex::published(kSignal, &Port::signal_),
            Vex::published(kManifest, &Port::manifest_),
        };
    }
    using ShipByName = Vex::HashMap2018<Orin::String, Orin::Ptr<Ship>, Vex::seedOf("Port.ship")>;
    using CargoById = Vex::OrderedMap<Ovk::UniqueId, Cargo, Vex::seedOf("Port.manifest")>;

    ~Port() override;

    const ShipByName& ship() const noexcept { return ship_; }
    /// The ship of that name, made if it is not there.
    Orin::Ptr<Ship> shipIs(const Orin::String& name);
    void shipDel(const Orin::String& name) { memberDel(kShip.id, ship_, name); }
    const Orin::Ptr<Tide>& tide() const noexcept { return tide_; }
    void tideIs(const Orin::Ptr<Tide>& tide) { attributeIs(kTide.id, tide_, tide); }
    bool isOpen() const noexcept { return isOpen_; }
    void isOpenIs(bool isOpen) { attributeIs(kIsOpen.id, isOpen_, isOpen); }
    Signal signal() const noexcept { return signal_; }
    void signalIs(Signal signal) { attributeIs(kSignal.id, signal_, signal); }
    const CargoById& manifest() const noexcept { return manifest_; }
    void manifestIs(Ovk::UniqueId id, const Cargo& cargo) {
        memberIs(kManifest.id, manifest_, id, cargo);
    }
    void manifestDel(Ovk::UniqueId id) { memberDel(kManifest.id, manifest_, id); }

private:
    ShipByName ship_;
    Orin::Ptr<Tide> tide_;
    bool isOpen_ = false;
    Signal signal_ = Signal::clear;
    CargoById manifest_;
};

/// What the toy machines write: one line of text by name.
class Board final : public Vex::Entity<Board> {
public:
    static constexpr std::string_view kTypeName = "Harbour::Board";
    static const Vex::TypeRecord kTypeRecord;
    static constexpr Vex::Attribute<Orin::String> kLine{"line", 330};
    static constexpr auto fields() { return std::tuple{Vex::published(kLine, &Board::line_)}; }
    using LineByName = Vex::HashMap2018<Orin::String, Orin::String, Vex::seedOf("Board.line")>;

    ~Board() override;

    const LineByName& line() const noexcept { return line_; }
    void lineIs(const Orin::String& name, const Orin::String& text) {
        memberIs(kLine.id, line_, name, text);
    }
    void lineDel(const Orin::String& name) { memberDel(kLine.id, line_, name); }

private:
    LineByName line_;
};

}  // namespace Harbour
