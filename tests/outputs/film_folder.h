#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>

#include "outputs/libav_sink.h"
#include "tests/outputs/test_film.h"
#include "tests/platform/linux/temporary_folder.h"

namespace zel {

// A folder that a film can be written into.
class FilmFolderTest : public testing::Test {
 protected:
  FilmFolderTest() { av_log_set_level(AV_LOG_QUIET); }

  std::string path(const std::string& name) const { return folder.file(name); }
  OutputAddress address(const std::string& name) const { return parseOutputAddress(path(name)).value(); }
  std::string contents(const std::string& name) const {
    std::ifstream file(path(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  }

  static Fault writeAll(Sink& sink, const TestFilm& film) {
    if (Fault fault = sink.open(film.headers)) return fault;
    for (const MediaPacket& packet : film.packets) {
      if (Fault fault = sink.write(packet)) return fault;
    }
    return std::nullopt;
  }
  Fault writeFile(const std::string& name, const TestFilm& film) const {
    LibavSink sink(address(name));
    if (Fault fault = writeAll(sink, film)) return fault;
    return sink.finish();
  }

  const test::TemporaryFolder folder;
};

}  // namespace zel
