#include "colours.h"
#include <math.h>

/* Every eighth colour of the map romaO of the Scientific Colour Maps 7.0.1, in between which the map is
   straight but for 2 of 255. Copyright (c) 2021, Fabio Crameri; under the MIT License. */
enum { colours = 32 };
static const unsigned roma_o[colours] = {
    0x733957, 0x79384c, 0x7e3942, 0x843d3a, 0x8b4433, 0x924d2f, 0x99582c, 0xa2662c, 0xaa752f, 0xb48636, 0xbd9842,
    0xc6aa52, 0xcfbc66, 0xd4cb7b, 0xd6d790, 0xd3dea3, 0xcbe1b3, 0xc1e1be, 0xb1ddc7, 0xa0d6cc, 0x8dcccf, 0x7bc0ce,
    0x6ab2cb, 0x5da4c7, 0x5495c0, 0x4f86b8, 0x4f76ae, 0x5267a1, 0x585993, 0x5f4d83, 0x664474, 0x6c3d65};

static const double grey = 0x94;

Colour vantel_draw_colour(double phase, double coherence) {
    const double turns = phase / 2 - floor(phase / 2);
    const double place = turns * colours, behind = place - floor(place);
    const unsigned from = roma_o[(int)place % colours], to = roma_o[((int)place + 1) % colours];
    unsigned parts[3];
    for (int i = 0; i < 3; ++i) {
        const int bits = 16 - 8 * i;
        const double low = from >> bits & 0xff, high = to >> bits & 0xff;
        const double full = low + (high - low) * behind;
        parts[i] = (unsigned)(grey + (full - grey) * coherence + 0.5);
    }
    const Colour colour = {parts[0], parts[1], parts[2]};
    return colour;
}
