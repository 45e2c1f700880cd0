#pragma once

#include <optional>
#include <string>
#include <utility>
#include <variant>

namespace orvello::tmutil {

/// Why something could not be done: a sentence for the user, without a line end.
struct Problem {
    std::string text;
};

/// A value, or why there is none.
template <class Type> class Result {
  public:
    Result(Type value)
        : content_(std::move(value)) {}
    Result(Problem problem)
        : content_(std::move(problem)) {}

    explicit operator bool() const { return content_.index() == 0; }
    Type& operator*() { return std::get<0>(content_); }
    const Type& operator*() const { return std::get<0>(content_); }
    Type* operator->() { return &std::get<0>(content_); }
    const Type* operator->() const { return &std::get<0>(content_); }
    const Problem& problem() const { return std::get<1>(content_); }

  private:
    std::variant<Type, Problem> content_;
};

/// The outcome of an act without a value; none when it succeeded.
using Failure = std::optional<Problem>;

} // namespace orvello::tmutil
