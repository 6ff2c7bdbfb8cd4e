/* zr32comm.h - the support library's two services that Zr32path calls.
 *
 * The library built here is a stand-in: it keeps the last report for whoever asks and polls a flag that a host sets.
 * An editor puts a library of its own with the same two first functions in its place.
 */
#ifndef ZR32COMM_H
#define ZR32COMM_H

#include <stdint.h>

#if defined(_WIN32)
#if defined(ZR32COMM_BUILD)
#define ZR32COMMAPI __declspec(dllexport)
#else
#define ZR32COMMAPI __declspec(dllimport)
#endif
#else
#define ZR32COMMAPI __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* The six words of an error report: reserved (0), code, reserved (0), group (2600 for Zr32path), sub-code, index. */
typedef struct ZR32COMMERROR {
    int32_t words[6];
} ZR32COMMERROR;

/* Takes an error report. */
ZR32COMMAPI void zr32SetDLLErrInfo(int32_t reserved1, int32_t code, int32_t reserved2, int32_t group, int32_t subCode,
                                   int32_t index);

/* Not 0 when the user has asked for a long pass to stop. */
ZR32COMMAPI int32_t zr32IsEscPressed(void);

/* Stand-in only: the last report (all zeros before the first) and how many have come since the last reset. */
ZR32COMMAPI int32_t zr32CommLastError(ZR32COMMERROR *error);
ZR32COMMAPI void zr32CommReset(void);

/* Stand-in only: zr32IsEscPressed answers 0 for the next polls times and 1 from then on; negative: 0 always. */
ZR32COMMAPI void zr32CommEscAfter(int32_t polls);

#ifdef __cplusplus
}
#endif

#endif
