// One calibrator on one fake instrument, for the runs of a sweep.
#pragma once

#include <cstdint>
#include <map>
#include <memory>

#include "component/calibrator/tof_calibrator.h"
#include "component/trace/trace.h"
#include "tests/support/calibration_fixture.h"

namespace tof::fakes {

// Arrange `host` and `instrument`, then Create.
struct SweptRun {
  SweptRun() : host(journal), instrument(journal, host) {}

  // The journal starts behind the creation.
  void Create() {
    masses = Variant::DoubleArray(instrument.sample_masses);
    found = instrument.setpoints;
    old_coefficients = instrument.in_force;
    calibrator = std::make_unique<TofCalibrator>(instrument, host, events);
    journal.Clear();
  }

  std::shared_ptr<MassCalCoefficients> Calibrate() {
    return calibrator->calibrateTOFMassAxis(n_spectra, masses, times, suppress_aic);
  }

  Journal journal;
  FakeHost host;
  FakeInstrument instrument;
  std::map<std::int32_t, Variant> found;  // the setpoints before the run
  std::shared_ptr<FakeCoefficients> old_coefficients;
  RecordedEvents events;
  ModuleStateScope module_state;
  std::unique_ptr<TofCalibrator> calibrator;
  std::int16_t n_spectra = 2;
  Variant masses;
  Variant times;
  bool suppress_aic = false;
};

}  // namespace tof::fakes
