/* lettering.h - device contexts with a font, and small lettering for labels. */
#ifndef BEVEL_LETTERING_H
#define BEVEL_LETTERING_H

#include "picture.h"

namespace bevel {

/* A memory device context with a font of the given cell height selected; null, with a message, when the family is not
 * installed. Free it with LetteringClose. */
ZRHDC LetteringOpen(const std::string &family, int height);

void LetteringClose(ZRHDC hdc);

/* The paths of a text: the head of their chain, or null. The caller owns them. */
PATHREC *LetteringPaths(ZRHDC hdc, const std::string &text);

/* One line of text as a grey mask, in the demo's default font; empty when that font is not installed. */
PICTURE LetteringMask(const std::string &text, int height);

} // namespace bevel

#endif
