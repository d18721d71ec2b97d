#include <fmt/format.h>

#include <algorithm>

#include "hosts/cli/drift_report.h"
#include "hosts/cli/table_cell.h"

namespace tof::cli {
namespace {

using drift::InstrumentDrift;
using drift::JointJump;
using drift::Jump;
using drift::MassDrift;
using drift::Quantity;

constexpr std::size_t kMostJumpLines = 50;

std::string FileLines(const DriftReport& report) {
  std::string text;
  for (const DriftFile& file : report.files) {
    text += fmt::format("{}: {} rows", file.path, file.read.rows);
    if (file.label != file.path) text += " of " + file.label;
    text += file.read.bad_rows == 0 ? "\n" : fmt::format(", {} bad rows\n", file.read.bad_rows);
    for (const drift::BadRow& bad : file.read.first_bad_rows) {
      text += fmt::format("  line {}: {}\n", bad.line, bad.why);
    }
    if (file.read.bad_rows > file.read.first_bad_rows.size()) {
      text += fmt::format("  and {} more\n", file.read.bad_rows - file.read.first_bad_rows.size());
    }
  }
  return text;
}

std::string MassTable(const InstrumentDrift& instrument) {
  std::string text = fmt::format("{:>5} {:>15} {:>15} {:>10} {:>10} {:>10} {:>10} {:>13} {:>13}\n",
                                 "mass", "first, ns", "last, ns", "drift ppm", "lowest", "highest",
                                 "noise ppm", "first abund.", "last abund.");
  for (const MassDrift& mass : instrument.masses) {
    text += fmt::format("{:>5} {:>15.4f} {:>15.4f} {} {} {} {} {} {}\n", mass.mass,
                        mass.first_time_ns, mass.last_time_ns, SignedCell(mass.last_ppm, 10, 2),
                        SignedCell(mass.lowest_ppm, 10, 2), SignedCell(mass.highest_ppm, 10, 2),
                        Cell(mass.noise_ppm, 10, 2), Cell(mass.first_abundance, 13, 0),
                        Cell(mass.last_abundance, 13, 0));
  }
  return text;
}

std::string PeriodTable(const InstrumentDrift& instrument) {
  std::string text = fmt::format("{:<19} {:>5} {:>8} {:>15} {:>13} {:>10}\n", "date", "mass",
                                 "runs", "flight time, ns", "abundance", "drift ppm");
  for (const MassDrift& mass : instrument.masses) {
    for (const drift::PeriodRow& row : mass.periods) {
      text += fmt::format("{:<19} {:>5} {:>8} {:>15.4f} {} {}{}\n", row.period, mass.mass, row.runs,
                          row.time_ns, Cell(row.abundance, 13, 0), SignedCell(row.drift_ppm, 10, 2),
                          row.jumps == 0 ? "" : fmt::format("  jump x{}", row.jumps));
    }
  }
  return text;
}

std::string JumpLine(const JointJump& joint) {
  const Jump& jump = *joint.first;
  const bool is_time = jump.quantity == Quantity::kFlightTime;
  const std::string where = joint.masses == 1 ? fmt::format("mass {}", jump.mass)
                                              : fmt::format("{} masses", joint.masses);
  const std::string range = joint.masses == 1 ? "" : fmt::format(" to {:+.2f}", joint.highest);
  return fmt::format("  {} to {}: {}, {} {:+.2f}{} {}\n", drift::MomentText(jump.before),
                     drift::MomentText(jump.moment), where, is_time ? "flight time" : "abundance",
                     joint.lowest, range, is_time ? "ppm" : "%");
}

std::string JumpLines(const InstrumentDrift& instrument) {
  if (instrument.jumps.empty()) return "no jumps\n";
  const std::vector<JointJump> joint = drift::JointJumps(instrument.jumps);
  std::string text = fmt::format("{} jumps:\n", joint.size());
  for (std::size_t i = 0; i < std::min(joint.size(), kMostJumpLines); ++i)
    text += JumpLine(joint[i]);
  if (joint.size() > kMostJumpLines) {
    text += fmt::format("  and {} more\n", joint.size() - kMostJumpLines);
  }
  return text;
}

std::string InstrumentText(const InstrumentDrift& instrument) {
  std::string text = fmt::format("\n{}: {} runs", instrument.label, instrument.runs);
  if (instrument.masses.empty()) return text + "\n";
  text += fmt::format(", {} to {}\n\n", drift::MomentText(instrument.first_moment),
                      drift::MomentText(instrument.last_moment));
  return text + MassTable(instrument) + "\n" + PeriodTable(instrument) + "\n" +
         JumpLines(instrument);
}

}  // namespace

std::string TableOf(const DriftReport& report) {
  std::string text = FileLines(report);
  for (const InstrumentDrift& instrument : report.instruments) text += InstrumentText(instrument);
  text += fmt::format(
      "\ndrift: of the flight time, from the first run on; in m/z it is twice as large\n"
      "jump: a step of more than {} robust deviations of the steps, and of {} ppm or {} %\n",
      report.options.jump_sigmas, report.options.jump_ppm, report.options.jump_percent);
  if (report.runs_per_point > 1) {
    text += fmt::format("so many runs that {} were joined to a point\n", report.runs_per_point);
  }
  return text;
}

}  // namespace tof::cli
