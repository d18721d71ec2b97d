// Another program's reader takes what was written for what it is.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <pwiz/data/msdata/MSDataFile.hpp>

#include "hosts/apply/mzml_conversion.h"
#include "tests/hosts/apply/sample_mzml.h"
#include "tests/hosts/temporary_folder.h"

namespace tof::apply {
namespace {

using tof::testing::IndexedSample;
using tof::testing::kSampleIntensities;
using tof::testing::kSampleTimesNs;
using tof::testing::TemporaryFolder;
using tof::testing::WriteBytes;

class SecondReader : public ::testing::Test {
 protected:
  SecondReader() {
    calibration_.model = {{6.5e-4, 300.0, 1e-3}, {20'000.0, 30'000.0}};
    calibration_.has_window = true;
    calibration_.file = "r.json";
    calibration_.terms = {"A", "t0", "C"};
    WriteBytes(folder_ / "in.mzML", IndexedSample());
    std::string text;
    MassAxis axis(calibration_);
    ConvertMzml(
        folder_ / "in.mzML", ProvenanceOf(calibration_, "1.2.3", "now"), "1.2.3", axis,
        [&](std::string_view bytes) { text += bytes; }, [](std::uint64_t) {});
    WriteBytes(folder_ / "out.mzML", text);
  }

  TemporaryFolder folder_;
  AppliedCalibration calibration_;
};

TEST_F(SecondReader, FindsMzAndIntensities) {
  const pwiz::msdata::MSDataFile file(folder_ / "out.mzML");
  ASSERT_EQ(file.run.spectrumListPtr->size(), 3u);
  for (const std::size_t n : {std::size_t{0}, std::size_t{1}}) {
    const auto spectrum = file.run.spectrumListPtr->spectrum(n, true);
    const auto masses = spectrum->getMZArray();
    const auto intensities = spectrum->getIntensityArray();
    ASSERT_TRUE(masses && intensities);
    EXPECT_EQ(masses->cvParam(pwiz::cv::MS_m_z_array).units, pwiz::cv::MS_m_z);
    EXPECT_FALSE(masses->hasCVParam(pwiz::cv::MS_time_array));
    ASSERT_EQ(masses->data.size(), kSampleTimesNs.size());
    for (std::size_t i = 0; i < kSampleTimesNs.size(); ++i) {
      const double mass = masstime::TimeToMass(calibration_.model, kSampleTimesNs[i]);
      EXPECT_NEAR(masses->data[i], mass, mass * (n == 0 ? 1e-14 : 1e-7));
      EXPECT_EQ(intensities->data[i], kSampleIntensities[i]);
    }
  }
  EXPECT_EQ(file.run.spectrumListPtr->spectrum(2, true)->getMZArray()->data.size(), 0u);
}

TEST_F(SecondReader, FindsTheProvenance) {
  const pwiz::msdata::MSDataFile file(folder_ / "out.mzML");
  const auto masses = file.run.spectrumListPtr->spectrum(0, true)->getMZArray();
  ASSERT_TRUE(masses->dataProcessingPtr);
  ASSERT_EQ(masses->dataProcessingPtr->processingMethods.size(), 1u);
  const auto& method = masses->dataProcessingPtr->processingMethods[0];
  EXPECT_TRUE(method.hasCVParam(pwiz::cv::MS_m_z_calibration));
  EXPECT_EQ(method.userParam("calibration file").value, "r.json");
  EXPECT_EQ(method.userParam("formula").value, std::string(masstime::kFormula));
  EXPECT_EQ(method.userParam("C in sqrt(u)").value, "0.001");
  ASSERT_TRUE(method.softwarePtr);
  EXPECT_EQ(method.softwarePtr->version, "1.2.3");
}

TEST_F(SecondReader, FindsWhatWasThereBefore) {
  const pwiz::msdata::MSDataFile file(folder_ / "out.mzML");
  ASSERT_FALSE(file.softwarePtrs.empty());
  EXPECT_EQ(file.softwarePtrs[0]->id, "acquisition");
  const auto spectrum = file.run.spectrumListPtr->spectrum(0, true);
  EXPECT_EQ(spectrum->userParam("operator's note").value, "a < b & c");
  EXPECT_EQ(spectrum->binaryDataArrayPtrs.size(), 3u);
  EXPECT_EQ(spectrum->getArrayByCVID(pwiz::cv::MS_signal_to_noise_array)->data[3], 4.0);
  const auto trace = file.run.chromatogramListPtr->chromatogram(0, true);
  EXPECT_EQ(trace->getTimeArray()->data[1], 2.0);
}

}  // namespace
}  // namespace tof::apply
