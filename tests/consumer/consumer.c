/* consumer.c - an installed library used from C: a square becomes a mask. Exit status 0 when it does. */
#include <stdio.h>
#include <zr32path.h>
#if defined(_WIN32)
#include <windows.h>
#else
#include <zr32port.h>
#endif

int main(void)
{
    static const int32_t corners[5][2] = {{10, 10}, {30, 10}, {30, 30}, {10, 30}, {10, 10}};
    static const uint16_t types[5] = {6, 2, 2, 2, 3};
    PATHREC *path;
    struct tagRECT *rects;
    PATHBUF *bufs;
    int i, count, middle;

    if (ZrPathInit() != 0x30000) return 1;
    path = ZrPathCreate();
    for (i = 0; i < 5; i++) {
        ZRPOINTFX point = {corners[i][0] * 65536, corners[i][1] * 65536};
        if (!ZrPathAddPoint(&path, &point, types[i])) return 1;
    }
    ZrPathPurge(&path);
    count = ZrPathToBuf(path, 8, 0, 1, 0, 0x10000, &rects, &bufs, 0);
    if (count != 1) return 1;
    middle = ZrPathBufLineRead(&(PATHBUFLOCK){bufs[0], (uint32_t)(rects[0].right - rects[0].left)}, 15)[15];
    printf("consumer: a mask of %d x %d, %d in the middle\n", (int)(rects[0].right - rects[0].left),
           (int)(rects[0].bottom - rects[0].top), middle);
    ZrPathBufFree(bufs[0]);
    GlobalFree(rects);
    GlobalFree(bufs);
    ZrPathDeletePtr(path, 0);
    return middle == 255 ? 0 : 1;
}
