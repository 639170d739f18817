#pragma once

#include "ports/NameCollator.h"

#include <algorithm>
#include <cctype>

namespace lb {

// Orders names by their ASCII letters, ignoring case; enough for simulated
// devices, whose names are plain.
class SimpleNameCollator final : public NameCollator {
public:
  int compare(const std::string& a, const std::string& b) const override {
    auto lower = [](unsigned char c) { return std::tolower(c); };
    auto [ia, ib] = std::mismatch(a.begin(), a.end(), b.begin(), b.end(),
                                  [&](char x, char y) { return lower(x) == lower(y); });
    if (ia == a.end()) return ib == b.end() ? 0 : -1;
    if (ib == b.end()) return 1;
    return lower(*ia) < lower(*ib) ? -1 : 1;
  }
};

} // namespace lb
