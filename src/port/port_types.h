/* port_types.h - the platform's basic types. */
#ifndef ZR32PORT_TYPES_H
#define ZR32PORT_TYPES_H

#include <stddef.h>
#include <stdint.h>
#include <zr32path/types.h>

#define ZR32PORTAPI __attribute__((visibility("default")))

typedef int BOOL;
typedef uint8_t BYTE;
typedef uint16_t WORD;
typedef uint32_t DWORD;
typedef unsigned int UINT;
typedef int32_t LONG;
typedef size_t SIZE_T;
typedef DWORD COLORREF;
typedef void *HANDLE;
typedef void *HGDIOBJ;
typedef HANDLE HGLOBAL;
typedef struct HDC__ *HDC;
typedef struct HWND__ *HWND;
typedef struct HPEN__ *HPEN;
typedef struct HBRUSH__ *HBRUSH;
typedef struct HRGN__ *HRGN;
typedef struct HBITMAP__ *HBITMAP;
typedef struct HFONT__ *HFONT;
typedef struct tagRECT RECT;
typedef struct tagPOINT POINT;

#ifndef TRUE
#define TRUE 1
#define FALSE 0
#endif

#endif
