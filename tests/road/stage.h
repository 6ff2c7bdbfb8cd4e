/* stage.h - what a call of any export can meet: a document with a selection and an undo list, and things of the
 * caller's; what a call gives; and both as text, for comparison.
 */
#ifndef ZR32_TESTS_STAGE_H
#define ZR32_TESTS_STAGE_H

#include "render3d/scene.h"
#include "support/document.h"
#include "support/pendriver.h"
#include "support/system.h"
#include "support/textdc.h"

#include <memory>

namespace zr32test {

constexpr int32_t stageKey = 7;

/* A box, a circle and a box, drawn and all selected, and an undo list of one step. What a row adds is freed too. */
struct STAGE : DOCUMENT {
    PATHREC *box;
    PATHREC *circle;
    PATHREC *last;
    PATHREC *own = nullptr;           /* a chain of the caller's */
    PATHTBL *otherTable = nullptr;    /* a second table */
    COORDSTRUCT *otherView = nullptr; /* a view that is tied to no table yet */
    void *stream = nullptr;           /* a flattened chain */
    std::vector<PATHBUF> bufs;
    std::unique_ptr<PENDRIVER> pen;
    SCENE solid = {};
    TEXTDC text = {};

    STAGE();
    ~STAGE();
    STAGE(const STAGE &) = delete;
    STAGE &operator=(const STAGE &) = delete;

    /* A new buffer of the stage's. */
    PATHBUF Buf(int32_t bits, int32_t width, int32_t height);
};

/* What a call gives to its caller, who frees it. */
struct GIVEN {
    int32_t result = 0;
    PATHREC *path = nullptr;
    PATHTBL *table = nullptr;
    COORDSTRUCT *view = nullptr;
    uint32_t size = 0; /* of the stream */
    void *stream = nullptr;
    tagRECT *rects = nullptr; /* of the masks; the result counts them */
    PATHBUF *masks = nullptr;
    PATHBUF bufs[2] = {};

    GIVEN() = default;
    ~GIVEN();
    GIVEN(const GIVEN &) = delete;
    GIVEN &operator=(const GIVEN &) = delete;

    bool Nothing() const;
};

/* Everything on the stage, without addresses. */
std::string TextOf(const STAGE &stage);

std::string TextOf(const GIVEN &given);

} // namespace zr32test

#endif
