#include "component/calibration/peak_lists.h"

#include <algorithm>
#include <array>
#include <vector>

#include "component/automation/convert.h"
#include "component/trace/guarded.h"

namespace tof {
namespace {

struct Range {
  double start_ns = 0.0;
  double end_ns = 0.0;
};

std::shared_ptr<PeakList> SizedList(Instrument& instrument, std::int32_t n_entries) {
  auto list = instrument.factory->CreatePeakList();
  Need(list).Initialize();
  for (std::int32_t i = 0; i < n_entries; ++i) list->Add(PeakRecord{});
  return list;
}

void FindPreparedPeaks(Instrument& instrument, const Range& range, std::int32_t n_sought,
                       std::shared_ptr<PeakList>& list) {
  std::int32_t count = 0;
  instrument.spec_parser->FindPeaks(range.start_ns, range.end_ns, n_sought, count, list);
  Need(list).PreparePeakList(5, 0);
}

// A range that holds fewer peaks than were sought makes the list shorter: an entry without a peak
// would pair a flight time of 0 with every mass.
void Join(PeakList& lower, PeakList& upper, PeakList& joined) {
  std::vector<PeakRecord> records;
  for (PeakList* part : {&lower, &upper}) {
    for (std::int32_t i = 0; i < part->Count(); ++i) records.push_back(part->GetRecord(i));
  }
  if (static_cast<std::size_t>(joined.Count()) != records.size()) {
    joined.Initialize();
    for (const PeakRecord& record : records) joined.Add(record);
    return;
  }
  for (std::int32_t i = 0; i < joined.Count(); ++i) {
    joined.SetRecord(i, records[static_cast<std::size_t>(i)]);
  }
}

// Leaves no entries, or no list where it cannot be emptied: entries without a peak would pass for
// peaks at time 0.
void GiveUp(std::shared_ptr<PeakList>& list) {
  try {
    if (list != nullptr) list->Initialize();
  } catch (...) {
    list = nullptr;
  }
}

struct Partition {
  Range lower;
  Range upper;
  std::int32_t n_above = 0;
};

Partition PartitionOf(Instrument& instrument, const Range& whole,
                      const BoundedArray<double>& masses) {
  const double partition_mz =
      TextToDouble(Flag(instrument, "CalcLikelyA_PartitionSpec_PartitionMz"));
  const double partition_ns =
      Need(instrument.acq_controller->GetCurrentMassCalObject()).MassToTime(partition_mz);
  const auto n_above =
      std::count_if(masses.begin(), masses.end(), [&](double mass) { return mass > partition_mz; });
  return {{whole.start_ns, partition_ns},
          {partition_ns, whole.end_ns},
          static_cast<std::int32_t>(n_above)};
}

void FillPartitioned(Instrument& instrument, const Partition& partition, std::int32_t n_sought,
                     PeakList& in_nanoseconds, PeakList& second) {
  const std::int32_t n_below = n_sought - partition.n_above;
  std::array<std::shared_ptr<PeakList>, 2> lower;
  std::array<std::shared_ptr<PeakList>, 2> upper;
  for (auto& list : lower) {
    list = SizedList(instrument, 0);
    FindPreparedPeaks(instrument, partition.lower, n_below, list);
  }
  for (auto& list : upper) {
    list = SizedList(instrument, 0);
    FindPreparedPeaks(instrument, partition.upper, partition.n_above, list);
  }
  Join(*lower[0], *upper[0], in_nanoseconds);
  Join(*lower[1], *upper[1], second);
}

}  // namespace

void GetPeakListsForLikelyACalculation(Instrument& instrument,
                                       std::shared_ptr<PeakList>& peakListInNanoseconds,
                                       std::shared_ptr<PeakList>& peakList,
                                       std::int32_t nNumPeaksSought,
                                       const BoundedArray<double>& masses) {
  constexpr Routine kRoutine{.name = "GetPeakListsForLikelyACalculation",
                             .on_error = OnError::kSwallow,
                             .error_line = ErrorLine::kNameFirst};
  Guarded(
      kRoutine,
      [&](TraceObj&) {
        const Range whole{instrument.data_dictionary->GetAcqStartTime() * 1000.0,
                          instrument.data_dictionary->GetAcqEndTime() * 1000.0};
        peakListInNanoseconds = SizedList(instrument, nNumPeaksSought);
        peakList = SizedList(instrument, nNumPeaksSought);
        if (FlagIs(instrument, "CalcLikelyA_PartitionSpec", "Yes")) {
          FillPartitioned(instrument, PartitionOf(instrument, whole, masses), nNumPeaksSought,
                          *peakListInNanoseconds, *peakList);
          return;
        }
        FindPreparedPeaks(instrument, whole, nNumPeaksSought, peakListInNanoseconds);
        FindPreparedPeaks(instrument, whole, nNumPeaksSought, peakList);
      },
      [&](const AutomationError&, TraceObj&) {
        GiveUp(peakListInNanoseconds);
        GiveUp(peakList);
      });
}

}  // namespace tof
