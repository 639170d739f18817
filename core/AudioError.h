#pragma once

#include <cstdint>
#include <exception>
#include <string>

namespace lb {

// Why setting a default audio device failed.
class AudioError : public std::exception {
public:
  enum class Kind { settingFailed, noMatchingAudioDevice, succeededButCantVerify, succeededButVerificationFailed };

  explicit AudioError(Kind kind, std::int32_t status = 0) : kind_(kind), status_(status) {
    static constexpr const char* names[] = {"settingFailed", "noMatchingAudioDevice", "succeededButCantVerify",
                                            "succeededButVerificationFailed"};
    text_ = names[static_cast<int>(kind)];
    if (kind == Kind::settingFailed) text_ += "(" + std::to_string(status) + ")";
  }

  Kind kind() const { return kind_; }
  std::int32_t status() const { return status_; }
  const char* what() const noexcept override { return text_.c_str(); }

private:
  Kind kind_;
  std::int32_t status_;
  std::string text_;
};

} // namespace lb
