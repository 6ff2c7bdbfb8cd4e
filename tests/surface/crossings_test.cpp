/* crossings_test.cpp - edge tables of a shape and the role of each crossing of a row. */
#include "surface/maps.h"

#include <gtest/gtest.h>

using namespace zr32test;

namespace {

struct ROLE {
    double x;
    int flag;
    bool node;
    bool operator==(const ROLE &) const = default;
};

std::vector<ROLE> Roles(EDGETABLE *table, uint32_t row)
{
    uint32_t count = 0;
    const zr32::EDGEENTRY *entries = zr32::EdgeTableRow(table, row, &count);
    std::vector<ROLE> roles;
    for (uint32_t i = 0; i < count; i++)
        roles.push_back({entries[i].crossing, entries[i].spanFlag, entries[i].node != nullptr});
    return roles;
}

} // namespace
