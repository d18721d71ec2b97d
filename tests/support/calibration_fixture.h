// A calibrator on the fake instrument and the fake host, with a module state of its own.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "component/calibrator/tof_calibrator.h"
#include "component/trace/trace.h"
#include "tests/support/fake_host.h"
#include "tests/support/fake_instrument.h"
#include "tests/support/journal.h"

namespace tof::fakes {

struct RecordedEvents : StatusEvents {
  std::vector<std::pair<std::int32_t, std::string>> events;
  void evtNewStatus(std::int32_t lStatus, const std::string& strMessage) override {
    events.emplace_back(lStatus, strMessage);
  }
};

class CalibrationFixture : public ::testing::Test {
 protected:
  CalibrationFixture() : host(journal), instrument(journal, host) {}

  // Arrange `host` and `instrument` first. The journal starts behind the creation.
  TofCalibrator& Create() {
    calibrator = std::make_unique<TofCalibrator>(instrument, host, events);
    journal.Clear();
    return *calibrator;
  }

  // A calibration of the instrument's sample masses; `masses` etc. may be arranged before.
  std::shared_ptr<MassCalCoefficients> Calibrate() {
    if (calibrator == nullptr) Create();
    return calibrator->calibrateTOFMassAxis(n_spectra, masses, times, suppress_aic, optional);
  }

  // The collaborators as a routine takes them, for tests of one routine; no calibrator is needed.
  Instrument Collaborators() {
    CreateTraceObject(host, "vorntofcaliblib");
    Instrument parts{.data_dictionary = instrument.CreateDataDictionary(),
                     .acq_controller = instrument.CreateAcqController(),
                     .spec_parser = instrument.CreateSpecParser(),
                     .calib_log_files = instrument.CreateCalibLogFiles(),
                     .tune_flags = instrument.CreateTuneFlags(),
                     .calib_settings = instrument.CreateCalibSettings(),
                     .factory = &instrument};
    journal.Clear();
    return parts;
  }

  Journal journal;
  FakeHost host;
  FakeInstrument instrument;
  RecordedEvents events;
  // Holds streams onto the host's files, and is written to by the calibrator's end.
  ModuleStateScope module_state;
  std::unique_ptr<TofCalibrator> calibrator;

  std::int16_t n_spectra = 3;
  Variant masses = Variant::DoubleArray(instrument.sample_masses);
  Variant times;
  bool suppress_aic = false;
  OptionalCalibrationArguments optional;
};

}  // namespace tof::fakes
