#include "core/files/file_fault.h"

#include <clocale>
#include <cstring>

namespace torvane {

std::string SystemReason(int fault) {
  static const locale_t plain = newlocale(LC_ALL_MASK, "C", nullptr);
  return strerror_l(fault, plain);
}

std::string CannotOpen(const std::string& path, int fault) {
  return "Cannot open " + path + ": " + SystemReason(fault);
}

std::string CannotWrite(const std::string& path, int fault) {
  return "Cannot write " + path + ": " + SystemReason(fault);
}

}  // namespace torvane
