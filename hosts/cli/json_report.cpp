#include "hosts/cli/json_report.h"

#include "hosts/cli/json_document.h"

namespace tof::cli {
namespace {

Json MassJson(const MassRow& row) {
  return {{"expected", row.expected},
          {"time_ns", NumberOrNull(row.time_ns)},
          {"calculated", NumberOrNull(row.calculated)},
          {"error_ppm", NumberOrNull(row.error_ppm)},
          {"voltage", NumberOrNull(row.voltage)},
          {"abundance", NumberOrNull(row.abundance)}};
}

Json FiguresJson(const TruthFigures& figures) {
  return {{"rms_ppm", NumberOrNull(figures.rms_ppm)},
          {"common_ppm", NumberOrNull(figures.common_ppm)},
          {"mass_dependent_ppm", NumberOrNull(figures.mass_dependent_ppm)},
          {"max_ppm", NumberOrNull(figures.max_ppm)}};
}

Json TruthJson(const Truth& truth) {
  return {{"rms_ppm", NumberOrNull(truth.in_band.rms_ppm)},
          {"max_ppm", NumberOrNull(truth.in_band.max_ppm)},
          {"at_calibration", FiguresJson(truth.at_calibration)},
          {"in_band", FiguresJson(truth.in_band)},
          {"weak", FiguresJson(truth.weak)},
          {"limit_ppm", NumberOrNull(truth.limit_ppm)}};
}

Json CountsJson(const Counts& counts) {
  return {{"spectra", counts.spectra},
          {"setpoint_writes", counts.setpoint_writes},
          {"setpoint_reads", counts.setpoint_reads},
          {"settle_calls", counts.settle_calls},
          {"settle_slices", counts.settle_slices}};
}

}  // namespace

std::string JsonOf(const CalibrationReport& report) {
  Json json;
  json["ok"] = report.ok;
  json["status"] = {{"number", report.status_number}, {"message", report.status_message}};
  json["skipped"] = report.skipped;
  json["aic"] = report.aic;
  json["masses"] = Json::array();
  for (const MassRow& row : report.masses) json["masses"].push_back(MassJson(row));
  AddCoefficients(json, report.coefficients, report.window, report.date);
  json["terms"] = report.terms;
  json["rms_ppm"] = NumberOrNull(report.rms_ppm);
  json["max_ppm"] = NumberOrNull(report.max_ppm);
  json["loo_ppm"] = NumberOrNull(report.loo_ppm);
  if (report.truth) json["truth"] = TruthJson(*report.truth);
  json["counts"] = CountsJson(report.counts);
  json["instrument_seconds"] = report.instrument_seconds;
  json["wall_seconds"] = report.wall_seconds;
  json["files"] = report.files;
  return DocumentText(json);
}

}  // namespace tof::cli
