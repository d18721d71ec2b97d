#include <gtest/gtest.h>

#include "instruments/description/description_reader.h"
#include "tests/instruments/description/sample_description.h"
#include "tests/instruments/spectra/expect_input_error.h"

namespace tof::description {
namespace {

using spectra::InputErrorOf;

struct Spoiled {
  const char* name;
  const char* part;   // of the sample
  const char* other;  // what stands there instead
  const char* message;
};

class SpoiledDescriptions : public testing::TestWithParam<Spoiled> {};

TEST_P(SpoiledDescriptions, AreRefusedWithTheirPlace) {
  const std::string text = SampleWith(GetParam().part, GetParam().other);
  EXPECT_EQ(InputErrorOf([&] { ParseDescription(text, "d.xml"); }), GetParam().message);
}

INSTANTIATE_TEST_SUITE_P(
    Description, SpoiledDescriptions,
    testing::Values(
        Spoiled{"MalformedXml", "</settings>", "</setting>",
                "d.xml:14:5: found malformed XML (Start-end tags mismatch), expected a well-formed "
                "document"},
        Spoiled{"UnknownElement", "<status ", "<state ",
                "d.xml:3:4: found unknown element \"state\" in \"instrument\", expected one of: "
                "acquisition, status, peak_finder, paths, run, settings, flags, setpoints, "
                "coefficients, "
                "calibrants, virtual, recorded"},
        Spoiled{"UnknownAttribute", "start_us=\"30\"", "start_us=\"30\" start=\"30\"",
                "d.xml:2:4: found unknown attribute \"start\", expected one of: start_us, end_us, "
                "time_s, scale_factor"},
        Spoiled{"AttributeTwice", "start_us=\"30\"", "start_us=\"30\" start_us=\"31\"",
                "d.xml:2:4: found attribute \"start_us\" twice, expected each attribute once"},
        Spoiled{"ElementTwice", "<status nrdystate=\"-1\" runstate=\"1\"/>", "<status/><status/>",
                "d.xml:3:13: found element \"status\" twice, expected it once"},
        Spoiled{"TextBetweenElements", "<paths base_folder=\"/data\"/>", "/data",
                "d.xml:4:98: found text \"/data\", expected elements only"},
        Spoiled{"MissingElement",
                "<acquisition start_us=\"30\" end_us=\"100\" time_s=\"0.25\" "
                "scale_factor=\"2\"/>",
                "",
                "d.xml:1:2: found element \"instrument\" without element \"acquisition\", "
                "expected this element"},
        Spoiled{"MissingAttribute", "start_us=\"30\" ", "",
                "d.xml:2:4: found element \"acquisition\" without attribute \"start_us\", expected "
                "this attribute"},
        Spoiled{"WindowBackwards", "end_us=\"100\"", "end_us=\"30\"",
                "d.xml:2:4: found end_us=\"30\", expected a time after start_us"},
        Spoiled{"NumberWithText", "time_s=\"0.25\"", "time_s=\"0.25s\"",
                "d.xml:2:4: found time_s=\"0.25s\", expected a number"},
        Spoiled{"NanNumber", "time_s=\"0.25\"", "time_s=\"nan\"",
                "d.xml:2:4: found time_s=\"nan\", expected a number"},
        Spoiled{"FractionForAWholeNumber", "start_us=\"30\"", "start_us=\"30.5\"",
                "d.xml:2:4: found start_us=\"30.5\", expected a whole number of 32 bits"},
        Spoiled{"NotReadyBackwards", "runstate=\"1\"/>",
                "runstate=\"1\"><not_ready from_sec=\"2\" to_sec=\"2\"/></status>",
                "d.xml:3:40: found to_sec=\"2\", expected a time after from_sec"},
        Spoiled{"UnknownCentroid", "centroid=\"edges\"", "centroid=\"edge\"",
                "d.xml:4:4: found centroid=\"edge\", expected centre_of_gravity, edges, "
                "log_parabola, gaussian_fit or matched_filter"},
        Spoiled{"EdgesOfAnotherCentroid", "centroid=\"edges\"", "centroid=\"matched_filter\"",
                "d.xml:4:4: found edge_low=\"0.1\", expected it with the centroid \"edges\" only"},
        Spoiled{"EdgesUpsideDown", "edge_low=\"0.1\"", "edge_low=\"0.9\"",
                "d.xml:4:4: found edge_high=\"0.8\", expected not less than edge_low"},
        Spoiled{"EdgeAtTheFoot", "edge_low=\"0.1\"", "edge_low=\"0\"",
                "d.xml:4:4: found edge_low=\"0\", expected a part of the height, above 0"},
        Spoiled{"EdgeAtTheTop", "edge_high=\"0.8\"", "edge_high=\"1\"",
                "d.xml:4:4: found edge_high=\"1\", expected a part of the height, below 1"},
        Spoiled{"EdgePositionBeforeThePeak", "edge_position=\"0.25\"", "edge_position=\"-0.01\"",
                "d.xml:4:4: found edge_position=\"-0.01\", expected 0 to 1"},
        Spoiled{"EdgePositionJustBehindThePeak", "edge_position=\"0.25\"", "edge_position=\"1.01\"",
                "d.xml:4:4: found edge_position=\"1.01\", expected 0 to 1"},
        Spoiled{"EdgePositionOutsideThePeak", "edge_position=\"0.25\"", "edge_position=\"2\"",
                "d.xml:4:4: found edge_position=\"2\", expected 0 to 1"},
        Spoiled{"NoSpectra", "spectra=\"3\"", "spectra=\"0\"",
                "d.xml:6:4: found spectra=\"0\", expected 1 to 32767"},
        Spoiled{"UnknownSettingsKey", "AIC_TargetMinAb", "AIC_TargetMin",
                "d.xml:9:8: found unknown key \"AIC_TargetMin\" of section \"Calibration\", "
                "expected a setting that a calibration reads"},
        Spoiled{"KeyOfAnotherSection", "PeakFindWindowInPercentT", "AIC_TargetMinAb",
                "d.xml:12:8: found unknown key \"AIC_TargetMinAb\" of section \"PeakHandling\", "
                "expected a setting that a calibration reads"},
        Spoiled{"SettingTwice", "<section name=\"PeakHandling\">",
                "<section name=\"Calibration\"><setting key=\"AIC_TargetMinAb\" value=\"1\"/>"
                "</section><section name=\"PeakHandling\">",
                "d.xml:11:34: found key=\"AIC_TargetMinAb\", expected each key once"},
        Spoiled{"UnknownFlag", "ObfuscateCalibAlg", "obfuscateCalibAlg",
                "d.xml:17:6: found unknown flag \"obfuscateCalibAlg\", expected a flag that a "
                "calibration reads, or aic_key's"},
        Spoiled{"FlagTwice", "ObfuscateCalibAlg", "AicIsOff",
                "d.xml:17:6: found key=\"AicIsOff\", expected each key once"},
        Spoiled{"UnknownSetpointType", "type=\"int32\"", "type=\"long\"",
                "d.xml:20:6: found type=\"long\", expected int16, int32, double or boolean"},
        Spoiled{"SetpointBeyondItsType", "type=\"int16\" value=\"1\"",
                "type=\"int16\" value=\"32768\"",
                "d.xml:21:6: found value=\"32768\", expected a whole number of 16 bits"},
        Spoiled{"BooleanAsNumber", "value=\"true\"", "value=\"1\"",
                "d.xml:22:6: found value=\"1\", expected true or false"},
        Spoiled{"SetpointTwice", "id=\"83\"", "id=\"149\"",
                "d.xml:23:6: found id=\"149\", expected each id once"},
        Spoiled{"AliasOfNothing", "id=\"83\" type=\"double\" value=\"75.5\"",
                "id=\"83\" same_as=\"84\"",
                "d.xml:23:6: found same_as=\"84\", expected the id of a setpoint before this one"},
        Spoiled{"AliasWithAValue", "id=\"83\"", "id=\"83\" same_as=\"149\"",
                "d.xml:23:6: found same_as=\"149\", expected it without type and value"},
        Spoiled{"AliasOfAnIdInUse", "id=\"83\" type=\"double\" value=\"75.5\"",
                "id=\"149\" same_as=\"117\"",
                "d.xml:23:6: found id=\"149\", expected each id once"},
        Spoiled{"NegativeA", "a_per_ns=\"0.00065\"", "a_per_ns=\"-1\"",
                "d.xml:26:6: found a_per_ns=\"-1\", expected a number above 0"},
        Spoiled{"UnknownWeighting", "\"flight_time\"", "\"1\"",
                "d.xml:25:4: found trad_weighting=\"1\", expected relative_mass, flight_time or "
                "absolute_mass"},
        Spoiled{"NegativeMass", "200.25", "-200.25",
                "d.xml:31:6: found mass -200.250000, expected masses above 0"},
        Spoiled{"TextAsMass", "200.25", "heavy",
                "d.xml:31:6: found \"heavy\", expected numbers separated by blanks"},
        Spoiled{"MassTwice", "200.25", "100.5",
                "d.xml:31:6: found mass 100.500000 twice, expected each mass once"},
        Spoiled{"NoMasses", "1 2</list>", "</list>",
                "d.xml:30:6: found no masses, expected masses in m/z, separated by blanks"},
        Spoiled{"ListTwice", "setpoint_117=\"4\"", "setpoint_117=\"5\"",
                "d.xml:31:6: found setpoint_117=\"5\", expected one list for each value"},
        Spoiled{"NoFiles",
                "<spectrum file=\"a.txt\"/>\n    <spectrum file=\"b.mzML\" "
                "format=\"mzml\" spectra=\"all\"/>",
                "", "d.xml:36:4: found no element \"spectrum\", expected at least one"},
        Spoiled{"UnknownFormat", "format=\"mzml\"", "format=\"mzML\"",
                "d.xml:38:6: found format=\"mzML\", expected text or mzml"},
        Spoiled{
            "AllSpectraOfAText", "format=\"mzml\" ", "",
            "d.xml:38:6: found spectra=\"all\", expected first: a text file holds one spectrum"},
        Spoiled{"StandingClock", "seconds_per_spectrum=\"0.5\"", "seconds_per_spectrum=\"0\"",
                "d.xml:36:4: found seconds_per_spectrum=\"0\", expected a number above 0"},
        Spoiled{"TwoSources", "</instrument>", "<virtual rf_setpoint=\"83\"/></instrument>",
                "d.xml:1:2: found both or neither of \"virtual\" and \"recorded\", expected one of "
                "them"}),
    [](const testing::TestParamInfo<Spoiled>& row) { return row.param.name; });

// What stands in <virtual> of an otherwise good description.
std::string RefusalOfVirtual(const std::string& attributes, const std::string& content) {
  const std::string text =
      "<instrument name='v'><acquisition start_us='10' end_us='20'/><coefficients>"
      "<factory a_per_ns='1' t0_ns='0'/></coefficients>\n<virtual " +
      attributes + ">" + content + "</virtual></instrument>";
  return InputErrorOf([&] { ParseDescription(text, "v.xml"); });
}

TEST(VirtualSection, RefusesWhatIsNotAParameter) {
  EXPECT_EQ(RefusalOfVirtual("rf_setpoint='1'", "<drift rate='1'/>"),
            "v.xml:2:27: found unknown attribute \"rate\", expected one of: rate_ppm_per_min, "
            "random_walk_ppm_per_sqrt_min");
  EXPECT_EQ(RefusalOfVirtual("", ""),
            "v.xml:2:2: found element \"virtual\" without attribute \"rf_setpoint\", expected this "
            "attribute");
}

TEST(VirtualSection, RefusesAnImpossibleInstrument) {
  EXPECT_EQ(RefusalOfVirtual("rf_setpoint='1'", "<spectrum bin_ns='0'/>"),
            "v.xml:2:2: found parameters that are refused (virtual instrument: bin_ns is 0, "
            "expected a number above 0), expected those of a possible instrument");
}

TEST(VirtualSection, RefusesASpeciesThatIsNotOne) {
  EXPECT_EQ(RefusalOfVirtual("rf_setpoint='1'", "<calibrant ions_per_pulse='1'/>"),
            "v.xml:2:27: found a species with both or neither of formula and mass, expected one of "
            "them");
  EXPECT_EQ(RefusalOfVirtual("rf_setpoint='1'", "<calibrant mass='-1' ions_per_pulse='1'/>"),
            "v.xml:2:27: found mass=\"-1\", expected a number above 0");
  const std::string formula =
      RefusalOfVirtual("rf_setpoint='1'", "<calibrant formula='Xx2' ions_per_pulse='1'/>");
  EXPECT_EQ(formula.find("v.xml:2:27: found formula=\"Xx2\", expected the formula of an ion ("), 0u)
      << formula;
}

TEST(DescriptionReader, RefusesAnotherKindOfDocument) {
  EXPECT_EQ(InputErrorOf([] { ParseDescription("<mzML/>", "d.xml"); }),
            "d.xml:1:2: found element \"mzML\", expected \"instrument\"");
}

TEST(DescriptionReader, RefusesAMissingFile) {
  EXPECT_EQ(InputErrorOf([] { ReadDescription("/no/such/instrument.xml"); }),
            "/no/such/instrument.xml: found No such file or directory, expected a readable file");
}

}  // namespace
}  // namespace tof::description
