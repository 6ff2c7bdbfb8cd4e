/* options.cpp - the command line of bevel, read by getopt_long; every number is checked where it is read. */
#include "options.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <getopt.h>

namespace bevel {

namespace {

const char usage[] =
    "usage: bevel [OPTIONS]\n"
    "Renders a line of text as a lit, bevelled solid, one PNG a stage, and a contact sheet of the road.\n"
    "\n"
    "  --text TEXT          what to write (\"Zr32path\")\n"
    "  --font FAMILY        an installed font (\"DejaVu Sans\")\n"
    "  --size N             height of a line in pixels, 16 to 600 (220)\n"
    "  --width X            reach of the bevel in pixels, 0 to 99 (14)\n"
    "  --profile N          cross-section: 0, 1, 100, 101, 102, 103, 104 (0)\n"
    "  --invert             turn the surface inside out\n"
    "  --scale N            depth of the surface, 0 for none (0)\n"
    "  --light X,Y,Z        direction towards the light (-0.577,-0.577,0.577)\n"
    "  --builder NAME       swept, exact, primitive, envelope (swept)\n"
    "  --side NAME          inside, outside, both (inside); the last two with the swept builder\n"
    "  --even-odd           exact builder: even-odd rule instead of non-zero winding\n"
    "  --rounded            exact builder: rounded corners instead of mitres\n"
    "  --material NAME      plastic, metal (plastic)\n"
    "  --lights N           1 to 4 (1)\n"
    "  --spot               make the lights spots\n"
    "  --bump N             percent of a bump map's depth (0)\n"
    "  --mirror             mirror an environment in the surface\n"
    "  --glass FACE,EDGE    percent of transparency facing the viewer and edge-on (0,0)\n"
    "  --turn X,Y,Z         turn the solid by degrees about the axes and render it in space\n"
    "  --no-glass           in space: glass 0, of which only the highlights show\n"
    "  --gallery            render every family of pictures as labelled contact sheets instead\n"
    "  --out FOLDER         where the pictures go (build/demo)\n"
    "  --help               this text\n"
    "\n"
    "Exit status: 0 done, 1 the work failed (unknown font, unwritable folder), 2 the command line is off.\n";

bool Number(const char *option, const char *text, double least, double most, double *value)
{
    char *end = nullptr;
    *value = strtod(text, &end);
    if (end != text && *end == 0 && std::isfinite(*value) && *value >= least && *value <= most) return true;
    fprintf(stderr, "bevel: --%s wants a number from %g to %g, not \"%s\"\n", option, least, most, text);
    return false;
}

bool Whole(const char *option, const char *text, int least, int most, int *value)
{
    double number = 0;
    if (!Number(option, text, least, most, &number)) return false;
    *value = static_cast<int>(number);
    if (*value == number) return true;
    fprintf(stderr, "bevel: --%s wants a whole number, not \"%s\"\n", option, text);
    return false;
}

/* Numbers with commas between them. */
bool Numbers(const char *option, const char *text, double least, double most, int count, double *values)
{
    std::string rest = text;
    for (int i = 0; i < count; i++) {
        const size_t comma = rest.find(',');
        const bool last = i == count - 1;
        if (last != (comma == std::string::npos)) {
            fprintf(stderr, "bevel: --%s wants %d numbers with commas between them, not \"%s\"\n", option, count, text);
            return false;
        }
        if (!Number(option, rest.substr(0, comma).c_str(), least, most, &values[i])) return false;
        if (!last) rest = rest.substr(comma + 1);
    }
    return true;
}

/* The place of a word among names (ended by null). */
bool Word(const char *option, const char *text, const char *const *names, int *value)
{
    for (*value = 0; names[*value]; ++*value)
        if (strcmp(names[*value], text) == 0) return true;
    fprintf(stderr, "bevel: --%s does not know \"%s\"\n", option, text);
    return false;
}

bool Profile(const char *text, int *value)
{
    if (!Whole("profile", text, 0, 104, value)) return false;
    if (*value <= 1 || *value >= 100) return true;
    fprintf(stderr, "bevel: --profile is one of 0, 1, 100, 101, 102, 103, 104\n");
    return false;
}

bool Light(const char *text, double *light)
{
    if (!Numbers("light", text, -1e6, 1e6, 3, light)) return false;
    const double length = std::sqrt(light[0] * light[0] + light[1] * light[1] + light[2] * light[2]);
    if (length == 0) {
        fprintf(stderr, "bevel: --light needs a direction, not 0,0,0\n");
        return false;
    }
    for (int i = 0; i < 3; i++) light[i] /= length;
    return true;
}

const char *const builderNames[] = {"swept", "exact", "primitive", "envelope", nullptr};
const char *const sideNames[] = {"inside", "outside", "both", nullptr};
const char *const materialNames[] = {"plastic", "metal", nullptr};

bool OptionSet(const char *name, const char *argument, OPTIONS *options)
{
    const std::string option = name;
    int word = 0;
    if (option == "text") {
        options->text = argument;
    } else if (option == "font") {
        options->font = argument;
    } else if (option == "out") {
        options->out = argument;
    } else if (option == "size") {
        return Whole(name, argument, 16, 600, &options->size);
    } else if (option == "width") {
        return Number(name, argument, 0, 99, &options->width);
    } else if (option == "profile") {
        return Profile(argument, &options->profile);
    } else if (option == "invert") {
        options->invert = true;
    } else if (option == "scale") {
        return Whole(name, argument, 0, 1000, &options->scale);
    } else if (option == "light") {
        return Light(argument, options->light);
    } else if (option == "builder") {
        if (!Word(name, argument, builderNames, &word)) return false;
        options->builder = static_cast<BUILDER>(word);
    } else if (option == "side") {
        if (!Word(name, argument, sideNames, &word)) return false;
        options->side = static_cast<SIDE>(word);
    } else if (option == "even-odd") {
        options->evenOdd = true;
    } else if (option == "rounded") {
        options->rounded = true;
    } else if (option == "material") {
        if (!Word(name, argument, materialNames, &word)) return false;
        options->metal = word == 1;
    } else if (option == "lights") {
        return Whole(name, argument, 1, 4, &options->lights);
    } else if (option == "spot") {
        options->spot = true;
    } else if (option == "bump") {
        return Whole(name, argument, 0, 1000, &options->bump);
    } else if (option == "mirror") {
        options->mirror = true;
    } else if (option == "glass") {
        double percent[2] = {0, 0};
        if (!Numbers(name, argument, 0, 100, 2, percent)) return false;
        options->face = static_cast<int>(percent[0]);
        options->edge = static_cast<int>(percent[1]);
    } else if (option == "turn") {
        options->turned = true;
        return Numbers(name, argument, -360, 360, 3, options->turn);
    } else if (option == "no-glass") {
        options->glass = 0;
    } else if (option == "gallery") {
        options->gallery = true;
    }
    return true;
}

} // namespace

int OptionsRead(int argc, char **argv, OPTIONS *options)
{
    static const option known[] = {
        {"text", required_argument, nullptr, 0},     {"font", required_argument, nullptr, 0},
        {"size", required_argument, nullptr, 0},     {"width", required_argument, nullptr, 0},
        {"profile", required_argument, nullptr, 0},  {"invert", no_argument, nullptr, 0},
        {"scale", required_argument, nullptr, 0},    {"light", required_argument, nullptr, 0},
        {"builder", required_argument, nullptr, 0},  {"side", required_argument, nullptr, 0},
        {"even-odd", no_argument, nullptr, 0},       {"rounded", no_argument, nullptr, 0},
        {"material", required_argument, nullptr, 0}, {"lights", required_argument, nullptr, 0},
        {"spot", no_argument, nullptr, 0},           {"bump", required_argument, nullptr, 0},
        {"mirror", no_argument, nullptr, 0},         {"glass", required_argument, nullptr, 0},
        {"turn", required_argument, nullptr, 0},     {"no-glass", no_argument, nullptr, 0},
        {"gallery", no_argument, nullptr, 0},        {"out", required_argument, nullptr, 0},
        {"help", no_argument, nullptr, 'h'},         {nullptr, 0, nullptr, 0},
    };
    for (;;) {
        int index = 0;
        const int found = getopt_long(argc, argv, "", known, &index);
        if (found == -1) break;
        if (found == 'h') {
            fputs(usage, stdout);
            return 0;
        }
        if (found != 0 || !OptionSet(known[index].name, optarg, options)) return 2;
    }
    if (optind < argc) {
        fprintf(stderr, "bevel: \"%s\" is not an option; --help tells them\n", argv[optind]);
        return 2;
    }
    if (options->text.find_first_not_of(" \t\r\n") == std::string::npos) {
        fprintf(stderr, "bevel: the text is empty\n");
        return 2;
    }
    if (options->side != SIDE_INSIDE && options->builder != BUILD_SWEPT) {
        fprintf(stderr, "bevel: --side outside and both go with --builder swept\n");
        return 2;
    }
    return -1;
}

} // namespace bevel
