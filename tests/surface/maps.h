/* maps.h - what the tests of surface maps share: chains with their tail record, masks, whole calls, comparison. */
#ifndef ZR32_TESTS_MAPS_H
#define ZR32_TESTS_MAPS_H

#include "support/shapes.h"
#include "surface/plain_sweep.h"
#include "surface/surface.h"

#include <random>
#include <vector>

namespace zr32test {

/* Links the records into one table chain and one join chain and puts a tail behind them that no sweep visits: a far
 * smaller record inside the first's rectangle, in the table chain only. Gives the head. */
PATHREC *MakeChain(const std::vector<PATHREC *> &records);

/* Frees a table chain. */
void FreeChain(PATHREC *head);

/* The 8-bit mask of the shape, inflate pixels larger on each side. */
PATHBUF MakeMask(PATHREC *head, int inflate = 0, ZRFIXED zoom = 0x10000);

/* What a call of ZrPathVMap is given; all else is 0. */
struct MAPCALL {
    PATHREC *path = nullptr;
    PATHBUF mask = nullptr;
    int32_t useMask = 1;
    int32_t outset = 0;
    double width = 5.0;
    ZRFIXED zoom = 0x10000;
    int32_t wantDist = 1;
    int32_t wantOffset = 1;
    int32_t envelopeMode = 0;
    int32_t fixedHeight = 0;
    int32_t evenOdd = 0;
    int32_t noMitre = 0;
    int32_t floatVectors = 0;
    VMAPPROGRESS *progress = nullptr;

    int32_t result = -1;
    PATHBUF dist = nullptr;
    PATHBUF offset = nullptr;
};

void Call(MAPCALL *call);
void FreePlanes(MAPCALL *call);

float DistAt(PATHBUF dist, int x, int y);
SURFVEC16 VectorAt(PATHBUF offset, int x, int y);

/* Pixels of a plane that are not zero. */
int CountWritten(PATHBUF plane);

/* The first pixel in which the planes differ from the plain map, as text; empty when there is none. */
std::string Difference(PATHBUF dist, PATHBUF offset, const PLAINMAP &map);

PLAINMAP EmptyMap(PATHBUF plane);

/* A closed record of lines and curves around a centre, from a fixed seed; axis-parallel stretches, zero-length lines,
 * cusps and reversals are among them. */
PATHREC *RandomShape(uint32_t seed, double cx, double cy, double radius);

/* A callback that counts its calls and answers 0 at one of them. */
struct COUNTER {
    int stopAt = 0; /* the call of code 2, counted from 1, that is answered 0; 0: none */
    int calls = 0;  /* of code 2 */
    int begins = 0;
    int ends = 0;
    std::vector<int> values;
    std::vector<int32_t> codes;
};

VMAPPROGRESS ProgressOf(COUNTER *counter);

} // namespace zr32test

#endif
