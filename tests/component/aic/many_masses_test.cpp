// Collecting points of more masses than the display's counter counts to.
#include "component/aic/point_collection.h"
#include "tests/support/aic_fixture.h"
#include "tests/support/traced_calls.h"

namespace tof {
namespace {

class CollectingPointsOfManyMasses : public fakes::AicFixture {
 protected:
  CollectingPointsOfManyMasses() {
    instrument.flags["ObfuscateCalibAlg"] = "2";
    instrument.sample_masses = {100.0,  400.0, 900.0, 1600.0, 2500.0, 3600.0,
                                4900.0, 64.0,  81.0,  121.0,  144.0,  169.0};
    data.expected_masses = Variant::DoubleArray(instrument.sample_masses);
    SizeFor(1);
  }

  double window = 0.75;
};

TEST_F(CollectingPointsOfManyMasses, NeverShowsTheSpectrumByMassAsItCountsAnewForEach) {
  CollectAdditionalPointsForPurposesOfAveraging_byMass(parts, host, Rf(), data.expected_masses, log,
                                                       data.peaks, window);
  EXPECT_EQ(instrument.spectra_taken, 12);
  EXPECT_EQ(NumberOf("TuneFlags.GetFlag(ObfuscateCalibAlg"), 12U);
  EXPECT_EQ(NumberOf("Trace.Entry(ShowSpectrum"), 0U);
}

TEST_F(CollectingPointsOfManyMasses, ShowsTheSpectrumByMeasurementAsItCountsOn) {
  CollectAdditionalPointsForPurposesOfAveraging_byMeasurement(
      parts, host, Rf(), data.expected_masses, log, data.peaks, window);
  EXPECT_EQ(instrument.spectra_taken, 12);
  EXPECT_EQ(NumberOf("Trace.Entry(ShowSpectrum"), 2U);
}

}  // namespace
}  // namespace tof
