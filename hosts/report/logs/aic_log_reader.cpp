#include "hosts/report/logs/aic_log_reader.h"

#include <fmt/format.h>

#include <array>
#include <cmath>
#include <utility>

namespace tof::report {
namespace {

// What the numbers of a line are, as the heading before them says.
enum class Part { kHead, kSurvey, kTimes, kAbundancesByMass, kAbundancesByMeasurement, kAverages };

struct Heading {
  std::string_view start;
  Part part;
};
constexpr std::array<Heading, 5> kHeadings{{
    {"Survey: Voltage, [Time, Abundance]s", Part::kSurvey},
    {"TOFs [MassIdx,", Part::kTimes},
    {"Abundances [MassIdx,", Part::kAbundancesByMass},
    {"Abundances [MeasurementIdx,", Part::kAbundancesByMeasurement},
    {"Averages (and times used for averaging)", Part::kAverages},
}};

// Lines that say what is known anyway, or nothing that a page shows.
constexpr std::array<std::string_view, 15> kPassedOver{
    "GainChannel = ",
    "NumSteps calculated to be ",
    "Freeze",
    "Unfreeze",
    "Original Idx Array: ",
    "Randomized Array: ",
    "Collecting tofs for Averaging...",
    "Collecting additional tofs for Averaging...",
    "Stored raw measured times",
    "AIC; writing file with Calibration data for Tune Report",
    "dMassAbundance = ",
    "RF voltage, Ab: ",
    "No replacement for mass[",
    "for mass[",
    "Replacing target values"};

std::optional<double> Bracketed(std::string_view line, std::string_view name) {
  const std::string start = std::string(name) + "[";
  const std::size_t at = line.find(start);
  if (at == std::string_view::npos) return std::nullopt;
  line.remove_prefix(at + start.size());
  const std::size_t end = line.find(']');
  return end == std::string_view::npos ? std::nullopt : LoggedNumber(line.substr(0, end));
}

std::optional<std::size_t> AsIndex(std::optional<double> value) {
  constexpr double kMost = 32767.0;
  if (!value || !(*value >= 0.0) || *value > kMost || *value != std::floor(*value)) {
    return std::nullopt;
  }
  return static_cast<std::size_t>(*value);
}

// "[time, abundance]"
std::optional<AicLogReading> ReadingOf(std::string_view text) {
  const auto numbers = LoggedNumbers(text);
  if (!numbers || numbers->size() != 2 || std::isnan((*numbers)[1])) return std::nullopt;
  AicLogReading reading;
  if (!std::isnan((*numbers)[0])) reading.time_ns = (*numbers)[0];
  reading.abundance = (*numbers)[1];
  return reading;
}

// "20, [t, a], [t, a]"
std::optional<AicLogSurveyLine> SurveyLineOf(std::string_view text) {
  const std::optional<double> voltage = LoggedNumber(text.substr(0, text.find(',')));
  if (!voltage || std::isnan(*voltage)) return std::nullopt;
  AicLogSurveyLine line{*voltage, {}};
  while (true) {
    const std::size_t open = text.find('[');
    if (open == std::string_view::npos) break;
    const std::size_t close = text.find(']', open);
    if (close == std::string_view::npos) return std::nullopt;
    const auto reading = ReadingOf(text.substr(open + 1, close - open - 1));
    if (!reading) return std::nullopt;
    line.masses.push_back(*reading);
    text.remove_prefix(close + 1);
  }
  if (line.masses.empty() || !text.empty()) return std::nullopt;
  return line;
}

class Reader {
 public:
  Reader(const LogSource& source, std::vector<Problem>& problems)
      : complaints_(source.name, problems), lines_(source.bytes, complaints_) {
    content_.file = source.name;
  }

  AicLogContent Read() {
    while (lines_.Next()) ReadLine(lines_.text());
    SayWhatIsMissing();
    return std::move(content_);
  }

 private:
  void ReadLine(const std::string& line) {
    if (line.empty()) return;
    if (const auto began = Between(line, "===AIC ", "===")) {
      content_.began = *began;
      return;
    }
    for (const Heading& heading : kHeadings) {
      if (!StartsWith(line, heading.start)) continue;
      Begin(heading.part);
      return;
    }
    for (const std::string_view start : kPassedOver) {
      if (StartsWith(line, start)) return;
    }
    if (!ReadSingle(line)) ReadNumbers(line);
  }

  void Begin(Part part) {
    part_ = part;
    // A later traditional run adds its averages to the log that a failed run has left open: those
    // are not this run's.
    if (part == Part::kAverages && !content_.times_ns.empty()) content_.averaged = true;
  }

  // Lines with a text of their own; false when it is none.
  bool ReadSingle(const std::string& line) {
    constexpr std::string_view kThreshold = "Abundance Threshold = ";
    constexpr std::string_view kScalars = "Scalars for Ab Profile, ";
    if (StartsWith(line, kThreshold)) {
      content_.threshold = LoggedNumber(std::string_view(line).substr(kThreshold.size()));
      if (!content_.threshold) Refuse("a number behind \"Abundance Threshold = \"");
      return true;
    }
    if (StartsWith(line, kScalars)) {
      const auto scalars = LoggedNumbers(std::string_view(line).substr(kScalars.size()));
      if (scalars) content_.scalars = *scalars;
      if (!scalars) Refuse("numbers behind \"Scalars for Ab Profile, \"");
      return true;
    }
    if (StartsWith(line, "starting SP Value[")) {
      content_.searches.emplace_back();
      AddSearchPoint(Bracketed(line, "SP Value"), Bracketed(line, "dMassAbundance"));
      return true;
    }
    if (StartsWith(line, "dMassAbundance[")) {
      AddSearchPoint(Bracketed(line, "New SP Value"), Bracketed(line, "dMassAbundance"));
      return true;
    }
    if (StartsWith(line, "mass[")) return ReadOutside(line);
    return false;
  }

  void AddSearchPoint(std::optional<double> voltage, std::optional<double> abundance) {
    if (!voltage || !abundance) {
      Refuse("a setpoint value and an abundance in brackets");
      return;
    }
    if (content_.searches.empty()) content_.searches.emplace_back();
    content_.searches.back().push_back({*voltage, std::nullopt, *abundance});
  }

  bool ReadOutside(const std::string& line) {
    const auto mass = AsIndex(Bracketed(line, "mass"));
    const bool below = line.find("stays below the minimum") != std::string::npos;
    const bool above = line.find("stays above the maximum") != std::string::npos;
    if (!below && !above) {
      // Of a search that tells more than a page shows.
      if (line.find("has had") != std::string::npos) return true;
      if (line.find("has never had") != std::string::npos) return true;
    }
    if (!mass || (!below && !above)) {
      Refuse("a mass that stays below the minimum or above the maximum");
      return true;
    }
    content_.outside.push_back({*mass, below ? "below the band" : "above the band"});
    return true;
  }

  void ReadNumbers(const std::string& line) {
    switch (part_) {
      case Part::kSurvey:
        return ReadSurvey(line);
      case Part::kTimes:
        return ReadTimes(line);
      case Part::kAbundancesByMass:
        return ReadAbundances(line, 2);
      case Part::kAbundancesByMeasurement:
        return ReadAbundances(line, 1);
      case Part::kAverages:
        if (!LoggedNumbers(line)) Refuse("an index, an average and its flight times");
        return;
      case Part::kHead:
        return Refuse("a line of an AIC log");
    }
  }

  void ReadSurvey(const std::string& line) {
    const auto survey = SurveyLineOf(line);
    if (!survey) return Refuse("a voltage and [time, abundance] of each mass");
    if (!content_.survey.empty() &&
        survey->masses.size() != content_.survey.front().masses.size()) {
      return Refuse(fmt::format("{} masses, as before", content_.survey.front().masses.size()));
    }
    content_.survey.push_back(*survey);
  }

  void ReadTimes(const std::string& line) {
    const auto numbers = LoggedNumbers(line);
    const auto index = numbers ? AsIndex(numbers->front()) : std::nullopt;
    if (!index || numbers->size() < 3 || *index != content_.times_ns.size() ||
        std::isnan((*numbers)[1])) {
      return Refuse(
          fmt::format("mass index {}, a voltage and flight times", content_.times_ns.size()));
    }
    content_.voltages.push_back((*numbers)[1]);
    content_.times_ns.emplace_back(numbers->begin() + 2, numbers->end());
  }

  // Behind the index, and the voltage where masses are listed, stand abundances.
  void ReadAbundances(const std::string& line, std::size_t before) {
    const auto numbers = LoggedNumbers(line);
    if (!numbers || numbers->size() <= before) return Refuse("an index and abundances");
    const auto index = AsIndex(numbers->front());
    const std::size_t expected =
        before == 2 ? content_.abundances.size() : measurements_of_abundances_;
    if (!index || *index != expected) return Refuse(fmt::format("index {}", expected));
    if (before == 2) {
      content_.abundances.emplace_back(numbers->begin() + 2, numbers->end());
      return;
    }
    const std::size_t masses = numbers->size() - 1;
    if (measurements_of_abundances_ == 0) content_.abundances.resize(masses);
    if (masses != content_.abundances.size()) {
      return Refuse(fmt::format("{} abundances", content_.abundances.size()));
    }
    for (std::size_t m = 0; m < masses; ++m) content_.abundances[m].push_back((*numbers)[m + 1]);
    ++measurements_of_abundances_;
  }

  void Refuse(std::string_view expected) {
    complaints_.Unexpected(lines_.number(), lines_.text(), expected);
  }

  void SayWhatIsMissing() {
    if (content_.averaged) return;
    complaints_.Add(lines_.number(),
                    content_.times_ns.empty()
                        ? "ends before the flight times were collected: the run failed or was "
                          "aborted, or the file is cut"
                        : "ends before the averages: the run failed, or the file is cut");
  }

  Complaints complaints_;
  LogLines lines_;
  AicLogContent content_;
  Part part_ = Part::kHead;
  std::size_t measurements_of_abundances_ = 0;
};

}  // namespace

AicLogContent ReadAicLog(const LogSource& source, std::vector<Problem>& problems) {
  return Reader(source, problems).Read();
}

}  // namespace tof::report
