// The route conversion run as a check: the conversion's own reading and
// validation, into a scratch file that no one sees.
#include "exchange/RouteCheck.h"

#include <random>
#include <string>

#include "base/Failure.h"
#include "exchange/clsExchange.h"

namespace hifx {
namespace {

// A folder of the run's own under the system's temporary folder, removed
// with everything in it when the check is done.
class ScratchFolder {
 public:
  ScratchFolder() {
    const std::filesystem::path temp = std::filesystem::temp_directory_path();
    std::random_device random;
    std::error_code error;
    // A name no one has: made here, so it is ours once made.
    for (int attempt = 0; attempt < 100; ++attempt) {
      path_ = temp / ("hifx-check-" + std::to_string(random()));
      if (std::filesystem::create_directory(path_, error)) return;
      if (error) break;
    }
    throw WriteFailure(fail::kPathAccess, "Could not make a scratch folder in {}", temp,
                       error ? error.message() : "every name tried was taken");
  }
  ~ScratchFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  ScratchFolder(const ScratchFolder&) = delete;
  ScratchFolder& operator=(const ScratchFolder&) = delete;
  const std::filesystem::path& Path() const { return path_; }

 private:
  std::filesystem::path path_;
};

// The meters of the last readings; a failure reading them is a fault of
// that file.
std::vector<MeterPlace> LastReadings(IShell& shell, const std::filesystem::path& readings) {
  try {
    return ReadMeterPlaces(shell, readings);
  } catch (const Failure& failure) {
    if (failure.Kind() != FailureKind::Run) throw;
    throw Failure(FailureKind::BadInput, failure.Number(), {}, readings, failure.Description());
  }
}

// The route file's meters, as the conversion made them, against the last
// readings: what a change-out in the field or in the billing system left.
std::vector<MeterDifference> ChangesSince(const std::vector<MeterPlace>& last, IShell& shell,
                                          const std::filesystem::path& made) {
  const MeterDiff diff = CompareMeters(last, ReadMeterPlaces(shell, made));
  std::vector<MeterDifference> changes;
  for (const MeterDifference& d : diff.differences) {
    if (d.change == MeterChange::Replaced || d.change == MeterChange::Added || d.change == MeterChange::Removed) {
      changes.push_back(d);
    }
  }
  return changes;
}

}  // namespace

bool clsExchange::CheckRoute(RouteCheck& check) {
  SilentShell quiet;
  const std::vector<MeterPlace> last = check.since.empty() ? std::vector<MeterPlace>{} : LastReadings(quiet, check.since);
  const ScratchFolder scratch;
  const std::string destination = RouteDestination;
  const bool autoInstall = AutoInstall;
  RouteDestination = (scratch.Path() / "check.pdb").string();
  AutoInstall = false;
  check_ = &check;
  bool made = false;
  try {
    made = ConvertRoute();
  } catch (...) {
    check_ = nullptr;
    RouteDestination = destination;
    AutoInstall = autoInstall;
    throw;
  }
  check_ = nullptr;
  RouteDestination = destination;
  AutoInstall = autoInstall;
  check.lines = LineNumber;
  check.routes = static_cast<int32_t>(RouteNames.size() - 1);
  check.meters = MetersWritten;
  if (!made) check.Stop("the conversion would not make the file");
  if (made && !check.since.empty()) check.changes = ChangesSince(last, quiet, scratch.Path() / "check.pdb");
  return check.Converts();
}

}  // namespace hifx
