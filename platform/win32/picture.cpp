#include "platform/win32/picture.h"

#include <algorithm>
#include <cmath>

namespace kxrestore::win32 {

namespace {

constexpr double kUnits = 16;
constexpr int kSamples = 4;  // across a pixel, and down
constexpr int kEllipseSides = 32;
constexpr double kPi = 3.14159265358979323846;

bool Contains(const std::vector<Point>& outline, Point point) {
  bool inside = false;
  for (std::size_t i = 0, j = outline.size() - 1; i < outline.size(); j = i++) {
    const Point a = outline[i];
    const Point b = outline[j];
    if ((a.y > point.y) == (b.y > point.y)) continue;
    if (point.x < (b.x - a.x) * (point.y - a.y) / (b.y - a.y) + a.x) inside = !inside;
  }
  return inside;
}

}  // namespace

void Picture::Fill(Color color, std::initializer_list<Point> outline) {
  m_outlines.push_back({color, outline});
}

void Picture::FillBox(Color color, double left, double top, double right, double bottom) {
  Fill(color, {{left, top}, {right, top}, {right, bottom}, {left, bottom}});
}

void Picture::FillEllipse(Color color, Point center, double radiusX, double radiusY) {
  Outline outline{color, {}};
  for (int side = 0; side < kEllipseSides; ++side) {
    const double angle = 2 * kPi * side / kEllipseSides;
    outline.points.push_back({center.x + radiusX * std::cos(angle), center.y + radiusY * std::sin(angle)});
  }
  m_outlines.push_back(std::move(outline));
}

void Picture::Stroke(Color color, double width, std::initializer_list<Point> points) {
  const Point* previous = nullptr;
  for (const Point& point : points) {
    if (previous != nullptr) {
      const double length = std::hypot(point.x - previous->x, point.y - previous->y);
      const double dx = -(point.y - previous->y) / length * width / 2;
      const double dy = (point.x - previous->x) / length * width / 2;
      Fill(color, {{previous->x + dx, previous->y + dy},
                   {point.x + dx, point.y + dy},
                   {point.x - dx, point.y - dy},
                   {previous->x - dx, previous->y - dy}});
      FillEllipse(color, *previous, width / 2, width / 2);
    }
    FillEllipse(color, point, width / 2, width / 2);
    previous = &point;
  }
}

std::vector<std::uint32_t> Picture::Draw(int pixels) const {
  std::vector<std::uint32_t> image(static_cast<std::size_t>(pixels) * pixels);
  const double step = kUnits / (pixels * kSamples);
  for (int y = 0; y < pixels; ++y) {
    for (int x = 0; x < pixels; ++x) {
      unsigned hits = 0, red = 0, green = 0, blue = 0;
      for (int sample = 0; sample < kSamples * kSamples; ++sample) {
        const Point point{(x * kSamples + sample % kSamples + 0.5) * step,
                          (y * kSamples + sample / kSamples + 0.5) * step};
        const auto top = std::find_if(m_outlines.rbegin(), m_outlines.rend(), [&](const Outline& outline) {
          return Contains(outline.points, point);
        });
        if (top == m_outlines.rend()) continue;
        ++hits;
        red += top->color.red;
        green += top->color.green;
        blue += top->color.blue;
      }
      if (hits == 0) continue;
      const unsigned alpha = hits * 255 / (kSamples * kSamples);
      image[static_cast<std::size_t>(y) * pixels + x] =
          alpha << 24 | red / hits << 16 | green / hits << 8 | blue / hits;
    }
  }
  return image;
}

}  // namespace kxrestore::win32
