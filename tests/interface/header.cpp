// The public headers need nothing before them and can come twice.
#include <vantel.h>
#include <vantel.hpp>
#include <vantel_exceptions.hpp>
#include <vantel_guarded.h>
// clang-format off
#include <vantel_guarded.h> // which the tool would drop
// clang-format on
int main() { return vantel_ok; }
