#include "instruments/description/recorded_section.h"

#include <string>

#include "instruments/spectra/utf8_path.h"

namespace tof::description {
namespace {

recorded::RecordedFile ReadFile(const XmlElement& element) {
  recorded::RecordedFile file;
  file.path = spectra::PathOfUtf8(element.Text("file"));
  if (file.path.empty()) element.FailAt("file", "the name of a file");

  const std::string format = element.TextOr("format", "text");
  if (format != "text" && format != "mzml") element.FailAt("format", "text or mzml");
  file.format =
      format == "mzml" ? recorded::SpectrumFormat::kMzml : recorded::SpectrumFormat::kText;

  const std::string spectra = element.TextOr("spectra", "first");
  if (spectra != "first" && spectra != "all") element.FailAt("spectra", "first or all");
  file.which = spectra == "all" ? spectra::WhichSpectra::kAll : spectra::WhichSpectra::kFirst;
  if (spectra == "all" && format == "text") {
    element.FailAt("spectra", "first: a text file holds one spectrum");
  }
  return file;
}

}  // namespace

recorded::RecordedFiles ReadRecordedSection(const XmlElement& instrument) {
  const XmlElement element = instrument.Child(
      "recorded",
      {.attributes = {"time_offset_ns", "seconds_per_spectrum"}, .repeated = {"spectrum"}});
  recorded::RecordedFiles files;
  files.time_offset_ns = element.NumberOr("time_offset_ns", 0.0);
  if (element.Has("seconds_per_spectrum")) {
    files.seconds_per_spectrum = element.PositiveNumber("seconds_per_spectrum");
  }
  for (const XmlElement& child :
       element.Children("spectrum", {.attributes = {"file", "format", "spectra"}})) {
    files.files.push_back(ReadFile(child));
  }
  if (files.files.empty()) element.Fail("no element \"spectrum\"", "at least one");
  return files;
}

}  // namespace tof::description
