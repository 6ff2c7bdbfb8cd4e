/* plain_scan.h - the scan converter in its plainest form, as a yardstick for the fast one.
 *
 * A list of crossings on the heap for each sample row, edges walked anew for each band of 50 pixel rows, spans added
 * pixel by pixel. It shares nothing with the library but the records and FixToDb.
 */
#ifndef ZR32_TESTS_PLAIN_SCAN_H
#define ZR32_TESTS_PLAIN_SCAN_H

#include <zr32path.h>

namespace zr32test {

/* Fills the join chain into a buffer made by ZrPathBufAlloc. */
void PlainBandFill(const PATHREC *path, PATHBUF buf, bool evenOdd, int aaMode, double zoom, int left, int top);

} // namespace zr32test

#endif
