#pragma once

// The texts of the string table, as X(id, name, text): once compiled into the library, and once
// into the resources of the Windows library, so macros only. The numbers are those the host has
// always seen; those missing belonged to host versions that are no longer served. Behind it, the
// numbers of the other resources.
#define ORV_COPYRIGHT "Copyright (C) 2026 The OrvExporter developers"

// clang-format off
#define ORV_STRING_TABLE(X)                                                                       \
  X(1, ClassName, "Velmor Exporter")                                                              \
  X(2, Description, "Max plug-in for exporting to Dunmere Velmor")                                \
  X(4, LongDescription, "A format readable by the Dunmere Velmor")                                \
  X(5, ShortDescription, "Velmor format")                                                         \
  X(6, Author, "DUNMERE")                                                                         \
  X(7, Copyright, ORV_COPYRIGHT)                                                                  \
  X(8, Other1, " ")                                                                               \
  X(9, Other2, " ")                                                                               \
  X(10, Warning, "Warning")                                                                       \
  X(11, NothingToExport, "Export cancelled - nothing to export")                                  \
  X(13, NoTextureMapping, "Ignoring mesh - no texture mapping for mesh:")                         \
  X(14, NoMaterial, "Ignoring mesh - no material assigned for mesh:")                             \
  X(15, Error, "Error")                                                                           \
  X(16, NoFaces, "Ignoring mesh - no faces for mesh:")                                            \
  X(17, UnhandledError, "Unhandled error in exporter module")                                     \
  X(18, ConfigurationError, "Error loading configuration file!")                                  \
  X(23, MaterialMissing, "Ignoring mesh - Material missing for mesh:")                            \
  X(27, NonStandardSubMaterial,                                                                   \
    "Ignoring mesh - material other than standard used in sub-material for mesh:")                \
  X(28, NonBitmapMap, "Ignoring material map - use of non-bitmap in material:")                   \
  X(29, MissingBitmapName, "Ignoring material map - missing bitmap name in material:")            \
  X(30, NonStandardMaterial,                                                                      \
    "Ignoring mesh - material other than standard or sub-material used for mesh:")
// clang-format on

#define ORV_DIALOG_ABOUT 101
#define ORV_ABOUT_OK 1002
