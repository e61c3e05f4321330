#include "hif/FileVersion.h"

namespace hifx {

int16_t LookupFileVersion(IShell& shell, int16_t major, int16_t minor) {
  if (major == 1 && minor == 2) return 1;
  if (major == 1 && minor == 3) return 2;
  if (major == 1 && minor >= 4 && minor <= 6) return 3;
  if (major == 3 && minor == 0) return 3;
  // Only a build released without its row here can get this far.
  shell.MsgBox(
      "Contact Support - cannot determine internal file version from this version of Tally "
      "Converter Utility");
  return 0;
}

}  // namespace hifx
