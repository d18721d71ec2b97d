// The candidates for the coefficient A: every expected mass paired with every peak found.
#pragma once

#include <cstdint>

#include "component/automation/bounded_array.h"

namespace tof {

// One pairing. A peak at time t (us) that were the ion of mass m would have A = sqrt(m)/|t - t0|.
struct Candidate {
  double assumed_mass = 0.0;  // m/z
  double time_ns = 0.0;       // of the peak
  double a = 0.0;             // square-root mass per us
  double goodness = 0.0;      // distance to the next smaller A; the smaller, the denser the cluster
  double reserved = 0.0;      // no step writes or reads it; it belongs to the place, not to the row
  friend bool operator==(const Candidate&, const Candidate&) = default;
};

// Rows from 0, zero when dimensioned. A row beyond the bounds is error 9.
using CandidateTable = BoundedArray<Candidate>;

// mass_count * peak_count rows. No row at all is error 9, more than 32 bits can count error 6.
CandidateTable DimensionCandidates(std::int32_t mass_count, std::int32_t peak_count);

// Ascending by A, in the exact order of the plain exchange sort (exchange_order.h). The assumed
// mass, the time and A move; the goodness stays in its place, since it is filled afterwards.
void SortByA(CandidateTable& table);

// The goodness of each row but the first, which keeps its own: A minus the A of the row before.
void FillGoodness(CandidateTable& table);

// Ascending by goodness, in the exact order of the plain exchange sort. All but `reserved` moves.
void SortByGoodness(CandidateTable& table);

}  // namespace tof
