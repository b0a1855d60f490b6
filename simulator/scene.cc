#include "simulator/scene.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>

#include "simulator/scene_canvas.h"
#include "simulator/sphere.h"

namespace zel::simulator {
namespace {

constexpr Colour kZenith{24, 60, 140}, kSkyline{178, 208, 236}, kNearGround{134, 128, 86}, kNadir{46, 58, 36};
constexpr Colour kGrid{240, 240, 240}, kHorizon{255, 255, 255}, kLabel{16, 16, 20};
constexpr Colour kPanel{12, 14, 20}, kDigits{250, 250, 210};
constexpr Colour kLampOff{58, 20, 20}, kLampLit{255, 60, 40}, kLampFrame{250, 250, 250};
constexpr Colour kDisc{255, 226, 84}, kRing{14, 14, 18};

constexpr int kGridStep = 15;                    // degrees
constexpr double kThin = 0.11, kThick = 0.22;    // half widths of lines, degrees
constexpr double kCell = 0.5625;                 // a dot of the clocks; three pixels of a picture 1920 wide
constexpr double kSmallCell = 0.375;             // of the degrees
constexpr std::int64_t kDay = 24 * 60 * 60'000;  // milliseconds

struct Meridian {
  int longitude;
  const char* name;
  Colour colour;
};
constexpr Meridian kAxes[] = {
    {0, "N", {214, 40, 40}}, {90, "E", {30, 140, 60}}, {180, "S", {40, 70, 200}}, {-90, "W", {200, 130, 0}}};

// Milliseconds of the day. Rounded to microseconds first: 1.001 s is a little less than 1001 ms in binary.
std::int64_t timeOfDay(double seconds) {
  if (!std::isfinite(seconds)) return 0;
  const double rest = std::fmod(seconds, kDay / 1000.0);
  const std::int64_t micros = std::llround(rest * 1e6);
  return ((micros + kDay * 1000) / 1000) % kDay;
}

// The share of a pixel that is covered by a line whose centre is that many degrees away.
double lineCover(double distance, double halfWidth, double pixelsPerDegree) {
  return std::clamp(0.5 + (halfWidth - distance) * pixelsPerDegree, 0.0, 1.0);
}

double distanceToMultiple(double value, double step) { return std::abs(value - step * std::round(value / step)); }

Colour worldColour(double latitude) {
  const double height = std::abs(latitude) / 90;
  return latitude >= 0 ? mixed(kSkyline, kZenith, std::sqrt(height)) : mixed(kNearGround, kNadir, height);
}

// Every other field of the grid is slightly darker, so that no part of the scene is uniform.
void paintWorld(SceneCanvas& canvas, int width, int height) {
  for (int row = 0; row < height; ++row) {
    const double latitude = 90 - (row + 0.5) / height * 180;
    const Colour light = worldColour(latitude), dark = mixed(light, kLabel, 0.08);
    const int band = static_cast<int>((90 - latitude) / kGridStep);
    for (int column = 0; column < width; ++column) {
      const int field = static_cast<int>((column + 0.5) / width * 360 / kGridStep);
      canvas.set(column, row, (band + field) % 2 == 0 ? light : dark);
    }
  }
}

void paintGrid(SceneCanvas& canvas) {
  const double sharp = canvas.pixelsPerDegree();
  canvas.paint({0, 0, 179.999, 90}, kGrid, [sharp](double longitude, double latitude) {
    // Fewer meridians near the poles, where they converge.
    const double step = std::abs(latitude) > 75 ? 45 : kGridStep;
    const double aside = distanceToMultiple(longitude, step) * std::cos(latitude * kRadians);
    const double apart = std::min(aside, distanceToMultiple(latitude, kGridStep));
    return 0.75 * lineCover(apart, kThin, sharp);
  });
  canvas.paint({0, 0, 179.999, 1}, kHorizon,
               [sharp](double, double latitude) { return lineCover(std::abs(latitude), kThick, sharp); });
}

void paintAxis(SceneCanvas& canvas, const Meridian& axis) {
  const double sharp = canvas.pixelsPerDegree();
  canvas.paint({double(axis.longitude), 0, 20, 89}, axis.colour, [sharp](double right, double latitude) {
    return lineCover(std::abs(right) * std::cos(latitude * kRadians), kThick, sharp);
  });
  canvas.fill({double(axis.longitude), -19, 3.5, 4.4}, kGrid);
  canvas.text(axis.longitude + kCell, -19.4, 2 * kCell, axis.name, axis.colour);
  for (const int latitude : {-60, -45, -30, 30, 45, 60}) {
    const std::string degrees = (latitude > 0 ? "+" : "") + std::to_string(latitude);
    const double aside = 5 / std::cos(latitude * kRadians);
    canvas.text(axis.longitude + aside, latitude + 2.2, kSmallCell, degrees, latitude > 0 ? kLabel : kGrid);
  }
}

void paintDirectionSigns(SceneCanvas& canvas) {
  for (int degrees = 0; degrees < 360; degrees += kGridStep) {
    canvas.fill({double(degrees), -8, 4, 1.9}, kLabel);
    canvas.text(degrees, -8.2, kSmallCell, std::to_string(degrees), kGrid);
  }
}

void paintClock(SceneCanvas& canvas, double longitude, double seconds) {
  const std::string text = clockText(seconds);
  canvas.fill({longitude, kClockLatitude, 21.5, 2.75}, kPanel);
  canvas.text(longitude, kClockLatitude, kCell, text, kDigits);
  const double lamp = longitude + kLampAside;
  canvas.fill({lamp, kClockLatitude, kLampHalfSide + 0.5, kLampHalfSide + 0.5}, kLampFrame);
  canvas.fill({lamp, kClockLatitude, kLampHalfSide, kLampHalfSide}, tickIsLit(seconds) ? kLampLit : kLampOff);
}

void paintDisc(SceneCanvas& canvas, double longitude, double radius, Colour colour) {
  const double sharp = canvas.pixelsPerDegree();
  canvas.paint({longitude, 0, radius + 1, radius + 1}, colour, [radius, sharp](double right, double up) {
    const double ahead = std::cos(right * kRadians) * std::cos(up * kRadians);
    return lineCover(std::acos(std::min(1.0, ahead)) / kRadians, radius, sharp);
  });
}

}  // namespace

std::string clockText(double seconds) {
  const auto time = static_cast<int>(timeOfDay(seconds));
  char text[48];
  std::snprintf(text, sizeof text, "%02d:%02d:%02d.%03d", time / 3'600'000, time / 60'000 % 60, time / 1000 % 60,
                time % 1000);
  return text;
}

double discLongitude(double seconds) {
  return std::isfinite(seconds) ? std::remainder(std::fmod(seconds, 8) * 45, 360.0) : 0;
}

bool tickIsLit(double seconds) { return timeOfDay(seconds) % 1000 < 100; }

Scene::Scene(int width, int height) : still_(blackPicture(width, height)) {
  SceneCanvas canvas(still_);
  paintWorld(canvas, width, height);
  paintGrid(canvas);
  for (const Meridian& axis : kAxes) paintAxis(canvas, axis);
  paintDirectionSigns(canvas);
}

Picture Scene::at(double seconds) const {
  Picture now = still_;
  SceneCanvas canvas(now);
  for (const double longitude : {0.0, 180.0}) paintClock(canvas, longitude, seconds);
  paintDisc(canvas, discLongitude(seconds), kDiscRingRadius, kRing);
  paintDisc(canvas, discLongitude(seconds), kDiscRadius, kDisc);
  return now;
}

}  // namespace zel::simulator
