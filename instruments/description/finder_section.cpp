#include "instruments/description/finder_section.h"

#include <string>

namespace tof::description {
namespace {

peaks::CentroidMethod ReadMethod(const XmlElement& element) {
  using peaks::CentroidMethod;
  const std::string name = element.TextOr("centroid", "centre_of_gravity");
  if (name == "centre_of_gravity") return CentroidMethod::kCentreOfGravity;
  if (name == "edges") return CentroidMethod::kEdges;
  if (name == "log_parabola") return CentroidMethod::kLogParabola;
  if (name == "gaussian_fit") return CentroidMethod::kGaussianFit;
  if (name == "matched_filter") return CentroidMethod::kMatchedFilter;
  element.FailAt("centroid",
                 "centre_of_gravity, edges, log_parabola, gaussian_fit or matched_filter");
}

peaks::EdgeTiming ReadEdges(const XmlElement& element, peaks::CentroidMethod method) {
  peaks::EdgeTiming edges;
  for (const char* attribute : {"edge_low", "edge_high", "edge_position"}) {
    if (element.Has(attribute) && method != peaks::CentroidMethod::kEdges) {
      element.FailAt(attribute, "it with the centroid \"edges\" only");
    }
  }
  edges.low = element.NumberOr("edge_low", edges.low);
  edges.high = element.NumberOr("edge_high", edges.high);
  edges.position = element.NumberOr("edge_position", edges.position);
  if (edges.low <= 0.0) element.FailAt("edge_low", "a part of the height, above 0");
  if (edges.high >= 1.0) element.FailAt("edge_high", "a part of the height, below 1");
  if (edges.high < edges.low) element.FailAt("edge_high", "not less than edge_low");
  if (edges.position < 0.0 || edges.position > 1.0) element.FailAt("edge_position", "0 to 1");
  return edges;
}

}  // namespace

peaks::FinderOptions ReadFinderSection(const XmlElement& instrument) {
  peaks::FinderOptions options;
  if (!instrument.HasChild("peak_finder")) return options;
  const XmlElement element = instrument.Child(
      "peak_finder", {.attributes = {"centroid", "edge_low", "edge_high", "edge_position",
                                     "min_snr", "resolving_power"}});
  options.pick.centroid.method = ReadMethod(element);
  options.pick.centroid.edges = ReadEdges(element, options.pick.centroid.method);
  if (element.Has("min_snr")) options.pick.min_snr = element.PositiveNumber("min_snr");
  if (element.Has("resolving_power")) {
    options.resolving_power = element.PositiveNumber("resolving_power");
  }
  return options;
}

}  // namespace tof::description
