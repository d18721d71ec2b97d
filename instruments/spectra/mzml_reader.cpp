#include "instruments/spectra/mzml_reader.h"

#include <zlib.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

#include "instruments/spectra/base64.h"
#include "instruments/spectra/bin_width.h"
#include "instruments/spectra/input_file.h"
#include "instruments/spectra/xml_file.h"

namespace tof::spectra {
namespace {

static_assert(std::endian::native == std::endian::little, "mzML arrays are little-endian");

// Terms of the PSI-MS controlled vocabulary.
constexpr std::string_view kMzArray = "MS:1000514";
constexpr std::string_view kIntensityArray = "MS:1000515";
constexpr std::string_view kFloat32 = "MS:1000521";
constexpr std::string_view kFloat64 = "MS:1000523";
constexpr std::string_view kZlib = "MS:1000574";
constexpr std::string_view kNoCompression = "MS:1000576";

// Deflate can't expand its input more than 1032 times; a length beyond that is not worth
// allocating.
constexpr std::size_t kLargestExpansion = 1032;

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
    for (const pugi::xml_node array : arrays.children("binaryDataArray")) {
      if (HasTerm(array, kind)) return Decode(array, DeclaredLength(spectrum, array));
    }
    file_.Fail(spectrum, std::string("no ") + name, "an m/z array and an intensity array");
  }

  std::size_t DeclaredLength(pugi::xml_node spectrum, pugi::xml_node array) const {
    const pugi::xml_attribute own = array.attribute("arrayLength");
    const pugi::xml_attribute length = own ? own : spectrum.attribute("defaultArrayLength");
    const std::optional<std::int32_t> count = ParseInt32(length.value());
    if (!count || *count < 0) {
      file_.Fail(spectrum, "array length " + Quoted(length.value()), "a number of elements");
    }
    return static_cast<std::size_t>(*count);
  }

  std::vector<double> Decode(pugi::xml_node array, std::size_t count) const {
    const bool narrow = HasTerm(array, kFloat32);
    if (!narrow && !HasTerm(array, kFloat64)) {
      file_.Fail(array, "an unknown precision (" + TermNames(array) + ")",
                 "32-bit float or 64-bit float");
    }
    const std::size_t size = count * (narrow ? sizeof(float) : sizeof(double));
    const std::string bytes = Bytes(array, size);
    if (bytes.size() != size) {
      file_.Fail(array, std::to_string(bytes.size()) + " bytes of data",
                 std::to_string(size) + " bytes for " + std::to_string(count) + " elements");
    }
    std::vector<double> values(count);
    if (count == 0) return values;
    if (narrow) {
      std::vector<float> floats(count);
      std::memcpy(floats.data(), bytes.data(), size);
      std::copy(floats.begin(), floats.end(), values.begin());
    } else {
      std::memcpy(values.data(), bytes.data(), size);
    }
    return values;
  }

  // The array's data, decoded and uncompressed; `size` is what it should come to.
  std::string Bytes(pugi::xml_node array, std::size_t size) const {
    const pugi::xml_node binary = array.child("binary");
    std::optional<std::string> bytes = DecodeBase64(binary.child_value());
    if (!bytes) file_.Fail(binary ? binary : array, "damaged base64 text", "whole base64 groups");
    if (HasTerm(array, kNoCompression)) return *bytes;
    if (!HasTerm(array, kZlib)) {
      file_.Fail(array, "an unknown compression (" + TermNames(array) + ")",
                 "zlib compression or no compression");
    }
    return Inflate(array, *bytes, size);
  }

  std::string Inflate(pugi::xml_node array, const std::string& packed, std::size_t size) const {
    if (size > packed.size() * kLargestExpansion) {
      file_.Fail(array, std::to_string(packed.size()) + " compressed bytes",
                 "enough for " + std::to_string(size) + " bytes");
    }
    std::string bytes(size, '\0');
    auto length = static_cast<uLongf>(size);
    // The same bytes, which zlib takes as unsigned ones.
    // NOLINTBEGIN(cppcoreguidelines-pro-type-reinterpret-cast)
    const int status = uncompress(reinterpret_cast<Bytef*>(bytes.data()), &length,
                                  reinterpret_cast<const Bytef*>(packed.data()),
                                  static_cast<uLong>(packed.size()));
    // NOLINTEND(cppcoreguidelines-pro-type-reinterpret-cast)
    if (status != Z_OK) {
      file_.Fail(array, std::string("damaged compressed data (") + zError(status) + ")",
                 "a zlib stream of " + std::to_string(size) + " bytes");
    }
    bytes.resize(length);
    return bytes;
  }

  // Whether `node`, or a group of terms that it refers to, holds the term.
  bool HasTerm(pugi::xml_node node, std::string_view accession) const {
    for (const pugi::xml_node term : node.children("cvParam")) {
      if (term.attribute("accession").value() == accession) return true;
    }
    const auto references = node.children("referenceableParamGroupRef");
    return std::any_of(references.begin(), references.end(), [&](pugi::xml_node reference) {
      const pugi::xml_node group = groups_.find_child_by_attribute(
          "referenceableParamGroup", "id", reference.attribute("ref").value());
      return !group.empty() && HasTerm(group, accession);
    });
  }

  static std::string TermNames(pugi::xml_node node) {
    std::string names;
    for (const pugi::xml_node term : node.children("cvParam")) {
      names += (names.empty() ? "" : ", ") + std::string(term.attribute("name").value());
    }
    return names;
  }

  XmlFile file_;
  pugi::xml_node groups_;
};

}  // namespace

std::vector<Spectrum> ReadMzml(const std::filesystem::path& path, WhichSpectra which) {
  return MzmlReader(path).Read(which);
}

}  // namespace tof::spectra
