// What a user asks of the program.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "hosts/drift/analysis.h"
#include "instruments/masstime/mass_time_model.h"

namespace tof::cli {

// The `nth` call of an operation fails, e.g. "SpecParser.FindPeaks", 2.
struct FaultOption {
  std::string operation;
  std::int32_t nth = 1;  // from 1
};

// The instrument to work on. Anything left out is the description's own.
struct InstrumentChoice {
  std::filesystem::path instrument;  // the description; empty: the built-in virtual instrument
  std::filesystem::path data_folder;
  std::vector<double> masses;          // m/z, finite and positive; empty: the calibrant list
  std::vector<std::string> settings;   // "Section/Key=Value"
  std::vector<std::string> flags;      // "Key=Value"
  std::vector<std::string> setpoints;  // "Id=Value"
  std::optional<std::string> base_folder;
  bool real_time = false;
  std::optional<std::uint32_t> seed;
  std::optional<double> abort_after_seconds;  // of instrument time
  std::optional<FaultOption> fault;
};

struct CalibrateOptions : InstrumentChoice {
  std::optional<std::int16_t> spectra;  // from 1
  bool suppress_aic = false;
  bool manual = false;
  std::optional<double> trad_weighting;
  std::optional<double> peak_window;  // per cent of the flight time
  std::filesystem::path trace_file;
  std::filesystem::path record_file;    // empty: nothing is recorded
  std::filesystem::path timeline_file;  // empty: none
  std::filesystem::path report_file;    // empty: no page
  std::filesystem::path json_file;      // "-": standard output
};

struct CheckOptions : InstrumentChoice {
  std::filesystem::path json_file;  // "-": standard output
};

struct ReplayOptions {
  std::filesystem::path recording;
  std::filesystem::path json_file;  // "-": standard output
};

// The page of a run that log files tell of.
struct ReportOptions {
  std::filesystem::path folder;
  std::filesystem::path out_file = "calibration_report.html";
  std::optional<std::int32_t> run;  // from 1; none: the newest
};

// Times come from `pairs_file`, or from the peaks of `spectrum` at `masses`.
struct FitOptions {
  std::filesystem::path pairs_file;
  std::string masses;  // a list, or the path of a file with one mass a line
  std::filesystem::path spectrum;
  std::optional<double> a_per_ns;  // where to look for the peaks
  std::optional<double> t0_ns;
  std::optional<double> peak_window;  // per cent of the flight time
  int weighting = 0;                  // as in the calibration information record
  std::optional<int> terms;  // number of terms beyond A and t0; none: chosen by leave-one-out
  std::filesystem::path json_file;  // "-": standard output
};

struct ApplyOptions {
  std::filesystem::path coefficients;  // a JSON result, or a calibration log
  std::filesystem::path spectrum;
  std::filesystem::path output;
  std::optional<int> run;                             // which fit of a log, from 1; none: the last
  std::optional<masstime::AcquisitionWindow> window;  // that the terms of a log belong to
  std::filesystem::path json_file;                    // "-": standard output
};

struct DriftOptions {
  std::vector<std::string> files;  // paths of data-set files, or "LABEL=PATH"
  drift::AnalysisOptions analysis;
  std::filesystem::path report_file;
  std::filesystem::path json_file;  // "-": standard output
};

}  // namespace tof::cli
