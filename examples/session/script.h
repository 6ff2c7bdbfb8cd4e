/* script.h - an editing session as a script: scenes in order, each a few calls as an editor makes them.
 *
 * The program turns every scene into a picture, the test checks what must hold after it: one script for both.
 */
#ifndef SESSION_SCRIPT_H
#define SESSION_SCRIPT_H

#include "editor.h"

namespace session {

enum SCENEEND {
    SCENE_FINISHED, /* everything that EditorFault asks for must hold */
    SCENE_BANDS,    /* a rubber band stands in the window */
};

struct SCENE {
    const char *name;    /* of the picture's file */
    const char *caption; /* what the picture shows */
    SCENEEND end;
    void (*play)(EDITOR *editor);
    /* What the scene must have led to, "" when it has. */
    std::string (*fault)(EDITOR *editor);
};

const std::vector<SCENE> &Scenes();

/* The size of window that the script is written for. */
constexpr int32_t sceneWidth = 480;
constexpr int32_t sceneHeight = 340;

/* Frees what the script leaves in the library: its undo list. */
void ScriptEnd();

} // namespace session

#endif
