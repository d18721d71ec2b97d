// The exported functions of vorntofDirectFWComm.dll, on the instrument of this process.

#include <cmath>
#include <limits>

#include "component/automation/convert.h"
#include "hosts/com/automation/variant_conversion.h"
#include "hosts/com/idl/vorntof_direct_fw_comm.h"
#include "tests/com/registered/registered_world.h"

namespace tof::com {
namespace {

class FirmwareDll : public RegisteredWorld {
 protected:
  FirmwareDll() : module_(LoadLibraryW(L"vorntofDirectFWComm.dll")) {
    EXPECT_NE(module_, nullptr) << "it is not beside the test program";
  }
  ~FirmwareDll() override { FreeLibrary(module_); }

  template <class Function>
  Function Export(const char* name) const {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module_, name)));
  }

  // For the abundance of the first calibrant, which comes about 14,975 ns after the start.
  float SearchFrom(float window_start_ns) const {
    return Export<decltype(&::BinarySearchForTargetAb)>("BinarySearchForTargetAb")(
        22, 100000.0F, 200000.0F, 1.0F, 0.1F, 20.0F, 160.0F, 1, window_start_ns,
        window_start_ns + 30.0F);
  }
  std::string SearchError() {
    return ToText(FromVariant(control->GetProperty("SearchError").get()));
  }

 private:
  HMODULE module_;
};

TEST_F(FirmwareDll, SearchesOnTheInstrumentOfTheRegisteredClasses) {
  const float volts = SearchFrom(14960.0F);
  EXPECT_GT(volts, 20.0F);
  EXPECT_LT(volts, 160.0F);
  EXPECT_GT(Number("Spectra"), 2);
  EXPECT_EQ(Calls("FirmwareLibrary.BinarySearchForTargetAb"), 1);
  EXPECT_EQ(SearchError(), "");
}

TEST_F(FirmwareDll, AnswersTheValueThatIsSetWhenASearchFails) {
  control->Call("OverrideSetpoint", "83=77.5");
  EXPECT_EQ(SearchFrom(std::numeric_limits<float>::quiet_NaN()), 77.5F);
  EXPECT_THAT(SearchError(), ::testing::HasSubstr("no peak lies between"));
  control->Call("FailCall", "FirmwareLibrary.BinarySearchForTargetAb", 1);
  EXPECT_EQ(SearchFrom(14960.0F), 77.5F);
  EXPECT_THAT(SearchError(), ::testing::HasSubstr("Planned failure"));
  SearchFrom(14960.0F);
  EXPECT_EQ(SearchError(), "");
}

TEST_F(FirmwareDll, SetsSetpointsAndSaysWhenItCanNot) {
  const auto set = Export<decltype(&::SetSetpointValue)>("SetSetpointValue");
  EXPECT_EQ(set(83, 42), 0);
  DispatchObject dictionary = CreateDispatchObject("vorninstrument.DataDictionary");
  DispatchObject table(ObjectIn(dictionary.Call("GetSetpointTable").get()), "the setpoint table");
  EXPECT_EQ(ToDouble(FromVariant(table.Call("GetSetpoint", 83).get())), 42.0);
  EXPECT_EQ(set(9999, 1), -1);
}

TEST_F(FirmwareDll, AnswersItsOneIntegerFunction) {
  EXPECT_EQ(Export<decltype(&::ReturnInt1)>("ReturnInt1")(7), 7);
}

}  // namespace
}  // namespace tof::com
