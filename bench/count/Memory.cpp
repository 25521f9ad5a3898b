#include "bench/count/Memory.h"

#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "bench/QosOpenConfig/Device.h"
#include "bench/count/Allocations.h"
#include "bench/floor/LeanDevice.h"
#include "platform/OvSlab/Tracker.h"

namespace QosBench {
namespace {

constexpr std::size_t kTermsEach = 8;
constexpr std::size_t kDscpsEach = 8;

/// What the heap gave out since it was asked last.
class Scale {
public:
    std::size_t bytes() {
        const std::size_t before = std::exchange(before_, heapBytes());
        return before_ - before;
    }

private:
    std::size_t before_ = heapBytes();
};

void print(const char* side, const std::string& what, std::size_t bytes, std::size_t share = 1) {
    std::printf("bytes\t%s\t%s\t%.1f\n", side, what.c_str(),
                static_cast<double>(bytes) / static_cast<double>(share));
}

Orin::Vector<std::uint8_t> dscpsOf(std::size_t term) {
    Orin::Vector<std::uint8_t> dscps;
    for (std::size_t dscp = 0; dscp != kDscpsEach; ++dscp)
        dscps.push(static_cast<std::uint8_t>((term + dscp) % 64));
    return dscps;
}

/// Terms and classifiers as they are published, with texts of their own.
void weighState(std::size_t terms) {
    namespace Classifier = QosOc::Classifier;
    Scale scale;
    const auto state = QosOc::State::ClassifiersDir::create();
    const std::size_t classifiers = terms / kTermsEach;
    for (std::size_t number = 0; number != classifiers; ++number) {
        const Orin::String name("classifier-" + std::to_string(number));
        QosOc::addClassifier(state, name, Classifier::Type::IPV4);
        state->classifier(name)->termsIs();
    }
    print("ours", "a classifier", scale.bytes(), classifiers);
    const Orin::String group("group");
    for (const auto& member : state->classifier())
        for (std::size_t term = 0; term != kTermsEach; ++term) {
            const Orin::String id("term-" + std::to_string(term));
            auto dscps = dscpsOf(term);
            QosOc::addClassifierTermCondition(state, member.key, Classifier::Type::IPV4, id, dscps);
            QosOc::addClassifierTermAction(state, member.key, Classifier::Type::IPV4, id, group);
        }
    print("ours", "a term of 8 DSCPs", scale.bytes(), classifiers * kTermsEach);
}

void weighLeanState(std::size_t terms) {
    std::vector<std::unique_ptr<const NameText>> texts;
    texts.reserve(terms + terms / kTermsEach);
    Scale scale;
    ChainMap<Name, LeanClassifier> state;
    const auto nameOf = [&](const std::string& text) {
        const auto hash = static_cast<std::uint32_t>(std::hash<std::string>()(text));
        return texts.emplace_back(new NameText{text, hash}).get();
    };
    const std::size_t classifiers = terms / kTermsEach;
    for (std::size_t number = 0; number != classifiers; ++number)
        state[nameOf("classifier-" + std::to_string(number))];
    print("floor", "a classifier", scale.bytes(), classifiers);
    state.each([&](Name, LeanClassifier& classifier) {
        for (std::size_t term = 0; term != kTermsEach; ++term)
            classifier.terms[nameOf("term-" + std::to_string(term))].dscps = dscpsOf(term);
    });
    print("floor", "a term of 8 DSCPs", scale.bytes(), classifiers * kTermsEach);
}

/// The size of an object of each machine type, and all that came with the machines: records,
/// collection nodes and buckets, and the registry.
void weighDevice(std::size_t terms) {
    Scale whole;
    Scale scale;
    Device device(terms / kTermsEach, kTermsEach);
    print("ours", "database, a term", scale.bytes(), terms);
    device.writeState();
    scale.bytes();
    device.start();
    print("ours", "a machine", scale.bytes(), device.machines());
    print("ours", "in all", whole.bytes());
    for (const auto* tracker = OvSlab::Tracker::first(); tracker != nullptr;
         tracker = tracker->next())
        if (tracker->typeName().ends_with("Sm") && tracker->live() != 0)
            print("ours", "object of " + std::string(tracker->typeName()), tracker->objectSize());
}

void weighLeanDevice(std::size_t terms) {
    Scale whole;
    Scale scale;
    LeanDevice device(terms / kTermsEach, kTermsEach);
    print("floor", "database, a term", scale.bytes(), terms);
    device.start();
    print("floor", "in all", whole.bytes());
}

}  // namespace

void countMemory(std::size_t terms) {
    weighState(terms);
    weighLeanState(terms);
    weighDevice(terms);
    weighLeanDevice(terms);
}

}  // namespace QosBench
