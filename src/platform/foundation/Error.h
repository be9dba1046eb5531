#pragma once

#include <QString>

#include <optional>
#include <utility>
#include <variant>

/// Why an operation failed, as a value. Failures are passed back, never thrown.
struct Error
{
    /// Who reports it, for example "sqlite" or "defaults".
    QString domain;
    /// The number that the domain gives it; 0 where it has none.
    int code = 0;
    /// A sentence that a person can read: what could not be done, and why.
    QString message;

    bool operator==(const Error &) const = default;
};

/// Nothing, or why it failed. Who calls what may fail shows it, tries again or hands it on; ignoring it does
/// not compile.
class [[nodiscard]] OptionalError : public std::optional<Error>
{
public:
    using std::optional<Error>::optional;
    OptionalError() = default;
    OptionalError(std::optional<Error> error)
        : std::optional<Error>(std::move(error))
    {}

    /// For the few places where a failure changes nothing; say there why.
    void ignore() const {}
};

/// A value of type T, or why there is none.
template <typename T>
class [[nodiscard]] Result
{
public:
    Result(T value)
        : content(std::in_place_index<0>, std::move(value))
    {}
    Result(Error error)
        : content(std::in_place_index<1>, std::move(error))
    {}

    bool hasValue() const { return content.index() == 0; }
    explicit operator bool() const { return hasValue(); }

    T &value() { return std::get<0>(content); }
    const T &value() const { return std::get<0>(content); }
    T &operator*() { return value(); }
    T *operator->() { return &value(); }
    const Error &error() const { return std::get<1>(content); }

private:
    std::variant<T, Error> content;
};
