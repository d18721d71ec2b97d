#include "hosts/apply/mzml_spectrum.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>
#include <utility>
#include <vector>

#include "hosts/apply/splices.h"
#include "instruments/spectra/input_error.h"
#include "instruments/spectra/mzml_array.h"

namespace tof::apply {
namespace {

using spectra::ArrayProblem;
using spectra::FindTerm;
using spectra::InputError;

constexpr std::string_view kMzUnit = "MS:1000040";
constexpr std::array<std::pair<std::string_view, double>, 5> kNsPerUnit{{
    {"UO:0000030", 1e-3},  // picosecond
    {"UO:0000150", 1.0},   // nanosecond
    {"UO:0000029", 1e3},   // microsecond
    {"UO:0000028", 1e6},   // millisecond
    {"UO:0000010", 1e9},   // second
}};
// Of a spectrum as a whole: base peak m/z, highest and lowest observed m/z.
constexpr std::array<std::string_view, 3> kMzOfSpectrum{"MS:1000504", "MS:1000527", "MS:1000528"};

constexpr const char* kMzTerm =
    R"(<cvParam cvRef="MS" accession="MS:1000514" name="m/z array" unitCvRef="MS" )"
    R"(unitAccession="MS:1000040" unitName="m/z"/>)";

// The array of flight times, with the term that says so.
struct TimeArray {
  pugi::xml_node array;
  pugi::xml_node term;  // of the array itself or of a group
};

class SpectrumConverter {
 public:
  SpectrumConverter(const std::string& text, pugi::xml_node groups, MassAxis& axis)
      : text_(text), groups_(groups), axis_(axis) {}

  std::string Convert(pugi::xml_node spectrum) {
    const TimeArray times = FindTimes(spectrum);
    if (!times.array) return text_;
    axis_.CountSpectrum();
    for (const std::string_view term : kMzOfSpectrum) {
      if (!FindTerm(spectrum, groups_, term).empty()) axis_.CountStaleTerm();
    }
    const std::string data = ConvertedData(spectrum, times);
    if (!data.empty()) ReplaceData(times.array.child("binary"), data);
    ReplaceTag(times.array, data);
    ReplaceTerm(times);
    return Spliced(text_, std::move(splices_));
  }

 private:
  TimeArray FindTimes(pugi::xml_node spectrum) const {
    TimeArray times;
    TimeArray masses;
    for (const auto array : spectrum.child("binaryDataArrayList").children("binaryDataArray")) {
      if (const auto term = FindTerm(array, groups_, spectra::kTimeArray)) times = {array, term};
      if (const auto term = FindTerm(array, groups_, spectra::kMzArray)) masses = {array, term};
    }
    if (times.array && masses.array) {
      throw ArrayProblem(masses.array, "an m/z array beside a time array",
                         "flight times that have no m/z yet");
    }
    return times.array ? times : masses;
  }

  static double NsPerUnit(const TimeArray& times) {
    const std::string_view unit = times.term.attribute("unitAccession").value();
    if (unit.empty() || unit == kMzUnit) return 1.0;
    const auto* const known =
        std::find_if(kNsPerUnit.begin(), kNsPerUnit.end(),
                     [unit](const auto& entry) { return entry.first == unit; });
    if (known != kNsPerUnit.end()) return known->second;
    throw ArrayProblem(times.array,
                       "flight times in " +
                           spectra::Quoted(times.term.attribute("unitName").value()) + " (" +
                           std::string(unit) + ")",
                       "ps, ns, us, ms or s");
  }

  // The text of the array's "binary" element with m/z; empty when the array is.
  std::string ConvertedData(pugi::xml_node spectrum, const TimeArray& times) {
    const spectra::ArrayForm form = spectra::FormOf(times.array, groups_);
    const double ns_per_unit = NsPerUnit(times);
    const std::size_t count = spectra::DeclaredLength(spectrum, times.array);
    std::vector<double> values = spectra::DecodeArray(times.array, form, count);
    for (std::size_t i = 0; i < values.size(); ++i) {
      if (!std::isfinite(values[i])) {
        throw ArrayProblem(times.array, "a number that is not finite in bin " + std::to_string(i),
                           "finite times");
      }
    }
    const auto step = std::adjacent_find(values.begin(), values.end(), std::greater_equal<>());
    if (step != values.end()) {
      throw ArrayProblem(
          times.array,
          fmt::format("time {} after {} in bin {}", *(step + 1), *step, step + 1 - values.begin()),
          "ascending times");
    }
    for (double& value : values) value = axis_.MassOf(value * ns_per_unit);
    return values.empty() ? std::string() : spectra::EncodeArray(values, form);
  }

  void ReplaceData(pugi::xml_node binary, const std::string& data) {
    const std::size_t begin = EndOfTag(text_, BeginOf(binary));
    splices_.push_back({begin, text_.find("</", begin), data});
  }

  // The array's start tag, with the length of its data and the reference to the processing.
  void ReplaceTag(pugi::xml_node array, const std::string& data) {
    pugi::xml_document copy;
    pugi::xml_node tag = copy.append_child(array.name());
    for (const pugi::xml_attribute attribute : array.attributes()) tag.append_copy(attribute);
    if (!data.empty())
      tag.attribute("encodedLength").set_value(std::to_string(data.size()).c_str());
    const std::string earlier = tag.attribute("dataProcessingRef").value();
    tag.remove_attribute("dataProcessingRef");
    tag.append_attribute("dataProcessingRef").set_value(kDataProcessingId);
    std::string text = AsciiXml(tag, "");
    text.replace(text.rfind('/'), std::string::npos, ">");
    const std::size_t begin = BeginOf(array);
    splices_.push_back({begin, EndOfTag(text_, begin), text});
    if (!earlier.empty()) AddParameter("earlier dataProcessingRef", earlier, array);
  }

  // Behind the array's terms, where the format wants it.
  void AddParameter(const char* name, const std::string& value, pugi::xml_node array) {
    pugi::xml_document parameter;
    pugi::xml_node node = parameter.append_child("userParam");
    node.append_attribute("name").set_value(name);
    node.append_attribute("value").set_value(value.c_str());
    const std::size_t place = BeginOf(array.child("binary"));
    splices_.push_back({place, place, AsciiXml(node, "")});
  }

  // A term that stands in a group is shared with other arrays: the reference is replaced by what
  // the group holds, the kind of array changed.
  void ReplaceTerm(const TimeArray& times) {
    if (times.term.parent() == times.array) {
      splices_.push_back({BeginOf(times.term), EndOfLeaf(text_, times.term), kMzTerm});
      return;
    }
    const pugi::xml_node group = times.term.parent();
    std::string terms;
    for (const pugi::xml_node term : group.children()) {
      terms += term == times.term ? kMzTerm : AsciiXml(term, "");
    }
    const auto reference = times.array.find_child_by_attribute("referenceableParamGroupRef", "ref",
                                                               group.attribute("id").value());
    splices_.push_back({BeginOf(reference), EndOfLeaf(text_, reference), terms});
  }

  const std::string& text_;
  pugi::xml_node groups_;
  MassAxis& axis_;
  std::vector<Splice> splices_;
};

}  // namespace

std::string ConvertedSpectrum(const std::string& text, pugi::xml_node groups,
                              const std::string& source, MassAxis& axis) {
  pugi::xml_document document;
  document.load_buffer(text.data(), text.size(), pugi::parse_default, pugi::encoding_utf8);
  try {
    return SpectrumConverter(text, groups, axis).Convert(document.document_element());
  } catch (const ArrayProblem& problem) {
    throw InputError(spectra::PlaceOfOffset(source, text, BeginOf(problem.Node())), problem.what(),
                     problem.Expected());
  }
}

}  // namespace tof::apply
