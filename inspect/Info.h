#pragma once

#include <nlohmann/json.hpp>
#include <ostream>
#include <span>
#include <string>

#include "inspect/LoadedFile.h"

namespace orv::inspect {

inline constexpr int kJsonSchema = 1;  // goes up when a field changes its meaning or goes away

// What a person wants to know of a file that could be read.
void PrintInfo(std::ostream& out, const LoadedFile& file);

// The same for a program, or why the file could not be read: one entry of a document's "files".
nlohmann::ordered_json InfoOf(const LoadedFile& file);

// {"error": ...} of a file that could not be read.
nlohmann::ordered_json ErrorEntry(const LoadedFile& file);

// The text of a whole document; bytes that are no UTF-8 are replaced, NaN becomes null.
std::string DocumentText(nlohmann::ordered_json files);

const char* ChannelName(int32_t channel);  // "unknown" for one that there is not
const char* EventTypeName(uint32_t type);  // the same

const char* KindName(const LoadedFile& file);  // "mesh", "animation" or "unknown"

// From the first frame to the last; 0 without a frame rate.
double LengthInSeconds(const AnimationFile& animation);

}  // namespace orv::inspect
