#include <stdio.h>
#include <vantel.h>

/* Prints what a program that was compiled against the header has fixed in itself. */
#define RECORD(record) printf("%s size %zu alignment %zu\n", #record, sizeof(record), _Alignof(record))
#define FIELD(record, field)                                                                                           \
    printf("%s.%s at %zu size %zu\n", #record, #field, offsetof(record, field), sizeof(((record*)0)->field))
#define CODE(code) printf("%s %d\n", #code, code)

int main(void) {
    RECORD(PredicateRecord);
    FIELD(PredicateRecord, property);
    FIELD(PredicateRecord, value);
    FIELD(PredicateRecord, is_equal);
    RECORD(ProbabilityRecord);
    FIELD(ProbabilityRecord, probability);
    FIELD(ProbabilityRecord, qudit_values);
    RECORD(enum vantel_status);
    CODE(vantel_ok);
    CODE(vantel_null_property);
    CODE(vantel_output_too_small);
    CODE(vantel_target_control_overlap);
    CODE(vantel_different_dimensions);
    CODE(vantel_bad_dimension);
    CODE(vantel_bad_qudit_number);
    CODE(vantel_output_size_mismatch);
    CODE(vantel_state_size_exceeded);
    return 0;
}
