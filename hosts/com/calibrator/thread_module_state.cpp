#include "hosts/com/calibrator/thread_module_state.h"

#include <atomic>

#include "component/trace/trace.h"
#include "hosts/com/automation/com_ptr.h"
#include "hosts/com/automation/error_info.h"

namespace tof::com {
namespace {

class ThreadState;

// Of the thread and of the module by their nature. Plain values: nothing runs when a thread ends,
// as COM is gone by then. NOLINTBEGIN(cppcoreguidelines-avoid-non-const-global-variables)
thread_local ThreadState* thread_state = nullptr;
std::atomic<long> states{0};
// NOLINTEND(cppcoreguidelines-avoid-non-const-global-variables)

// Told by COM when the thread leaves it: the last moment at which objects can be released.
class ThreadState final : public IInitializeSpy {
 public:
  ThreadState() { ++states; }

  void Watch() { Check(CoRegisterInitializeSpy(this, &cookie_)); }
  void End() {
    const ULARGE_INTEGER cookie = cookie_;
    thread_state = nullptr;
    Release();  // the thread's reference
    CoRevokeInitializeSpy(cookie);
  }

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
    if (object == nullptr) return E_POINTER;
    const bool known = iid == __uuidof(IUnknown) || iid == __uuidof(IInitializeSpy);
    *object = known ? this : nullptr;
    if (!known) return E_NOINTERFACE;
    AddRef();
    return S_OK;
  }
  ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
  ULONG STDMETHODCALLTYPE Release() override {
    const ULONG left = --references_;
    if (left == 0) delete this;
    return left;
  }

  HRESULT STDMETHODCALLTYPE PreInitialize(DWORD, DWORD) override { return S_OK; }
  HRESULT STDMETHODCALLTYPE PostInitialize(HRESULT result, DWORD, DWORD) override { return result; }
  HRESULT STDMETHODCALLTYPE PreUninitialize(DWORD initializations) override {
    if (initializations == 1) End();
    return S_OK;
  }
  HRESULT STDMETHODCALLTYPE PostUninitialize(DWORD) override { return S_OK; }

 private:
  ~ThreadState() { --states; }

  ULONG references_ = 1;
  ULARGE_INTEGER cookie_{};
  ModuleStateScope scope_;
};

}  // namespace

void EnsureModuleState() {
  if (thread_state != nullptr) return;
  ComPtr<ThreadState> state = ComPtr<ThreadState>::Adopt(new ThreadState());
  state->Watch();
  thread_state = state.Detach();
}

void ReleaseModuleState() {
  if (thread_state != nullptr) thread_state->End();
}

long ModuleStates() {
  return states;
}

}  // namespace tof::com
