/* options.h - what the command line of bevel asks for. */
#ifndef BEVEL_OPTIONS_H
#define BEVEL_OPTIONS_H

#include <string>

namespace bevel {

enum BUILDER { BUILD_SWEPT, BUILD_EXACT, BUILD_PRIMITIVE, BUILD_ENVELOPE };
enum SIDE { SIDE_INSIDE, SIDE_OUTSIDE, SIDE_BOTH };

struct OPTIONS {
    std::string text = "Zr32path";
    std::string font = "DejaVu Sans";
    std::string out = "build/demo";
    int size = 220;      /* pixels of a line of text */
    double width = 14;   /* reach of the bevel in pixels */
    int profile = 0;     /* 0, 1, 100 to 104 */
    bool invert = false; /* inside out */
    int scale = 0;       /* depth of the surface, 0 for none */
    double light[3] = {-0.5773502, -0.5773502, 0.5773502};
    BUILDER builder = BUILD_SWEPT;
    SIDE side = SIDE_INSIDE;
    bool evenOdd = false; /* exact builder */
    bool rounded = false; /* exact builder: no mitres */
    bool metal = false;
    int lights = 1; /* 1 to 4 */
    bool spot = false;
    int bump = 0;        /* percent */
    bool mirror = false; /* reflect an environment before shading */
    int face = 0;        /* percent of transparency facing the viewer */
    int edge = 0;        /* and edge-on */
    bool turned = false;
    double turn[3] = {0, 0, 0}; /* degrees about x, y, z */
    int glass = 1;
    bool gallery = false;
};

/* Reads the command line. Returns -1 to go on, else the exit status: 0 after --help, 2 for a word that is off, with a
 * message on the error stream. */
int OptionsRead(int argc, char **argv, OPTIONS *options);

} // namespace bevel

#endif
