// A call over a tape reaches the real object with its arguments in their order.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "hosts/recording/recorder.h"
#include "hosts/recording/recording.h"
#include "hosts/recording/taped_configuration.h"
#include "hosts/recording/taped_mass_time.h"
#include "instruments/masstime/stored_peak_list.h"
#include "tests/hosts/temporary_folder.h"

namespace tof::recording {
namespace {

struct NotingFirmware : FirmwareLibrary {
  float BinarySearchForTargetAb(std::int32_t argument1, float target_min_abundance,
                                float target_max_abundance, float speed_up_factor, float argument5,
                                float argument6, float argument7, std::int32_t argument8,
                                float window_start_ns, float window_end_ns) override {
    arguments = {static_cast<float>(argument1),
                 target_min_abundance,
                 target_max_abundance,
                 speed_up_factor,
                 argument5,
                 argument6,
                 argument7,
                 static_cast<float>(argument8),
                 window_start_ns,
                 window_end_ns};
    return 61.5F;
  }
  std::vector<float> arguments;
};

TEST(TapedFirmwareLibrary, HandsItsTenArgumentsOn) {
  const testing::TemporaryFolder folder;
  RecordingFile file(folder / "recording", "a test");
  Recorder recorder(file);
  const auto firmware = std::make_shared<NotingFirmware>();
  TapedFirmwareLibrary taped(recorder, ObjectNumber{7}, firmware);
  EXPECT_EQ(taped.BinarySearchForTargetAb(1, 2.5F, 3.5F, 4.5F, 5.5F, 6.5F, 7.5F, 8, 9.5F, 10.5F),
            61.5F);
  EXPECT_THAT(firmware->arguments,
              ::testing::ElementsAre(1.0F, 2.5F, 3.5F, 4.5F, 5.5F, 6.5F, 7.5F, 8.0F, 9.5F, 10.5F));
  file.Close(recorder.calls());
  EXPECT_THAT(testing::BytesOf(folder / "recording"),
              ::testing::HasSubstr("\"do\":\"FirmwareLibrary.BinarySearchForTargetAb\",\"with\":"
                                   "[1,2.5,3.5,4.5,5.5,6.5,7.5,8,9.5,10.5],\"gives\":61.5"));
}

// Every operation of a list is recorded by its name.
TEST(TapedPeakList, IsRecordedByTheNamesOfItsOperations) {
  const testing::TemporaryFolder folder;
  RecordingFile file(folder / "recording", "a test");
  Recorder recorder(file);
  TapedPeakList list(recorder, ObjectNumber{7}, std::make_shared<masstime::StoredPeakList>());
  PeakRecord record;
  record.height = 2.5;
  list.Initialize();
  list.Add(record);
  record.height = 3.5;
  list.SetRecord(0, record);
  EXPECT_EQ(list.GetRecord(0).height, 3.5);
  list.PreparePeakList(5, 0);
  EXPECT_EQ(list.Count(), 1);
  file.Close(recorder.calls());
  std::vector<std::string> names;
  for (const Entry& entry : ReadRecording(folder / "recording").entries)
    names.push_back(entry.name);
  EXPECT_THAT(names, ::testing::ElementsAre("PeakList.Initialize", "PeakList.Add",
                                            "PeakList.SetRecord", "PeakList.GetRecord",
                                            "PeakList.PreparePeakList", "PeakList.Count"));
}

}  // namespace
}  // namespace tof::recording
