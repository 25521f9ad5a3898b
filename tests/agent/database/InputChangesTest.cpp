#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "agent/database/InputChanges.h"

namespace QosAgent {
namespace {

using KindsAndPaths = std::vector<std::pair<InputChanges::Kind, std::string>>;

struct ReportRecorder : InputChanges::Listener {
    void inputChanged(InputChanges::Kind kind, std::string_view path) override {
        reports.emplace_back(kind, path);
    }
    KindsAndPaths reports;
};

TEST(InputChangesTest, reportsToEachListenerUntilItIsRemoved) {
    InputChanges changes;
    ReportRecorder first;
    ReportRecorder second;
    changes.listenerAdd(first);
    changes.report(InputChanges::Kind::created, "a");
    changes.listenerAdd(second);
    changes.report(InputChanges::Kind::changed, "a/b");
    changes.listenerDel(first);
    changes.report(InputChanges::Kind::removed, "a");
    EXPECT_EQ(first.reports, (KindsAndPaths{{InputChanges::Kind::created, "a"},
                                            {InputChanges::Kind::changed, "a/b"}}));
    EXPECT_EQ(second.reports, (KindsAndPaths{{InputChanges::Kind::changed, "a/b"},
                                             {InputChanges::Kind::removed, "a"}}));
}

TEST(InputChangesTest, hasAListenerOnceHoweverOftenItIsAdded) {
    InputChanges changes;
    ReportRecorder recorder;
    changes.listenerAdd(recorder);
    changes.listenerAdd(recorder);
    changes.report(InputChanges::Kind::created, "a");
    EXPECT_EQ(recorder.reports, (KindsAndPaths{{InputChanges::Kind::created, "a"}}));
    changes.listenerDel(recorder);
    EXPECT_FALSE(changes.hasListeners());
    changes.listenerDel(recorder);
    EXPECT_FALSE(changes.hasListeners());
}

}  // namespace
}  // namespace QosAgent
