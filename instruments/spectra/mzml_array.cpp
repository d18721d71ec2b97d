#include "instruments/spectra/mzml_array.h"

#include <zlib.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <optional>

#include "instruments/spectra/base64.h"
#include "instruments/spectra/input_error.h"
#include "instruments/spectra/input_file.h"

namespace tof::spectra {
namespace {

static_assert(std::endian::native == std::endian::little, "mzML arrays are little-endian");

constexpr std::string_view kFloat32 = "MS:1000521";
constexpr std::string_view kFloat64 = "MS:1000523";
constexpr std::string_view kZlib = "MS:1000574";
constexpr std::string_view kNoCompression = "MS:1000576";

// Deflate can't expand its input more than 1032 times; a length beyond that is not worth
// allocating.
constexpr std::size_t kLargestExpansion = 1032;

std::size_t SizeOf(const ArrayForm& form) {
  return form.is_32_bit ? sizeof(float) : sizeof(double);
}

// The terms that say what kind of array this is, for a message.
std::string TermNames(pugi::xml_node node) {
  std::string names;
  for (const pugi::xml_node term : node.children("cvParam")) {
    names += (names.empty() ? "" : ", ") + std::string(term.attribute("name").value());
  }
  return names;
}

// zlib takes bytes as unsigned ones.
// NOLINTBEGIN(cppcoreguidelines-pro-type-reinterpret-cast)
Bytef* ZlibBytes(std::string& bytes) {
  return reinterpret_cast<Bytef*>(bytes.data());
}
const Bytef* ZlibBytes(const std::string& bytes) {
  return reinterpret_cast<const Bytef*>(bytes.data());
}
// NOLINTEND(cppcoreguidelines-pro-type-reinterpret-cast)

std::string Inflate(pugi::xml_node array, const std::string& packed, std::size_t size) {
  if (size > packed.size() * kLargestExpansion) {
    throw ArrayProblem(array, std::to_string(packed.size()) + " compressed bytes",
                       "enough for " + std::to_string(size) + " bytes");
  }
  std::string bytes(size, '\0');
  auto length = static_cast<uLongf>(size);
  const int status =
      uncompress(ZlibBytes(bytes), &length, ZlibBytes(packed), static_cast<uLong>(packed.size()));
  if (status != Z_OK) {
    throw ArrayProblem(array, std::string("damaged compressed data (") + zError(status) + ")",
                       "a zlib stream of " + std::to_string(size) + " bytes");
  }
  bytes.resize(length);
  return bytes;
}

std::string Deflate(const std::string& bytes) {
  uLongf length = compressBound(static_cast<uLong>(bytes.size()));
  std::string packed(length, '\0');
  const int status =
      compress(ZlibBytes(packed), &length, ZlibBytes(bytes), static_cast<uLong>(bytes.size()));
  if (status != Z_OK) throw std::runtime_error(std::string("zlib: ") + zError(status));
  packed.resize(length);
  return packed;
}

}  // namespace

pugi::xml_node FindTerm(pugi::xml_node node, pugi::xml_node groups, std::string_view accession) {
  const std::string wanted(accession);
  const auto own = node.find_child_by_attribute("cvParam", "accession", wanted.c_str());
  if (own) return own;
  for (const pugi::xml_node reference : node.children("referenceableParamGroupRef")) {
    const pugi::xml_node group = groups.find_child_by_attribute("referenceableParamGroup", "id",
                                                                reference.attribute("ref").value());
    const auto term = group.find_child_by_attribute("cvParam", "accession", wanted.c_str());
    if (term) return term;
  }
  return {};
}

ArrayForm FormOf(pugi::xml_node array, pugi::xml_node groups) {
  ArrayForm form;
  form.is_32_bit = !FindTerm(array, groups, kFloat32).empty();
  if (!form.is_32_bit && FindTerm(array, groups, kFloat64).empty()) {
    throw ArrayProblem(array, "an unknown precision (" + TermNames(array) + ")",
                       "32-bit float or 64-bit float");
  }
  form.is_zipped = FindTerm(array, groups, kNoCompression).empty();
  if (form.is_zipped && FindTerm(array, groups, kZlib).empty()) {
    throw ArrayProblem(array, "an unknown compression (" + TermNames(array) + ")",
                       "zlib compression or no compression");
  }
  return form;
}

std::size_t DeclaredLength(pugi::xml_node spectrum, pugi::xml_node array) {
  const pugi::xml_attribute own = array.attribute("arrayLength");
  const pugi::xml_attribute length = own ? own : spectrum.attribute("defaultArrayLength");
  const std::optional<std::int32_t> count = ParseInt32(length.value());
  if (!count || *count < 0) {
    throw ArrayProblem(spectrum, "array length " + Quoted(length.value()), "a number of elements");
  }
  return static_cast<std::size_t>(*count);
}

std::vector<double> DecodeArray(pugi::xml_node array, const ArrayForm& form, std::size_t count) {
  const pugi::xml_node binary = array.child("binary");
  std::optional<std::string> bytes = DecodeBase64(binary.child_value());
  if (!bytes) {
    throw ArrayProblem(binary ? binary : array, "damaged base64 text", "whole base64 groups");
  }
  const std::size_t size = count * SizeOf(form);
  if (form.is_zipped) bytes = Inflate(array, *bytes, size);
  if (bytes->size() != size) {
    throw ArrayProblem(array, std::to_string(bytes->size()) + " bytes of data",
                       std::to_string(size) + " bytes for " + std::to_string(count) + " elements");
  }
  std::vector<double> values(count);
  if (count == 0) return values;
  if (form.is_32_bit) {
    std::vector<float> floats(count);
    std::memcpy(floats.data(), bytes->data(), size);
    std::copy(floats.begin(), floats.end(), values.begin());
  } else {
    std::memcpy(values.data(), bytes->data(), size);
  }
  return values;
}

std::string EncodeArray(std::span<const double> values, const ArrayForm& form) {
  std::string bytes(values.size() * SizeOf(form), '\0');
  if (!values.empty() && form.is_32_bit) {
    std::vector<float> floats(values.size());
    std::transform(values.begin(), values.end(), floats.begin(),
                   [](double value) { return static_cast<float>(value); });
    std::memcpy(bytes.data(), floats.data(), bytes.size());
  } else if (!values.empty()) {
    std::memcpy(bytes.data(), values.data(), bytes.size());
  }
  return EncodeBase64(form.is_zipped ? Deflate(bytes) : bytes);
}

}  // namespace tof::spectra
