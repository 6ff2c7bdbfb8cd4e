/* types.h - numbers, points and platform names that every subsystem of the interface shares.
 *
 * ZRFIXED is 16.16 fixed point: a signed 32-bit number with 16 fraction bits, in image pixels unless said otherwise.
 * The Windows headers have records of their own called FIXED and POINTFX with the same bits, so the prototypes here
 * use ZRFIXED and ZRPOINTFX; where the platform has no such names, FIXED and POINTFX stand for them too.
 * Elsewhere than on Windows the few platform records that the interface takes (rectangle, point) are defined here.
 */
#ifndef ZR32PATH_TYPES_H
#define ZR32PATH_TYPES_H

#include <stddef.h>
#include <stdint.h>

#if defined(_WIN32)
#if defined(ZR32PATH_BUILD)
#define ZRPATHAPI __declspec(dllexport)
#elif defined(ZR32PATH_STATIC)
#define ZRPATHAPI
#else
#define ZRPATHAPI __declspec(dllimport)
#endif
#else
#define ZRPATHAPI __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
extern "C" {
#endif

typedef int32_t ZRFIXED;

/* A pair of fixed-point numbers, passed by value as one 64-bit word, x in the low half. */
typedef struct ZRPOINTFX {
    ZRFIXED x;
    ZRFIXED y;
} ZRPOINTFX;

/* A rectangle of four signed 32-bit sides; right and bottom are exclusive unless a function says otherwise.
 * struct tagRECT and struct tagPOINT are the platform's records; HDC__ is what its device context handle points to. */
#if !defined(_WIN32)
struct tagRECT {
    int32_t left;
    int32_t top;
    int32_t right;
    int32_t bottom;
};

struct tagPOINT {
    int32_t x;
    int32_t y;
};

typedef ZRFIXED FIXED;
typedef ZRPOINTFX POINTFX;
#endif

struct tagRECT;
struct tagPOINT;
struct HDC__;

/* A device context of the platform; a null one draws nothing. */
typedef struct HDC__ *ZRHDC;

/* A point in doubles, image pixels. */
typedef struct tagPOINTDB {
    double x;
    double y;
} tagPOINTDB;

/* Top-left and bottom-right corner of a rectangle in doubles. */
typedef struct ZRRECTDB {
    tagPOINTDB topLeft;
    tagPOINTDB bottomRight;
} ZRRECTDB;

typedef struct tagPOINT3D {
    double x;
    double y;
    double z;
} tagPOINT3D;

/* Nine doubles, three rows of three: m[0..2] is the first row. */
typedef struct tagMATRIX3D {
    double m[9];
} tagMATRIX3D;

/* The handle of a raster buffer: the address of its first pixel. Three 32-bit words stand right in front of it:
 * depth code, width, height. Rows follow each other without padding, top row first. */
typedef uint8_t *PATHBUF;

#ifdef __cplusplus
}
#endif

#endif
