#include "hosts/cli/fit_report.h"
#include "hosts/cli/json_document.h"

namespace tof::cli {
namespace {

Json MassesJson(const FitReport& report) {
  Json masses = Json::array();
  for (std::size_t i = 0; i < report.masses.size(); ++i) {
    masses.push_back({{"expected", report.masses[i]},
                      {"time_ns", report.times_ns[i]},
                      {"error_ppm", NumberOrNull(report.fit.error_ppm[i])},
                      {"loo_error_ppm", NumberOrNull(report.fit.loo_error_ppm[i])},
                      {"leverage", NumberOrNull(report.fit.leverage[i])}});
  }
  return masses;
}

Json FiguresJson(const masstime::Fit& fit) {
  return {{"terms", NamesOfFitted(fit.terms)},
          {"rms_ppm", NumberOrNull(fit.rms_ppm)},
          {"max_ppm", NumberOrNull(fit.max_ppm)},
          {"loo_ppm", NumberOrNull(fit.loo_rms_ppm)},
          {"max_leverage", NumberOrNull(fit.max_leverage)}};
}

}  // namespace

std::string JsonOf(const FitReport& report) {
  Json json;
  json["ok"] = true;
  json["masses"] = MassesJson(report);
  json["masses_without_peak"] = report.masses_without_peak;
  AddCoefficients(json, report.fit.coefficients, report.window, report.date);
  json.update(FiguresJson(report.fit));
  json["loo_with_choice_ppm"] = NumberOrNull(report.loo_with_choice_ppm);
  json["candidates"] = Json::array();
  for (const masstime::Candidate& candidate : report.candidates) {
    Json entry = FiguresJson(candidate.fit);
    entry["accepted"] = candidate.accepted;
    entry["reason"] = candidate.reason;
    json["candidates"].push_back(entry);
  }
  return DocumentText(json);
}

}  // namespace tof::cli
