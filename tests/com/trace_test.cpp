#include <vorninstrument.h>

#include "hosts/com/server/class_factory.h"
#include "hosts/com/server/dual_object.h"
#include "tests/com/com_world.h"

namespace tof::com {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

// Shared by the object and the test.
struct TraceLines {
  std::string module_name;
  bool on = true;
  std::vector<std::string> lines;
};

class TraceObject final : public DualObject<TraceObject, ITrace> {
 public:
  explicit TraceObject(TraceLines& lines) : lines_(lines) {}

  HRESULT STDMETHODCALLTYPE put_mnameOfModule(BSTR name) override {
    lines_.module_name = TextOf(name);
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE get_mtraceFlag(VARIANT_BOOL* on) override {
    *on = lines_.on ? VARIANT_TRUE : VARIANT_FALSE;
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Entry(BSTR routine, LONG level) override {
    lines_.lines.push_back("Entry " + TextOf(routine) + " " + std::to_string(level));
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE Exit(BSTR routine, LONG level) override {
    lines_.lines.push_back("Exit " + TextOf(routine) + " " + std::to_string(level));
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE TracePrint(BSTR text, BSTR routine, LONG level) override {
    lines_.lines.push_back(TextOf(routine) + " " + std::to_string(level) + ": " + TextOf(text));
    return S_OK;
  }

 private:
  TraceLines& lines_;
};

// The ProgID is in the registry for the life of the scope; the class of this process's own.
class RegisteredTrace {
 public:
  explicit RegisteredTrace(TraceLines& lines) {
    GUID class_id{};
    CoCreateGuid(&class_id);
    const std::wstring text = Wide(TextOf(class_id));
    RegSetKeyValueW(HKEY_CLASSES_ROOT, L"vornutils.trace.1\\CLSID", nullptr, REG_SZ, text.c_str(),
                    static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t)));
    const auto factory = NewObject<ClassFactory>(
        [&lines] { return NewObject<TraceObject>(lines).As<IUnknown>(); }, "the fake trace");
    CoRegisterClassObject(class_id, factory.get(), CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE,
                          &cookie_);
  }
  ~RegisteredTrace() {
    CoRevokeClassObject(cookie_);
    RegDeleteTreeW(HKEY_CLASSES_ROOT, L"vornutils.trace.1");
  }
  RegisteredTrace(const RegisteredTrace&) = delete;
  RegisteredTrace& operator=(const RegisteredTrace&) = delete;

 private:
  DWORD cookie_ = 0;
};

class Trace : public ComWorld {
 protected:
  Trace() { RegisterInstrument(); }
};

// One test, as the ProgID is the same for all: other tests run without a trace.
TEST_F(Trace, IsCalledByNameWhenItIsRegisteredAndSaysYes) {
  TraceLines lines;
  {
    const RegisteredTrace registered(lines);
    auto calibrator = Created();
    EXPECT_EQ(lines.module_name, "vorntofcaliblib");
    EXPECT_EQ(calibrator->TestNewStuff(), S_OK);
    EXPECT_THAT(lines.lines, ElementsAre("Entry TestNewStuff 1", "Exit TestNewStuff 1"));
    lines.lines.clear();
    ComPtr<IMassCalCoefficients> coefficients;
    EXPECT_EQ(Calibrate(*calibrator.get(), coefficients), S_OK);
    EXPECT_THAT(lines.lines, ::testing::Contains("calibrateTOFMassAxis 4: Calling Calibrate()"));
    lines.lines.clear();
    calibrator = {};
    EXPECT_THAT(lines.lines, ElementsAre("Entry Class_Terminate 9", "Exit Class_Terminate 9"));
    // Kept for the next object of the thread until the module is told that it may go.
    EXPECT_EQ(dll.CanUnloadNow(), S_OK);

    lines.lines.clear();
    lines.on = false;
    calibrator = Created();
    EXPECT_EQ(calibrator->TestNewStuff(), S_OK);
    EXPECT_THAT(lines.lines, IsEmpty());
    calibrator = {};
    EXPECT_EQ(dll.CanUnloadNow(), S_OK);
  }
  const auto calibrator = Created();
  EXPECT_EQ(calibrator->TestNewStuff(), S_OK);
  EXPECT_THAT(lines.lines, IsEmpty());
}

}  // namespace
}  // namespace tof::com
