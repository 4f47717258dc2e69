#include "options/Options.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "platform/Platform.h"
#include "platform/ReplacingFile.h"
#include "xml/MXMLDocument.h"
#include "xml/MXMLStream.h"

namespace orv {
namespace {

constexpr const char* kRootName = "OrvExporterOptions";
constexpr size_t kReadBufferSize = 4096;

constexpr const char* kComment =
    "This file was created by the Velmor OrvExporter to remember the last configuration.\n"
    "It is not intended, nor should there be need to hand edit this file.\n"
    "This file will be re-created with each run.  Additional data will not be preserved.\n"
    "You may safely delete this file and default configuration will be used.";

struct PersistedField {
  const char* name;
  bool Options::*flag;  // null: the event file name, the one that is no flag
};

// In the order of the file.
constexpr PersistedField kPersistedFields[] = {
    {"m_useDefaultColors", &Options::m_useDefaultColors},
    {"m_forceTxtOverwrite", &Options::m_forceTxtOverwrite},
    {"m_askTxtOverwrite", &Options::m_askTxtOverwrite},
    {"m_collectTextures", &Options::m_collectTextures},
    {"m_normalMapFlipGreen", &Options::m_normalMapFlipGreen},
    {"m_eventFileName", nullptr},
    {"m_enableWarnings", &Options::m_enableWarnings},
    {"m_exportGeometry", &Options::m_exportGeometry},
    {"m_exportAnimation", &Options::m_exportAnimation},
};

// Lets a document be written to a file that replaces the old one only when it is complete.
class ReplacingStream : public MXMLStream {
 public:
  explicit ReplacingStream(ReplacingFile& file) : m_file(file) {}
  size_t Read(void*, size_t) override { return 0; }
  size_t Write(const void* buffer, size_t length) override {
    m_file.write(static_cast<const char*>(buffer), static_cast<std::streamsize>(length));
    return m_file ? length : 0;
  }

 private:
  ReplacingFile& m_file;
};

void BuildDocument(const Options& options, MXMLDocument& document) {
  MXMLElement* root = document.Top().AddElement(kRootName);
  root->AddComment(kComment);
  for (const auto& [name, flag] : kPersistedFields) {
    const char* text = flag ? BoolToText(options.*flag) : options.m_eventFileName.CStr();
    root->AddElement(name)->AddText(text);
  }
  document.Top().Format(false, 0);
}

}  // namespace

Options& Options::Instance() {
  static Options s_options;
  return s_options;
}

void Options::Reset() {
  Options defaults;
  defaults.m_animationStartFrame = m_animationStartFrame;
  defaults.m_animationEndFrame = m_animationEndFrame;
  defaults.m_eventFileName = m_eventFileName;
  *this = defaults;
}

bool Options::Load(const char* path) {
  MXMLStreamFile file(platform::NativePath(path).c_str(), "rb");
  MXMLDocument document;
  if (!file.IsOpen() || !document.Parse(file, kReadBufferSize)) return false;
  const MXMLElement* root = document.Top().FindElement(kRootName);
  if (!root) return false;
  for (const auto& [name, flag] : kPersistedFields) {
    const MXMLElement* element = root->FindElement(name);
    if (!element) continue;
    if (flag) {
      this->*flag = TextToBool(element->GetText(), this->*flag);
    } else {
      m_eventFileName = ExString(element->GetText()).TrimWhiteSpace();
    }
  }
  return true;
}

// Only a file that cannot be opened counts as a failure: the settings are a convenience. When the
// writing fails, the old file stays.
bool Options::Save(const char* path) const {
  ReplacingFile file(path, std::ios::binary);
  if (!file) return false;
  MXMLDocument document;
  BuildDocument(*this, document);
  ReplacingStream stream(file);
  const bool written = document.Write(stream, false);
  file.Commit();
  return written;
}

const char* BoolToText(bool value) { return value ? "true" : "false"; }

bool TextToBool(const char* text, bool fallback) {
  if (!text) return fallback;
  const std::string_view rest = text + std::strspn(text, " \t\r\n");
  if (rest.starts_with('0')) return false;
  if (rest.starts_with('1')) return true;
  if (BeginsWithIgnoringCase(rest, "true")) return true;
  if (BeginsWithIgnoringCase(rest, "false")) return false;
  return fallback;
}

}  // namespace orv
