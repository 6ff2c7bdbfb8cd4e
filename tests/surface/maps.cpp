/* maps.cpp - what the tests of surface maps share, see maps.h. */
#include "surface/maps.h"

#include "store/store.h"

#include <cmath>
#include <cstring>
#include <sstream>

namespace zr32test {

PATHREC *MakeChain(const std::vector<PATHREC *> &records)
{
    PATHREC *last = records[0];
    for (size_t i = 1; i < records.size(); i++) {
        zr32::ChainLink(zr32::tableChain, last, records[i]);
        zr32::ChainLink(zr32::joinChain, last, records[i]);
        last = records[i];
    }
    const PATHNODE first = records[0]->nodes[0];
    PATHREC *tail = MakePath({{6, first.x / 65536.0, first.y / 65536.0}});
    zr32::ChainLink(zr32::tableChain, last, tail);
    return records[0];
}

void FreeChain(PATHREC *head)
{
    while (head) {
        PATHREC *next = head->nextPath;
        zr32::RecordFree(head);
        head = next;
    }
}

PATHBUF MakeMask(PATHREC *head, int inflate, ZRFIXED zoom)
{
    struct tagRECT *rects = nullptr;
    PATHBUF *bufs = nullptr;
    PATHBUF mask = nullptr;
    head->flags |= PATHREC_SELECTED; /* one mask for the whole join chain */
    if (ZrPathToBuf(head, 8, 0, 1, 0, zoom, &rects, &bufs, inflate) > 0) mask = bufs[0];
    head->flags &= ~PATHREC_SELECTED;
    zr32::GlobalBlockFree(rects);
    zr32::GlobalBlockFree(bufs);
    return mask;
}

void Call(MAPCALL *call)
{
    const uintptr_t wanted = 0x40; /* any value that is not 0 */
    call->dist = call->wantDist ? reinterpret_cast<PATHBUF>(wanted) : nullptr;
    call->offset = call->wantOffset ? reinterpret_cast<PATHBUF>(wanted) : nullptr;
    call->result = ZrPathVMap(call->path, &call->dist, &call->offset, call->evenOdd, call->fixedHeight,
                              call->envelopeMode, call->outset, call->noMitre, &call->width, call->floatVectors,
                              call->useMask, call->mask, call->progress, call->zoom);
}

void FreePlanes(MAPCALL *call)
{
    if (call->dist) ZrPathBufFree(call->dist);
    if (call->offset) ZrPathBufFree(call->offset);
    call->dist = call->offset = nullptr;
}

float DistAt(PATHBUF dist, int x, int y)
{
    const zr32::BUFINFO info = zr32::BufInfo(dist);
    float value;
    std::memcpy(&value, zr32::BufRow(dist, info, y) + 4 * x, sizeof(value));
    return value;
}

SURFVEC16 VectorAt(PATHBUF offset, int x, int y)
{
    const zr32::BUFINFO info = zr32::BufInfo(offset);
    SURFVEC16 value;
    std::memcpy(&value, zr32::BufRow(offset, info, y) + 8 * x, sizeof(value));
    return value;
}

int CountWritten(PATHBUF plane)
{
    const zr32::BUFINFO info = zr32::BufInfo(plane);
    const size_t pixels = static_cast<size_t>(info.width) * static_cast<size_t>(info.height);
    int count = 0;
    for (size_t i = 0; i < pixels; i++)
        for (size_t k = 0; k < info.pixelSize; k++)
            if (plane[i * info.pixelSize + k]) {
                count++;
                break;
            }
    return count;
}

PLAINMAP EmptyMap(PATHBUF plane)
{
    const zr32::BUFINFO info = zr32::BufInfo(plane);
    return {info.width, info.height,
            std::vector<PLAINPIXEL>(static_cast<size_t>(info.width) * static_cast<size_t>(info.height))};
}

std::string Difference(PATHBUF dist, PATHBUF offset, const PLAINMAP &map)
{
    for (int y = 0; y < map.height; y++) {
        for (int x = 0; x < map.width; x++) {
            const PLAINPIXEL &want = map.pixels[static_cast<size_t>(y * map.width + x)];
            const float d = dist ? DistAt(dist, x, y) : want.dist;
            const SURFVEC16 v = offset ? VectorAt(offset, x, y) : SURFVEC16{want.x1, want.y1, want.x2, want.y2};
            if (std::memcmp(&d, &want.dist, sizeof(d)) == 0 && v.x1 == want.x1 && v.y1 == want.y1 && v.x2 == want.x2 &&
                v.y2 == want.y2)
                continue;
            std::ostringstream text;
            text << "pixel " << x << ", " << y << ": got " << d << " (" << v.x1 << ", " << v.y1 << ", " << v.x2 << ", "
                 << v.y2 << "), want " << want.dist << " (" << want.x1 << ", " << want.y1 << ", " << want.x2 << ", "
                 << want.y2 << ")";
            return text.str();
        }
    }
    return "";
}

PATHREC *RandomShape(uint32_t seed, double cx, double cy, double radius)
{
    std::mt19937 rng(seed);
    const auto unit = [&rng] { return static_cast<double>(rng() & 0xffff) / 65536.0; };
    const auto pick = [&rng](uint32_t n) { return rng() % n; };
    const int corners = 3 + static_cast<int>(pick(9));
    const double turn = pick(2) ? 1 : -1;
    const bool whole = pick(3) == 0; /* on whole pixels: axis-parallel lines and equal feet */
    const auto place = [&](double angle, double r) {
        double x = cx + r * std::cos(angle);
        double y = cy + r * std::sin(angle);
        if (whole) {
            x = std::floor(x);
            y = std::floor(y);
        }
        return TESTNODE{2, x, y};
    };
    std::vector<TESTNODE> nodes;
    TESTNODE first = place(0, radius * (0.3 + 0.7 * unit()));
    nodes.push_back({6, first.x, first.y});
    TESTNODE at = first;
    for (int i = 1; i <= corners; i++) {
        const double angle = turn * 6.283185307 * i / corners;
        TESTNODE next = i == corners ? first : place(angle, radius * (0.3 + 0.7 * unit()));
        const uint16_t closing = i == corners ? 1 : 0;
        switch (pick(8)) {
        case 0: /* a corner of two axis-parallel lines */
            nodes.push_back({2, next.x, at.y});
            nodes.push_back({static_cast<uint16_t>(2 + closing), next.x, next.y});
            break;
        case 1: /* a line of no length first */
            nodes.push_back({2, at.x, at.y});
            nodes.push_back({static_cast<uint16_t>(2 + closing), next.x, next.y});
            break;
        case 2: /* controls on the ends */
            nodes.push_back({4, at.x, at.y});
            nodes.push_back({4, next.x, next.y});
            nodes.push_back({static_cast<uint16_t>(4 + closing), next.x, next.y});
            break;
        case 3:
        case 4:
        case 5: { /* a curve, often with a loop or a cusp */
            const TESTNODE a = place(angle - turn * 4 * unit(), radius * 1.0 * unit());
            const TESTNODE b = place(angle - turn * 2 * unit(), radius * 1.0 * unit());
            nodes.push_back({4, a.x, a.y});
            nodes.push_back({4, b.x, b.y});
            nodes.push_back({static_cast<uint16_t>(4 + closing), next.x, next.y});
            break;
        }
        case 6: { /* a very short line and a very short curve */
            const TESTNODE near = {2, at.x + unit() / 64, at.y + unit() / 256};
            nodes.push_back(near);
            nodes.push_back({4, near.x + unit() / 32, near.y});
            nodes.push_back({4, near.x, near.y + unit() / 32});
            nodes.push_back({4, near.x + unit() / 32, near.y + unit() / 32});
            nodes.push_back({static_cast<uint16_t>(2 + closing), next.x, next.y});
            break;
        }
        default: nodes.push_back({static_cast<uint16_t>(2 + closing), next.x, next.y});
        }
        at = next;
    }
    return MakePath(nodes);
}

static int32_t CountCall(int32_t code, int32_t value, int32_t, intptr_t user)
{
    COUNTER *counter = reinterpret_cast<COUNTER *>(user);
    counter->codes.push_back(code);
    if (code == 1) counter->begins++;
    if (code == 4) counter->ends++;
    if (code != 2) return 0; /* the answer to these is not looked at */
    counter->values.push_back(value);
    return ++counter->calls != counter->stopAt;
}

VMAPPROGRESS ProgressOf(COUNTER *counter)
{
    return {0, CountCall, reinterpret_cast<intptr_t>(counter), 0, 0};
}

} // namespace zr32test
