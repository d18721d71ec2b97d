#include <vorninstrument.h>

#include <utility>

#include "tests/com/com_world.h"

namespace tof::com {
namespace {

using ::testing::HasSubstr;

class Creation : public ComWorld {
 protected:
  // The error that creating a calibrator leaves behind.
  AutomationError CreationError() {
    ComPtr<_TofCalibrator> calibrator;
    const HRESULT result = Create(calibrator);
    EXPECT_TRUE(FAILED(result));
    return ErrorLeftBy(result);
  }
};

TEST_F(Creation, MakesTheCollaboratorsInTheirOrder) {
  RegisterInstrument();
  const auto calibrator = Created();
  EXPECT_THAT(journal.Only({"Create.", "DataDictionary.", "AcqController."}),
              ::testing::ElementsAre(
                  "Create.DataDictionary", "DataDictionary.Initialize", "Create.AcqController",
                  "Create.SpecParser", "Create.CalibLogFiles", "Create.TuneFlags",
                  "Create.CalibSettings", "AcqController.InitializeController(0)",
                  "AcqController.InitializeAcquisition(0)", "DataDictionary.GetConfigObject"));
}

TEST_F(Creation, OfAMissingCollaboratorSaysWhichOneIsNotRegistered) {
  const std::pair<CLSID, const char*> kClasses[] = {
      {__uuidof(::DataDictionary), "vorninstrument.DataDictionary"},
      {__uuidof(::AcqController), "vorninstrument.AcqController"},
      {__uuidof(::SpecParser), "vorninstrument.SpecParser"},
      {__uuidof(::CalibLogFiles), "vorninstrument.CalibLogFiles"},
      {__uuidof(::TuneFlags), "vorninstrument.TuneFlags"},
      {__uuidof(::CalibSettings), "vorninstrument.CalibSettings"}};
  std::vector<CLSID> missing;
  for (const auto& [class_id, prog_id] : kClasses) missing.push_back(class_id);
  for (const auto& [class_id, prog_id] : kClasses) {
    const AutomationError error = CreationError();
    EXPECT_EQ(error.number(), 429) << prog_id;
    EXPECT_THAT(error.description(), HasSubstr(std::string(prog_id) + " {"));
    EXPECT_THAT(error.description(), HasSubstr("is not registered"));
    // This one is there from now on, so that the next one is the first to be missed.
    missing.erase(missing.begin());
    std::vector<CLSID> others;
    for (const auto& [other, name] : kClasses) {
      if (other != class_id) others.push_back(other);
    }
    others.insert(others.end(), {__uuidof(::InstrumentPaths), __uuidof(::MassCalCoefficients),
                                 __uuidof(::PeakList)});
    RegisterInstrument(others);
  }
}

TEST_F(Creation, RaisesTheErrorOfACollaboratorThatFails) {
  RegisterInstrument();
  journal.fail_operation = "DataDictionary.Initialize";
  const AutomationError error = CreationError();
  EXPECT_EQ(error.number(), fakes::kInjectedNumber);
  EXPECT_EQ(error.description(), fakes::kInjectedDescription);
  EXPECT_EQ(error.source(), "vorninstrument.DataDictionary");
}

TEST_F(Creation, RefusesAggregationAndOtherClasses) {
  RegisterInstrument();
  void* object = nullptr;
  EXPECT_EQ(dll.GetClassObject(__uuidof(::DataDictionary), IID_IClassFactory, &object),
            CLASS_E_CLASSNOTAVAILABLE);
  ASSERT_EQ(dll.GetClassObject(__uuidof(::TofCalibrator), IID_IClassFactory, &object), S_OK);
  const auto factory = ComPtr<IClassFactory>::Adopt(static_cast<IClassFactory*>(object));
  const auto outer = NewObject<Sink>();
  EXPECT_EQ(factory->CreateInstance(outer.get(), IID_IUnknown, &object), CLASS_E_NOAGGREGATION);
  EXPECT_EQ(object, nullptr);
}

TEST_F(Creation, GivesAnObjectWithTheInterfacesOfAnAutomationClass) {
  RegisterInstrument();
  const auto calibrator = Created();
  EXPECT_TRUE(calibrator.As<IDispatch>());
  EXPECT_TRUE(calibrator.As<IConnectionPointContainer>());
  EXPECT_TRUE(calibrator.As<IProvideClassInfo>());
  const auto class_info = calibrator.As<IProvideClassInfo2>();
  GUID events{};
  EXPECT_EQ(class_info->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, &events), S_OK);
  EXPECT_EQ(events, __uuidof(__TofCalibrator));
  EXPECT_EQ(
      calibrator.As<ISupportErrorInfo>()->InterfaceSupportsErrorInfo(__uuidof(_TofCalibrator)),
      S_OK);
  // One identity, whichever interface asks.
  EXPECT_EQ(calibrator.As<IUnknown>().get(), class_info.As<IUnknown>().get());
}

}  // namespace
}  // namespace tof::com
