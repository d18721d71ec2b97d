// Measures what abundance-immune calibration is worth on the built-in virtual instrument: tables
// and data of pictures, a file each, into a folder.
#include <CLI/CLI.hpp>
#include <cstdint>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>

#include "hosts/study/pictures.h"
#include "hosts/study/tables.h"

namespace tof::study {
namespace {

void Write(const std::filesystem::path& path, const std::string& text) {
  std::ofstream file(path, std::ios::binary);
  file << text;
  if (!file.flush()) throw std::runtime_error("can't write " + path.string());
  std::cerr << path.string() << '\n';
}

void WriteAll(const std::filesystem::path& folder, std::uint64_t seeds, std::uint64_t few_seeds) {
  std::filesystem::create_directories(folder);
  Write(folder / "transmission.dat", TransmissionCurves());
  Write(folder / "dead_time.dat", DeadTimeShift());
  Write(folder / "spectrum.dat", WholeSpectrum());
  Write(folder / "peak.dat", PeakAtTwoAbundances());
  const Ways ways = RunAllWays(seeds);
  Write(folder / "errors.dat", TrueErrors(ways));
  Write(folder / "accuracy.md", AccuracyTable(ways));
  Write(folder / "band.md", BandTable(ways));
  Write(folder / "drift.md", DriftTable(seeds));
  Write(folder / "cost.md", CostTable());
  Write(folder / "settling.md", SettlingTable(few_seeds));
  Write(folder / "scalars.md", ScalarTable(few_seeds));
  Write(folder / "plugs.md", PlugTable(few_seeds));
  Write(folder / "adjustment.md", AdjustmentTable(few_seeds));
}

int Main(int argc, char** argv) {
  CLI::App app("Measures what abundance-immune calibration is worth on the virtual instrument");
  std::string folder;
  std::uint64_t seeds = 20;
  std::uint64_t few_seeds = 10;
  app.add_option("FOLDER", folder, "where the files go")->required();
  app.add_option("--seeds", seeds, "runs of the main tables")->check(CLI::Range(1, 1000));
  app.add_option("--few-seeds", few_seeds, "runs of the others")->check(CLI::Range(1, 1000));
  CLI11_PARSE(app, argc, argv);
  WriteAll(folder, seeds, few_seeds);
  return 0;
}

}  // namespace
}  // namespace tof::study

int main(int argc, char** argv) {
  try {
    return tof::study::Main(argc, argv);
  } catch (const std::exception& error) {
    std::cerr << "aic_study: " << error.what() << '\n';
    return 1;
  }
}
