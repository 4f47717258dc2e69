#include <gtest/gtest.h>

#include "Plugin.h"

namespace orv {
namespace {

TEST(Entry, LibraryAnswersAsTheHostExpects) {
  EXPECT_STREQ(Entry<const char*()>("LibDescription")(),
               "Max plug-in for exporting to Dunmere Velmor");
  EXPECT_EQ(Entry<int()>("LibNumberClasses")(), 1);
  EXPECT_EQ(Entry<ULONG()>("LibVersion")(), 0x36B02600u);
  EXPECT_EQ(Entry<ULONG()>("CanAutoDefer")(), 1u);
  EXPECT_EQ(Entry<ClassDesc*(int)>("LibClassDesc")(1), nullptr);
}

TEST(Entry, DescriptorNamesTheExporter) {
  const std::unique_ptr<ClassDesc> descriptor(Entry<ClassDesc*(int)>("LibClassDesc")(0));
  EXPECT_EQ(descriptor->IsPublic(), 1);
  EXPECT_EQ(descriptor->SuperClassID(), 0xA20u);
  EXPECT_TRUE(descriptor->ClassID() == Class_ID(0x77B61FB5, 0x007429F1));
  EXPECT_STREQ(descriptor->InternalName(), "OrvExporter");
  EXPECT_STREQ(descriptor->Category(), "");
  EXPECT_NE(descriptor->HInstance(), nullptr);
}

TEST(Entry, ExporterListsItsFileTypes) {
  Plugin plugin("");
  EXPECT_EQ(plugin.exporter->ExtCount(), 2);
  const char* const expected[] = {"", "IM", "KIN", ""};
  for (int n = -1; n <= 2; ++n) EXPECT_STREQ(plugin.exporter->Ext(n), expected[n + 1]) << n;
  EXPECT_EQ(plugin.exporter->Version(), 100u);
  for (const int extension : {0, 1}) {
    EXPECT_EQ(plugin.exporter->SupportsOptions(extension, 0), 0);
    EXPECT_EQ(plugin.exporter->SupportsOptions(extension, 1), 1);
    EXPECT_EQ(plugin.exporter->SupportsOptions(extension, 3), 1);
  }
}

TEST(Entry, TextsShareABufferButForTwo) {
  Plugin plugin("");
  const std::unique_ptr<ClassDesc> descriptor(Entry<ClassDesc*(int)>("LibClassDesc")(0));
  const char* className = descriptor->ClassName();
  EXPECT_STREQ(className, "Velmor Exporter");
  EXPECT_EQ(plugin.exporter->AuthorName(), className);
  EXPECT_STREQ(className, "DUNMERE");
  const char* longDescription = plugin.exporter->LongDesc();
  EXPECT_STREQ(plugin.exporter->ShortDesc(), "Velmor format");
  EXPECT_STREQ(plugin.exporter->OtherMessage1(), " ");
  EXPECT_STREQ(plugin.exporter->OtherMessage2(), " ");
  EXPECT_STREQ(longDescription, "A format readable by the Dunmere Velmor");
}

TEST(Entry, ServicesOfAnotherVersionAreRefused) {
  HostServices services;
  services.size += 8;
  EXPECT_EQ(Entry<UseHostServicesFunction>("UseHostServices")(&services), 0);
}

}  // namespace
}  // namespace orv
