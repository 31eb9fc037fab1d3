# One interface target carries the warning and sanitizer flags of every target of ours.
add_library(paint_options INTERFACE)
target_compile_options(paint_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align
  -Wconversion -Wno-sign-conversion
  $<$<BOOL:${PAINT_WERROR}>:-Werror>
  # g++ 12 sees overlapping copies in std::string concatenation where there are none.
  $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>
  # Single and double precision results are part of the behaviour: no contraction into FMA.
  -ffp-contract=off
  # errno from sqrt and friends is never read, and it keeps loops from being vectorised.
  -fno-math-errno)
if(PAINT_SANITIZE)
  target_compile_options(paint_options INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(paint_options INTERFACE -fsanitize=address,undefined)
endif()
if(NOT PAINT_AVX512)
  target_compile_definitions(paint_options INTERFACE PAINT_NO_AVX512)
endif()
if(PAINT_FUZZ)
  target_compile_options(paint_options INTERFACE -fsanitize=fuzzer-no-link)
endif()
