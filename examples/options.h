/* The command line of the examples: `--svg NAME` where there is a picture, and nothing else. */
#ifndef OPTIONS_H
#define OPTIONS_H

#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <vantel_draw.h>

static inline void refuse(const char* program, const char* usage) {
    fprintf(stderr, "usage: %s%s\n", program, usage);
    exit(2);
}

/* For a program without a picture: any argument is refused with the usage, and status 2. */
static inline void no_options(int argc, char** argv) {
    if (argc > 1) refuse(argv[0], strcmp(argv[1], "--svg") == 0 ? "\nThis example has no picture." : "");
}

/* The NAME of `--svg NAME`, or null without arguments; anything else is refused with the usage, and status 2.
 */
static inline const char* svg_name(int argc, char** argv) {
    if (argc == 3 && strcmp(argv[1], "--svg") == 0) return argv[2];
    if (argc > 1)
        refuse(argv[0], " [--svg NAME]\nWith --svg the picture goes into NAME-outcomes.svg and NAME-density.svg.");
    return NULL;
}

/* Writes one picture into the file NAME-KIND.svg. Returns 0, or 1 with a text on standard error. */
static inline int save_svg(const char* name, const char* kind, int (*draw)(FILE*, const VantelPicture*),
                           const VantelPicture* picture) {
    char path[1024];
    FILE* file = NULL;
    const int length = snprintf(path, sizeof path, "%s-%s.svg", name, kind);
    int failed = length < 0 || (size_t)length >= sizeof path || (file = fopen(path, "w")) == NULL;
    if (file != NULL) {
        failed = draw(file, picture);
        failed = fclose(file) != 0 || failed;
    }
    if (failed) perror(path);
    return failed;
}

/* Draws on standard output, and into files if there is a name. Returns 0, or 1 if a file could not be
 * written. */
static inline int show_picture(const VantelPicture* picture, const char* name) {
    const int failed = vantel_draw_text(stdout, picture);
    if (name == NULL) return failed;
    return save_svg(name, "outcomes", vantel_draw_outcomes_svg, picture) |
           save_svg(name, "density", vantel_draw_density_svg, picture) | failed;
}

#endif
