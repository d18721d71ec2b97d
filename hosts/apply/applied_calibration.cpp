#include "hosts/apply/applied_calibration.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "hosts/apply/calibration_log.h"
#include "hosts/cli/coefficient_names.h"
#include "instruments/spectra/input_error.h"
#include "instruments/spectra/input_file.h"

namespace tof::apply {
namespace {

using cli::kCoefficientNames;
using nlohmann::json;
using spectra::InputError;

const std::string kFormulaText{masstime::kFormula};

bool HasTerms(const CoefficientRecord& coefficients) {
  return std::any_of(coefficients.begin() + masstime::kFirstTerm, coefficients.end(),
                     [](double term) { return term != 0.0; });
}

// A key that must be there, of a kind that `is` tells.
const json& Key(const json& object, const char* key, bool (json::*is)() const noexcept,
                const std::string& file, const std::string& expected) {
  const auto found = object.find(key);
  if (found != object.end() && ((*found).*is)()) return *found;
  const std::string what = found == object.end()
                               ? std::string("no key \"") + key + '"'
                               : '"' + std::string(key) + "\": " + spectra::Quoted(found->dump());
  throw InputError({file}, what, expected);
}

json ParseResult(const std::string& text, const std::string& file) {
  try {
    json result = json::parse(text);
    if (result.is_object()) return result;
  } catch (const json::parse_error& error) {
    throw InputError(spectra::PlaceOfOffset(file, text, error.byte == 0 ? 0 : error.byte - 1),
                     "text that is no JSON", "the JSON result of calibrate or fit");
  }
  throw InputError({file}, "JSON without keys", "the JSON result of calibrate or fit");
}

CoefficientRecord CoefficientsOf(const json& result, const std::string& file) {
  const json& keys = Key(result, "coefficients", &json::is_object, file,
                         "the coefficients of a calibration or fit that succeeded");
  CoefficientRecord coefficients{};
  for (std::size_t i = 0; i < coefficients.size(); ++i) {
    coefficients[i] =
        Key(keys, kCoefficientNames[i], &json::is_number, file, "a number").get<double>();
  }
  return coefficients;
}

// The terms that were fitted, where the result says it.
std::vector<std::string> TermsOf(const json& result, const std::string& file) {
  std::vector<std::string> terms;
  for (const json& term : Key(result, "terms", &json::is_array, file, "a list of names")) {
    if (!term.is_string()) throw InputError({file}, term.dump(), "the name of a term");
    terms.push_back(term.get<std::string>());
  }
  return terms;
}

AppliedCalibration FromResult(const std::string& text, const CalibrationChoice& choice) {
  const std::string file = choice.file.string();
  if (choice.run) throw InputError({"--run"}, "a JSON result", "a calibration log");
  if (choice.window) {
    throw InputError({"--window"}, "a JSON result, which names its own", "a calibration log");
  }
  const json result = ParseResult(text, file);
  AppliedCalibration calibration;
  calibration.model.coefficients = CoefficientsOf(result, file);
  const auto formula =
      Key(result, "formula", &json::is_string, file, '"' + kFormulaText + '"').get<std::string>();
  if (formula != kFormulaText) {
    throw InputError({file}, "coefficients of the formula \"" + formula + '"',
                     '"' + kFormulaText + '"');
  }
  const json& window = Key(result, "window_ns", &json::is_array, file, "[start, end] in ns");
  if (window.size() != 2 || !window[0].is_number() || !window[1].is_number()) {
    throw InputError({file}, "\"window_ns\": " + window.dump(), "[start, end] in ns");
  }
  calibration.model.window = {window[0].get<double>(), window[1].get<double>()};
  calibration.has_window = true;
  calibration.terms = TermsOf(result, file);
  calibration.date =
      Key(result, "date", &json::is_string, file, "when it was made").get<std::string>();
  calibration.what =
      result.contains("status") ? "the result of a calibration" : "the result of a fit";
  return calibration;
}

AppliedCalibration FromLog(const std::string& text, const CalibrationChoice& choice) {
  const std::string file = choice.file.string();
  const auto fits = FitResults(ParseCalibrationLog(text, file));
  if (fits.empty()) {
    throw InputError({file}, "no complete fit",
                     "three blocks of coefficients: before, right before and after a fit");
  }
  const std::size_t run = choice.run ? static_cast<std::size_t>(*choice.run) : fits.size();
  if (run > fits.size()) {
    throw InputError({"--run"}, std::to_string(run),
                     "one of the " + std::to_string(fits.size()) + " fits in " + file);
  }
  const CoefficientDump& fit = fits[run - 1];
  AppliedCalibration calibration;
  calibration.model.coefficients = fit.coefficients;
  calibration.has_window = choice.window.has_value();
  if (HasTerms(fit.coefficients) && !choice.window) {
    throw InputError(
        {file}, "terms beyond A and t0",
        "--window START,END in ns: the log records neither the formula of its terms nor "
        "their window. Give it when they are those of \"" +
            kFormulaText + '"');
  }
  if (choice.window) calibration.model.window = *choice.window;
  calibration.terms = cli::NamesOfFitted(static_cast<masstime::TermSet>(fit.terms));
  calibration.date = fit.time + " (local time of the instrument)";
  calibration.what = "fit " + std::to_string(run) + " of the " + std::to_string(fits.size()) +
                     " in a calibration log";
  return calibration;
}

void Check(const AppliedCalibration& calibration) {
  const auto& [coefficients, window] = calibration.model;
  if (!(coefficients[masstime::kA] > 0.0)) {
    throw InputError({calibration.file}, "A = " + std::to_string(coefficients[masstime::kA]),
                     "a positive one");
  }
  const bool extends = window.end_ns > window.start_ns;
  if (HasTerms(coefficients) && !extends) {
    throw InputError({calibration.file}, "a window that ends before it starts", "START < END");
  }
  if (extends && !masstime::IsMonotone(calibration.model)) {
    throw InputError({calibration.file}, "coefficients under which m/z falls with flight time",
                     "m/z that rises all over the window");
  }
}

}  // namespace

AppliedCalibration ReadCalibration(const CalibrationChoice& choice) {
  const std::string text = spectra::ReadWholeFile(choice.file);
  const std::size_t first = text.find_first_not_of(" \t\r\n");
  const bool is_json = first != std::string::npos && text[first] == '{';
  if (!is_json && !text.starts_with("===")) {
    throw InputError({choice.file.string()}, spectra::Quoted(text.substr(0, text.find('\n'))),
                     "the JSON result of calibrate or fit, or a calibration log");
  }
  AppliedCalibration calibration = is_json ? FromResult(text, choice) : FromLog(text, choice);
  calibration.file = choice.file.string();
  Check(calibration);
  return calibration;
}

}  // namespace tof::apply
