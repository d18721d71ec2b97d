// One routine of an abundance-immune calibration on the fake instrument, with an AIC log that is
// open. Three masses of which every flight time is a round number: 10300, 20300 and 30300 ns.
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "component/acquisition/averaged_times.h"
#include "component/aic/rf_voltage.h"
#include "tests/support/calibration_fixture.h"
#include "tests/support/expected_calls.h"

namespace tof::fakes {

class AicFixture : public CalibrationFixture {
 protected:
  AicFixture() {
    instrument.true_a_per_ns = 0.001;
    instrument.true_t0_ns = 300.0;
    instrument.in_force = instrument.NewCoefficients(0.001, 300.0);
    instrument.sample_masses = {100.0, 400.0, 900.0};
    instrument.flags[instrument.flag_key] = "No";
    instrument.flags["AICLoggingEnabled"] = "3000";
    parts = Collaborators();
    parts.settling_time_sec = 1.0;
    log.stream = host.OpenStream(kLogPath, false);
    data.expected_masses = Variant::DoubleArray(instrument.sample_masses);
    data.ab_scalars = BoundedArray<double>{1.0, 1.0, 1.0};
    SizeFor(2);
  }

  // The records as they are before a survey or a collection.
  void SizeFor(std::int32_t n_measurements) {
    data.peaks.ReDim(0, AsDoubleArray(data.expected_masses).UBound());
    for (CalibMassPeakData& record : data.peaks) {
      record.SpectrumAttribs.ReDim({0, n_measurements - 1}, {0, 1}, IfEmpty::kIsAllowed);
      record.AveragedAttribs.ReDim(0, 1);
    }
  }

  void ChooseVoltages(const std::vector<double>& volts) {
    for (std::size_t m = 0; m < volts.size(); ++m) {
      data.peaks(static_cast<std::int32_t>(m)).Voltage = volts[m];
    }
  }

  std::vector<double> ChosenVoltages() const {
    std::vector<double> volts;
    for (const CalibMassPeakData& record : data.peaks) volts.push_back(record.Voltage);
    return volts;
  }

  std::vector<std::int32_t> ChosenAbundances() const {
    std::vector<std::int32_t> abundances;
    for (const CalibMassPeakData& record : data.peaks) abundances.push_back(record.Abundance);
    return abundances;
  }

  RfVoltage Rf(std::int32_t id = 84) { return {parts, host, id}; }
  double RfValue(std::int32_t id = 84) const { return ToDouble(instrument.setpoints.at(id)); }
  const std::string& Log() const { return host.files.at(kLogPath).bytes; }

  // The calls without those of the trace.
  Calls CallsMade() const {
    Calls calls = journal.entries();
    calls.erase(std::remove_if(calls.begin(), calls.end(),
                               [](const auto& call) { return call.rfind("Trace.", 0) == 0; }),
                calls.end());
    return calls;
  }
  std::size_t NumberOf(const std::string& call) const { return journal.Only({call}).size(); }

  // What a routine traced itself, without the lines of the routines it calls.
  std::vector<std::string> TextsOf(const std::string& routine) const {
    const std::string begin = routine + " 9: ";
    std::vector<std::string> texts;
    for (const std::string& line : host.trace->lines) {
      if (line.rfind(begin, 0) == 0) texts.push_back(line.substr(begin.size()));
    }
    return texts;
  }
  std::string LastTrace() const {
    const auto texts = host.trace->Texts();
    return texts.empty() ? std::string() : texts.back();
  }

  Calls Logged(int lines = 1) const {
    return Repeated(
        lines, InOrder({AicLogAllowed(instrument.flag_key), {"TextStream.WriteLine(AIC.TXT)"}}));
  }

  // Asking whether a mass is outside the band, for a log that takes lines.
  Calls BandJudged() const {
    return InOrder({AicLogAllowed(instrument.flag_key), BandLimitRead("AIC_TargetMinAb")});
  }

  static constexpr const char* kLogPath = "D:\\Data\\Logfiles\\AIC.TXT";
  Instrument parts;
  AicLog log;
  CalibrantData data;
};

template <class T>
std::vector<T> Elements(const BoundedArray<T>& array) {
  return {array.begin(), array.end()};
}

// One settle wait at a settle time of 1 s.
inline const Calls kSettled = {"Host.Sleep(400)", "Host.ProcessPendingMessages",
                               "AcqController.IsAbortRequested"};

inline Calls RfWritten(const std::string& volts, std::int32_t id = 84) {
  return SetpointWritten(id, ValueType::kDouble, volts);
}

inline Calls SpectrumTaken(const std::string& window) {
  return {"SpecParser.GetCalibrantPeakAttributes(" + window + ")"};
}

}  // namespace tof::fakes
