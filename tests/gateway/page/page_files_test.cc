#include "gateway/page/page_files.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <regex>
#include <set>
#include <string>
#include <string_view>

namespace zel::gateway {
namespace {

using testing::Contains;
using testing::IsSupersetOf;

std::string textOf(const PageFile& file) { return {file.content.begin(), file.content.end()}; }

const PageFile* fileAt(std::string_view path) {
  const auto found = std::ranges::find(pageFiles(), path, &PageFile::path);
  return found == pageFiles().end() ? nullptr : &*found;
}

std::set<std::string> paths() {
  std::set<std::string> all;
  for (const PageFile& file : pageFiles()) all.emplace(file.path);
  return all;
}

// What a file names that it loads: by import, src and href.
std::set<std::string> loadedBy(const PageFile& file) {
  static const std::regex kNamed(
      R"re((?:from "\./|src="|href="|fetch\("|Worker\("|useFile\(")([a-z_0-9]+\.[a-z0-9]+))re");
  const std::string text = textOf(file);
  std::set<std::string> names;
  for (std::sregex_iterator at(text.begin(), text.end(), kNamed), end; at != end; ++at)
    names.insert("/" + (*at)[1].str());
  return names;
}

bool isText(const PageFile& file) { return file.type.find("charset") != std::string_view::npos; }

TEST(PageFilesTest, ThePageItselfIsAtTheRoot) {
  const PageFile* const page = fileAt("/");
  ASSERT_NE(page, nullptr);
  EXPECT_EQ(page->type, "text/html; charset=utf-8");
  EXPECT_THAT(textOf(*page), testing::StartsWith("<!doctype html>"));
}

TEST(PageFilesTest, TheWholePageIsBelow400Kilobytes) {
  std::size_t bytes = 0;
  for (const PageFile& file : pageFiles()) bytes += file.content.size();
  EXPECT_LT(bytes, 400'000U);
}

TEST(PageFilesTest, EveryLoadedFileIsThere) {
  for (const PageFile& file : pageFiles()) {
    if (!isText(file)) continue;
    EXPECT_THAT(paths(), IsSupersetOf(loadedBy(file))) << file.path;
  }
  EXPECT_THAT(loadedBy(*fileAt("/")), Contains("/main.js"));
}

TEST(PageFilesTest, EachFileHasATypeAndATagOfItsOwn) {
  std::set<std::string_view> tags;
  for (const PageFile& file : pageFiles()) {
    EXPECT_FALSE(file.type.empty()) << file.path;
    EXPECT_EQ(file.etag.size(), 22U) << file.path;
    EXPECT_TRUE(tags.insert(file.etag).second) << file.path;
  }
}

// The browser would refuse it, since the policy allows only files of the server.
TEST(PageFilesTest, NothingStandsInlineOrComesFromElsewhere) {
  static const std::regex kInline(R"(<style|<script(?![^>]*src=)|\son[a-z]+="|\sstyle="|javascript:)");
  EXPECT_FALSE(std::regex_search(textOf(*fileAt("/")), kInline));
  for (const PageFile& file : pageFiles()) {
    if (!isText(file)) continue;
    const std::string text = std::regex_replace(textOf(file), std::regex("http://www\\.w3\\.org/[a-z0-9/]*"), "");
    EXPECT_EQ(text.find("http://"), std::string::npos) << file.path;
    EXPECT_EQ(text.find("https://"), std::string::npos) << file.path;
  }
}

// Texts of cameras and files may hold markup, which must stay text.
TEST(PageFilesTest, NoTextBecomesMarkup) {
  for (const PageFile& file : pageFiles()) {
    for (const char* const forbidden : {"innerHTML", "outerHTML", "insertAdjacentHTML", "document.write", "eval("})
      EXPECT_EQ(textOf(file).find(forbidden), std::string::npos) << file.path;
  }
}

}  // namespace
}  // namespace zel::gateway
