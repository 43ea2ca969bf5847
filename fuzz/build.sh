#!/bin/bash -eu
# The build for OSS-Fuzz, whose environment sets CXX, CXXFLAGS, LIB_FUZZING_ENGINE, SRC, WORK and OUT.
# To run it by hand: OUT=/tmp/out CXX=clang++ CXXFLAGS="-fsanitize=fuzzer-no-link,address" fuzz/build.sh
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
work=${WORK:-$(mktemp -d)}/qvnalu
cmake -S "$root" -B "$work" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DCMAKE_CXX_COMPILER="${CXX:-clang++}" -DCMAKE_CXX_FLAGS="${CXXFLAGS:-}" \
    -DQVNALU_BUILD_TESTS=OFF -DQVNALU_BUILD_TOOLS=OFF -DQVNALU_DEVELOPER=OFF \
    -DQVNALU_BUILD_FUZZERS=ON -DQVNALU_LIBFUZZER=ON \
    -DQVNALU_FUZZ_ENGINE="${LIB_FUZZING_ENGINE:--fsanitize=fuzzer}"
cmake --build "$work"
seeds=$work/fuzz/seeds
"$work/fuzz/make_seeds" "$seeds" "$root"/samples/*.h26[45] "$root"/tests/streams/bundled/*.h26[45]
mkdir -p "$OUT"
for target in "$work"/fuzz/*_fuzz; do
    name=$(basename "$target")
    cp "$target" "$OUT/"
    cp "$root/fuzz/elementary_stream.dict" "$OUT/$name.dict"
    (cd "$seeds/$name" && zip -q -r "$OUT/${name}_seed_corpus.zip" .)
done
