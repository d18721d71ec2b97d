// The elements of an XML file of any size, one after the other.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tof::apply {

// A tag in the file: bytes `begin` to `end`, of which `end` is the first behind it.
struct TagPlace {
  std::uint64_t begin = 0;
  std::uint64_t end = 0;
  std::size_t line = 0;    // of `begin`, from 1
  std::size_t column = 0;  // of `begin`, from 1, in bytes
};

using Attributes = std::vector<std::pair<std::string, std::string>>;

// Is told what the file holds, in its order. May raise anything.
class XmlListener {
 public:
  virtual ~XmlListener() = default;
  // The next bytes of the file; the tags in them are told afterwards, at the latest with the
  // following bytes.
  virtual void OnBytes(std::string_view bytes) = 0;
  virtual void OnStart(const std::string& name, const Attributes& attributes,
                       const TagPlace& tag) = 0;
  // An element without content (<a/>) ends at the end of its tag: `tag` has no extent.
  virtual void OnEnd(const std::string& name, const TagPlace& tag) = 0;
};

// Raises an InputError for a file that can't be read or is not well-formed, with its place, and for
// an encoding in which a character of markup is more than a byte.
void WalkXml(const std::filesystem::path& path, XmlListener& listener);

}  // namespace tof::apply
