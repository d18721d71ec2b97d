// The objects of the instrument software's mass-time library that the calibrator works with.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "component/automation/bounded_array.h"
#include "component/calibrator/peak_records.h"

namespace tof {

// The 48-byte calibration information record. The calibrator writes the time, the setpoint and the
// power-use flag, reads the three fields behind them for its logs, and carries every other byte
// through unchanged.
struct CalInfo {
  std::array<std::byte, 8> unused0{};
  double time_ns = 0.0;          // bytes 8 to 15
  std::int32_t setpoint119 = 0;  // bytes 16 to 19
  std::int32_t PolyTermPowerUseFlag =
      0;                            // bytes 20 to 23: which of the terms C to H to fit, a bit each
  std::int32_t PolyTermsFlags = 0;  // which of them the last fit used
  std::int32_t TradWeighting = 0;
  std::int32_t PolyWeighting = 0;
  std::array<std::byte, 12> unused36{};
  friend bool operator==(const CalInfo&, const CalInfo&) = default;
};
static_assert(sizeof(CalInfo) == 48 && offsetof(CalInfo, time_ns) == 8);
static_assert(offsetof(CalInfo, setpoint119) == 16 &&
              offsetof(CalInfo, PolyTermPowerUseFlag) == 20);

// Coefficients A to H: A in square-root mass per ns, t0 in ns, then the higher terms C to H.
using CoefficientRecord = std::array<double, 8>;

// Coefficients that turn flight time into mass, and their fit. Every operation may raise an
// AutomationError.
class MassCalCoefficients {
 public:
  virtual ~MassCalCoefficients() = default;

  // Width of a digitizer bin, ns.
  virtual double GetBinWidth() = 0;
  virtual CoefficientRecord GetCoefficientRecord() = 0;

  // Flight time in ns to m/z, and back.
  virtual double TimeToMass(double time_ns) = 0;
  virtual double MassToTime(double mass) = 0;

  // Fits the coefficients in place from expected masses (m/z) and flight times (ns), same bounds.
  // Raises when nothing can be fitted, leaving the coefficients as they were; a finite but
  // implausible result is returned for the caller to judge.
  virtual void Calibrate(const BoundedArray<double>& masses,
                         const BoundedArray<double>& times_ns) = 0;

  virtual CalInfo GetCalInfo() = 0;
  virtual void SetCalInfo(const CalInfo& info) = 0;
};

// Peaks by index from 0. An index outside the list is error 9.
class PeakList {
 public:
  virtual ~PeakList() = default;
  virtual void Initialize() = 0;  // empties the list
  virtual std::int32_t Count() = 0;
  virtual PeakRecord GetRecord(std::int32_t index) = 0;
  virtual void Add(const PeakRecord& record) = 0;
  virtual void SetRecord(std::int32_t index, const PeakRecord& record) = 0;

  // Prepares a peak-finder result for use; the calibrator always passes (5, 0).
  virtual void PreparePeakList(std::int32_t first, std::int32_t second) = 0;
};

}  // namespace tof
