/* The public headers need nothing before them and can come twice. */
#include <vantel.h>
#include <vantel_guarded.h>
int main(void) { return vantel_ok; }
