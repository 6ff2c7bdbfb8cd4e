/* png_windows.cpp - writes PNG files through the system's GDI+ encoder. */
#include "common/png.h"

#include "platform/platform.h"
#include <objidl.h>

#include <algorithm>
#include <gdiplus.h>
#include <string>
#include <vector>

namespace {

/* {557CF406-1A04-11D3-9A73-0000F81EF32E}, the PNG encoder. */
const CLSID pngEncoder = {0x557CF406, 0x1A04, 0x11D3, {0x9A, 0x73, 0x00, 0x00, 0xF8, 0x1E, 0xF3, 0x2E}};

/* Blue, green, red, alpha: the order of the encoder's 32-bit pixels. */
std::vector<uint8_t> ToBgra(int width, int height, int channels, const uint8_t *rows)
{
    std::vector<uint8_t> pixels(static_cast<size_t>(width) * static_cast<size_t>(height) * 4);
    for (size_t i = 0; i < pixels.size(); i += 4, rows += channels) {
        const bool grey = channels == 1;
        pixels[i] = grey ? rows[0] : rows[2];
        pixels[i + 1] = grey ? rows[0] : rows[1];
        pixels[i + 2] = rows[0];
        pixels[i + 3] = channels == 4 ? rows[3] : uint8_t{255};
    }
    return pixels;
}

} // namespace

int WritePng(const char *file, int width, int height, int channels, const uint8_t *rows)
{
    ULONG_PTR token = 0;
    Gdiplus::GdiplusStartupInput input;
    if (Gdiplus::GdiplusStartup(&token, &input, nullptr) != Gdiplus::Ok) return 0;
    std::vector<uint8_t> pixels = ToBgra(width, height, channels, rows);
    int written = 0;
    {
        Gdiplus::Bitmap bitmap(width, height, width * 4, PixelFormat32bppARGB, pixels.data());
        std::wstring name(MultiByteToWideChar(CP_ACP, 0, file, -1, nullptr, 0) + size_t{0}, L'\0');
        MultiByteToWideChar(CP_ACP, 0, file, -1, name.data(), static_cast<int>(name.size()));
        written = bitmap.Save(name.c_str(), &pngEncoder, nullptr) == Gdiplus::Ok;
    }
    Gdiplus::GdiplusShutdown(token);
    return written;
}
