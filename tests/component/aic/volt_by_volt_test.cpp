// The search for a closer voltage, volt by volt: how it rounds and where its markers stand.
#include "component/aic/target_search.h"
#include "tests/support/aic_fixture.h"
#include "tests/support/traced_calls.h"

namespace tof {
namespace {

using fakes::BandLimitRead;
using fakes::Calls;
using fakes::InOrder;
using fakes::RfWritten;
using fakes::SpectrumTaken;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::EndsWith;

const std::string kName = "FindRFVoltageCloserToTargetAbundance";

class VoltByVolt : public fakes::AicFixture {
 protected:
  VoltByVolt() {
    instrument.settings["Calibration/AIC_TargetMaxAb"] = 1000.0;
    data.peaks(1).Voltage = 80.0;
    data.peaks(1).Abundance = 50;
    instrument.abundance_at = [this](double mass, double volts) {
      return mass == 400.0 ? abundance_at_volt(volts) : 7.0;
    };
  }
  void Find(double step_size) {
    FindRFVoltageCloserToTargetAbundance(
        {parts, host, rf, data.expected_masses, data.ab_scalars, log}, data.peaks, 1, step_size);
  }
  Calls VoltsSet() const { return journal.Only({"SetpointTable.SetSetpoint"}); }

  const RfVoltage rf = Rf();
  std::function<double(double)> abundance_at_volt = [](double volts) { return volts; };
};

TEST_F(VoltByVolt, RoundsFirstAndLastVoltHalvesToEven) {
  struct Row {
    const char* what;
    double voltage;
    double step_size;
    const char* bounds;
    Calls volts;
  };
  const Row rows[] = {{"all down, the measured first up", 80.5, 3.0, "80, 82", {"82"}},
                      {"all up, the measured first down", 81.5, 3.0, "82, 84", {"82", "83", "84"}},
                      {"below a half", 80.25, 3.0, "80, 82", {"81", "82"}},
                      {"above a half", 80.75, 3.0, "81, 83", {"82", "83"}}};
  for (const Row& row : rows) {
    SCOPED_TRACE(row.what);
    data.peaks(1).Voltage = row.voltage;
    data.peaks(1).Abundance = 5000;
    journal.Clear();
    host.trace->Forget();
    Find(row.step_size);
    Calls expected;
    for (const std::string& volt : row.volts) {
      expected.push_back("SetpointTable.SetSetpoint(84,5," + volt + ")");
    }
    EXPECT_THAT(VoltsSet(), ElementsAreArray(expected));
    EXPECT_THAT(
        TextsOf(kName),
        Contains(std::string("LBound(arrAbundances), UBound(arrAbundances) = ") + row.bounds));
  }
}

TEST_F(VoltByVolt, RoundsTheAbundancesHalvesToEven) {
  abundance_at_volt = [](double volts) { return volts == 81.0 ? 62.5 : 63.5; };
  Find(3.0);
  EXPECT_EQ(Log(),
            "RF voltage, Ab: 81, 62\r\n"
            "RF voltage, Ab: 82, 64\r\n"
            "for mass[1], we replaced [voltage,ab]=[80, 50] with [82, 64]\r\n");
}

TEST_F(VoltByVolt, TracesEachMarkerBehindWhatItFollows) {
  Find(3.0);
  const auto traced = [](const std::string& text) { return fakes::Traced(kName, text); };
  const auto measured = [&](const std::string& volt) {
    return InOrder({traced("4"), RfWritten(volt), traced("5"), fakes::kSettled, traced("6"),
                    SpectrumTaken("-1"), Calls{"Host.ProcessPendingMessages"}, traced("7"),
                    traced("8"), Logged(), traced("9")});
  };
  const auto judged = [&](const std::string& abundance) {
    return InOrder(
        {traced("arrAbundances(lVoltage) = " + abundance), BandLimitRead("AIC_TargetMaxAb")});
  };
  const auto replaced = [&](const std::string& abundance) {
    return traced(">>arrAbundances(lVoltage) > existing; replacing with ==> " + abundance);
  };
  EXPECT_THAT(
      journal.entries(),
      ElementsAreArray(InOrder(
          {fakes::Entered(kName), traced("1"),
           traced("m_PeakAttribsOfCalibMassesAtTargetVoltages(massIdx).Voltage  = 80"),
           traced("m_PeakAttribsOfCalibMassesAtTargetVoltages(massIdx).Voltage + stepSize - 1 = "
                  "82"),
           traced("2"), traced("3"), measured("81"), measured("82"), traced("10"),
           traced("LBound(arrAbundances), UBound(arrAbundances) = 80, 82"), judged("50"),
           judged("81"), replaced("81"), judged("82"), replaced("82"), Logged(), traced("11"),
           fakes::Left(kName)})));
}

TEST_F(VoltByVolt, YieldsBeforeItLooksAtAnAbundanceThatDoesNotFit) {
  abundance_at_volt = [](double) { return 3e9; };
  Find(3.0);
  EXPECT_EQ(NumberOf("SpecParser."), 1U);
  EXPECT_EQ(journal.Only({"SpecParser.", "Host.ProcessPendingMessages"}).back(),
            "Host.ProcessPendingMessages");
  const std::vector<std::string> texts = TextsOf(kName);
  ASSERT_GE(texts.size(), 2U);
  EXPECT_THAT(std::vector<std::string>(texts.end() - 2, texts.end()),
              ElementsAre("7", "Error[6] = Overflow"));
}

// Each volt's abundance is kept under the volt itself, the chosen one's under its rounded number.
TEST_F(VoltByVolt, MovesFromAFractionalVoltageToTheWholeVolt) {
  data.peaks(1).Voltage = 79.75;
  abundance_at_volt = [](double volts) { return volts == 81.0 ? 50.0 : 60.0; };
  Find(3.0);
  EXPECT_EQ(data.peaks(1).Voltage, 82.0);
  EXPECT_THAT(Log(), EndsWith("we replaced [voltage,ab]=[79.75, 50] with [82, 60]\r\n"));
}

}  // namespace
}  // namespace tof
