// The public headers need nothing before them and can come twice.
#include <vantel.h>
#include <vantel.hpp>
#include <vantel_exceptions.hpp>
#include <vantel_guarded.h>
#include <vantel_guarded.h>
int main() { return vantel_ok; }
