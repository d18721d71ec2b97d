// Strict reading of one XML element: what isn't expected is an error with its line.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <pugixml.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "instruments/spectra/xml_file.h"

namespace tof::description {

// What an element may hold. Each attribute, and each child named in `once`, at most one time.
struct Content {
  std::vector<std::string_view> attributes = {};
  std::vector<std::string_view> once = {};
  std::vector<std::string_view> repeated = {};
  bool text = false;
};

// An element of a document that outlives it. Every operation that fails raises an InputError with
// the element's place.
class XmlElement {
 public:
  // Refuses an element that holds anything but `content`.
  XmlElement(const spectra::XmlFile& file, pugi::xml_node node, const Content& content);

  bool Has(const char* attribute) const { return !node_.attribute(attribute).empty(); }

  // An attribute that must be there, as the type it must have.
  std::string Text(const char* attribute) const;
  double Number(const char* attribute) const;          // finite
  double PositiveNumber(const char* attribute) const;  // finite, above 0
  std::int32_t Integer(const char* attribute) const;
  bool Boolean(const char* attribute) const;  // "true" or "false"

  // The same, with what an absent attribute stands for.
  std::string TextOr(const char* attribute, const std::string& absent) const;
  double NumberOr(const char* attribute, double absent) const;
  std::int32_t IntegerOr(const char* attribute, std::int32_t absent) const;
  bool BooleanOr(const char* attribute, bool absent) const;

  // The child of that name; one that must be there; all of them in their order.
  bool HasChild(const char* name) const { return !node_.child(name).empty(); }
  XmlElement Child(const char* name, const Content& content) const;
  std::vector<XmlElement> Children(const char* name, const Content& content) const;

  // The numbers in the element's text, separated by white space.
  std::vector<double> Numbers() const;

  [[noreturn]] void Fail(std::string found, std::string expected) const;
  // For an attribute whose value can't be used.
  [[noreturn]] void FailAt(const char* attribute, std::string expected) const;

 private:
  void Check(const Content& content) const;

  const spectra::XmlFile& file_;
  pugi::xml_node node_;
};

}  // namespace tof::description
