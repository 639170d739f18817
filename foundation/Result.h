#pragma once

#include <optional>
#include <string>
#include <utility>
#include <variant>

namespace lb {

// Why an operation failed, in words for the log or the user.
struct Failure {
  std::string reason;
};

// What an operation that can fail gives back: its value, or its failure.
// Tests as true when it succeeded.
template <class T = void>
class Result {
public:
  Result(T value) : outcome_(std::move(value)) {}
  Result(Failure failure) : outcome_(std::move(failure)) {}

  explicit operator bool() const { return std::holds_alternative<T>(outcome_); }
  const T& value() const { return std::get<T>(outcome_); }
  const Failure& failure() const { return std::get<Failure>(outcome_); }

private:
  std::variant<T, Failure> outcome_;
};

template <>
class Result<void> {
public:
  Result() = default;
  Result(Failure failure) : failure_(std::move(failure)) {}

  explicit operator bool() const { return !failure_; }
  const Failure& failure() const { return *failure_; }

private:
  std::optional<Failure> failure_;
};

} // namespace lb
