#pragma once

#include <list>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tests/model/Context.h"

namespace Model {

/// The access lists of one type.
class AccessLists {
public:
    AccessLists(Context& context, Ref config, Family family)
        : context_(context), config_(std::move(config)), family_(family) {}
    void start();
    void changed(const Thing& entity, std::string_view attribute, const std::string& key);
    void die();

private:
    struct Sub {
        Id id;
        Ref config;
    };
    struct AccessList {
        Id id;
        std::string name;
        Ref config;
        std::optional<Sub> sub{};
    };
    void handleList(const std::string& name);
    void sweep(const std::map<std::string, std::vector<std::string>>& named);
    void create(const std::string& name, const Ref& config);
    void handleSub(AccessList& list);
    void handleRules(const AccessList& list, const Sub& sub);
    std::vector<unsigned> dscpValues(const Thing& sub) const;
    void dieSub(AccessList& list);
    void dieOne(AccessList& list);

    Context& context_;
    Ref config_;
    Family family_;
    Id id_ = kNobody;
    std::list<AccessList> children_;
};

}  // namespace Model
