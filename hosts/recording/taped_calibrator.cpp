#include "hosts/recording/taped_calibrator.h"

#include "hosts/recording/taped_mass_time.h"

namespace tof::recording {
namespace {

constexpr const char* kWriteData = "WriteDataToSpotFireLog";
constexpr const char* kTestNewStuff = "TestNewStuff";
constexpr const char* kGetAveragedTimes = "GetAveragedTimesForCalibration";
constexpr const char* kCalibrate = "calibrateTOFMassAxis";

}  // namespace

TapedCalibrator::TapedCalibrator(Tape& tape, InstrumentFactory* instrument, HostServices* host,
                                 StatusEvents* events)
    : tape_(tape), factory_(tape, instrument), host_(tape, host), events_(tape, events) {
  tape_.Invoke(kNew, Json::object(), [this] {
    calibrator_ = std::make_unique<TofCalibrator>(factory_, host_, events_);
    return Json();
  });
}

TapedCalibrator::~TapedCalibrator() {
  try {
    tape_.Invoke(kDelete, Json::object(), [this] {
      calibrator_.reset();
      return Json();
    });
  } catch (...) {
    // A replay that has ended raises; the members are released all the same.
  }
}

void TapedCalibrator::WriteDataToSpotFireLog() {
  tape_.Invoke(kWriteData, Json::object(), [this] {
    calibrator_->WriteDataToSpotFireLog();
    return Json();
  });
}

void TapedCalibrator::TestNewStuff() {
  tape_.Invoke(kTestNewStuff, Json::object(), [this] {
    calibrator_->TestNewStuff();
    return Json();
  });
}

Variant TapedCalibrator::GetAveragedTimesForCalibration(const Variant& varExpectedMasses,
                                                        std::int16_t& nAvgSpectra,
                                                        bool& bEnableAbImmuneCalib,
                                                        double& dPeakFindWindow) {
  Variant times;
  const Json arguments{{"varExpectedMasses", Encoded(varExpectedMasses)},
                       {"nAvgSpectra", nAvgSpectra},
                       {"bEnableAbImmuneCalib", bEnableAbImmuneCalib},
                       {"dPeakFindWindow", Encoded(dPeakFindWindow)}};
  tape_.Invoke(kGetAveragedTimes, arguments, [&]() -> Json {
    times = calibrator_->GetAveragedTimesForCalibration(varExpectedMasses, nAvgSpectra,
                                                        bEnableAbImmuneCalib, dPeakFindWindow);
    return {{"times", Encoded(times)},
            {"nAvgSpectra", nAvgSpectra},
            {"bEnableAbImmuneCalib", bEnableAbImmuneCalib},
            {"dPeakFindWindow", Encoded(dPeakFindWindow)}};
  });
  return times;
}

std::shared_ptr<MassCalCoefficients> TapedCalibrator::calibrateTOFMassAxis(
    std::int16_t& nAvgSpectra, const Variant& varExpectedMasses, Variant& varAveragedMeasuredTimes,
    bool& bSuppressAbImmuneCalib, OptionalCalibrationArguments& optional) {
  std::shared_ptr<MassCalCoefficients> coefficients;
  const Json arguments{{"nAvgSpectra", nAvgSpectra},
                       {"varExpectedMasses", Encoded(varExpectedMasses)},
                       {"varAveragedMeasuredTimes", Encoded(varAveragedMeasuredTimes)},
                       {"bSuppressAbImmuneCalib", bSuppressAbImmuneCalib},
                       {"bOKtoFail", optional.bOKtoFail},
                       {"bThisIsAManualCalibration", optional.bThisIsAManualCalibration},
                       {"dTradWeighting", Encoded(optional.dTradWeighting)},
                       {"dPeakFindTimeWindow", Encoded(optional.dPeakFindTimeWindow)}};
  tape_.Invoke(kCalibrate, arguments, [&]() -> Json {
    coefficients = calibrator_->calibrateTOFMassAxis(
        nAvgSpectra, varExpectedMasses, varAveragedMeasuredTimes, bSuppressAbImmuneCalib, optional);
    return {{"coefficients", Encoded(NumberOf<TapedMassCalCoefficients>(coefficients))},
            {"nAvgSpectra", nAvgSpectra},
            {"varAveragedMeasuredTimes", Encoded(varAveragedMeasuredTimes)},
            {"bSuppressAbImmuneCalib", bSuppressAbImmuneCalib},
            {"dPeakFindTimeWindow", Encoded(optional.dPeakFindTimeWindow)}};
  });
  const auto own = InnerOf<TapedMassCalCoefficients>(coefficients);
  return own ? own : coefficients;
}

namespace {

void GetAveragedTimes(TapedCalibrator& calibrator, const Json& arguments) {
  const auto masses = DecodedMember<Variant>(arguments, "varExpectedMasses");
  auto n_spectra = DecodedMember<std::int16_t>(arguments, "nAvgSpectra");
  bool enable_aic = DecodedMember<bool>(arguments, "bEnableAbImmuneCalib");
  auto window = DecodedMember<double>(arguments, "dPeakFindWindow");
  calibrator.GetAveragedTimesForCalibration(masses, n_spectra, enable_aic, window);
}

void Calibrate(TapedCalibrator& calibrator, const Json& arguments) {
  auto n_spectra = DecodedMember<std::int16_t>(arguments, "nAvgSpectra");
  const auto masses = DecodedMember<Variant>(arguments, "varExpectedMasses");
  auto times = DecodedMember<Variant>(arguments, "varAveragedMeasuredTimes");
  bool suppress_aic = DecodedMember<bool>(arguments, "bSuppressAbImmuneCalib");
  OptionalCalibrationArguments optional;
  optional.bOKtoFail = DecodedMember<bool>(arguments, "bOKtoFail");
  optional.bThisIsAManualCalibration = DecodedMember<bool>(arguments, "bThisIsAManualCalibration");
  optional.dTradWeighting = DecodedMember<double>(arguments, "dTradWeighting");
  optional.dPeakFindTimeWindow = DecodedMember<double>(arguments, "dPeakFindTimeWindow");
  calibrator.calibrateTOFMassAxis(n_spectra, masses, times, suppress_aic, optional);
}

}  // namespace

void CallRecorded(TapedCalibrator& calibrator, const std::string& method, const Json& arguments) {
  if (method == kCalibrate) return Calibrate(calibrator, arguments);
  if (method == kGetAveragedTimes) return GetAveragedTimes(calibrator, arguments);
  if (method == kWriteData) return calibrator.WriteDataToSpotFireLog();
  if (method == kTestNewStuff) return calibrator.TestNewStuff();
  throw MalformedValue("found \"" + method + "\", expected a method of the calibrator");
}

}  // namespace tof::recording
