// A "binaryDataArray" of mzML: its terms and its numbers.
#pragma once

#include <cstddef>
#include <pugixml.hpp>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace tof::spectra {

// Terms of the PSI-MS controlled vocabulary.
inline constexpr std::string_view kMzArray = "MS:1000514";
inline constexpr std::string_view kIntensityArray = "MS:1000515";
inline constexpr std::string_view kTimeArray = "MS:1000595";

// How the numbers of an array are kept.
struct ArrayForm {
  bool is_32_bit = false;  // else 64-bit
  bool is_zipped = false;  // zlib
};

// An array that can't be used. Whoever knows the file says where `node` is.
class ArrayProblem : public std::runtime_error {
 public:
  ArrayProblem(pugi::xml_node node, const std::string& found, std::string expected)
      : std::runtime_error(found), node_(node), expected_(std::move(expected)) {}

  pugi::xml_node Node() const { return node_; }
  const std::string& Expected() const { return expected_; }

 private:
  pugi::xml_node node_;
  std::string expected_;
};

// The term of `node` itself, or else of a group that it refers to; empty when it has none. `groups`
// is the document's "referenceableParamGroupList", which may be empty.
pugi::xml_node FindTerm(pugi::xml_node node, pugi::xml_node groups, std::string_view accession);

// Raises an ArrayProblem for numbers that aren't floats, and for other compressions.
ArrayForm FormOf(pugi::xml_node array, pugi::xml_node groups);

// The number of elements that `array`, or else its `spectrum`, declares. Raises an ArrayProblem.
std::size_t DeclaredLength(pugi::xml_node spectrum, pugi::xml_node array);

// Raises an ArrayProblem unless the data are `count` numbers of the form.
std::vector<double> DecodeArray(pugi::xml_node array, const ArrayForm& form, std::size_t count);

// The text of the "binary" element.
std::string EncodeArray(std::span<const double> values, const ArrayForm& form);

}  // namespace tof::spectra
