#include <gtest/gtest.h>

#include "Plugin.h"

namespace orv {
namespace {

TEST(Entry, LibraryAndItsClassAnswerAsTheHostExpects) {
  EXPECT_STREQ(Entry<const char*()>("LibDescription")(),
               "Max plug-in for exporting to Dunmere Velmor");
  EXPECT_EQ(Entry<int()>("LibNumberClasses")(), 1);
  EXPECT_EQ(Entry<ULONG()>("LibVersion")(), 0x36B02600u);
  EXPECT_EQ(Entry<ULONG()>("CanAutoDefer")(), 1u);
  EXPECT_EQ(Entry<ClassDesc*(int)>("LibClassDesc")(1), nullptr);
  const std::unique_ptr<ClassDesc> descriptor(Entry<ClassDesc*(int)>("LibClassDesc")(0));
  EXPECT_EQ(descriptor->IsPublic(), 1);
  EXPECT_EQ(descriptor->SuperClassID(), 0xA20u);
  EXPECT_TRUE(descriptor->ClassID() == Class_ID(0x77B61FB5, 0x007429F1));
  EXPECT_STREQ(descriptor->InternalName(), "OrvExporter");
  EXPECT_STREQ(descriptor->Category(), "");
  EXPECT_NE(descriptor->HInstance(), nullptr);
}

TEST(Entry, ExporterSaysWhatItIs) {
  Plugin plugin("");
  SceneExport& exporter = *plugin.exporter;
  const std::string types = std::string(exporter.Ext(0)) + "," + exporter.Ext(1);
  EXPECT_EQ(types + exporter.Ext(-1) + exporter.Ext(2), "IM,KIN");
  EXPECT_EQ(exporter.ExtCount(), 2);
  EXPECT_EQ(exporter.Version(), 100u);
  for (const int extension : {0, 1})
    for (const int options : {0, 1, 3})
      EXPECT_EQ(exporter.SupportsOptions(extension, options), options & 1);
  // Texts share a buffer but for two.
  const std::unique_ptr<ClassDesc> descriptor(Entry<ClassDesc*(int)>("LibClassDesc")(0));
  const char* const shared = descriptor->ClassName();
  EXPECT_STREQ(shared, "Velmor Exporter");
  EXPECT_EQ(exporter.AuthorName(), shared);
  EXPECT_STREQ(shared, "DUNMERE");
  const char* const longDescription = exporter.LongDesc();
  EXPECT_STREQ(exporter.ShortDesc(), "Velmor format");
  EXPECT_EQ(std::string(exporter.OtherMessage1()) + exporter.OtherMessage2(), "  ");
  EXPECT_STREQ(longDescription, "A format readable by the Dunmere Velmor");
}

TEST(Entry, ServicesAreTakenInTheirOwnVersionOnly) {
  const auto use = Entry<UseHostServicesFunction>("UseHostServices");
  ExportDialogs* windows = nullptr;
  HostServices services;
  services.ownDialogs = &windows;
  EXPECT_EQ(use(&services), 1);
  EXPECT_NE(windows, nullptr);
  services.size += 8;
  EXPECT_EQ(use(&services), 0);
  EXPECT_EQ(use(nullptr), 1);
}

}  // namespace
}  // namespace orv
