#!/bin/sh
# Builds the packages from two copies of the source, in directories whose names differ in length and at
# different times, and compares them byte by byte.
# Usage: same_packages.sh SOURCE_DIRECTORY SCRATCH_DIRECTORY
set -eu
source=$1 scratch=$2
export SOURCE_DATE_EPOCH=1700000000

rm -rf "$scratch"
for copy in one another_one; do
    place=$scratch/$copy
    mkdir -p "$place/source" "$place/packages"
    (cd "$source" && tar -cf - --exclude=.git --exclude=build .) | tar -xf - -C "$place/source"
    cmake -S "$place/source" -B "$place/build" -G Ninja -DCMAKE_INSTALL_PREFIX=/usr \
        -DVANTEL_TESTS=OFF -DVANTEL_EXAMPLES=OFF -DVANTEL_HTML=ON -DVANTEL_PYTHON=ON >"$place/log"
    cmake --build "$place/build" >>"$place/log"
    (cd "$place/build" && cpack -B "$place/packages" >>"$place/log")
    rm -rf "$place/packages/_CPack_Packages"
done
cd "$scratch"
(cd one/packages && ls && sha256sum -- *.deb *.tar.gz) >one.sums
(cd another_one/packages && ls && sha256sum -- *.deb *.tar.gz) >another_one.sums
cat one.sums
cmp one.sums another_one.sums
dpkg-deb --fsys-tarfile one/packages/libvantel1_*.deb | tar -xO ./usr/share/doc/libvantel1/libvantel.spdx.json >materials
python3 - materials <<'END'
import json, sys
materials = json.load(open(sys.argv[1]))
assert materials["spdxVersion"] == "SPDX-2.3" and materials["creationInfo"]["created"] == "2023-11-14T22:13:20Z", materials
names = {package["SPDXID"] for package in materials["packages"]} | {materials["SPDXID"]}
ends = {end for link in materials["relationships"] for end in (link["spdxElementId"], link["relatedSpdxElement"])}
assert ends == names, ends ^ names
END
! grep -rlaF "$scratch" one/packages
! dpkg-deb --fsys-tarfile one/packages/libvantel1_*.deb | grep -aqF "$scratch"
[ "$(ls one/packages/*.deb one/packages/*.tar.gz | wc -l)" -eq 5 ]
