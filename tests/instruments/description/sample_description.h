// A small description to read, and to spoil in one place.
#pragma once

#include <stdexcept>
#include <string>

namespace tof::description {

inline const std::string kSampleDescription =
    R"(<instrument name="sample" configuration="cfg" mode="pos">
  <acquisition start_us="30" end_us="100" time_s="0.25" scale_factor="2"/>
  <status nrdystate="-1" runstate="1"/>
  <peak_finder centroid="edges" edge_low="0.1" edge_high="0.8" edge_position="0.25" min_snr="4"/>
  <paths base_folder="/data"/>
  <run spectra="3" trad_weighting="0.5" peak_window="7"/>
  <settings>
    <section name="Calibration">
      <setting key="AIC_TargetMinAb" value="100000"/>
    </section>
    <section name="PeakHandling">
      <setting key="PeakFindWindowInPercentT" value="0.5"/>
    </section>
  </settings>
  <flags aic_key="AicIsOff">
    <flag key="AicIsOff" value="Yes"/>
    <flag key="ObfuscateCalibAlg" value="2"/>
  </flags>
  <setpoints>
    <setpoint id="117" type="int32" value="5"/>
    <setpoint id="149" type="int16" value="1"/>
    <setpoint id="150" type="boolean" value="true"/>
    <setpoint id="83" type="double" value="75.5"/>
  </setpoints>
  <coefficients trad_weighting="flight_time" poly_weighting="absolute_mass">
    <factory a_per_ns="0.00065" t0_ns="-43.5" c="0.001" h="-0.5"/>
    <default a_per_ns="0.00066" t0_ns="1"/>
  </coefficients>
  <calibrants>
    <list setpoint_117="4">1 2</list>
    <list setpoint_117="5">
      100.5 200.25
      300
    </list>
  </calibrants>
  <recorded time_offset_ns="1.5" seconds_per_spectrum="0.5">
    <spectrum file="a.txt"/>
    <spectrum file="b.mzML" format="mzml" spectra="all"/>
  </recorded>
</instrument>
)";

// The sample with `part`, which must be in it, replaced by `other`.
inline std::string SampleWith(const std::string& part, const std::string& other) {
  std::string text = kSampleDescription;
  const std::size_t at = text.find(part);
  if (at == std::string::npos) throw std::logic_error("the sample does not hold " + part);
  return text.replace(at, part.size(), other);
}

}  // namespace tof::description
