#include "instruments/description/description_reader.h"

#include <gmock/gmock.h>

#include "tests/instruments/description/sample_description.h"

namespace tof::description {
namespace {

using testing::ElementsAre;
using testing::Pair;

InstrumentDescription Sample() {
  return ParseDescription(kSampleDescription, "sample.xml");
}

TEST(DescriptionReader, ReadsWhatTheInstrumentIs) {
  const InstrumentDescription description = Sample();
  EXPECT_EQ(description.name, "sample");
  EXPECT_EQ(description.configuration, "cfg");
  EXPECT_EQ(description.mode, "pos");
  EXPECT_TRUE(description.mode_uses_rf_setpoints);
  EXPECT_EQ(description.base_folder, "/data");
  EXPECT_EQ(description.acquisition.start_us, 30);
  EXPECT_EQ(description.acquisition.end_us, 100);
  EXPECT_EQ(description.acquisition.time_s, 0.25);
  EXPECT_EQ(description.acquisition.scale_factor, 2.0);
  EXPECT_EQ(description.status.nrdystate, -1);
  EXPECT_EQ(description.status.runstate, 1);
}

TEST(DescriptionReader, ReadsHowPeaksAreFound) {
  const peaks::FinderOptions finder = Sample().finder;
  EXPECT_EQ(finder.pick.centroid.method, peaks::CentroidMethod::kEdges);
  EXPECT_EQ(finder.pick.centroid.edges.low, 0.1);
  EXPECT_EQ(finder.pick.centroid.edges.high, 0.8);
  EXPECT_EQ(finder.pick.centroid.edges.position, 0.25);
  EXPECT_EQ(finder.pick.min_snr, 4.0);
  EXPECT_FALSE(finder.resolving_power);
}

TEST(DescriptionReader, ReadsTheTimesWithoutReadiness) {
  const InstrumentDescription description = ParseDescription(
      SampleWith("runstate=\"1\"/>",
                 "runstate=\"1\"><not_ready to_sec=\"3\"/><not_ready from_sec=\"7\" "
                 "to_sec=\"8.5\"/></status>"),
      "d.xml");
  ASSERT_EQ(description.status.not_ready.size(), 2u);
  EXPECT_EQ(description.status.not_ready[0].from_sec, 0.0);
  EXPECT_EQ(description.status.not_ready[0].to_sec, 3.0);
  EXPECT_EQ(description.status.not_ready[1].from_sec, 7.0);
  EXPECT_EQ(description.status.not_ready[1].to_sec, 8.5);
}

TEST(DescriptionReader, ReadsTheDefaultsOfARun) {
  const InstrumentDescription description = Sample();
  EXPECT_EQ(description.run.spectra, 3);
  EXPECT_EQ(description.run.trad_weighting, 0.5);
  EXPECT_EQ(description.run.peak_window, 7.0);
}

TEST(DescriptionReader, ReadsSettingsAndFlags) {
  const InstrumentDescription description = Sample();
  EXPECT_THAT(description.settings.at("Calibration"), ElementsAre(Pair("AIC_TargetMinAb", 1e5)));
  EXPECT_THAT(description.settings.at("PeakHandling"),
              ElementsAre(Pair("PeakFindWindowInPercentT", 0.5)));
  EXPECT_EQ(description.aic_flag_key, "AicIsOff");
  EXPECT_THAT(description.flags,
              ElementsAre(Pair("AicIsOff", "Yes"), Pair("ObfuscateCalibAlg", "2")));
}

TEST(DescriptionReader, ReadsEachSetpointAsItsType) {
  const InstrumentDescription description = Sample();
  EXPECT_EQ(description.setpoints.at(117).value, Variant(std::int32_t{5}));
  EXPECT_EQ(description.setpoints.at(149).value, Variant(std::int16_t{1}));
  EXPECT_EQ(description.setpoints.at(150).value, Variant(true));
  EXPECT_EQ(description.setpoints.at(83).value, Variant(75.5));
  EXPECT_EQ(description.setpoints.at(149).type, ValueType::kInt16);
}

TEST(DescriptionReader, ReadsASecondIdOfASetpoint) {
  const InstrumentDescription description = ParseDescription(
      SampleWith("</setpoints>", "<setpoint id=\"84\" same_as=\"83\"/></setpoints>"), "d.xml");
  EXPECT_EQ(description.setpoints.count(84), 0u);
  EXPECT_EQ(OwnSetpointId(description, 84), 83);
  EXPECT_EQ(OwnSetpointId(description, 83), 83);
}

TEST(DescriptionReader, ReadsCoefficientsAndTakesAbsentTermsAsZero) {
  const InstrumentDescription description = Sample();
  EXPECT_THAT(description.factory_coefficients,
              ElementsAre(0.00065, -43.5, 0.001, 0.0, 0.0, 0.0, 0.0, -0.5));
  ASSERT_TRUE(description.default_coefficients);
  EXPECT_EQ(description.default_coefficients->at(0), 0.00066);
  EXPECT_EQ(description.trad_weighting, masstime::Weighting::kFlightTime);
  EXPECT_EQ(description.poly_weighting, masstime::Weighting::kAbsoluteMass);
}

TEST(DescriptionReader, LetsSetpoint117SelectTheCalibrants) {
  InstrumentDescription description = Sample();
  EXPECT_THAT(CalibrantMasses(description), ElementsAre(100.5, 200.25, 300.0));
  description.setpoints.at(117).value = Variant(std::int32_t{4});
  EXPECT_THAT(CalibrantMasses(description), ElementsAre(1.0, 2.0));
  description.setpoints.at(117).value = Variant(std::int32_t{6});
  EXPECT_THAT(CalibrantMasses(description), ElementsAre());
  description.setpoints.erase(117);
  EXPECT_THAT(CalibrantMasses(description), ElementsAre());
}

TEST(DescriptionReader, ReadsRecordedFiles) {
  const InstrumentDescription description = Sample();
  const auto& recorded = std::get<recorded::RecordedFiles>(description.source);
  EXPECT_EQ(recorded.time_offset_ns, 1.5);
  EXPECT_EQ(recorded.seconds_per_spectrum, 0.5);
  ASSERT_EQ(recorded.files.size(), 2u);
  EXPECT_EQ(recorded.files[0].path, "a.txt");
  EXPECT_EQ(recorded.files[0].format, recorded::SpectrumFormat::kText);
  EXPECT_EQ(recorded.files[1].format, recorded::SpectrumFormat::kMzml);
  EXPECT_EQ(recorded.files[1].which, spectra::WhichSpectra::kAll);
}

TEST(DescriptionReader, NeedsNothingButNameWindowCoefficientsAndSource) {
  const InstrumentDescription description = ParseDescription(
      "<instrument name='least'><acquisition start_us='1' end_us='2'/>"
      "<coefficients><factory a_per_ns='1' t0_ns='0'/></coefficients>"
      "<recorded><spectrum file='a.txt'/></recorded></instrument>",
      "least.xml");
  EXPECT_EQ(description.base_folder, ".");
  EXPECT_EQ(description.run.spectra, 10);
  EXPECT_EQ(description.run.trad_weighting, -1.0);
  EXPECT_EQ(description.run.peak_window, -1.0);
  EXPECT_EQ(description.acquisition.scale_factor, 1.0);
  EXPECT_GE(description.status.nrdystate, 0);
  EXPECT_EQ(description.status.runstate, 2);
  EXPECT_FALSE(description.default_coefficients);
  EXPECT_EQ(description.poly_weighting, masstime::Weighting::kRelativeMass);
  const auto& recorded = std::get<recorded::RecordedFiles>(description.source);
  EXPECT_EQ(recorded.time_offset_ns, 0.0);
  EXPECT_EQ(recorded.seconds_per_spectrum, 1.0);
}

TEST(DescriptionReader, TakesEdgesFromTheLeadingToTheTrailingOneAndOfOneLevel) {
  for (const double position : {0.0, 1.0}) {
    const InstrumentDescription description = ParseDescription(
        SampleWith("edge_position=\"0.25\"",
                   position == 0.0 ? "edge_position=\"0\"" : "edge_position=\"1\""),
        "d.xml");
    EXPECT_EQ(description.finder.pick.centroid.edges.position, position);
  }
  const auto& level = ParseDescription(SampleWith("edge_low=\"0.1\"", "edge_low=\"0.8\""), "d.xml")
                          .finder.pick.centroid.edges;
  EXPECT_EQ(level.low, level.high);
}

TEST(DescriptionReader, ReadsTheVirtualInstrumentsParameters) {
  const InstrumentDescription description = ParseDescription(
      R"(<instrument name='v'><acquisition start_us='10' end_us='20'/>
      <coefficients><factory a_per_ns='1' t0_ns='0'/></coefficients>
      <virtual seed='7' rf_setpoint='83' setpoint_write_sec='0.5'>
        <analyzer a_per_ns='0.001' t0_ns='5' curvature_ppm='3' resolving_power='1000'/>
        <spectrum bin_ns='0.5' pulses='100' duration_sec='2'/>
        <detector dead_time_ns='9' noise_sd_counts='8' baseline_counts='7'>
          <gain_channel counts_per_ion='6' saturation_counts='1000'/>
        </detector>
        <drift rate_ppm_per_min='0.1' random_walk_ppm_per_sqrt_min='0.2'/>
        <flicker common_sd='0.3' common_correlation='0.4' own_sd='0.5'/>
        <rf_guide pole_pairs='3' frequency_hz='1e6' inscribed_radius_mm='4'
          relative_ion_radius='0.7' transverse_energy_ev='0.2' well_loss_exponent='6'
          adiabaticity_cutoff='0.5' adiabaticity_cutoff_width='0.05'/>
        <settling time_constant_sec='0.75'/>
        <calibrant formula='C1H1O2Na2' ions_per_pulse='1.5'/>
        <contaminant mass='300' ions_per_pulse='0.25'/>
      </virtual></instrument>)",
      "v.xml");
  const auto& source = std::get<virtual_instrument::VirtualSourceParameters>(description.source);
  EXPECT_EQ(source.seed, 7u);
  EXPECT_EQ(source.rf_setpoint, 83);
  EXPECT_EQ(source.setpoint_write_sec, 0.5);
  const virtual_instrument::Parameters& p = source.physics;
  EXPECT_EQ(p.analyzer.a_sqrt_u_per_ns, 0.001);
  EXPECT_EQ(p.analyzer.t0_ns, 5.0);
  EXPECT_EQ(p.analyzer.curvature_ppm, 3.0);
  EXPECT_EQ(p.analyzer.resolving_power, 1000.0);
  EXPECT_EQ(p.acquisition.window_start_us, 10.0);
  EXPECT_EQ(p.acquisition.window_end_us, 20.0);
  EXPECT_EQ(p.acquisition.bin_ns, 0.5);
  EXPECT_EQ(p.acquisition.pulses_per_spectrum, 100);
  EXPECT_EQ(p.acquisition.spectrum_duration_sec, 2.0);
  EXPECT_EQ(p.detector.dead_time_ns, 9.0);
  EXPECT_EQ(p.detector.electronic_noise_sd_counts, 8.0);
  EXPECT_EQ(p.detector.baseline_counts, 7.0);
  ASSERT_EQ(p.detector.gain_channels.size(), 1u);
  EXPECT_EQ(p.detector.gain_channels[0].counts_per_ion, 6.0);
  EXPECT_EQ(p.detector.gain_channels[0].saturation_counts, 1000.0);
  EXPECT_EQ(p.drift.rate_ppm_per_min, 0.1);
  EXPECT_EQ(p.drift.random_walk_ppm_per_sqrt_min, 0.2);
  EXPECT_EQ(p.flicker.common_sd, 0.3);
  EXPECT_EQ(p.flicker.common_correlation, 0.4);
  EXPECT_EQ(p.flicker.own_sd, 0.5);
  EXPECT_EQ(p.rf_guide.pole_pairs, 3);
  EXPECT_EQ(p.rf_guide.frequency_hz, 1e6);
  EXPECT_EQ(p.rf_guide.inscribed_radius_mm, 4.0);
  EXPECT_EQ(p.rf_guide.relative_ion_radius, 0.7);
  EXPECT_EQ(p.rf_guide.transverse_energy_ev, 0.2);
  EXPECT_EQ(p.rf_guide.well_loss_exponent, 6.0);
  EXPECT_EQ(p.rf_guide.adiabaticity_cutoff, 0.5);
  EXPECT_EQ(p.rf_guide.adiabaticity_cutoff_width, 0.05);
  EXPECT_EQ(p.settling.time_constant_sec, 0.75);
  ASSERT_EQ(p.calibrants.size(), 1u);
  EXPECT_NEAR(p.calibrants[0].mass_u, 90.97664, 1e-5);
  EXPECT_EQ(p.calibrants[0].ions_per_pulse, 1.5);
  ASSERT_EQ(p.contaminants.size(), 1u);
  EXPECT_EQ(p.contaminants[0].mass_u, 300.0);
}

}  // namespace
}  // namespace tof::description
