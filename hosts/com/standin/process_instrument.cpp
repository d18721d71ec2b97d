#include "hosts/com/standin/process_instrument.h"

#include <mutex>

#include "component/automation/error.h"
#include "hosts/com/automation/windows_headers.h"
#include "instruments/spectra/input_error.h"

namespace tof::com {
namespace {

// Of the process by its nature. NOLINTBEGIN(cppcoreguidelines-avoid-non-const-global-variables)
std::shared_ptr<ProcessInstrument> of_process;
std::mutex of_process_mutex;
// NOLINTEND(cppcoreguidelines-avoid-non-const-global-variables)

template <class Body>
void RaisingInputErrors(Body&& body) {
  try {
    body();
  } catch (const spectra::InputError& error) {
    throw AutomationError(static_cast<std::int32_t>(RunTimeError::kInvalidCall), error.what());
  }
}

bool IsInUse() {
  return of_process.use_count() > 1;
}

}  // namespace

ProcessInstrument::ProcessInstrument()
    : thread_(GetCurrentThreadId()), present_(std::make_unique<HostedInstrument>(choice_)) {}

void ProcessInstrument::Change(const std::function<void(InstrumentChoice&)>& change) {
  RaisingInputErrors([&] {
    InstrumentChoice changed = choice_;
    change(changed);
    present_ = std::make_unique<HostedInstrument>(changed);
    choice_ = std::move(changed);
  });
}

HostedInstrument& ProcessInstrument::PresentForUse() {
  RaisingInputErrors([&] { present_->MakeLogFolder(); });
  return *present_;
}

bool ProcessInstrument::IsOfThisThread() const {
  return thread_ == GetCurrentThreadId();
}

void ProcessInstrument::MoveToThisThread() {
  thread_ = GetCurrentThreadId();
}

std::shared_ptr<ProcessInstrument> UseInstrumentOfProcess() {
  const std::lock_guard lock(of_process_mutex);
  if (of_process == nullptr) of_process = std::make_shared<ProcessInstrument>();
  if (!of_process->IsOfThisThread()) {
    if (IsInUse()) {
      throw AutomationError(static_cast<std::int32_t>(RunTimeError::kPermissionDenied),
                            "Permission denied: the stand-in instrument of this process is in use "
                            "on another thread");
    }
    of_process->MoveToThisThread();
  }
  return of_process;
}

void EndInstrumentOfProcess() {
  const std::lock_guard lock(of_process_mutex);
  if (!IsInUse()) of_process.reset();
}

}  // namespace tof::com
