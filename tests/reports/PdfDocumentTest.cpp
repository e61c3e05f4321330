// The PDF file drawn by hand: a cross-reference table that finds every
// object, drawing placed from the page's top left in points, fonts that
// say their glyphs' widths and characters, and font files made of tables.
#include <gtest/gtest.h>

#include <string>

#include "reports/PdfDocument.h"

namespace hifx {
namespace {

// Streams stored as they are, so that the test reads what was drawn.
std::string Stored(std::string_view bytes) { return std::string(bytes); }

void Put16(std::string& table, size_t at, int value) {
  table[at] = static_cast<char>((value >> 8) & 0xFF);
  table[at + 1] = static_cast<char>(value & 0xFF);
}

// A font file of the two tables its description is read from: 2048 units
// an em, its box, italic, and its ascent and descent.
std::string ItalicFont() {
  std::string head(54, '\0');
  Put16(head, 18, 2048);
  Put16(head, 36, -1024);
  Put16(head, 38, -512);
  Put16(head, 40, 2048);
  Put16(head, 42, 1024);
  Put16(head, 44, 2);
  std::string hhea(36, '\0');
  Put16(hhea, 4, 1843);
  Put16(hhea, 6, -410);
  return SfntFile({{"hhea", hhea}, {"head", head}});
}

void ExpectHas(const std::string& file, const std::string& part) {
  EXPECT_NE(file.find(part), std::string::npos) << part;
}

TEST(PdfDocument, EveryObjectIsWhereTheCrossReferencesSay) {
  PdfDocument pdf(Stored);
  const int font = pdf.AddFont("Italic Sans-Oblique", ItalicFont());
  pdf.DescribeGlyph(font, 3, 500, u'A');
  pdf.DescribeGlyph(font, 4, 600, u'B');
  pdf.DescribeGlyph(font, 10, 700, u'\u20AC');
  pdf.StartPage(612, 792);
  pdf.Text(font, 12, 10, 20, {3, 4});
  pdf.Text(font, 9.5, -0.254, 20.5, {3});
  pdf.Line(0, 0, 10, 0, 0.24);
  pdf.Line(0, 1, 10, 1, 0.24);
  pdf.Fill(0, 0, 10, 5);
  pdf.Image(pdf.AddImage(2, 1, {0xFFFF0000, 0x80FFFFFF}), 1, 2, 3, 4);
  pdf.StartPage(792, 612);
  const std::string file = pdf.Finish();

  const size_t xref = std::stoul(file.substr(file.rfind("startxref\n") + 10));
  ASSERT_EQ(file.compare(xref, 7, "xref\n0 "), 0);
  const int count = std::stoi(file.substr(xref + 7));
  const size_t entries = file.find('\n', xref + 7) + 1;
  ASSERT_EQ(file.compare(entries, 20, "0000000000 65535 f \n"), 0);
  for (int number = 1; number < count; ++number) {
    const std::string entry = file.substr(entries + 20 * static_cast<size_t>(number), 20);
    ASSERT_EQ(entry.substr(10), " 00000 n \n") << number;
    const std::string object = std::to_string(number) + " 0 obj\n";
    EXPECT_EQ(file.compare(std::stoul(entry.substr(0, 10)), object.size(), object), 0) << number;
  }
  ExpectHas(file, "trailer\n<< /Size " + std::to_string(count) + " /Root 1 0 R >>");
  EXPECT_EQ(file.substr(file.size() - 6), "%%EOF\n");

  // Points from the top left of a page 792 high; a line's width is said once.
  ExpectHas(file, "BT /F0 12 Tf 10 772 Td <00030004> Tj ET\nBT /F0 9.5 Tf -0.25 771.5 Td <0003> Tj ET\n");
  ExpectHas(file, "0.24 w\n0 792 m 10 792 l S\n0 791 m 10 791 l S\n0 787 10 5 re f\n");
  ExpectHas(file, "q 3 0 0 4 1 786 cm /Im0 Do Q\n");
  ExpectHas(file, "/MediaBox [0 0 612 792]");
  ExpectHas(file, "/MediaBox [0 0 792 612]");
  ExpectHas(file, "/Type /Pages /Count 2");
  // A see-through pixel gives the picture a mask.
  ExpectHas(file, "/ColorSpace /DeviceGray /BitsPerComponent 8 >>\nstream\n\xFF\x80\n");
  ExpectHas(file, "/SMask ");

  // The font: its name as PostScript has it after the tag of a font cut
  // down, its box in thousandths of the
  // em, the glyphs' widths in runs of neighbours, and their characters.
  ExpectHas(file,
            "/FontName /HIFXAA+ItalicSans-Oblique /Flags 96 /FontBBox [-500 -250 1000 500] /ItalicAngle -12 "
            "/Ascent 900 /Descent -200");
  ExpectHas(file, "/W [3 [500 600] 10 [700]]");
  ExpectHas(file, "3 beginbfchar\n<0003> <0041>\n<0004> <0042>\n<000A> <20AC>\nendbfchar\n");
}

TEST(PdfDocument, ANewDocumentHasOneBlankPage) {
  PdfDocument pdf(Stored);
  const std::string file = pdf.Finish();
  ExpectHas(file, "/Type /Pages /Count 1 /Kids [5 0 R ]");
  ExpectHas(file, "/MediaBox [0 0 612 792]");
}

TEST(PdfDocument, AFontFileHasItsTablesInOrderAlignedAndSummed) {
  const std::string font = SfntFile({{"glyf", std::string("\x01\x02\x03", 3)}, {"cmap", std::string("\0\0\0\x05", 4)}});
  // Two tables: the search figures for two, then the records in tag order.
  EXPECT_EQ(font.substr(0, 12), std::string("\0\1\0\0\0\2\0\x20\0\1\0\0", 12));
  EXPECT_EQ(font.substr(12, 16), std::string("cmap\0\0\0\x05\0\0\0\x2C\0\0\0\x04", 16));
  EXPECT_EQ(font.substr(28, 16), std::string("glyf\1\2\3\0\0\0\0\x30\0\0\0\x03", 16));
  EXPECT_EQ(font.substr(44), std::string("\0\0\0\x05\1\2\3\0", 8));
  // A font of outlines in the compact format says so first.
  EXPECT_EQ(SfntFile({{"CFF ", "x"}}).substr(0, 4), "OTTO");
}

// The table of that tag in a font file.
std::string Table(const std::string& font, const std::string& tag) {
  const auto Big32 = [&](size_t at) {
    return static_cast<size_t>(static_cast<unsigned char>(font[at])) << 24 |
           static_cast<size_t>(static_cast<unsigned char>(font[at + 1])) << 16 |
           static_cast<size_t>(static_cast<unsigned char>(font[at + 2])) << 8 |
           static_cast<unsigned char>(font[at + 3]);
  };
  for (size_t record = 12; record + 16 <= font.size(); record += 16) {
    if (font.compare(record, 4, tag) == 0) return font.substr(Big32(record + 8), Big32(record + 12));
  }
  return "(none)";
}

TEST(PdfDocument, AFontCutDownKeepsTheGlyphsUsedAndTheirParts) {
  std::string head(54, '\0');
  Put16(head, 18, 1000);  // short offsets
  std::string maxp(6, '\0');
  Put16(maxp, 4, 4);
  const std::string missing(12, 'm');
  const std::string part(8, 'p');
  std::string composite(16, '\0');  // made of glyph 1 once, moved by two bytes
  Put16(composite, 0, -1);
  Put16(composite, 12, 1);
  const std::string unused(4, 'u');
  std::string loca(10, '\0');
  for (int g = 1, at = 0; g <= 4; ++g) {
    at += static_cast<int>((g == 1 ? missing : g == 2 ? part : g == 3 ? composite : unused).size());
    Put16(loca, static_cast<size_t>(g) * 2, at / 2);
  }
  std::string hhea(36, '\0');
  Put16(hhea, 34, 2);  // two advances and side bearings, two side bearings
  const std::string font = SfntFile({{"head", head},
                                     {"maxp", maxp},
                                     {"loca", loca},
                                     {"glyf", missing + part + composite + unused},
                                     {"hhea", hhea},
                                     {"hmtx", "AaBbCcDdEeFf"},
                                     {"name", "N"}});

  // Glyph 3, after the last one kept, is left out with its metrics.
  const std::string cut = SubsetFont(font, {2});
  EXPECT_EQ(Table(cut, "glyf"), missing + part + composite);
  EXPECT_EQ(Table(cut, "loca"), std::string("\0\0\0\0\0\0\0\x0C\0\0\0\x14\0\0\0\x24", 16));
  EXPECT_EQ(Table(cut, "head").substr(50, 2), std::string("\0\1", 2));  // long offsets now
  EXPECT_EQ(Table(cut, "maxp").substr(4, 2), std::string("\0\3", 2));
  EXPECT_EQ(Table(cut, "hmtx"), "AaBbCcDdEe");
  EXPECT_EQ(Table(cut, "hhea").substr(34, 2), std::string("\0\2", 2));
  EXPECT_EQ(Table(cut, "name"), "(none)");  // no reader needs the names
  // A font of the compact outlines has no outlines of its own to cut.
  const std::string compact = SfntFile({{"CFF ", "outlines"}});
  EXPECT_EQ(SubsetFont(compact, {2}), compact);
}

}  // namespace
}  // namespace hifx
