// What the JSON of all verbs shares.
#pragma once

#include <cmath>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "hosts/cli/coefficient_names.h"

namespace tof::cli {

// Keys come out in the order they are put in.
using Json = nlohmann::ordered_json;

inline Json NumberOrNull(std::optional<double> value) {
  return value && std::isfinite(*value) ? Json(*value) : Json(nullptr);
}

// What whoever uses the coefficients needs: themselves, the formula and the window that they belong
// to, and since when they are; null without coefficients.
inline void AddCoefficients(Json& json, const std::optional<CoefficientRecord>& coefficients,
                            const masstime::AcquisitionWindow& window, const std::string& date) {
  json["date"] = date;
  json["formula"] = nullptr;
  json["window_ns"] = nullptr;
  json["coefficients"] = nullptr;
  if (!coefficients) return;
  json["formula"] = masstime::kFormula;
  json["window_ns"] = {window.start_ns, window.end_ns};
  for (std::size_t i = 0; i < coefficients->size(); ++i) {
    json["coefficients"][kCoefficientNames[i]] = NumberOrNull((*coefficients)[i]);
  }
}

// A text of any bytes, for the indented document that all verbs write.
inline std::string DocumentText(const Json& json) {
  return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace tof::cli
