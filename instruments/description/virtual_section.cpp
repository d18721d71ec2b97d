#include "instruments/description/virtual_section.h"

#include <cmath>
#include <initializer_list>
#include <stdexcept>
#include <string>
#include <vector>

namespace tof::description {
namespace {

using virtual_instrument::AcquisitionParameters;
using virtual_instrument::AnalyzerParameters;
using virtual_instrument::DetectorParameters;
using virtual_instrument::DriftParameters;
using virtual_instrument::FlickerParameters;
using virtual_instrument::GainChannel;
using virtual_instrument::Parameters;
using virtual_instrument::RfGuideParameters;
using virtual_instrument::SettlingParameters;
using virtual_instrument::Species;
using virtual_instrument::SpeciesOfFormula;
using virtual_instrument::SpeciesOfMass;
using virtual_instrument::VirtualSourceParameters;

// An attribute and the parameter that it sets.
template <typename Group>
struct NumberField {
  const char* attribute;
  double Group::*parameter;
};

template <typename Group>
std::vector<std::string_view> NamesOf(std::initializer_list<NumberField<Group>> fields) {
  std::vector<std::string_view> names;
  for (const NumberField<Group>& field : fields) names.emplace_back(field.attribute);
  return names;
}

template <typename Group>
void ReadNumbers(const XmlElement& element, std::initializer_list<NumberField<Group>> fields,
                 Group& group) {
  for (const auto& [attribute, parameter] : fields) {
    group.*parameter = element.NumberOr(attribute, group.*parameter);
  }
}

// A child that holds nothing but numbers; an absent one leaves `group` as it is.
template <typename Group>
void ReadGroup(const XmlElement& parent, const char* name,
               std::initializer_list<NumberField<Group>> fields, Group& group) {
  if (!parent.HasChild(name)) return;
  ReadNumbers(parent.Child(name, {.attributes = NamesOf(fields)}), fields, group);
}

void ReadSpectrum(const XmlElement& parent, AcquisitionParameters& acquisition) {
  if (!parent.HasChild("spectrum")) return;
  const XmlElement element =
      parent.Child("spectrum", {.attributes = {"bin_ns", "pulses", "duration_sec"}});
  ReadNumbers(element,
              {NumberField<AcquisitionParameters>{"bin_ns", &AcquisitionParameters::bin_ns},
               {"duration_sec", &AcquisitionParameters::spectrum_duration_sec}},
              acquisition);
  if (element.Has("pulses")) acquisition.pulses_per_spectrum = element.Integer("pulses");
}

void ReadDetector(const XmlElement& parent, DetectorParameters& detector) {
  if (!parent.HasChild("detector")) return;
  const std::initializer_list<NumberField<DetectorParameters>> fields{
      {"dead_time_ns", &DetectorParameters::dead_time_ns},
      {"noise_sd_counts", &DetectorParameters::electronic_noise_sd_counts},
      {"baseline_counts", &DetectorParameters::baseline_counts}};
  const std::initializer_list<NumberField<GainChannel>> channel_fields{
      {"counts_per_ion", &GainChannel::counts_per_ion},
      {"saturation_counts", &GainChannel::saturation_counts}};
  const XmlElement element =
      parent.Child("detector", {.attributes = NamesOf(fields), .repeated = {"gain_channel"}});
  ReadNumbers(element, fields, detector);
  if (!element.HasChild("gain_channel")) return;
  detector.gain_channels.clear();
  for (const XmlElement& child :
       element.Children("gain_channel", {.attributes = NamesOf(channel_fields)})) {
    GainChannel channel;
    ReadNumbers(child, channel_fields, channel);
    detector.gain_channels.push_back(channel);
  }
}

void ReadRfGuide(const XmlElement& parent, RfGuideParameters& guide) {
  if (!parent.HasChild("rf_guide")) return;
  const std::initializer_list<NumberField<RfGuideParameters>> fields{
      {"frequency_hz", &RfGuideParameters::frequency_hz},
      {"inscribed_radius_mm", &RfGuideParameters::inscribed_radius_mm},
      {"relative_ion_radius", &RfGuideParameters::relative_ion_radius},
      {"transverse_energy_ev", &RfGuideParameters::transverse_energy_ev},
      {"well_loss_exponent", &RfGuideParameters::well_loss_exponent},
      {"adiabaticity_cutoff", &RfGuideParameters::adiabaticity_cutoff},
      {"adiabaticity_cutoff_width", &RfGuideParameters::adiabaticity_cutoff_width}};
  std::vector<std::string_view> names = NamesOf(fields);
  names.emplace_back("pole_pairs");
  const XmlElement element = parent.Child("rf_guide", {.attributes = names});
  ReadNumbers(element, fields, guide);
  guide.pole_pairs = element.IntegerOr("pole_pairs", guide.pole_pairs);
}

Species ReadOneSpecies(const XmlElement& element) {
  const double ions_per_pulse = element.Number("ions_per_pulse");
  if (element.Has("formula") == element.Has("mass")) {
    element.Fail("a species with both or neither of formula and mass", "one of them");
  }
  if (element.Has("mass")) return SpeciesOfMass(element.PositiveNumber("mass"), ions_per_pulse);
  try {
    return SpeciesOfFormula(element.Text("formula"), ions_per_pulse);
  } catch (const std::invalid_argument& error) {
    element.FailAt("formula", std::string("the formula of an ion (") + error.what() + ")");
  }
}

std::vector<Species> ReadSpecies(const XmlElement& parent, const char* name) {
  std::vector<Species> species;
  for (const XmlElement& element :
       parent.Children(name, {.attributes = {"formula", "mass", "ions_per_pulse"}})) {
    species.push_back(ReadOneSpecies(element));
  }
  return species;
}

void ReadParameters(const XmlElement& element, Parameters& parameters) {
  ReadGroup(element, "analyzer",
            {NumberField<AnalyzerParameters>{"a_per_ns", &AnalyzerParameters::a_sqrt_u_per_ns},
             {"t0_ns", &AnalyzerParameters::t0_ns},
             {"curvature_ppm", &AnalyzerParameters::curvature_ppm},
             {"resolving_power", &AnalyzerParameters::resolving_power}},
            parameters.analyzer);
  ReadSpectrum(element, parameters.acquisition);
  ReadDetector(element, parameters.detector);
  ReadGroup(element, "drift",
            {NumberField<DriftParameters>{"rate_ppm_per_min", &DriftParameters::rate_ppm_per_min},
             {"random_walk_ppm_per_sqrt_min", &DriftParameters::random_walk_ppm_per_sqrt_min}},
            parameters.drift);
  ReadGroup(element, "flicker",
            {NumberField<FlickerParameters>{"common_sd", &FlickerParameters::common_sd},
             {"common_correlation", &FlickerParameters::common_correlation},
             {"own_sd", &FlickerParameters::own_sd}},
            parameters.flicker);
  ReadRfGuide(element, parameters.rf_guide);
  ReadGroup(element, "settling",
            {NumberField<SettlingParameters>{"time_constant_sec",
                                             &SettlingParameters::time_constant_sec}},
            parameters.settling);
  parameters.calibrants = ReadSpecies(element, "calibrant");
  parameters.contaminants = ReadSpecies(element, "contaminant");
}

}  // namespace

VirtualSourceParameters ReadVirtualSection(const XmlElement& instrument, double window_start_us,
                                           double window_end_us) {
  const XmlElement element = instrument.Child(
      "virtual",
      {.attributes = {"seed", "rf_setpoint", "setpoint_write_sec"},
       .once = {"analyzer", "spectrum", "detector", "drift", "flicker", "rf_guide", "settling"},
       .repeated = {"calibrant", "contaminant"}});
  VirtualSourceParameters parameters;
  const std::int32_t seed = element.IntegerOr("seed", 1);
  if (seed < 0) element.FailAt("seed", "0 or a number above it");
  parameters.seed = static_cast<std::uint64_t>(seed);
  parameters.rf_setpoint = element.Integer("rf_setpoint");
  parameters.setpoint_write_sec = element.NumberOr("setpoint_write_sec", 0.0);
  if (parameters.setpoint_write_sec < 0.0) {
    element.FailAt("setpoint_write_sec", "0 or a number above it");
  }
  ReadParameters(element, parameters.physics);
  parameters.physics.acquisition.window_start_us = window_start_us;
  parameters.physics.acquisition.window_end_us = window_end_us;
  try {
    Validate(parameters.physics);
  } catch (const std::invalid_argument& error) {
    element.Fail(std::string("parameters that are refused (") + error.what() + ")",
                 "those of a possible instrument");
  }
  return parameters;
}

}  // namespace tof::description
