/* consumer.cpp - an installed library used from C++, its headers before the platform's own. Exit status 0 when a path
 * is flattened and read back. */
#include <zr32path.h>
#if defined(_WIN32)
#include <windows.h>
#else
#include <zr32port.h>
#endif
#include <cstdio>

int main()
{
    ZrPathInit();
    const R2VPOINT triangle[3] = {{0, 0, 2, 0}, {40, 0, 2, 0}, {20, 30, 2, 0}};
    PATHREC *path = ZrPathR2VToZrPath(3, triangle);
    uint32_t size = 0;
    void *stream = nullptr;
    PATHREC *copy = nullptr;
    if (!ZrPathFlatten(path, &size, &stream) || !ZrPathUnFlatten(&stream, &copy)) return 1;
    std::printf("consumer: %u bytes, %u nodes\n", static_cast<unsigned>(size), static_cast<unsigned>(copy->nodeCount));
    const bool same = copy->nodeCount == path->nodeCount;
    GlobalFree(stream);
    ZrPathDeletePtr(copy, 0);
    ZrPathDeletePtr(path, 0);
    return same ? 0 : 1;
}
