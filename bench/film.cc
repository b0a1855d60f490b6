#include "bench/film.h"

#include <span>
#include <utility>

#include "platform/h264/h264_headers.h"
#include "simulator/media/annex_b.h"
#include "simulator/media/scene_film.h"

namespace zel::bench {
namespace {

void addUnit(Film& film, std::span<const std::uint8_t> unit) {
  const platform::H264UnitType type = platform::typeOf(unit[0]);
  if (type == platform::H264UnitType::sequence) film.sps.assign(unit.begin(), unit.end());
  if (type == platform::H264UnitType::picture) film.pps.assign(unit.begin(), unit.end());
  if (type != platform::H264UnitType::slice && type != platform::H264UnitType::keySlice) return;
  Film::Bytes prefixed;
  for (int shift = 24; shift >= 0; shift -= 8) prefixed.push_back(static_cast<std::uint8_t>(unit.size() >> shift));
  prefixed.insert(prefixed.end(), unit.begin(), unit.end());
  film.slices.push_back(std::move(prefixed));
}

}  // namespace

Film makeFilm(int pictures) {
  Film film;
  simulator::SceneFilm scene(simulator::previewFormat(kFilmResolution, kFilmBitrate));
  for (int i = 0; i < pictures; ++i) {
    Film::Bytes picture = scene.next().bytes;
    for (const auto& unit : simulator::unitsIn(picture))
      addUnit(film, std::span(picture).subspan(unit.header, unit.end - unit.header));
    film.pictures.push_back(std::move(picture));
  }
  return film;
}

}  // namespace zel::bench
