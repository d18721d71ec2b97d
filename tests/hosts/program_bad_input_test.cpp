// What a user can get wrong: the message, the exit code, and that nothing is written over.
#include <sys/mount.h>

#include <fstream>
#include <functional>

#include "tests/hosts/program_test_fixture.h"

namespace tof::testing {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

void ReplaceInFile(const std::string& path, const std::string& old_text, const std::string& text) {
  std::string bytes = BytesOf(path);
  const std::size_t at = bytes.find(old_text);
  if (at == std::string::npos) throw std::runtime_error("no '" + old_text + "' in " + path);
  WriteBytes(path, bytes.replace(at, old_text.size(), text));
}

// Results of an earlier run, which bad input must leave alone.
class BadInput : public ProgramTest {
 protected:
  BadInput() {
    std::filesystem::create_directory(folder_ / "Logfiles");
    WriteBytes(folder_ / "Logfiles/TuneReportCalibData.txt", "earlier\r\n");
    WriteBytes(folder_ / "result.json", "{}\n");
    WriteBytes(folder_ / "trace.txt", "earlier\r\n");
  }

  // Exit code 2, one line that holds `message`, and every file as it was.
  void ExpectRefused(const std::function<ProgramResult()>& run, const std::string& message) {
    const auto before = Contents();
    const ProgramResult result = run();
    EXPECT_EQ(result.exit_code, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(result.err, StartsWith("tofcal: "));
    EXPECT_THAT(result.err, HasSubstr(message));
    EXPECT_TRUE(Contents() == before) << "a file was written";
  }
  void ExpectCalibrateRefused(std::vector<std::string> arguments, const std::string& message) {
    arguments.insert(arguments.end(),
                     {"--trace", folder_ / "trace.txt", "--json", folder_ / "result.json"});
    ExpectRefused([&] { return Calibrate(arguments); }, message);
  }
  void ExpectSpectrumRefused(const std::string& old_text, const std::string& text,
                             const std::string& message) {
    ReplaceInFile(folder_ / "spectrum.txt", old_text, text);
    ExpectCalibrateRefused({}, (folder_ / "spectrum.txt") + message);
  }
  void ExpectDescriptionRefused(const std::string& old_text, const std::string& text,
                                const std::string& message) {
    ReplaceInFile(folder_ / "instrument.xml", old_text, text);
    ExpectCalibrateRefused({}, (folder_ / "instrument.xml") + message);
  }

  // Exit code 1 and the event's number and text; results of the calibrator may have been written.
  ProgramResult ExpectFailed(const std::vector<std::string>& arguments,
                             const std::string& message) {
    const ProgramResult result = Calibrate(arguments);
    EXPECT_EQ(result.exit_code, 1);
    EXPECT_THAT(result.err, HasSubstr("calibration failed: " + message));
    return result;
  }
};

TEST_F(BadInput, MissingDescription) {
  ExpectRefused(
      [&] {
        return RunTofcal({"calibrate", "--instrument", folder_ / "none.xml"});
      },
      (folder_ / "none.xml") + ": found No such file or directory");
}

TEST_F(BadInput, DescriptionThatIsAFolder) {
  ExpectRefused(
      [&] {
        return RunTofcal({"calibrate", "--instrument", folder_.path().string()});
      },
      folder_.path().string() + ": found ");
}

TEST_F(BadInput, MissingSpectrum) {
  std::filesystem::remove(folder_ / "spectrum.txt");
  ExpectCalibrateRefused({}, (folder_ / "spectrum.txt") + ": found No such file or directory");
}

TEST_F(BadInput, XmlError) {
  ExpectDescriptionRefused("</settings>", "</setings>", ":13:5: found malformed XML");
}

TEST_F(BadInput, UnknownKey) {
  ExpectDescriptionRefused("Targett0PercentError", "Target0PercentError",
                           ":7:8: found unknown key \"Target0PercentError\"");
}

TEST_F(BadInput, UnknownElement) {
  ExpectDescriptionRefused("<run spectra=\"2\"", "<runs spectra=\"2\"", ":3:4: found ");
}

TEST_F(BadInput, TextInASpectrum) {
  ExpectSpectrumRefused("20001.0 ", "20001.0 x", ":4:9: found \"x");
}

TEST_F(BadInput, NanInASpectrum) {
  ExpectSpectrumRefused("20001.0 ", "20001.0 nan # ", ":4:9: found \"nan\", expected an intensity");
}

TEST_F(BadInput, UnsortedTimes) {
  ExpectSpectrumRefused("\n20001.0 ", "\n20000.1 ", ":4:1: found time 20000.1 after a later one");
}

TEST_F(BadInput, DuplicateTimes) {
  ExpectSpectrumRefused("\n20001.0 ", "\n20000.5 ", ":4:1: found time 20000.5 twice");
}

TEST_F(BadInput, EmptySpectrum) {
  WriteBytes(folder_ / "spectrum.txt", "");
  ExpectCalibrateRefused({}, "found 0 bins with data");
}

TEST_F(BadInput, NoMasses) {
  ExpectCalibrateRefused({"--masses", ""}, "--masses: found no masses");
}

TEST_F(BadInput, NoCalibrantList) {
  ExpectCalibrateRefused({"--setpoint", "117=5"}, "found no calibrants");
}

TEST_F(BadInput, NegativeZeroAndNanMasses) {
  ExpectCalibrateRefused({"--masses", "200.1,-1"}, "--masses: found \"-1\"");
  ExpectCalibrateRefused({"--masses", "200.1,0"}, "--masses: found \"0\"");
  ExpectCalibrateRefused({"--masses", "200.1,NaN"}, "--masses: found \"NaN\"");
}

TEST_F(BadInput, NegativeMassInTheDescription) {
  ExpectDescriptionRefused("> 200.1 ", "> -200.1 ", ":");
}

TEST_F(BadInput, SpectraOutsideTheirRange) {
  for (const char* spectra : {"0", "-1", "32768"}) {
    ExpectCalibrateRefused({"--spectra", spectra},
                           std::string("--spectra: found \"") + spectra +
                               "\", expected a whole number from 1 to 32767");
  }
}

TEST_F(BadInput, UnknownOverrides) {
  ExpectCalibrateRefused({"--set", "Calibration/AIC_TargetMin=1"}, "Calibration/AIC_TargetMin");
  ExpectCalibrateRefused({"--flag", "SkipCalibration=Yes"}, "SkipCalibration");
  ExpectCalibrateRefused({"--setpoint", "4711=1"}, "4711");
  ExpectCalibrateRefused({"--set", "Calibration/UseThisPowerFlag=x"}, "x");
}

TEST_F(BadInput, UnknownOperationToFail) {
  ExpectCalibrateRefused({"--fail", "SpecParser.FindPeak:1"}, "found \"SpecParser.FindPeak\"");
}

TEST_F(BadInput, BaseFolderThatCannotBeMade) {
  WriteBytes(folder_ / "file", "");
  ExpectCalibrateRefused({"--base-folder", folder_ / "file"},
                         (folder_ / "file/Logfiles") + ": found Not a directory");
}

TEST_F(BadInput, BaseFolderThatCannotBeWritten) {
  // Not even the super-user makes files here.
  if (!std::filesystem::is_directory("/proc/self")) GTEST_SKIP() << "this machine has no /proc";
  ExpectCalibrateRefused({"--base-folder", "/proc/self"}, "/proc/self/Logfiles: found ");
}

TEST_F(BadInput, ResultFileInAMissingFolder) {
  ExpectRefused(
      [&] {
        return Calibrate({"--json", folder_ / "none/result.json"});
      },
      (folder_ / "none/result.json") + ": found No such file or directory");
}

TEST_F(BadInput, TraceFileInAMissingFolder) {
  ExpectRefused(
      [&] {
        return Calibrate({"--trace", folder_ / "none/trace.txt"});
      },
      (folder_ / "none/trace.txt") + ": found No such file or directory");
}

TEST_F(BadInput, ResultFileThatIsAnInput) {
  ExpectRefused(
      [&] {
        return Calibrate({"--json", folder_ / "instrument.xml"});
      },
      "found a file that is also read");
  ExpectRefused(
      [&] {
        return Calibrate({"--trace", folder_ / "spectrum.txt"});
      },
      "found a file that is also read");
}

TEST_F(BadInput, OneToThreeMassesAndWhatToDoAboutIt) {
  for (const char* masses : {"200.1", "200.1,250.2", "200.1,250.2,310.3"}) {
    const ProgramResult result =
        ExpectFailed({"--masses", masses}, "[-822] Failed to find a Likely A and t0 value");
    EXPECT_THAT(result.err, HasSubstr("Give more masses (--masses)"));
    EXPECT_THAT(result.err, HasSubstr("--flag SkipCalcLikelyABeforeCalibration=Yes"));
  }
}

TEST_F(BadInput, MoreMassesThanPeaks) {
  const ProgramResult result =
      ExpectFailed({"--masses", "200.1,250.2,280,310.3,360.4,410.5,440,470.6,520.7"}, "[5] ");
  EXPECT_THAT(result.err, HasSubstr("280.00000 440.00000: leave these masses out"));
}

TEST_F(BadInput, SpectrumWithoutPeaks) {
  WriteBytes(folder_ / "spectrum.txt", SpectrumText({}));
  ExpectFailed({}, "[-822] Failed to find a Likely A and t0 value");
}

TEST_F(BadInput, FullDiskUnderALog) {
  if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "this machine has no /dev/full";
  // The first log of a run on the virtual clock.
  const std::string log = folder_ / "Logfiles/CalibrationLog_20240321_090000.txt";
  std::filesystem::create_symlink("/dev/full", log);
  const ProgramResult result = ExpectFailed({}, "[61] Disk full\n");
  EXPECT_THAT(result.err, HasSubstr(log + ": No space left on device\n"));
}

TEST_F(BadInput, FullDiskUnderTheResult) {
  if (!std::filesystem::exists("/dev/full")) GTEST_SKIP() << "this machine has no /dev/full";
  const ProgramResult result = Calibrate({"--json", "/dev/full"});
  EXPECT_EQ(result.exit_code, 2);
  EXPECT_THAT(result.err, HasSubstr("/dev/full: found No space left on device"));
}

// A file system of its own with room for little, for as long as it lives.
class SmallDisk {
 public:
  explicit SmallDisk(const std::string& folder) : folder_(folder) {
    std::filesystem::create_directory(folder);
    mounted_ = mount("tmpfs", folder.c_str(), "tmpfs", 0, "size=8k") == 0;
  }
  ~SmallDisk() {
    if (mounted_) umount(folder_.c_str());
  }
  SmallDisk(const SmallDisk&) = delete;
  SmallDisk& operator=(const SmallDisk&) = delete;

  bool mounted() const { return mounted_; }

 private:
  std::string folder_;
  bool mounted_ = false;
};

TEST_F(BadInput, FullDiskUnderTheLogFolder) {
  const SmallDisk disk(folder_ / "disk");
  if (!disk.mounted()) GTEST_SKIP() << "a file system can't be mounted here";
  std::filesystem::create_directory(folder_ / "disk/Logfiles");
  const std::string earlier = folder_ / "disk/Logfiles/TuneReportCalibData.txt";
  WriteBytes(earlier, "earlier\r\n");
  { std::ofstream(folder_ / "disk/filler") << std::string(8192, 'x'); }
  const ProgramResult result =
      ExpectFailed({"--base-folder", folder_ / "disk"}, "[61] Disk full\n");
  EXPECT_THAT(result.err, HasSubstr(": No space left on device\n"));
  EXPECT_EQ(BytesOf(earlier), "earlier\r\n");
}

}  // namespace
}  // namespace tof::testing
