/* system.cpp - see system.h. */
#include "support/system.h"

namespace zr32test {

#if defined(_WIN32)

namespace {

struct {
    bool noContext;
    int32_t contextsOut;
    int32_t beeps;
} windowState;

struct {
    DEBUGTEXT *text;
    void *handler;
} listener;

/* What a debugger would get comes as an exception first. */
LONG CALLBACK Listen(EXCEPTION_POINTERS *pointers)
{
    constexpr DWORD printed = 0x40010006;
    const EXCEPTION_RECORD &record = *pointers->ExceptionRecord;
    if (record.ExceptionCode == printed && record.NumberParameters >= 2)
        listener.text->texts.emplace_back(reinterpret_cast<const char *>(record.ExceptionInformation[1]));
    return EXCEPTION_CONTINUE_SEARCH;
}

template <class FUNCTION> FUNCTION *Own(const char *name)
{
    return reinterpret_cast<FUNCTION *>(reinterpret_cast<void *>(GetProcAddress(GetModuleHandleA("user32.dll"), name)));
}

HDC WINAPI CountedGetDC(HWND window)
{
    const HDC dc = windowState.noContext ? nullptr : Own<decltype(GetDC)>("GetDC")(window);
    windowState.contextsOut += dc != nullptr;
    return dc;
}

int WINAPI CountedReleaseDC(HWND window, HDC dc)
{
    windowState.contextsOut -= dc != nullptr;
    return Own<decltype(ReleaseDC)>("ReleaseDC")(window, dc);
}

BOOL WINAPI CountedMessageBeep(UINT type)
{
    windowState.beeps++;
    return Own<decltype(MessageBeep)>("MessageBeep")(type);
}

} // namespace

/* A call of an imported function goes through a pointer of this name, which the import library provides only where
 * nobody else does: here the tests do. */
extern "C" {
extern decltype(&GetDC) countedGetDC asm("__imp_GetDC");
extern decltype(&ReleaseDC) countedReleaseDC asm("__imp_ReleaseDC");
extern decltype(&MessageBeep) countedMessageBeep asm("__imp_MessageBeep");
decltype(&GetDC) countedGetDC = CountedGetDC;
decltype(&ReleaseDC) countedReleaseDC = CountedReleaseDC;
decltype(&MessageBeep) countedMessageBeep = CountedMessageBeep;
}

int32_t ObjectCount()
{
    if (const DWORD counted = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS)) return static_cast<int32_t>(counted);
    /* A system that does not count them knows each by its low word. */
    int32_t count = 0;
    for (uintptr_t object = 1; object < 0x10000; object++)
        count += GetObjectType(reinterpret_cast<HGDIOBJ>(object)) != 0;
    return count;
}

CODEPAGE::CODEPAGE(UINT page) : found(GetACP() == page) {}

CODEPAGE::~CODEPAGE() = default;

DEBUGTEXT::DEBUGTEXT()
{
    listener = {this, AddVectoredExceptionHandler(1, Listen)};
}

DEBUGTEXT::~DEBUGTEXT()
{
    RemoveVectoredExceptionHandler(listener.handler);
}

void SetWindowContext(HDC dc)
{
    windowState.noContext = dc == nullptr;
}

int32_t WindowContextsOut()
{
    return windowState.contextsOut;
}

int32_t BeepCount()
{
    return windowState.beeps;
}

#else

int32_t ObjectCount()
{
    return PortObjectCount();
}

CODEPAGE::CODEPAGE(UINT page) : found(true)
{
    PortSetCodePage(page);
}

CODEPAGE::~CODEPAGE()
{
    PortSetCodePage(1252);
}

DEBUGTEXT::DEBUGTEXT()
{
    PortSetDebugSink([](void *user, const char *text) { static_cast<DEBUGTEXT *>(user)->texts.emplace_back(text); },
                     this);
}

DEBUGTEXT::~DEBUGTEXT()
{
    PortSetDebugSink(nullptr, nullptr);
}

void SetWindowContext(HDC dc)
{
    PortWindowState()->dc = dc;
}

int32_t WindowContextsOut()
{
    return PortWindowState()->dcsOut;
}

int32_t BeepCount()
{
    return PortWindowState()->beeps;
}

#endif

} // namespace zr32test
