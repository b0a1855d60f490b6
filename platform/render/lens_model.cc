#include "platform/render/lens_model.h"

#include <charconv>
#include <cmath>
#include <cstddef>
#include <system_error>

namespace zel::render {
namespace {

constexpr std::size_t kLongestText = 512;
constexpr std::size_t kLensValues = 6;
constexpr double kSmallestSide = 16, kLargestSide = 16384;
constexpr double kLargestModel = 4294967295.0;

struct ModelRow {
  std::uint32_t number;
  double fieldOfView;
};

constexpr ModelRow kModels[] = {{7, 195}};
constexpr double kUnknownFieldOfView = 200;

std::vector<std::string_view> fieldsOf(std::string_view text) {
  std::vector<std::string_view> fields;
  for (std::size_t at = 0; at != std::string_view::npos;) {
    const std::size_t end = text.find('_', at);
    fields.push_back(text.substr(at, end - at));
    at = end == std::string_view::npos ? end : end + 1;
  }
  return fields;
}

// An optional minus sign, digits, and an optional fraction, as in the camera's own text.
std::optional<double> decimal(std::string_view field) {
  if (field.empty() || field.find_first_not_of("-.0123456789") != std::string_view::npos) return std::nullopt;
  double value = 0;
  const char* end = field.data() + field.size();
  const auto read = std::from_chars(field.data(), end, value, std::chars_format::fixed);
  if (read.ec != std::errc() || read.ptr != end || !std::isfinite(value)) return std::nullopt;
  return value;
}

std::optional<double> whole(std::string_view field) {
  const auto value = field.find_first_of("-.") == std::string_view::npos ? decimal(field) : std::nullopt;
  return value && *value <= kLargestModel ? value : std::nullopt;
}

// Reads the fields in order; stops at the first fault and keeps it.
class Reader {
 public:
  explicit Reader(std::string_view text) : fields_(fieldsOf(text)) {}

  double number(const std::string& name) { return checked(decimal(next()), name, "is not a number"); }
  double integer(const std::string& name) { return checked(whole(next()), name, "is not a whole number"); }
  double within(const std::string& name, double value, double from, double to) {
    if (fault_.empty() && !(value >= from && value <= to)) fault_ = "lens offset: " + name + " makes no sense";
    return value;
  }
  void expect(std::size_t count) {
    if (fault_.empty() && fields_.size() != count)
      fault_ = "lens offset: " + std::to_string(count) + " fields are needed, not " + std::to_string(fields_.size());
  }
  const std::string& fault() const { return fault_; }

 private:
  std::string_view next() { return next_ < fields_.size() ? fields_[next_++] : std::string_view(); }
  double checked(std::optional<double> value, const std::string& name, const char* what) {
    if (!value && fault_.empty()) fault_ = "lens offset: " + name + " " + what;
    return value.value_or(0);
  }

  std::vector<std::string_view> fields_;
  std::size_t next_ = 0;
  std::string fault_;
};

Lens readLens(Reader& reader, const std::string& of) {
  Lens lens;
  lens.radius = reader.number("the radius" + of);
  lens.centreX = reader.number("the centre's x" + of);
  lens.centreY = reader.number("the centre's y" + of);
  lens.yaw = reader.within("the yaw" + of, reader.number("the yaw" + of), -360, 360);
  lens.pitch = reader.within("the pitch" + of, reader.number("the pitch" + of), -360, 360);
  lens.roll = reader.within("the roll" + of, reader.number("the roll" + of), -360, 360);
  return lens;
}

void checkCircle(Reader& reader, const LensModel& model, const Lens& lens, const std::string& of) {
  reader.within("the radius" + of, lens.radius, 1, std::hypot(model.width, model.height));
  reader.within("the centre's x" + of, lens.centreX, 0, model.width);
  reader.within("the centre's y" + of, lens.centreY, 0, model.height);
}

std::string nameOf(std::size_t lens) { return " of lens " + std::to_string(lens); }

// Rotates both by an angle in their plane, from the first towards the second.
void turn(Direction& first, Direction& second, double degrees) {
  const double c = std::cos(degrees * kRadians), s = std::sin(degrees * kRadians);
  const Direction a = first, b = second;
  first = {a.x * c + b.x * s, a.y * c + b.y * s, a.z * c + b.z * s};
  second = {b.x * c - a.x * s, b.y * c - a.y * s, b.z * c - a.z * s};
}

double dot(const Direction& a, const Direction& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }

}  // namespace

double fieldOfView(std::uint32_t modelNumber) {
  for (const ModelRow& row : kModels) {
    if (row.number == modelNumber) return row.fieldOfView;
  }
  return kUnknownFieldOfView;
}

ParsedLensModel parseLensModel(std::string_view text) {
  if (text.empty()) return {std::nullopt, "lens offset: the text is empty"};
  if (text.size() > kLongestText) return {std::nullopt, "lens offset: the text is too long"};
  Reader reader(text);
  const double count = reader.integer("the number of lenses");
  reader.within("the number of lenses", count, 1, 2);
  if (!reader.fault().empty()) return {std::nullopt, reader.fault()};
  const auto lenses = static_cast<std::size_t>(count);
  reader.expect(1 + lenses * kLensValues + 3);
  LensModel model;
  for (std::size_t lens = 0; lens < lenses; ++lens) model.lenses.push_back(readLens(reader, nameOf(lens)));
  const double width = reader.integer("the width"), height = reader.integer("the height");
  const double number = reader.integer("the model");
  reader.within("the width", width, kSmallestSide, kLargestSide);
  reader.within("the height", height, kSmallestSide, kLargestSide);
  if (!reader.fault().empty()) return {std::nullopt, reader.fault()};
  model.width = static_cast<int>(width);
  model.height = static_cast<int>(height);
  model.fieldOfView = fieldOfView(static_cast<std::uint32_t>(number));
  for (std::size_t lens = 0; lens < lenses; ++lens) checkCircle(reader, model, model.lenses[lens], nameOf(lens));
  if (!reader.fault().empty()) return {std::nullopt, reader.fault()};
  return {std::move(model), {}};
}

LensView::LensView(const LensModel& model, const Lens& lens, int streamWidth, int streamHeight)
    : axes_{Direction{1, 0, 0}, Direction{0, 1, 0}, Direction{0, 0, 1}},
      centreX_(lens.centreX * streamWidth / model.width),
      centreY_(lens.centreY * streamHeight / model.height),
      scaleX_(lens.radius / (model.fieldOfView / 2) * streamWidth / model.width),
      scaleY_(lens.radius / (model.fieldOfView / 2) * streamHeight / model.height) {
  auto& [right, down, axis] = axes_;
  turn(axis, right, lens.yaw);
  turn(down, axis, lens.pitch);
  turn(right, down, lens.roll);
}

Sight LensView::sightOf(const Direction& world) const {
  const double x = dot(world, axes_[0]), y = dot(world, axes_[1]), z = dot(world, axes_[2]);
  const double aside = std::sqrt(x * x + y * y);
  const double angle = std::atan2(aside, z) / kRadians;
  // On the axis the direction is arbitrary: straight ahead the distance is 0, and straight behind all are equal.
  const double c = aside > 0 ? x / aside : 1, s = aside > 0 ? y / aside : 0;
  return {centreX_ + scaleX_ * angle * c, centreY_ + scaleY_ * angle * s, angle};
}

}  // namespace zel::render
