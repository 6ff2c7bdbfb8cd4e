/* The editing session that the example program draws, with what must hold after every scene. */
#include "frame/faults.h"
#include "session/script.h"
#include "support/undolists.h"

#include <gtest/gtest.h>

using namespace zr32;

namespace {

struct LIVE {
    int64_t path = FaultLiveBlocks(ALLOC_PATHHEAP);
    int64_t buf = FaultLiveBlocks(ALLOC_BUF);
    bool operator==(const LIVE &) const = default;
};

} // namespace

TEST(Session, EverySceneLeavesBufferMarksAndWindowAsTheyMustBe)
{
    zr32test::FreeAllUndo();
    const LIVE before;
    session::EDITOR editor;
    ASSERT_TRUE(session::EditorOpen(session::sceneWidth, session::sceneHeight, nullptr, &editor));
    for (const session::SCENE &scene : session::Scenes()) {
        scene.play(&editor);
        EXPECT_EQ(scene.fault(&editor), "") << scene.name;
        const bool finished = scene.end == session::SCENE_FINISHED;
        EXPECT_EQ(finished ? session::EditorFault(&editor) : "", "") << scene.name;
        if (HasFailure()) break;
    }
    session::EditorClose(&editor);
    session::ScriptEnd();
    ZrPathUndo(1, nullptr, nullptr, nullptr); /* another document's list is loaded */
    EXPECT_TRUE(LIVE() == before);
}
