#include "platform/graphics/codecs/libraries/webp/WebPReader.h"

#include <webp/decode.h>
#include <webp/demux.h>

#include <memory>

#include "platform/graphics/codecs/PictureCodec.h"

namespace {

struct DeleteDemuxer {
  void operator()(WebPDemuxer* demuxer) const { WebPDemuxDelete(demuxer); }
};
using Demuxer = std::unique_ptr<WebPDemuxer, DeleteDemuxer>;

struct DeleteDecoder {
  void operator()(WebPIDecoder* decoder) const { WebPIDelete(decoder); }
};

/// A chunk of the container, empty when it is not there. Valid as long as the iterator.
std::span<const uint8_t> chunk(const Demuxer& demuxer, const char* name,
                               WebPChunkIterator& iterator) {
  if (WebPDemuxGetChunk(demuxer.get(), name, 1, &iterator) == 0) return {};
  return {iterator.chunk.bytes, iterator.chunk.size};
}

/// Decodes as many rows as the data has into the rectangle of a frame.
void readFrame(const WebPIterator& frame, const PictureInfo& picture, uint8_t* pixels,
               PictureTarget& target) {
  const auto stride = static_cast<size_t>(picture.width) * 4;
  const size_t offset =
      static_cast<size_t>(frame.y_offset) * stride + static_cast<size_t>(frame.x_offset) * 4;
  const size_t size =
      static_cast<size_t>(frame.height - 1) * stride + static_cast<size_t>(frame.width) * 4;
  const std::unique_ptr<WebPIDecoder, DeleteDecoder> decoder(
      WebPINewRGB(MODE_RGBA, pixels + offset, size, static_cast<int>(stride)));
  if (decoder == nullptr) return target.lackMemory();
  const VP8StatusCode status =
      WebPIUpdate(decoder.get(), frame.fragment.bytes, frame.fragment.size);
  if (status == VP8_STATUS_OUT_OF_MEMORY) return target.lackMemory();
  int rows = 0;
  if (WebPIDecGetRGB(decoder.get(), &rows, nullptr, nullptr, nullptr) == nullptr) return;
  target.finish(frame.y_offset, frame.y_offset + rows);
}

}  // namespace

/// The demuxer has checked that the frame lies inside the canvas.
void readWebP(std::span<const uint8_t> file, PictureTarget& target) {
  const WebPData data{file.data(), file.size()};
  WebPDemuxState state = WEBP_DEMUX_PARSE_ERROR;
  // This one does not tell what it lacks.
  requireAddressSpace(kLibraryTables);
  const Demuxer demuxer(WebPDemuxPartial(&data, &state));
  if (demuxer == nullptr || state < WEBP_DEMUX_PARSED_HEADER) return;
  WebPIterator frame{};
  if (WebPDemuxGetFrame(demuxer.get(), 1, &frame) == 0) return;
  WebPChunkIterator profile{};
  WebPChunkIterator exif{};
  PictureInfo picture;
  picture.width = WebPDemuxGetI(demuxer.get(), WEBP_FF_CANVAS_WIDTH);
  picture.height = WebPDemuxGetI(demuxer.get(), WEBP_FF_CANVAS_HEIGHT);
  const bool partial = frame.width != picture.width || frame.height != picture.height;
  picture.layout =
      partial || frame.has_alpha != 0 ? PixelLayout::straightRGBA : PixelLayout::opaqueRGB;
  picture.profile = chunk(demuxer, "ICCP", profile);
  picture.exif = chunk(demuxer, "EXIF", exif);
  if (uint8_t* const pixels = target.begin(picture)) readFrame(frame, picture, pixels, target);
  WebPDemuxReleaseChunkIterator(&exif);
  WebPDemuxReleaseChunkIterator(&profile);
  WebPDemuxReleaseIterator(&frame);
}
