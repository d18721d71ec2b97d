// What the suite does not hold against an instrument, and what it spares it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "component/automation/convert.h"
#include "component/automation/error.h"
#include "tests/instruments/conformance/decorated_instrument.h"
#include "tests/instruments/conformance/outcomes.h"
#include "tests/instruments/standin/test_instrument.h"

namespace tof::conformance {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

template <class Wrapper>
std::vector<CheckResult> ResultsWith(
    const description::InstrumentDescription& description = description::BuiltInDescription()) {
  standin::TestInstrument test(description);
  DecoratedInstrument decorated(test.instrument);
  decorated.wrappers.Use<Wrapper>();
  return RunChecks({.factory = decorated, .host = test.host});
}

struct ParserWithoutAnotherWindow : ForwardingSpecParser {
  using ForwardingSpecParser::ForwardingSpecParser;
  PeakAttribsTable GetCalibrantPeakAttributes(const Variant& masses, double window) override {
    if (window != -1.0) throw AutomationError(5, "This parser has but its own window");
    return inner_->GetCalibrantPeakAttributes(masses, window);
  }
};

TEST(Fairness, LeavesTheWindowToTheParser) {
  const std::vector<CheckResult> results = ResultsWith<ParserWithoutAnotherWindow>();
  EXPECT_THAT(Failures(results), IsEmpty());
  standin::TestInstrument plain;
  EXPECT_EQ(NotApplicables(results),
            NotApplicables(RunChecks({.factory = plain.instrument, .host = plain.host})));
}

struct WindowFromZero : ForwardingDataDictionary {
  using ForwardingDataDictionary::ForwardingDataDictionary;
  std::int32_t GetAcqStartTime() override { return 0; }
};

TEST(Fairness, TakesAnAcquisitionThatStartsWithThePulse) {
  EXPECT_THAT(Failures(ResultsWith<WindowFromZero>()), IsEmpty());
}

// The setpoint that abundance-immune calibration moves.
constexpr std::int32_t kRfId = 84;

struct RfVoltageWithItsLimits : ForwardingSetpointTable {
  using ForwardingSetpointTable::ForwardingSetpointTable;
  void SetSetpoint(std::int32_t id, ValueType type, const Variant& value) override {
    if (id == kRfId && (ToDouble(value) < 20.0 || ToDouble(value) > 160.0)) {
      throw AutomationError(5, "The amplifier does not bear " + ToText(value) + " V");
    }
    inner_->SetSetpoint(id, type, value);
  }
};

TEST(Fairness, MovesTheVoltageInItsRangeOnly) {
  description::InstrumentDescription description = description::BuiltInDescription();
  description.settings["Calibration"]["AIC_SetpointToUse"] = kRfId;
  EXPECT_THAT(Failures(ResultsWith<RfVoltageWithItsLimits>(description)), IsEmpty());
}

// Intensities as parts of a full scale, in one of the two rows. The band is in other units then and
// the other row is empty, which are other checks' matters.
template <std::int32_t kRow>
struct ParserInTinyUnits : ForwardingSpecParser {
  using ForwardingSpecParser::ForwardingSpecParser;
  PeakAttribsTable GetCalibrantPeakAttributes(const Variant& masses, double window) override {
    PeakAttribsTable table = inner_->GetCalibrantPeakAttributes(masses, window);
    for (std::int32_t k = 0; k <= table.UBound(2); ++k) {
      table(kRow, k).abundance *= 1e-9;
      table(1 - kRow, k).abundance = 0.0;
    }
    return table;
  }
};

Outcome OutcomeOf(const std::string& id, const std::vector<CheckResult>& results) {
  const auto found = std::find_if(results.begin(), results.end(),
                                  [&id](const auto& result) { return result.id == id; });
  return found == results.end() ? Outcome::kNotApplicable : found->outcome;
}

TEST(Fairness, FindsCalibrantsInWhateverUnits) {
  const std::string check = "SpecParser.finds-calibrants";
  EXPECT_EQ(OutcomeOf(check, ResultsWith<ParserInTinyUnits<0>>()), Outcome::kPass);
  EXPECT_EQ(OutcomeOf(check, ResultsWith<ParserInTinyUnits<1>>()), Outcome::kPass);
}

TEST(Fairness, SaysThatAnInstrumentHasNoStatusReader) {
  standin::TestInstrument test;
  DecoratedInstrument decorated(test.instrument);
  decorated.wrappers.GiveNone<StatusReader>();
  EXPECT_THAT(
      Failures(RunChecks({.factory = decorated, .host = test.host})),
      ElementsAre("StatusReader.reads-the-ready-state: expected a status reader, found none",
                  "StatusReader.reads-the-run-state: expected a status reader, found none"));
}

TEST(Fairness, NeedsNoDisplayOfSpectra) {
  standin::TestInstrument test;
  DecoratedInstrument decorated(test.instrument);
  decorated.wrappers.GiveNone<SpectrumDisplay>();
  const auto results = RunChecks({.factory = decorated, .host = test.host});
  EXPECT_THAT(Failures(results), IsEmpty());
  EXPECT_EQ(NotApplicables(results).at("SpectrumDisplay.freezes-and-goes-live"),
            "the instrument has no spectrum display");
}

struct ReaderOfVariantsAtZero : ForwardingStatusReader {
  using ForwardingStatusReader::ForwardingStatusReader;
  Variant Read(const std::string& name, const std::string& type, std::int32_t zero) override {
    if (type != "VARIANT" || zero != 0) throw AutomationError(5, "no such reading");
    return inner_->Read(name, type, zero);
  }
};

TEST(Fairness, ReadsTheStatusAsACalibrationDoes) {
  EXPECT_THAT(Failures(ResultsWith<ReaderOfVariantsAtZero>()), IsEmpty());
}

// With setpoint 162 on, the limit of A is another setting.
TEST(Fairness, LooksForTheLimitThatTheInstrumentGoesBy) {
  const auto failures_without = [](const std::string& setting) {
    description::InstrumentDescription description = description::BuiltInDescription();
    description.setpoints.at(162).value = Variant(true);
    description.settings["Calibration"].erase(setting);
    standin::TestInstrument test(description);
    return Failures(RunChecks({.factory = test.instrument, .host = test.host}));
  };
  EXPECT_THAT(failures_without("TargetAPercentError"), IsEmpty());
  EXPECT_THAT(failures_without("TargetAPercentError_FPS"),
              ElementsAre("CalibSettings.limits-of-a-good-fit-are-there: expected "
                          "Calibration/TargetAPercentError_FPS other than 0, found 0"));
}

}  // namespace
}  // namespace tof::conformance
