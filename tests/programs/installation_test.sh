#!/usr/bin/env bash
# Installs into a folder and builds a program against what was installed, through the CMake package
# and through pkg-config:  installation_test.sh BUILD_DIR SOURCE_DIR CXX GENERATOR
set -euo pipefail
build=$1
source=$2
export CXX=$3 CMAKE_GENERATOR=$4
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

cmake --install "$build" --prefix "$folder/usr" >/dev/null
for path in bin/paintdoc bin/paint-thumbnailer share/thumbnailers/paint-thumbnailer.thumbnailer \
  share/mime/packages/paint-document.xml share/man/man1/paintdoc.1.gz share/man/man1/paint-thumbnailer.1.gz \
  share/bash-completion/completions/paintdoc share/zsh/vendor-completions/_paintdoc \
  libexec/paintengine/paint-picture-helper share/paintengine/fonts.conf \
  share/fish/vendor_completions.d/paintdoc.fish share/metainfo/org.paintengine.paintdoc.metainfo.xml; do
  [ -s "$folder/usr/$path" ] || { echo "not installed: $path"; exit 1; }
done

mkdir "$folder/client"
cp "$source/tests/programs/client.cpp" "$folder/client"
cat >"$folder/client/CMakeLists.txt" <<'TEXT'
cmake_minimum_required(VERSION 3.25)
project(client LANGUAGES CXX)
find_package(paintengine 0.1 REQUIRED)
add_executable(client client.cpp)
target_link_libraries(client PRIVATE paintengine::paintengine)
TEXT
cmake -S "$folder/client" -B "$folder/client/build" -DCMAKE_PREFIX_PATH="$folder/usr" >/dev/null
cmake --build "$folder/client/build" >/dev/null
"$folder/client/build/client" "$source/examples/pictures.paintdoc"

library=$(find "$folder/usr" -name pkgconfig)
sed -i "s|^prefix=.*|prefix=$folder/usr|" "$library/paintengine.pc"
export PKG_CONFIG_PATH=$library
# shellcheck disable=SC2046  # Several words are meant.
"$CXX" "$folder/client/client.cpp" -o "$folder/plain" $(pkg-config --cflags --libs paintengine)
LD_LIBRARY_PATH=$(dirname "$library") "$folder/plain" "$source/examples/pictures.paintdoc"

# Without the system's SVG renderer the built-in engine draws, which leaves style attributes out.
paintdoc=$folder/usr/bin/paintdoc
module=$(find "$folder/usr" -name paintsvg.so)
printf '%s' '<svg xmlns="http://www.w3.org/2000/svg" width="9" height="9"><path d="M0 0h9v9z" style="fill:red"/></svg>' \
  >"$folder/styled.svg"
"$paintdoc" render "$folder/styled.svg" "$folder/system.png"
"$paintdoc" render "$folder/styled.svg" "$folder/built-in.png" --svg built-in
mv "$module" "$module.gone"
"$paintdoc" render "$folder/styled.svg" "$folder/without.png"
cmp "$folder/built-in.png" "$folder/without.png"
if cmp -s "$folder/system.png" "$folder/without.png"; then
  echo "the system's renderer did not draw"
  exit 1
fi
mv "$module.gone" "$module"

# The programs of the prefix, and what they say when the helper is gone.
"$paintdoc" check "$source/examples/pictures.paintdoc" | grep 'a readable document$'
mv "$folder/usr/libexec" "$folder/usr/gone"
"$paintdoc" check "$source/examples/pictures.paintdoc" |
  grep '2 pictures left out: .*paint-picture-helper is not installed'
