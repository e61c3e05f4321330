// The route conversion run as a check: the conversion's own reading and
// validation, into a scratch file that no one sees.
#include "exchange/RouteCheck.h"

#include <random>
#include <set>
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
    throw CreateFailure(fail::kPathAccess, "Could not make a scratch folder in {}", temp,
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
// The meters of a route file changed out, new or gone since the last
// readings.
std::vector<MeterDifference> RouteChanges(const std::vector<MeterPlace>& last, const std::vector<MeterPlace>& now) {
  std::vector<MeterDifference> changes;
  for (const MeterDifference& d : CompareMeters(last, now).differences) {
    if (d.change == MeterChange::Replaced || d.change == MeterChange::Added || d.change == MeterChange::Removed) {
      changes.push_back(d);
    }
  }
  return changes;
}

// A re-read list holds only some of the route's meters, so none is gone;
// and its meters may come by tag alone, paired by nothing but the tag: a
// tag the last readings know is not new.
std::vector<MeterDifference> ListChanges(const std::vector<MeterPlace>& last, const std::vector<MeterPlace>& listed) {
  std::set<int32_t> knownTags;
  for (const MeterPlace& meter : last) knownTags.insert(meter.tag);
  std::vector<MeterPlace> withAccount;
  std::vector<MeterDifference> changes;
  for (const MeterPlace& meter : listed) {
    if (!meter.account.empty()) {
      withAccount.push_back(meter);
    } else if (knownTags.count(meter.tag) == 0) {
      changes.push_back({MeterChange::Added, {}, meter});
    }
  }
  for (const MeterDifference& d : CompareMeters(last, withAccount).differences) {
    if (d.change == MeterChange::Replaced || (d.change == MeterChange::Added && knownTags.count(d.after.tag) == 0)) {
      changes.push_back(d);
    }
  }
  return changes;
}

}  // namespace

// Runs the conversion of the file into a scratch destination, with no
// handheld queued, and puts the user's settings back whatever happens.
bool clsExchange::ConvertForCheck(RouteCheck& check, const std::filesystem::path& scratch) {
  std::string& destination = check.rereadList ? ReReadDestination : RouteDestination;
  const std::string kept = destination;
  const bool autoInstall = AutoInstall;
  destination = scratch.string();
  AutoInstall = false;
  check_ = &check;
  struct Restore {
    clsExchange& exchange;
    std::string& destination;
    const std::string& kept;
    bool autoInstall;
    ~Restore() {
      exchange.check_ = nullptr;
      destination = kept;
      exchange.AutoInstall = autoInstall;
    }
  } restore{*this, destination, kept, autoInstall};
  return check.rereadList ? ConvertReRead() : ConvertRoute();
}

bool clsExchange::CheckRoute(RouteCheck& check) {
  SilentShell quiet;
  const std::vector<MeterPlace> last = check.since.empty() ? std::vector<MeterPlace>{} : LastReadings(quiet, check.since);
  const ScratchFolder scratch;
  const std::filesystem::path made = scratch.Path() / "check.pdb";
  const bool converted = ConvertForCheck(check, made);
  check.lines = LineNumber;
  check.routes = static_cast<int32_t>(RouteNames.size() - 1);
  check.meters = MetersWritten;
  if (!converted) check.Stop("the conversion would not make the file");
  if (converted && !check.since.empty()) {
    const std::vector<MeterPlace> now = ReadMeterPlaces(quiet, made);
    check.changes = check.rereadList ? ListChanges(last, now) : RouteChanges(last, now);
  }
  return check.Converts();
}

}  // namespace hifx
