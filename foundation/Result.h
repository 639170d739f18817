#pragma once

#include <functional>
#include <string>
#include <type_traits>
#include <utility>
#include <variant>

namespace lb {

// Why an operation failed, in words for the log or the user.
struct Failure {
  std::string reason;
};

// What an operation that can fail gives back: its value, or why it failed
// (in words, or as an error code of its own, `E`). A value may be a
// reference to something the callee keeps. Tests as true when it succeeded.
template <class T = void, class E = Failure>
class Result {
  using Stored = std::conditional_t<std::is_reference_v<T>, std::reference_wrapper<std::remove_reference_t<T>>, T>;

public:
  Result(T value) : outcome_(std::in_place_index<0>, static_cast<T&&>(value)) {}
  Result(E failure) : outcome_(std::in_place_index<1>, std::move(failure)) {}

  explicit operator bool() const { return outcome_.index() == 0; }
  decltype(auto) value() const {
    if constexpr (std::is_reference_v<T>) {
      return std::get<0>(outcome_).get();
    } else {
      return static_cast<const T&>(std::get<0>(outcome_));
    }
  }
  const E& failure() const { return std::get<1>(outcome_); }

private:
  std::variant<Stored, E> outcome_;
};

template <class E>
class Result<void, E> {
public:
  Result() = default;
  Result(E failure) : outcome_(std::in_place_index<1>, std::move(failure)) {}

  explicit operator bool() const { return outcome_.index() == 0; }
  const E& failure() const { return std::get<1>(outcome_); }

private:
  std::variant<std::monostate, E> outcome_;
};

} // namespace lb
