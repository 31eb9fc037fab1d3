#pragma once

#include <cstdint>

/// Loops over one span of premultiplied pixels, compiled for the vector units. Coverage m is
/// 0..255: a constant, or one byte per pixel. Every destination pixel d becomes
/// (1 - m) d + m f(s, d) for the function f of the operation.

/// d = s.
void fillSpan(uint32_t* d, int32_t n, uint32_t s);
/// f = s.
void mixSolid(uint32_t* d, int32_t n, uint32_t s, uint32_t cover);
void mixSolid(uint32_t* d, int32_t n, uint32_t s, const uint8_t* covers);
void mixRow(uint32_t* d, int32_t n, const uint32_t* s, uint32_t cover);
void mixRow(uint32_t* d, int32_t n, const uint32_t* s, const uint8_t* covers);
/// f = source over destination. The solid forms need a source whose channels do not exceed its
/// alpha.
void overSolid(uint32_t* d, int32_t n, uint32_t s, uint32_t cover);
void overSolid(uint32_t* d, int32_t n, uint32_t s, const uint8_t* covers);
void overRow(uint32_t* d, int32_t n, const uint32_t* s, uint32_t cover);
void overRow(uint32_t* d, int32_t n, const uint32_t* s, const uint8_t* covers);

/// d = d scaled by alpha (0..255).
void scaleRow(uint32_t* d, int32_t n, uint32_t alpha);
