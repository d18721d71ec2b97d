#include "hosts/report/logs/calibration_log_reader.h"

#include <fmt/format.h>

#include <charconv>

namespace tof::report {
namespace {

constexpr std::string_view kTime = "Time: ";

// The hexadecimal behind "0x"; only its last six digits are in the log.
std::optional<std::int32_t> LoggedHex(std::string_view line, std::string_view name) {
  const std::string start = std::string(name) + " = 0x";
  if (!StartsWith(line, start)) return std::nullopt;
  line.remove_prefix(start.size());
  std::int32_t value = 0;
  const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), value, 16);
  if (error != std::errc{} || end != line.data() + line.size()) return std::nullopt;
  return value;
}

std::optional<double> LoggedCoefficient(std::string_view line, std::size_t index) {
  const std::string start = fmt::format("{}, ", static_cast<char>('A' + index));
  return StartsWith(line, start) ? LoggedNumber(line.substr(start.size())) : std::nullopt;
}

class Reader {
 public:
  Reader(const LogSource& source, std::vector<Problem>& problems)
      : file_(source.name), complaints_(file_, problems), lines_(source.bytes, complaints_) {}

  std::vector<CalibrationLogPart> Read() {
    bool more = lines_.Next();
    while (more) more = ReadItem();
    if (parts_.empty()) complaints_.Add(lines_.number(), "holds no coefficients");
    for (CalibrationLogPart& part : parts_) part.damaged = complaints_.Any();
    return std::move(parts_);
  }

 private:
  // Each of these answers whether there is a line to go on with.
  bool ReadItem() {
    const std::string& line = lines_.text();
    if (const auto began = Between(line, "===CALIBRATION ", "===")) {
      parts_.push_back({file_, std::string(*began), {}, false});
      return lines_.Next();
    }
    if (StartsWith(line, kTime)) return ReadDump();
    if (!line.empty() && !StartsWith(line, "GainChannel[")) {
      complaints_.Unexpected(lines_.number(), line, "a header or \"Time: \"");
    }
    return lines_.Next();
  }

  bool ReadDump() {
    if (parts_.empty()) {
      complaints_.Add(lines_.number(), "coefficients without a header before them");
      parts_.push_back({file_, "", {}, true});
    }
    CoefficientDump dump;
    dump.time = lines_.text().substr(kTime.size());
    const std::size_t first_line = lines_.number();
    if (ReadBody(dump)) {
      parts_.back().dumps.push_back(dump);
      return lines_.Next();
    }
    complaints_.Add(first_line, "the coefficients that begin here are damaged and left out");
    return !ended_;
  }

  bool NextOfDump(std::string_view expected) {
    if (lines_.Next()) return true;
    complaints_.Add(lines_.number(), fmt::format("ends where {} was expected", expected));
    ended_ = true;
    return false;
  }

  bool Refuse(std::string_view expected) {
    complaints_.Unexpected(lines_.number(), lines_.text(), expected);
    return false;
  }

  bool ReadLiteral(std::string_view literal) {
    if (!NextOfDump(literal)) return false;
    return lines_.text() == literal || Refuse(fmt::format("\"{}\"", literal));
  }

  bool ReadBody(CoefficientDump& dump) {
    if (!ReadLiteral("Mass coefficients are in nsecs")) return false;
    if (!ReadLiteral("coefficient, coefficient value")) return false;
    for (std::size_t i = 0; i < dump.coefficients.size(); ++i) {
      const std::string expected = fmt::format("coefficient {}", static_cast<char>('A' + i));
      if (!NextOfDump(expected)) return false;
      const std::optional<double> value = LoggedCoefficient(lines_.text(), i);
      if (!value) return Refuse(expected);
      dump.coefficients[i] = *value;
    }
    for (const char* const name : {"PolyTermsFlags", "TradWeighting", "PolyWeighting"}) {
      if (!NextOfDump(name)) return false;
      const std::optional<std::int32_t> value = LoggedHex(lines_.text(), name);
      if (!value) return Refuse(name);
      if (name == std::string_view("PolyTermsFlags")) dump.terms = *value;
    }
    return true;
  }

  std::string file_;
  Complaints complaints_;
  LogLines lines_;
  std::vector<CalibrationLogPart> parts_;
  bool ended_ = false;
};

bool SameCoefficients(const CoefficientDump& a, const CoefficientDump& b) {
  return a.coefficients == b.coefficients;
}

}  // namespace

std::vector<CalibrationLogPart> ReadCalibrationLog(const LogSource& source,
                                                   std::vector<Problem>& problems) {
  return Reader(source, problems).Read();
}

std::vector<FittingPass> PassesOf(const std::vector<CoefficientDump>& dumps) {
  std::vector<FittingPass> passes;
  for (std::size_t i = 0; i < dumps.size();) {
    FittingPass& pass = passes.emplace_back(FittingPass{dumps[i], std::nullopt});
    const bool reached_the_fit = i + 1 < dumps.size() && SameCoefficients(dumps[i], dumps[i + 1]);
    // Of three that are the same, the first is a pass that broke off: a fit changes something.
    const bool fit_changed = i + 2 < dumps.size() && !SameCoefficients(dumps[i], dumps[i + 2]);
    if (reached_the_fit && fit_changed) {
      pass.fitted = dumps[i + 2];
      i += 3;
    } else if (reached_the_fit && i + 2 == dumps.size()) {
      i += 2;  // the fit itself failed
    } else {
      ++i;
    }
  }
  return passes;
}

}  // namespace tof::report
