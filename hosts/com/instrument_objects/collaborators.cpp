#include "hosts/com/instrument_objects/collaborators.h"

#include "component/automation/convert.h"
#include "hosts/com/automation/safe_array.h"
#include "hosts/com/automation/text.h"
#include "hosts/com/automation/variant_conversion.h"
#include "hosts/com/instrument_objects/mass_time_objects.h"

namespace tof::com {
namespace {

VARIANT_BOOL BooleanOf(bool value) {
  return value ? VARIANT_TRUE : VARIANT_FALSE;
}

// For a method's result: an object of its own for each call, none for none.
template <class Object, class Collaborator>
Object* HandedOut(std::shared_ptr<Collaborator> collaborator) {
  if (collaborator == nullptr) return nullptr;
  return NewObject<Object>(std::move(collaborator)).Detach();
}

// Exactly six values, of any lower bound.
std::array<Variant, 6> SixIn(const VARIANT& values) {
  const Variant converted = FromVariant(values);
  const auto* array = converted.As<Variant::Array>();
  if (array == nullptr || array->size() != 6) Raise(RunTimeError::kTypeMismatch);
  std::array<Variant, 6> six;
  std::copy(array->begin(), array->end(), six.begin());
  return six;
}

constexpr const char* kSetpointTable = "vorninstrument.SetpointTable";
constexpr const char* kSpectrumDisplay = "vorninstrument.SpectrumDisplay";
constexpr const char* kStatusReader = "vorninstrument.StatusReader";
constexpr const char* kDataDictionary = "vorninstrument.DataDictionary";
constexpr const char* kAcqController = "vorninstrument.AcqController";
constexpr const char* kSpecParser = "vorninstrument.SpecParser";
constexpr const char* kTuneFlags = "vorninstrument.TuneFlags";
constexpr const char* kCalibSettings = "vorninstrument.CalibSettings";
constexpr const char* kTextStream = "vorninstrument.TextStream";
constexpr const char* kCalibLogFiles = "vorninstrument.CalibLogFiles";
constexpr const char* kInstrumentPaths = "vorninstrument.InstrumentPaths";

}  // namespace

HRESULT SetpointTableObject::GetSetpoint(LONG id, VARIANT* value) {
  return Answer(kSetpointTable, [&] { *value = ToVariant(table_->GetSetpoint(id)).Detach(); });
}
HRESULT SetpointTableObject::SetSetpoint(LONG id, LONG value_type, VARIANT value) {
  return Answer(kSetpointTable, [&] {
    table_->SetSetpoint(id, static_cast<ValueType>(value_type), FromVariant(value));
  });
}
HRESULT SetpointTableObject::GetCurrentValue(LONG id, VARIANT* value) {
  return Answer(kSetpointTable, [&] { *value = ToVariant(table_->GetCurrentValue(id)).Detach(); });
}

HRESULT SpectrumDisplayObject::SetDisplayUpdate(VARIANT_BOOL live) {
  return Answer(kSpectrumDisplay, [&] { display_->SetDisplayUpdate(live != VARIANT_FALSE); });
}

HRESULT StatusReaderObject::Read(BSTR name, BSTR type, LONG zero, VARIANT* value) {
  return Answer(kStatusReader, [&] {
    *value = ToVariant(reader_->Read(TextOf(name), TextOf(type), zero)).Detach();
  });
}

HRESULT DataDictionaryObject::Initialize() {
  return Answer(kDataDictionary, [&] { dictionary_->Initialize(); });
}
HRESULT DataDictionaryObject::GetSetpointTable(ISetpointTable** table) {
  return Answer(kDataDictionary,
                [&] { *table = HandedOut<SetpointTableObject>(dictionary_->GetSetpointTable()); });
}
HRESULT DataDictionaryObject::GetConfigObject(ISpectrumDisplay** display) {
  return Answer(kDataDictionary, [&] {
    *display = HandedOut<SpectrumDisplayObject>(dictionary_->GetConfigObject());
  });
}
HRESULT DataDictionaryObject::GetFlagKey(BSTR* key) {
  return Answer(kDataDictionary, [&] { *key = NewBstr(dictionary_->GetFlagKey()); });
}
HRESULT DataDictionaryObject::GetTimeValue(double* time_s) {
  return Answer(kDataDictionary, [&] { *time_s = dictionary_->GetTimeValue(); });
}
HRESULT DataDictionaryObject::GetAcqStartTime(LONG* start_us) {
  return Answer(kDataDictionary, [&] { *start_us = dictionary_->GetAcqStartTime(); });
}
HRESULT DataDictionaryObject::GetAcqEndTime(LONG* end_us) {
  return Answer(kDataDictionary, [&] { *end_us = dictionary_->GetAcqEndTime(); });
}
HRESULT DataDictionaryObject::GetStatusReader(IStatusReader** reader) {
  return Answer(kDataDictionary,
                [&] { *reader = HandedOut<StatusReaderObject>(dictionary_->GetStatusReader()); });
}
HRESULT DataDictionaryObject::GetModeName(BSTR* mode_name) {
  return Answer(kDataDictionary, [&] { *mode_name = NewBstr(dictionary_->GetModeName()); });
}
HRESULT DataDictionaryObject::ModeUsesRfSetpoints(BSTR mode_name, VARIANT_BOOL* uses) {
  return Answer(kDataDictionary,
                [&] { *uses = BooleanOf(dictionary_->ModeUsesRfSetpoints(TextOf(mode_name))); });
}

HRESULT AcqControllerObject::InitializeController(LONG zero) {
  return Answer(kAcqController, [&] { controller_->InitializeController(zero); });
}
HRESULT AcqControllerObject::InitializeAcquisition(LONG zero) {
  return Answer(kAcqController, [&] { controller_->InitializeAcquisition(zero); });
}
HRESULT AcqControllerObject::PrepareSetpointAccess(VARIANT* answer) {
  return Answer(kAcqController,
                [&] { *answer = ToVariant(controller_->PrepareSetpointAccess()).Detach(); });
}
HRESULT AcqControllerObject::PrepareSetpointTable(VARIANT* answer) {
  return Answer(kAcqController,
                [&] { *answer = ToVariant(controller_->PrepareSetpointTable()).Detach(); });
}
HRESULT AcqControllerObject::IsAbortRequested(VARIANT_BOOL* requested) {
  return Answer(kAcqController, [&] { *requested = controller_->IsAbortRequested(); });
}
HRESULT AcqControllerObject::GetScaleFactor(double* factor) {
  return Answer(kAcqController, [&] { *factor = controller_->GetScaleFactor(); });
}
HRESULT AcqControllerObject::GetCurrentMassCalObject(IMassCalCoefficients** coefficients) {
  return Answer(kAcqController, [&] {
    *coefficients = NewCoefficientsObject(controller_->GetCurrentMassCalObject());
  });
}
HRESULT AcqControllerObject::GetCurrentA(double* a_per_ns) {
  return Answer(kAcqController, [&] { *a_per_ns = controller_->GetCurrentA(); });
}
HRESULT AcqControllerObject::GetDefaultCalibCoefficients(IMassCalCoefficients** coefficients) {
  return Answer(kAcqController, [&] {
    *coefficients = NewCoefficientsObject(controller_->GetDefaultCalibCoefficients());
  });
}
HRESULT AcqControllerObject::SetCalibCoefficients(IMassCalCoefficients* coefficients) {
  return Answer(kAcqController,
                [&] { controller_->SetCalibCoefficients(CoefficientsBehind(coefficients)); });
}
HRESULT AcqControllerObject::SetLikelyAAndT0(double a_per_us, double t0_us) {
  return Answer(kAcqController, [&] { controller_->SetLikelyAAndT0(a_per_us, t0_us); });
}
HRESULT AcqControllerObject::GetColumnStatistics(VARIANT values, VARIANT* averages,
                                                 VARIANT* standard_deviations) {
  return Answer(kAcqController, [&] {
    const ColumnStatistics statistics = controller_->GetColumnStatistics(Doubles2DIn(values));
    StoreInto(*averages, ToVariant(statistics.averages));
    StoreInto(*standard_deviations, ToVariant(statistics.standard_deviations));
  });
}
HRESULT AcqControllerObject::EndAIC() {
  return Answer(kAcqController, [&] { controller_->EndAIC(); });
}
HRESULT AcqControllerObject::ReadSetpoint(LONG id, VARIANT* value) {
  return Answer(kAcqController,
                [&] { *value = ToVariant(controller_->ReadSetpoint(id)).Detach(); });
}
HRESULT AcqControllerObject::GetConfigurationName(BSTR* name) {
  return Answer(kAcqController, [&] { *name = NewBstr(controller_->GetConfigurationName()); });
}
HRESULT AcqControllerObject::GetCalibrantMasses(LONG setpoint117, BSTR mode_name,
                                                BSTR configuration_name, VARIANT* masses) {
  return Answer(kAcqController, [&] {
    *masses = ToVariant(controller_->GetCalibrantMasses(setpoint117, TextOf(mode_name),
                                                        TextOf(configuration_name)))
                  .Detach();
  });
}

HRESULT SpecParserObject::GetCalibrantPeakAttributes(VARIANT masses, double peak_find_window,
                                                     VARIANT* attributes) {
  return Answer(kSpecParser, [&] {
    *attributes = ToVariant(parser_->GetCalibrantPeakAttributes(
                                MassesFromCaller(FromVariant(masses)), peak_find_window))
                      .Detach();
  });
}
HRESULT SpecParserObject::GetPeakAttribute(::PeakCalculationtype kind, double mass,
                                           double tolerance, double* value) {
  return Answer(kSpecParser, [&] {
    *value = parser_->GetPeakAttribute(static_cast<PeakCalculationtype>(kind), mass, tolerance);
  });
}
HRESULT SpecParserObject::FindPeaks(double start_ns, double end_ns, LONG peaks_sought, LONG* count,
                                    IPeakList** list) {
  return Answer(kSpecParser, [&] {
    std::int32_t found = *count;
    std::shared_ptr<PeakList> peaks;
    parser_->FindPeaks(start_ns, end_ns, peaks_sought, found, peaks);
    *count = found;
    const ComPtr<IPeakList> replaced = ComPtr<IPeakList>::Adopt(*list);
    *list = NewPeakListObject(std::move(peaks));
  });
}
HRESULT SpecParserObject::ShouldAvoidAIC(VARIANT masses, double* peak_find_width,
                                         VARIANT_BOOL* avoid) {
  return Answer(kSpecParser, [&] {
    *avoid =
        BooleanOf(parser_->ShouldAvoidAIC(MassesFromCaller(FromVariant(masses)), *peak_find_width));
  });
}
HRESULT SpecParserObject::SearchTargetAbundance(double mass, double tolerance) {
  return Answer(kSpecParser, [&] { parser_->SearchTargetAbundance(mass, tolerance); });
}

HRESULT TuneFlagsObject::GetFlag(BSTR key, LONG minus_one, BSTR* text) {
  return Answer(kTuneFlags, [&] { *text = NewBstr(flags_->GetFlag(TextOf(key), minus_one)); });
}

HRESULT CalibSettingsObject::GetValue(BSTR section, BSTR key, LONG zero, double* value) {
  return Answer(kCalibSettings,
                [&] { settings_->GetValue(TextOf(section), TextOf(key), zero, *value); });
}

HRESULT TextStreamObject::WriteLine(BSTR text) {
  return Answer(kTextStream, [&] { stream_->WriteLine(TextOf(text)); });
}
HRESULT TextStreamObject::Close() {
  return Answer(kTextStream, [&] { stream_->Close(); });
}

HRESULT CalibLogFilesObject::OpenLogFile(BSTR prefix, BSTR header, BSTR extension,
                                         IDispatch** stream) {
  return Answer(kCalibLogFiles, [&] {
    *stream = HandedOut<TextStreamObject>(
        files_->OpenLogFile(TextOf(prefix), TextOf(header), TextOf(extension)));
  });
}
HRESULT CalibLogFilesObject::JoinAsCsvLine(VARIANT values, BSTR* line) {
  return Answer(kCalibLogFiles, [&] { *line = NewBstr(files_->JoinAsCsvLine(SixIn(values))); });
}

HRESULT InstrumentPathsObject::GetBaseFolder(BSTR* folder) {
  return Answer(kInstrumentPaths, [&] { *folder = NewBstr(paths_->GetBaseFolder()); });
}

}  // namespace tof::com
