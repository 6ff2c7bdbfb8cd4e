/* zr32comm.cpp - stand-in for the editor's support library: remembers error reports, answers the stop poll.
 *
 * Plain state of the process, for one thread, like the library that calls it.
 */
#include "zr32comm.h"

namespace {

ZR32COMMERROR lastError;
int32_t errorCount;
int32_t escAfter = -1;

} // namespace

extern "C" {

void zr32SetDLLErrInfo(int32_t reserved1, int32_t code, int32_t reserved2, int32_t group, int32_t subCode,
                       int32_t index)
{
    lastError = {{reserved1, code, reserved2, group, subCode, index}};
    errorCount++;
}

int32_t zr32IsEscPressed(void)
{
    if (escAfter < 0) return 0;
    if (escAfter == 0) return 1;
    escAfter--;
    return 0;
}

int32_t zr32CommLastError(ZR32COMMERROR *error)
{
    if (error) *error = lastError;
    return errorCount;
}

void zr32CommReset(void)
{
    lastError = {};
    errorCount = 0;
    escAfter = -1;
}

void zr32CommEscAfter(int32_t polls)
{
    escAfter = polls;
}

} // extern "C"
