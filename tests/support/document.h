/* document.h - a table with its view and display buffer as an editor holds them, and what tests ask of both. */
#ifndef ZR32_TESTS_DOCUMENT_H
#define ZR32_TESTS_DOCUMENT_H

#include "support/shapes.h"
#include "support/views.h"

#include <string>
#include <vector>

namespace zr32test {

/* What an editor does to the group of a TESTVIEW. */
struct DOCUMENT : TESTVIEW {
    explicit DOCUMENT(int32_t width = 200, int32_t height = 200, int32_t zoom = 1, int32_t left = 0, int32_t top = 0);

    PATHREC *Active() const;
    PATHREC *Selected() const;

    /* Puts the record's chain behind the group's and returns the record. */
    PATHREC *Add(PATHREC *path);

    /* Selects exactly these, in table order. */
    void Select(const std::vector<PATHREC *> &paths);

    /* Rebuilds the display buffer. */
    void Draw();

    /* What the buffer would be after a fresh ZrPathDraw of the records as they stand. */
    std::vector<uint8_t> FreshPlane() const;

    /* The table chain. */
    std::vector<PATHREC *> Records() const;
};

/* A node as three numbers, for comparison. */
struct NODEVALUE {
    uint16_t type;
    double x;
    double y;
    bool operator==(const NODEVALUE &) const = default;
};

std::vector<NODEVALUE> NodesOf(const PATHREC *path);

/* For messages of failed comparisons. */
void PrintTo(const NODEVALUE &node, std::ostream *out);

/* Empty when the document keeps every invariant, else what it breaks: chains doubly linked and ending, table chain
 * headed by activePath, join and selected chains within the table chain, selected chain and flags agreeing,
 * selectedPath a head or null, node counts within their blocks and walkable. */
std::string BrokenInvariant(const DOCUMENT &document);

} // namespace zr32test

#endif
