#include "hosts/cli/command_line.h"

#include <CLI/CLI.hpp>
#include <limits>

#include "hosts/cli/masses.h"
#include "instruments/spectra/input_error.h"
#include "instruments/spectra/input_file.h"
#include "instruments/spectra/utf8_path.h"

namespace tof::cli {
namespace {

using spectra::InputError;
using spectra::Quoted;

// Options stay text until here, so that every complaint about a value has one form.
double NumberOption(const std::string& name, const std::string& text) {
  const std::optional<double> value = spectra::ParseDouble(text);
  if (!value) throw InputError({name}, Quoted(text), "a finite number");
  return *value;
}

double PositiveNumberOption(const std::string& name, const std::string& text) {
  const std::optional<double> value = spectra::ParseDouble(text);
  if (!value || *value <= 0.0) throw InputError({name}, Quoted(text), "a positive number");
  return *value;
}

std::int32_t WholeNumberOption(const std::string& name, std::string_view text, std::int32_t lowest,
                               std::int32_t highest) {
  const std::optional<std::int32_t> value = spectra::ParseInt32(text);
  if (value && *value >= lowest && *value <= highest) return *value;
  throw InputError(
      {name}, Quoted(text),
      "a whole number from " + std::to_string(lowest) + " to " + std::to_string(highest));
}

FaultOption FaultOf(const std::string& text) {
  const std::size_t colon = text.rfind(':');
  const std::size_t point = text.find('.');
  if (colon == std::string::npos || point == std::string::npos || point == 0 || point > colon) {
    throw InputError({"--fail"}, Quoted(text), "Collaborator.Operation:N");
  }
  return {text.substr(0, colon),
          WholeNumberOption("--fail", std::string_view(text).substr(colon + 1), 1,
                            std::numeric_limits<std::int32_t>::max())};
}

// Declares options and turns their texts into values once the command line is read.
class OptionTable {
 public:
  explicit OptionTable(CLI::App& app) : app_(app) {}

  // `store` receives the option's text when it was given.
  template <class Store>
  void Value(const std::string& name, const std::string& placeholder, const std::string& help,
             Store store) {
    CLI::Option* const option = app_.add_option(name, help)->type_name(placeholder);
    stores_.push_back([option, store] {
      if (option->count() > 0) store(option->as<std::string>());
    });
  }
  void Text(const std::string& name, const std::string& placeholder, const std::string& help,
            std::string& text) {
    app_.add_option(name, text, help)->type_name(placeholder);
  }
  void Path(const std::string& name, const std::string& placeholder, const std::string& help,
            std::filesystem::path& path) {
    Value(name, placeholder, help,
          [&path](const std::string& text) { path = spectra::PathOfUtf8(text); });
  }
  void Repeatable(const std::string& name, const std::string& placeholder, const std::string& help,
                  std::vector<std::string>& texts) {
    app_.add_option(name, texts, help)
        ->type_name(placeholder)
        ->type_size(1)
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  }
  // Whatever stands without an option's name.
  void Texts(const std::string& name, const std::string& placeholder, const std::string& help,
             std::vector<std::string>& texts) {
    app_.add_option(name, texts, help)->type_name(placeholder);
  }
  void Flag(const std::string& name, const std::string& help, bool& flag) {
    app_.add_flag(name, flag, help);
  }

  void StoreValues() const {
    for (const auto& store : stores_) store();
  }

 private:
  CLI::App& app_;
  std::vector<std::function<void()>> stores_;
};

void DeclareInstrument(OptionTable& table, InstrumentChoice& choice) {
  table.Path("--instrument", "FILE.xml", "The instrument (default: the built-in virtual one)",
             choice.instrument);
  table.Path("--data", "DIR", "Folder that a recorded instrument's file names are relative to",
             choice.data_folder);
  table.Value(
      "--masses", "M1,M2,...", "Expected masses (default: the instrument's calibrants)",
      [&choice](const std::string& text) { choice.masses = ParseMassList(text, "--masses"); });
  table.Value("--base-folder", "DIR", "Log files go to DIR/Logfiles, which is made",
              [&choice](const std::string& text) { choice.base_folder = text; });
}

void DeclareJson(OptionTable& table, std::filesystem::path& json_file) {
  table.Path("--json", "FILE|-", "Writes the result for machines; - is standard output", json_file);
}

void DeclareRun(OptionTable& table, CalibrateOptions& options) {
  table.Value("--spectra", "N", "Spectra averaged per mass, 1 to 32767 (default: 10)",
              [&options](const std::string& text) {
                options.spectra =
                    static_cast<std::int16_t>(WholeNumberOption("--spectra", text, 1, 32767));
              });
  table.Flag("--suppress-aic", "No abundance-immune calibration", options.suppress_aic);
  table.Flag("--manual", "Calibrate even where autotunes skip it", options.manual);
  table.Value("--trad-weighting", "X", "0 or 1: fit the higher terms too; else A and t0 only",
              [&options](const std::string& text) {
                options.trad_weighting = NumberOption("--trad-weighting", text);
              });
  table.Value("--peak-window", "X", "Where peaks are sought, per cent of the flight time",
              [&options](const std::string& text) {
                options.peak_window = PositiveNumberOption("--peak-window", text);
              });
}

void DeclareInstrumentChanges(OptionTable& table, InstrumentChoice& choice) {
  table.Repeatable("--set", "Section/Key=V", "Changes a setting of the instrument",
                   choice.settings);
  table.Repeatable("--flag", "Key=V", "Changes a flag of the instrument", choice.flags);
  table.Repeatable("--setpoint", "ID=V", "Changes a setpoint of the instrument", choice.setpoints);
  table.Flag("--real-time", "Really wait (default: a virtual clock)", choice.real_time);
  table.Value("--seed", "N", "Seed of everything random (default: the instrument's)",
              [&choice](const std::string& text) {
                choice.seed = static_cast<std::uint32_t>(
                    WholeNumberOption("--seed", text, 0, std::numeric_limits<std::int32_t>::max()));
              });
  table.Value("--abort-after", "SECONDS", "The user asks for an abort after this instrument time",
              [&choice](const std::string& text) {
                const double seconds = NumberOption("--abort-after", text);
                if (seconds < 0.0) throw InputError({"--abort-after"}, Quoted(text), "0 or more");
                choice.abort_after_seconds = seconds;
              });
  table.Value("--fail", "OPERATION:N",
              "The Nth call of an operation fails (SpecParser.FindPeaks:1)",
              [&choice](const std::string& text) { choice.fault = FaultOf(text); });
}

void DeclareOutput(OptionTable& table, CalibrateOptions& options) {
  table.Path("--trace", "FILE", "Writes the trace, one line a call", options.trace_file);
  table.Path("--report", "FILE.html", "Writes a page for people: tables and charts of the run",
             options.report_file);
  table.Path("--record", "FILE", "Keeps every call and answer, for tofcal replay",
             options.record_file);
  table.Path("--timeline", "FILE.json",
             "Writes routines, spectra and setpoint writes on instrument time, for trace viewers",
             options.timeline_file);
  DeclareJson(table, options.json_file);
}

void DeclareReplay(OptionTable& table, ReplayOptions& options) {
  table.Path("recording", "FILE", "What calibrate --record has written", options.recording);
  DeclareJson(table, options.json_file);
}

void DeclareFit(OptionTable& table, FitOptions& options) {
  table.Path("pairs", "FILE", "Masses and times: two columns, mass time_ns", options.pairs_file);
  table.Text("--masses", "FILE|M1,M2,...", "Masses whose peaks are sought in --spectrum",
             options.masses);
  table.Path("--spectrum", "FILE", "Spectrum: text of two columns (time_ns intensity) or .mzML",
             options.spectrum);
  table.Value("--A", "X", "Where to look: A in sqrt(u) per ns",
              [&options](const std::string& text) {
                options.a_per_ns = PositiveNumberOption("--A", text);
              });
  table.Value("--t0", "X", "Where to look: t0 in ns",
              [&options](const std::string& text) { options.t0_ns = NumberOption("--t0", text); });
  table.Value("--peak-window", "X", "How far to look, per cent of the flight time (default: 2)",
              [&options](const std::string& text) {
                options.peak_window = PositiveNumberOption("--peak-window", text);
              });
  table.Value("--terms", "N|auto",
              "Terms beyond A and t0, 0 to 6, or chosen by leave-one-out (auto)",
              [&options](const std::string& text) {
                if (text == "auto") return;
                options.terms = WholeNumberOption("--terms", text, 0, 6);
              });
  table.Value("--weighting", "0|1|2",
              "0: relative mass (default), 1: flight time, 2: absolute mass",
              [&options](const std::string& text) {
                options.weighting = WholeNumberOption("--weighting", text, 0, 2);
              });
  DeclareJson(table, options.json_file);
}

void DeclareReport(OptionTable& table, ReportOptions& options) {
  table.Path("folder", "FOLDER", "Log files, or the base folder with the folder Logfiles in it",
             options.folder);
  table.Path("--out", "FILE.html", "The page (default: calibration_report.html)", options.out_file);
  table.Value("--run", "N", "The run to show, 1 the oldest (default: the newest)",
              [&options](const std::string& text) {
                options.run =
                    WholeNumberOption("--run", text, 1, std::numeric_limits<std::int32_t>::max());
              });
}

masstime::AcquisitionWindow WindowOption(const std::string& text) {
  const std::size_t comma = text.find(',');
  const auto start = spectra::ParseDouble(std::string_view(text).substr(0, comma));
  const auto end = comma == std::string::npos
                       ? std::nullopt
                       : spectra::ParseDouble(std::string_view(text).substr(comma + 1));
  if (start && end && *start < *end) return {*start, *end};
  throw InputError({"--window"}, Quoted(text), "START,END in ns, START < END");
}

void DeclareApply(OptionTable& table, ApplyOptions& options) {
  table.Path("--coefficients", "FILE", "The JSON result of calibrate or fit, or a calibration log",
             options.coefficients);
  table.Path("--spectrum", "FILE", "Spectrum: text of two columns (time_ns intensity) or .mzML",
             options.spectrum);
  table.Path("--output", "FILE", "The spectrum with m/z, in the same format", options.output);
  table.Value("--run", "N", "Which fit of a calibration log, from 1 (default: the last one)",
              [&options](const std::string& text) {
                options.run =
                    WholeNumberOption("--run", text, 1, std::numeric_limits<std::int32_t>::max());
              });
  table.Value("--window", "START,END",
              "Acquisition window in ns that the terms of a calibration log belong to",
              [&options](const std::string& text) { options.window = WindowOption(text); });
  DeclareJson(table, options.json_file);
}

void CheckApply(const ApplyOptions& options) {
  if (!options.coefficients.empty() && !options.spectrum.empty() && !options.output.empty()) return;
  throw UsageError("apply: needs --coefficients, --spectrum and --output");
}

drift::Period PeriodOption(const std::string& text) {
  if (text == "run") return drift::Period::kRun;
  if (text == "day") return drift::Period::kDay;
  if (text == "month") return drift::Period::kMonth;
  if (text == "year") return drift::Period::kYear;
  throw InputError({"--by"}, Quoted(text), "run, day, month or year");
}

void DeclareDrift(OptionTable& table, DriftOptions& options) {
  table.Texts("files", "FILE.csv|LABEL=FILE.csv",
              "Data-set files; those of one LABEL are of one instrument", options.files);
  drift::AnalysisOptions& analysis = options.analysis;
  table.Value("--by", "run|day|month|year",
              "A line of the table (default: the shortest that makes 31 lines or fewer)",
              [&analysis](const std::string& text) { analysis.period = PeriodOption(text); });
  table.Value("--jump-sigmas", "X",
              "A jump is so many robust deviations of the steps from run to run (default: 6)",
              [&analysis](const std::string& text) {
                analysis.jump_sigmas = PositiveNumberOption("--jump-sigmas", text);
              });
  table.Value("--jump-ppm", "X", "and in flight time larger than this (default: 5)",
              [&analysis](const std::string& text) {
                analysis.jump_ppm = PositiveNumberOption("--jump-ppm", text);
              });
  table.Value("--jump-percent", "X", "or in abundance larger than this (default: 50)",
              [&analysis](const std::string& text) {
                analysis.jump_percent = PositiveNumberOption("--jump-percent", text);
              });
  table.Path("--report", "FILE.html", "Writes a page with charts", options.report_file);
  DeclareJson(table, options.json_file);
}

void CheckFit(const FitOptions& options) {
  const bool with_spectrum = !options.spectrum.empty();
  if (options.pairs_file.empty() != with_spectrum) {
    throw UsageError("fit: give either a file of masses and times, or --spectrum with --masses");
  }
  if (!with_spectrum) {
    if (!options.masses.empty() || options.a_per_ns || options.t0_ns || options.peak_window) {
      throw UsageError("fit: --masses, --A, --t0 and --peak-window go with --spectrum");
    }
    return;
  }
  if (options.masses.empty()) throw UsageError("fit: --spectrum needs --masses");
  if (!options.a_per_ns || !options.t0_ns) {
    throw UsageError("fit: --spectrum needs --A and --t0, which say where the peaks are sought");
  }
}

}  // namespace

Command ParseCommandLine(int argc, const char* const* argv) {
  CLI::App app("Calibrates the mass axis of a time-of-flight mass spectrometer.", "tofcal");
  app.set_version_flag("--version", "tofcal " TOF_VERSION);
  app.require_subcommand(0, 1);  // none has a message of its own

  CLI::App& calibrate = *app.add_subcommand("calibrate", "Calibrates an instrument");
  CalibrateOptions calibrate_options;
  OptionTable calibrate_table(calibrate);
  DeclareInstrument(calibrate_table, calibrate_options);
  DeclareRun(calibrate_table, calibrate_options);
  DeclareInstrumentChanges(calibrate_table, calibrate_options);
  DeclareOutput(calibrate_table, calibrate_options);

  CLI::App& replay = *app.add_subcommand(
      "replay", "Runs the calibrator on a recording and shows the first difference");
  replay.footer(
      "Ends with 0 when there is no difference; with 1 when there is one, which is shown with "
      "file,\n"
      "line, call and routine, what was expected and what came; with 2 when the recording ends "
      "early,\n"
      "was changed or is none.");
  ReplayOptions replay_options;
  OptionTable replay_table(replay);
  DeclareReplay(replay_table, replay_options);

  CLI::App& check = *app.add_subcommand(
      "check-instrument", "Checks that an instrument does what a calibration relies on");
  CheckOptions check_options;
  OptionTable check_table(check);
  DeclareInstrument(check_table, check_options);
  DeclareInstrumentChanges(check_table, check_options);
  DeclareJson(check_table, check_options.json_file);

  CLI::App& fit = *app.add_subcommand("fit", "Fits coefficients to masses and flight times");
  FitOptions fit_options;
  OptionTable fit_table(fit);
  DeclareFit(fit_table, fit_options);

  CLI::App& apply = *app.add_subcommand("apply", "Turns a spectrum's flight times into m/z");
  ApplyOptions apply_options;
  OptionTable apply_table(apply);
  DeclareApply(apply_table, apply_options);

  CLI::App& drift = *app.add_subcommand(
      "drift", "Shows how flight times and abundances drift over many calibrations");
  DriftOptions drift_options;
  OptionTable drift_table(drift);
  DeclareDrift(drift_table, drift_options);

  CLI::App& report =
      *app.add_subcommand("report", "Makes a page of a past calibration from its log files");
  ReportOptions report_options;
  OptionTable report_table(report);
  DeclareReport(report_table, report_options);

  try {
    app.parse(argc, argv);
  } catch (const CLI::CallForHelp&) {
    return TextRequest{app.help()};
  } catch (const CLI::CallForVersion&) {
    return TextRequest{app.version() + "\n"};
  } catch (const CLI::ParseError& error) {
    throw UsageError(error.what());
  }

  if (calibrate.parsed()) {
    calibrate_table.StoreValues();
    return calibrate_options;
  }
  if (replay.parsed()) {
    replay_table.StoreValues();
    if (replay_options.recording.empty()) throw UsageError("replay: a recording is missing");
    return replay_options;
  }
  if (check.parsed()) {
    check_table.StoreValues();
    return check_options;
  }
  if (report.parsed()) {
    report_table.StoreValues();
    if (report_options.folder.empty()) throw UsageError("report: give the folder of log files");
    return report_options;
  }
  if (apply.parsed()) {
    apply_table.StoreValues();
    CheckApply(apply_options);
    return apply_options;
  }
  if (drift.parsed()) {
    drift_table.StoreValues();
    if (drift_options.files.empty()) throw UsageError("drift: needs a data-set file");
    return drift_options;
  }
  if (!fit.parsed()) {
    throw UsageError(
        "nothing to do: expected calibrate, replay, check-instrument, fit, report, apply or drift");
  }
  fit_table.StoreValues();
  CheckFit(fit_options);
  return fit_options;
}

}  // namespace tof::cli
