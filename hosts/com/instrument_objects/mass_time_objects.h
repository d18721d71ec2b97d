// A mass-time library written in C++ as automation objects.
#pragma once

#include <vornmasstime.h>

#include <memory>

#include "component/calibrator/mass_time_library.h"
#include "hosts/com/server/dual_object.h"

namespace tof::com {

class CoefficientsObject final : public DualObject<CoefficientsObject, IMassCalCoefficients> {
 public:
  explicit CoefficientsObject(std::shared_ptr<MassCalCoefficients> coefficients)
      : coefficients_(std::move(coefficients)) {}

  HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;

  HRESULT STDMETHODCALLTYPE GetBinWidth(double* width_ns) override;
  HRESULT STDMETHODCALLTYPE GetCoefficientRecord(VARIANT* record) override;
  HRESULT STDMETHODCALLTYPE TimeToMass(double time_ns, double* mass) override;
  HRESULT STDMETHODCALLTYPE MassToTime(double mass, double* time_ns) override;
  HRESULT STDMETHODCALLTYPE Calibrate(VARIANT masses, VARIANT times_ns) override;
  HRESULT STDMETHODCALLTYPE GetCalInfo(VARIANT* info) override;
  HRESULT STDMETHODCALLTYPE SetCalInfo(VARIANT info) override;

  const std::shared_ptr<MassCalCoefficients>& Inner() const { return coefficients_; }

 private:
  std::shared_ptr<MassCalCoefficients> coefficients_;
};

class PeakListObject final : public DualObject<PeakListObject, IPeakList> {
 public:
  explicit PeakListObject(std::shared_ptr<PeakList> list) : list_(std::move(list)) {}

  HRESULT STDMETHODCALLTYPE Initialize() override;
  HRESULT STDMETHODCALLTYPE Count(LONG* count) override;
  HRESULT STDMETHODCALLTYPE GetRecord(LONG index, VARIANT* record) override;
  HRESULT STDMETHODCALLTYPE Add(VARIANT record) override;
  HRESULT STDMETHODCALLTYPE SetRecord(LONG index, VARIANT record) override;
  HRESULT STDMETHODCALLTYPE PreparePeakList(LONG first, LONG second) override;

 private:
  std::shared_ptr<PeakList> list_;
};

// For a method's result: an object of its own for each call, none for none.
IMassCalCoefficients* NewCoefficientsObject(std::shared_ptr<MassCalCoefficients> coefficients);
IPeakList* NewPeakListObject(std::shared_ptr<PeakList> list);

// What a caller passed: the C++ object behind one of this module's, else an adapter that calls the
// caller's; none for none.
std::shared_ptr<MassCalCoefficients> CoefficientsBehind(IMassCalCoefficients* object);

}  // namespace tof::com
