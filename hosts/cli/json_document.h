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

inline Json CoefficientsJson(const CoefficientRecord& coefficients) {
  Json json;
  for (std::size_t i = 0; i < coefficients.size(); ++i) {
    json[kCoefficientNames[i]] = NumberOrNull(coefficients[i]);
  }
  return json;
}

// A text of any bytes, for the indented document that all verbs write.
inline std::string DocumentText(const Json& json) {
  return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace tof::cli
