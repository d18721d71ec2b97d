#include "hosts/recording/taped_spec_parser.h"

#include "hosts/recording/taped_mass_time.h"

namespace tof::recording {

PeakAttribsTable TapedSpecParser::GetCalibrantPeakAttributes(const Variant& masses,
                                                             double peak_find_window) {
  return object_.Ask("SpecParser.GetCalibrantPeakAttributes", Arguments(masses, peak_find_window),
                     [&] { return inner_->GetCalibrantPeakAttributes(masses, peak_find_window); });
}

double TapedSpecParser::GetPeakAttribute(PeakCalculationtype kind, double mass, double tolerance) {
  return object_.Ask("SpecParser.GetPeakAttribute", Arguments(kind, mass, tolerance),
                     [&] { return inner_->GetPeakAttribute(kind, mass, tolerance); });
}

void TapedSpecParser::FindPeaks(double start_ns, double end_ns, std::int32_t peaks_sought,
                                std::int32_t& count, std::shared_ptr<PeakList>& list) {
  const ObjectNumber passed = NumberOf<TapedPeakList>(list);
  std::shared_ptr<PeakList> inner = InnerOf<TapedPeakList>(list);
  const Json answer = object_.AskMembers(
      "SpecParser.FindPeaks", Arguments(start_ns, end_ns, peaks_sought, count, passed),
      [&](std::int64_t number) -> Json {
        const auto before = inner;
        std::int32_t found = count;
        inner_->FindPeaks(start_ns, end_ns, peaks_sought, found, inner);
        const ObjectNumber given = inner == before ? passed : ObjectNumber{inner ? number : 0};
        return {{"count", found}, {"list", Encoded(given)}};
      });
  const auto found = object_.ReadMember<std::int32_t>(answer, "count");
  const auto given = object_.ReadMember<ObjectNumber>(answer, "list");
  count = found;
  if (given == passed) return;
  list = given == ObjectNumber{}
             ? nullptr
             : std::make_shared<TapedPeakList>(object_.tape(), given, std::move(inner));
}

bool TapedSpecParser::ShouldAvoidAIC(const Variant& masses, double& peak_find_width) {
  const Json answer = object_.AskMembers(
      "SpecParser.ShouldAvoidAIC", Arguments(masses, peak_find_width), [&](std::int64_t) -> Json {
        double width = peak_find_width;
        const bool avoid = inner_->ShouldAvoidAIC(masses, width);
        return {{"avoid", avoid}, {"peak_find_width", Encoded(width)}};
      });
  const bool avoid = object_.ReadMember<bool>(answer, "avoid");
  peak_find_width = object_.ReadMember<double>(answer, "peak_find_width");
  return avoid;
}

void TapedSpecParser::SearchTargetAbundance(double mass, double tolerance) {
  object_.Ask("SpecParser.SearchTargetAbundance", Arguments(mass, tolerance),
              [&] { inner_->SearchTargetAbundance(mass, tolerance); });
}

}  // namespace tof::recording
