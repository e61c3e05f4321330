// Every writer of the engine on a device that fails: the run says so, names
// the file, and the file it was to replace is as it was, with nothing of the
// failed attempt left beside it.
#include <gtest/gtest.h>

#include <functional>

#include "config/clsDist.h"
#include "hif/SortHIF.h"
#include "support/ExampleSite.h"
#include "support/FaultDevice.h"
#include "support/RouteSite.h"

namespace hifx::test {
namespace {

namespace fs = std::filesystem;

struct Writer {
  const char* name;
  const char* file;  // the file it replaces, in the site's folder
  // Runs the writer; true when it says it succeeded.
  std::function<bool(RouteSite&)> run;
  // Makes the old file; by default a few bytes of no meaning.
  std::function<void(const fs::path&)> old = [](const fs::path& file) { WriteBytes(file, "OLD BYTES"); };
};

// Runs a writer that raises; the failure is said as a front end says it.
bool Said(RouteSite& s, const std::function<bool()>& run) {
  try {
    return run();
  } catch (const Failure& failure) {
    s.shell.log.push_back(failure.Description());
    return false;
  }
}

// The example reading file converted with every output of the run on: the
// billing file, the orphans appended to, and the re-read file.
bool ConvertReading(RouteSite& s) {
  clsExchange& e = s.Exchange();
  const fs::path dir = s.dir.path();
  e.ReadingSource = kExamples + "reading.pdb";
  e.ReadingDestination = (dir / "billing.txt").string();
  e.ReadingMap = "Billing";
  e.OrphanConvert = -1;
  e.OrphanDestination = (dir / "orphans.txt").string();
  e.OrphanMap = "Orphans";
  e.OrphanReplace = 0;  // appended to
  e.AutoReRead = true;
  e.ReReadDestination = (dir / "reread.pdb").string();
  return e.ConvertReading();
}

// A route HIF of a utility system's example, made without faults, and the
// reading conversion of it into that system's file.
bool UploadOf(RouteSite& site, const char* source, const char* map) {
  clsExchange& e = site.Exchange();
  e.RouteSource = kExamples + source;
  e.RouteDestination = (site.dir / "made.pdb").string();
  e.RouteMap = map;
  {
    FileDevice plain;
    ScopedFileDevice unfaulted(plain);
    if (!e.ConvertRoute()) return true;  // fails the test below: nothing was replaced
  }
  e.ReadingSource = e.RouteDestination;
  e.ReadingDestination = (site.dir / "upload.txt").string();
  e.ReadingMap = map;
  e.OrphanConvert = 0;
  e.AutoReRead = false;
  return e.ConvertReading();
}

const Writer kWriters[] = {
    {"RouteHif", "route.pdb",
     [](RouteSite& s) {
       s.Exchange().RouteSource = kExamples + "route-fixed.txt";
       s.Exchange().RouteDestination = (s.dir / "route.pdb").string();
       s.Exchange().RouteMap = "Billing";
       return s.Exchange().ConvertRoute();
     }},
    {"Billing", "billing.txt", ConvertReading},
    {"Orphans", "orphans.txt", ConvertReading},
    {"ReRead", "reread.pdb", ConvertReading},
    {"MVRSUpload", "upload.txt", [](RouteSite& s) { return UploadOf(s, "route-mvrs.dat", "Mvrs"); }},
    {"E5000Upload", "upload.txt", [](RouteSite& s) { return UploadOf(s, "route-e5000.txt", "E5000"); }},
    {"Sort", "sorted.pdb",
     [](RouteSite& s) {
       return Said(s, [&] { return SortHIF(s.shell, s.dir / "sorted.pdb", s.dir / "sorted.pdb") == SortOutcome::Sorted; });
     },
     [](const fs::path& file) { fs::copy_file(kExamples + "reading.pdb", file); }},
    {"Distribution", "site.dst",
     [](RouteSite& s) {
       return Said(s, [&] { return clsDist(s.Store(), s.shell, s.dir.path()).WriteDist(s.dir / "site.dst"); });
     }},
    {"Map", "Billing.hrm",
     [](RouteSite& s) {
       clsExchMap map(s.dir.path());
       if (!map.LoadMap("Billing.hrm", kUseReading)) return true;
       map.SetMapLength(99);
       return Said(s, [&] { return map.SaveMap(); });
     },
     [](const fs::path&) {}},  // the example site's own
};

struct Case {
  Writer writer;
  FaultAt at;
  uint64_t bytes;
};

void PrintTo(const Case& c, std::ostream* os) { *os << c.writer.name; }

std::string CaseName(const testing::TestParamInfo<Case>& info) {
  static const char* kAt[] = {"Bytes", "Sync", "Close", "Rename"};
  return std::string(info.param.writer.name) + "_" + kAt[static_cast<int>(info.param.at)] +
         (info.param.at == FaultAt::Bytes ? std::to_string(info.param.bytes) : "");
}

class WriteFault : public testing::TestWithParam<Case> {
 protected:
  void SetUp() override {
    TestShell quiet;
    ASSERT_TRUE(clsDist(site.Store(), quiet, site.dir.path()).LoadDist(kExamples + "site.dst"));
    site.Exchange().LoadSettings();
    site.Exchange().Advanced().IndexControl(0);
    site.shell.answers.assign(8, MsgAnswer::Yes);  // every overwrite agreed to
  }
  RouteSite site;
};

TEST_P(WriteFault, TheRunSaysSoAndTheOldFileStays) {
  const Writer& writer = GetParam().writer;
  const fs::path target = site.dir / writer.file;
  writer.old(target);
  const std::string old = ReadBytes(target);
  ASSERT_FALSE(old.empty());
  bool succeeded = false;
  {
    FaultDevice device(GetParam().at, writer.file, GetParam().bytes);
    ScopedFileDevice faulty(device);
    succeeded = writer.run(site);
  }
  EXPECT_FALSE(succeeded);
  EXPECT_EQ(ReadBytes(target), old);
  // Nothing of the failed attempt is left beside it.
  for (const auto& entry : fs::directory_iterator(site.dir.path())) {
    EXPECT_NE(entry.path().filename().string().front(), '.') << entry.path();
  }
  // What failed is said with the file's name.
  std::string said;
  for (const auto& line : site.shell.log) said += line + "\n";
  for (const auto& q : site.shell.questions) said += q.text + "\n";
  EXPECT_NE(said.find(writer.file), std::string::npos) << said;
}

std::vector<Case> Cases() {
  std::vector<Case> cases;
  for (const Writer& w : kWriters) {
    for (const uint64_t bytes : {uint64_t{0}, uint64_t{50}}) cases.push_back({w, FaultAt::Bytes, bytes});
    for (const FaultAt at : {FaultAt::Sync, FaultAt::Close, FaultAt::Rename}) cases.push_back({w, at, 0});
  }
  return cases;
}

INSTANTIATE_TEST_SUITE_P(Writers, WriteFault, testing::ValuesIn(Cases()), CaseName);

}  // namespace
}  // namespace hifx::test
