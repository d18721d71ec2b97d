#include "instruments/spectra/mzml_reader.h"

#include <cmath>
#include <cstddef>
#include <string>
#include <string_view>

#include "instruments/spectra/bin_width.h"
#include "instruments/spectra/input_error.h"
#include "instruments/spectra/mzml_array.h"
#include "instruments/spectra/xml_file.h"

namespace tof::spectra {
namespace {

// Reads one file; keeps what every step needs to say where something is wrong.
class MzmlReader {
 public:
  explicit MzmlReader(const std::filesystem::path& path) : file_(path) {}

  std::vector<Spectrum> Read(WhichSpectra which) {
    pugi::xml_node mzml = file_.Root();
    if (std::string_view(mzml.name()) == "indexedmzML") mzml = mzml.child("mzML");
    if (std::string_view(mzml.name()) != "mzML") {
      file_.Fail(file_.Root(), "element " + Quoted(file_.Root().name()), "an mzML document");
    }
    groups_ = mzml.child("referenceableParamGroupList");

    std::vector<Spectrum> spectra;
    for (const pugi::xml_node node : mzml.child("run").child("spectrumList").children("spectrum")) {
      spectra.push_back(ReadSpectrum(node));
      if (which == WhichSpectra::kFirst) break;
    }
    if (spectra.empty()) file_.Fail(mzml, "no spectrum", "a run with at least one spectrum");
    return spectra;
  }

 private:
  Spectrum ReadSpectrum(pugi::xml_node node) const {
    const pugi::xml_node arrays = node.child("binaryDataArrayList");
    Spectrum spectrum;
    spectrum.time_ns = ReadArray(node, arrays, kMzArray, "m/z array");
    spectrum.intensity = ReadArray(node, arrays, kIntensityArray, "intensity array");
    if (spectrum.intensity.size() != spectrum.time_ns.size()) {
      file_.Fail(node, std::to_string(spectrum.intensity.size()) + " intensities",
                 "one for each of " + std::to_string(spectrum.time_ns.size()) + " times");
    }
    Check(node, spectrum);
    spectrum.bin_width_ns = DeduceBinWidthNs(spectrum.time_ns);
    return spectrum;
  }

  void Check(pugi::xml_node node, const Spectrum& spectrum) const {
    const std::vector<double>& time_ns = spectrum.time_ns;
    if (time_ns.size() < 2) {
      file_.Fail(node, std::to_string(time_ns.size()) + " bins", "a spectrum of at least two bins");
    }
    for (std::size_t i = 0; i < time_ns.size(); ++i) {
      if (!std::isfinite(time_ns[i]) || !std::isfinite(spectrum.intensity[i])) {
        file_.Fail(node, "a number that is not finite in bin " + std::to_string(i),
                   "finite times and intensities");
      }
      if (i > 0 && time_ns[i] <= time_ns[i - 1]) {
        file_.Fail(node,
                   "time " + std::to_string(time_ns[i]) + " after " +
                       std::to_string(time_ns[i - 1]) + " in bin " + std::to_string(i),
                   "ascending times");
      }
    }
  }

  // The array of `spectrum` whose kind is the term `kind`.
  std::vector<double> ReadArray(pugi::xml_node spectrum, pugi::xml_node arrays,
                                std::string_view kind, const char* name) const {
    try {
      for (const pugi::xml_node array : arrays.children("binaryDataArray")) {
        if (FindTerm(array, groups_, kind).empty()) continue;
        const std::size_t count = DeclaredLength(spectrum, array);
        return DecodeArray(array, FormOf(array, groups_), count);
      }
    } catch (const ArrayProblem& problem) {
      file_.Fail(problem.Node(), problem.what(), problem.Expected());
    }
    file_.Fail(spectrum, std::string("no ") + name, "an m/z array and an intensity array");
  }

  XmlFile file_;
  pugi::xml_node groups_;
};

}  // namespace

std::vector<Spectrum> ReadMzml(const std::filesystem::path& path, WhichSpectra which) {
  return MzmlReader(path).Read(which);
}

}  // namespace tof::spectra
