#include "reports/PdfDocument.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <initializer_list>
#include <set>

namespace hifx {
namespace {

// The objects every file has, numbered first; the pages share one set of
// resources.
constexpr int kCatalog = 1;
constexpr int kPages = 2;
constexpr int kResources = 3;

constexpr double kLetterWidth = 612;  // points, when nothing said the size
constexpr double kLetterHeight = 792;

std::string Reference(int number) { return std::to_string(number) + " 0 R"; }

// A number as a PDF writes it: rounded to `decimals` places (at most 4),
// without trailing zeros.
void AppendNum(std::string& out, double value, int decimals = 2) {
  static constexpr int64_t kScales[] = {1, 10, 100, 1000, 10000};
  const int64_t scale = kScales[std::clamp(decimals, 0, 4)];
  if (!(std::fabs(value) < 1e12)) value = 0;  // past any page, or not a number
  const int64_t scaled = std::llround(value * static_cast<double>(scale));
  const uint64_t magnitude = scaled < 0 ? static_cast<uint64_t>(-scaled) : static_cast<uint64_t>(scaled);
  char text[32];
  char* end = text;
  if (scaled < 0) *end++ = '-';
  end = std::to_chars(end, text + sizeof text, magnitude / static_cast<uint64_t>(scale)).ptr;
  uint64_t fraction = magnitude % static_cast<uint64_t>(scale);
  if (fraction != 0) {
    int places = decimals;
    while (fraction % 10 == 0) fraction /= 10, --places;
    *end++ = '.';
    char* digits = end + places;
    for (char* at = digits; at > end; fraction /= 10) *--at = static_cast<char>('0' + fraction % 10);
    end = digits;
  }
  out.append(text, end);
}

std::string Num(double value, int decimals = 2) {
  std::string out;
  AppendNum(out, value, decimals);
  return out;
}

// The numbers, each followed by a blank.
void AppendNums(std::string& out, std::initializer_list<double> values) {
  for (const double value : values) {
    AppendNum(out, value);
    out += ' ';
  }
}

void Hex4(std::string& out, unsigned value) {
  static constexpr char kDigits[] = "0123456789ABCDEF";
  for (int shift = 12; shift >= 0; shift -= 4) out += kDigits[(value >> shift) & 0xF];
}

uint32_t Big32(std::string_view bytes, size_t at) {
  if (at + 4 > bytes.size()) return 0;
  uint32_t value = 0;
  for (size_t i = 0; i < 4; ++i) value = value << 8 | static_cast<unsigned char>(bytes[at + i]);
  return value;
}

int Big16(std::string_view bytes, size_t at, bool isSigned) {
  if (at + 2 > bytes.size()) return 0;
  const int value = static_cast<unsigned char>(bytes[at]) << 8 | static_cast<unsigned char>(bytes[at + 1]);
  return isSigned && value >= 0x8000 ? value - 0x10000 : value;
}

void PutBig(std::string& out, uint32_t value, int bytes) {
  for (int shift = (bytes - 1) * 8; shift >= 0; shift -= 8) out += static_cast<char>((value >> shift) & 0xFF);
}

// The table of that tag in a font file; empty when it has none.
std::string_view FontTable(std::string_view font, std::string_view tag) {
  const size_t count = static_cast<size_t>(Big16(font, 4, false));
  for (size_t i = 0; i < count; ++i) {
    const size_t record = 12 + i * 16;
    if (record + 16 > font.size()) break;
    if (font.substr(record, 4) != tag) continue;
    const size_t offset = Big32(font, record + 8);
    const size_t length = Big32(font, record + 12);
    if (offset > font.size() || length > font.size() - offset) return {};
    return font.substr(offset, length);
  }
  return {};
}

// Every table of a font file, by tag.
std::vector<std::pair<std::string, std::string>> FontTables(std::string_view font) {
  std::vector<std::pair<std::string, std::string>> tables;
  const size_t count = static_cast<size_t>(Big16(font, 4, false));
  for (size_t i = 0; i < count && 12 + i * 16 + 16 <= font.size(); ++i) {
    const std::string tag(font.substr(12 + i * 16, 4));
    tables.emplace_back(tag, std::string(FontTable(font, tag)));
  }
  return tables;
}

// The glyphs a composite glyph is made of.
std::vector<uint16_t> Components(std::string_view glyph) {
  std::vector<uint16_t> parts;
  if (Big16(glyph, 0, true) >= 0) return parts;
  constexpr int kWords = 0x1, kScale = 0x8, kMore = 0x20, kXYScale = 0x40, kTwoByTwo = 0x80;
  size_t at = 10;
  for (int flags = kMore; (flags & kMore) != 0 && at + 4 <= glyph.size();) {
    flags = Big16(glyph, at, false);
    parts.push_back(static_cast<uint16_t>(Big16(glyph, at + 2, false)));
    at += 4 + ((flags & kWords) != 0 ? 4 : 2);
    at += (flags & kScale) != 0 ? 2 : (flags & kXYScale) != 0 ? 4 : (flags & kTwoByTwo) != 0 ? 8 : 0;
  }
  return parts;
}

// The tables a PDF reader uses of a TrueType font it carries; the others,
// such as the character map and the names, only make it bigger.
constexpr std::array<std::string_view, 10> kReaderTables = {"OS/2", "cvt ", "fpgm", "glyf", "head",
                                                            "hhea", "hmtx", "loca", "maxp", "prep"};

// The glyph for a missing character, these glyphs and the glyphs they are
// made of.
template <typename GlyphOf>
std::set<uint16_t> WithParts(const std::set<uint16_t>& used, const GlyphOf& glyph) {
  std::set<uint16_t> kept{0};
  std::vector<uint16_t> pending(used.begin(), used.end());
  while (!pending.empty()) {
    const uint16_t g = pending.back();
    pending.pop_back();
    if (!kept.insert(g).second) continue;
    for (const uint16_t part : Components(glyph(g))) pending.push_back(part);
  }
  return kept;
}

void SetBig16(std::string& table, size_t at, size_t value) {
  if (at + 2 > table.size()) return;
  table[at] = static_cast<char>((value >> 8) & 0xFF);
  table[at + 1] = static_cast<char>(value & 0xFF);
}

// The horizontal metrics of the first `count` glyphs only.
void CutMetrics(std::string* hhea, std::string* hmtx, size_t count) {
  if (hhea == nullptr || hmtx == nullptr || hhea->size() < 36) return;
  const size_t metrics = std::min(count, static_cast<size_t>(Big16(*hhea, 34, false)));
  const size_t size = metrics * 4 + (count - metrics) * 2;
  if (size > hmtx->size()) return;
  hmtx->resize(size);
  SetBig16(*hhea, 34, metrics);
}

// The font's descriptor dictionary, from the font's own header tables.
std::string FontDescriptor(const std::string& name, std::string_view program, int file) {
  const std::string_view head = FontTable(program, "head");
  const std::string_view hhea = FontTable(program, "hhea");
  const int unitsPerEm = std::max(16, Big16(head, 18, false));
  const double scale = 1000.0 / unitsPerEm;
  const auto Scaled = [&](std::string_view table, size_t at) { return Num(Big16(table, at, true) * scale, 0); };
  const bool italic = (Big16(head, 44, false) & 2) != 0;
  const bool openType = program.substr(0, 4) == "OTTO";
  return "<< /Type /FontDescriptor /FontName /" + name + " /Flags " + (italic ? "96" : "32") + " /FontBBox [" +
         Scaled(head, 36) + " " + Scaled(head, 38) + " " + Scaled(head, 40) + " " + Scaled(head, 42) +
         "] /ItalicAngle " + (italic ? "-12" : "0") + " /Ascent " + Scaled(hhea, 4) + " /Descent " + Scaled(hhea, 6) +
         " /CapHeight " + Scaled(hhea, 4) + " /StemV 80 " + (openType ? "/FontFile3 " : "/FontFile2 ") +
         Reference(file) + " >>";
}

// The glyphs' advances as a W array: a run of neighbouring glyphs shares its
// first number.
std::string Widths(const std::map<uint16_t, std::pair<int, char16_t>>& glyphs) {
  std::string out = "[";
  int next = -1;
  for (const auto& [glyph, described] : glyphs) {
    if (glyph != next) out += (next < 0 ? "" : "] ") + std::to_string(glyph) + " [";
    if (glyph == next) out += ' ';
    out += std::to_string(described.first);
    next = glyph + 1;
  }
  return out + (next < 0 ? "]" : "]]");
}

// The map from glyphs back to the characters they stand for.
std::string ToUnicode(const std::map<uint16_t, std::pair<int, char16_t>>& glyphs) {
  std::string out =
      "/CIDInit /ProcSet findresource begin\n12 dict begin\nbegincmap\n"
      "/CIDSystemInfo << /Registry (Adobe) /Ordering (UCS) /Supplement 0 >> def\n"
      "/CMapName /Adobe-Identity-UCS def\n/CMapType 2 def\n"
      "1 begincodespacerange\n<0000> <FFFF>\nendcodespacerange\n";
  auto glyph = glyphs.begin();
  while (glyph != glyphs.end()) {
    const size_t block = std::min<size_t>(100, static_cast<size_t>(std::distance(glyph, glyphs.end())));
    out += std::to_string(block) + " beginbfchar\n";
    for (size_t i = 0; i < block; ++i, ++glyph) {
      out += '<';
      Hex4(out, glyph->first);
      out += "> <";
      Hex4(out, glyph->second.second);
      out += ">\n";
    }
    out += "endbfchar\n";
  }
  return out + "endcmap\nCMapName currentdict /CMap defineresource pop\nend\nend\n";
}

}  // namespace

std::string SubsetFont(std::string_view font, const std::set<uint16_t>& used) {
  auto tables = FontTables(font);
  std::erase_if(tables, [](const auto& table) {
    return std::find(kReaderTables.begin(), kReaderTables.end(), table.first) == kReaderTables.end();
  });
  const auto Find = [&](const char* tag) -> std::string* {
    for (auto& table : tables) {
      if (table.first == tag) return &table.second;
    }
    return nullptr;
  };
  std::string* head = Find("head");
  std::string* loca = Find("loca");
  std::string* glyf = Find("glyf");
  std::string* maxp = Find("maxp");
  if (head == nullptr || loca == nullptr || glyf == nullptr || maxp == nullptr || head->size() < 54 ||
      maxp->size() < 6) {
    return std::string(font);
  }
  const bool longOffsets = Big16(*head, 50, false) == 1;
  const auto glyphs = static_cast<size_t>(Big16(*maxp, 4, false));
  const auto Offset = [&](size_t g) -> size_t {
    return longOffsets ? Big32(*loca, g * 4) : static_cast<size_t>(Big16(*loca, g * 2, false)) * 2;
  };
  const auto Glyph = [&](size_t g) -> std::string_view {
    const size_t start = Offset(g);
    const size_t end = Offset(g + 1);
    if (g >= glyphs || end < start || end > glyf->size()) return {};
    return std::string_view(*glyf).substr(start, end - start);
  };
  const std::set<uint16_t> kept = WithParts(used, Glyph);
  // The glyphs after the last one kept are left out.
  const size_t count = std::min(glyphs, size_t{*kept.rbegin()} + 1);
  std::string outlines, offsets;
  for (size_t g = 0; g <= count; ++g) {
    PutBig(offsets, static_cast<uint32_t>(outlines.size()), 4);
    if (g < count && kept.count(static_cast<uint16_t>(g)) != 0) {
      outlines += Glyph(g);
      outlines.resize((outlines.size() + 3) & ~size_t{3}, '\0');
    }
  }
  *glyf = std::move(outlines);
  *loca = std::move(offsets);
  (*head)[50] = 0;
  (*head)[51] = 1;  // the offsets are long ones now
  SetBig16(*maxp, 4, count);
  CutMetrics(Find("hhea"), Find("hmtx"), count);
  return SfntFile(std::move(tables));
}

std::string SfntFile(std::vector<std::pair<std::string, std::string>> tables) {
  std::sort(tables.begin(), tables.end());
  const bool cff = std::any_of(tables.begin(), tables.end(), [](const auto& t) { return t.first == "CFF "; });
  const auto count = static_cast<uint32_t>(tables.size());
  uint32_t power = 1, log = 0;
  while (power * 2 <= count) power *= 2, ++log;
  std::string out;
  PutBig(out, cff ? 0x4F54544F : 0x00010000, 4);
  PutBig(out, count, 2);
  PutBig(out, power * 16, 2);
  PutBig(out, log, 2);
  PutBig(out, count * 16 - power * 16, 2);
  size_t offset = 12 + tables.size() * 16;
  for (auto& [tag, bytes] : tables) {
    const size_t length = bytes.size();
    bytes.resize((length + 3) & ~size_t{3}, '\0');
    uint32_t sum = 0;
    for (size_t at = 0; at < bytes.size(); at += 4) sum += Big32(bytes, at);
    out += (tag + "    ").substr(0, 4);
    PutBig(out, sum, 4);
    PutBig(out, static_cast<uint32_t>(offset), 4);
    PutBig(out, static_cast<uint32_t>(length), 4);
    offset += bytes.size();
  }
  for (const auto& table : tables) out += table.second;
  return out;
}

PdfDocument::PdfDocument(Deflate deflate) : deflate_(std::move(deflate)) {
  out_ = "%PDF-1.4\n%\xE2\xE3\xCF\xD3\n";
  offsets_.resize(kResources);  // the catalog, the page tree and the resources
}

int PdfDocument::Reserve() {
  offsets_.push_back(0);
  return static_cast<int>(offsets_.size());
}

void PdfDocument::BeginObject(int number) {
  offsets_[static_cast<size_t>(number - 1)] = out_.size();
  out_ += std::to_string(number) + " 0 obj\n";
}

void PdfDocument::WriteStream(int number, std::string_view dictionary, std::string_view bytes, bool compress) {
  compress = compress && !bytes.empty();
  const std::string packed = compress ? deflate_(bytes) : std::string();
  const std::string_view body = compress ? std::string_view(packed) : bytes;
  BeginObject(number);
  out_ += "<< /Length " + std::to_string(body.size());
  if (compress) out_ += " /Filter /FlateDecode";
  if (!dictionary.empty()) out_ += ' ';
  out_ += dictionary;
  out_ += " >>\nstream\n";
  out_ += body;
  out_ += "\nendstream\nendobj\n";
}

int PdfDocument::AddFont(const std::string& name, std::string program) {
  // A font that carries only some of its glyphs is named with a tag of six
  // capitals of its own before its name.
  const size_t number = fonts_.size();
  std::string clean = "HIFX";
  clean += static_cast<char>('A' + number / 26 % 26);
  clean += static_cast<char>('A' + number % 26);
  clean += '+';
  for (const char c : name) {
    if ((c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-') clean += c;
  }
  fonts_.push_back({clean, std::move(program), {}});
  return static_cast<int>(number);
}

void PdfDocument::DescribeGlyph(int font, uint16_t glyph, int advance, char16_t character) {
  if (font < 0 || static_cast<size_t>(font) >= fonts_.size()) return;
  fonts_[static_cast<size_t>(font)].glyphs.emplace(glyph, std::make_pair(advance, character));
}

int PdfDocument::AddImage(int width, int height, const std::vector<uint32_t>& argb) {
  const size_t pixels = static_cast<size_t>(std::max(width, 0)) * static_cast<size_t>(std::max(height, 0));
  std::string colours, alpha;
  colours.reserve(pixels * 3);
  alpha.reserve(pixels);
  bool opaque = true;
  for (size_t i = 0; i < pixels && i < argb.size(); ++i) {
    const uint32_t pixel = argb[i];
    for (int shift : {16, 8, 0}) colours += static_cast<char>((pixel >> shift) & 0xFF);
    alpha += static_cast<char>(pixel >> 24);
    opaque = opaque && (pixel >> 24) == 0xFF;
  }
  const std::string size = "/Width " + std::to_string(width) + " /Height " + std::to_string(height);
  int mask = 0;
  if (!opaque) {
    mask = Reserve();
    WriteStream(mask, "/Type /XObject /Subtype /Image " + size + " /ColorSpace /DeviceGray /BitsPerComponent 8", alpha,
                true);
  }
  const int image = Reserve();
  WriteStream(image,
              "/Type /XObject /Subtype /Image " + size + " /ColorSpace /DeviceRGB /BitsPerComponent 8" +
                  (mask != 0 ? " /SMask " + Reference(mask) : ""),
              colours, true);
  images_.push_back(image);
  return static_cast<int>(images_.size()) - 1;
}

void PdfDocument::StartPage(double width, double height) {
  EndPage();
  pageStarted_ = true;
  pageWidth_ = width;
  pageHeight_ = height;
  lineWidth_ = -1;
  // Lines end square, half their width past their ends, as on screen.
  content_ = "2 J\n";
}

void PdfDocument::EndPage() {
  if (!pageStarted_) return;
  pageStarted_ = false;
  const int contents = Reserve();
  WriteStream(contents, {}, content_, true);
  content_.clear();
  const int page = Reserve();
  BeginObject(page);
  out_ += "<< /Type /Page /Parent " + Reference(kPages) + " /MediaBox [0 0 " + Num(pageWidth_) + " " +
          Num(pageHeight_) + "] /Resources " + Reference(kResources) + " /Contents " + Reference(contents) +
          " >>\nendobj\n";
  pages_.push_back(page);
}

void PdfDocument::Text(int font, double size, double x, double baseline, const std::vector<uint16_t>& glyphs) {
  if (glyphs.empty() || font < 0 || static_cast<size_t>(font) >= fonts_.size()) return;
  if (!pageStarted_) StartPage(kLetterWidth, kLetterHeight);
  content_ += "BT /F";
  AppendNum(content_, font, 0);
  content_ += ' ';
  AppendNum(content_, size, 3);
  content_ += " Tf ";
  AppendNums(content_, {x, Top(baseline)});
  content_ += "Td <";
  for (const uint16_t glyph : glyphs) Hex4(content_, glyph);
  content_ += "> Tj ET\n";
}

void PdfDocument::Line(double x1, double y1, double x2, double y2, double width) {
  if (!pageStarted_) StartPage(kLetterWidth, kLetterHeight);
  if (width != lineWidth_) {
    AppendNum(content_, width, 3);
    content_ += " w\n";
    lineWidth_ = width;
  }
  AppendNums(content_, {x1, Top(y1)});
  content_ += "m ";
  AppendNums(content_, {x2, Top(y2)});
  content_ += "l S\n";
}

void PdfDocument::Fill(double x, double y, double width, double height) {
  if (!pageStarted_) StartPage(kLetterWidth, kLetterHeight);
  AppendNums(content_, {x, Top(y + height), width, height});
  content_ += "re f\n";
}

void PdfDocument::Image(int image, double x, double y, double width, double height) {
  if (image < 0 || static_cast<size_t>(image) >= images_.size()) return;
  if (!pageStarted_) StartPage(kLetterWidth, kLetterHeight);
  content_ += "q ";
  AppendNums(content_, {width, 0, 0, height, x, Top(y + height)});
  content_ += "cm /Im" + std::to_string(image) + " Do Q\n";
}

int PdfDocument::WriteFont(const Font& font) {
  std::set<uint16_t> used;
  for (const auto& described : font.glyphs) used.insert(described.first);
  const std::string program = SubsetFont(font.program, used);
  const bool openType = std::string_view(program).substr(0, 4) == "OTTO";
  const int file = Reserve();
  WriteStream(file, openType ? "/Subtype /OpenType" : "/Length1 " + std::to_string(program.size()), program, true);
  const int descriptor = Reserve();
  BeginObject(descriptor);
  out_ += FontDescriptor(font.name, program, file) + "\nendobj\n";
  const int number = Reserve();
  const int descendant = Reserve();
  const int toUnicode = Reserve();
  BeginObject(number);
  out_ += "<< /Type /Font /Subtype /Type0 /BaseFont /" + font.name + " /Encoding /Identity-H /DescendantFonts [" +
          Reference(descendant) + "] /ToUnicode " + Reference(toUnicode) + " >>\nendobj\n";
  BeginObject(descendant);
  out_ += "<< /Type /Font /Subtype /CIDFontType2 /BaseFont /" + font.name +
          " /CIDSystemInfo << /Registry (Adobe) /Ordering (Identity) /Supplement 0 >> /FontDescriptor " +
          Reference(descriptor) + " /CIDToGIDMap /Identity /W " + Widths(font.glyphs) + " >>\nendobj\n";
  WriteStream(toUnicode, {}, ToUnicode(font.glyphs), true);
  return number;
}

std::string PdfDocument::Finish() {
  if (pages_.empty() && !pageStarted_) StartPage(kLetterWidth, kLetterHeight);
  EndPage();
  std::string fonts;
  for (size_t i = 0; i < fonts_.size(); ++i) {
    fonts += " /F" + std::to_string(i) + " " + Reference(WriteFont(fonts_[i]));
  }
  BeginObject(kResources);
  out_ += "<< /ProcSet [/PDF /Text /ImageC /ImageB] /Font <<" + fonts;
  out_ += " >> /XObject <<";
  for (size_t i = 0; i < images_.size(); ++i) {
    out_ += " /Im" + std::to_string(i) + " " + Reference(images_[i]);
  }
  out_ += " >> >>\nendobj\n";
  BeginObject(kPages);
  out_ += "<< /Type /Pages /Count " + std::to_string(pages_.size()) + " /Kids [";
  for (const int page : pages_) out_ += Reference(page) + " ";
  out_ += "] >>\nendobj\n";
  BeginObject(kCatalog);
  out_ += "<< /Type /Catalog /Pages " + Reference(kPages) + " >>\nendobj\n";
  const size_t xref = out_.size();
  out_ += "xref\n0 " + std::to_string(offsets_.size() + 1) + "\n0000000000 65535 f \n";
  char entry[32];  // an entry of a cross-reference table is 20 bytes
  for (const size_t offset : offsets_) {
    std::snprintf(entry, sizeof entry, "%010zu 00000 n \n", offset);
    out_ += entry;
  }
  out_ += "trailer\n<< /Size " + std::to_string(offsets_.size() + 1) + " /Root " + Reference(kCatalog) +
          " >>\nstartxref\n" + std::to_string(xref) + "\n%%EOF\n";
  return std::move(out_);
}

}  // namespace hifx
