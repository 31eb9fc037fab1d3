// SvgFiles SIDE OUT.png FILE...: draws SVG files over each other through librsvg, each stretched to
// a square. What the pictures of a document cost without a process of their own.
#include <librsvg/rsvg.h>

#include <cstdlib>

int main(int argc, char** argv) {
  if (argc < 3) return 64;
  const int side = std::atoi(argv[1]);
  cairo_surface_t* canvas = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, side, side);
  for (int i = 3; i < argc; ++i) {
    gchar* data = nullptr;
    gsize bytes = 0;
    if (g_file_get_contents(argv[i], &data, &bytes, nullptr) == FALSE) continue;
    RsvgHandle* handle = rsvg_handle_new_from_data(reinterpret_cast<guint8*>(data), bytes, nullptr);
    if (handle != nullptr) {
      cairo_surface_t* picture = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, side, side);
      cairo_t* context = cairo_create(picture);
      RsvgRectangle viewport{0, 0, static_cast<double>(side), static_cast<double>(side)};
      rsvg_handle_get_intrinsic_size_in_pixels(handle, &viewport.width, &viewport.height);
      cairo_scale(context, side / viewport.width, side / viewport.height);
      rsvg_handle_render_document(handle, context, &viewport, nullptr);
      cairo_destroy(context);
      cairo_t* over = cairo_create(canvas);
      cairo_set_source_surface(over, picture, 0, 0);
      cairo_paint(over);
      cairo_destroy(over);
      cairo_surface_destroy(picture);
      g_object_unref(handle);
    }
    g_free(data);
  }
  return cairo_surface_write_to_png(canvas, argv[2]) == CAIRO_STATUS_SUCCESS ? 0 : 1;
}
