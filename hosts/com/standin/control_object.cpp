#include "hosts/com/standin/control_object.h"

#include <cmath>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "component/automation/convert.h"
#include "hosts/com/automation/text.h"
#include "hosts/com/automation/variant_conversion.h"
#include "hosts/com/standin/true_error.h"
#include "instruments/description/overrides.h"
#include "instruments/spectra/input_error.h"

namespace tof::com {
namespace {

constexpr const char* kSource = "vorninstrument.InstrumentControl";
constexpr LONG kNoSeed = -1;

[[noreturn]] void RaiseInvalidCall(const std::string& text) {
  throw AutomationError(static_cast<std::int32_t>(RunTimeError::kInvalidCall), text);
}

std::filesystem::path PathIn(BSTR text) {
  return {Wide(TextOf(text))};
}

standin::Operation OperationNamed(BSTR name) {
  const auto operation = standin::OperationOfName(TextOf(name));
  if (operation) return *operation;
  RaiseInvalidCall("There is no operation " + spectra::Quoted(TextOf(name)) +
                   "; expected one such as SpecParser.FindPeaks");
}

LONG CountOf(std::int64_t count) {
  if (count > std::numeric_limits<LONG>::max()) Raise(RunTimeError::kOverflow);
  return static_cast<LONG>(count);
}

// Scripts take elements of arrays of variants alone.
template <class Values>
VARIANT VariantsOf(const Values& values) {
  return ToVariant(Variant::Array(std::vector<Variant>(values.begin(), values.end()))).Detach();
}

BoundedArray<double> NumbersIn(const VARIANT& value, std::int32_t count, const char* what) {
  BoundedArray<double> numbers = MassesFromCaller(FromVariant(value));
  if (numbers.UBound() + 1 == count) return numbers;
  RaiseInvalidCall("There are " + std::to_string(numbers.UBound() + 1) + " " + what + " for " +
                   std::to_string(count) + " masses");
}

bool IsLeftOut(const VARIANT& value) {
  return V_VT(&value) == VT_EMPTY || V_VT(&value) == VT_ERROR;
}

// A time that is no number is that of a mass without a peak.
std::vector<standin::MeasuredMass> CalibrantsOf(const VARIANT& masses, const VARIANT& times_ns,
                                                const VARIANT& abundances) {
  const BoundedArray<double> expected = MassesFromCaller(FromVariant(masses));
  const std::int32_t count = expected.UBound() + 1;
  const BoundedArray<double> times = NumbersIn(times_ns, count, "times");
  std::vector<standin::MeasuredMass> calibrants;
  for (std::int32_t k = 0; k < count; ++k) {
    calibrants.push_back({.expected = expected(k)});
    if (std::isfinite(times(k))) calibrants.back().time_ns = times(k);
  }
  if (IsLeftOut(Dereferenced(abundances))) return calibrants;
  const BoundedArray<double> known = NumbersIn(abundances, count, "abundances");
  for (std::int32_t k = 0; k < count; ++k) {
    calibrants[static_cast<std::size_t>(k)].abundance = known(k);
  }
  return calibrants;
}

}  // namespace

template <class Body>
HRESULT ControlObject::Do(Body&& body) noexcept {
  return Answer(kSource, std::forward<Body>(body));
}

HRESULT ControlObject::LoadDescription(BSTR path, BSTR data_folder) {
  return Do([&] {
    process_->Change([&](InstrumentChoice& choice) {
      InstrumentChoice loaded;
      if (!PathIn(path).empty()) loaded.description = description::ReadDescription(PathIn(path));
      loaded.data_folder = PathIn(data_folder);
      loaded.real_time = choice.real_time;
      choice = std::move(loaded);
    });
  });
}
HRESULT ControlObject::OverrideSetting(BSTR text) {
  return Do([&] {
    process_->Change([&](InstrumentChoice& choice) {
      description::OverrideSetting(choice.description, TextOf(text));
    });
  });
}
HRESULT ControlObject::OverrideFlag(BSTR text) {
  return Do([&] {
    process_->Change([&](InstrumentChoice& choice) {
      description::OverrideFlag(choice.description, TextOf(text));
    });
  });
}
HRESULT ControlObject::OverrideSetpoint(BSTR text) {
  return Do([&] {
    process_->Change([&](InstrumentChoice& choice) {
      description::OverrideSetpoint(choice.description, TextOf(text));
    });
  });
}
HRESULT ControlObject::OverrideMasses(VARIANT calibrants) {
  return Do([&] {
    const BoundedArray<double> replacing = MassesFromCaller(FromVariant(calibrants));
    process_->Change([&](InstrumentChoice& choice) {
      description::OverrideCalibrants(choice.description, {replacing.begin(), replacing.end()});
    });
  });
}
HRESULT ControlObject::get_BaseFolder(BSTR* folder) {
  return Do([&] { *folder = NewBstr(process_->Choice().description.base_folder); });
}
HRESULT ControlObject::put_BaseFolder(BSTR folder) {
  return Do([&] {
    process_->Change(
        [&](InstrumentChoice& choice) { choice.description.base_folder = TextOf(folder); });
  });
}
HRESULT ControlObject::get_Seed(LONG* seed) {
  return Do([&] {
    const auto& chosen = process_->Choice().seed;
    *seed = chosen ? static_cast<LONG>(*chosen) : kNoSeed;
  });
}
HRESULT ControlObject::put_Seed(LONG seed) {
  return Do([&] {
    if (seed < kNoSeed) {
      RaiseInvalidCall("The seed " + std::to_string(seed) +
                       "; expected 0 or more, or -1 for the description's own");
    }
    process_->Change([&](InstrumentChoice& choice) {
      choice.seed.reset();
      if (seed != kNoSeed) choice.seed = static_cast<std::uint64_t>(seed);
    });
  });
}
HRESULT ControlObject::get_RealTime(VARIANT_BOOL* real_time) {
  return Do([&] { *real_time = process_->Choice().real_time ? VARIANT_TRUE : VARIANT_FALSE; });
}
HRESULT ControlObject::put_RealTime(VARIANT_BOOL real_time) {
  return Do([&] {
    process_->Change(
        [&](InstrumentChoice& choice) { choice.real_time = real_time != VARIANT_FALSE; });
  });
}
HRESULT ControlObject::get_Name(BSTR* name) {
  return Do([&] { *name = NewBstr(process_->Choice().description.name); });
}
HRESULT ControlObject::get_Masses(VARIANT* masses) {
  return Do(
      [&] { *masses = VariantsOf(description::CalibrantMasses(process_->Choice().description)); });
}
HRESULT ControlObject::AsVariants(VARIANT numbers, VARIANT* variants) {
  return Do([&] { *variants = VariantsOf(MassesFromCaller(FromVariant(numbers))); });
}

HRESULT ControlObject::RequestAbort() {
  return Do([&] { Instrument().RequestAbort(); });
}
HRESULT ControlObject::WithdrawAbort() {
  return Do([&] {
    Instrument().WithdrawAbort();
    Instrument().PlanAbort({});
  });
}
HRESULT ControlObject::AbortAfter(double seconds) {
  return Do([&] {
    if (!std::isfinite(seconds) || seconds < 0.0) {
      RaiseInvalidCall("An abort after " + std::to_string(seconds) + " s; expected 0 or more");
    }
    Instrument().PlanAbort(process_->Present().Seconds() + seconds);
  });
}
HRESULT ControlObject::MakeFitsBad(LONG count) {
  return Do([&] {
    if (count < 0) {
      RaiseInvalidCall(std::to_string(count) + " bad fits; expected 0 or more");
    }
    Instrument().MakeFitsBad(count);
  });
}
HRESULT ControlObject::FailCall(BSTR operation, LONG nth) {
  return Do([&] {
    if (nth < 1)
      RaiseInvalidCall("The call " + std::to_string(nth) + " from now; expected 1 or more");
    Instrument().FailCall(OperationNamed(operation), nth);
  });
}
HRESULT ControlObject::WithdrawFailures() {
  return Do([&] { Instrument().WithdrawFailures(); });
}

HRESULT ControlObject::get_Spectra(LONG* count) {
  return Do([&] { *count = CountOf(Instrument().Counted().spectra); });
}
HRESULT ControlObject::get_SetpointWrites(LONG* count) {
  return Do([&] { *count = CountOf(Instrument().Counted().setpoint_writes); });
}
HRESULT ControlObject::get_SetpointReads(LONG* count) {
  return Do([&] { *count = CountOf(Instrument().Counted().setpoint_reads); });
}
HRESULT ControlObject::Calls(BSTR operation, LONG* count) {
  return Do([&] { *count = CountOf(Instrument().State().gate.Calls(OperationNamed(operation))); });
}
HRESULT ControlObject::get_InstrumentSeconds(double* seconds) {
  return Do([&] { *seconds = process_->Present().Seconds(); });
}
HRESULT ControlObject::get_Files(VARIANT* paths) {
  return Do([&] { *paths = VariantsOf(process_->Present().Files()); });
}
HRESULT ControlObject::TrueError(BSTR figure, VARIANT expected_masses, VARIANT times_ns,
                                 LONG spectra_per_mass, VARIANT_BOOL aic, VARIANT abundances,
                                 double* error_ppm) {
  return Do([&] {
    *error_ppm = TrueErrorOf(Instrument(),
                             {.figure = TextOf(figure),
                              .calibrants = CalibrantsOf(expected_masses, times_ns, abundances),
                              .spectra = spectra_per_mass,
                              .aic = aic != VARIANT_FALSE});
  });
}

HRESULT ControlObject::SearchTargetAbundance(float minimum, float maximum, float speed_up_factor,
                                             float precision_volts, float low_volts,
                                             float high_volts, float window_start_ns,
                                             float window_end_ns, float* volts) {
  return Do([&] {
    *volts = process_->Present().SearchTargetAbundance({minimum, maximum, speed_up_factor,
                                                        precision_volts, low_volts, high_volts,
                                                        window_start_ns, window_end_ns});
  });
}
HRESULT ControlObject::get_SearchError(BSTR* text) {
  return Do([&] { *text = NewBstr(process_->Present().SearchError()); });
}

}  // namespace tof::com
