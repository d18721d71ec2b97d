// What is raised for input that can't be used: a spectrum, a description, an override.
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

namespace tof::spectra {

// A place in an input. `source` is a file's path as the user gave it, or what stands for it;
// `line` and `column` count from 1 (columns in bytes), and 0 means the source as a whole.
struct InputPlace {
  std::string source;
  std::size_t line = 0;
  std::size_t column = 0;
};

// Says where, what was found there and what was expected instead. The text of what() is one line:
// "spectrum.txt:12:9: found "abc", expected an intensity".
class InputError : public std::runtime_error {
 public:
  InputError(InputPlace place, std::string found, std::string expected);

  const InputPlace& Place() const { return place_; }
  const std::string& Found() const { return found_; }
  const std::string& Expected() const { return expected_; }

 private:
  InputPlace place_;
  std::string found_;
  std::string expected_;
};

// `text` between quotation marks for a message: cut after 40 bytes, with a '?' for each byte that
// would disturb a terminal.
std::string Quoted(std::string_view text);

// The place of byte `offset` of `text`.
InputPlace PlaceOfOffset(std::string source, std::string_view text, std::size_t offset);

}  // namespace tof::spectra
