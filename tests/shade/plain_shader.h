/* plain_shader.h - the shaders once more, step by step as an editor's manual would tell them: the yardstick. */
#ifndef ZR32_TESTS_PLAIN_SHADER_H
#define ZR32_TESTS_PLAIN_SHADER_H

#include "shade/shader.h"

namespace zr32test {

/* Shades job's buffers in place by the plain form; the light state must stand as the fast form found it. */
void PlainShade(zr32::MODEL model, const zr32::SHADEJOB &job);

} // namespace zr32test

#endif
