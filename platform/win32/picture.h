// A small picture made of filled outlines, drawn smoothly at any size into pixels with transparency.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <vector>

namespace kxrestore::win32 {

struct Point {
  double x, y;
};

struct Color {
  std::uint8_t red, green, blue;
};

class Picture {
 public:
  // Outlines lie over each other in the order in which they are added; coordinates are sixteenths of the
  // picture.
  void Fill(Color color, std::initializer_list<Point> outline);
  void FillBox(Color color, double left, double top, double right, double bottom);
  void FillEllipse(Color color, Point center, double radiusX, double radiusY);
  // A line of straight pieces of the given width.
  void Stroke(Color color, double width, std::initializer_list<Point> points);

  // Rows from the top, 0xAARRGGBB, the colours not multiplied by the transparency.
  std::vector<std::uint32_t> Draw(int pixels) const;

 private:
  struct Outline {
    Color color;
    std::vector<Point> points;
  };
  std::vector<Outline> m_outlines;
};

}  // namespace kxrestore::win32
