// What the verbs other than calibrate and drift say, to people and to programs, to the last blank.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <nlohmann/json.hpp>
#include <string>

#include "hosts/cli/apply_report.h"
#include "hosts/cli/conformance_report.h"
#include "hosts/cli/fit_report.h"
#include "hosts/cli/replay_report.h"
#include "hosts/cli/text_report.h"

namespace tof::cli {
namespace {

using nlohmann::json;
using ::testing::HasSubstr;
using ::testing::Not;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr const char* kFormula =
    "tof-mass sqrt(m) = A (t - t0) + Legendre P2..P7 over window, version 1";

FitReport SampleFit() {
  FitReport report;
  report.date = "2026-11-21T17:05:09Z";
  report.window = {12'000.0, 72'000.0};
  report.masses = {91.25, 159.5};
  report.times_ns = {15'000.5, 19'700.25};
  report.masses_without_peak = {227.125};
  report.fit.coefficients = {6.5e-4, 300.125, 1e-3, 0.0, 2e-4};
  report.fit.terms = 0b000101;
  report.fit.error_ppm = {1.5, -0.25};
  report.fit.loo_error_ppm = {2.5, kNaN};
  report.fit.leverage = {0.25, 1.0};
  report.fit.rms_ppm = 0.875;
  report.fit.max_ppm = 1.5;
  report.fit.loo_rms_ppm = 2.5;
  report.fit.max_leverage = 1.0;
  masstime::Candidate shorter;
  shorter.fit.rms_ppm = 3.5;
  shorter.fit.max_ppm = 4.0;
  shorter.fit.loo_rms_ppm = 4.5;
  shorter.fit.max_leverage = 0.5;
  shorter.accepted = true;
  shorter.reason = "the simplest model";
  masstime::Candidate longer = shorter;
  longer.fit.terms = 0b1;
  longer.fit.loo_rms_ppm = kNaN;
  longer.accepted = false;
  longer.reason = "no better";
  report.candidates = {shorter, longer};
  report.loo_with_choice_ppm = 5.5;
  return report;
}

TEST(FitTexts, TellAllOfIt) {
  EXPECT_EQ(TableOf(SampleFit()),
            "           m/z       time, ns        ppm  leave-one-out ppm  leverage\n"
            "      91.25000     15000.5000     +1.500             +2.500     0.250\n"
            "     159.50000     19700.2500     -0.250                  -     1.000\n"
            "     227.12500              - not used: the spectrum shows no peak\n"
            "\n"
            "coefficients         rms ppm  leave-one-out ppm  max leverage\n"
            "A t0                   3.500              4.500         0.500  taken: the simplest "
            "model\n"
            "A t0 C                 3.500                  -         0.500  not taken: no better\n"
            "leave-one-out with the choice repeated each time: 5.500 ppm\n"
            "\n"
            "fitted: A t0 C E\n"
            "A = 0.00065 sqrt(u)/ns\n"
            "t0 = 300.125 ns\n"
            "C = 0.001 sqrt(u)\n"
            "E = 0.0002 sqrt(u)\n"
            "rms 0.875 ppm, max 1.500 ppm, leave-one-out 2.500 ppm\n");
}

TEST(FitTexts, LeaveOutTheChoiceThatWasNotMade) {
  FitReport report = SampleFit();
  report.candidates.clear();
  report.loo_with_choice_ppm.reset();
  EXPECT_THAT(TableOf(report), Not(HasSubstr("coefficients")));
  report = SampleFit();
  report.loo_with_choice_ppm.reset();
  EXPECT_THAT(TableOf(report), Not(HasSubstr("repeated")));
}

TEST(FitJson, TellsAllOfIt) {
  json expected = json::parse(R"({
    "ok": true,
    "masses": [
      {"expected": 91.25, "time_ns": 15000.5, "error_ppm": 1.5, "loo_error_ppm": 2.5,
       "leverage": 0.25},
      {"expected": 159.5, "time_ns": 19700.25, "error_ppm": -0.25, "loo_error_ppm": null,
       "leverage": 1.0}],
    "masses_without_peak": [227.125],
    "date": "2026-11-21T17:05:09Z",
    "window_ns": [12000.0, 72000.0],
    "coefficients": {"A": 6.5e-4, "t0": 300.125, "C": 1e-3, "D": 0.0, "E": 2e-4, "F": 0.0,
                     "G": 0.0, "H": 0.0},
    "terms": ["A", "t0", "C", "E"],
    "rms_ppm": 0.875, "max_ppm": 1.5, "loo_ppm": 2.5, "max_leverage": 1.0,
    "loo_with_choice_ppm": 5.5,
    "candidates": [
      {"terms": ["A", "t0"], "rms_ppm": 3.5, "max_ppm": 4.0, "loo_ppm": 4.5, "max_leverage": 0.5,
       "accepted": true, "reason": "the simplest model"},
      {"terms": ["A", "t0", "C"], "rms_ppm": 3.5, "max_ppm": 4.0, "loo_ppm": null,
       "max_leverage": 0.5, "accepted": false, "reason": "no better"}]})");
  expected["formula"] = kFormula;
  EXPECT_EQ(json::parse(JsonOf(SampleFit())), expected);
}

ReplayReport SampleReplay() {
  ReplayReport report;
  report.recording = "run.jsonl";
  report.program = "tofcal 1.2.3";
  report.result.difference = recording::Difference{
      17, 15, "PlaceA", "trace Entry PlaceA", "trace Entry PlaceB", "arguments"};
  report.result.counts = {14, 5, 3};
  report.cut = recording::Cut{21, "the end of the file"};
  return report;
}

TEST(ReplayTexts, TellADifference) {
  EXPECT_EQ(TableOf(SampleReplay()),
            "run.jsonl:17: differs at call 15, in PlaceA\n"
            "  expected: trace Entry PlaceA\n"
            "  came:     trace Entry PlaceB\n"
            "  first difference in the arguments\n"
            "14 calls are the same, of them 5 of the trace and 3 log lines\n");
  ReplayReport outside = SampleReplay();
  outside.result.difference->routine.clear();
  outside.result.difference->first_part.clear();
  EXPECT_THAT(TableOf(outside), HasSubstr("differs at call 15, outside of all routines\n"));
  EXPECT_THAT(TableOf(outside), Not(HasSubstr("first difference")));
}

TEST(ReplayTexts, TellThatThereIsNoDifference) {
  ReplayReport report = SampleReplay();
  report.result.difference.reset();
  EXPECT_EQ(TableOf(report),
            "run.jsonl: no difference\n"
            "14 calls are the same, of them 5 of the trace and 3 log lines\n");
}

TEST(ReplayJson, TellsAllOfIt) {
  EXPECT_EQ(json::parse(JsonOf(SampleReplay())), json::parse(R"({
    "recording": "run.jsonl", "program": "tofcal 1.2.3", "same": false, "whole": false,
    "difference": {"line": 17, "call": 15, "routine": "PlaceA",
      "expected": "trace Entry PlaceA", "came": "trace Entry PlaceB",
      "first_part": "arguments"},
    "calls": 14, "trace_calls": 5, "log_lines": 3, "ends_at_line": 21
})"));
  ReplayReport good = SampleReplay();
  good.result.difference.reset();
  good.cut.reset();
  const json told = json::parse(JsonOf(good));
  EXPECT_EQ(told["same"], true);
  EXPECT_EQ(told["whole"], true);
  EXPECT_TRUE(told["difference"].is_null());
  EXPECT_TRUE(told["ends_at_line"].is_null());
}

ApplyReport SampleApply() {
  ApplyReport report;
  report.output = "masses.txt";
  report.facts = {{"calibration", "the result of a fit"}, {"terms", "A t0"}};
  report.counts = {3, 40, 2, 1, 5};
  return report;
}

TEST(ApplyTexts, TellAllOfIt) {
  EXPECT_EQ(TableOf(SampleApply()),
            "calibration        the result of a fit\n"
            "terms              A t0\n"
            "\n"
            "masses.txt: 3 spectra, 40 bins\n"
            "2 bins lie outside the window of the calibration: no calibrant says how far to trust "
            "them\n"
            "1 bins lie before t0, where no ion can arrive: their m/z is negative\n"
            "5 terms that state an m/z of a spectrum (base peak, lowest, highest) are kept as they "
            "were\n");
}

TEST(ApplyTexts, MentionASingleOne) {
  ApplyReport report = SampleApply();
  report.counts = {1, 40, 1, 1, 1};
  EXPECT_THAT(TableOf(report), HasSubstr("\n1 bins lie outside the window"));
  EXPECT_THAT(TableOf(report), HasSubstr("\n1 bins lie before t0"));
  EXPECT_THAT(TableOf(report), HasSubstr("\n1 terms that state an m/z"));
}

TEST(ApplyTexts, LeaveOutWhatThereIsNone) {
  ApplyReport report = SampleApply();
  report.facts.clear();
  report.counts = {3, 40, 0, 0, 0};
  EXPECT_EQ(TableOf(report), "\nmasses.txt: 3 spectra, 40 bins\n");
}

TEST(ApplyJson, TellsAllOfIt) {
  EXPECT_EQ(json::parse(JsonOf(SampleApply())), json::parse(R"({
    "ok": true, "output": "masses.txt",
    "provenance": {"calibration": "the result of a fit", "terms": "A t0"},
    "spectra": 3, "bins": 40, "bins_outside_window": 2, "bins_before_t0": 1,
    "mz_terms_kept": 5})"));
}

ConformanceReport SampleConformance() {
  using conformance::Outcome;
  return {.instrument = "bench 7",
          .results = {{"A.one", "A", "One is relied on.", Outcome::kPass},
                      {"A.two", "A", "Two is relied on.", Outcome::kFail, "2", "3"},
                      {"B.one", "B", "B is relied on.", Outcome::kNotApplicable, "", "", "no B"},
                      {"B.two", "B", "B is.", Outcome::kPass},
                      {"B.three", "B", "B is, too.", Outcome::kPass}}};
}

TEST(ConformanceJson, TellsAllOfIt) {
  EXPECT_EQ(json::parse(JsonOf(SampleConformance())), json::parse(R"({
    "ok": false, "instrument": "bench 7", "passed": 3, "failed": 1, "not_applicable": 1,
    "checks": [
      {"id": "A.one", "collaborator": "A", "relied_on": "One is relied on.", "result": "pass"},
      {"id": "A.two", "collaborator": "A", "relied_on": "Two is relied on.", "result": "fail",
       "expected": "2", "found": "3"},
      {"id": "B.one", "collaborator": "B", "relied_on": "B is relied on.",
       "result": "not applicable", "why": "no B"},
      {"id": "B.two", "collaborator": "B", "relied_on": "B is.", "result": "pass"},
      {"id": "B.three", "collaborator": "B", "relied_on": "B is, too.", "result": "pass"}]})"));
}

TEST(CalibrationText, TellsTheTruthOfAVirtualInstrument) {
  CalibrationReport report;
  report.truth = Truth{{1.0, 0.5, 0.8, 2.0}, {3.0, -2.5, 1.8, 4.0}, {5.0, 4.5, 2.8, 6.0}, 0.1};
  EXPECT_THAT(
      TableOf(report),
      HasSubstr("true errors, which only a virtual instrument knows:\n"
                "  at calibration  rms 1.000 ppm (common +0.500, mass-dependent 0.800, max 2.000)\n"
                "  in band         rms 3.000 ppm (common -2.500, mass-dependent 1.800, max 4.000)\n"
                "  weak peaks      rms 5.000 ppm (common +4.500, mass-dependent 2.800, max 6.000)\n"
                "  ions allow      0.100 ppm\n"));
}

}  // namespace
}  // namespace tof::cli
