#!/bin/sh
# The same counts from one rank, two and four, in Python and in C++.
# Usage: mpi.sh EXAMPLES PYTHON SCRATCH_DIRECTORY [PROGRAM_IN_C++]
set -eu
examples=$1 python=$2 scratch=$3 program=${4-}
mkdir -p "$scratch"
cd "$scratch"
printf '%s\n' 'qudit a 3' 'qudit b 3' 'hadamard a' 'sum a b' 'depolarise a 0.2' 'measure a -> m' 'measure b -> n' >circuit.txt
# A test machine can have fewer processors than ranks, and root runs it in a container.
ranks() {
    count=$1
    shift
    OMPI_ALLOW_RUN_AS_ROOT=1 OMPI_ALLOW_RUN_AS_ROOT_CONFIRM=1 mpirun --oversubscribe -n "$count" "$@"
}
for count in 1 2 4; do
    ranks $count "$python" "$examples/mpi/ensemble_mpi.py" circuit.txt --shots 1001 --seed 7 >python_$count
    [ -s python_$count ]
    cmp python_1 python_$count
    [ -z "$program" ] || ranks $count "$program" circuit.txt 1001 7 >cpp_$count
    [ -z "$program" ] || cmp cpp_1 cpp_$count
done
"$python" -m vantel run circuit.txt --shots 1001 --seed 7 | tail -n "$(wc -l <python_1)" | cmp - python_1
# Both languages count alike: levels and shots, without the bars of one and the frame of the other.
[ -z "$program" ] || {
    sed -n 's/^ *\([0-9]\) *\([0-9]\) *\([0-9]*\).*/\1 \2 \3/p' cpp_1 >cpp
    sed -n 's/^ *\([0-9]\) *\([0-9]\) *\([0-9]*\).*/\1 \2 \3/p' python_1 | diff cpp -
    [ -s cpp ]
}
