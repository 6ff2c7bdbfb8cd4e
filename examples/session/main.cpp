/* main.cpp - draws the editing session: one picture a scene and a sheet of them all.
 *
 * usage: session [DIRECTORY]   (build/demo/session when there is none)
 */
#include "bevel/picture.h"
#include "script.h"

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>

namespace {

bevel::PICTURE WindowPicture(const session::EDITOR *editor)
{
    bevel::PICTURE picture = bevel::PictureMake(editor->width, editor->height, 3);
    picture.bytes = session::EditorPicture(editor);
    return picture;
}

/* "07-node-edit.png" */
std::string FileName(size_t index, const std::string &name)
{
    const std::string number = std::to_string(index + 1);
    return (number.size() < 2 ? "0" : "") + number + "-" + name + ".png";
}

} // namespace

int main(int argc, char **argv)
{
    if (argc > 2 || (argc == 2 && argv[1][0] == '-')) {
        fprintf(stderr, "usage: session [DIRECTORY]   (build/demo/session when there is none)\n");
        return strcmp(argv[1], "--help") == 0 ? 0 : 2;
    }
    const std::string directory = std::string(argc > 1 ? argv[1] : "build/demo/session") + "/";
    std::error_code ignored; /* a directory that is missing shows when the first picture is written */
    std::filesystem::create_directories(directory, ignored);
    session::EDITOR editor;
    bevel::PICTURE image = bevel::PictureLandscape(session::sceneWidth, session::sceneHeight);
    for (uint8_t &b : image.bytes) b = static_cast<uint8_t>(192 + b / 4); /* pale, so that XOR shows dark */
    if (!session::EditorOpen(session::sceneWidth, session::sceneHeight, image.bytes.data(), &editor)) return 1;

    int failures = 0;
    std::vector<bevel::LABELLED> sheet;
    const std::vector<session::SCENE> &scenes = session::Scenes();
    for (size_t i = 0; i < scenes.size(); i++) {
        const session::SCENE &scene = scenes[i];
        scene.play(&editor);
        std::string fault = scene.fault(&editor);
        if (fault.empty() && scene.end == session::SCENE_FINISHED) fault = session::EditorFault(&editor);
        if (!fault.empty()) fprintf(stderr, "session: %s: %s\n", scene.name, fault.c_str());
        failures += !fault.empty();
        sheet.push_back({scene.caption, WindowPicture(&editor)});
        failures += !bevel::PictureWrite(directory + FileName(i, scene.name), sheet.back().picture);
    }
    failures += !bevel::PictureWrite(directory + "story.png", bevel::PictureSheet("An editing session", sheet, 5, 384));
    session::EditorClose(&editor);
    session::ScriptEnd();
    return failures != 0;
}
