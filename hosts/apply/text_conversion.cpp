#include "hosts/apply/text_conversion.h"

#include <fmt/format.h>

#include <optional>
#include <string>

#include "instruments/spectra/input_error.h"
#include "instruments/spectra/input_file.h"

namespace tof::apply {
namespace {

using spectra::InputError;
using spectra::Quoted;

constexpr std::size_t kPieceBytes = 1U << 20U;
constexpr std::string_view kBlanks = " \t\r";

// A column of a line: where it begins and ends.
struct Column {
  std::size_t begin = 0;
  std::string_view text;
};

// From `from` on; empty at the end of the line or in front of a comment.
Column NextColumn(std::string_view line, std::size_t from) {
  const std::size_t begin = line.find_first_not_of(kBlanks, from);
  if (begin == std::string_view::npos || line[begin] == '#') return {line.size(), {}};
  const std::size_t end = line.find_first_of(" \t\r#", begin);
  return {begin, line.substr(begin, end == std::string_view::npos ? end : end - begin)};
}

class TextConverter {
 public:
  TextConverter(std::string source, MassAxis& axis) : source_(std::move(source)), axis_(axis) {}

  // The line as it is to be written, without its end.
  std::string Converted(std::string_view line) {
    ++line_number_;
    const Column time = NextColumn(line, 0);
    if (time.text.empty()) return Comment(line);
    const double time_ns = Number(time, "a flight time in ns");
    if (last_time_ns_ && time_ns <= *last_time_ns_) {
      Fail(time, "time " + std::string(time.text) + " after " + fmt::format("{}", *last_time_ns_),
           "ascending times");
    }
    last_time_ns_ = time_ns;
    const std::size_t behind_time = time.begin + time.text.size();
    const Column intensity = NextColumn(line, behind_time);
    if (intensity.text.empty()) {
      Fail({intensity.begin, {}}, "the end of the line", "an intensity");
    }
    Number(intensity, "an intensity");
    const Column further = NextColumn(line, intensity.begin + intensity.text.size());
    if (!further.text.empty()) {
      Fail(further, "a further column " + Quoted(further.text), "time_ns and intensity only");
    }
    return fmt::format("{}{}{}", line.substr(0, time.begin), axis_.MassOf(time_ns),
                       line.substr(behind_time));
  }

  void RequireBins() const {
    if (axis_.Counts().bins >= 2) return;
    throw InputError({source_}, std::to_string(axis_.Counts().bins) + " bins with data",
                     "a spectrum of at least two bins: time_ns intensity");
  }

 private:
  // A heading like "time_ns intensity" must not be read as that of the new columns.
  std::string Comment(std::string_view line) const {
    const std::size_t hash = line.find('#');
    if (hash == std::string_view::npos) return std::string(line);
    if (line.find(kProvenanceTitle) != std::string_view::npos) {
      Fail({hash, {}}, "a spectrum that has its m/z already", "flight times");
    }
    return "# input:" + std::string(line.substr(hash + 1));
  }
  double Number(const Column& column, const std::string& meaning) const {
    const auto value = spectra::ParseDouble(column.text);
    if (!value) Fail(column, Quoted(column.text), meaning);
    return *value;
  }
  [[noreturn]] void Fail(const Column& column, std::string found, std::string expected) const {
    throw InputError({source_, line_number_, column.begin + 1}, std::move(found),
                     std::move(expected));
  }

  std::string source_;
  MassAxis& axis_;
  std::size_t line_number_ = 0;
  std::optional<double> last_time_ns_;
};

std::string Header(const std::vector<Fact>& facts) {
  std::string text = fmt::format("# {}\n", kProvenanceTitle);
  for (const Fact& fact : facts) text += fmt::format("# {}: {}\n", fact.name, fact.value);
  return text + "# columns: m/z intensity\n";
}

}  // namespace

void ConvertText(const std::filesystem::path& input, const std::vector<Fact>& facts, MassAxis& axis,
                 const Sink& sink, const std::function<void(std::uint64_t)>& progress) {
  std::ifstream in = spectra::OpenForReading(input);
  TextConverter converter(input.string(), axis);
  std::string piece = Header(facts);
  std::uint64_t bytes_read = 0;
  std::string line;
  while (std::getline(in, line)) {
    bytes_read += line.size() + 1;
    piece += converter.Converted(line) + (in.eof() ? "" : "\n");
    if (piece.size() < kPieceBytes) continue;
    sink(piece);
    piece.clear();
    progress(bytes_read);
  }
  if (in.bad()) throw InputError({input.string()}, "a read that failed", "a readable file");
  converter.RequireBins();
  axis.CountSpectrum();
  sink(piece);
}

}  // namespace tof::apply
