// A small indexed mzML file with everything that must stay as it is around the flight times.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "instruments/spectra/mzml_array.h"

namespace tof::testing {

inline const std::vector<double> kSampleTimesNs{20'000.0, 20'000.5, 20'001.0, 30'000.25};
inline const std::vector<double> kSampleIntensities{1.5, 0.0, 7.0, -2.0};

inline std::string Term(const std::string& accession, const std::string& name,
                        const std::string& more = "") {
  return "<cvParam cvRef=\"MS\" accession=\"" + accession + "\" name=\"" + name + "\"" + more +
         "/>\n";
}

inline std::string ArrayElement(const std::vector<double>& values, spectra::ArrayForm form,
                                const std::string& kind) {
  const std::string data = spectra::EncodeArray(values, form);
  return "<binaryDataArray encodedLength=\"" + std::to_string(data.size()) + "\">\n" +
         (form.is_32_bit ? Term("MS:1000521", "32-bit float")
                         : Term("MS:1000523", "64-bit float")) +
         (form.is_zipped ? Term("MS:1000574", "zlib compression")
                         : Term("MS:1000576", "no compression")) +
         kind + "<binary>" + data + "</binary>\n</binaryDataArray>\n";
}

inline const std::string kTimesInMicroseconds =
    Term("MS:1000595", "time array",
         " unitCvRef=\"UO\" unitAccession=\"UO:0000029\" unitName=\"microsecond\"");
inline const std::string kTimesAsMz = Term("MS:1000514", "m/z array");
inline const std::string kIntensities = Term("MS:1000515", "intensity array");

// `arrays` of a spectrum whose arrays have `length` elements.
inline std::string SpectrumElement(int index, std::size_t length, const std::string& arrays) {
  const std::string n = std::to_string(index);
  return "<spectrum index=\"" + n + "\" id=\"scan=" + n + "\" defaultArrayLength=\"" +
         std::to_string(length) + "\">\n" + Term("MS:1000128", "profile spectrum") +
         "<userParam name=\"operator's note\" value=\"a &lt; b &amp; c\"/>\n" +
         "<binaryDataArrayList count=\"2\">\n" + arrays + "</binaryDataArrayList>\n</spectrum>\n";
}

// Three spectra: times in us, zipped, beside a third array; times in an "m/z array" whose terms are
// in a group, 32-bit; one without bins.
inline std::string SampleSpectra() {
  const spectra::ArrayForm zipped{false, true};
  const spectra::ArrayForm narrow{true, false};
  std::vector<double> times_us;
  for (const double time_ns : kSampleTimesNs) times_us.push_back(time_ns / 1000.0);
  const std::string data = spectra::EncodeArray(kSampleTimesNs, narrow);
  const std::string in_group = "<binaryDataArray encodedLength=\"" + std::to_string(data.size()) +
                               "\" dataProcessingRef=\"earlier\">\n" +
                               "<referenceableParamGroupRef ref=\"times\"/>\n<binary>" + data +
                               "</binary>\n</binaryDataArray>\n";
  return SpectrumElement(
             0, 4,
             ArrayElement(times_us, zipped, kTimesInMicroseconds) +
                 ArrayElement(kSampleIntensities, narrow, kIntensities) +
                 ArrayElement({1, 2, 3, 4}, zipped, Term("MS:1000517", "signal to noise array"))) +
         SpectrumElement(1, 4, in_group + ArrayElement(kSampleIntensities, narrow, kIntensities)) +
         SpectrumElement(2, 0,
                         ArrayElement({}, {}, kTimesAsMz) + ArrayElement({}, {}, kIntensities));
}

inline std::string DocumentWith(const std::string& spectra) {
  return "<mzML xmlns=\"http://psi.hupo.org/ms/mzml\" version=\"1.1.0\">\n"
         "<cvList count=\"1\"><cv id=\"MS\" fullName=\"PSI-MS\" URI=\"psi-ms.obo\"/></cvList>\n"
         "<fileDescription><fileContent/></fileDescription>\n"
         "<referenceableParamGroupList count=\"1\">\n"
         "<referenceableParamGroup id=\"times\">\n" +
         Term("MS:1000521", "32-bit float") + Term("MS:1000576", "no compression") + kTimesAsMz +
         "<userParam name=\"digitizer\" value=\"8 bit\"/>\n"
         "</referenceableParamGroup>\n</referenceableParamGroupList>\n"
         "<softwareList count=\"1\">\n  <software id=\"acquisition\" version=\"3\"/>\n"
         "</softwareList>\n"
         "<instrumentConfigurationList count=\"1\"><instrumentConfiguration id=\"tof\"/>"
         "</instrumentConfigurationList>\n"
         "<dataProcessingList count=\"1\">\n  <dataProcessing id=\"earlier\">"
         "<processingMethod order=\"0\" softwareRef=\"acquisition\"/></dataProcessing>\n"
         "</dataProcessingList>\n"
         "<run id=\"run\" defaultInstrumentConfigurationRef=\"tof\">\n"
         "<!-- a comment with id=\"scan\" in it -->\n"
         "<spectrumList count=\"3\" defaultDataProcessingRef=\"earlier\">\n" +
         spectra +
         "</spectrumList>\n<chromatogramList count=\"1\" defaultDataProcessingRef=\"earlier\">\n"
         "<chromatogram index=\"0\" id=\"TIC\" defaultArrayLength=\"2\">\n"
         "<binaryDataArrayList count=\"2\">\n" +
         ArrayElement({1.0, 2.0}, {}, Term("MS:1000595", "time array")) +
         ArrayElement({9.0, 8.0}, {}, kIntensities) +
         "</binaryDataArrayList>\n</chromatogram>\n</chromatogramList>\n</run>\n</mzML>\n";
}

// The document with its index, whose offsets are right and whose checksum is not.
inline std::string IndexedSample() {
  std::string text = "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n<indexedmzML>\n" +
                     DocumentWith(SampleSpectra());
  std::string index = "<indexList count=\"2\">\n<index name=\"spectrum\">\n";
  for (const char* id : {"scan=0", "scan=1", "scan=2"}) {
    const std::size_t at = text.rfind('<', text.find(std::string("id=\"") + id));
    index += std::string("<offset idRef=\"") + id + "\">" + std::to_string(at) + "</offset>\n";
  }
  index += "</index>\n<index name=\"chromatogram\">\n<offset idRef=\"TIC\">" +
           std::to_string(text.find("<chromatogram index")) + "</offset>\n</index>\n</indexList>\n";
  const std::size_t index_at = text.size();
  return text + index + "<indexListOffset>" + std::to_string(index_at) +
         "</indexListOffset>\n<fileChecksum>0000000000000000000000000000000000000000"
         "</fileChecksum>\n</indexedmzML>\n";
}

}  // namespace tof::testing
