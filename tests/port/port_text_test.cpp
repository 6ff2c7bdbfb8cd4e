/* port_text_test.cpp - byte text, lead bytes of each code page, diagnostic texts. */
#include "platform/platform.h"

#include <gtest/gtest.h>
#include <string>

TEST(PortText, LengthAndCopy)
{
    char to[8] = "xxxxxxx";
    EXPECT_EQ(lstrlenA("abc"), 3);
    EXPECT_EQ(lstrlenA(""), 0);
    EXPECT_EQ(lstrlenA(nullptr), 0);
    EXPECT_EQ(lstrcpyA(to, "abc"), to);
    EXPECT_STREQ(to, "abc");
    EXPECT_EQ(lstrcpyA(nullptr, "abc"), nullptr);
    EXPECT_EQ(lstrcpyA(to, nullptr), nullptr);
    EXPECT_STREQ(to, "abc");
}

TEST(PortText, LeadBytesOfEachPage)
{
    const struct {
        UINT page;
        BYTE byte;
        bool lead;
    } cases[] = {
        {1252, 0x81, false}, {1252, 0xFE, false}, {932, 0x80, false}, {932, 0x81, true},  {932, 0x9F, true},
        {932, 0xA0, false},  {932, 0xDF, false},  {932, 0xE0, true},  {932, 0xFC, true},  {932, 0xFD, false},
        {936, 0x80, false},  {936, 0x81, true},   {936, 0xFE, true},  {936, 0xFF, false}, {949, 0x81, true},
        {949, 0xFE, true},   {950, 0x81, true},   {950, 0xFE, true},  {950, 0x41, false},
    };
    for (const auto &c : cases) {
        ASSERT_TRUE(PortSetCodePage(c.page));
        EXPECT_EQ(IsDBCSLeadByte(c.byte) != 0, c.lead) << c.page << " " << int{c.byte};
    }
    PortSetCodePage(1252);
}

TEST(PortText, UnknownPageIsRefused)
{
    EXPECT_FALSE(PortSetCodePage(1));
    EXPECT_EQ(GetACP(), 1252u);
}

TEST(PortText, NextCharacterNeverPassesTheTerminator)
{
    PortSetCodePage(932);
    char text[] = "\x82\xA0z\x82";
    EXPECT_EQ(CharNextA(text), text + 2);
    EXPECT_EQ(CharNextA(text + 2), text + 3);
    EXPECT_EQ(CharNextA(text + 3), text + 4);
    EXPECT_EQ(CharNextA(text + 4), text + 4);
    PortSetCodePage(1252);
    EXPECT_EQ(CharNextA(text), text + 1);
    EXPECT_EQ(CharNextA(nullptr), nullptr);
}

TEST(PortText, DiagnosticTextGoesToTheSink)
{
    std::string got;
    PortSetDebugSink([](void *user, const char *text) { *static_cast<std::string *>(user) += text; }, &got);
    OutputDebugStringA("one\n");
    OutputDebugStringA(nullptr);
    PortSetDebugSink(nullptr, nullptr);
    OutputDebugStringA("two\n");
    EXPECT_EQ(got, "one\n");
}
