#include "hosts/cli/calibration_setup.h"

#include <cmath>
#include <variant>

#include "instruments/description/description_reader.h"
#include "instruments/description/overrides.h"
#include "instruments/spectra/input_error.h"

namespace tof::cli {

using description::InstrumentDescription;
using spectra::InputError;

InstrumentDescription DescriptionFor(const InstrumentChoice& choice) {
  InstrumentDescription result = choice.instrument.empty()
                                     ? description::BuiltInDescription()
                                     : description::ReadDescription(choice.instrument);
  for (const std::string& text : choice.settings) description::OverrideSetting(result, text);
  for (const std::string& text : choice.flags) description::OverrideFlag(result, text);
  for (const std::string& text : choice.setpoints) description::OverrideSetpoint(result, text);
  if (choice.base_folder) result.base_folder = *choice.base_folder;
  return result;
}

std::vector<double> ExpectedMasses(const CalibrateOptions& options,
                                   const InstrumentDescription& description) {
  if (!options.masses.empty()) return options.masses;
  std::vector<double> masses = description::CalibrantMasses(description);
  if (masses.empty()) {
    throw InputError({description.name}, "no calibrants for the present value of setpoint 117",
                     "a list of calibrants, or --masses");
  }
  for (const double mass : masses) {
    if (std::isfinite(mass) && mass > 0.0) continue;
    throw InputError({description.name}, "the calibrant " + std::to_string(mass),
                     "finite, positive masses");
  }
  return masses;
}

std::vector<std::filesystem::path> InputFiles(const InstrumentChoice& choice,
                                              const InstrumentDescription& description) {
  std::vector<std::filesystem::path> inputs;
  if (!choice.instrument.empty()) inputs.push_back(choice.instrument);
  if (const auto* recorded = std::get_if<recorded::RecordedFiles>(&description.source)) {
    for (const recorded::RecordedFile& file : recorded->files) {
      inputs.push_back(choice.data_folder / file.path);
    }
  }
  return inputs;
}

}  // namespace tof::cli
