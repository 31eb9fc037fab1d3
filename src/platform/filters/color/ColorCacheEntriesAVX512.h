#pragma once

#include <cstddef>
#include <cstdint>

/// findEntries with AVX-512 VBMI. To be called only where hasAVX512VBMI().
size_t findEntriesAVX512(const uint32_t* cache, const uint32_t* pixels, size_t count,
                         uint32_t* results, uint32_t first, uint32_t* missed,
                         uint32_t* missedNumbers);
