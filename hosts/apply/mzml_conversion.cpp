#include "hosts/apply/mzml_conversion.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <pugixml.hpp>
#include <sstream>
#include <string_view>
#include <unordered_map>

#include "hosts/apply/checksum.h"
#include "hosts/apply/mzml_spectrum.h"
#include "hosts/apply/splices.h"
#include "hosts/apply/xml_walk.h"
#include "instruments/spectra/input_error.h"

namespace tof::apply {
namespace {

using spectra::InputError;

constexpr const char* kSoftwareId = "tofcal_apply_software";

// Counts and sums up what it hands on.
class Output {
 public:
  explicit Output(const Sink& sink) : sink_(sink) {}

  void Write(std::string_view bytes) {
    sink_(bytes);
    count_ += bytes.size();
    if (!is_summed_up_) checksum_.Add(bytes);
  }
  std::uint64_t Count() const { return count_; }
  // Of all that was written so far. Asked for once: a file has one checksum.
  std::string Checksum() {
    is_summed_up_ = true;
    return checksum_.Digest();
  }

 private:
  const Sink& sink_;
  Sha1 checksum_;
  std::uint64_t count_ = 0;
  bool is_summed_up_ = false;
};

void AddTerm(pugi::xml_node node, const char* accession, const char* name, const char* value) {
  pugi::xml_node term = node.append_child("cvParam");
  term.append_attribute("cvRef").set_value("MS");
  term.append_attribute("accession").set_value(accession);
  term.append_attribute("name").set_value(name);
  term.append_attribute("value").set_value(value);
}

pugi::xml_document SoftwareEntry(const std::string& version) {
  pugi::xml_document entry;
  pugi::xml_node software = entry.append_child("software");
  software.append_attribute("id").set_value(kSoftwareId);
  software.append_attribute("version").set_value(version.c_str());
  AddTerm(software, "MS:1000799", "custom unreleased software tool", "tofcal");
  return entry;
}

pugi::xml_document ProcessingEntry(const std::vector<Fact>& facts) {
  pugi::xml_document entry;
  pugi::xml_node processing = entry.append_child("dataProcessing");
  processing.append_attribute("id").set_value(kDataProcessingId);
  pugi::xml_node method = processing.append_child("processingMethod");
  method.append_attribute("order").set_value("1");
  method.append_attribute("softwareRef").set_value(kSoftwareId);
  AddTerm(method, "MS:1001485", "m/z calibration", "");
  for (const Fact& fact : facts) {
    pugi::xml_node parameter = method.append_child("userParam");
    parameter.append_attribute("name").set_value(fact.name.c_str());
    parameter.append_attribute("value").set_value(fact.value.c_str());
  }
  return entry;
}

// `list`, the text of an element that counts its children, with `entry` as its last child.
std::string WithEntry(const std::string& list, pugi::xml_node entry) {
  pugi::xml_document document;
  document.load_buffer(list.data(), list.size(), pugi::parse_default, pugi::encoding_utf8);
  const pugi::xml_node root = document.document_element();
  const auto children = root.children();
  const auto count = std::count_if(children.begin(), children.end(), [](pugi::xml_node child) {
    return child.type() == pugi::node_element;
  });

  pugi::xml_document start;
  pugi::xml_node tag = start.append_child(root.name());
  for (const pugi::xml_attribute attribute : root.attributes()) tag.append_copy(attribute);
  tag.attribute("count").set_value(std::to_string(count + 1).c_str());
  std::string start_text = AsciiXml(tag, "");
  start_text.replace(start_text.rfind('/'), std::string::npos, ">");

  // Laid out like the last child, behind it.
  const std::size_t behind = list.find_last_not_of(" \t\r\n", list.rfind("</") - 1) + 1;
  const std::size_t last = BeginOf(root.last_child());
  const std::size_t indent = list.find_last_not_of(" \t", last - 1) + 1;
  std::string entry_text;
  std::istringstream lines(AsciiXml(entry, "\t"));
  for (std::string line; std::getline(lines, line);) {
    entry_text += '\n' + list.substr(indent, last - indent) + line;
  }
  return Spliced(list, {{0, EndOfTag(list, 0), start_text}, {behind, behind, entry_text}});
}

std::string ValueOf(const Attributes& attributes, std::string_view name) {
  for (const auto& [key, value] : attributes) {
    if (key == name) return value;
  }
  return {};
}

class MzmlConverter : public XmlListener {
 public:
  MzmlConverter(std::string source, const std::vector<Fact>& facts, std::string version,
                MassAxis& axis, const Sink& sink,
                const std::function<void(std::uint64_t)>& progress)
      : source_(std::move(source)),
        facts_(facts),
        version_(std::move(version)),
        axis_(axis),
        output_(sink),
        progress_(progress) {}

  void OnBytes(std::string_view bytes) override {
    pending_.erase(0, used_);
    pending_begin_ += used_;
    used_ = 0;
    pending_ += bytes;
    progress_(pending_begin_);
  }

  void OnStart(const std::string& name, const Attributes& attributes,
               const TagPlace& tag) override {
    path_.push_back(name);
    if (whole_) return;
    if (path_.size() == 1 && name != "mzML" && name != "indexedmzML") {
      Fail(tag, "element " + spectra::Quoted(name), "an mzML document");
    }
    CopyUpTo(tag.begin);
    if (name == "spectrum" || name == "chromatogram") {
      offsets_[name][ValueOf(attributes, "id")] = output_.Count();
    }
    if (name == "indexList") index_list_at_ = output_.Count();
    if (name == "index") index_name_ = ValueOf(attributes, "name");
    if (name == "offset") new_text_ = OffsetText(ValueOf(attributes, "idRef"), tag);
    if (name == "indexListOffset") new_text_ = std::to_string(index_list_at_);
    if (name == "run") RequireLists(tag);
    if (IsEditedAsAWhole()) whole_ = Whole{path_.size(), tag};
    if (IsReplaced(name)) CopyUpTo(tag.end);
    if (name == "fileChecksum") new_text_ = output_.Checksum();
  }

  void OnEnd(const std::string& name, const TagPlace& tag) override {
    if (whole_ && whole_->depth == path_.size()) {
      const std::string text = Take(tag.end);
      const TagPlace place = whole_->tag;
      whole_.reset();
      output_.Write(Edited(name, text, place));
    } else if (!whole_ && IsReplaced(name)) {
      if (tag.begin == tag.end) Fail(tag, "an empty " + name, "its value");
      Take(tag.begin);
      output_.Write(new_text_);
    }
    path_.pop_back();
  }

  void Finish() {
    CopyUpTo(pending_begin_ + pending_.size());
    if (axis_.Counts().spectra > 0) return;
    throw InputError({source_}, "no spectrum with an array of flight times",
                     "a time array, or an m/z array that holds flight times");
  }

 private:
  // An element that is edited when it has been read to its end.
  struct Whole {
    std::size_t depth;
    TagPlace tag;
  };

  bool IsEditedAsAWhole() const {
    static const std::vector<std::string> kLists{"softwareList", "dataProcessingList",
                                                 "referenceableParamGroupList"};
    const std::string& name = path_.back();
    const std::string parent = path_.size() < 2 ? "" : path_[path_.size() - 2];
    if (name == "spectrum") return parent == "spectrumList";
    return parent == "mzML" && std::find(kLists.begin(), kLists.end(), name) != kLists.end();
  }
  static bool IsReplaced(const std::string& name) {
    return name == "offset" || name == "indexListOffset" || name == "fileChecksum";
  }

  std::string Edited(const std::string& name, const std::string& text, const TagPlace& place) {
    if (name == "spectrum") return EditedSpectrum(text, place);
    if (name == "referenceableParamGroupList") {
      groups_.load_buffer(text.data(), text.size(), pugi::parse_default, pugi::encoding_utf8);
      return text;
    }
    if (text.find("</") == std::string::npos) Fail(place, "an empty " + name, "its entries");
    if (name == "softwareList") {
      has_software_ = true;
      return WithEntry(text, SoftwareEntry(version_).document_element());
    }
    if (text.find(fmt::format("\"{}\"", kDataProcessingId)) != std::string::npos) {
      Fail(place, "spectra that have their m/z already", "flight times");
    }
    has_processing_ = true;
    return WithEntry(text, ProcessingEntry(facts_).document_element());
  }

  std::string EditedSpectrum(const std::string& text, const TagPlace& place) {
    try {
      return ConvertedSpectrum(text, groups_.document_element(), source_, axis_);
    } catch (const InputError& error) {
      // From a place in the spectrum to one in the file.
      const auto& inside = error.Place();
      const std::size_t column =
          inside.line == 1 ? place.column + inside.column - 1 : inside.column;
      throw InputError({source_, place.line + inside.line - 1, column}, error.Found(),
                       error.Expected());
    }
  }

  std::string OffsetText(const std::string& id, const TagPlace& tag) const {
    const auto of_kind = offsets_.find(index_name_);
    if (of_kind != offsets_.end()) {
      const auto offset = of_kind->second.find(id);
      if (offset != of_kind->second.end()) return std::to_string(offset->second);
    }
    Fail(tag, "an index of " + spectra::Quoted(id) + ", which is not there",
         "the id of a " + index_name_);
  }

  void RequireLists(const TagPlace& tag) const {
    if (!has_software_) Fail(tag, "no softwareList before the run", "one, for the provenance");
    if (!has_processing_) {
      Fail(tag, "no dataProcessingList before the run", "one, for the provenance");
    }
  }

  // What is still pending in front of byte `end` of the file; it is done with then.
  std::string_view Pending(std::uint64_t end) {
    const std::size_t begin = used_;
    used_ = static_cast<std::size_t>(end - pending_begin_);
    return std::string_view(pending_).substr(begin, used_ - begin);
  }
  std::string Take(std::uint64_t end) { return std::string(Pending(end)); }
  void CopyUpTo(std::uint64_t end) { output_.Write(Pending(end)); }

  [[noreturn]] void Fail(const TagPlace& tag, const std::string& found,
                         const std::string& expected) const {
    throw InputError({source_, tag.line, tag.column}, found, expected);
  }

  std::string source_;
  const std::vector<Fact>& facts_;
  std::string version_;
  MassAxis& axis_;
  Output output_;
  const std::function<void(std::uint64_t)>& progress_;

  // Bytes of the file from `pending_begin_` on; `used_` of them are written or dropped.
  std::string pending_;
  std::uint64_t pending_begin_ = 0;
  std::size_t used_ = 0;

  std::vector<std::string> path_;  // the open elements
  std::optional<Whole> whole_;
  pugi::xml_document groups_;
  bool has_software_ = false;
  bool has_processing_ = false;

  // Where spectra and chromatograms begin in the output, by kind and id.
  std::unordered_map<std::string, std::unordered_map<std::string, std::uint64_t>> offsets_;
  std::uint64_t index_list_at_ = 0;
  std::string index_name_;
  std::string new_text_;  // of the element that is replaced
};

}  // namespace

void ConvertMzml(const std::filesystem::path& input, const std::vector<Fact>& facts,
                 const std::string& version, MassAxis& axis, const Sink& sink,
                 const std::function<void(std::uint64_t)>& progress) {
  MzmlConverter converter(input.string(), facts, version, axis, sink, progress);
  WalkXml(input, converter);
  converter.Finish();
}

}  // namespace tof::apply
