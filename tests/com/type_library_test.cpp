// The type libraries as Windows reads them: what the tool that makes them writes wrongly, it writes
// silently.

#include "hosts/com/automation/windows_headers.h"

// The identities are defined in this file.
#include <initguid.h>

#include <algorithm>
#include <cctype>
#include <string>
#include <vector>

#include "component/automation/convert.h"
#include "hosts/com/server/module.h"
#include "tests/com/com_world.h"

namespace tof::com {
namespace {

using ::testing::ElementsAre;

ComPtr<ITypeLib> Load(const std::wstring& path) {
  ComPtr<ITypeLib> library;
  EXPECT_EQ(LoadTypeLibEx(path.c_str(), REGKIND_NONE, library.Out()), S_OK);
  return library;
}

std::string NameOf(ITypeInfo& info, MEMBERID member = MEMBERID_NIL) {
  Bstr name;
  info.GetDocumentation(member, name.Out(), nullptr, nullptr, nullptr);
  return name.Text();
}

// The interface behind a dual one's late-bound view, or the type itself.
ComPtr<ITypeInfo> Vtable(const ComPtr<ITypeInfo>& info) {
  HREFTYPE reference = 0;
  ComPtr<ITypeInfo> vtable;
  if (FAILED(info->GetRefTypeOfImplType(static_cast<UINT>(-1), &reference))) return info;
  EXPECT_EQ(info->GetRefTypeInfo(reference, vtable.Out()), S_OK);
  return vtable;
}

std::string TypeText(const TYPEDESC& type) {
  switch (type.vt) {
    case VT_PTR:
      return TypeText(*type.lptdesc) + "*";
    case VT_I2:
      return "short";
    case VT_I4:
      return "long";
    case VT_R8:
      return "double";
    case VT_BOOL:
      return "boolean";
    case VT_BSTR:
      return "string";
    case VT_VARIANT:
      return "variant";
    case VT_DISPATCH:
      return "object";
    case VT_USERDEFINED:
      return "type";
    case VT_VOID:
      return "void";
    default:
      return "type " + std::to_string(type.vt);
  }
}

std::string ParameterText(const ELEMDESC& element, const std::string& name) {
  const PARAMDESC& description = element.paramdesc;
  std::string text;
  if ((description.wParamFlags & PARAMFLAG_FIN) != 0) text += "in ";
  if ((description.wParamFlags & PARAMFLAG_FOUT) != 0) text += "out ";
  if ((description.wParamFlags & PARAMFLAG_FRETVAL) != 0) text += "retval ";
  if ((description.wParamFlags & PARAMFLAG_FOPT) != 0) text += "optional ";
  text += TypeText(element.tdesc) + " " + name;
  if ((description.wParamFlags & PARAMFLAG_FHASDEFAULT) != 0) {
    text += " = " + ToText(FromVariant(description.pparamdescex->varDefaultValue));
  }
  return text;
}

struct Function {
  std::string name;
  MEMBERID id;
  int slot;  // in the vtable
  std::vector<std::string> parameters;
};

std::vector<Function> FunctionsOf(ITypeInfo& info) {
  TYPEATTR* attributes = nullptr;
  info.GetTypeAttr(&attributes);
  const UINT count = attributes->cFuncs;
  info.ReleaseTypeAttr(attributes);
  std::vector<Function> functions;
  for (UINT i = 0; i < count; ++i) {
    FUNCDESC* description = nullptr;
    EXPECT_EQ(info.GetFuncDesc(i, &description), S_OK);
    BSTR names[16] = {};
    UINT named = 0;
    info.GetNames(description->memid, names, 16, &named);
    Function function{TextOf(names[0]),
                      description->memid,
                      description->oVft / static_cast<int>(sizeof(void*)),
                      {}};
    for (int p = 0; p < description->cParams; ++p) {
      const auto name = static_cast<UINT>(p) + 1;
      function.parameters.push_back(ParameterText(description->lprgelemdescParam[p],
                                                  name < named ? TextOf(names[name]) : ""));
    }
    for (BSTR name : names) SysFreeString(name);
    info.ReleaseFuncDesc(description);
    functions.push_back(std::move(function));
  }
  return functions;
}

// The type of that name in a library.
ComPtr<ITypeInfo> TypeNamed(ITypeLib& library, const std::string& name) {
  for (UINT i = 0; i < library.GetTypeInfoCount(); ++i) {
    ComPtr<ITypeInfo> info;
    library.GetTypeInfo(i, info.Out());
    if (NameOf(*info.get()) == name) return info;
  }
  ADD_FAILURE() << "no type " << name;
  return {};
}

class TypeLibrary : public ComWorld {};

TEST_F(TypeLibrary, NamesTheLibraryTheClassAndItsTwoInterfaces) {
  const auto library = Load(CalibratorDll::Path());
  Bstr name;
  library->GetDocumentation(-1, name.Out(), nullptr, nullptr, nullptr);
  EXPECT_EQ(name.Text(), "vorntofcaliblib");
  TLIBATTR* identity = nullptr;
  library->GetLibAttr(&identity);
  EXPECT_EQ(identity->guid, LIBID_vorntofcaliblib);
  library->ReleaseTLibAttr(identity);
  const auto type = TypeNamed(*library.get(), "TofCalibrator");
  TYPEATTR* attributes = nullptr;
  type->GetTypeAttr(&attributes);
  EXPECT_EQ(attributes->typekind, TKIND_COCLASS);
  EXPECT_EQ(attributes->guid, __uuidof(::TofCalibrator));
  ASSERT_EQ(attributes->cImplTypes, 2);
  EXPECT_NE(attributes->wTypeFlags & TYPEFLAG_FCANCREATE, 0);
  type->ReleaseTypeAttr(attributes);
  std::vector<std::string> interfaces;
  for (UINT i = 0; i < 2; ++i) {
    HREFTYPE reference = 0;
    ComPtr<ITypeInfo> implemented;
    INT flags = 0;
    type->GetRefTypeOfImplType(i, &reference);
    type->GetRefTypeInfo(reference, implemented.Out());
    type->GetImplTypeFlags(i, &flags);
    EXPECT_NE(flags & IMPLTYPEFLAG_FDEFAULT, 0);
    EXPECT_EQ((flags & IMPLTYPEFLAG_FSOURCE) != 0, i == 1);
    interfaces.push_back(NameOf(*implemented.get()));
  }
  EXPECT_THAT(interfaces, ElementsAre("_TofCalibrator", "__TofCalibrator"));
}

TEST_F(TypeLibrary, HasTheFourMethodsInTheirOrderWithTypesAndDefaults) {
  const auto type = TypeNamed(*Load(CalibratorDll::Path()).get(), "_TofCalibrator");
  const auto methods = FunctionsOf(*Vtable(type).get());
  ASSERT_EQ(methods.size(), 4U);
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(methods[static_cast<std::size_t>(i)].id, i + 1);
    EXPECT_EQ(methods[static_cast<std::size_t>(i)].slot, 7 + i);  // behind those of IDispatch
  }
  EXPECT_EQ(methods[0].name, "WriteDataToSpotFireLog");
  EXPECT_THAT(methods[0].parameters, ElementsAre());
  EXPECT_EQ(methods[1].name, "TestNewStuff");
  EXPECT_THAT(methods[1].parameters, ElementsAre());
  EXPECT_EQ(methods[2].name, "GetAveragedTimesForCalibration");
  EXPECT_THAT(methods[2].parameters,
              ElementsAre("in variant varExpectedMasses", "in out short* nAvgSpectra",
                          "in out boolean* bEnableAbImmuneCalib",
                          "in out optional double* dPeakFindWindow = -1",
                          "out retval variant* varAveragedTimes"));
  EXPECT_EQ(methods[3].name, "calibrateTOFMassAxis");
  EXPECT_THAT(methods[3].parameters,
              ElementsAre("in out short* nAvgSpectra", "in variant varExpectedMasses",
                          "in out variant* varAveragedMeasuredTimes",
                          "in out boolean* bSuppressAbImmuneCalib",
                          "in out optional boolean* bOKtoFail = False",
                          "in out optional boolean* bThisIsAManualCalibration = False",
                          "in out optional double* dTradWeighting = -1",
                          "in out optional double* dPeakFindTimeWindow = -1",
                          "out retval type** coefficients"));
}

TEST_F(TypeLibrary, HasTheOneEvent) {
  const auto type = TypeNamed(*Load(CalibratorDll::Path()).get(), "__TofCalibrator");
  const auto events = FunctionsOf(*type.get());
  ASSERT_EQ(events.size(), 1U);
  EXPECT_EQ(events[0].name, "evtNewStatus");
  EXPECT_EQ(events[0].id, 1);
  EXPECT_THAT(events[0].parameters,
              ElementsAre("in out long* lStatus", "in out string* strMessage"));
}

TEST_F(TypeLibrary, ReturnsTheCoefficientsOfTheMassTimeLibrary) {
  const auto type = Vtable(TypeNamed(*Load(CalibratorDll::Path()).get(), "_TofCalibrator"));
  FUNCDESC* method = nullptr;
  ASSERT_EQ(type->GetFuncDesc(3, &method), S_OK);
  const TYPEDESC& result = method->lprgelemdescParam[8].tdesc;
  ComPtr<ITypeInfo> coefficients;
  ASSERT_EQ(type->GetRefTypeInfo(result.lptdesc->lptdesc->hreftype, coefficients.Out()), S_OK);
  EXPECT_EQ(NameOf(*coefficients.get()), "IMassCalCoefficients");
  ComPtr<ITypeLib> library;
  UINT index = 0;
  coefficients->GetContainingTypeLib(library.Out(), &index);
  Bstr name;
  library->GetDocumentation(-1, name.Out(), nullptr, nullptr, nullptr);
  EXPECT_EQ(name.Text(), "VORNMASSTIMELib");
  type->ReleaseFuncDesc(method);
}

TEST_F(TypeLibrary, PublishesEveryCollaboratorWithItsMethodsBehindThoseOfDispatch) {
  const struct {
    const char* name;
    std::size_t methods;
  } kExpected[] = {{"ISetpointTable", 3},   {"ISpectrumDisplay", 1}, {"IStatusReader", 1},
                   {"IDataDictionary", 10}, {"IAcqController", 16},  {"ISpecParser", 5},
                   {"ITuneFlags", 1},       {"ICalibSettings", 1},   {"ILogTextStream", 2},
                   {"ICalibLogFiles", 2},   {"IInstrumentPaths", 1}, {"ITrace", 5}};
  const auto library = EmbeddedTypeLibrary(1);
  ASSERT_TRUE(library);
  for (const auto& expected : kExpected) {
    const auto methods = FunctionsOf(*Vtable(TypeNamed(*library.get(), expected.name)).get());
    ASSERT_EQ(methods.size(), expected.methods) << expected.name;
    for (std::size_t i = 0; i < methods.size(); ++i) {
      EXPECT_EQ(methods[i].slot, 7 + static_cast<int>(i))
          << expected.name << "." << methods[i].name;
    }
  }
}

TEST_F(TypeLibrary, KeepsTheControlOfTheStandInApartFromWhatInstrumentMakersProvide) {
  std::wstring server = CalibratorDll::Path();
  server.replace(server.find_last_of(L'\\') + 1, std::wstring::npos, L"vorninstrument.dll");
  const auto published = Load(server + L"\\1");
  for (UINT i = 0; i < published->GetTypeInfoCount(); ++i) {
    ComPtr<ITypeInfo> info;
    published->GetTypeInfo(i, info.Out());
    EXPECT_NE(NameOf(*info.get()), "IInstrumentControl");
  }
  const auto methods =
      FunctionsOf(*Vtable(TypeNamed(*Load(server + L"\\3").get(), "IInstrumentControl")).get());
  for (std::size_t i = 0; i < methods.size(); ++i) {
    EXPECT_EQ(methods[i].slot, 7 + static_cast<int>(i)) << methods[i].name;
    // A parameter of the same name in other letters would take over.
    EXPECT_NE(std::isupper(static_cast<unsigned char>(methods[i].name[0])), 0) << methods[i].name;
  }
  const auto truth = std::find_if(methods.begin(), methods.end(),
                                  [](const Function& f) { return f.name == "TrueError"; });
  ASSERT_NE(truth, methods.end());
  EXPECT_THAT(truth->parameters,
              ElementsAre("in string figure", "in variant expected_masses", "in variant times_ns",
                          "in long spectra_per_mass", "in boolean aic",
                          "in optional variant abundances", "out retval double* error_ppm"));
}

}  // namespace
}  // namespace tof::com
