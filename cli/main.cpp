// The command line: a host without a window that loads the plug-in library and drives it.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <exception>
#include <iostream>

#include "Commands.h"
#include "Door.h"
#include "Suggest.h"

namespace orv::cli {
namespace {

constexpr char kDescription[] =
    "Turns a 3D scene into model (.im) and animation (.kin) files for the engine, with the same "
    "plug-in that 3ds Max loads.";

std::pair<int, int> ParseFrames(const std::string& text) {
  int first = 0, last = 0;
  char rest = 0;
  if (std::sscanf(text.c_str(), "%d:%d%c", &first, &last, &rest) != 2)
    throw CLI::ValidationError("--frames", "expects FIRST:LAST, for example 0:40");
  if (last < first)
    throw CLI::ValidationError("--frames", "the last frame stands before the first");
  return {first, last};
}

CLI::Validator AboveZero() {
  return CLI::Validator(
      [](const std::string& text) {
        double number = 0;
        char rest = 0;
        const bool isNumber = std::sscanf(text.c_str(), "%lf%c", &number, &rest) == 1;
        const bool fits = isNumber && number > 0 && std::isfinite(number);
        return fits ? "" : std::string("expects a number above 0, not " + text);
      },
      "ABOVE 0");
}

void AddSceneOptions(CLI::App& command, ExportArguments& arguments) {
  host::SceneSettings& scene = arguments.sceneSettings;
  command.add_option("--select", arguments.select, "Export only this node and what is below it")
      ->type_name("NAME")
      ->expected(1)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  command.add_option("--hide", arguments.hide, "Leave this node out (its children stay)")
      ->type_name("NAME")
      ->expected(1)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  command.add_option("--unit", scene.metresPerUnit, "Metres per unit, whatever the file says")
      ->type_name("METRES")
      ->check(AboveZero());
  command
      .add_option_function<std::string>(
          "--up",
          [&scene](const std::string& axis) {
            scene.up = axis == "y" ? host::UpAxis::Y : host::UpAxis::Z;
          },
          "The file's up axis, whatever the file says")
      ->type_name("y|z")
      ->transform(CLI::IsMember({"y", "z"}, CLI::ignore_case));
  command
      .add_option("--textures", scene.textureFolders,
                  "Look for textures here too, after the scene's own folder")
      ->type_name("DIR")
      ->expected(1)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  command
      .add_option("--default-material", scene.defaultMaterial,
                  "Give parts without a material a plain one of this name")
      ->type_name("NAME");
}

void AddAnimationOptions(CLI::App& command, ExportArguments& arguments) {
  host::SceneSettings& scene = arguments.sceneSettings;
  command
      .add_option_function<std::string>(
          "--frames", [&scene](const std::string& text) { scene.frames = ParseFrames(text); },
          "Frames to export, both ends included (default: the whole animation)")
      ->type_name("FIRST:LAST");
  command
      .add_option("--fps", scene.framesPerSecond,
                  "Frames per second (default: what the file says, else 30)")
      ->type_name("N")
      ->check(CLI::Range(1, 1000));
  command
      .add_option("--animation", scene.animation,
                  "Which of the file's animations (default: the first)")
      ->type_name("NAME");
  command.add_option("--events", arguments.eventFile, "Event file (.evt) for the animation")
      ->type_name("FILE");
  command.add_flag("--joints-as-bones", scene.jointsAsBones,
                   "Treat the skin's joints as bones: puts \"b.\" before their names");
}

void AddExportCommand(CLI::App& app, ExportArguments& arguments) {
  CLI::App& command = *app.add_subcommand("export", "Export a scene: writes OUT.im and OUT.kin");
  command.add_option("SCENE", arguments.scene, "The scene: glTF, FBX, 3DS, ASE, Collada, OBJ ...")
      ->required();
  command
      .add_option("-o,--output", arguments.output,
                  "Name of the files to write; \".im\" or \".kin\" at its end is cut. Or a folder; "
                  "one with \"/\" at its end is made (default: the scene's name, in this folder)")
      ->type_name("OUT");
  AddSceneOptions(command, arguments);
  AddAnimationOptions(command, arguments);
  command.add_flag("--no-geometry", arguments.noGeometry, "Write no .im file");
  command.add_flag("--no-animation", arguments.noAnimation, "Write no .kin file");
  command.add_flag("--collect-textures", arguments.collectTextures,
                   "Copy the textures beside the .im file");
  command.add_flag("--default-colors", arguments.defaultColors,
                   "Write white materials instead of the scene's colours");
  command.add_flag("--flip-green", arguments.flipGreen,
                   "Have the engine flip the green channel of normal maps");
  command.add_flag("--force-textures", arguments.forceTextures,
                   "Overwrite .texture.txt files that are there already");
  command.add_flag("--dialogs", arguments.dialogs,
                   "Show the plug-in's own windows, as 3ds Max does; the options above are what "
                   "they begin with");
  command
      .add_option("--settings", arguments.settingsFolder,
                  "Keep the exporter's options file below this folder (default: forget them; with "
                  "--dialogs: the user's own)")
      ->type_name("DIR");
  command.add_flag("--no-check", arguments.noCheck, "Do not read back and check what was written");
  command.add_flag("-q,--quiet", arguments.quiet, "Show errors and the summary only");
  command.footer(
      "Exit status: 0 all written, no errors; 1 written, but the log or reading back has errors;\n"
      "2 wrong usage or unreadable scene; 3 a file that was asked for is missing, or the options "
      "dialog\nwas cancelled.");
}

void AddInspectCommand(CLI::App& app, const char* name, const char* description, const char* status,
                       InspectArguments& arguments) {
  CLI::App& command = *app.add_subcommand(name, description);
  command.add_option("FILE", arguments.files, "Model (.im) and animation (.kin) files")
      ->required()
      ->type_name("");
  command.add_flag("--json", arguments.json, "One JSON document for all files");
  command.footer(status);
}

void AddConvertCommand(CLI::App& app, ConvertArguments& arguments) {
  CLI::App& command =
      *app.add_subcommand("convert", "Turn a model, and its animation, into a glTF binary (.glb)");
  command.add_option("MODEL", arguments.model, "Model (.im)")->required();
  command.add_option("ANIMATION", arguments.animation, "Animation (.kin) of its bones");
  command
      .add_option("-o,--output", arguments.output,
                  "File to write (default: the model's name with .glb, in this folder)")
      ->type_name("OUT.glb");
  command
      .add_option("--unit", arguments.metresPerUnit,
                  "Metres per unit of the bones' positions, where no animation says it")
      ->type_name("METRES")
      ->check(AboveZero());
  command.footer(
      "Exit status: 0 written; 1 written, but something was mended or left out, see the messages;\n"
      "2 wrong usage, or a file cannot be read; 3 the file cannot be written.");
}

std::vector<std::string> OptionNames(const CLI::App& command) {
  std::vector<std::string> names;
  for (const CLI::Option* option : command.get_options())
    for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
  return names;
}

// The first word that nobody understood; none: true.
bool AllUnderstood(const CLI::App& app) {
  for (const CLI::App* command : app.get_subcommands()) {
    for (const std::string& word : command->remaining()) {
      std::cerr << "orv " << command->get_name() << ": does not know '" << word << "'."
                << DidYouMean(word, OptionNames(*command)) << " See orv " << command->get_name()
                << " --help.\n";
      return false;
    }
  }
  return true;
}

bool KnowsCommand(const CLI::App& app, const std::string& word) {
  std::vector<std::string> names;
  for (const CLI::App* command : app.get_subcommands({})) names.push_back(command->get_name());
  if (word.starts_with("-") || std::find(names.begin(), names.end(), word) != names.end())
    return true;
  std::cerr << "orv: there is no command '" << word << "'." << DidYouMean(word, names)
            << " See orv --help.\n";
  return false;
}

int Run(int argc, char** argv) {
  CLI::App app(kDescription, "orv");
  app.footer("Exit status of every command: 3 when standard output cannot be written.");
  app.set_version_flag("--version", "orv " ORV_VERSION);
  ExportArguments arguments;
  AddExportCommand(app, arguments);
  InspectArguments inspectArguments;
  AddInspectCommand(app, "info", "Show what is in .im and .kin files",
                    "Exit status: 0; 2 wrong usage, or a file cannot be read.", inspectArguments);
  AddInspectCommand(app, "check", "Look for mistakes in .im and .kin files",
                    "Exit status: 0 no errors (warnings perhaps); 1 errors were found; 2 wrong "
                    "usage, or a file\ncannot be opened. docs/inspecting.md lists what is found.",
                    inspectArguments);
  ConvertArguments convertArguments;
  AddConvertCommand(app, convertArguments);
  app.add_subcommand("plugin", "Show what the plug-in library tells a host of itself");
  app.add_subcommand("about", "Show the plug-in's About box");
  app.require_subcommand(1);
  for (CLI::App* command : app.get_subcommands({})) command->allow_extras();
  if (argc > 1 && !KnowsCommand(app, argv[1])) return kStatusBadUsage;
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kStatusSuccess : kStatusBadUsage;
  }
  if (!AllUnderstood(app)) return kStatusBadUsage;
  if (app.got_subcommand("export")) return RunExportCommand(std::move(arguments));
  if (app.got_subcommand("info")) return RunInfoCommand(inspectArguments);
  if (app.got_subcommand("check")) return RunCheckCommand(inspectArguments);
  if (app.got_subcommand("convert")) return RunConvertCommand(convertArguments);
  if (app.got_subcommand("about")) return RunAboutCommand();
  return RunPluginCommand();
}

}  // namespace
}  // namespace orv::cli

int main(int argc, char** argv) {
  try {
    const int status = orv::cli::Run(argc, argv);
    if (std::cout.flush() && !std::ferror(stdout)) return status;
    std::cerr << "orv: standard output cannot be written\n";
    return orv::cli::kStatusFileMissing;
  } catch (const orv::cli::MissingGroup& missing) {
    orv::cli::StartDoor(missing, argv);
    std::cerr << "orv: cannot be started again with the group " << missing.name << ": "
              << std::strerror(errno) << '\n';
    return orv::cli::kStatusFileMissing;
  } catch (const std::exception& error) {
    std::cerr << "orv: " << error.what() << '\n';
    return orv::cli::kStatusFileMissing;
  }
}
