#include "tests/com/com_world.h"

namespace tof::com {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;

class Events : public ComWorld {
 protected:
  void SetUp() override {
    RegisterInstrument();
    calibrator = Created();
    sink = Connect(*calibrator.get());
  }

  void TearDown() override {
    Disconnect(*calibrator.get());
    calibrator = {};
    sink = {};
    ComWorld::TearDown();
  }

  // A calibration that is meant to fail: no error of the call, no coefficients.
  void CalibrateInVain() {
    ComPtr<IMassCalCoefficients> coefficients;
    EXPECT_EQ(Calibrate(*calibrator.get(), coefficients), S_OK);
    EXPECT_FALSE(coefficients);
  }

  ComPtr<_TofCalibrator> calibrator;
  ComPtr<Sink> sink;
};

TEST_F(Events, AreNotRaisedByASuccess) {
  ComPtr<IMassCalCoefficients> coefficients;
  EXPECT_EQ(Calibrate(*calibrator.get(), coefficients), S_OK);
  EXPECT_THAT(sink->events, IsEmpty());
}

TEST_F(Events, TellOfAUsersAbort) {
  instrument.abort_requested = -1;
  CalibrateInVain();
  EXPECT_THAT(sink->events, ElementsAre(Pair(1, "User aborted")));
}

TEST_F(Events, TellOfAnInjectedError) {
  instrument.flags["TriggerError_caliblib_calibrateTOFMassAxis"] = "Yes";
  CalibrateInVain();
  EXPECT_THAT(sink->events, ElementsAre(Pair(-666, "Debug Error Raised")));
}

TEST_F(Events, TellOfTwoBadFits) {
  instrument.bad_fits = {0.5, 0.5};
  CalibrateInVain();
  EXPECT_THAT(sink->events,
              ElementsAre(Pair(-1, "Calibration failed: bad coefficients returned.")));
}

TEST_F(Events, TellOfACollaboratorThatFails) {
  journal.fail_operation = "MassCalCoefficients.Calibrate";
  CalibrateInVain();
  EXPECT_THAT(sink->events, ElementsAre(Pair(fakes::kInjectedNumber, fakes::kInjectedDescription)));
}

TEST_F(Events, DoNoHarmWhenASinkFails) {
  for (const HRESULT answer : {DISP_E_EXCEPTION, E_FAIL, DISP_E_MEMBERNOTFOUND}) {
    sink->answer = answer;
    instrument.abort_requested = -1;
    CalibrateInVain();
    instrument.abort_requested = 0;
  }
  EXPECT_EQ(sink->events.size(), 3U);
  ComPtr<IMassCalCoefficients> coefficients;
  EXPECT_EQ(Calibrate(*calibrator.get(), coefficients), S_OK);
  EXPECT_TRUE(coefficients);
}

TEST_F(Events, ReachEverySinkUntilItDisconnects) {
  const auto container = calibrator.As<IConnectionPointContainer>();
  ComPtr<IConnectionPoint> point;
  ASSERT_EQ(container->FindConnectionPoint(__uuidof(__TofCalibrator), point.Out()), S_OK);
  const auto second = NewObject<Sink>();
  DWORD cookie = 0;
  ASSERT_EQ(point->Advise(second.get(), &cookie), S_OK);
  // The second disconnects itself while it is called.
  second->on_event = [&] { EXPECT_EQ(point->Unadvise(cookie), S_OK); };
  instrument.abort_requested = -1;
  CalibrateInVain();
  CalibrateInVain();
  EXPECT_EQ(sink->events.size(), 2U);
  EXPECT_EQ(second->events.size(), 1U);
  EXPECT_EQ(point->Unadvise(cookie), CONNECT_E_NOCONNECTION);
}

TEST_F(Events, HaveOneConnectionPointThatListsItsConnections) {
  const auto container = calibrator.As<IConnectionPointContainer>();
  ComPtr<IEnumConnectionPoints> points;
  ASSERT_EQ(container->EnumConnectionPoints(points.Out()), S_OK);
  ComPtr<IConnectionPoint> point;
  ULONG fetched = 0;
  ASSERT_EQ(points->Next(1, point.Out(), &fetched), S_OK);
  IID events{};
  EXPECT_EQ(point->GetConnectionInterface(&events), S_OK);
  EXPECT_EQ(events, __uuidof(__TofCalibrator));
  ComPtr<IConnectionPoint> none;
  EXPECT_EQ(points->Next(1, none.Out(), &fetched), S_FALSE);
  EXPECT_EQ(fetched, 0U);

  ComPtr<IEnumConnections> connections;
  ASSERT_EQ(point->EnumConnections(connections.Out()), S_OK);
  CONNECTDATA data[2] = {};
  EXPECT_EQ(connections->Next(2, data, &fetched), S_FALSE);
  ASSERT_EQ(fetched, 1U);
  EXPECT_EQ(data[0].pUnk, static_cast<IUnknown*>(sink.get()));
  data[0].pUnk->Release();

  EXPECT_EQ(container->FindConnectionPoint(IID_IDispatch, none.Out()), CONNECT_E_NOCONNECTION);
  DWORD cookie = 0;
  EXPECT_EQ(point->Advise(nullptr, &cookie), E_POINTER);
}

}  // namespace
}  // namespace tof::com
