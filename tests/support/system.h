/* system.h - what tests ask of the platform beside the services that the library uses: the one place for what differs
 * between the port, whose state a test reads and sets, and Windows. */
#ifndef ZR32_TESTS_SYSTEM_H
#define ZR32_TESTS_SYSTEM_H

#include "platform/platform.h"

#include <string>
#include <vector>

namespace zr32test {

/* Device contexts, pens, brushes, bitmaps, fonts and regions that exist now. */
int32_t ObjectCount();

/* The code page of byte text while this lives. That of Windows cannot be changed from inside: there it is found or it
 * is not, and ctest runs the tests that need one in it. */
struct CODEPAGE {
    bool found;

    explicit CODEPAGE(UINT page);
    ~CODEPAGE();
    CODEPAGE(const CODEPAGE &) = delete;
    CODEPAGE &operator=(const CODEPAGE &) = delete;
};

/* Why a test that finds no code page of its own is skipped. */
constexpr const char *otherCodePage = "Windows runs in another code page; ctest runs this test in its own as well";

/* What goes to the debugger while this lives, in the order in which it went. */
struct DEBUGTEXT {
    std::vector<std::string> texts;

    DEBUGTEXT();
    ~DEBUGTEXT();
    DEBUGTEXT(const DEBUGTEXT &) = delete;
    DEBUGTEXT &operator=(const DEBUGTEXT &) = delete;
};

/* What GetDC gives from now on: null for null; else that context or, on Windows, the system's own. */
void SetWindowContext(HDC dc);

/* Calls of GetDC that gave a context, less those of ReleaseDC. */
int32_t WindowContextsOut();

/* Calls of MessageBeep so far. */
int32_t BeepCount();

} // namespace zr32test

#endif
