#include "convert/Pictures.h"

#include <FreeImage.h>

#include <memory>

namespace orv::convert {

namespace {

struct Unload {
  void operator()(FIBITMAP* bitmap) const { FreeImage_Unload(bitmap); }
};
using Bitmap = std::unique_ptr<FIBITMAP, Unload>;

struct Close {
  void operator()(FIMEMORY* memory) const { FreeImage_CloseMemory(memory); }
};
using Memory = std::unique_ptr<FIMEMORY, Close>;

Bitmap Load(const std::string& bytes, const std::string& name) {
  // The library takes a pointer to bytes that it may change, but reads only.
  const Memory memory(FreeImage_OpenMemory(reinterpret_cast<BYTE*>(const_cast<char*>(bytes.data())),
                                           static_cast<DWORD>(bytes.size())));
  FREE_IMAGE_FORMAT format = FreeImage_GetFileTypeFromMemory(memory.get());
  if (format == FIF_UNKNOWN) format = FreeImage_GetFIFFromFilename(name.c_str());
  if (format == FIF_UNKNOWN || !FreeImage_FIFSupportsReading(format)) return nullptr;
  return Bitmap(FreeImage_LoadFromMemory(format, memory.get()));
}

bool HasAlpha(FIBITMAP* bitmap) {
  return FreeImage_IsTransparent(bitmap) ||
         (FreeImage_GetBPP(bitmap) == 32 && FreeImage_GetColorType(bitmap) == FIC_RGBALPHA);
}

std::optional<Picture> ToPng(FIBITMAP* bitmap) {
  if (!bitmap) return std::nullopt;
  const Memory memory(FreeImage_OpenMemory());
  BYTE* data = nullptr;
  DWORD size = 0;
  if (!FreeImage_SaveToMemory(FIF_PNG, bitmap, memory.get()) ||
      !FreeImage_AcquireMemory(memory.get(), &data, &size)) {
    return std::nullopt;
  }
  return Picture{std::string(reinterpret_cast<const char*>(data), size), "image/png"};
}

// 8 bits of grey.
Bitmap AlphaOf(FIBITMAP* bitmap) {
  if (!HasAlpha(bitmap)) return Bitmap(FreeImage_ConvertToGreyscale(bitmap));
  const Bitmap rgba(FreeImage_ConvertTo32Bits(bitmap));
  return Bitmap(rgba ? FreeImage_GetChannel(rgba.get(), FICC_ALPHA) : nullptr);
}

}  // namespace

std::optional<Picture> PictureFrom(const std::string& bytes, const std::string& name) {
  if (bytes.starts_with("\x89PNG\r\n\x1A\n")) return Picture{bytes, "image/png"};
  if (bytes.starts_with("\xFF\xD8\xFF")) return Picture{bytes, "image/jpeg"};
  const Bitmap bitmap = Load(bytes, name);
  if (!bitmap) return std::nullopt;
  const Bitmap plain(HasAlpha(bitmap.get()) ? FreeImage_ConvertTo32Bits(bitmap.get())
                                            : FreeImage_ConvertTo24Bits(bitmap.get()));
  return ToPng(plain.get());
}

std::optional<Picture> WithAlphaOf(const std::string& bytes, const std::string& name,
                                   const std::string& alphaBytes, const std::string& alphaName) {
  const Bitmap picture = Load(bytes, name);
  const Bitmap alphaPicture = Load(alphaBytes, alphaName);
  if (!picture || !alphaPicture) return std::nullopt;
  const Bitmap rgba(FreeImage_ConvertTo32Bits(picture.get()));
  Bitmap alpha = AlphaOf(alphaPicture.get());
  if (!rgba || !alpha) return std::nullopt;
  const auto width = static_cast<int>(FreeImage_GetWidth(rgba.get()));
  const auto height = static_cast<int>(FreeImage_GetHeight(rgba.get()));
  alpha.reset(FreeImage_Rescale(alpha.get(), width, height, FILTER_BILINEAR));
  if (!alpha || !FreeImage_SetChannel(rgba.get(), alpha.get(), FICC_ALPHA)) return std::nullopt;
  return ToPng(rgba.get());
}

}  // namespace orv::convert
