#include "convert/Parts.h"

#include <FreeImage.h>
#include <dlfcn.h>

#include <memory>
#include <stdexcept>

namespace orv::convert {

namespace {

constexpr char kLibrary[] = "libfreeimage.so.3";

// Those used, by their names without the library's prefix.
// clang-format off
#define ORV_PICTURE_FUNCTIONS(X) \
  X(Unload) X(CloseMemory) X(OpenMemory) X(GetFileTypeFromMemory) X(GetFIFFromFilename) \
  X(FIFSupportsReading) X(LoadFromMemory) X(IsTransparent) \
  X(SaveToMemory) X(AcquireMemory) X(ConvertToGreyscale) X(ConvertTo32Bits) X(GetChannel) \
  X(ConvertTo24Bits) X(GetWidth) X(GetHeight) X(Rescale) X(SetChannel)
// clang-format on

// Opened when the first picture needs it: with all that it brings along it takes as long to load as
// a small export takes for everything else. Throws std::runtime_error when it is not there.
class PictureLibrary {
  void* m_library = Open();

 public:
#define ORV_MEMBER(name) \
  decltype(&FreeImage_##name) name = Find<decltype(&FreeImage_##name)>("FreeImage_" #name);
  ORV_PICTURE_FUNCTIONS(ORV_MEMBER)
#undef ORV_MEMBER

 private:
  static void* Open() {
    void* library = dlopen(kLibrary, RTLD_NOW | RTLD_LOCAL);
    if (!library) throw std::runtime_error(dlerror());
    return library;
  }
  template <typename Function>
  Function Find(const char* name) {
    void* function = dlsym(m_library, name);
    if (!function) throw std::runtime_error(dlerror());
    return reinterpret_cast<Function>(function);
  }
};

const PictureLibrary& Library() {
  static const PictureLibrary s_library;
  return s_library;
}

struct Unload {
  void operator()(FIBITMAP* bitmap) const { Library().Unload(bitmap); }
};
using Bitmap = std::unique_ptr<FIBITMAP, Unload>;

struct Close {
  void operator()(FIMEMORY* memory) const { Library().CloseMemory(memory); }
};
using Memory = std::unique_ptr<FIMEMORY, Close>;

Bitmap Load(const std::string& bytes, const std::string& name) {
  // The library takes a pointer to bytes that it may change, but reads only.
  const Memory memory(Library().OpenMemory(reinterpret_cast<BYTE*>(const_cast<char*>(bytes.data())),
                                           static_cast<DWORD>(bytes.size())));
  FREE_IMAGE_FORMAT format = Library().GetFileTypeFromMemory(memory.get(), 0);
  if (format == FIF_UNKNOWN) format = Library().GetFIFFromFilename(name.c_str());
  if (format == FIF_UNKNOWN || !Library().FIFSupportsReading(format)) return nullptr;
  return Bitmap(Library().LoadFromMemory(format, memory.get(), 0));
}

std::optional<Picture> ToPng(FIBITMAP* bitmap) {
  if (!bitmap) return std::nullopt;
  const Memory memory(Library().OpenMemory(nullptr, 0));
  BYTE* data = nullptr;
  DWORD size = 0;
  if (!Library().SaveToMemory(FIF_PNG, bitmap, memory.get(), 0) ||
      !Library().AcquireMemory(memory.get(), &data, &size)) {
    return std::nullopt;
  }
  return Picture{std::string(reinterpret_cast<const char*>(data), size), "image/png"};
}

// 8 bits of grey.
Bitmap AlphaOf(FIBITMAP* bitmap) {
  if (!Library().IsTransparent(bitmap)) return Bitmap(Library().ConvertToGreyscale(bitmap));
  const Bitmap rgba(Library().ConvertTo32Bits(bitmap));
  return Bitmap(rgba ? Library().GetChannel(rgba.get(), FICC_ALPHA) : nullptr);
}

}  // namespace

std::optional<Picture> PictureFrom(const std::string& bytes, const std::string& name) {
  if (bytes.starts_with("\x89PNG\r\n\x1A\n")) return Picture{bytes, "image/png"};
  if (bytes.starts_with("\xFF\xD8\xFF")) return Picture{bytes, "image/jpeg"};
  const Bitmap bitmap = Load(bytes, name);
  if (!bitmap) return std::nullopt;
  const Bitmap plain(Library().IsTransparent(bitmap.get())
                         ? Library().ConvertTo32Bits(bitmap.get())
                         : Library().ConvertTo24Bits(bitmap.get()));
  return ToPng(plain.get());
}

std::optional<Picture> WithAlphaOf(const std::string& bytes, const std::string& name,
                                   const std::string& alphaBytes, const std::string& alphaName) {
  const Bitmap picture = Load(bytes, name);
  const Bitmap alphaPicture = Load(alphaBytes, alphaName);
  if (!picture || !alphaPicture) return std::nullopt;
  const Bitmap rgba(Library().ConvertTo32Bits(picture.get()));
  Bitmap alpha = AlphaOf(alphaPicture.get());
  if (!rgba || !alpha) return std::nullopt;
  const auto width = static_cast<int>(Library().GetWidth(rgba.get()));
  const auto height = static_cast<int>(Library().GetHeight(rgba.get()));
  alpha.reset(Library().Rescale(alpha.get(), width, height, FILTER_BILINEAR));
  if (!alpha || !Library().SetChannel(rgba.get(), alpha.get(), FICC_ALPHA)) return std::nullopt;
  return ToPng(rgba.get());
}

}  // namespace orv::convert
