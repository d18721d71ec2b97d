// Whole calibrations through COM: they are those of the component itself.

#include <algorithm>

#include "component/calibrator/tof_calibrator.h"
#include "component/trace/trace.h"
#include "hosts/com/automation/text_stream.h"
#include "tests/com/com_world.h"
#include "tests/component/whole_run/aic_ways.h"
#include "tests/support/calibration_fixture.h"

namespace tof::com {
namespace {

using ::testing::HasSubstr;

class CalibrationThroughCom : public ComWorld {
 protected:
  // What was asked of the instrument. Its classes are created by COM, and shared ones kept; files
  // of the component's own go past the fake.
  static std::vector<std::string> CallsOf(const fakes::Journal& asked) {
    return asked.Only({"DataDictionary.", "AcqController.", "SetpointTable.", "SpectrumDisplay.",
                       "StatusReader.", "SpecParser.", "TuneFlags.", "CalibSettings.",
                       "CalibLogFiles.", "TextStream.WriteLine(AIC", "MassCalCoefficients.",
                       "PeakList."});
  }

  // The calls of the component on a like instrument, without COM.
  template <class Arrange>
  static std::vector<std::string> NativeCalls(Arrange arrange) {
    fakes::Journal native;
    fakes::FakeHost native_host(native);
    fakes::FakeInstrument native_instrument(native, native_host);
    fakes::RecordedEvents events;
    const ModuleStateScope module_state;  // holds streams onto the host's files
    native_instrument.settings["Calibration/AICSettlingTime_sec"] = 0.0;
    arrange(native_instrument);
    TofCalibrator calibrator(native_instrument, native_host, events);
    native.Clear();
    std::int16_t spectra = 3;
    bool suppress = false;
    Variant averaged;
    EXPECT_NE(
        calibrator.calibrateTOFMassAxis(
            spectra, Variant::DoubleArray(native_instrument.sample_masses), averaged, suppress),
        nullptr);
    return CallsOf(native);
  }

  template <class Arrange>
  void ExpectTheCallsOfANativeRun(Arrange arrange) {
    const auto expected = NativeCalls(arrange);
    RegisterInstrument();
    arrange(instrument);
    const auto calibrator = Created();
    journal.Clear();
    ComPtr<IMassCalCoefficients> coefficients;
    EXPECT_EQ(Calibrate(*calibrator.get(), coefficients), S_OK);
    EXPECT_TRUE(coefficients);
    EXPECT_GT(expected.size(), 100U);
    EXPECT_EQ(CallsOf(journal), expected);
  }
};

TEST_F(CalibrationThroughCom, AsksOfTheInstrumentWhatATraditionalRunAsks) {
  ExpectTheCallsOfANativeRun([](fakes::FakeInstrument&) {});
}

TEST_F(CalibrationThroughCom, AsksOfTheInstrumentWhatAVoltageRampAsks) {
  ExpectTheCallsOfANativeRun([](fakes::FakeInstrument& arranged) {
    fakes::Arrange(fakes::kWays[0], arranged);
    arranged.settings["Calibration/AICSettlingTime_sec"] = 0.0;
  });
}

TEST_F(CalibrationThroughCom, AsksOfTheInstrumentWhatASearchPerMassAsks) {
  ExpectTheCallsOfANativeRun([](fakes::FakeInstrument& arranged) {
    fakes::Arrange(fakes::kWays[4], arranged);
    arranged.settings["Calibration/AICSettlingTime_sec"] = 0.0;
  });
}

TEST_F(CalibrationThroughCom, HandsBackTheInstrumentsOwnCoefficientsFittedAndInForce) {
  RegisterInstrument();
  const auto calibrator = Created();
  ComPtr<IMassCalCoefficients> coefficients;
  ASSERT_EQ(Calibrate(*calibrator.get(), coefficients), S_OK);
  ASSERT_TRUE(coefficients);
  double mass = 0.0;
  EXPECT_EQ(coefficients->TimeToMass(instrument.TrueTime(622.029), &mass), S_OK);
  EXPECT_NEAR(mass, 622.029, 1e-6);
  OwnedVariant record;
  EXPECT_EQ(coefficients->GetCoefficientRecord(record.Out()), S_OK);
  EXPECT_EQ(CoefficientRecordIn(record.get()), instrument.in_force->record);
  OwnedVariant info;
  EXPECT_EQ(coefficients->GetCalInfo(info.Out()), S_OK);
  EXPECT_EQ(CalInfoIn(info.get()), instrument.in_force->info);
  EXPECT_EQ(CalInfoIn(info.get()).setpoint119, 7);
}

TEST_F(CalibrationThroughCom, GivesBackTheAveragedTimesAndTheWindowThatWasUsed) {
  RegisterInstrument();
  const auto calibrator = Created();
  ComPtr<IMassCalCoefficients> coefficients;
  ASSERT_EQ(Calibrate(*calibrator.get(), coefficients), S_OK);
  const BoundedArray<double> averaged = DoublesIn(times.get());
  ASSERT_EQ(averaged.UBound(), 5);
  for (std::int32_t i = 0; i <= 5; ++i) {
    const double mass = instrument.sample_masses[static_cast<std::size_t>(i)];
    EXPECT_NEAR(averaged(i), instrument.TrueTime(mass), 1e-6);
  }
  EXPECT_EQ(window, 0.5);
}

TEST_F(CalibrationThroughCom, WritesItsFilesWithTheScriptingFileSystem) {
  RegisterInstrument();
  {
    const auto calibrator = Created();
    ComPtr<IMassCalCoefficients> coefficients;
    ASSERT_EQ(Calibrate(*calibrator.get(), coefficients), S_OK);
  }
  // The calibration log stays open for the next object of the thread, until the module may go.
  EXPECT_EQ(dll.CanUnloadNow(), S_OK);
  const std::string log = LogFile("CalibrationLog_");
  EXPECT_THAT(log, HasSubstr("GainChannel[1]\r\n"));
  EXPECT_THAT(log,
              HasSubstr("Mass coefficients are in nsecs\r\ncoefficient, coefficient value\r\nA, "));
  // Every line ends in CR LF.
  EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), std::count(log.begin(), log.end(), '\r'));
  EXPECT_THAT(LogFile("TuneReportCalibData.txt"), HasSubstr("\r\n"));
}

TEST_F(CalibrationThroughCom, WritesItsFilesBelowAFolderOfAnyName) {
  RegisterInstrument();
  const std::filesystem::path parent = base_folder;
  base_folder /= std::filesystem::path(u8"Me\u00dfreihe \u0394\u03b4 \u6e2c\u5b9a");
  std::filesystem::create_directories(base_folder / "Logfiles");
  instrument.base_folder = Utf8(base_folder.wstring());
  {
    const auto calibrator = Created();
    ComPtr<IMassCalCoefficients> coefficients;
    EXPECT_EQ(Calibrate(*calibrator.get(), coefficients), S_OK);
    EXPECT_TRUE(coefficients);
  }
  EXPECT_EQ(dll.CanUnloadNow(), S_OK);
  EXPECT_THAT(LogFile("CalibrationLog_"), HasSubstr("GainChannel[1]\r\n"));
  base_folder = parent;
}

TEST_F(CalibrationThroughCom, WritesTextOfOneByteACharacter) {
  const std::filesystem::path file = base_folder / "Logfiles" / "text";
  ScriptingFileSystem().CreateTextFile(Utf8(file.wstring()))->WriteLine("0.25 \u00b5s \u00df");
  EXPECT_EQ(LogFile("text"), "0.25 \xB5s \xDF\r\n");
}

TEST_F(CalibrationThroughCom, ReportsAMissingFileFolderAsTheErrorOfTheCalibration) {
  RegisterInstrument();
  instrument.base_folder += "\\nowhere";
  const auto calibrator = Created();
  const auto sink = Connect(*calibrator.get());
  ComPtr<IMassCalCoefficients> coefficients;
  EXPECT_EQ(Calibrate(*calibrator.get(), coefficients), S_OK);
  EXPECT_FALSE(coefficients);
  ASSERT_EQ(sink->events.size(), 1U);
  EXPECT_EQ(sink->events[0].first, 76);
  Disconnect(*calibrator.get());
}

TEST_F(CalibrationThroughCom, OfAveragedTimesAloneReplacesTheDefaultWindow) {
  RegisterInstrument();
  const auto calibrator = Created();
  ComPtr<IMassCalCoefficients> coefficients;
  ASSERT_EQ(Calibrate(*calibrator.get(), coefficients), S_OK);  // which sizes the store
  const OwnedVariant masses = ToVariant(BoundedArray<double>(instrument.sample_masses));
  VARIANT_BOOL enable = VARIANT_FALSE;
  double used = -1.0;
  OwnedVariant averaged;
  EXPECT_EQ(calibrator->GetAveragedTimesForCalibration(masses.get(), &n_spectra, &enable, &used,
                                                       averaged.Out()),
            S_OK);
  EXPECT_EQ(used, 0.5);
  EXPECT_EQ(DoublesIn(averaged.get()).size(), 6U);
}

}  // namespace
}  // namespace tof::com
