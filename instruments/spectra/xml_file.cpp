#include "instruments/spectra/xml_file.h"

#include <cstddef>
#include <utility>

#include "instruments/spectra/input_file.h"

namespace tof::spectra {

XmlFile::XmlFile(const std::filesystem::path& path) : XmlFile(ReadWholeFile(path), path.string()) {}

XmlFile::XmlFile(std::string text, std::string source)
    : text_(std::move(text)), source_(std::move(source)) {
  const pugi::xml_parse_result result = document_.load_buffer(text_.data(), text_.size());
  if (result) return;
  throw InputError(PlaceOfOffset(source_, text_, static_cast<std::size_t>(result.offset)),
                   std::string("malformed XML (") + result.description() + ")",
                   "a well-formed document");
}

InputPlace XmlFile::PlaceOf(pugi::xml_node node) const {
  const std::ptrdiff_t offset = node.offset_debug();
  if (offset < 0) return {source_};
  return PlaceOfOffset(source_, text_, static_cast<std::size_t>(offset));
}

void XmlFile::Fail(pugi::xml_node node, std::string found, std::string expected) const {
  throw InputError(PlaceOf(node), std::move(found), std::move(expected));
}

}  // namespace tof::spectra
