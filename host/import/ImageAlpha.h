#pragma once

#include <string_view>

namespace orv::host {

// Whether an image file has an alpha channel, judged by its first bytes (PNG's header chunks have
// to be among them). Formats that cannot be told apart so count as having one.
bool ImageCarriesAlpha(std::string_view bytes, std::string_view fileName);

constexpr size_t kImageHeadBytes = 65536;

}  // namespace orv::host
