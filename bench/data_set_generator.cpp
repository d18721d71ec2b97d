// Writes a data-set file as many abundance-immune calibrations would have left it, to standard
// output: same arguments, same bytes.
//
// usage: data_set_generator ROWS [SEED]
//
// A calibration every 53 minutes from 2016 on, of 10 masses with 5 measurements each. Flight times
// drift by the day's temperature and with age, jump by 40 ppm at every 5000th calibration, and
// scatter by 1 ppm.
#include <fmt/format.h>

#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <numbers>
#include <random>

namespace {

constexpr std::int64_t kSecondsBetweenRuns = 53 * 60;
constexpr std::int64_t kFirstMoment = 1'451'635'200;  // 2016-01-01 08:00:00
constexpr std::int64_t kRunsBetweenJumps = 5000;
constexpr int kMeasurements = 5;
constexpr std::array<double, 10> kTimesNs{17018.3, 27908.7, 38670.0, 47014.8, 54080.0,
                                          60319.1, 66012.5, 71210.9, 76055.2, 80613.7};

class Writer {
 public:
  explicit Writer(std::uint64_t seed) : random_(seed) {}

  void WriteRun(std::int64_t run, std::int64_t most_rows) {
    const std::int64_t moment = kFirstMoment + run * kSecondsBetweenRuns;
    const std::time_t seconds = moment;
    std::tm date{};
    gmtime_r(&seconds, &date);
    const std::string stamp =
        fmt::format("{:04}{:02}{:02}, {:02}{:02}{:02}", date.tm_year + 1900, date.tm_mon + 1,
                    date.tm_mday, date.tm_hour, date.tm_min, date.tm_sec);
    const auto days = static_cast<double>(moment - kFirstMoment) / 86'400.0;
    const double common_ppm = 8.0 * std::sin(2.0 * std::numbers::pi * days) + 0.01 * days +
                              40.0 * static_cast<double>(run / kRunsBetweenJumps);
    std::int64_t rows = 0;
    for (std::size_t mass = 0; mass < kTimesNs.size(); ++mass) {
      for (int k = 0; k < kMeasurements && rows < most_rows; ++k, ++rows) {
        const double ppm = common_ppm + Scatter();
        fmt::format_to(std::back_inserter(text_), "{}, {}, {}, {:.10f}, {:.0f}\r\n", stamp, mass, k,
                       kTimesNs[mass] * (1.0 + ppm * 1e-6), 180'000.0 * (1.0 + 0.05 * Scatter()));
      }
    }
    Flush(1U << 20U);
  }

  void Flush(std::size_t from) {
    if (text_.size() < from) return;
    if (std::fwrite(text_.data(), 1, text_.size(), stdout) != text_.size()) std::exit(1);
    text_.clear();
  }

 private:
  // Of unit standard deviation; the sum of twelve, so that every library gives the same bytes.
  double Scatter() {
    double sum = -6.0;
    for (int i = 0; i < 12; ++i) sum += static_cast<double>(random_() >> 11U) * 0x1p-53;
    return sum;
  }

  std::mt19937_64 random_;
  fmt::memory_buffer text_;
};

}  // namespace

int main(int argc, char** argv) {
  const std::int64_t rows = argc > 1 ? std::atoll(argv[1]) : 0;
  if (rows <= 0) {
    std::fputs("usage: data_set_generator ROWS [SEED]\n", stderr);
    return 2;
  }
  std::fputs("Acq Date, Acq Time, MassIdx, MeasurementIdx, TOF, Abundance\r\n", stdout);
  Writer writer(argc > 2 ? std::strtoull(argv[2], nullptr, 10) : 1);
  constexpr std::int64_t kRowsPerRun = kMeasurements * static_cast<std::int64_t>(kTimesNs.size());
  for (std::int64_t run = 0; run * kRowsPerRun < rows; ++run) {
    writer.WriteRun(run, rows - run * kRowsPerRun);
  }
  writer.Flush(0);
  return 0;
}
