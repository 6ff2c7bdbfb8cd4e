/* recorder.h - a device context that writes down the calls made on it, as words and numbers: "rect l t r b",
 * "move x y", "line x y", "bezier x y x y x y", "pen style color", "brush null", "brush color", "rop n", "clip l t r
 * b".
 *
 * The port has a context that hands every call to its host; on Windows the system's own metafiles do the same.
 */
#ifndef ZR32_TESTS_RECORDER_H
#define ZR32_TESTS_RECORDER_H

#include "platform/platform.h"

#include <string>
#include <vector>

namespace zr32test {

using CALLS = std::vector<std::string>;

struct RECORDER {
    HDC dc = nullptr; /* a new one after each Take: a metafile is read when it is closed */

    RECORDER();
    ~RECORDER();
    RECORDER(const RECORDER &) = delete;
    RECORDER &operator=(const RECORDER &) = delete;

    /* The calls that begin with the word, and all of them forgotten. */
    CALLS Take(const std::string &word = "");

#if !defined(_WIN32)
  private:
    CALLS told;
#endif
};

} // namespace zr32test

#endif
