// A small recorded instrument, made of a description and a spectrum, for tests that spoil one
// thing.
#pragma once

#include <fmt/format.h>

#include <cmath>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/hosts/temporary_folder.h"

namespace tof::testing {

inline const std::vector<double> kSampleMasses{200.1, 250.2, 310.3, 360.4, 410.5, 470.6, 520.7};
inline constexpr double kSampleA = 0.00065;  // sqrt(u) per ns
inline constexpr double kSampleT0Ns = 300.0;

// "time intensity" lines from 20 to 36 us in bins of 0.5 ns: Gaussian peaks of resolving power 4000
// on a baseline with a ripple in place of noise.
inline std::string SpectrumText(const std::vector<double>& masses) {
  constexpr double kStartNs = 20'000.0;
  constexpr double kBinNs = 0.5;
  constexpr int kBins = 32'000;
  std::string text = "# time_ns intensity\n";
  std::uint32_t ripple = 1;
  for (int bin = 0; bin < kBins; ++bin) {
    const double time_ns = kStartNs + kBinNs * bin;
    ripple = ripple * 1'664'525u + 1'013'904'223u;
    double intensity = 10.0 + static_cast<double>(ripple >> 30);
    for (const double mass : masses) {
      const double centre_ns = kSampleT0Ns + std::sqrt(mass) / kSampleA;
      const double sigma_ns = centre_ns / (2.0 * 4000.0) / 2.3548;
      const double distance = (time_ns - centre_ns) / sigma_ns;
      if (std::abs(distance) < 6.0) intensity += 5000.0 * std::exp(-0.5 * distance * distance);
    }
    text += fmt::format("{:.1f} {:.3f}\n", time_ns, intensity);
  }
  return text;
}

// Starts 0.1 % off in A and 2 ns in t0.
inline std::string DescriptionText() {
  std::string masses;
  for (const double mass : kSampleMasses) masses += fmt::format(" {}", mass);
  return R"(<instrument name="sample" configuration="recorded" mode="recorded">
  <acquisition start_us="20" end_us="36"/>
  <run spectra="2" trad_weighting="1"/>
  <settings>
    <section name="Calibration">
      <setting key="TargetAPercentError" value="0.005"/>
      <setting key="Targett0PercentError" value="0.5"/>
      <setting key="UseThisPowerFlag" value="0"/>
    </section>
    <section name="PeakHandling">
      <setting key="PeakFindWindowInPercentT" value="0.2"/>
    </section>
  </settings>
  <flags aic_key="AIC_SwitchedOff">
    <flag key="AIC_SwitchedOff" value="Yes"/>
    <flag key="UseCalibrationAlgInMTObj" value="Yes"/>
    <flag key="Calibration_VerifyCalibCoefficients" value="Yes"/>
    <flag key="Calibration_t0ToUseToStartLookingforA_usec" value="0.302"/>
  </flags>
  <setpoints>
    <setpoint id="18" type="int16" value="1"/>
    <setpoint id="69" type="double" value="0"/>
    <setpoint id="85" type="double" value="0"/>
    <setpoint id="101" type="double" value="0"/>
    <setpoint id="117" type="int32" value="0"/>
    <setpoint id="119" type="int32" value="0"/>
    <setpoint id="128" type="int16" value="0"/>
    <setpoint id="149" type="int16" value="1"/>
    <setpoint id="150" type="boolean" value="false"/>
    <setpoint id="162" type="boolean" value="false"/>
    <setpoint id="190" type="double" value="0"/>
    <setpoint id="191" type="double" value="0"/>
  </setpoints>
  <coefficients>
    <factory a_per_ns="0.00065065" t0_ns="302"/>
    <default a_per_ns="0.00065065" t0_ns="302"/>
  </coefficients>
  <calibrants>
    <list setpoint_117="0">)" +
         masses + R"(</list>
  </calibrants>
  <recorded>
    <spectrum file="spectrum.txt"/>
  </recorded>
</instrument>
)";
}

// Writes instrument.xml and spectrum.txt into `folder`.
inline void WriteSample(const std::filesystem::path& folder) {
  WriteBytes(folder / "instrument.xml", DescriptionText());
  WriteBytes(folder / "spectrum.txt", SpectrumText(kSampleMasses));
}

}  // namespace tof::testing
