#include "hosts/apply/mzml_conversion.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

#include "hosts/apply/checksum.h"
#include "instruments/spectra/input_error.h"
#include "instruments/spectra/mzml_reader.h"
#include "tests/hosts/apply/sample_mzml.h"
#include "tests/hosts/temporary_folder.h"

namespace tof::apply {
namespace {

using spectra::ArrayForm;
using ::testing::HasSubstr;
using ::testing::Not;
using tof::testing::ArrayElement;
using tof::testing::BytesOf;
using tof::testing::DocumentWith;
using tof::testing::IndexedSample;
using tof::testing::kSampleTimesNs;
using tof::testing::SpectrumElement;
using tof::testing::TemporaryFolder;
using tof::testing::WriteBytes;

AppliedCalibration SampleCalibration() {
  AppliedCalibration calibration;
  calibration.model = {{6.5e-4, 300.0, 1e-3}, {20'000.0, 30'000.0}};
  calibration.has_window = true;
  return calibration;
}

struct Conversion {
  std::string text;
  ConversionCounts counts;
};

Conversion Converted(const std::string& document,
                     const std::vector<Fact>& facts = {{"calibration file", "r.json"}}) {
  const TemporaryFolder folder;
  WriteBytes(folder / "in.mzML", document);
  Conversion result;
  MassAxis axis(SampleCalibration());
  ConvertMzml(
      folder / "in.mzML", facts, "1.2.3", axis,
      [&](std::string_view bytes) { result.text += bytes; }, [](std::uint64_t) {});
  result.counts = axis.Counts();
  return result;
}

std::string Refusal(const std::string& document) {
  try {
    Converted(document);
    return "none";
  } catch (const spectra::InputError& error) {
    const std::string text = error.what();
    return text.substr(text.find("in.mzML"));
  }
}

// The numbers of an array, by its place in the file.
std::vector<double> Values(const std::string& document, int spectrum, int array) {
  pugi::xml_document xml;
  xml.load_string(document.c_str());
  const auto mzml = xml.document_element().child("mzML") ? xml.document_element().child("mzML")
                                                         : xml.document_element();
  const auto in = [](pugi::xml_node node, const char* name, int n) {
    auto child = node.child(name);
    while (n-- > 0) child = child.next_sibling(name);
    return child;
  };
  const auto node = in(mzml.child("run").child("spectrumList"), "spectrum", spectrum);
  const auto element = in(node.child("binaryDataArrayList"), "binaryDataArray", array);
  const auto groups = mzml.child("referenceableParamGroupList");
  return spectra::DecodeArray(element, spectra::FormOf(element, groups),
                              spectra::DeclaredLength(node, element));
}

TEST(MzmlConversion, TurnsFlightTimesIntoMz) {
  const std::string text = Converted(IndexedSample()).text;
  const std::vector<double> wide = Values(text, 0, 0);
  const std::vector<double> narrow = Values(text, 1, 0);
  ASSERT_EQ(wide.size(), 4u);
  ASSERT_EQ(narrow.size(), 4u);
  for (std::size_t i = 0; i < 4; ++i) {
    const double mass = masstime::TimeToMass(SampleCalibration().model, kSampleTimesNs[i]);
    EXPECT_NEAR(wide[i], mass, mass * 1e-14) << "the times in us";
    EXPECT_EQ(narrow[i], static_cast<double>(static_cast<float>(mass)));
  }
}

TEST(MzmlConversion, IsNotMisledByAComment) {
  std::string document = IndexedSample();
  document.insert(document.find("<spectrumList"), "<!-- <spectrum><binary> </spectrum> -->");
  EXPECT_EQ(Converted(document).counts.spectra, 3u);
}

TEST(MzmlConversion, CountsWhatAUserShouldKnow) {
  const ConversionCounts counts = Converted(IndexedSample()).counts;
  EXPECT_EQ(counts.spectra, 3u);
  EXPECT_EQ(counts.bins, 8u);
  EXPECT_EQ(counts.outside_window, 2u);
  EXPECT_EQ(counts.before_t0, 0u);
}

// What is left when everything that must change is taken out of both.
std::string WithoutChanges(std::string text) {
  const auto cut = [&text](const std::string& from, const std::string& to) {
    for (auto at = text.find(from); at != std::string::npos; at = text.find(from, at + 1)) {
      text.erase(at + from.size(), text.find(to, at + from.size()) - at - from.size());
    }
  };
  const auto remove = [&text](const std::string& from, const std::string& to) {
    const auto at = text.find(from);
    if (at != std::string::npos) text.erase(at, text.find(to, at) + to.size() - at);
  };
  remove("\n  <software id=\"tofcal", "</software>");
  remove("\n  <dataProcessing id=\"tofcal", "</dataProcessing>");
  cut("<softwareList count=\"", "\"");
  cut("<dataProcessingList count=\"", "\"");
  cut("<indexListOffset>", "<");
  cut("<fileChecksum>", "<");
  cut("<offset idRef=\"scan=0\">", "<");
  cut("<offset idRef=\"scan=1\">", "<");
  cut("<offset idRef=\"scan=2\">", "<");
  cut("<offset idRef=\"TIC\">", "<");
  return text;
}

TEST(MzmlConversion, KeepsEveryOtherByte) {
  const std::string before = WithoutChanges(IndexedSample());
  const std::string after = WithoutChanges(Converted(IndexedSample()).text);
  // The arrays of flight times, each in its spectrum.
  const auto pieces = [](const std::string& text) {
    std::vector<std::string> parts;
    std::size_t begin = 0;
    for (auto at = text.find("<binaryDataArrayList"); at != std::string::npos;
         at = text.find("<binaryDataArrayList", at + 1)) {
      parts.push_back(text.substr(begin, at - begin));
      begin = text.find("</binaryDataArray>", at);
    }
    parts.push_back(text.substr(begin));
    return parts;
  };
  EXPECT_EQ(pieces(before), pieces(after));
  // The time array of the chromatogram is of another kind.
  const auto chromatogram = [](const std::string& text) {
    return text.substr(text.find("<chromatogramList"),
                       text.find("</chromatogramList>") - text.find("<chromatogramList"));
  };
  EXPECT_EQ(chromatogram(before), chromatogram(after));
}

TEST(MzmlConversion, SaysThatTheArrayIsMzNow) {
  const std::string text = Converted(IndexedSample()).text;
  const auto first = text.substr(text.find("id=\"scan=0\""), 900);
  EXPECT_THAT(first, HasSubstr("dataProcessingRef=\"tofcal_apply\""));
  EXPECT_THAT(first, HasSubstr("accession=\"MS:1000514\" name=\"m/z array\" unitCvRef=\"MS\" "
                               "unitAccession=\"MS:1000040\" unitName=\"m/z\""));
  EXPECT_THAT(first, Not(HasSubstr("MS:1000595")));
}

TEST(MzmlConversion, LeavesAGroupOfTermsToTheOthersThatReferToIt) {
  const std::string text = Converted(IndexedSample()).text;
  const auto second = text.substr(text.find("id=\"scan=1\""), 900);
  EXPECT_THAT(second, Not(HasSubstr("referenceableParamGroupRef")));
  EXPECT_THAT(second, HasSubstr("<userParam name=\"digitizer\" value=\"8 bit\""));
  EXPECT_THAT(second, HasSubstr("<userParam name=\"earlier dataProcessingRef\" value=\"earlier\""));
  EXPECT_THAT(text, HasSubstr("<referenceableParamGroup id=\"times\">"));
}

TEST(MzmlConversion, TellsTheProvenance) {
  const std::string text =
      Converted(IndexedSample(), {{"calibration file", "M\xC3\xBCller & \"Co\".json"}}).text;
  EXPECT_THAT(text, HasSubstr("<softwareList count=\"2\">"));
  EXPECT_THAT(text, HasSubstr("<dataProcessingList count=\"2\">"));
  EXPECT_THAT(text, HasSubstr("<software id=\"tofcal_apply_software\" version=\"1.2.3\">"));
  EXPECT_THAT(text, HasSubstr("accession=\"MS:1001485\" name=\"m/z calibration\""));
  // In a file of another encoding than UTF-8.
  EXPECT_THAT(text, HasSubstr("value=\"M&#252;ller &amp; &quot;Co&quot;.json\""));
}

TEST(MzmlConversion, MakesTheIndexRightAgain) {
  const std::string text = Converted(IndexedSample()).text;
  const auto number_behind = [&text](const std::string& label) {
    return std::stoul(text.substr(text.find(label) + label.size()));
  };
  for (const std::string id : {"scan=0", "scan=1", "scan=2"}) {
    const auto at = number_behind("<offset idRef=\"" + id + "\">");
    EXPECT_THAT(text.substr(at, 40), ::testing::StartsWith("<spectrum index=")) << id;
    EXPECT_THAT(text.substr(at, 40), HasSubstr(id));
  }
  EXPECT_THAT(text.substr(number_behind("<offset idRef=\"TIC\">"), 13), "<chromatogram");
  EXPECT_THAT(text.substr(number_behind("<indexListOffset>"), 10), "<indexList");
}

TEST(MzmlConversion, MakesTheChecksumRightAgain) {
  const std::string text = Converted(IndexedSample()).text;
  const std::string tag = "<fileChecksum>";
  const auto behind = text.find(tag) + tag.size();
  const TemporaryFolder folder;
  WriteBytes(folder / "head", text.substr(0, behind));
  // Another program's opinion.
  const std::string command = "sha1sum '" + (folder / "head") + "' > '" + (folder / "sum") + "'";
  ASSERT_EQ(std::system(command.c_str()), 0);
  EXPECT_EQ(text.substr(behind, 40), BytesOf(folder / "sum").substr(0, 40));
}

TEST(MzmlConversion, ConvertsAFileWithoutAnIndexThatIsLargerThanAPiece) {
  const std::vector<double> intensity(50'000, 3.0);
  std::vector<double> times_ns;
  for (std::size_t i = 0; i < intensity.size(); ++i) {
    times_ns.push_back(20'000.0 + 0.25 * static_cast<double>(i));
  }
  std::string spectra;
  for (int n = 0; n < 5; ++n) {
    spectra += SpectrumElement(n, times_ns.size(),
                               ArrayElement(times_ns, {}, tof::testing::kTimesAsMz) +
                                   ArrayElement(intensity, {}, tof::testing::kIntensities));
  }
  const Conversion result = Converted(DocumentWith(spectra));
  EXPECT_EQ(result.counts.bins, 250'000u);
  EXPECT_EQ(Values(result.text, 4, 1), intensity);
  EXPECT_EQ(Values(result.text, 4, 0)[49'999],
            masstime::TimeToMass(SampleCalibration().model, times_ns.back()));
}

TEST(MzmlConversion, ReportsTermsOfAnMzThatItKeeps) {
  std::string document = DocumentWith(tof::testing::SampleSpectra());
  const std::string peak = tof::testing::Term("MS:1000504", "base peak m/z", " value=\"20000.5\"");
  document.insert(document.find("<userParam name=\"operator"), peak);
  const Conversion result = Converted(document);
  EXPECT_EQ(result.counts.stale_mz_terms, 1u);
  EXPECT_THAT(result.text, HasSubstr(peak));
}

TEST(MzmlConversion, RefusesWhatHasItsMzAlready) {
  EXPECT_THAT(Refusal(Converted(IndexedSample()).text),
              HasSubstr("found spectra that have their m/z already, expected flight times"));
}

struct Damage {
  std::string name;
  std::string find;
  std::string replacement;
  std::string message;
};

class DamagedMzml : public ::testing::TestWithParam<Damage> {};

TEST_P(DamagedMzml, IsRefusedWithItsPlace) {
  std::string document = IndexedSample();
  const auto at = document.find(GetParam().find);
  ASSERT_NE(at, std::string::npos);
  document.replace(at, GetParam().find.size(), GetParam().replacement);
  EXPECT_THAT(Refusal(document), HasSubstr(GetParam().message));
}

INSTANTIATE_TEST_SUITE_P(
    MzmlConversion, DamagedMzml,
    ::testing::Values(
        Damage{"Root", "<indexedmzML>", "<html>", "in.mzML:2:1: found element \"html\""},
        Damage{"Malformed", "</chromatogramList>", "</run>",
               "found malformed XML (mismatched tag)"},
        Damage{"Truncated", "</indexedmzML>\n", "", "found malformed XML (no element found)"},
        Damage{"Unit", "UO:0000029", "UO:0000031",
               "in.mzML:28:1: found flight times in \"microsecond\" (UO:0000031), expected ps, ns"},
        Damage{"BothKinds", "MS:1000517", "MS:1000514", "found an m/z array beside a time array"},
        Damage{"Compression", "MS:1000574", "MS:1002312", "found an unknown compression"},
        Damage{"Length", "defaultArrayLength=\"4\"", "defaultArrayLength=\"5\"",
               "found 32 bytes of data, expected 40 bytes for 5 elements"},
        Damage{"Index", "<offset idRef=\"scan=1\">", "<offset idRef=\"scan=9\">",
               "found an index of \"scan=9\", which is not there, expected the id of a spectrum"},
        Damage{"IndexOfChromatograms", "<offset idRef=\"TIC\">", "<offset idRef=\"scan=0\">",
               "found an index of \"scan=0\", which is not there, "
               "expected the id of a chromatogram"},
        Damage{"NoSoftware", "softwareList count", "otherList count", "malformed XML"}),
    [](const auto& row) { return row.param.name; });

TEST(MzmlConversion, RefusesTimesThatDoNotAscend) {
  const std::string arrays = ArrayElement({5.0, 4.0}, {}, tof::testing::kTimesAsMz) +
                             ArrayElement({1.0, 1.0}, {}, tof::testing::kIntensities);
  EXPECT_THAT(Refusal(DocumentWith(SpectrumElement(0, 2, arrays))),
              HasSubstr("found time 4 after 5 in bin 1, expected ascending times"));
}

TEST(MzmlConversion, RefusesAFileWithoutFlightTimes) {
  const std::string arrays = ArrayElement({1.0, 1.0}, {}, tof::testing::kIntensities);
  EXPECT_THAT(Refusal(DocumentWith(SpectrumElement(0, 2, arrays))),
              HasSubstr("found no spectrum with an array of flight times"));
}

TEST(MzmlConversion, RefusesAnEncodingOfTwoBytes) {
  EXPECT_THAT(Refusal(std::string("\xff\xfe<\0m\0", 6)), HasSubstr("found text in UTF-16"));
}

TEST(Sha1, GivesThePublishedDigests) {
  Sha1 empty;
  EXPECT_EQ(empty.Digest(), "da39a3ee5e6b4b0d3255bfef95601890afd80709");
  Sha1 abc;
  abc.Add("a");
  abc.Add("bc");
  EXPECT_EQ(abc.Digest(), "a9993e364706816aba3e25717850c26c9cd0d89d");
}

}  // namespace
}  // namespace tof::apply
