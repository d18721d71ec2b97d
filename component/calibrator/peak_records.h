// The peak records that the spectrum parser delivers and what the calibrator keeps of them.
#pragma once

#include <cstddef>
#include <cstdint>

#include "component/automation/bounded_array.h"

namespace tof {

// The spectrum parser's record of one peak, eight doubles. The parser returns a pair per mass: row
// 0 carries the flight time in `time`, row 1 the assigned mass; both rows carry the abundance. The
// attributes at bytes 32 and 48 are the parser's own (mass error and peak width, by convention).
struct PeakAttribs {
  double unused0 = 0.0;
  double unused8 = 0.0;
  double unused16 = 0.0;
  double time = 0.0;         // row 0: flight time, ns; row 1: assigned mass, m/z
  double attribute32 = 0.0;  // row 1: mass error
  double abundance = 0.0;
  double attribute48 = 0.0;  // row 0
  double unused56 = 0.0;
  friend bool operator==(const PeakAttribs&, const PeakAttribs&) = default;
};
static_assert(sizeof(PeakAttribs) == 64);
static_assert(offsetof(PeakAttribs, time) == 24 && offsetof(PeakAttribs, abundance) == 40);

// [row 0..1, mass index], in the order of the masses that were asked for.
using PeakAttribsTable = BoundedArray2D<PeakAttribs>;

// One peak of a peak list.
struct PeakRecord {
  double position = 0.0;  // flight time in ns, or mass, as the list says
  double unused8 = 0.0;
  double unused16 = 0.0;
  double unused24 = 0.0;
  double unused32 = 0.0;
  double height = 0.0;
  double unused48 = 0.0;
  double unused56 = 0.0;
  friend bool operator==(const PeakRecord&, const PeakRecord&) = default;
};
static_assert(sizeof(PeakRecord) == 64 && offsetof(PeakRecord, height) == 40);

// What a calibration knows of one calibrant mass.
struct CalibMassPeakData {
  double Voltage = 0.0;                         // RF voltage chosen for the mass
  BoundedArray2D<PeakAttribs> SpectrumAttribs;  // [measurement index, row 0..1]
  BoundedArray<PeakAttribs> AveragedAttribs;    // [row 0..1]
  std::int32_t Abundance = 0;                   // at Voltage; 200000 marks a plugged voltage
};

// In the order of the expected masses, from 0.
// Written by: the acquisition (traditional or AIC), the averaging, the driver's last step.
// Read by: the averaging, the driver, the logs.
// Lives: until the next acquisition sizes it afresh (InitializeTimesArray).
using PeakTable = BoundedArray<CalibMassPeakData>;

// Raw flight times in ns, [spectrum, mass]. Sized by the driver, filled by the acquisition, read by
// the calibration data log. Lives until the next calibration.
using MeasuredTimes = BoundedArray2D<double>;

// One surveyed RF voltage.
struct VoltageSurveyPoint {
  double Voltage = 0.0;
  BoundedArray<double> Times;             // by mass index
  BoundedArray<std::int32_t> Abundances;  // by mass index
};

// In the order in which the voltages were planned.
using Survey = BoundedArray<VoltageSurveyPoint>;

}  // namespace tof
