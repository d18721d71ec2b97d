#include "hosts/cli/run_fit.h"

#include <algorithm>
#include <chrono>

#include "hosts/cli/date_text.h"
#include "hosts/cli/fit_report.h"
#include "hosts/cli/result_output.h"
#include "hosts/cli/spectrum_pairs.h"
#include "instruments/masstime/choose_terms.h"
#include "instruments/masstime/fit.h"
#include "instruments/spectra/utf8_path.h"

namespace tof::cli {
namespace {

using masstime::AcquisitionWindow;
using masstime::Calibrants;
using masstime::TermSet;
using masstime::Weighting;

SpectrumPairs ReadInput(const FitOptions& options) {
  if (!options.spectrum.empty()) return PairsFromSpectrum(options);
  SpectrumPairs input;
  input.found = ReadMassesAndTimes(options.pairs_file);
  const auto [first, last] =
      std::minmax_element(input.found.times_ns.begin(), input.found.times_ns.end());
  input.window = {*first, *last};
  return input;
}

void ChooseTerms(const Calibrants& calibrants, const AcquisitionWindow& window, Weighting weighting,
                 FitReport& report) {
  masstime::TermChoice choice = masstime::ChooseTerms(calibrants, window, weighting);
  report.fit = choice.candidates[choice.chosen].fit;
  report.candidates = std::move(choice.candidates);
  // Each round has one calibrant less to fit A and t0 to.
  if (calibrants.masses.size() < 3) return;
  report.loo_with_choice_ppm =
      masstime::RootMeanSquare(masstime::LeaveOneOutWithChoice(calibrants, window, weighting));
}

FitReport Fit(SpectrumPairs input, const FitOptions& options) {
  FitReport report;
  report.masses = std::move(input.found.masses);
  report.times_ns = std::move(input.found.times_ns);
  report.masses_without_peak = std::move(input.masses_without_peak);
  report.date = UtcDateText(std::chrono::system_clock::now());
  report.window = input.window;

  const Calibrants calibrants{report.masses, report.times_ns};
  const auto weighting = static_cast<Weighting>(options.weighting);
  if (options.terms) {
    const TermSet terms = (TermSet{1} << *options.terms) - 1;
    report.fit = masstime::FitTerms(calibrants, input.window, terms, weighting);
  } else {
    ChooseTerms(calibrants, input.window, weighting, report);
  }
  return report;
}

}  // namespace

ExitCode RunFit(const FitOptions& options, std::ostream& out, std::ostream& err) {
  SpectrumPairs input = ReadInput(options);
  RequireNotAnInput(options.json_file,
                    {options.pairs_file, spectra::PathOfUtf8(options.masses), options.spectrum});
  ResultOutput output(options.json_file, out);
  try {
    output.Deliver(Fit(std::move(input), options));
    return kDone;
  } catch (const masstime::FitError& error) {
    err << "fit failed: " << error.what() << '\n';
    return kFailed;
  }
}

}  // namespace tof::cli
