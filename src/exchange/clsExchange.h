// The exchange engine: the site's conversion settings and, in time, every
// conversion. One object lives for the whole run of the program.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "base/Value.h"
#include "config/IRegistryStore.h"

namespace hifx {

// What a map or a conversion is for.
enum MapUseCode : int16_t { kUseRoute = 1, kUseReRead = 2, kUseReading = 3, kUseOrphan = 99 };

// ".hcm" for route and re-read, ".hrm" for reading, ".hom" for orphan maps,
// empty for anything else.
std::string MapExtension(int16_t type);
// ".txt" for the four exchange types, empty otherwise.
std::string DefaultFileExtension(int16_t type);
// "Route", "ReRead", "Reading", "Orphan"; also the keys of the settings tree.
std::string TypeDescr(int16_t type);

class clsExchange {
 public:
  explicit clsExchange(IRegistryStore& store);

  // One setting as stored; an empty or missing value gives defaultValue.
  Value GetParm(std::string_view section, std::string_view valueName, const Value& defaultValue);
  // Writes one setting, creating its keys; true when the write succeeded.
  bool SaveParm(std::string_view section, std::string_view valueName, std::string_view value);
  void LoadSettings();
  // Writes all twenty settings, changed or not. A failed write is silent.
  void SaveSettings();

  // The settings: what each conversion reads from and writes to, with which
  // map, and how the handheld file is delivered.
  std::string RouteSource;
  std::string RouteDestination = "RouteHIF.pdb";
  std::string RouteMap;
  std::string RouteHIFType = "PDB";
  std::string ReReadSource;
  std::string ReReadDestination = "RouteHIF.pdb";
  std::string ReReadMap;
  std::string ReReadHIFType = "PDB";
  std::string ReadingSource = "ReadingHIF.pdb";
  std::string ReadingDestination;
  std::string ReadingMap;
  bool AutoReRead = false;
  std::string OrphanDestination;
  std::string OrphanMap;
  int16_t OrphanConvert = 0;
  int16_t OrphanReplace = 0;
  bool AutoInstall = false;
  std::string AutoInstallUnit;
  bool AutoInstallPrompt = false;
  bool AutoInstallLeave = false;

 private:
  IRegistryStore& store_;
};

}  // namespace hifx
