// A PDF file written as its pages are drawn: texts in embedded fonts, lines,
// filled boxes and pictures, placed in points from the page's top left
// corner. Each page's drawing is compressed and set down when the page
// ends; the fonts, with only the glyphs used, at the end.
#pragma once
#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace hifx {

// A TrueType or OpenType file made of these tables (tag, bytes), in the
// order of their tags as the format wants, each table's checksum filled in.
std::string SfntFile(std::vector<std::pair<std::string, std::string>> tables);

// The TrueType font file with the outlines of these glyphs only, those they
// are made of and the glyph for a missing character; every other glyph
// keeps its number and has no outline. A font without TrueType outlines
// comes back whole.
std::string SubsetFont(std::string_view font, const std::set<uint16_t>& used);

class PdfDocument {
 public:
  // Compresses a stream's bytes into a zlib stream, the PDF's FlateDecode;
  // raises when it can't.
  using Deflate = std::function<std::string(std::string_view)>;
  explicit PdfDocument(Deflate deflate);

  // A font embedded whole from its file's bytes, named by its PostScript
  // name; returns the number to draw with.
  int AddFont(const std::string& name, std::string program);
  // A glyph of the font: its advance in thousandths of the em, and the
  // character it stands for, so that the text reads back.
  void DescribeGlyph(int font, uint16_t glyph, int advance, char16_t character);
  // A picture of 32-bit pixels (alpha, red, green, blue from the high
  // byte), row after row; returns the number to draw it with.
  int AddImage(int width, int height, const std::vector<uint32_t>& argb);

  // Ends the page being drawn, if any, and starts one of this size.
  void StartPage(double width, double height);
  bool PageStarted() const { return pageStarted_; }
  // The glyphs one after another at their own advances from x, on the
  // baseline.
  void Text(int font, double size, double x, double baseline, const std::vector<uint16_t>& glyphs);
  void Line(double x1, double y1, double x2, double y2, double width);
  void Fill(double x, double y, double width, double height);
  void Image(int image, double x, double y, double width, double height);

  // The whole file. A document with nothing drawn has one blank page.
  std::string Finish();

 private:
  struct Font {
    std::string name;     // with its tag
    std::string program;  // the whole font file, cut down at the end
    std::map<uint16_t, std::pair<int, char16_t>> glyphs;
  };

  int Reserve();
  void BeginObject(int number);
  void WriteStream(int number, std::string_view dictionary, std::string_view bytes, bool compress);
  void EndPage();
  // Sets the font down with the glyphs used; returns its object.
  int WriteFont(const Font& font);
  double Top(double y) const { return pageHeight_ - y; }

  Deflate deflate_;
  std::string out_;
  std::vector<size_t> offsets_;  // of each object, by number less one
  std::vector<int> pages_;
  std::vector<Font> fonts_;
  std::vector<int> images_;
  std::string content_;  // the page being drawn
  bool pageStarted_ = false;
  double pageWidth_ = 0;
  double pageHeight_ = 0;
  double lineWidth_ = -1;  // of the page being drawn; -1 before its first line
};

}  // namespace hifx
