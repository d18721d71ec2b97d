// An XML document whose complaints say where.
#pragma once

#include <filesystem>
#include <pugixml.hpp>
#include <string>

#include "instruments/spectra/input_error.h"

namespace tof::spectra {

// Keeps the text beside the parsed document, so that a node's position becomes a line and a column.
class XmlFile {
 public:
  // Reads and parses `path`. Raises an InputError when it can't be read or isn't well-formed.
  explicit XmlFile(const std::filesystem::path& path);
  // Parses `text`; `source` is its name in error messages.
  XmlFile(std::string text, std::string source);

  // The document's outermost element.
  pugi::xml_node Root() const { return document_.document_element(); }

  // Where the name of `node` begins. Attributes have no position of their own: pass their element.
  InputPlace PlaceOf(pugi::xml_node node) const;

  [[noreturn]] void Fail(pugi::xml_node node, std::string found, std::string expected) const;

 private:
  std::string text_;
  std::string source_;
  pugi::xml_document document_;
};

}  // namespace tof::spectra
