// Calls by name, with the forms of arguments that scripts and programs use.

#include <functional>
#include <ostream>

#include "tests/com/com_world.h"

namespace tof::com {
namespace {

VARIANT Short(SHORT value) {
  VARIANT v;
  VariantInit(&v);
  V_VT(&v) = VT_I2;
  V_I2(&v) = value;
  return v;
}
VARIANT Boolean(bool value) {
  VARIANT v;
  VariantInit(&v);
  V_VT(&v) = VT_BOOL;
  V_BOOL(&v) = value ? VARIANT_TRUE : VARIANT_FALSE;
  return v;
}
VARIANT Missing() {
  VARIANT v;
  VariantInit(&v);
  V_VT(&v) = VT_ERROR;
  V_ERROR(&v) = DISP_E_PARAMNOTFOUND;
  return v;
}
// A script's variable.
VARIANT Variable(VARIANT& variable) {
  VARIANT v;
  VariantInit(&v);
  V_VT(&v) = VT_BYREF | VT_VARIANT;
  V_VARIANTREF(&v) = &variable;
  return v;
}
VARIANT Variable(OwnedVariant& variable) {
  return Variable(const_cast<VARIANT&>(variable.get()));
}

class Arguments : public ComWorld {
 protected:
  void SetUp() override {
    RegisterInstrument();
    calibrator = Created();
  }

  OwnedVariant Masses() const { return ToVariant(BoundedArray<double>(instrument.sample_masses)); }

  // The averages of a run with these masses: sized by the calibration before it.
  CallOutcome AverageWith(const VARIANT& masses) {
    return CallByName(*calibrator.get(), L"GetAveragedTimesForCalibration",
                      {masses, Short(2), Boolean(false)});
  }

  // A calibration by name; the event tells what became of it.
  std::pair<LONG, std::string> EventOf(const VARIANT& masses) {
    const auto sink = Connect(*calibrator.get());
    OwnedVariant averaged;
    const CallOutcome outcome = CallByName(*calibrator.get(), L"calibrateTOFMassAxis",
                                           {Short(2), masses, Variable(averaged), Boolean(true)});
    Disconnect(*calibrator.get());
    EXPECT_EQ(outcome.result, S_OK);
    EXPECT_EQ(V_VT(&outcome.value.get()), VT_DISPATCH);
    const bool fitted = V_DISPATCH(&outcome.value.get()) != nullptr;
    EXPECT_EQ(sink->events.empty(), fitted);
    return sink->events.empty() ? std::pair<LONG, std::string>(0, "") : sink->events.front();
  }

  ComPtr<_TofCalibrator> calibrator;

  void TearDown() override {
    calibrator = {};
    ComWorld::TearDown();
  }
};

TEST_F(Arguments, OfAScriptComeBackInItsVariables) {
  VARIANT spectra = Short(3);
  OwnedVariant averaged;
  VARIANT suppress = Boolean(true);
  OwnedVariant used = OwnedVariant::Of(-1.0);
  const OwnedVariant masses = Masses();
  const CallOutcome outcome =
      CallByName(*calibrator.get(), L"calibrateTOFMassAxis",
                 {Variable(spectra), masses.get(), Variable(averaged), Variable(suppress),
                  Missing(), Missing(), Missing(), Variable(used)});
  ASSERT_EQ(outcome.result, S_OK) << outcome.error.description();
  EXPECT_NE(V_DISPATCH(&outcome.value.get()), nullptr);
  EXPECT_EQ(DoublesIn(averaged.get()).size(), 6U);
  EXPECT_EQ(V_VT(&used.get()), VT_R8);
  EXPECT_EQ(V_R8(&used.get()), 0.5);
}

TEST_F(Arguments, AreConvertedAndKeepTheTypeOfAProgramsVariables) {
  LONG spectra = 2;    // a long for a short
  float used = -1.0F;  // a single for a double
  VARIANT single;
  VariantInit(&single);
  V_VT(&single) = VT_BYREF | VT_R4;
  V_R4REF(&single) = &used;
  OwnedVariant averaged;
  const OwnedVariant masses = Masses();
  const CallOutcome outcome =
      CallByName(*calibrator.get(), L"CalibrateTOFMassAxis",
                 {OwnedVariant::ByRef(spectra).get(), masses.get(), Variable(averaged),
                  Boolean(true), Missing(), Missing(), Missing(), single});
  ASSERT_EQ(outcome.result, S_OK) << outcome.error.description();
  EXPECT_EQ(used, 0.5F);
  EXPECT_EQ(spectra, 2);
  EXPECT_EQ(instrument.spectra_taken, 1 + 2);  // a first one, and those that are averaged
}

TEST_F(Arguments, LeftOutCountAsTheirDefaults) {
  const OwnedVariant masses = Masses();
  OwnedVariant averaged;
  journal.Clear();
  EXPECT_EQ(CallByName(*calibrator.get(), L"calibrateTOFMassAxis",
                       {Short(2), masses.get(), Variable(averaged), Boolean(true)})
                .result,
            S_OK);
  // The default window is -1, which the instrument's setting replaces; a manual calibration and a
  // weighting were not asked for.
  EXPECT_EQ(journal.Only({"SpecParser.GetCalibrantPeakAttributes"}).front(),
            "SpecParser.GetCalibrantPeakAttributes(0.5)");
  const auto power_flag = journal.Only({"CalibSettings.GetValue(Calibration/UseThisPowerFlag"});
  EXPECT_TRUE(power_flag.empty());
}

// A list of fifty million bytes takes no memory worth the name.
TEST_F(Arguments, OfMoreMassesThanAreCountedAreAnOverflow) {
  for (const ULONG count : {32768UL, 50'000'000UL}) {
    SAFEARRAYBOUND bound{};
    bound.cElements = count;
    OwnedVariant bytes;
    NewArray(bytes, VT_UI1, {bound});
    EXPECT_EQ(EventOf(bytes.get()), std::pair(LONG{6}, std::string("Overflow"))) << count;
  }
}

TEST_F(Arguments, AreTakenByNameToo) {
  std::wstring method = L"GetAveragedTimesForCalibration";
  std::wstring window_name = L"dPeakFindWindow";
  LPOLESTR names[] = {method.data(), window_name.data()};
  DISPID ids[2] = {};
  ASSERT_EQ(calibrator->GetIDsOfNames(IID_NULL, names, 2, LOCALE_USER_DEFAULT, ids), S_OK);
  EventOf(Masses().get());  // sizes the store
  const OwnedVariant masses = Masses();
  double used = -1.0;
  VARIANT arguments[] = {OwnedVariant::ByRef(used).get(), Boolean(false), Short(2), masses.get()};
  DISPPARAMS parameters{arguments, &ids[1], 4, 1};
  OwnedVariant averaged;
  EXPECT_EQ(calibrator->Invoke(ids[0], IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD, &parameters,
                               averaged.Out(), nullptr, nullptr),
            S_OK);
  EXPECT_EQ(used, 0.5);
  EXPECT_EQ(DoublesIn(averaged.get()).size(), 6U);
}

TEST_F(Arguments, TooManyTooFewOrUnknownAreRefused) {
  const OwnedVariant masses = Masses();
  const auto call = [&](std::vector<VARIANT> arguments) {
    return CallByName(*calibrator.get(), L"GetAveragedTimesForCalibration", std::move(arguments))
        .result;
  };
  EXPECT_EQ(call({masses.get(), Short(2)}), DISP_E_PARAMNOTOPTIONAL);
  EXPECT_EQ(call({masses.get(), Short(2), Boolean(false), Missing(), Short(1)}),
            DISP_E_BADPARAMCOUNT);
  EXPECT_EQ(call({masses.get(), OwnedVariant::Of(99999).get(), Boolean(false)}), DISP_E_OVERFLOW);
  EXPECT_EQ(CallByName(*calibrator.get(), L"Recalibrate", {}).result, DISP_E_UNKNOWNNAME);
  DISPPARAMS none{};
  EXPECT_EQ(calibrator->Invoke(77, IID_NULL, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr),
            DISP_E_MEMBERNOTFOUND);
}

// By-reference arguments of a type that no number of spectra can be.
TEST_F(Arguments, OfAWrongTypeByReferenceAreRefused) {
  const OwnedVariant masses = Masses();
  const OwnedVariant text = OwnedVariant::Of(std::string_view("ten"));
  const OwnedVariant array = ToVariant(BoundedArray<double>(0, 3));
  BSTR word = V_BSTR(&text.get());
  IDispatch* object = calibrator.get();
  IDispatch* nothing = nullptr;
  SAFEARRAY* elements = V_ARRAY(&array.get());
  SAFEARRAY* no_elements = nullptr;
  const std::pair<VARTYPE, void*> kReferences[] = {{VT_BSTR, &word},
                                                   {VT_DISPATCH, &object},
                                                   {VT_UNKNOWN, &object},
                                                   {VT_ARRAY | VT_R8, &elements},
                                                   {VT_DISPATCH, &nothing},
                                                   {VT_ARRAY | VT_R8, &no_elements},
                                                   {VT_I2, nullptr},
                                                   {VT_BSTR, nullptr},
                                                   {VT_VARIANT, nullptr},
                                                   {VT_ARRAY | VT_VARIANT, nullptr},
                                                   {VT_VARIANT | VT_ARRAY, &no_elements}};
  for (const auto& [type, place] : kReferences) {
    VARIANT reference;
    VariantInit(&reference);
    V_VT(&reference) = static_cast<VARTYPE>(VT_BYREF | type);
    V_BYREF(&reference) = place;
    SCOPED_TRACE("type " + std::to_string(V_VT(&reference)) + (place == nullptr ? ", null" : ""));
    const HRESULT as_spectra = CallByName(*calibrator.get(), L"GetAveragedTimesForCalibration",
                                          {masses.get(), reference, Boolean(false)})
                                   .result;
    EXPECT_TRUE(FAILED(as_spectra));
    // As masses they are no error of the call: the averages are Empty.
    const CallOutcome as_masses = AverageWith(reference);
    EXPECT_TRUE(FAILED(as_masses.result) || V_VT(&as_masses.value.get()) == VT_EMPTY);
  }
  EXPECT_EQ(EventOf(masses.get()).first, 0) << "harmed by what it refused";
}

TEST_F(Arguments, OfAProgramMayBeNullWhereTheyAreOptional) {
  const OwnedVariant masses = Masses();
  VARIANT averaged;
  VariantInit(&averaged);
  ComPtr<IMassCalCoefficients> coefficients;
  EXPECT_EQ(
      calibrator->calibrateTOFMassAxis(&n_spectra, masses.get(), &averaged, &suppress_aic, nullptr,
                                       nullptr, nullptr, nullptr, coefficients.Out()),
      S_OK);
  EXPECT_TRUE(coefficients);
  VariantClear(&averaged);
  EXPECT_EQ(
      calibrator->calibrateTOFMassAxis(nullptr, masses.get(), &averaged, &suppress_aic, nullptr,
                                       nullptr, nullptr, nullptr, coefficients.Out()),
      E_POINTER);
}

// The forms in which masses arrive, and what becomes of a calibration with them: 0 for a fit.
struct MassForm {
  const char* name;
  LONG status;
  std::function<OwnedVariant(const std::vector<double>&)> make;
};

void PrintTo(const MassForm& form, std::ostream* out) {
  *out << form.name;
}

template <class Store>
OwnedVariant ArrayOf(VARTYPE type, std::size_t count, LONG lower, Store store) {
  SAFEARRAYBOUND bound{static_cast<ULONG>(count), lower};
  OwnedVariant variant;
  SAFEARRAY* array = NewArray(variant, type, {bound});
  for (std::size_t i = 0; i < count; ++i) {
    LONG index = lower + static_cast<LONG>(i);
    store(array, index, i);
  }
  return variant;
}

OwnedVariant Texts(const std::vector<std::string>& texts, VARTYPE type) {
  return ArrayOf(type, texts.size(), 0, [&](SAFEARRAY* array, LONG index, std::size_t i) {
    const OwnedVariant text = OwnedVariant::Of(std::string_view(texts[i]));
    void* element = type == VT_BSTR ? static_cast<void*>(V_BSTR(&text.get()))
                                    : const_cast<VARIANT*>(&text.get());
    SafeArrayPutElement(array, &index, element);
  });
}

std::vector<std::string> Decimals(const std::vector<double>& masses) {
  std::vector<std::string> texts;
  for (const double mass : masses) texts.push_back(NumberText(mass));
  return texts;
}

const std::vector<MassForm> kForms = {
    {"Doubles", 0, [](const auto& m) { return ToVariant(BoundedArray<double>(m)); }},
    {"DoublesFromIndexOne", 0, [](const auto& m) { return ToVariant(BoundedArray<double>(m, 1)); }},
    {"VariantsAsOfAScript", 0,
     [](const auto& m) {
       return ArrayOf(VT_VARIANT, m.size(), 0, [&](SAFEARRAY* array, LONG index, std::size_t i) {
         const OwnedVariant mass = OwnedVariant::Of(m[i]);
         SafeArrayPutElement(array, &index, const_cast<VARIANT*>(&mass.get()));
       });
     }},
    {"TextsInVariants", 0, [](const auto& m) { return Texts(Decimals(m), VT_VARIANT); }},
    {"Texts", 0, [](const auto& m) { return Texts(Decimals(m), VT_BSTR); }},
    {"TextThatIsNoNumber", 13,
     [](const auto& m) { return Texts(std::vector<std::string>(m.size(), "heavy"), VT_BSTR); }},
    {"Empty", 13, [](const auto&) { return OwnedVariant(); }},
    {"OneNumber", 13, [](const auto& m) { return OwnedVariant::Of(m[0]); }},
    {"TwoDimensions", 13,
     [](const auto&) {
       return ToVariant(BoundedArray2D<double>({0, 1}, {0, 2}));
     }},
    {"Objects", 13,
     [](const auto& m) {
       return ArrayOf(VT_DISPATCH, m.size(), 0, [](SAFEARRAY*, LONG, std::size_t) {});
     }},
    {"NoDescriptor", 13,
     [](const auto&) {
       VARIANT v;
       VariantInit(&v);
       V_VT(&v) = VT_ARRAY | VT_R8;
       V_ARRAY(&v) = nullptr;
       return OwnedVariant(v);
     }},
    {"AMillionTexts", 6,
     [](const auto&) {
       return ArrayOf(VT_BSTR, 1'000'000, 0, [](SAFEARRAY*, LONG, std::size_t) {});
     }},
    {"AMillion", 6, [](const auto&) { return ToVariant(BoundedArray<double>(0, 999999)); }},
};

class Masses : public Arguments, public ::testing::WithParamInterface<MassForm> {};

TEST_P(Masses, ComeToTheDefinedEnd) {
  const OwnedVariant masses = GetParam().make(instrument.sample_masses);
  EXPECT_EQ(EventOf(masses.get()).first, GetParam().status);
}

TEST_P(Masses, BehindReferencesComeToTheSameEnd) {
  OwnedVariant masses = GetParam().make(instrument.sample_masses);
  VARIANT inner = Variable(masses);
  EXPECT_EQ(EventOf(Variable(inner)).first, GetParam().status);
}

INSTANTIATE_TEST_SUITE_P(Forms, Masses, ::testing::ValuesIn(kForms),
                         [](const auto& form) { return std::string(form.param.name); });

TEST_F(Arguments, AnArrayByReferenceIsFollowed) {
  const OwnedVariant masses = Masses();
  SAFEARRAY* array = V_ARRAY(&masses.get());
  VARIANT reference;
  VariantInit(&reference);
  V_VT(&reference) = VT_BYREF | VT_ARRAY | VT_R8;
  V_ARRAYREF(&reference) = &array;
  EXPECT_EQ(EventOf(reference).first, 0);
}

TEST_F(Arguments, MassesOfWhichNothingIsKnownGiveAnEmptyAverage) {
  const CallOutcome outcome = AverageWith(OwnedVariant().get());
  EXPECT_EQ(outcome.result, S_OK);
  EXPECT_EQ(V_VT(&outcome.value.get()), VT_EMPTY);
}

}  // namespace
}  // namespace tof::com
