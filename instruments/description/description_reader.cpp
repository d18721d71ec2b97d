#include "instruments/description/description_reader.h"

#include <array>
#include <cstddef>
#include <limits>
#include <optional>
#include <set>
#include <utility>

#include "instruments/description/finder_section.h"
#include "instruments/description/known_keys.h"
#include "instruments/description/recorded_section.h"
#include "instruments/description/setpoint_value.h"
#include "instruments/description/virtual_section.h"
#include "instruments/description/xml_element.h"
#include "instruments/spectra/xml_file.h"

namespace tof::description {
namespace {

using spectra::Quoted;

constexpr std::int32_t kLargestSpectraCount = std::numeric_limits<std::int16_t>::max();

Acquisition ReadAcquisition(const XmlElement& instrument) {
  const XmlElement element = instrument.Child(
      "acquisition", {.attributes = {"start_us", "end_us", "time_s", "scale_factor"}});
  Acquisition acquisition;
  acquisition.start_us = element.Integer("start_us");
  acquisition.end_us = element.Integer("end_us");
  if (acquisition.start_us < 0) element.FailAt("start_us", "0 or a number above it");
  if (acquisition.end_us <= acquisition.start_us) {
    element.FailAt("end_us", "a time after start_us");
  }
  acquisition.time_s = element.NumberOr("time_s", acquisition.time_s);
  if (element.Has("scale_factor")) {
    acquisition.scale_factor = element.PositiveNumber("scale_factor");
  }
  return acquisition;
}

Status ReadStatus(const XmlElement& instrument) {
  Status status;
  if (!instrument.HasChild("status")) return status;
  const XmlElement element = instrument.Child(
      "status", {.attributes = {"nrdystate", "runstate"}, .repeated = {"not_ready"}});
  status.nrdystate = element.IntegerOr("nrdystate", status.nrdystate);
  status.runstate = element.IntegerOr("runstate", status.runstate);
  for (const XmlElement& time :
       element.Children("not_ready", {.attributes = {"from_sec", "to_sec"}})) {
    status.not_ready.push_back({time.NumberOr("from_sec", 0.0), time.Number("to_sec")});
    if (status.not_ready.back().to_sec <= status.not_ready.back().from_sec) {
      time.FailAt("to_sec", "a time after from_sec");
    }
  }
  return status;
}

RunDefaults ReadRun(const XmlElement& instrument) {
  RunDefaults run;
  if (!instrument.HasChild("run")) return run;
  const XmlElement element =
      instrument.Child("run", {.attributes = {"spectra", "trad_weighting", "peak_window"}});
  const std::int32_t spectra = element.IntegerOr("spectra", run.spectra);
  if (spectra < 1 || spectra > kLargestSpectraCount) {
    element.FailAt("spectra", "1 to " + std::to_string(kLargestSpectraCount));
  }
  run.spectra = static_cast<std::int16_t>(spectra);
  run.trad_weighting = element.NumberOr("trad_weighting", run.trad_weighting);
  run.peak_window = element.NumberOr("peak_window", run.peak_window);
  return run;
}

void ReadSettings(const XmlElement& instrument, InstrumentDescription& description) {
  if (!instrument.HasChild("settings")) return;
  const XmlElement settings = instrument.Child("settings", {.repeated = {"section"}});
  for (const XmlElement& section :
       settings.Children("section", {.attributes = {"name"}, .repeated = {"setting"}})) {
    const std::string name = section.Text("name");
    for (const XmlElement& setting :
         section.Children("setting", {.attributes = {"key", "value"}})) {
      const std::string key = setting.Text("key");
      if (!IsKnownSetting(name, key)) {
        setting.Fail("unknown key " + Quoted(key) + " of section " + Quoted(name),
                     "a setting that a calibration reads");
      }
      if (!description.settings[name].emplace(key, setting.Number("value")).second) {
        setting.FailAt("key", "each key once");
      }
    }
  }
}

void ReadFlags(const XmlElement& instrument, InstrumentDescription& description) {
  if (!instrument.HasChild("flags")) return;
  const XmlElement flags =
      instrument.Child("flags", {.attributes = {"aic_key"}, .repeated = {"flag"}});
  description.aic_flag_key = flags.TextOr("aic_key", "");
  for (const XmlElement& flag : flags.Children("flag", {.attributes = {"key", "value"}})) {
    const std::string key = flag.Text("key");
    if (!IsKnownFlag(key) && key != description.aic_flag_key) {
      flag.Fail("unknown flag " + Quoted(key), "a flag that a calibration reads, or aic_key's");
    }
    if (!description.flags.emplace(key, flag.Text("value")).second) {
      flag.FailAt("key", "each key once");
    }
  }
}

Setpoint ReadSetpoint(const XmlElement& element) {
  const std::optional<ValueType> type = ParseValueType(element.Text("type"));
  if (!type) element.FailAt("type", "int16, int32, double or boolean");
  const std::optional<Variant> value = ParseSetpointValue(*type, element.Text("value"));
  if (!value) element.FailAt("value", ExpectedValue(*type));
  return {*type, *value};
}

// The setpoint with a value of its own comes first, so that no alias leads to another alias.
std::int32_t ReadAlias(const XmlElement& element, const InstrumentDescription& description) {
  if (element.Has("type") || element.Has("value")) {
    element.FailAt("same_as", "it without type and value");
  }
  const std::int32_t own_id = element.Integer("same_as");
  if (!description.setpoints.contains(own_id)) {
    element.FailAt("same_as", "the id of a setpoint before this one");
  }
  return own_id;
}

void ReadSetpoints(const XmlElement& instrument, InstrumentDescription& description) {
  if (!instrument.HasChild("setpoints")) return;
  const XmlElement setpoints = instrument.Child("setpoints", {.repeated = {"setpoint"}});
  for (const XmlElement& element :
       setpoints.Children("setpoint", {.attributes = {"id", "type", "value", "same_as"}})) {
    const std::int32_t id = element.Integer("id");
    if (description.setpoints.count(id) + description.setpoint_aliases.count(id) > 0) {
      element.FailAt("id", "each id once");
    }
    if (element.Has("same_as")) {
      description.setpoint_aliases.emplace(id, ReadAlias(element, description));
    } else {
      description.setpoints.emplace(id, ReadSetpoint(element));
    }
  }
}

CoefficientRecord ReadCoefficientRecord(const XmlElement& coefficients, const char* name) {
  constexpr std::array<const char*, 6> kHigherTerms{"c", "d", "e", "f", "g", "h"};
  const XmlElement element =
      coefficients.Child(name, {.attributes = {"a_per_ns", "t0_ns", "c", "d", "e", "f", "g", "h"}});
  CoefficientRecord record{element.PositiveNumber("a_per_ns"), element.Number("t0_ns")};
  for (std::size_t i = 0; i < kHigherTerms.size(); ++i) {
    record[i + 2] = element.NumberOr(kHigherTerms[i], 0.0);
  }
  return record;
}

masstime::Weighting ReadWeighting(const XmlElement& coefficients, const char* attribute) {
  const std::string text = coefficients.TextOr(attribute, "relative_mass");
  if (text == "relative_mass") return masstime::Weighting::kRelativeMass;
  if (text == "flight_time") return masstime::Weighting::kFlightTime;
  if (text == "absolute_mass") return masstime::Weighting::kAbsoluteMass;
  coefficients.FailAt(attribute, "relative_mass, flight_time or absolute_mass");
}

void ReadCoefficients(const XmlElement& instrument, InstrumentDescription& description) {
  const XmlElement element = instrument.Child(
      "coefficients",
      {.attributes = {"trad_weighting", "poly_weighting"}, .once = {"factory", "default"}});
  description.trad_weighting = ReadWeighting(element, "trad_weighting");
  description.poly_weighting = ReadWeighting(element, "poly_weighting");
  description.factory_coefficients = ReadCoefficientRecord(element, "factory");
  if (element.HasChild("default")) {
    description.default_coefficients = ReadCoefficientRecord(element, "default");
  }
}

void ReadCalibrants(const XmlElement& instrument, InstrumentDescription& description) {
  if (!instrument.HasChild("calibrants")) return;
  const XmlElement calibrants = instrument.Child("calibrants", {.repeated = {"list"}});
  for (const XmlElement& list :
       calibrants.Children("list", {.attributes = {"setpoint_117"}, .text = true})) {
    const std::vector<double> masses = list.Numbers();
    if (masses.empty()) list.Fail("no masses", "masses in m/z, separated by blanks");
    std::set<double> seen;
    for (const double mass : masses) {
      if (mass <= 0.0) list.Fail("mass " + std::to_string(mass), "masses above 0");
      if (!seen.insert(mass).second) {
        list.Fail("mass " + std::to_string(mass) + " twice", "each mass once");
      }
    }
    if (!description.calibrants.emplace(list.Integer("setpoint_117"), masses).second) {
      list.FailAt("setpoint_117", "one list for each value");
    }
  }
}

void ReadSource(const XmlElement& instrument, InstrumentDescription& description) {
  if (instrument.HasChild("virtual") == instrument.HasChild("recorded")) {
    instrument.Fail("both or neither of \"virtual\" and \"recorded\"", "one of them");
  }
  if (instrument.HasChild("recorded")) {
    description.source = ReadRecordedSection(instrument);
  } else {
    description.source = ReadVirtualSection(instrument, description.acquisition.start_us,
                                            description.acquisition.end_us);
  }
}

InstrumentDescription ReadInstrument(const spectra::XmlFile& file) {
  if (std::string_view(file.Root().name()) != "instrument") {
    file.Fail(file.Root(), "element " + Quoted(file.Root().name()), "\"instrument\"");
  }
  const XmlElement instrument(
      file, file.Root(),
      {.attributes = {"name", "configuration", "mode", "mode_uses_rf_setpoints"},
       .once = {"acquisition", "status", "peak_finder", "paths", "run", "settings", "flags",
                "setpoints", "coefficients", "calibrants", "virtual", "recorded"}});
  InstrumentDescription description;
  description.name = instrument.Text("name");
  description.configuration = instrument.TextOr("configuration", "");
  description.mode = instrument.TextOr("mode", "");
  description.mode_uses_rf_setpoints = instrument.BooleanOr("mode_uses_rf_setpoints", true);
  description.acquisition = ReadAcquisition(instrument);
  description.status = ReadStatus(instrument);
  description.finder = ReadFinderSection(instrument);
  description.run = ReadRun(instrument);
  if (instrument.HasChild("paths")) {
    description.base_folder =
        instrument.Child("paths", {.attributes = {"base_folder"}}).Text("base_folder");
  }
  ReadSettings(instrument, description);
  ReadFlags(instrument, description);
  ReadSetpoints(instrument, description);
  ReadCoefficients(instrument, description);
  ReadCalibrants(instrument, description);
  ReadSource(instrument, description);
  return description;
}

}  // namespace

InstrumentDescription ReadDescription(const std::filesystem::path& path) {
  return ReadInstrument(spectra::XmlFile(path));
}

InstrumentDescription ParseDescription(std::string text, std::string source) {
  return ReadInstrument(spectra::XmlFile(std::move(text), std::move(source)));
}

InstrumentDescription BuiltInDescription() {
  return ParseDescription(std::string(BuiltInDescriptionText()), "built-in instrument");
}

}  // namespace tof::description
