#include "edit/join.h"
#include "support/document.h"

#include <gtest/gtest.h>

using namespace zr32;
using namespace zr32test;

namespace {

/* Four records on one table chain. */
struct FOUR : DOCUMENT {
    PATHREC *a = Add(MakeBox(0, 0, 1, 1));
    PATHREC *b = Add(MakeBox(0, 0, 2, 2));
    PATHREC *c = Add(MakeBox(0, 0, 3, 3));
    PATHREC *d = Add(MakeBox(0, 0, 4, 4));
};

std::vector<PATHREC *> JoinChainOf(PATHREC *path)
{
    std::vector<PATHREC *> chain;
    for (PATHREC *record = ChainFirst(joinChain, path); record; record = record->nextJoin) chain.push_back(record);
    return chain;
}

using CHAINOF = std::vector<PATHREC *>;

} // namespace

TEST(Join, TheSelectedChainBecomesOneShape)
{
    FOUR doc;
    doc.Select({doc.a, doc.c, doc.d});
    EXPECT_EQ(ZrPathJoin(doc.c), 1);
    EXPECT_EQ(JoinChainOf(doc.d), (CHAINOF{doc.a, doc.c, doc.d}));
    EXPECT_EQ(JoinChainOf(doc.b), (CHAINOF{doc.b}));
    EXPECT_EQ(BrokenInvariant(doc), "");
    EXPECT_EQ(ZrPathDisjoin(doc.d), 1);
    EXPECT_EQ(JoinChainOf(doc.a), (CHAINOF{doc.a}));
    EXPECT_EQ(JoinChainOf(doc.d), (CHAINOF{doc.d}));
}

TEST(Join, WhatIsNotSelectedKeepsAConsistentChain)
{
    FOUR doc;
    EXPECT_EQ(ZrPathJoinAll(doc.b), 1);
    doc.Select({doc.b, doc.d});
    EXPECT_EQ(ZrPathJoin(doc.b), 1);
    EXPECT_EQ(JoinChainOf(doc.b), (CHAINOF{doc.b, doc.d}));
    EXPECT_EQ(JoinChainOf(doc.a), (CHAINOF{doc.a, doc.c}));
    EXPECT_EQ(BrokenInvariant(doc), "");

    ZrPathJoinAll(doc.a);
    EXPECT_EQ(ZrPathDisjoin(doc.d), 1);
    EXPECT_EQ(JoinChainOf(doc.a), (CHAINOF{doc.a, doc.c}));
    EXPECT_EQ(JoinChainOf(doc.b), (CHAINOF{doc.b}));
    EXPECT_EQ(BrokenInvariant(doc), "");
}

TEST(Join, AllMeansTheWholeTableChainFromItsHead)
{
    FOUR doc;
    EXPECT_EQ(ZrPathJoinAll(doc.c), 1);
    EXPECT_EQ(JoinChainOf(doc.c), (CHAINOF{doc.a, doc.b, doc.c, doc.d}));
    EXPECT_EQ(BrokenInvariant(doc), "");
    EXPECT_EQ(ZrPathDisjoinAll(doc.d), 1);
    for (PATHREC *record : doc.Records()) EXPECT_EQ(JoinChainOf(record).size(), 1u);
}

TEST(Join, ALoneRecordJoinsWithNothing)
{
    FOUR doc;
    doc.Select({doc.b});
    EXPECT_EQ(ZrPathJoin(doc.b), 1);
    EXPECT_EQ(doc.b->nextJoin, nullptr);
}

TEST(Join, NullAndUnselectedAreRefused)
{
    FOUR doc;
    EXPECT_EQ(ZrPathJoin(nullptr), 0);
    EXPECT_EQ(ZrPathDisjoin(nullptr), 0);
    EXPECT_EQ(ZrPathJoinAll(nullptr), 0);
    EXPECT_EQ(ZrPathDisjoinAll(nullptr), 0);
    EXPECT_EQ(ZrPathJoin(doc.a), 0);
    EXPECT_EQ(ZrPathDisjoin(doc.a), 0);
}
