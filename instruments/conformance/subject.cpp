#include "instruments/conformance/subject.h"

#include <algorithm>

#include "component/automation/convert.h"
#include "instruments/conformance/attempt.h"

namespace tof::conformance {
namespace {

constexpr std::int32_t kSettleSliceMs = 400;

// What `create` makes; none when it fails.
template <class Create>
auto CreatedOrNone(Create&& create) {
  decltype(create()) created;
  ErrorRaisedBy([&] { created = create(); });
  return created;
}

double NumericSetting(Subject& subject, const std::string& key) {
  return Given("CalibSettings.missing-setting-leaves-the-variable",
               [&] { return CalibrationSetting(subject.parts, key); });
}

}  // namespace

Subject MakeSubject(const Supplied& supplied) {
  InstrumentFactory& factory = supplied.factory;
  Instrument parts;
  parts.factory = &factory;
  parts.data_dictionary = CreatedOrNone([&] { return factory.CreateDataDictionary(); });
  if (parts.data_dictionary) ErrorRaisedBy([&] { parts.data_dictionary->Initialize(); });
  parts.acq_controller = CreatedOrNone([&] { return factory.CreateAcqController(); });
  parts.spec_parser = CreatedOrNone([&] { return factory.CreateSpecParser(); });
  parts.calib_log_files = CreatedOrNone([&] { return factory.CreateCalibLogFiles(); });
  parts.tune_flags = CreatedOrNone([&] { return factory.CreateTuneFlags(); });
  parts.calib_settings = CreatedOrNone([&] { return factory.CreateCalibSettings(); });
  if (parts.acq_controller) {
    ErrorRaisedBy([&] { parts.acq_controller->InitializeController(0); });
    ErrorRaisedBy([&] { parts.acq_controller->InitializeAcquisition(0); });
  }
  if (parts.calib_settings) {
    ErrorRaisedBy(
        [&] { parts.settling_time_sec = CalibrationSetting(parts, "AICSettlingTime_sec"); });
  }
  return {std::move(parts), supplied.host, supplied.abort, supplied.masses};
}

bool HasEveryCollaborator(const Subject& subject) {
  const Instrument& parts = subject.parts;
  return parts.data_dictionary && parts.acq_controller && parts.spec_parser &&
         parts.calib_log_files && parts.tune_flags && parts.calib_settings;
}

std::shared_ptr<SetpointTable> SetpointsOf(Subject& subject) {
  return Given("DataDictionary.gives-the-setpoint-table", [&] {
    auto table = PreparedSetpointTable(subject.parts);
    Need(table);
    return table;
  });
}

std::vector<double> CalibrantsOf(Subject& subject) {
  std::vector<double> masses = subject.masses;
  if (masses.empty()) {
    const auto own = Given("AcqController.calibrant-masses-are-usable",
                           [&] { return InstrumentCalibrantMasses(subject.parts); });
    masses.assign(own.begin(), own.end());
  }
  const bool usable =
      std::all_of(masses.begin(), masses.end(), [](double mass) { return mass > 0.0; });
  if (masses.empty() || !usable) {
    throw NotApplicable("AcqController.calibrant-masses-are-usable has to pass first");
  }
  std::sort(masses.begin(), masses.end());
  return masses;
}

std::shared_ptr<MassCalCoefficients> CurrentCoefficients(Subject& subject) {
  return Given("AcqController.current-coefficients-are-usable", [&] {
    auto coefficients = subject.parts.acq_controller->GetCurrentMassCalObject();
    Need(coefficients);
    return coefficients;
  });
}

Window AcquisitionWindowOf(Subject& subject) {
  constexpr double kNsPerUs = 1000.0;
  return Given("DataDictionary.acquisition-window-has-a-length", [&] {
    DataDictionary& dictionary = *subject.parts.data_dictionary;
    const Window window{dictionary.GetAcqStartTime() * kNsPerUs,
                        dictionary.GetAcqEndTime() * kNsPerUs};
    Require(window.start_ns < window.end_ns, "", "");
    return window;
  });
}

void RequireAbundanceImmuneCalibration(Subject& subject) {
  if (NumericSetting(subject, "AIC_SetpointToUse") != 0.0) return;
  throw NotApplicable(
      "without the setting Calibration/AIC_SetpointToUse the instrument does no abundance-immune "
      "calibration");
}

std::int32_t RfSetpointId(Subject& subject) {
  RequireAbundanceImmuneCalibration(subject);
  return ToInt32(NumericSetting(subject, "AIC_SetpointToUse"));
}

RfRange RfRangeOf(Subject& subject) {
  RequireAbundanceImmuneCalibration(subject);
  const RfRange range{NumericSetting(subject, "AIC_RF_LowValue"),
                      NumericSetting(subject, "AIC_RF_HighValue")};
  if (range.low < range.high) return range;
  throw NotApplicable("CalibSettings.rf-range-can-be-walked has to pass first");
}

Band BandOf(Subject& subject) {
  RequireAbundanceImmuneCalibration(subject);
  const Band band = Given("AcqController.scale-factor-is-positive", [&] {
    Require(subject.parts.acq_controller->GetScaleFactor() > 0.0, "", "");
    return Band{AIC_TargetMinAb(subject.parts), AIC_TargetMaxAb(subject.parts)};
  });
  if (band.minimum > 0.0 && band.minimum < band.maximum) return band;
  throw NotApplicable("CalibSettings.abundance-band-is-an-interval has to pass first");
}

void Settle(Subject& subject) {
  const std::int32_t slices = ToInt32(subject.parts.settling_time_sec);
  for (std::int32_t slice = 0; slice < slices; ++slice) {
    subject.host.Sleep(kSettleSliceMs);
    subject.host.ProcessPendingMessages();
  }
}

void MovingTheRfVoltage(Subject& subject, const std::function<void(std::int32_t rf_id)>& work) {
  const std::int32_t id = RfSetpointId(subject);
  const double as_found = Given("SetpointTable.rf-voltage-is-read-back",
                                [&] { return ToDouble(SetpointsOf(subject)->GetSetpoint(id)); });
  ThenPutBack([&] { work(id); },
              [&] {
                SetpointsOf(subject)->SetSetpoint(id, ValueType::kDouble, Variant(as_found));
                Settle(subject);
              });
}

}  // namespace tof::conformance
