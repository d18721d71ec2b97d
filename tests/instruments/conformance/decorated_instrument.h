// An instrument of which any collaborator can be replaced by one that wraps it.
#pragma once

#include <functional>
#include <memory>
#include <tuple>
#include <utility>

#include "tests/instruments/conformance/forwarding.h"

namespace tof::conformance {

class Wrappers {
 public:
  // From now on objects of Wrapper's interface come wrapped.
  template <class Wrapper>
  void Use() {
    using Interface = typename Wrapper::Interface;
    std::get<Wrap<Interface>>(wraps_) =
        [](std::shared_ptr<Interface> inner) -> std::shared_ptr<Interface> {
      if (!inner) return nullptr;
      return std::make_shared<Wrapper>(std::move(inner));
    };
  }

  // From now on there are none.
  template <class Interface>
  void GiveNone() {
    std::get<Wrap<Interface>>(wraps_) = [](std::shared_ptr<Interface>) {
      return std::shared_ptr<Interface>();
    };
  }

  template <class Interface>
  std::shared_ptr<Interface> Wrapped(std::shared_ptr<Interface> object) const {
    const auto& wrap = std::get<Wrap<Interface>>(wraps_);
    return wrap ? wrap(std::move(object)) : object;
  }

 private:
  template <class Interface>
  using Wrap = std::function<std::shared_ptr<Interface>(std::shared_ptr<Interface>)>;

  std::tuple<Wrap<DataDictionary>, Wrap<SetpointTable>, Wrap<SpectrumDisplay>, Wrap<StatusReader>,
             Wrap<AcqController>, Wrap<MassCalCoefficients>, Wrap<PeakList>, Wrap<SpecParser>,
             Wrap<TuneFlags>, Wrap<CalibSettings>, Wrap<CalibLogFiles>, Wrap<TextStream>,
             Wrap<InstrumentPaths>, Wrap<FirmwareLibrary>>
      wraps_;
};

class DecoratedInstrument : public InstrumentFactory {
 public:
  explicit DecoratedInstrument(InstrumentFactory& inner) : inner_(inner) {}

  Wrappers wrappers;

  std::shared_ptr<DataDictionary> CreateDataDictionary() override {
    return wrappers.Wrapped<DataDictionary>(
        std::make_shared<Dictionary>(inner_.CreateDataDictionary(), wrappers));
  }
  std::shared_ptr<AcqController> CreateAcqController() override {
    return wrappers.Wrapped<AcqController>(
        std::make_shared<Controller>(inner_.CreateAcqController(), wrappers));
  }
  std::shared_ptr<SpecParser> CreateSpecParser() override {
    return wrappers.Wrapped(inner_.CreateSpecParser());
  }
  std::shared_ptr<CalibLogFiles> CreateCalibLogFiles() override {
    return wrappers.Wrapped<CalibLogFiles>(
        std::make_shared<LogFiles>(inner_.CreateCalibLogFiles(), wrappers));
  }
  std::shared_ptr<TuneFlags> CreateTuneFlags() override {
    return wrappers.Wrapped(inner_.CreateTuneFlags());
  }
  std::shared_ptr<CalibSettings> CreateCalibSettings() override {
    return wrappers.Wrapped(inner_.CreateCalibSettings());
  }
  std::shared_ptr<InstrumentPaths> GetInstrumentPaths() override {
    return wrappers.Wrapped(inner_.GetInstrumentPaths());
  }
  std::shared_ptr<FirmwareLibrary> GetFirmwareLibrary() override {
    return wrappers.Wrapped(inner_.GetFirmwareLibrary());
  }
  std::shared_ptr<PeakList> CreatePeakList() override {
    return wrappers.Wrapped(inner_.CreatePeakList());
  }
  std::shared_ptr<MassCalCoefficients> CreateMassCalCoefficients() override {
    return wrappers.Wrapped(inner_.CreateMassCalCoefficients());
  }

 private:
  // The objects that a collaborator hands out come wrapped too.
  class Dictionary : public ForwardingDataDictionary {
   public:
    Dictionary(std::shared_ptr<DataDictionary> inner, const Wrappers& wrappers)
        : ForwardingDataDictionary(std::move(inner)), wrappers_(wrappers) {}
    std::shared_ptr<SetpointTable> GetSetpointTable() override {
      return wrappers_.Wrapped(inner_->GetSetpointTable());
    }
    std::shared_ptr<SpectrumDisplay> GetConfigObject() override {
      return wrappers_.Wrapped(inner_->GetConfigObject());
    }
    std::shared_ptr<StatusReader> GetStatusReader() override {
      return wrappers_.Wrapped(inner_->GetStatusReader());
    }

   private:
    const Wrappers& wrappers_;
  };

  class Controller : public ForwardingAcqController {
   public:
    Controller(std::shared_ptr<AcqController> inner, const Wrappers& wrappers)
        : ForwardingAcqController(std::move(inner)), wrappers_(wrappers) {}
    std::shared_ptr<MassCalCoefficients> GetCurrentMassCalObject() override {
      return wrappers_.Wrapped(inner_->GetCurrentMassCalObject());
    }
    std::shared_ptr<MassCalCoefficients> GetDefaultCalibCoefficients() override {
      return wrappers_.Wrapped(inner_->GetDefaultCalibCoefficients());
    }

   private:
    const Wrappers& wrappers_;
  };

  class LogFiles : public ForwardingCalibLogFiles {
   public:
    LogFiles(std::shared_ptr<CalibLogFiles> inner, const Wrappers& wrappers)
        : ForwardingCalibLogFiles(std::move(inner)), wrappers_(wrappers) {}
    std::shared_ptr<TextStream> OpenLogFile(const std::string& prefix, const std::string& header,
                                            const std::string& extension) override {
      return wrappers_.Wrapped(inner_->OpenLogFile(prefix, header, extension));
    }

   private:
    const Wrappers& wrappers_;
  };

  InstrumentFactory& inner_;
};

}  // namespace tof::conformance
