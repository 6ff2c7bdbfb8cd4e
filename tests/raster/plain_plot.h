/* plain_plot.h - the outline plotters in their plainest form, for comparison.
 *
 * Lines, curves and ellipses of one record, sample by sample, with nothing shared with the library but the records and
 * FixToDb. Slow and short, so that it can be checked by reading.
 */
#ifndef ZR32_TESTS_PLAIN_PLOT_H
#define ZR32_TESTS_PLAIN_PLOT_H

#include <zr32path.h>

namespace zr32test {

/* Both buffers have 8 bits and the same size. */
void PlainPlot(const PATHREC *path, double zoom, int left, int top, bool smooth, PATHBUF mask, PATHBUF directions);

} // namespace zr32test

#endif
