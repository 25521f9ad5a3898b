#include "tests/support/Harbour.h"

#include "platform/Vex/Derive.h"

namespace Harbour {

constinit const Vex::TypeRecord Cargo::kTypeRecord = Vex::recordOf<Cargo>();
constinit const Vex::TypeRecord Tide::kTypeRecord = Vex::recordOf<Tide>();
constinit const Vex::TypeRecord Ship::kTypeRecord = Vex::recordOf<Ship>();
constinit const Vex::TypeRecord Port::kTypeRecord = Vex::recordOf<Port>();
constinit const Vex::TypeRecord Board::kTypeRecord = Vex::recordOf<Board>();

Tide::~Tide() = default;

Ship::Ship(const Orin::String& name) : name_(name) {}
Ship::~Ship() = default;

Port::~Port() = default;

Orin::Ptr<Ship> Port::shipIs(const Orin::String& name) {
    if (const Orin::Ptr<Ship>* held = ship_.find(name)) return *held;
    const Orin::Ptr<Ship> made = Ship::create(name);
    memberIs(kShip.id, ship_, name, made);
    return made;
}

Board::~Board() = default;

}  // namespace Harbour
