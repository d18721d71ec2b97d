// The objects of the mass-time library on a tape.
#pragma once

#include <memory>
#include <utility>

#include "component/calibrator/mass_time_library.h"
#include "hosts/recording/taped_object.h"

namespace tof::recording {

class TapedMassCalCoefficients : public MassCalCoefficients {
 public:
  TapedMassCalCoefficients(Tape& tape, ObjectNumber number,
                           std::shared_ptr<MassCalCoefficients> inner)
      : object_(tape, number), inner_(std::move(inner)) {}

  double GetBinWidth() override;
  CoefficientRecord GetCoefficientRecord() override;
  double TimeToMass(double time_ns) override;
  double MassToTime(double mass) override;
  void Calibrate(const BoundedArray<double>& masses, const BoundedArray<double>& times_ns) override;
  CalInfo GetCalInfo() override;
  void SetCalInfo(const CalInfo& info) override;

  ObjectNumber number() const { return object_.number(); }
  const std::shared_ptr<MassCalCoefficients>& inner() const { return inner_; }

 private:
  TapedObject object_;
  std::shared_ptr<MassCalCoefficients> inner_;
};

class TapedPeakList : public PeakList {
 public:
  TapedPeakList(Tape& tape, ObjectNumber number, std::shared_ptr<PeakList> inner)
      : object_(tape, number), inner_(std::move(inner)) {}

  void Initialize() override;
  std::int32_t Count() override;
  PeakRecord GetRecord(std::int32_t index) override;
  void Add(const PeakRecord& record) override;
  void SetRecord(std::int32_t index, const PeakRecord& record) override;
  void PreparePeakList(std::int32_t first, std::int32_t second) override;

  ObjectNumber number() const { return object_.number(); }
  const std::shared_ptr<PeakList>& inner() const { return inner_; }

 private:
  TapedObject object_;
  std::shared_ptr<PeakList> inner_;
};

// The number of an object that the calibrator hands on; none for none.
template <class Taped, class Interface>
ObjectNumber NumberOf(const std::shared_ptr<Interface>& object) {
  const auto taped = std::dynamic_pointer_cast<Taped>(object);
  return taped ? taped->number() : ObjectNumber{};
}

// The real object behind it, which is what the outside gave and wants back.
template <class Taped, class Interface>
std::shared_ptr<Interface> InnerOf(const std::shared_ptr<Interface>& object) {
  const auto taped = std::dynamic_pointer_cast<Taped>(object);
  return taped ? taped->inner() : object;
}

}  // namespace tof::recording
