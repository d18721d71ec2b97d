#include "instruments/spectra/mzml_reader.h"

#include <gmock/gmock.h>
#include <zlib.h>

#include <cstring>
#include <filesystem>
#include <limits>
#include <string>
#include <vector>

#include "instruments/spectra/text_reader.h"
#include "tests/instruments/spectra/expect_input_error.h"
#include "tests/instruments/spectra/scratch_file.h"

namespace tof::spectra {
namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;

std::string Base64(const std::string& bytes) {
  constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  for (std::size_t i = 0; i < bytes.size(); i += 3) {
    unsigned bits = 0;
    for (std::size_t k = 0; k < 3; ++k) {
      bits = bits << 8 | (i + k < bytes.size() ? static_cast<unsigned char>(bytes[i + k]) : 0u);
    }
    for (std::size_t k = 0; k < 4; ++k) {
      text += i + k > bytes.size() ? '=' : kAlphabet[bits >> (18 - 6 * k) & 63u];
    }
  }
  return text;
}

template <typename Number>
std::string Bytes(const std::vector<Number>& values) {
  std::string bytes(values.size() * sizeof(Number), '\0');
  if (!values.empty()) std::memcpy(bytes.data(), values.data(), bytes.size());
  return bytes;
}

std::string Zip(const std::string& bytes) {
  uLongf size = compressBound(static_cast<uLong>(bytes.size()));
  std::string packed(size, '\0');
  compress(reinterpret_cast<Bytef*>(packed.data()), &size,
           reinterpret_cast<const Bytef*>(bytes.data()), static_cast<uLong>(bytes.size()));
  packed.resize(size);
  return packed;
}

const char kMz[] = "<cvParam accession='MS:1000514' name='m/z array'/>";
const char kIntensity[] = "<cvParam accession='MS:1000515' name='intensity array'/>";
const char k32[] = "<cvParam accession='MS:1000521' name='32-bit float'/>";
const char k64[] = "<cvParam accession='MS:1000523' name='64-bit float'/>";
const char kPlain[] = "<cvParam accession='MS:1000576' name='no compression'/>";
const char kZipped[] = "<cvParam accession='MS:1000574' name='zlib compression'/>";

std::string Array(const std::string& terms, const std::string& text) {
  return "<binaryDataArray>" + terms + "<binary>" + text + "</binary></binaryDataArray>\n";
}

std::string SpectrumOf(int length, const std::string& arrays) {
  return "<spectrum defaultArrayLength='" + std::to_string(length) + "'><binaryDataArrayList>\n" +
         arrays + "</binaryDataArrayList></spectrum>\n";
}

std::string Document(const std::string& spectra, const std::string& before_run = "") {
  return "<?xml version='1.0'?>\n<mzML>" + before_run + "<run><spectrumList>\n" + spectra +
         "</spectrumList></run></mzML>\n";
}

// A plain spectrum of two 64-bit arrays.
std::string PlainSpectrum(const std::vector<double>& times,
                          const std::vector<double>& intensities) {
  return SpectrumOf(static_cast<int>(times.size()),
                    Array(std::string(kMz) + k64 + kPlain, Base64(Bytes(times))) +
                        Array(std::string(kIntensity) + k64 + kPlain, Base64(Bytes(intensities))));
}

std::vector<Spectrum> Read(const std::string& document, WhichSpectra which = WhichSpectra::kFirst) {
  const ScratchFile file(document, ".mzML");
  return ReadMzml(file.Path(), which);
}

std::string Refusal(const std::string& document) {
  return InputErrorOf([&] { Read(document, WhichSpectra::kAll); });
}

TEST(MzmlReader, ReadsWideAndNarrowArraysZippedOrNot) {
  const std::string document = Document(SpectrumOf(
      3,
      Array(std::string(kIntensity) + k32 + kPlain, Base64(Bytes<float>({7.0F, 0.5F, -1.0F}))) +
          Array(std::string(kMz) + k64 + kZipped, Base64(Zip(Bytes<double>({1.0, 1.25, 2.0}))))));
  const std::vector<Spectrum> spectra = Read(document);
  ASSERT_EQ(spectra.size(), 1u);
  EXPECT_THAT(spectra[0].time_ns, ElementsAre(1.0, 1.25, 2.0));
  EXPECT_THAT(spectra[0].intensity, ElementsAre(7.0, 0.5, -1.0));
  EXPECT_DOUBLE_EQ(spectra[0].bin_width_ns, 0.25);
}

TEST(MzmlReader, ReadsOneSpectrumOrAllOfThem) {
  const std::string document =
      Document(PlainSpectrum({1, 2}, {3, 4}) + PlainSpectrum({5, 6}, {7, 8}));
  EXPECT_EQ(Read(document, WhichSpectra::kFirst).size(), 1u);
  const std::vector<Spectrum> all = Read(document, WhichSpectra::kAll);
  ASSERT_EQ(all.size(), 2u);
  EXPECT_THAT(all[1].time_ns, ElementsAre(5.0, 6.0));
}

TEST(MzmlReader, ReadsAnIndexedDocument) {
  const std::string inner = Document(PlainSpectrum({1, 2}, {3, 4}));
  const std::string document =
      "<indexedmzML>" + inner.substr(inner.find("<mzML>")) + "</indexedmzML>";
  EXPECT_EQ(Read(document).size(), 1u);
}

TEST(MzmlReader, FindsTermsInAGroup) {
  const std::string groups =
      std::string("<referenceableParamGroupList><referenceableParamGroup id='g'>") + k64 + kPlain +
      "</referenceableParamGroup></referenceableParamGroupList>";
  const std::string reference = "<referenceableParamGroupRef ref='g'/>";
  const std::string document =
      Document(SpectrumOf(2, Array(kMz + reference, Base64(Bytes<double>({1, 2}))) +
                                 Array(kIntensity + reference, Base64(Bytes<double>({3, 4})))),
               groups);
  EXPECT_THAT(Read(document).at(0).intensity, ElementsAre(3.0, 4.0));
}

TEST(MzmlReader, LetsAnArrayStateItsOwnLength) {
  std::string document = Document(PlainSpectrum({1, 2}, {3, 4}));
  document.replace(document.find("defaultArrayLength='2'"), 22, "defaultArrayLength='9'");
  for (std::size_t at = 0; (at = document.find("<binaryDataArray>", at)) != std::string::npos;
       ++at) {
    document.insert(at + 16, " arrayLength='2'");
  }
  EXPECT_THAT(Read(document).at(0).time_ns, ElementsAre(1.0, 2.0));
}

TEST(MzmlReader, RefusesMalformedXmlWithItsPlace) {
  const std::string message = Refusal("<mzML>\n<run></mzML>\n");
  EXPECT_THAT(message, HasSubstr(".mzML:2:"));
  EXPECT_THAT(message, HasSubstr("malformed XML"));
}

TEST(MzmlReader, RefusesAnotherKindOfDocument) {
  EXPECT_THAT(Refusal("<instrument/>"),
              EndsWith(":1:2: found element \"instrument\", expected an mzML document"));
}

TEST(MzmlReader, RefusesADocumentWithoutASpectrum) {
  EXPECT_THAT(Refusal(Document("")),
              EndsWith(":2:2: found no spectrum, expected a run with at least one spectrum"));
}

TEST(MzmlReader, RefusesAnUnknownPrecision) {
  const std::string integers = "<cvParam accession='MS:1000519' name='32-bit integer'/>";
  EXPECT_THAT(Refusal(Document(SpectrumOf(2, Array(kMz + integers + kPlain, "")))),
              EndsWith(":4:2: found an unknown precision (m/z array, 32-bit integer, no "
                       "compression), expected 32-bit float or 64-bit float"));
}

TEST(MzmlReader, RefusesAnUnknownCompression) {
  const std::string other = "<cvParam accession='MS:1002312' name='numeric compression'/>";
  EXPECT_THAT(Refusal(Document(SpectrumOf(2, Array(kMz + other + k64, "AAAA")))),
              EndsWith("found an unknown compression (m/z array, numeric compression, 64-bit "
                       "float), expected zlib compression or no compression"));
}

TEST(MzmlReader, RefusesAMissingArray) {
  EXPECT_THAT(Refusal(Document(SpectrumOf(
                  2, Array(std::string(kMz) + k64 + kPlain, Base64(Bytes<double>({1, 2})))))),
              EndsWith("found no intensity array, expected an m/z array and an intensity array"));
}

TEST(MzmlReader, RefusesALengthThatIsNotTheArrays) {
  EXPECT_THAT(Refusal(Document(SpectrumOf(
                  3, Array(std::string(kMz) + k64 + kPlain, Base64(Bytes<double>({1, 2})))))),
              EndsWith("found 16 bytes of data, expected 24 bytes for 3 elements"));
  EXPECT_THAT(Refusal(Document(SpectrumOf(
                  3, Array(std::string(kMz) + k64 + kZipped, Base64(Zip(Bytes<double>({1, 2}))))))),
              EndsWith("found 16 bytes of data, expected 24 bytes for 3 elements"));
  EXPECT_THAT(Refusal(Document(SpectrumOf(-1, Array(std::string(kMz) + k64 + kPlain, "")))),
              EndsWith("found array length \"-1\", expected a number of elements"));
}

TEST(MzmlReader, RefusesALengthThatTheDataCannotHoldBeforeItAllocates) {
  EXPECT_THAT(Refusal(Document(SpectrumOf(std::numeric_limits<int>::max(),
                                          Array(std::string(kMz) + k64 + kZipped, "AAAA")))),
              EndsWith("found 3 compressed bytes, expected enough for 17179869176 bytes"));
}

TEST(MzmlReader, RefusesDamagedBase64) {
  EXPECT_THAT(Refusal(Document(SpectrumOf(2, Array(std::string(kMz) + k64 + kPlain, "AA*A")))),
              EndsWith("found damaged base64 text, expected whole base64 groups"));
}

TEST(MzmlReader, RefusesADamagedZlibStream) {
  std::string packed = Zip(Bytes<double>({1, 2}));
  packed[packed.size() - 1] = static_cast<char>(packed[packed.size() - 1] ^ 1);
  EXPECT_THAT(
      Refusal(Document(SpectrumOf(2, Array(std::string(kMz) + k64 + kZipped, Base64(packed))))),
      EndsWith("found damaged compressed data (data error), expected a zlib stream of 16 bytes"));
}

TEST(MzmlReader, RefusesUnsortedTimes) {
  EXPECT_THAT(Refusal(Document(PlainSpectrum({2, 1}, {3, 4}))),
              EndsWith("found time 1.000000 after 2.000000 in bin 1, expected ascending times"));
}

TEST(MzmlReader, RefusesNumbersThatAreNotFinite) {
  EXPECT_THAT(Refusal(Document(PlainSpectrum({1, 2}, {3, std::nan("")}))),
              EndsWith("found a number that is not finite in bin 1, expected finite times and "
                       "intensities"));
}

TEST(MzmlReader, RefusesAnEmptySpectrum) {
  EXPECT_THAT(Refusal(Document(PlainSpectrum({}, {}))),
              EndsWith("found 0 bins, expected a spectrum of at least two bins"));
}

TEST(MzmlReader, ReadsTheRealLadderAsItsTextHasIt) {
  const std::filesystem::path folder = std::filesystem::path(TOF_SHARED_DATA) / "ladder";
  if (!std::filesystem::exists(folder))
    GTEST_SKIP() << "the shared spectra are not on this machine";
  const std::vector<Spectrum> spectra = ReadMzml(folder / "spectrum.mzML", WhichSpectra::kAll);
  const Spectrum text = ReadTextSpectrum(folder / "spectrum.txt");
  ASSERT_EQ(spectra.size(), 1u);
  EXPECT_EQ(spectra[0].time_ns, text.time_ns);
  EXPECT_EQ(spectra[0].intensity, text.intensity);
  EXPECT_DOUBLE_EQ(spectra[0].bin_width_ns, 0.5);
}

}  // namespace
}  // namespace tof::spectra
