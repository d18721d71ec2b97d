#include "instruments/description/xml_element.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <sstream>
#include <utility>

#include "instruments/spectra/input_file.h"

namespace tof::description {
namespace {

using spectra::Quoted;

bool Contains(const std::vector<std::string_view>& names, std::string_view name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

std::string_view Trimmed(std::string_view text) {
  constexpr std::string_view kWhiteSpace = " \t\r\n";
  const std::size_t first = text.find_first_not_of(kWhiteSpace);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kWhiteSpace) - first + 1);
}

std::string OneOf(const std::vector<std::string_view>& first,
                  const std::vector<std::string_view>& second) {
  std::vector<std::string_view> names = first;
  names.insert(names.end(), second.begin(), second.end());
  if (names.empty()) return "none";
  return fmt::format("one of: {}", fmt::join(names, ", "));
}

}  // namespace

XmlElement::XmlElement(const spectra::XmlFile& file, pugi::xml_node node, const Content& content)
    : file_(file), node_(node) {
  Check(content);
}

void XmlElement::Check(const Content& content) const {
  std::vector<std::string_view> seen;
  for (const pugi::xml_attribute attribute : node_.attributes()) {
    if (!Contains(content.attributes, attribute.name())) {
      Fail("unknown attribute " + Quoted(attribute.name()), OneOf(content.attributes, {}));
    }
    if (Contains(seen, attribute.name())) {
      Fail("attribute " + Quoted(attribute.name()) + " twice", "each attribute once");
    }
    seen.emplace_back(attribute.name());
  }
  seen.clear();
  for (const pugi::xml_node child : node_.children()) {
    if (child.type() == pugi::node_pcdata || child.type() == pugi::node_cdata) {
      if (!content.text)
        file_.Fail(child, "text " + Quoted(Trimmed(child.value())), "elements only");
      continue;
    }
    const bool once = Contains(content.once, child.name());
    if (!once && !Contains(content.repeated, child.name())) {
      file_.Fail(child,
                 fmt::format("unknown element {} in \"{}\"", Quoted(child.name()), node_.name()),
                 OneOf(content.once, content.repeated));
    }
    if (once && Contains(seen, child.name())) {
      file_.Fail(child, "element " + Quoted(child.name()) + " twice", "it once");
    }
    seen.emplace_back(child.name());
  }
}

std::string XmlElement::Text(const char* attribute) const {
  if (!Has(attribute)) {
    Fail(fmt::format("element \"{}\" without attribute \"{}\"", node_.name(), attribute),
         "this attribute");
  }
  return node_.attribute(attribute).value();
}

double XmlElement::Number(const char* attribute) const {
  const std::optional<double> value = spectra::ParseDouble(Text(attribute));
  if (!value) FailAt(attribute, "a number");
  return *value;
}

double XmlElement::PositiveNumber(const char* attribute) const {
  const double value = Number(attribute);
  if (value <= 0.0) FailAt(attribute, "a number above 0");
  return value;
}

std::int32_t XmlElement::Integer(const char* attribute) const {
  const std::optional<std::int32_t> value = spectra::ParseInt32(Text(attribute));
  if (!value) FailAt(attribute, "a whole number of 32 bits");
  return *value;
}

bool XmlElement::Boolean(const char* attribute) const {
  const std::string text = Text(attribute);
  if (text != "true" && text != "false") FailAt(attribute, "true or false");
  return text == "true";
}

std::string XmlElement::TextOr(const char* attribute, const std::string& absent) const {
  return Has(attribute) ? Text(attribute) : absent;
}

double XmlElement::NumberOr(const char* attribute, double absent) const {
  return Has(attribute) ? Number(attribute) : absent;
}

std::int32_t XmlElement::IntegerOr(const char* attribute, std::int32_t absent) const {
  return Has(attribute) ? Integer(attribute) : absent;
}

bool XmlElement::BooleanOr(const char* attribute, bool absent) const {
  return Has(attribute) ? Boolean(attribute) : absent;
}

XmlElement XmlElement::Child(const char* name, const Content& content) const {
  const pugi::xml_node child = node_.child(name);
  if (!child) {
    Fail(fmt::format("element \"{}\" without element \"{}\"", node_.name(), name), "this element");
  }
  return XmlElement(file_, child, content);
}

std::vector<XmlElement> XmlElement::Children(const char* name, const Content& content) const {
  std::vector<XmlElement> children;
  for (const pugi::xml_node child : node_.children(name))
    children.emplace_back(file_, child, content);
  return children;
}

std::vector<double> XmlElement::Numbers() const {
  std::vector<double> numbers;
  std::istringstream words(node_.child_value());
  for (std::string word; words >> word;) {
    const std::optional<double> value = spectra::ParseDouble(word);
    if (!value) Fail(Quoted(word), "numbers separated by blanks");
    numbers.push_back(*value);
  }
  return numbers;
}

void XmlElement::Fail(std::string found, std::string expected) const {
  file_.Fail(node_, std::move(found), std::move(expected));
}

void XmlElement::FailAt(const char* attribute, std::string expected) const {
  Fail(fmt::format("{}={}", attribute, Quoted(node_.attribute(attribute).value())),
       std::move(expected));
}

}  // namespace tof::description
