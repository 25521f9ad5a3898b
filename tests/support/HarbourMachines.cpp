#include "tests/support/HarbourMachines.h"

#include <stdexcept>
#include <string>

#include "platform/Vex/Derive.h"
#include "platform/Vex/Module.h"

namespace Harbour {
namespace {

constexpr const Vex::TypeRecord* kTypes[] = {
    &Cargo::kTypeRecord, &Tide::kTypeRecord,   &Ship::kTypeRecord,   &Port::kTypeRecord,
    &Board::kTypeRecord, &ShipSm::kTypeRecord, &TideSm::kTypeRecord, &PortSm::kTypeRecord,
};
constexpr Vex::Module kModule{"Harbour", kTypes};
const Vex::ModuleRegistration registration(kModule);

Orin::String cargoLine(const Orin::String& ship, const Orin::String& kind) {
    return std::string_view(std::string(ship.view()).append("/").append(kind.view()));
}

Orin::String text(std::uint32_t number) {
    return std::string_view(std::to_string(number));
}

}  // namespace

constinit const Vex::TypeRecord ShipSm::kTypeRecord = Vex::recordOf<ShipSm>();
constinit const Vex::TypeRecord TideSm::kTypeRecord = Vex::recordOf<TideSm>();
constinit const Vex::TypeRecord PortSm::kTypeRecord = Vex::recordOf<PortSm>();

ShipSm::ShipSm(const Orin::Ptr<const Ship>& ship, const Orin::Ptr<Board>& board)
    : ship_(ship), board_(board) {
    start();
}

void ShipSm::handleInitialized() {
    handleDraught();
    for (const auto& member : ship_->cargo())
        handleCargo(member.key);
    if (ship_->name() == "wreck") throw std::runtime_error("the ship is a wreck");
}

void ShipSm::handleDraught() {
    if (ship_->draught() == kOverload) throw std::runtime_error("overloaded");
    board_->lineIs(ship_->name(), text(ship_->draught()));
}

void ShipSm::handleCargo(const Orin::String& kind) {
    const Orin::String line = cargoLine(ship_->name(), kind);
    if (const Cargo* cargo = ship_->cargo().find(kind))
        board_->lineIs(line, text(cargo->tons));
    else
        board_->lineDel(line);
}

void ShipSm::doPrepareToDie() {
    for (const auto& member : ship_->cargo())
        board_->lineDel(cargoLine(ship_->name(), member.key));
    board_->lineDel(ship_->name());
}

TideSm::TideSm(const Orin::Ptr<const Tide>& tide, const Orin::Ptr<Board>& board)
    : tide_(tide), board_(board) {
    start();
}

void TideSm::handleInitialized() {
    handleLevel();
}

void TideSm::handleLevel() {
    board_->lineIs("tide", text(tide_->level()));
}

void TideSm::doPrepareToDie() {
    board_->lineDel("tide");
}

PortSm::BeaconWatch::BeaconWatch(Notifier notifier, PortSm& owner)
    : NotifieeConst(std::move(notifier)), owner_(owner) {}

void PortSm::BeaconWatch::onAttribute(Orin::AttributeId attributeId, const void*) {
    if (zombie() || attributeId != Tide::kLevel.id) return;
    owner_.board_->lineIs("beacon", text(notifier()->level()));
}

PortSm::PortSm(const Orin::Ptr<const Port>& port, const Orin::Ptr<const Tide>& weather,
               const Orin::Ptr<const Tide>& beacon, const Orin::Ptr<Board>& board)
    : port_(port), weather_(weather), beacon_(std::in_place, beacon, *this), board_(board) {
    start();
}

Orin::Ptr<ShipSm> PortSm::shipSmIs(const Orin::Ptr<const Ship>& ship,
                                   const Orin::Ptr<Board>& board) {
    return shipSm_.createOrKeep("ship", &Ship::name, ship, board);
}

Orin::Ptr<TideSm> PortSm::tideSmIs(const Orin::Ptr<const Tide>& tide,
                                   const Orin::Ptr<Board>& board) {
    return tideSm_.createOrReplace(tide, board);
}

void PortSm::handleInitialized() {
    if (!port_) return;
    for (const auto& member : port_->ship())
        handleShip(member.key);
    handleTide();
    handleSignal();
    changes_ = 0;
}

void PortSm::handleShip(const Orin::String& name) {
    ++changes_;
    shipSm_.reconcile(name, port_->ship(), [this](const auto& ship) { shipSmIs(ship, board_); });
}

void PortSm::handleTide() {
    ++changes_;
    tideSm_.reconcile(port_->tide(), [this](const auto& tide) { tideSmIs(tide, board_); });
}

void PortSm::handleSignal() {
    ++changes_;
    board_->lineIs("signal", std::string_view(Vex::enumText(port_->signal())));
}

void PortSm::handleWeather() {
    ++changes_;
    board_->lineIs("weather", text(weather_->level()));
}

}  // namespace Harbour
