#include <array>

#include "instruments/conformance/attempt.h"
#include "instruments/conformance/checks.h"
#include "instruments/conformance/subject.h"

namespace tof::conformance {
namespace {

constexpr const char* kHeader = "===CONFORMANCE CHECK===";

std::shared_ptr<TextStream> Opened(Subject& subject, const char* prefix) {
  return subject.parts.calib_log_files->OpenLogFile(prefix, kHeader, "TXT");
}

void OpensALogFile(Subject& subject) {
  const auto stream = Opened(subject, "AIC");
  Require(stream != nullptr, "an open log file", "none");
  stream->WriteLine("a line");
  stream->WriteLine("");
  stream->Close();
}

void ClosingTwiceDoesNothing(Subject& subject) {
  const auto stream = Given("CalibLogFiles.opens-a-log-file", [&] {
    auto opened = Opened(subject, "CalibrationData");
    Need(opened).Close();
    return opened;
  });
  stream->Close();
}

void JoinsSixValues(Subject& subject) {
  const std::string line = subject.parts.calib_log_files->JoinAsCsvLine(
      {Variant("20240229"), Variant("130509"), Variant(std::int32_t{0}), Variant(std::int32_t{12}),
       Variant(40123.25), Variant(150000.0)});
  const std::string expected = "20240229, 130509, 0, 12, 40123.25, 150000";
  Require(line == expected, expected, line);
}

constexpr std::array kChecks{
    Check{"CalibLogFiles", "opens-a-log-file",
          "A log file is opened with a prefix, a header and an extension; lines, empty ones too, "
          "are then written to it and it is closed.",
          OpensALogFile},
    Check{"CalibLogFiles", "closing-twice-does-nothing",
          "A log file that an interrupted calibration left open may be closed once more when it is "
          "released: not an error.",
          ClosingTwiceDoesNothing},
    Check{
        "CalibLogFiles", "joins-six-values",
        "A row of the data-set file is six values joined by a comma and a blank, numbers in their "
        "shortest form with a point: other programs read it.",
        JoinsSixValues},
};

}  // namespace

std::span<const Check> CalibLogFilesChecks() {
  return kChecks;
}

}  // namespace tof::conformance
