#include <fmt/format.h>
#include <fmt/ranges.h>

#include "hosts/cli/coefficient_names.h"
#include "hosts/cli/fit_report.h"
#include "hosts/cli/table_cell.h"

namespace tof::cli {
namespace {

std::string NamesText(masstime::TermSet terms) {
  return fmt::format("{}", fmt::join(NamesOfFitted(terms), " "));
}

std::string MassTable(const FitReport& report) {
  std::string text = fmt::format("{:>14} {:>14} {:>10} {:>18} {:>9}\n", "m/z", "time, ns", "ppm",
                                 "leave-one-out ppm", "leverage");
  for (std::size_t i = 0; i < report.masses.size(); ++i) {
    text += fmt::format("{:>14.5f} {:>14.4f} {} {} {:>9.3f}\n", report.masses[i],
                        report.times_ns[i], SignedCell(report.fit.error_ppm[i], 10, 3),
                        SignedCell(report.fit.loo_error_ppm[i], 18, 3), report.fit.leverage[i]);
  }
  for (const double mass : report.masses_without_peak) {
    text += fmt::format("{:>14.5f} {:>14} not used: the spectrum shows no peak\n", mass, "-");
  }
  return text;
}

std::string CandidateTable(const FitReport& report) {
  std::string text = fmt::format("\n{:<18} {:>9} {:>18} {:>13}\n", "coefficients", "rms ppm",
                                 "leave-one-out ppm", "max leverage");
  for (const masstime::Candidate& candidate : report.candidates) {
    text += fmt::format("{:<18} {:>9.3f} {} {:>13.3f}  {}: {}\n", NamesText(candidate.fit.terms),
                        candidate.fit.rms_ppm, Cell(candidate.fit.loo_rms_ppm, 18, 3),
                        candidate.fit.max_leverage, candidate.accepted ? "taken" : "not taken",
                        candidate.reason);
  }
  if (report.loo_with_choice_ppm) {
    text += fmt::format("leave-one-out with the choice repeated each time: {:.3f} ppm\n",
                        *report.loo_with_choice_ppm);
  }
  return text;
}

}  // namespace

std::string TableOf(const FitReport& report) {
  const masstime::Fit& fit = report.fit;
  std::string text = MassTable(report);
  if (!report.candidates.empty()) text += CandidateTable(report);

  text += fmt::format("\nfitted: {}\n", NamesText(fit.terms));
  text += fmt::format("A = {:.10g} sqrt(u)/ns\nt0 = {:.8g} ns\n", fit.coefficients[masstime::kA],
                      fit.coefficients[masstime::kT0]);
  for (std::size_t i = masstime::kFirstTerm; i < fit.coefficients.size(); ++i) {
    if ((fit.terms >> (i - masstime::kFirstTerm) & 1U) == 0) continue;
    text += fmt::format("{} = {:.8g} sqrt(u)\n", kCoefficientNames[i], fit.coefficients[i]);
  }
  return text + fmt::format("rms {:.3f} ppm, max {:.3f} ppm, leave-one-out {} ppm\n", fit.rms_ppm,
                            fit.max_ppm, Cell(fit.loo_rms_ppm, 0, 3));
}

}  // namespace tof::cli
