// A trace component that comes to be in an odd way.
#include "component/trace/trace.h"
#include "tests/support/calibration_fixture.h"

namespace tof {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// Answers a request for an object with none, where an error would be usual.
class HostWithoutObjects : public fakes::FakeHost {
 public:
  using FakeHost::FakeHost;
  std::shared_ptr<LateBoundObject> CreateObject(const std::string&) override { return nullptr; }
};

class TraceCreation : public fakes::CalibrationFixture {};

TEST_F(TraceCreation, LeavesTheTraceOffWhenItIsAnsweredWithNoObject) {
  HostWithoutObjects host_without(journal);
  CreateTraceObject(host_without, "vorntofcaliblib");
  const TraceModule& module = CurrentModuleState().trace;
  EXPECT_EQ(module.component, nullptr);
  EXPECT_FALSE(module.on);
  EXPECT_THAT(module.call_stack, ElementsAre(Variant(std::int32_t{0})));
  TraceObj trace;
  trace.TraceEntry(9, "Routine");
  trace.TracePrint("a line");
  EXPECT_THAT(journal.entries(), IsEmpty());
}

}  // namespace
}  // namespace tof
