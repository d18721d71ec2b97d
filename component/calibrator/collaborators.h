// The instrument, as the calibrator sees it: interfaces that the instrument's software provides.
//
// Every operation may raise an AutomationError; it reaches the calling routine as it is. Unless
// said otherwise a failed operation has changed nothing. All calls come on the host's one thread.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>

#include "component/automation/bounded_array.h"
#include "component/automation/variant.h"
#include "component/calibrator/host_services.h"
#include "component/calibrator/mass_time_library.h"
#include "component/calibrator/peak_records.h"

namespace tof {

// The automation type codes that a setpoint is written with.
enum class ValueType : std::int32_t { kInt16 = 2, kInt32 = 3, kDouble = 5, kBoolean = 11 };

// The instrument's setpoints by numeric id. An unknown id is an error.
class SetpointTable {
 public:
  virtual ~SetpointTable() = default;
  virtual Variant GetSetpoint(std::int32_t id) = 0;
  virtual void SetSetpoint(std::int32_t id, ValueType type, const Variant& value) = 0;
  // The value in force now, which a display shows.
  virtual Variant GetCurrentValue(std::int32_t id) = 0;
};

// The live spectrum display.
class SpectrumDisplay {
 public:
  virtual ~SpectrumDisplay() = default;
  virtual void SetDisplayUpdate(bool live) = 0;  // false freezes the display
};

// Named values of the instrument's state.
class StatusReader {
 public:
  virtual ~StatusReader() = default;
  // `name` as in "ACTUAL.NDR[NRDYSTATE]", `type` "VARIANT"; the last argument is always 0.
  virtual Variant Read(const std::string& name, const std::string& type, std::int32_t zero) = 0;
};

class DataDictionary {
 public:
  virtual ~DataDictionary() = default;
  virtual void Initialize() = 0;
  // Fetched anew for every single setpoint access.
  virtual std::shared_ptr<SetpointTable> GetSetpointTable() = 0;
  // The configuration object, which is the spectrum display; none is a normal answer.
  virtual std::shared_ptr<SpectrumDisplay> GetConfigObject() = 0;
  // The key of the flag whose value "No" allows AIC and AIC logging.
  virtual std::string GetFlagKey() = 0;
  virtual double GetTimeValue() = 0;           // instrument time, s
  virtual std::int32_t GetAcqStartTime() = 0;  // acquisition window, us
  virtual std::int32_t GetAcqEndTime() = 0;    // us
  virtual std::shared_ptr<StatusReader> GetStatusReader() = 0;
  // The mode the instrument runs in, and whether a mode uses the two RF setpoints 190 and 191
  // (true) or the single setpoint 101 (false).
  virtual std::string GetModeName() = 0;
  virtual bool ModeUsesRfSetpoints(const std::string& mode_name) = 0;
};

struct ColumnStatistics {
  BoundedArray<double> averages;             // per column, from 0
  BoundedArray<double> standard_deviations;  // per column, from 0
};

class AcqController {
 public:
  virtual ~AcqController() = default;
  // The two initialisations after creation, in this order, each with 0.
  virtual void InitializeController(std::int32_t zero) = 0;
  virtual void InitializeAcquisition(std::int32_t zero) = 0;
  // The two preparations before each access to the setpoint table, in this order.
  virtual Variant PrepareSetpointAccess() = 0;
  virtual Variant PrepareSetpointTable() = 0;

  // 0: no. Any other value: the user asked for an abort; -1 (all bits set) is the full "true".
  virtual std::int16_t IsAbortRequested() = 0;
  // Multiplies the settings of the abundance band.
  virtual double GetScaleFactor() = 0;

  // A copy of the instrument's coefficients, seeded with the starting A and t0 when these were set.
  virtual std::shared_ptr<MassCalCoefficients> GetCurrentMassCalObject() = 0;
  // A of the coefficients in force, square-root mass per ns.
  virtual double GetCurrentA() = 0;
  // None is a normal answer.
  virtual std::shared_ptr<MassCalCoefficients> GetDefaultCalibCoefficients() = 0;
  virtual void SetCalibCoefficients(const std::shared_ptr<MassCalCoefficients>& coefficients) = 0;
  // Starting values of the next fit: A in square-root mass per us, t0 in us.
  virtual void SetLikelyAAndT0(double a_per_us, double t0_us) = 0;

  // Averages and standard deviations over the first dimension, per column of the second.
  virtual ColumnStatistics GetColumnStatistics(const BoundedArray2D<double>& values) = 0;
  virtual void EndAIC() = 0;

  virtual Variant ReadSetpoint(std::int32_t id) = 0;
  // The instrument configuration, used as the suffix of tune-specific settings keys.
  virtual std::string GetConfigurationName() = 0;
  // The calibrant masses (m/z) that belong to the value of setpoint 117, the mode and the
  // configuration.
  virtual BoundedArray<double> GetCalibrantMasses(std::int32_t setpoint117,
                                                  const std::string& mode_name,
                                                  const std::string& configuration_name) = 0;
};

enum class PeakCalculationtype : std::int32_t { abund = 1 };

class SpecParser {
 public:
  virtual ~SpecParser() = default;
  // One spectrum, taken now and parsed for `masses` (an array of doubles, m/z): [row 0..1, mass
  // index] in the order of `masses`. `peak_find_window`: per cent of the flight time to either
  // side, or -1 for the parser's own. A mass whose peak is not found has abundance 0, time NaN and
  // 0 elsewhere, in both rows.
  virtual PeakAttribsTable GetCalibrantPeakAttributes(const Variant& masses,
                                                      double peak_find_window) = 0;
  // Of the newest spectrum: an attribute of the peak within `tolerance` (m/z) of `mass`; 0 when
  // there is none.
  virtual double GetPeakAttribute(PeakCalculationtype kind, double mass, double tolerance) = 0;
  // Of the newest spectrum: up to `peaks_sought` peaks between the two flight times (ns). `count`
  // receives how many there are, `list` the peaks with flight time and height.
  virtual void FindPeaks(double start_ns, double end_ns, std::int32_t peaks_sought,
                         std::int32_t& count, std::shared_ptr<PeakList>& list) = 0;
  // Whether AIC must not run for these masses. May change the peak-find width it is given.
  virtual bool ShouldAvoidAIC(const Variant& masses, double& peak_find_width) = 0;
  // Moves the AIC setpoint until the abundance of the mass's peak is in the target band, and leaves
  // it there.
  virtual void SearchTargetAbundance(double mass, double tolerance) = 0;
};

// Text flags by key. An absent key gives a text of the instrument software's choice, usually empty.
class TuneFlags {
 public:
  virtual ~TuneFlags() = default;
  virtual std::string GetFlag(const std::string& key, std::int32_t minus_one) = 0;
};

// Numeric settings by section and key.
class CalibSettings {
 public:
  virtual ~CalibSettings() = default;
  // Stores the setting into `value`; an absent one leaves `value` as it was.
  virtual void GetValue(const std::string& section, const std::string& key, std::int32_t zero,
                        double& value) = 0;
};

class CalibLogFiles {
 public:
  virtual ~CalibLogFiles() = default;
  // Opens a new log file named after `prefix` and `extension` (e.g. "AIC", "TXT") and writes the
  // header text into it.
  virtual std::shared_ptr<TextStream> OpenLogFile(const std::string& prefix,
                                                  const std::string& header,
                                                  const std::string& extension) = 0;
  // The six values joined by ", ", numbers in their shortest general form.
  virtual std::string JoinAsCsvLine(const std::array<Variant, 6>& values) = 0;
};

class InstrumentPaths {
 public:
  virtual ~InstrumentPaths() = default;
  // The folder under which "\Logfiles\" lies, without a trailing separator.
  virtual std::string GetBaseFolder() = 0;
};

// The firmware communication library.
class FirmwareLibrary {
 public:
  virtual ~FirmwareLibrary() = default;
  // The setpoint value at which the abundance of the peak in the flight-time window (ns) lies
  // between target minimum and maximum. The meaning of the arguments without a name is the
  // library's own.
  virtual float BinarySearchForTargetAb(std::int32_t argument1, float target_min_abundance,
                                        float target_max_abundance, float speed_up_factor,
                                        float argument5, float argument6, float argument7,
                                        std::int32_t argument8, float window_start_ns,
                                        float window_end_ns) = 0;
};

// Creates the collaborators, by their class identities or as substitutes, and new objects of the
// mass-time library. None of these returns none.
class InstrumentFactory {
 public:
  virtual ~InstrumentFactory() = default;
  virtual std::shared_ptr<DataDictionary> CreateDataDictionary() = 0;
  virtual std::shared_ptr<AcqController> CreateAcqController() = 0;
  virtual std::shared_ptr<SpecParser> CreateSpecParser() = 0;
  virtual std::shared_ptr<CalibLogFiles> CreateCalibLogFiles() = 0;
  virtual std::shared_ptr<TuneFlags> CreateTuneFlags() = 0;
  virtual std::shared_ptr<CalibSettings> CreateCalibSettings() = 0;
  virtual std::shared_ptr<InstrumentPaths> GetInstrumentPaths() = 0;  // shared by all
  virtual std::shared_ptr<FirmwareLibrary> GetFirmwareLibrary() = 0;  // shared by all
  virtual std::shared_ptr<PeakList> CreatePeakList() = 0;
  virtual std::shared_ptr<MassCalCoefficients> CreateMassCalCoefficients() = 0;  // empty ones
};

}  // namespace tof
