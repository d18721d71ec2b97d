// The relation between flight time and mass.
//
//   sqrt(m) = A (t - t0) + C P2(x) + D P3(x) + ... + H P7(x)
//
// with the Legendre polynomials P2..P7 of x, the flight time scaled to -1..1 by the acquisition
// window. A and t0 are the physical ones of an ideal time-of-flight analyser; the terms describe
// what a real one adds. Legendre polynomials over a fixed window keep A and t0 where the plain
// two-parameter fit puts them, and the terms small: powers of the time itself would do neither.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "component/calibrator/mass_time_library.h"

namespace tof::masstime {

// Names the relation above. It goes with the coefficients wherever they are kept, so that nobody
// feeds them to another formula; a change of the relation takes another version.
inline constexpr std::string_view kFormula =
    "tof-mass sqrt(m) = A (t - t0) + Legendre P2..P7 over window, version 1";

// Index of a coefficient in the record.
inline constexpr std::size_t kA = 0;
inline constexpr std::size_t kT0 = 1;
inline constexpr std::size_t kFirstTerm = 2;
inline constexpr std::size_t kTermCount = 6;

// Which of the terms C to H: bit 0 is C (P2), bit 5 is H (P7).
using TermSet = std::uint32_t;
inline constexpr TermSet kAllTerms = 0x3F;

// The flight times the digitizer records, ns. It belongs to the coefficients: the same terms mean
// another curve over another window.
struct AcquisitionWindow {
  double start_ns = 0.0;
  double end_ns = 0.0;
  friend bool operator==(const AcquisitionWindow&, const AcquisitionWindow&) = default;
};

// A in square-root mass (u) per ns, t0 in ns, C to H in square-root mass.
struct MassTimeModel {
  CoefficientRecord coefficients{};
  AcquisitionWindow window;
};

// The flight time as the argument of the Legendre polynomials: -1 and 1 at the ends of the window
// and beyond them. The terms keep the value of the edge outside the window, where no calibrant has
// ever tied them down; 0 for a window without an extent.
double ScaledTime(const AcquisitionWindow& window, double time_ns);

// P2..P7 at `x`.
std::array<double, kTermCount> LegendreTerms(double x);

// The right-hand side of the relation. Negative for a time before t0.
double SqrtMass(const MassTimeModel& model, double time_ns);

// m/z in u. A time before t0, where no ion can arrive, gives a negative mass (the square with the
// sign of the root), so that the curve has one mass for every time and stays invertible.
double TimeToMass(const MassTimeModel& model, double time_ns);

// The flight time in ns at which `mass` arrives; the inverse of TimeToMass. NaN when there is none:
// for a mass or coefficient that is not finite and for an A that is not positive. With coefficients
// that are not monotone, one of the times that have this mass.
double MassToTime(const MassTimeModel& model, double mass);

// Whether the mass rises with time all over the window.
bool IsMonotone(const MassTimeModel& model);

}  // namespace tof::masstime
