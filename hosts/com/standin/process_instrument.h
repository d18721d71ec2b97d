// The one instrument of a process, which all objects of the server share.
#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "hosts/com/standin/hosted_instrument.h"

namespace tof::com {

// The instrument and what it is made from. Input that can't be used is error 5 with the text of its
// InputError.
class ProcessInstrument {
 public:
  ProcessInstrument();

  const InstrumentChoice& Choice() const { return choice_; }

  // Makes the instrument anew from a changed choice. A change that raises has changed nothing.
  void Change(const std::function<void(InstrumentChoice&)>& change);

  HostedInstrument& Present() { return *present_; }

  // The same for a collaborator, which may write log files: their folder is there.
  HostedInstrument& PresentForUse();

  // For objects that use it from the calling thread.
  bool IsOfThisThread() const;
  void MoveToThisThread();

 private:
  unsigned long thread_;
  InstrumentChoice choice_;
  std::unique_ptr<HostedInstrument> present_;
};

// The instrument of this process, for an object that uses it as long as it keeps the reference.
// Error 70 while objects of another thread use it.
std::shared_ptr<ProcessInstrument> UseInstrumentOfProcess();

// Ends it unless it is in use.
void EndInstrumentOfProcess();

// A collaborator that counts as an object which uses the instrument.
template <class Collaborator>
std::shared_ptr<Collaborator> UsedBy(std::shared_ptr<Collaborator> collaborator,
                                     std::shared_ptr<ProcessInstrument> instrument) {
  Collaborator* const object = collaborator.get();
  return {std::make_shared<
              std::pair<std::shared_ptr<ProcessInstrument>, std::shared_ptr<Collaborator>>>(
              std::move(instrument), std::move(collaborator)),
          object};
}

}  // namespace tof::com
