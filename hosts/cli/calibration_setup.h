// From the options to what a calibration works on. Nothing is written here.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "hosts/cli/options.h"
#include "instruments/description/instrument_description.h"

namespace tof::cli {

// The description that is named, or the built-in one, with the overrides. Raises an InputError.
description::InstrumentDescription DescriptionFor(const InstrumentChoice& choice);

// The expected masses: those of the command line, else the instrument's calibrants. Raises an
// InputError when there are none, or one is not finite and positive.
std::vector<double> ExpectedMasses(const CalibrateOptions& options,
                                   const description::InstrumentDescription& description);

// Every file that the instrument is made from.
std::vector<std::filesystem::path> InputFiles(
    const InstrumentChoice& choice, const description::InstrumentDescription& description);

}  // namespace tof::cli
