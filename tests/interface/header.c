/* The public header needs nothing before it and can come twice. */
#include <vantel.h>

#include <vantel.h>
int main(void) {
    return vantel_ok;
}
