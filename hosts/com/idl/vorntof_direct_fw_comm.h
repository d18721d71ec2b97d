// The functions that the firmware communication library exports: vorntofDirectFWComm.dll.
//
// Plain C functions with the standard calling convention, exported under these names without
// decoration (name them in a .def file: a 32-bit compiler decorates them otherwise). Integers are
// 32-bit signed, floats single precision, all by value. The calibrator loads the library when a
// calibration first needs it: from the folder of vorntofcaliblib.dll, else as Windows searches for
// DLLs. It stays loaded to the end of the object that loaded it.
#pragma once

#if defined(_WIN32)
#define VORNTOF_CALL __stdcall
#else
#define VORNTOF_CALL
#endif

#ifdef __cplusplus
extern "C" {
#endif

// Declared for completeness: the calibrator calls neither.
int VORNTOF_CALL SetSetpointValue(int argument1, int argument2);
int VORNTOF_CALL ReturnInt1(int argument1);

// The value of the AIC setpoint at which the abundance of the peak in the flight-time window (ns)
// lies between target minimum and maximum. The meaning of the numbered arguments is the library's
// own; the calibrator passes 22, ..., 0.1, 20, 160, 1, ... for them. There is no way to report a
// failure: the value found is written to the setpoint as it is.
float VORNTOF_CALL BinarySearchForTargetAb(int argument1, float target_min_abundance,
                                           float target_max_abundance, float speed_up_factor,
                                           float argument5, float argument6, float argument7,
                                           int argument8, float window_start_ns,
                                           float window_end_ns);

#ifdef __cplusplus
}
#endif
