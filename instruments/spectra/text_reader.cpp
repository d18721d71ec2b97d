#include "instruments/spectra/text_reader.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>

#include "instruments/spectra/bin_width.h"
#include "instruments/spectra/input_error.h"
#include "instruments/spectra/input_file.h"

namespace tof::spectra {
namespace {

bool IsBlank(char c) {
  return c == ' ' || c == '\t' || c == '\r';
}

// Walks over the text once, without copying; a line and a column are computed only for a message.
class Walker {
 public:
  Walker(std::string_view text, const std::string& source)
      : source_(source), begin_(text.data()), at_(begin_), end_(begin_ + text.size()) {}

  // Moves to the next line that holds data; false at the end of the text.
  bool ToDataLine() {
    for (;;) {
      SkipBlanks();
      if (at_ == end_) return false;
      if (!AtLineEnd()) return true;
      ToNextLine();
    }
  }

  // Reads the next column of this line and moves behind it.
  double Number(const char* meaning) {
    SkipBlanks();
    if (AtLineEnd()) Fail(at_, "the end of the line", meaning);
    double value = 0.0;
    const char* const start = (*at_ == '+' && at_ + 1 != end_ && at_[1] != '-') ? at_ + 1 : at_;
    const auto [stop, error] = std::from_chars(start, end_, value);
    const bool whole = stop == end_ || IsBlank(*stop) || *stop == '\n' || *stop == '#';
    if (error != std::errc() || !whole || !std::isfinite(value)) Fail(at_, Quoted(Word()), meaning);
    column_start_ = at_;
    at_ = stop;
    return value;
  }

  void ExpectLineEnd() {
    SkipBlanks();
    if (!AtLineEnd()) Fail(at_, "a further column " + Quoted(Word()), "time_ns and intensity only");
  }

  // Rejects the column that was read last.
  [[noreturn]] void FailAtNumber(const std::string& found, const std::string& expected) const {
    Fail(column_start_, found, expected);
  }

  std::string_view LastNumber() const {
    return {column_start_, static_cast<std::size_t>(at_ - column_start_)};
  }

 private:
  void SkipBlanks() {
    while (at_ != end_ && IsBlank(*at_)) ++at_;
  }
  bool AtLineEnd() const { return at_ == end_ || *at_ == '\n' || *at_ == '#'; }
  void ToNextLine() {
    at_ = std::find(at_, end_, '\n');
    if (at_ != end_) ++at_;
  }
  std::string_view Word() const {
    const char* const stop =
        std::find_if(at_, end_, [](char c) { return IsBlank(c) || c == '\n' || c == '#'; });
    return {at_, static_cast<std::size_t>(stop - at_)};
  }
  [[noreturn]] void Fail(const char* at, const std::string& found,
                         const std::string& expected) const {
    const std::string_view text(begin_, static_cast<std::size_t>(end_ - begin_));
    throw InputError(PlaceOfOffset(source_, text, static_cast<std::size_t>(at - begin_)), found,
                     expected);
  }

  const std::string& source_;
  const char* begin_;
  const char* at_;
  const char* end_;
  const char* column_start_ = nullptr;
};

}  // namespace

Spectrum ReadTextSpectrum(const std::filesystem::path& path) {
  return ParseTextSpectrum(ReadWholeFile(path), path.string());
}

Spectrum ParseTextSpectrum(std::string_view text, const std::string& source) {
  Spectrum spectrum;
  const auto lines = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')) + 1;
  spectrum.time_ns.reserve(lines);
  spectrum.intensity.reserve(lines);

  Walker walker(text, source);
  while (walker.ToDataLine()) {
    const double time_ns = walker.Number("a flight time in ns");
    if (!spectrum.time_ns.empty() && time_ns <= spectrum.time_ns.back()) {
      walker.FailAtNumber(
          "time " + std::string(walker.LastNumber()) +
              (time_ns == spectrum.time_ns.back() ? " twice" : " after a later one"),
          "ascending times");
    }
    spectrum.time_ns.push_back(time_ns);
    spectrum.intensity.push_back(walker.Number("an intensity"));
    walker.ExpectLineEnd();
  }
  if (spectrum.time_ns.size() < 2) {
    throw InputError({source}, std::to_string(spectrum.time_ns.size()) + " bins with data",
                     "a spectrum of at least two bins: time_ns intensity");
  }
  spectrum.bin_width_ns = DeduceBinWidthNs(spectrum.time_ns);
  return spectrum;
}

}  // namespace tof::spectra
