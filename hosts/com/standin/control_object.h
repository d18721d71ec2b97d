// The class vorninstrument.InstrumentControl.
#pragma once

#include <vorninstrumentcontrol.h>

#include <memory>

#include "hosts/com/server/dual_object.h"
#include "hosts/com/standin/process_instrument.h"

namespace tof::com {

class ControlObject final : public DualObject<ControlObject, IInstrumentControl> {
 public:
  HRESULT STDMETHODCALLTYPE LoadDescription(BSTR path, BSTR data_folder) override;
  HRESULT STDMETHODCALLTYPE OverrideSetting(BSTR text) override;
  HRESULT STDMETHODCALLTYPE OverrideFlag(BSTR text) override;
  HRESULT STDMETHODCALLTYPE OverrideSetpoint(BSTR text) override;
  HRESULT STDMETHODCALLTYPE OverrideMasses(VARIANT calibrants) override;
  HRESULT STDMETHODCALLTYPE get_BaseFolder(BSTR* folder) override;
  HRESULT STDMETHODCALLTYPE put_BaseFolder(BSTR folder) override;
  HRESULT STDMETHODCALLTYPE get_Seed(LONG* seed) override;
  HRESULT STDMETHODCALLTYPE put_Seed(LONG seed) override;
  HRESULT STDMETHODCALLTYPE get_RealTime(VARIANT_BOOL* real_time) override;
  HRESULT STDMETHODCALLTYPE put_RealTime(VARIANT_BOOL real_time) override;
  HRESULT STDMETHODCALLTYPE get_Name(BSTR* name) override;
  HRESULT STDMETHODCALLTYPE get_Masses(VARIANT* masses) override;
  HRESULT STDMETHODCALLTYPE AsVariants(VARIANT numbers, VARIANT* variants) override;

  HRESULT STDMETHODCALLTYPE RequestAbort() override;
  HRESULT STDMETHODCALLTYPE WithdrawAbort() override;
  HRESULT STDMETHODCALLTYPE AbortAfter(double seconds) override;
  HRESULT STDMETHODCALLTYPE MakeFitsBad(LONG count) override;
  HRESULT STDMETHODCALLTYPE FailCall(BSTR operation, LONG nth) override;
  HRESULT STDMETHODCALLTYPE WithdrawFailures() override;

  HRESULT STDMETHODCALLTYPE get_Spectra(LONG* count) override;
  HRESULT STDMETHODCALLTYPE get_SetpointWrites(LONG* count) override;
  HRESULT STDMETHODCALLTYPE get_SetpointReads(LONG* count) override;
  HRESULT STDMETHODCALLTYPE Calls(BSTR operation, LONG* count) override;
  HRESULT STDMETHODCALLTYPE get_InstrumentSeconds(double* seconds) override;
  HRESULT STDMETHODCALLTYPE get_Files(VARIANT* paths) override;
  HRESULT STDMETHODCALLTYPE TrueError(BSTR figure, VARIANT expected_masses, VARIANT times_ns,
                                      LONG spectra_per_mass, VARIANT_BOOL aic, VARIANT abundances,
                                      double* error_ppm) override;

  HRESULT STDMETHODCALLTYPE SearchTargetAbundance(float minimum, float maximum,
                                                  float speed_up_factor, float precision_volts,
                                                  float low_volts, float high_volts,
                                                  float window_start_ns, float window_end_ns,
                                                  float* volts) override;
  HRESULT STDMETHODCALLTYPE get_SearchError(BSTR* text) override;

 private:
  // A method of this class, see Answer.
  template <class Body>
  HRESULT Do(Body&& body) noexcept;

  standin::StandInInstrument& Instrument() { return process_->Present().Instrument(); }

  std::shared_ptr<ProcessInstrument> process_ = UseInstrumentOfProcess();
};

}  // namespace tof::com
