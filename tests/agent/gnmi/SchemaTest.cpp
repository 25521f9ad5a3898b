#include <gmock/gmock.h>
#include <gnmi.pb.h>
#include <google/protobuf/descriptor.pb.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "agent/configuration/ModelSchema.h"
#include "agent/gnmi/Schema.h"
#include "tests/agent/gnmi/Trees.h"
#include "tests/agent/support/TemporaryFolder.h"

namespace QosAgent::Gnmi {
namespace {

namespace pb = google::protobuf;

TEST(SchemaTest, hasEachListWithItsKey) {
    const SchemaNode& term = schemaNode("/qos/classifiers/classifier/terms/term");
    EXPECT_TRUE(term.isList());
    EXPECT_EQ(term.key(), "id");
    EXPECT_EQ(term.child("id")->side(), Side::key);
    EXPECT_EQ(term.depth(), 5u);
    EXPECT_EQ(
        schemaNode("/qos/scheduler-policies/scheduler-policy/schedulers/scheduler/sequence").type(),
        "uint32");
}

TEST(SchemaTest, repeatsConfigInStateAndKnowsWhatIsServed) {
    const SchemaNode& ipv4 = schemaNode("/qos/classifiers/classifier/terms/term/conditions/ipv4");
    EXPECT_TRUE(ipv4.child("state")->child("dscp-set")->isServed());
    EXPECT_EQ(ipv4.child("state")->child("dscp-set")->kind(), NodeKind::leafList);
    EXPECT_FALSE(ipv4.child("state")->child("protocol")->isServed());
    EXPECT_EQ(ipv4.child("state")->child("protocol")->side(), Side::state);
    EXPECT_TRUE(ipv4.child("config")->child("protocol")->isServed());
}

/// The lists at or below a node that the configuration knows otherwise, or not at all.
void addDiffering(const SchemaNode& node, const ModelSchema* known, Lines& found) {
    const std::string_view key = known == nullptr ? "" : known->key;
    if (node.isList() && key != node.key()) found.emplace_back(node.name());
    for (const auto& child : node.children())
        if (!child->isLeaf()) addDiffering(*child, childOf(known, child->name()), found);
}

TEST(SchemaTest, hasTheListsThatTheConfigurationHas) {
    Lines differing;
    addDiffering(schemaRoot(), &ModelSchema::root(), differing);
    EXPECT_THAT(differing, testing::IsEmpty());
}

TEST(SchemaTest, knowsWhatIsBelowWhat) {
    EXPECT_TRUE(schemaNode("/qos/queues/queue").isAtOrBelow(schemaNode("/qos")));
    EXPECT_TRUE(schemaNode("/qos").isAtOrBelow(schemaRoot()));
    EXPECT_FALSE(schemaNode("/qos").isAtOrBelow(schemaNode("/qos/queues")));
    EXPECT_FALSE(schemaNode("/qos/queues/queue").isAtOrBelow(schemaNode("/qos/classifiers")));
}

/// The definitions in a folder, which import each other by the paths of the public repository.
const pb::FileDescriptor* read(const std::filesystem::path& folder, pb::DescriptorPool& pool) {
    const TemporaryFolder work;
    const auto extensions = work / "github.com/openconfig/gnmi/proto/gnmi_ext";
    create_directories(extensions);
    copy_file(folder / "gnmi_ext.proto", extensions / "gnmi_ext.proto");
    copy_file(folder / "gnmi.proto", work / "gnmi.proto");
    const std::string command =
        "cd " + work.path().string() +
        " && protoc -I. --include_imports --descriptor_set_out=all gnmi.proto";
    EXPECT_EQ(std::system(command.c_str()), 0);
    pb::FileDescriptorSet files;
    std::ifstream in(work / "all", std::ios::binary);
    EXPECT_TRUE(files.ParseFromIstream(&in));
    for (const pb::FileDescriptorProto& file : files.file())
        pool.BuildFile(file);
    return pool.FindFileByName("gnmi.proto");
}

void expectSameFields(const pb::Descriptor& ours, const pb::Descriptor& theirs) {
    EXPECT_EQ(ours.full_name(), theirs.full_name());
    for (int at = 0; at < ours.field_count(); ++at) {
        const pb::FieldDescriptor& field = *ours.field(at);
        const pb::FieldDescriptor* other = theirs.FindFieldByNumber(field.number());
        ASSERT_NE(other, nullptr) << field.full_name();
        EXPECT_EQ(field.full_name(), other->full_name());
        EXPECT_EQ(field.type(), other->type()) << field.full_name();
        EXPECT_EQ(field.label(), other->label()) << field.full_name();
        EXPECT_EQ(field.real_containing_oneof() == nullptr,
                  other->real_containing_oneof() == nullptr)
            << field.full_name();
        if (field.message_type() != nullptr) {
            EXPECT_EQ(field.message_type()->full_name(), other->message_type()->full_name());
        }
    }
}

void expectSameValues(const pb::EnumDescriptor& ours, const pb::EnumDescriptor& theirs) {
    for (int at = 0; at < ours.value_count(); ++at) {
        const auto* other = theirs.FindValueByName(ours.value(at)->name());
        ASSERT_NE(other, nullptr) << ours.value(at)->full_name();
        EXPECT_EQ(ours.value(at)->number(), other->number()) << ours.value(at)->full_name();
    }
}

void expectSame(const pb::FileDescriptor& ours, const pb::FileDescriptor& theirs) {
    EXPECT_EQ(ours.package(), theirs.package());
    for (int at = 0; at < ours.message_type_count(); ++at) {
        const pb::Descriptor& message = *ours.message_type(at);
        const pb::Descriptor* other = theirs.FindMessageTypeByName(message.name());
        ASSERT_NE(other, nullptr) << message.full_name();
        expectSameFields(message, *other);
        for (int inner = 0; inner < message.enum_type_count(); ++inner)
            expectSameValues(*message.enum_type(inner),
                             *other->FindEnumTypeByName(message.enum_type(inner)->name()));
    }
    for (int at = 0; at < ours.enum_type_count(); ++at)
        expectSameValues(*ours.enum_type(at),
                         *theirs.FindEnumTypeByName(ours.enum_type(at)->name()));
}

TEST(ProtoTest, isThePublicDefinitionAsFarAsItGoes) {
    const std::filesystem::path folder = GNMI_DIR;
    if (!exists(folder / "gnmi.proto")) GTEST_SKIP() << "no public definition in " << folder;
    pb::DescriptorPool pool;
    const pb::FileDescriptor* theirs = read(folder, pool);
    ASSERT_NE(theirs, nullptr);
    const pb::FileDescriptor& ours = *gnmi::GetRequest::descriptor()->file();
    expectSame(ours, *theirs);
    expectSame(*ours.FindMessageTypeByName("GetRequest")
                    ->FindFieldByName("extension")
                    ->message_type()
                    ->file(),
               *theirs->FindMessageTypeByName("GetRequest")
                    ->FindFieldByName("extension")
                    ->message_type()
                    ->file());
    const pb::ServiceDescriptor& service = *ours.service(0);
    ASSERT_EQ(service.method_count(), theirs->service(0)->method_count());
    for (int at = 0; at < service.method_count(); ++at) {
        EXPECT_EQ(service.method(at)->full_name(), theirs->service(0)->method(at)->full_name());
        EXPECT_EQ(service.method(at)->input_type()->full_name(),
                  theirs->service(0)->method(at)->input_type()->full_name());
        EXPECT_EQ(service.method(at)->client_streaming(),
                  theirs->service(0)->method(at)->client_streaming());
    }
}

}  // namespace
}  // namespace QosAgent::Gnmi
