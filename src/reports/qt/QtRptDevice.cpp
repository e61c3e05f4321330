#include "reports/qt/QtRptDevice.h"

#include <QtCore/QBuffer>
#include <QtCore/QSettings>
#include <QtGui/QFont>
#include <QtGui/QFontMetricsF>
#include <QtGui/QGlyphRun>
#include <QtGui/QGuiApplication>
#include <QtGui/QImage>
#include <QtGui/QPageLayout>
#include <QtGui/QPageSize>
#include <QtGui/QPainter>
#include <QtGui/QPdfWriter>
#include <QtGui/QRawFont>
#include <QtPrintSupport/QPrinter>
#include <QtPrintSupport/QPrinterInfo>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <tuple>

#include "base/AtomicFile.h"
#include "base/Failure.h"
#include "reports/PdfDocument.h"

namespace hifx {
namespace {

// Windows-1252 from 0x80 to 0x9F; the rest of the code page is Latin-1.
constexpr std::array<char16_t, 32> kCp1252High = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

QString FromCodePage(std::string_view text) {
  QString out(static_cast<qsizetype>(text.size()), Qt::Uninitialized);
  QChar* to = out.data();
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    *to++ = QChar(byte >= 0x80 && byte < 0xA0 ? kCp1252High[byte - 0x80] : char16_t{byte});
  }
  return out;
}

QString ToQString(std::string_view text) { return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())); }

// A zlib stream of the bytes: Qt's own compression less the length it puts
// before it. Level 3 makes a long report's file a tenth bigger than zlib's
// default and in two thirds of the time.
std::string Deflate(std::string_view bytes) {
  const QByteArray packed =
      qCompress(reinterpret_cast<const uchar*>(bytes.data()), static_cast<qsizetype>(bytes.size()), 3);
  // Qt gives nothing back when zlib runs out of memory.
  if (packed.size() <= 4) throw Failure(fail::kOutOfMemory);
  return std::string(packed.constData() + 4, static_cast<size_t>(packed.size() - 4));
}

// The font's file, made again from the tables the font engine hands out.
std::string FontProgram(const QRawFont& raw) {
  std::vector<std::pair<std::string, std::string>> tables;
  for (const char* tag : {"OS/2", "cmap", "cvt ", "fpgm", "glyf", "head", "hhea", "hmtx", "loca", "maxp", "name",
                          "post", "prep", "CFF "}) {
    const QByteArray table = raw.fontTable(tag);
    if (!table.isEmpty()) tables.emplace_back(tag, table.toStdString());
  }
  return SfntFile(std::move(tables));
}

}  // namespace

QtReportSession::QtReportSession() {
  if (QGuiApplication::instance() != nullptr) return;
  // Qt's notes about a headless session (no runtime folder, no window
  // system) are no concern of a report; its errors still show.
  qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& message) {
    if (type == QtCriticalMsg || type == QtFatalMsg) std::fprintf(stderr, "%s\n", qPrintable(message));
  });
  if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
  static int argc = 1;
  static char name[] = "hifx";
  static char* argv[] = {name, nullptr};
  app_ = std::make_unique<QGuiApplication>(argc, argv);
}

QtReportSession::~QtReportSession() = default;

struct QtSurface::Impl {
  QPaintDevice& device;
  QPagedPaintDevice* paged;
  QPainter painter;
  bool raster;  // raster operations work on images only
  bool ended = false;

  // A font with the advance of each of the 256 characters, measured once:
  // a text's width is their sum, as nothing is kerned. All is in the
  // device's pixels.
  struct Measured {
    QFont font;  // sized for the layout resolution
    double ascent = 0;
    double lineSpacing = 0;
    std::array<double, 256> advance{};
    // For a paged device, the font's own glyph of each character, or 0 for
    // one it lacks or a control character: a text of drawable characters
    // is set as those glyphs at its advances, without Qt's text layout.
    QRawFont raw;
    std::array<quint32, 256> glyph{};
    mutable int pdfFont = -1;                  // the font's number in a PDF drawn by hand
    mutable std::array<bool, 256> pdfGlyph{};  // each character's glyph told the PDF
  };
  using Key = std::tuple<std::string, float, bool, bool, bool>;
  mutable std::map<Key, std::unique_ptr<Measured>> fonts;
  mutable const Measured* last = nullptr;
  mutable RptFont lastFont;
  const Measured* painted = nullptr;  // the painter's font
  bool textPen = false;               // the painter is set for text

  // Texts are measured and lettered as at the printer's resolution and
  // scaled down to the device's: a screen's font sizes fall on whole
  // pixels, and a page laid out with them would wrap and break where the
  // printed page doesn't.
  static constexpr double kLayoutDotsPerInch = 1200.0;
  double textScale = 1.0;  // layout pixels a device pixel

  double dotsPerInch;  // asked of the device once: the asking is not cheap

  // A PDF is drawn by hand: the device only measures, as it would print.
  std::unique_ptr<PdfDocument> pdf;
  std::map<std::pair<QString, QString>, int> pdfFaces;  // family and style
  std::vector<std::pair<RptPicture, int>> pdfImages;
  std::string pdfBytes;  // the finished file

  Impl(QPaintDevice& d, QPagedPaintDevice* p, bool drawsPdf)
      : device(d), paged(p), raster(d.devType() == QInternal::Image), dotsPerInch(d.logicalDpiX()) {
    if (raster) textScale = kLayoutDotsPerInch / dotsPerInch;
    if (drawsPdf) pdf = std::make_unique<PdfDocument>(&Deflate);
  }

  const Measured& For(const RptFont& f) const {
    if (last != nullptr && lastFont == f) return *last;
    auto& slot = fonts[Key{f.name, f.size, f.bold, f.italic, f.underline}];
    if (!slot) {
      QFont font(ToQString(f.name));
      font.setPointSizeF((f.size > 0 ? f.size : 1.0) * textScale);
      font.setBold(f.bold);
      font.setItalic(f.italic);
      font.setUnderline(f.underline);
      font.setKerning(false);
      // Letters stand one after the other at their own advances: there is
      // nothing for the text shaper to do, and it is the dearest part of
      // drawing a text.
      font.setStyleStrategy(QFont::PreferNoShaping);
      // The font's own advances, not those fitted to the pixel grid: a page
      // on screen is laid out and lettered as it is on paper.
      font.setHintingPreference(QFont::PreferNoHinting);
      const QFontMetricsF metrics(font, &device);
      slot = std::make_unique<Measured>();
      slot->font = font;
      slot->ascent = metrics.ascent() / textScale;
      slot->lineSpacing = metrics.lineSpacing() / textScale;
      for (int c = 0; c < 256; ++c) {
        const char byte = static_cast<char>(c);
        slot->advance[static_cast<size_t>(c)] =
            metrics.horizontalAdvance(FromCodePage(std::string_view(&byte, 1))) / textScale;
      }
      if (!raster) FindGlyphs(*slot);
    }
    last = slot.get();
    lastFont = f;
    return *slot;
  }

  QPainter& Painter() {
    if (!painter.isActive() && !ended) {
      painter.begin(&device);
      painted = nullptr;
      textPen = false;
      painter.setRenderHint(QPainter::Antialiasing, false);
    }
    return painter;
  }

  void FindGlyphs(Measured& measured) const {
    if (pdf == nullptr && (measured.font.underline() || measured.font.strikeOut())) return;
    measured.raw = QRawFont::fromFont(QFont(measured.font, &device));
    if (!measured.raw.isValid()) return;
    for (int c = 0; c < 256; ++c) {
      const char byte = static_cast<char>(c);
      const QString text = FromCodePage(std::string_view(&byte, 1));
      if (!text[0].isPrint() || !measured.raw.supportsCharacter(text[0])) continue;
      const QList<quint32> indexes = measured.raw.glyphIndexesForString(text);
      if (indexes.size() == 1) measured.glyph[static_cast<size_t>(c)] = indexes[0];
    }
  }

  // Sets the line as the font's glyphs at their advances from the pen at
  // (x, baseline); false, with nothing drawn, for a character without a
  // glyph of its own.
  bool PaintGlyphs(const Measured& measured, double x, double baseline, std::string_view line) {
    glyphs.clear();
    positions.clear();
    for (const char c : line) {
      const auto byte = static_cast<unsigned char>(c);
      if (measured.glyph[byte] == 0) return false;
      glyphs.push_back(measured.glyph[byte]);
      positions.emplace_back(x, baseline);
      x += measured.advance[byte];
    }
    QGlyphRun run;
    run.setRawFont(measured.raw);
    run.setRawData(glyphs.data(), positions.data(), static_cast<int>(glyphs.size()));
    painter.drawGlyphRun(QPointF(0, 0), run);
    return true;
  }
  std::vector<quint32> glyphs;  // kept from line to line
  std::vector<QPointF> positions;

  double PointsPerPixel() const { return 72.0 / dotsPerInch; }

  // The PDF's page being drawn, started on first use; none once the
  // document has ended.
  PdfDocument* PdfPage() {
    if (ended) return nullptr;
    if (!pdf->PageStarted()) StartPdfPage();
    return pdf.get();
  }

  // A new page of the device's size, in points, the one before ended.
  void StartPdfPage() {
    const double k = PointsPerPixel();
    pdf->StartPage(device.width() * k, device.height() * k);
  }

  // The measured font's face in the PDF.
  int PdfFontOf(const Measured& measured) {
    if (measured.pdfFont >= 0) return measured.pdfFont;
    const std::pair<QString, QString> face{measured.raw.familyName(), measured.raw.styleName()};
    auto found = pdfFaces.find(face);
    if (found == pdfFaces.end()) {
      QString name = face.first + "-" + face.second;
      name.remove(' ');
      found = pdfFaces.emplace(face, pdf->AddFont(name.toStdString(), FontProgram(measured.raw))).first;
    }
    measured.pdfFont = found->second;
    return measured.pdfFont;
  }

  // The character's glyph, told the PDF at the advance the layout gave it
  // when it is first used.
  uint16_t PdfGlyph(const Measured& measured, unsigned char byte) {
    const quint32 glyph = measured.glyph[byte];
    if (glyph == 0 || glyph > 0xFFFF) return 0;
    if (!measured.pdfGlyph[byte]) {
      measured.pdfGlyph[byte] = true;
      const char c = static_cast<char>(byte);
      pdf->DescribeGlyph(measured.pdfFont, static_cast<uint16_t>(glyph),
                         static_cast<int>(std::lround(measured.advance[byte] / measured.raw.pixelSize() * 1000)),
                         FromCodePage(std::string_view(&c, 1))[0].unicode());
    }
    return static_cast<uint16_t>(glyph);
  }

  // The line's glyphs from the pen at (x, y); a character without a glyph
  // of its own is a gap of its width.
  void PdfText(const Measured& measured, double x, double y, std::string_view line) {
    PdfDocument* page = PdfPage();
    if (page == nullptr) return;
    const int font = PdfFontOf(measured);
    const double k = PointsPerPixel();
    const double size = measured.raw.pixelSize() * k;
    const double baseline = y + measured.ascent;
    double start = x, at = x;
    pdfGlyphs.clear();
    for (const char c : line) {
      const auto byte = static_cast<unsigned char>(c);
      const uint16_t glyph = PdfGlyph(measured, byte);
      at += measured.advance[byte];
      if (glyph != 0) {
        pdfGlyphs.push_back(glyph);
        continue;
      }
      page->Text(font, size, start * k, baseline * k, pdfGlyphs);
      pdfGlyphs.clear();
      start = at;
    }
    page->Text(font, size, start * k, baseline * k, pdfGlyphs);
    if (measured.font.underline()) {
      const double thickness = std::max(measured.raw.lineThickness(), 1.0);
      page->Fill(x * k, (baseline + measured.raw.underlinePosition() - thickness / 2) * k, (at - x) * k, thickness * k);
    }
  }
  std::vector<uint16_t> pdfGlyphs;  // kept from line to line

  // A picture is set down in the PDF once and drawn where it is used.
  void PdfImage(const RptPicture& picture, double x, double y, double width, double height) {
    PdfDocument* page = PdfPage();
    if (page == nullptr) return;
    int number = -1;
    for (const auto& [seen, index] : pdfImages) {
      if (seen.width == picture.width && seen.height == picture.height && seen.pixels == picture.pixels) {
        number = index;
      }
    }
    if (number < 0) {
      number = page->AddImage(picture.width, picture.height, picture.pixels);
      pdfImages.emplace_back(picture, number);
    }
    const double k = PointsPerPixel();
    page->Image(number, x * k, y * k, width * k, height * k);
  }

  double PenWidth() const {
    // A printer's one-pixel line would be a hairline at PDF resolution.
    return std::max(1.0, dotsPerInch / 300.0);
  }

  void Pen(int16_t drawMode) {
    QPainter& p = Painter();
    textPen = false;
    QPen pen(Qt::black);
    pen.setWidthF(PenWidth());
    p.setPen(pen);
    if (!raster) return;
    switch (drawMode) {
      case kDrawNotMergePen: p.setCompositionMode(QPainter::RasterOp_NotSourceAndNotDestination); break;
      case kDrawNotXorPen: p.setCompositionMode(QPainter::RasterOp_NotSourceXorDestination); break;
      default: p.setCompositionMode(QPainter::CompositionMode_SourceOver); break;
    }
  }
};

QtSurface::QtSurface(QPaintDevice& device, QPagedPaintDevice* paged, bool drawsPdf)
    : impl_(std::make_unique<Impl>(device, paged, drawsPdf)) {}

QtSurface::~QtSurface() {
  if (impl_->painter.isActive()) impl_->painter.end();
}

double QtSurface::DotsPerInch() const { return impl_->dotsPerInch; }
double QtSurface::PageWidthPixels() const { return impl_->device.width(); }
double QtSurface::PageHeightPixels() const { return impl_->device.height(); }

double QtSurface::MeasureText(std::string_view line) const {
  const auto& advance = impl_->For(Font()).advance;
  double width = 0;
  for (const char c : line) width += advance[static_cast<unsigned char>(c)];
  return width;
}

double QtSurface::LineHeightPixels() const { return impl_->For(Font()).lineSpacing; }

void QtSurface::PaintText(double x, double y, std::string_view line) {
  if (line.empty()) return;
  const auto& measured = impl_->For(Font());
  if (impl_->pdf) return impl_->PdfText(measured, x, y, line);
  QPainter& p = impl_->Painter();
  if (!impl_->textPen) {
    p.setCompositionMode(QPainter::CompositionMode_SourceOver);
    p.setPen(Qt::black);
    impl_->textPen = true;
  }
  if (impl_->painted != &measured) {
    p.setFont(measured.font);
    impl_->painted = &measured;
  }
  const double scale = impl_->textScale;
  if (scale == 1.0) {
    if (impl_->PaintGlyphs(measured, x, y + measured.ascent, line)) return;
    p.drawText(QPointF(x, y + measured.ascent), FromCodePage(line));
    return;
  }
  p.setTransform(QTransform::fromScale(1 / scale, 1 / scale));
  p.drawText(QPointF(x * scale, (y + measured.ascent) * scale), FromCodePage(line));
  p.resetTransform();
}

void QtSurface::PaintLine(double x1, double y1, double x2, double y2) {
  if (impl_->pdf) {
    const double k = impl_->PointsPerPixel();
    if (PdfDocument* page = impl_->PdfPage()) page->Line(x1 * k, y1 * k, x2 * k, y2 * k, impl_->PenWidth() * k);
    return;
  }
  impl_->Pen(DrawMode());
  impl_->painter.drawLine(QPointF(x1, y1), QPointF(x2, y2));
}

void QtSurface::PaintFill(double x, double y, double width, double height) {
  if (impl_->pdf) {
    const double k = impl_->PointsPerPixel();
    if (PdfDocument* page = impl_->PdfPage()) page->Fill(x * k, y * k, width * k, height * k);
    return;
  }
  impl_->Pen(DrawMode());
  impl_->painter.fillRect(QRectF(x, y, width, height), Qt::black);
}

void QtSurface::PaintImage(const RptPicture& picture, double x, double y, double width, double height) {
  if (picture.width <= 0 || picture.height <= 0 ||
      picture.pixels.size() < static_cast<size_t>(picture.width) * static_cast<size_t>(picture.height)) {
    return;
  }
  if (impl_->pdf) return impl_->PdfImage(picture, x, y, width, height);
  const QImage image(reinterpret_cast<const uchar*>(picture.pixels.data()), picture.width, picture.height,
                     picture.width * 4, QImage::Format_ARGB32);
  QPainter& p = impl_->Painter();
  p.setCompositionMode(QPainter::CompositionMode_SourceOver);
  p.drawImage(QRectF(x, y, width, height), image);
}

void QtSurface::NewPage() {
  if (impl_->paged == nullptr) return;
  if (impl_->pdf) {
    if (impl_->PdfPage() != nullptr) impl_->StartPdfPage();
    return;
  }
  impl_->Painter();
  impl_->paged->newPage();
}

void QtSurface::PausePainting() {
  if (impl_->painter.isActive()) impl_->painter.end();
}

void QtSurface::EndDoc() {
  if (impl_->pdf) {
    if (impl_->PdfPage() == nullptr) return;
    impl_->pdfBytes = impl_->pdf->Finish();
    impl_->ended = true;
    return;
  }
  impl_->Painter();
  impl_->painter.end();
  impl_->ended = true;
}

std::string QtSurface::TakePdf() {
  if (!impl_->pdf) return {};
  EndDoc();
  return std::move(impl_->pdfBytes);
}

namespace {

std::unique_ptr<QImage> WhiteImage(double widthInches, double heightInches, double dotsPerInch) {
  auto image = std::make_unique<QImage>(static_cast<int>(widthInches * dotsPerInch),
                                        static_cast<int>(heightInches * dotsPerInch), QImage::Format_RGB32);
  const int dotsPerMeter = static_cast<int>(dotsPerInch / 0.0254 + 0.5);
  image->setDotsPerMeterX(dotsPerMeter);
  image->setDotsPerMeterY(dotsPerMeter);
  image->fill(Qt::white);
  return image;
}

}  // namespace

QtImageDevice::QtImageDevice(double widthInches, double heightInches, double dotsPerInch)
    : QtImageDevice(WhiteImage(widthInches, heightInches, dotsPerInch)) {}

QtImageDevice::QtImageDevice(std::unique_ptr<QImage> image) : QtSurface(*image, nullptr), image_(std::move(image)) {}

QtImageDevice::~QtImageDevice() { QtSurface::EndDoc(); }

void QtImageDevice::Resize(double widthInches, double heightInches) {
  PausePainting();
  *image_ = std::move(*WhiteImage(widthInches, heightInches, DotsPerInch()));
}

void QtImageDevice::Clear() {
  PausePainting();
  image_->fill(Qt::white);
  ResetDrawing();
}

const QImage& QtImageDevice::Image() {
  PausePainting();
  return *image_;
}

void QtImageDevice::SavePng(const std::filesystem::path& path) { ReplaceFile(path, PngBytes(Image())); }

void QtImageDevice::NewPage() {
  if (!sink_) return;
  sink_(Image());
  image_->fill(Qt::white);  // the next sheet: the font and the pen go on
}

void QtImageDevice::EndDoc() {
  if (sink_ && !done_) sink_(Image());
  done_ = true;
  QtSurface::EndDoc();
}

std::string PngBytes(const QImage& image) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  image.save(&buffer, "PNG");
  return bytes.toStdString();
}

namespace {

// A PDF text string: UTF-16 with its byte order mark, in hex, so that no
// character needs an escape.
std::string PdfText(const QString& text) {
  std::string out = "<FEFF";
  char unit[5];
  for (const QChar c : text) {
    std::snprintf(unit, sizeof unit, "%04X", static_cast<unsigned>(c.unicode()));
    out += unit;
  }
  return out + ">";
}

// D:YYYYMMDDHHmmSS, a PDF date with no time zone: the clock's time is local.
std::string PdfDate(const CivilTime& t) {
  char date[32];
  std::snprintf(date, sizeof date, "(D:%04d%02d%02d%02d%02d%02d)", t.year, t.month, t.day, t.hour, t.minute,
                t.second);
  return date;
}

// The number that follows key in text, from at on; -1 when there is none.
long long NumberAfter(const std::string& text, const char* key, size_t at) {
  const size_t found = text.find(key, at);
  if (found == std::string::npos) return -1;
  char* end = nullptr;
  const long long number = std::strtoll(text.c_str() + found + std::strlen(key), &end, 10);
  return end == text.c_str() + found + std::strlen(key) ? -1 : number;
}

// The reference "N G R" that follows key in text, from at on; empty when
// there is none.
std::string ReferenceAfter(const std::string& text, const char* key, size_t at) {
  const size_t found = text.find(key, at);
  if (found == std::string::npos) return {};
  const size_t start = text.find_first_not_of(" \r\n", found + std::strlen(key));
  const size_t end = text.find('R', start);
  return end == std::string::npos ? std::string() : text.substr(start, end + 1 - start);
}

std::string InfoDictionary(const PdfInfo& info, const std::string& date) {
  return "<<\n/Title " + PdfText(FromCodePage(info.title)) + "\n/Author " + PdfText(ToQString(info.author)) +
         "\n/Subject " + PdfText(FromCodePage(info.subject)) + "\n/Creator (hifx)\n/Producer (hifx)\n/CreationDate " +
         date + "\n>>";
}

}  // namespace

std::string WithPdfInfo(std::string pdf, const PdfInfo& info) {
  const size_t trailer = pdf.rfind("trailer");
  if (trailer == std::string::npos) return pdf;
  const long long size = NumberAfter(pdf, "/Size", trailer);
  const long long previous = NumberAfter(pdf, "startxref", trailer);
  const std::string root = ReferenceAfter(pdf, "/Root", trailer);
  if (size <= 0 || previous <= 0 || root.empty()) return pdf;
  const std::string date = PdfDate(info.created);
  if (pdf.back() != '\n') pdf += '\n';
  const size_t object = pdf.size();
  const std::string number = std::to_string(size);
  pdf += number + " 0 obj\n" + InfoDictionary(info, date) + "\nendobj\n";
  char entry[32];  // an entry of a cross-reference table is 20 bytes
  std::snprintf(entry, sizeof entry, "%010llu 00000 n \n", static_cast<unsigned long long>(object));
  const size_t xref = pdf.size();
  pdf += "xref\n" + number + " 1\n" + entry + "trailer\n<<\n/Size " + std::to_string(size + 1) + "\n/Root " + root +
         "\n/Info " + number + " 0 R\n/Prev " + std::to_string(previous) + "\n>>\nstartxref\n" +
         std::to_string(xref) + "\n%%EOF\n";
  return pdf;
}

// One printer: its paint device and the surface on it. A PDF is drawn by
// hand into memory, laid out as Qt's PDF writer would print it, and written
// out whole when the report is done.
struct QtPrinters::Target {
  std::unique_ptr<QBuffer> pdf;  // outlives the writer, which only measures
  std::unique_ptr<QPagedPaintDevice> device;
  std::unique_ptr<QtSurface> surface;  // goes first, ending its painter
  QtImageDevice* pictures = nullptr;   // the surface, when the pages are pictures
};

QtPrinters::QtPrinters() = default;
QtPrinters::~QtPrinters() = default;

std::unique_ptr<QtPrinters> QtPrinters::ToPdf(const std::filesystem::path& file) {
  std::unique_ptr<QtPrinters> printers(new QtPrinters());
  auto target = std::make_unique<Target>();
  target->pdf = std::make_unique<QBuffer>();
  target->pdf->open(QIODevice::WriteOnly);
  auto writer = std::make_unique<QPdfWriter>(target->pdf.get());
  writer->setCreator("hifx");
  writer->setPageSize(QPageSize(QPageSize::Letter));
  writer->setPageMargins(QMarginsF(0, 0, 0, 0));
  target->device = std::move(writer);
  printers->current_ = file.string();
  printers->pdfFile_ = file;
  printers->targets_.emplace(printers->current_, std::move(target));
  return printers;
}

bool QtPrinters::Printed() const {
  for (const auto& [name, target] : targets_) {
    if (target && target->surface && target->pictures == nullptr) return true;
  }
  return false;
}

void QtPrinters::Finish() {
  for (auto& [name, target] : targets_) {
    if (!target) continue;
    target->pictures = nullptr;
    std::string pdf = target->pdf && target->surface ? target->surface->TakePdf() : std::string();
    target->surface.reset();  // ends the painter: the document is complete
    target->device.reset();
    if (!target->pdf) continue;
    if (pdfInfo_) pdf = WithPdfInfo(std::move(pdf), *pdfInfo_);
    ReplaceFile(pdfFile_, pdf);
  }
}

std::unique_ptr<QtPrinters> QtPrinters::ToDefaultPrinter() {
  std::unique_ptr<QtPrinters> printers(new QtPrinters());
  printers->current_ = QPrinterInfo::defaultPrinterName().toStdString();
  return printers;
}

std::unique_ptr<QtPrinters> QtPrinters::ToPictures(const std::filesystem::path& folder, const std::string& stem,
                                                   double dotsPerInch) {
  std::unique_ptr<QtPrinters> printers(new QtPrinters());
  auto target = std::make_unique<Target>();
  auto pictures = std::make_unique<QtImageDevice>(8.5, 11.0, dotsPerInch);
  pictures->SetPageSink([folder, stem, page = 0](const QImage& image) mutable {
    char number[16];
    std::snprintf(number, sizeof number, "%05d", ++page);
    ReplaceFile(folder / (stem + "-" + number + ".png"), PngBytes(image));
  });
  target->pictures = pictures.get();
  target->surface = std::move(pictures);
  printers->current_ = (folder / stem).string();
  printers->targets_.emplace(printers->current_, std::move(target));
  return printers;
}

QtPrinters::Target& QtPrinters::Current() {
  auto& target = targets_[current_];
  if (!target) {
    target = std::make_unique<Target>();
    auto printer = std::make_unique<QPrinter>(QPrinterInfo::printerInfo(QString::fromStdString(current_)),
                                              QPrinter::HighResolution);
    printer->setPageOrientation(orientation_ == 2 ? QPageLayout::Landscape : QPageLayout::Portrait);
    target->device = std::move(printer);
  }
  return *target;
}

IRptDevice& QtPrinters::Printer() {
  Target& target = Current();
  if (!target.surface) {
    target.surface = std::make_unique<QtSurface>(*target.device, target.device.get(), target.pdf != nullptr);
  }
  return *target.surface;
}

std::vector<std::string> QtPrinters::DeviceNames() {
  std::vector<std::string> names;
  for (const QString& name : QPrinterInfo::availablePrinterNames()) names.push_back(name.toStdString());
  return names;
}

void QtPrinters::Select(const std::string& deviceName) { current_ = deviceName; }

void QtPrinters::SetOrientation(int16_t orientation) {
  orientation_ = orientation;
  Target& target = Current();
  if (target.pictures != nullptr) {
    // Letter paper, as the printers have it.
    if (orientation == 2) {
      target.pictures->Resize(11.0, 8.5);
    } else {
      target.pictures->Resize(8.5, 11.0);
    }
    return;
  }
  target.device->setPageOrientation(orientation == 2 ? QPageLayout::Landscape : QPageLayout::Portrait);
}

bool QtPrinters::SetPaperBin(int32_t bin) {
  // The system's bin numbers start at 1 (the upper bin), Qt's sources at 0.
  auto* printer = dynamic_cast<QPrinter*>(Current().device.get());
  if (printer == nullptr || bin < 1) return false;
  const auto source = static_cast<QPrinter::PaperSource>(bin - 1);
  printer->setPaperSource(source);
  return printer->paperSource() == source;
}

namespace {

std::unique_ptr<QSettings> UserStore(std::string_view appName) {
  return std::make_unique<QSettings>(QSettings::IniFormat, QSettings::UserScope, "hifexchange", ToQString(appName));
}

QString SettingKey(std::string_view section, std::string_view key) {
  return ToQString(section) + "/" + ToQString(key);
}

}  // namespace

std::string QtUserSettings::GetSetting(std::string_view appName, std::string_view section, std::string_view key,
                                       std::string_view defaultValue) {
  const QVariant value = UserStore(appName)->value(SettingKey(section, key));
  return value.isValid() ? value.toString().toStdString() : std::string(defaultValue);
}

void QtUserSettings::SaveSetting(std::string_view appName, std::string_view section, std::string_view key,
                                 std::string_view value) {
  const auto store = UserStore(appName);
  store->setValue(SettingKey(section, key), ToQString(value));
  store->sync();
}

}  // namespace hifx
