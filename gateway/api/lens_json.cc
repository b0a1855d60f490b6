#include "gateway/api/lens_json.h"

#include "platform/render/lens_model.h"

namespace zel::gateway {

nlohmann::ordered_json lensJson(const std::string& offset) {
  using nlohmann::ordered_json;
  const render::ParsedLensModel parsed = render::parseLensModel(offset);
  if (!parsed.model) {
    return {{"offset", offset},      {"width", nullptr},       {"height", nullptr},
            {"projection", nullptr}, {"fieldOfView", nullptr}, {"lenses", ordered_json::array()},
            {"fault", parsed.fault}};
  }
  ordered_json lenses = ordered_json::array();
  for (const render::Lens& lens : parsed.model->lenses) {
    lenses.push_back({{"radius", lens.radius},
                      {"x", lens.centreX},
                      {"y", lens.centreY},
                      {"yaw", lens.yaw},
                      {"pitch", lens.pitch},
                      {"roll", lens.roll}});
  }
  return {{"offset", offset},
          {"width", parsed.model->width},
          {"height", parsed.model->height},
          {"projection", "equidistant"},
          {"fieldOfView", parsed.model->fieldOfView},
          {"lenses", lenses}};
}

}  // namespace zel::gateway
