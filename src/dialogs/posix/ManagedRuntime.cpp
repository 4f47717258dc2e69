// A Mono runtime in this process. It is opened at run time and by name alone, so that the plug-in
// neither needs it to be built nor to export without windows.

#include "dialogs/ManagedRuntime.h"

#include <dlfcn.h>
#include <unistd.h>

#include <filesystem>

namespace orv {
namespace {

constexpr char kMonoLibrary[] = "libmonosgen-2.0.so.1";
constexpr char kHowToGetIt[] =
    "On Debian: apt-get install libmonosgen-2.0-1 mono-runtime libmono-system-windows-forms4.0-cil";

// Mono's types are opaque to those who embed it.
using Domain = struct MonoDomain*;
using Assembly = struct MonoAssembly*;
using Image = struct MonoImage*;
using Class = struct MonoClass*;
using Method = struct MonoMethod*;
using Object = struct MonoObject*;
using String = struct MonoString*;

struct Failure {
  std::string problem;
};

// The functions used, by their names. Throws Failure when the library or one of them is missing.
class Mono {
 public:
  Mono() {
    // Global, because libraries that Mono loads by itself take its symbols from the process.
    m_library = dlopen(kMonoLibrary, RTLD_NOW | RTLD_GLOBAL);
    if (!m_library) Fail(dlerror());
    Find("mono_assembly_getrootdir", getrootdir);
    Find("mono_set_dirs", set_dirs);
    Find("mono_config_parse", config_parse);
    Find("mono_set_signal_chaining", set_signal_chaining);
    Find("mono_get_root_domain", get_root_domain);
    Find("mono_jit_init", jit_init);
    Find("mono_domain_assembly_open", domain_assembly_open);
    Find("mono_assembly_get_image", assembly_get_image);
    Find("mono_class_from_name", class_from_name);
    Find("mono_class_get_method_from_name", class_get_method_from_name);
    Find("mono_string_new", string_new);
    Find("mono_runtime_invoke", runtime_invoke);
    Find("mono_object_unbox", object_unbox);
    Find("mono_object_to_string", object_to_string);
    Find("mono_string_to_utf8", string_to_utf8);
    Find("mono_free", free);
  }

  const char* (*getrootdir)();
  void (*set_dirs)(const char* assemblies, const char* configuration);
  void (*config_parse)(const char* file);
  void (*set_signal_chaining)(int chain);
  Domain (*get_root_domain)();
  Domain (*jit_init)(const char* domainName);
  Assembly (*domain_assembly_open)(Domain, const char* path);
  Image (*assembly_get_image)(Assembly);
  Class (*class_from_name)(Image, const char* nameSpace, const char* name);
  Method (*class_get_method_from_name)(Class, const char* name, int parameterCount);
  String (*string_new)(Domain, const char* utf8);
  Object (*runtime_invoke)(Method, void* self, void** arguments, Object* exception);
  void* (*object_unbox)(Object);
  String (*object_to_string)(Object, Object* exception);
  char* (*string_to_utf8)(String);
  void (*free)(void*);

 private:
  template <typename Function>
  void Find(const char* name, Function*& function) {
    function = reinterpret_cast<Function*>(dlsym(m_library, name));
    if (!function) Fail(dlerror());
  }
  [[noreturn]] static void Fail(const char* reason) {
    throw Failure{std::string("They need the .NET runtime Mono: ") + reason + ".\n" + kHowToGetIt};
  }

  void* m_library;
};

std::filesystem::path AssemblyPath() {
  Dl_info info{};
  dladdr(reinterpret_cast<const void*>(&StartManagedDialogs), &info);
  return std::filesystem::absolute(info.dli_fname).parent_path() / kDialogAssembly;
}

// Mono ends the whole process when it does not find its core library, so that is looked for first.
Domain RunningDomain(const Mono& mono) {
  if (const Domain running = mono.get_root_domain()) return running;
  mono.set_dirs(nullptr, nullptr);  // to where it is installed
  const std::string core = std::string(mono.getrootdir()) + "/mono/4.5/mscorlib.dll";
  if (access(core.c_str(), R_OK) != 0)
    throw Failure{"The .NET runtime Mono lacks " + core + ".\n" + kHowToGetIt};
  mono.set_signal_chaining(1);  // the host's handlers keep what is not Mono's own
  mono.config_parse(nullptr);
  return mono.jit_init("OrvExporter");
}

Method StartOf(const Mono& mono, Domain domain, const std::string& path) {
  const Assembly assembly = mono.domain_assembly_open(domain, path.c_str());
  if (!assembly) throw Failure{"Their library cannot be loaded: " + path};
  const std::string name = kStartClass;
  const size_t dot = name.rfind('.');
  const Class type = mono.class_from_name(mono.assembly_get_image(assembly),
                                          name.substr(0, dot).c_str(), name.c_str() + dot + 1);
  const Method start = type ? mono.class_get_method_from_name(type, kStartMethod, 1) : nullptr;
  if (!start) throw Failure{"Their library is of another version: " + path};
  return start;
}

// The first line of what the exception says of itself.
std::string TextOf(const Mono& mono, Object exception) {
  Object another = nullptr;
  const String text = mono.object_to_string(exception, &another);
  char* utf8 = text && !another ? mono.string_to_utf8(text) : nullptr;
  const std::string line = utf8 ? utf8 : "an exception";
  mono.free(utf8);
  return line.substr(0, line.find('\n'));
}

int Call(const Mono& mono, Domain domain, Method start, const std::string& argument) {
  void* arguments[] = {mono.string_new(domain, argument.c_str())};
  Object exception = nullptr;
  const Object result = mono.runtime_invoke(start, nullptr, arguments, &exception);
  if (exception) throw Failure{TextOf(mono, exception) + "\n" + kHowToGetIt};
  return *static_cast<int*>(mono.object_unbox(result));
}

}  // namespace

ManagedStart StartManagedDialogs(const std::string& argument) {
  try {
    static const Mono s_mono;
    const std::string path = AssemblyPath();
    if (access(path.c_str(), R_OK) != 0) throw Failure{"Their library is missing: " + path};
    const Domain domain = RunningDomain(s_mono);
    return {"", Call(s_mono, domain, StartOf(s_mono, domain, path), argument)};
  } catch (const Failure& failure) {
    return {failure.problem};
  } catch (const std::filesystem::filesystem_error& error) {
    return {error.what()};
  }
}

}  // namespace orv
