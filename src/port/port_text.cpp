/* port_text.cpp - byte text in the current code page; iconv knows the pages. */
#include "port_text.h"
#include "port_codepage.h"

#include <cstring>
#include <iconv.h>

namespace {

/* The pages that can be set: which bytes lead a character of two, and what iconv calls the page. */
struct CODEPAGE {
    UINT number;
    BYTE firstLead, lastLead;   /* 0, 0: none */
    BYTE firstLead2, lastLead2; /* a second range */
    const char *name;
};

constexpr CODEPAGE pages[] = {
    {1252, 0, 0, 0, 0, "CP1252"},     {932, 0x81, 0x9F, 0xE0, 0xFC, "CP932"}, {936, 0x81, 0xFE, 0, 0, "CP936"},
    {949, 0x81, 0xFE, 0, 0, "CP949"}, {950, 0x81, 0xFE, 0, 0, "CP950"},
};

const CODEPAGE *current = &pages[0];

PORTDEBUGSINK debugSink;
void *debugUser;

const CODEPAGE *PageOf(UINT number)
{
    for (const CODEPAGE &page : pages)
        if (page.number == number) return &page;
    return nullptr;
}

} // namespace

namespace zr32port {

uint32_t CodePageToUnicode(UINT codePage, UINT character)
{
    const CODEPAGE *page = PageOf(codePage);
    if (!page || character > 0xFFFF) return 0;
    iconv_t converter = iconv_open("UTF-32LE", page->name);
    if (reinterpret_cast<intptr_t>(converter) == -1) return 0;

    char bytes[2] = {static_cast<char>(character >> 8), static_cast<char>(character & 0xFF)};
    char *in = character > 0xFF ? bytes : bytes + 1;
    size_t inLeft = character > 0xFF ? 2 : 1;
    unsigned char unicode[4] = {};
    char *out = reinterpret_cast<char *>(unicode);
    size_t outLeft = sizeof(unicode);
    const size_t result = iconv(converter, &in, &inLeft, &out, &outLeft);
    iconv_close(converter);
    if (result == static_cast<size_t>(-1) || inLeft != 0 || outLeft != 0) return 0;
    return unicode[0] | static_cast<uint32_t>(unicode[1]) << 8 | static_cast<uint32_t>(unicode[2]) << 16;
}

} // namespace zr32port

extern "C" {

int lstrlenA(const char *text)
{
    return text ? static_cast<int>(strlen(text)) : 0;
}

char *lstrcpyA(char *to, const char *text)
{
    return to && text ? static_cast<char *>(memcpy(to, text, strlen(text) + 1)) : nullptr;
}

BOOL IsDBCSLeadByte(BYTE byte)
{
    const bool first = current->firstLead != 0 && byte >= current->firstLead && byte <= current->lastLead;
    const bool second = current->firstLead2 != 0 && byte >= current->firstLead2 && byte <= current->lastLead2;
    return first || second;
}

char *CharNextA(const char *text)
{
    if (!text) return nullptr;
    char *at = const_cast<char *>(text);
    if (*at == 0) return at;
    return at + (IsDBCSLeadByte(static_cast<BYTE>(*at)) && at[1] != 0 ? 2 : 1);
}

UINT GetACP(void)
{
    return current->number;
}

void OutputDebugStringA(const char *text)
{
    if (debugSink && text) debugSink(debugUser, text);
}

BOOL PortSetCodePage(UINT codePage)
{
    const CODEPAGE *page = PageOf(codePage);
    if (page) current = page;
    return page != nullptr;
}

void PortSetDebugSink(PORTDEBUGSINK sink, void *user)
{
    debugSink = sink;
    debugUser = user;
}

} // extern "C"
